// Reading records: their modes and sizes, headers and rasters.

#include <array>
#include <string>

#include "database/RunLength.h"
#include "database/TextureDatabaseImpl.h"

namespace {

// A raster that no frame of the file's length could expand to is refused before memory is taken for it, but a
// small one is read as far as its damaged frame goes.
constexpr std::uint64_t kAlwaysAllowed = std::uint64_t{16} << 20;
constexpr std::uint64_t kGreatestExpansion = 255;

constexpr std::uint64_t kFrameStart = 12;    // behind the header and the frame's size
constexpr std::uint64_t kUncodedStart = 16;  // behind the zero marker word too

std::vector<std::byte> ReadPart(const IFile& file, std::uint64_t position, std::uint64_t length)
{
    const std::uint64_t end = file.Size();
    if (position > end || length > end - position)
        throw CError(std::wstring(DatabaseText::kWrongOffset));
    std::vector<std::byte> bytes(static_cast<std::size_t>(length));
    if (file.ReadAt(position, bytes) != bytes.size())
        throw CError(std::wstring(DatabaseText::kWrongOffset));
    return bytes;
}

std::vector<std::byte> ReadFramed(const IFile& file, std::uint64_t offset, const RecordProbe& probe,
                                  const RasterHeader& header)
{
    const std::uint64_t size = RasterSize(header);
    if (probe.frameSize == size + 4)
        return ReadPart(file, offset + kUncodedStart, size);
    if (probe.frameSize == 0)
        return ReadPart(file, offset + kFrameStart, size);
    const auto frame = ReadPart(file, offset + kFrameStart, probe.frameSize);
    if (size > kAlwaysAllowed && size / kGreatestExpansion > frame.size())
        throw CError(std::wstring(DatabaseText::kWrongSize));
    std::vector<std::byte> raster(static_cast<std::size_t>(size));
    RleDecode(frame, UnitBytes(FormatFromGl(header.glFormat)), raster);
    return raster;
}

}  // namespace

StreamMode CTextureDatabase::DetectStreamMode(std::uint32_t index, CacheIndex cache, RecordKind kind)
{
    const TextureEntry& entry = m_pImpl->Resolved(index);
    return DetectMode(m_pImpl->Probe(cache, kind, CImpl::OffsetOf(entry, cache, kind)));
}

StreamMode CTextureDatabase::GameOf(std::uint32_t index, CacheIndex cache)
{
    if (m_pImpl->m_eForced != StreamMode::Auto)
        return m_pImpl->m_eForced;
    const TextureEntry& entry = m_pImpl->Resolved(index);
    const RecordProbe probe = m_pImpl->Probe(cache, RecordKind::Raster, entry.datOffset[SlotOf(cache)]);
    return RasterSize(probe.header) != 0 ? DetectMode(probe) : StreamMode::Auto;
}

std::uint64_t CTextureDatabase::RecordSize(std::uint32_t index, CacheIndex cache, RecordKind kind)
{
    const TextureEntry& entry = m_pImpl->Resolved(index);
    const RecordProbe probe = m_pImpl->Probe(cache, kind, CImpl::OffsetOf(entry, cache, kind));
    return RecordBytes(probe, m_pImpl->ModeOf(probe));
}

std::optional<std::vector<std::byte>> CTextureDatabase::ReadRaster(std::uint32_t index, CacheIndex cache,
                                                                   RecordKind kind)
{
    const TextureEntry& entry = m_pImpl->Resolved(index);
    const RasterHeader& header = CImpl::HeaderOf(entry, cache, kind);
    const std::uint64_t size = RasterSize(header);
    if (size == 0 || size > std::uint64_t{header.width} * header.Height() * 8)
        throw CError(std::wstring(DatabaseText::kWrongSize));
    const std::uint64_t offset = CImpl::OffsetOf(entry, cache, kind);
    if (offset == kNone)
        throw CError(std::wstring(DatabaseText::kWrongOffset));
    const IFile* const file = m_pImpl->FileOf(cache, kind);
    if (file == nullptr)
        return std::nullopt;
    const RecordProbe probe = m_pImpl->Probe(cache, kind, static_cast<std::uint32_t>(offset));
    if (m_pImpl->ModeOf(probe) == StreamMode::Framed)
        return ReadFramed(*file, offset, probe, header);
    return ReadPart(*file, offset + kHeaderBytes, size);
}

RasterHeader CTextureDatabase::ReadHeader(std::uint32_t index, CacheIndex cache)
{
    if (!IsOpen(cache))
        throw CError(std::wstring(DatabaseText::kNoData));
    const std::uint32_t target = IsAlias(index) ? AliasTarget(index) : index;
    if (target == kNone)
        return {};
    const std::uint32_t offset = m_pImpl->At(target).datOffset[SlotOf(cache)];
    if (offset == kNone)
        return {};
    std::array<std::byte, kHeaderBytes> bytes{};
    const std::size_t count = m_pImpl->Slot(cache).dat->ReadAt(offset, bytes);
    return ReadProbe(std::span(bytes).first(count)).header;
}
