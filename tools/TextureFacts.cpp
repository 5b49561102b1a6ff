#include "tools/TextureFacts.h"

#include "base/Format.h"

namespace {
constexpr std::uint64_t kKilobyte = 1024;
constexpr std::uint64_t kMegabyte = 1024 * kKilobyte;
}  // namespace

std::wstring_view GameName(StreamMode game)
{
    switch (game) {
        case StreamMode::Auto:
            return L"(auto)";
        case StreamMode::Raw:
            return L"GTA VC";
        case StreamMode::Framed:
            return L"GTA SA";
    }
    return {};
}

std::wstring IdAndOffsetText(std::uint32_t index, std::uint32_t offset)
{
    return Format(L"ID: %02d, Offset: 0x%X", index, offset);
}

std::wstring RasterSizeText(std::uint64_t bytes)
{
    if (bytes >= kMegabyte)
        return Format(L"%0.3f MB", static_cast<double>(bytes) / static_cast<double>(kMegabyte));
    if (bytes >= kKilobyte)
        return Format(L"%0.3f KB", static_cast<double>(bytes) / static_cast<double>(kKilobyte));
    return Format(L"%d B", bytes);
}

std::wstring DimensionsText(const RasterHeader& header)
{
    return Format(L"%d x %d", header.width, header.Height());
}

std::wstring RenderedText(std::wstring_view name, double seconds)
{
    return Format(L"Texture '%s' rendered within %0.2f seconds.", name.empty() ? L"unnamed" : name, seconds);
}

TextureFacts FactsOf(CTextureDatabase& database, std::uint32_t index, CacheIndex cache, RecordKind kind)
{
    const std::wstring game(GameName(database.GameOf(index, cache)));
    const TextureEntry& entry = database.ResolvedEntry(index);
    const bool isThumbnail = kind == RecordKind::Thumbnail;
    const std::size_t slot = SlotOf(cache);
    const RasterHeader& header = isThumbnail ? entry.thumbHeader[slot] : entry.rasterHeader[slot];
    // The format is that of the raster, also while the thumbnail is shown.
    return {
        .idAndOffset = IdAndOffsetText(index, isThumbnail ? entry.tmbOffset[slot] : entry.datOffset[slot]),
        .size = RasterSizeText(RasterSize(header)),
        .dimensions = DimensionsText(header),
        .game = game,
        .format = std::wstring(FormatName(FormatFromGl(entry.rasterHeader[slot].glFormat)))};
}
