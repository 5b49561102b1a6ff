#include "tools/RadarMap.h"

#include "base/Format.h"
#include "codec/RasterFormat.h"

namespace {

constexpr std::uint32_t kSideOfSanAndreas = 12;

}  // namespace

std::wstring RadarTileName(std::uint32_t number)
{
    return Format(L"radar%02d", number);
}

std::optional<std::uint32_t> FindRadarTile(const CTextureDatabase& database, std::uint32_t number)
{
    return database.FindByName(RadarTileName(number), true);
}

std::uint32_t CountRadarTiles(const CTextureDatabase& database)
{
    std::uint32_t count = 0;
    while (FindRadarTile(database, count))
        ++count;
    return count;
}

std::uint32_t RadarGridSide(std::uint32_t count)
{
    std::uint64_t side = 0;
    while (side * side < count)
        ++side;
    return static_cast<std::uint32_t>(side);
}

RadarLayout RadarLayoutOf(CTextureDatabase& database, CacheIndex cache)
{
    const bool isSanAndreas = database.EntryCount() != 0 && database.GameOf(0, cache) == StreamMode::Framed;
    if (!isSanAndreas)
        return {};
    return {.side = kSideOfSanAndreas, .format = CacheIndex::Unc};
}

std::wstring RadarTile::Info() const
{
    return Format(L"%d x %d, %s", width, height, format);
}

RadarTile DescribeRadarTile(CTextureDatabase& database, std::uint32_t number, CacheIndex cache)
{
    const std::uint32_t index = FindRadarTile(database, number).value();
    const TextureEntry& entry = database.ResolvedEntry(index);
    const RasterHeader& header = entry.rasterHeader[SlotOf(cache)];
    return {.index = index,
            .name = entry.name,
            .width = header.width,
            .height = header.Height(),
            .format = FormatName(FormatFromGl(header.glFormat)),
            .aliasOf = entry.affiliate};
}
