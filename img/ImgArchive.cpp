#include "img/ImgArchive.h"

#include <algorithm>
#include <array>
#include <span>
#include <system_error>

#include "base/ByteReader.h"
#include "base/Text.h"

namespace {

constexpr std::uint32_t kVersion2Magic = 0x32524556;  // "VER2"
constexpr std::size_t kHeaderBytes = 8;
constexpr std::uint64_t kEndOfReach = std::uint64_t{1} << 32;

// A directory entry of 32 bytes.
//  0  u32       position in sectors
//  4  version 1:  u32  size in sectors
//     version 2:  u16  size in sectors, u16 the same, used where the first is 0
//  8  char[24]  name, ended by NUL where it is shorter
constexpr std::size_t kNameAt = 8;
constexpr std::size_t kNameBytes = 24;

bool WasRefused()
{
    const std::error_code error(static_cast<int>(LastSystemError()), std::system_category());
    return error == std::errc::permission_denied || error == std::errc::operation_not_permitted ||
           error == std::errc::read_only_file_system;
}

// Nobody else may write to the archive meanwhile. One that may not be written to is good enough.
std::unique_ptr<IFile> OpenShared(IFileSystem& files, const std::filesystem::path& path)
{
    auto file = files.Open(path, OpenMode::ReadWrite);
    if (!file && WasRefused())
        file = files.Open(path, OpenMode::Read);
    return file;
}

// Deliberate: the last four characters are replaced whatever they are ("archive.bin" has "archive.dir").
// ImgArchive.ReplacesTheLastFourCharactersForTheDirectory pins it.
std::filesystem::path DirectoryPathOf(const std::filesystem::path& archive)
{
    constexpr std::size_t kExtensionLength = 4;
    std::wstring path = FromPath(archive);
    path.resize(path.size() - std::min(path.size(), kExtensionLength));
    return ToPath(path + L".dir");
}

char LowerAscii(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

}  // namespace

bool CImgArchive::Open(const std::filesystem::path& path)
{
    Close();
    m_pArchive = OpenShared(m_rFiles, path);
    if (!m_pArchive)
        return false;
    m_sPath = path;
    std::array<std::byte, kHeaderBytes> header{};
    m_pArchive->ReadAt(0, header);
    CByteReader in(header);
    m_nMagic = in.U32();
    m_nHeaderCount = in.U32();
    if (!IsVersion2()) {
        m_pDirectory = m_rFiles.Open(DirectoryPathOf(path), OpenMode::Exclusive);
        if (!m_pDirectory)
            return false;
    }
    ReadDirectory();
    return true;
}

bool CImgArchive::Close()
{
    m_pArchive.reset();
    m_pDirectory.reset();
    m_aDirectory.clear();
    m_nMagic = 0;
    m_nHeaderCount = 0;
    m_sPath.clear();
    return true;
}

bool CImgArchive::IsVersion2() const
{
    return m_nMagic == kVersion2Magic;
}

// A count is not believed beyond what its file has room for.
std::uint64_t CImgArchive::CountOfDirectory() const
{
    if (!IsVersion2())
        return m_pDirectory ? m_pDirectory->Size() / kEntryBytes : 0;
    const std::uint64_t length = m_pArchive ? m_pArchive->Size() : 0;
    const std::uint64_t room = length > kHeaderBytes ? (length - kHeaderBytes) / kEntryBytes : 0;
    return std::min<std::uint64_t>(m_nHeaderCount, room);
}

std::uint32_t CImgArchive::ReadDirectory()
{
    constexpr std::uint64_t kMostEntries = 0xFFFFFFFF;
    const std::uint64_t count = std::min(CountOfDirectory(), kMostEntries);
    m_aDirectory.assign(static_cast<std::size_t>(count * kEntryBytes), '\0');
    const auto bytes = std::as_writable_bytes(std::span(m_aDirectory));
    if (IsVersion2() && m_pArchive)
        m_pArchive->ReadAt(kHeaderBytes, bytes);
    else if (m_pDirectory)
        m_pDirectory->ReadAt(0, bytes);
    return EntryCount();
}

std::uint32_t CImgArchive::EntryCount() const
{
    return static_cast<std::uint32_t>(m_aDirectory.size() / kEntryBytes);
}

std::span<const char> CImgArchive::EntryAt(std::uint32_t index) const
{
    if (index >= EntryCount())
        return {};
    return std::span(m_aDirectory).subspan(std::size_t{index} * kEntryBytes, kEntryBytes);
}

std::uint64_t CImgArchive::EntryOffset(std::uint32_t index) const
{
    return std::uint64_t{CByteReader(std::as_bytes(EntryAt(index))).U32()} * kImgSectorBytes;
}

std::uint64_t CImgArchive::EntrySize(std::uint32_t index) const
{
    CByteReader in(std::as_bytes(EntryAt(index)));
    in.Skip(sizeof(std::uint32_t));
    if (!IsVersion2())
        return std::uint64_t{in.U32()} * kImgSectorBytes;
    const std::uint32_t streamingSize = in.U16();
    const std::uint32_t sizeInArchive = in.U16();
    return std::uint64_t{streamingSize != 0 ? streamingSize : sizeInArchive} * kImgSectorBytes;
}

std::string_view CImgArchive::RawName(std::uint32_t index) const
{
    const auto entry = EntryAt(index);
    if (entry.empty())
        return {};
    const std::string_view field(entry.data() + kNameAt, kNameBytes);
    return field.substr(0, field.find('\0'));
}

std::wstring CImgArchive::EntryName(std::uint32_t index) const
{
    return Widen(RawName(index));
}

bool CImgArchive::HasExtension(std::uint32_t index, std::string_view extension) const
{
    const std::string_view name = RawName(index);
    if (name.size() < extension.size())
        return false;
    const std::string_view base = name.substr(0, name.size() - extension.size());
    return (base.empty() || base.back() == '.') &&
           std::equal(extension.begin(), extension.end(),
                      name.begin() + static_cast<std::ptrdiff_t>(base.size()),
                      [](char theirs, char ours) { return LowerAscii(ours) == theirs; });
}

bool CImgArchive::IsReachable(std::uint32_t index) const
{
    return index < EntryCount() && EntryOffset(index) + EntrySize(index) < kEndOfReach;
}

std::optional<std::vector<std::byte>> CImgArchive::ReadEntry(std::uint32_t index) const
{
    if (!m_pArchive || !IsReachable(index))
        return std::nullopt;
    const std::uint64_t offset = EntryOffset(index);
    const std::uint64_t length = m_pArchive->Size();
    const std::uint64_t there = std::min(EntrySize(index), length > offset ? length - offset : 0);
    std::vector<std::byte> bytes(static_cast<std::size_t>(there));
    bytes.resize(m_pArchive->ReadAt(offset, bytes));
    return bytes;
}
