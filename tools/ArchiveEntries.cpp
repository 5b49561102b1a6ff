#include "tools/ArchiveEntries.h"

#include <algorithm>
#include <array>

#include "base/Format.h"
#include "base/Text.h"
#include "image/ImageTexts.h"
#include "tools/ExportPictures.h"

namespace {

constexpr std::string_view kDictionary = "txd";
constexpr std::string_view kModel = "dff";

// Nobody can read names that follow each other faster.
constexpr std::uint32_t kRowsAReport = 1024;

constexpr std::size_t kCopyBytes = std::size_t{1} << 20;

// Names that Windows takes for a device, whatever follows behind a dot.
constexpr std::array<std::wstring_view, 6> kDevices = {L"con", L"prn", L"aux", L"nul", L"conin$", L"conout$"};
constexpr std::array<std::wstring_view, 2> kNumberedDevices = {L"com", L"lpt"};

bool IsDeviceName(std::wstring_view name)
{
    const std::wstring base = ToLowerAscii(Trim(name.substr(0, name.find(L'.'))));
    if (std::find(kDevices.begin(), kDevices.end(), base) != kDevices.end())
        return true;
    // Superscript digits count too.
    constexpr std::wstring_view kDigits = L"0123456789\u00B9\u00B2\u00B3";
    return base.size() == 4 && kDigits.find(base.back()) != std::wstring_view::npos &&
           std::find(kNumberedDevices.begin(), kNumberedDevices.end(), base.substr(0, 3)) !=
               kNumberedDevices.end();
}

bool CopyTo(IFile& out, const IFile& in, std::uint64_t offset, std::uint64_t size)
{
    std::vector<std::byte> buffer(static_cast<std::size_t>(std::min<std::uint64_t>(size, kCopyBytes)));
    for (std::uint64_t done = 0; done < size;) {
        const auto part = std::span(buffer).first(
            static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), size - done)));
        if (in.ReadAt(offset + done, part) != part.size() || !out.WriteAt(done, part))
            return false;
        done += part.size();
    }
    return true;
}

}  // namespace

bool IsDictionaryEntry(const CImgArchive& archive, std::uint32_t index)
{
    return archive.HasExtension(index, kDictionary);
}

bool IsModelEntry(const CImgArchive& archive, std::uint32_t index)
{
    return archive.HasExtension(index, kModel);
}

std::vector<std::uint32_t> ListArchive(const CImgArchive& archive, ArchiveRows rows, IProgress& progress)
{
    const std::uint32_t count = archive.EntryCount();
    std::vector<std::uint32_t> listed;
    listed.reserve(count);
    for (std::uint32_t index = 0; index < count; ++index) {
        if ((index + 1) % kRowsAReport == 0)
            progress.Report(index + 1, count, archive.EntryName(index));
        if (rows == ArchiveRows::Everything || IsDictionaryEntry(archive, index))
            listed.push_back(index);
    }
    progress.Report(0, 0, L"OK");
    return listed;
}

std::wstring EntrySizeText(std::uint64_t bytes)
{
    // A size without a text of its own.
    constexpr std::uint64_t kTooLarge = 0xFFFFFFFF;
    return FormatSize(static_cast<std::uint32_t>(std::min(bytes, kTooLarge)));
}

std::wstring EntryOffsetText(std::uint64_t offset)
{
    return Format(L"0x%08x", offset);
}

std::wstring EntryFileName(std::wstring_view entryName)
{
    std::wstring name = SafeFileName(entryName);
    // Windows drops dots and blanks at the end of a name.
    for (std::size_t at = name.size(); at > 0 && (name[at - 1] == L'.' || name[at - 1] == L' '); --at)
        name[at - 1] = L'_';
    return IsDeviceName(name) ? L"_" + name : name;
}

std::wstring EntryFileFilter(std::wstring_view entryName)
{
    const std::wstring extension = GetFileExtension(SafeFileName(entryName));
    return Format(L"%s file|*.%s|All files|*.*|", ToUpperAscii(extension), ToLowerAscii(extension));
}

EntryExport ExportEntry(const CImgArchive& archive, std::uint32_t index, const std::filesystem::path& file,
                        IFileSystem& files)
{
    const IFile* const source = archive.File();
    if (source == nullptr || !archive.IsReachable(index))
        return EntryExport::Incomplete;
    const std::uint64_t offset = archive.EntryOffset(index);
    const std::uint64_t size = archive.EntrySize(index);
    if (offset + size > source->Size())
        return EntryExport::Incomplete;
    if (files.Exists(file))
        return EntryExport::Exists;
    // The name appears only once all of the entry is there.
    const auto beside = UnusedSibling(files, file);
    auto out = files.Open(beside, OpenMode::Truncate);
    if (!out)
        return EntryExport::NotSaved;
    const bool isCopied = CopyTo(*out, *source, offset, size) && out->Flush();
    out.reset();
    if (isCopied && !files.Exists(file) && files.Replace(beside, file))
        return EntryExport::Written;
    files.Remove(beside);
    return EntryExport::NotSaved;
}
