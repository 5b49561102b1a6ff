#include "tools/RadarMapPicture.h"

#include <algorithm>
#include <limits>
#include <new>
#include <string>

#include "image/BitmapTools.h"

namespace {

constexpr std::wstring_view kTooLarge = L"Radar map is too large.";
constexpr std::uint32_t kPercent = 100;

struct Place {
    std::uint32_t x;
    std::uint32_t y;
};

// `part` lies within the picture.
void CopyInto(CBitmap& picture, const CBitmap& part, Place place)
{
    const auto pixels = picture.Pixels();
    for (std::uint32_t y = 0; y < part.Height(); ++y) {
        const auto row = part.Row(y);
        const std::size_t at = (std::size_t{place.y + y} * picture.Width() + place.x) * 4;
        std::ranges::copy(row, pixels.subspan(at, row.size()).begin());
    }
}

// A picture of more than 32 bits a side is refused below as well, whatever its size is taken for.
std::uint32_t SideOfMap(std::uint32_t tiles, std::uint32_t tile)
{
    const std::uint64_t side = std::uint64_t{tiles} * tile;
    return static_cast<std::uint32_t>(
        std::min<std::uint64_t>(side, std::numeric_limits<std::uint32_t>::max()));
}

}  // namespace

std::optional<RadarMapPlan> PlanRadarMap(CTextureDatabase& database, CacheIndex cache)
{
    const std::uint32_t count = CountRadarTiles(database);
    if (count == 0)
        return std::nullopt;
    RadarMapPlan plan;
    plan.cache = cache;
    for (std::uint32_t number = 0; number < count; ++number)
        plan.tiles.push_back(FindRadarTile(database, number).value());
    const TextureEntry& first = database.ResolvedEntry(plan.tiles.front());
    const RasterHeader& header = first.rasterHeader[SlotOf(cache)];
    if (first.datOffset[SlotOf(cache)] == kNone || header.width == 0 || header.Height() == 0)
        return std::nullopt;
    plan.tileWidth = header.width;
    plan.tileHeight = header.Height();
    return plan;
}

std::optional<CBitmap> JoinRadarMap(const RadarMapPlan& plan, IEditorHost& host, IProgress& progress)
{
    const auto count = static_cast<std::uint32_t>(plan.tiles.size());
    const std::uint32_t side = RadarGridSide(count);
    auto map = CBitmap::Create(SideOfMap(side, plan.tileWidth), SideOfMap(side, plan.tileHeight));
    if (!map)
        throw CError(std::wstring(kTooLarge));
    for (std::uint32_t number = 0; number < count; ++number) {
        progress.Report(number * kPercent / count, kPercent, RadarTileName(number));
        if (progress.Cancelled())
            return std::nullopt;
        const auto tile = host.Decode(plan.tiles[number], plan.cache);
        if (!tile)
            continue;
        const Place place = {number % side * plan.tileWidth, number / side * plan.tileHeight};
        if (tile->Width() == plan.tileWidth && tile->Height() == plan.tileHeight)
            CopyInto(*map, *tile, place);
        else if (const auto scaled = ScaleBitmap(*tile, plan.tileWidth, plan.tileHeight))
            CopyInto(*map, *scaled, place);
    }
    return map;
}

CBitmap CutRadarTile(const CBitmap& picture, std::uint32_t number, std::uint32_t gridSide)
{
    const std::uint32_t width = picture.Width() / gridSide;
    auto tile = CBitmap::Create(width, picture.Height() / gridSide);
    if (!tile)
        throw std::bad_alloc();
    const std::size_t left = std::size_t{number % gridSide} * width * 4;
    const std::uint32_t top = number / gridSide * tile->Height();
    const std::size_t rowBytes = std::size_t{width} * 4;
    for (std::uint32_t y = 0; y < tile->Height(); ++y)
        std::ranges::copy(picture.Row(top + y).subspan(left, rowBytes),
                          tile->Pixels().subspan(y * rowBytes, rowBytes).begin());
    return std::move(*tile);
}
