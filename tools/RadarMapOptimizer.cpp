#include "tools/RadarMapOptimizer.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <set>
#include <vector>

namespace {

// Of all channels of all pixels together: a tile that was compressed twice still passes.
constexpr std::uint64_t kLeastDifference = 80;

struct Tile {
    std::uint32_t index = 0;
    std::unique_ptr<CBitmap> picture;  // null for an alias, and for what cannot be decoded
};

/// The sum of ImageDifference without its wrap-around, and no longer than it takes.
bool LookAlike(const CBitmap& a, const CBitmap& b)
{
    if (a.Width() != b.Width() || a.Height() != b.Height())
        return false;
    std::uint64_t difference = 0;
    for (std::uint32_t y = 0; y < a.Height() && difference < kLeastDifference; ++y) {
        const auto first = a.Row(y);
        const auto second = b.Row(y);
        for (std::size_t at = 0; at < first.size(); ++at)
            difference += static_cast<std::uint64_t>(std::abs(int{first[at]} - int{second[at]}));
    }
    return difference < kLeastDifference;
}

std::vector<Tile> DecodeTiles(const CTextureDatabase& database, IEditorHost& host, CacheIndex cache,
                              IProgress& progress)
{
    std::vector<Tile> tiles(CountRadarTiles(database));
    const auto count = static_cast<std::uint32_t>(tiles.size());
    for (std::uint32_t number = 0; number < count && !progress.Cancelled(); ++number) {
        Tile& tile = tiles[number];
        tile.index = FindRadarTile(database, number).value();
        if (database.IsAlias(tile.index))
            continue;
        progress.Report(number, count, RadarTileName(number));
        tile.picture = host.Decode(tile.index, cache);
    }
    return tiles;
}

// Null when there is none. Deliberate: the scan begins at the first tile, so that of two equal tiles the
// earlier one is replaced. RadarMapOptimizer.MakesTheEarlierOfTwoEqualTilesTheAlias pins it.
const Tile* FindTwin(const std::vector<Tile>& tiles, const Tile& tile)
{
    const auto isTwin = [&tile](const Tile& other) {
        return &other != &tile && other.picture && LookAlike(*tile.picture, *other.picture);
    };
    const auto found = std::ranges::find_if(tiles, isTwin);
    return found != tiles.end() ? &*found : nullptr;
}

std::vector<AliasPair> FindPairs(const CTextureDatabase& database, std::vector<Tile>& tiles,
                                 IProgress& progress)
{
    std::vector<AliasPair> pairs;
    std::set<std::uint32_t> kept;
    const auto count = static_cast<std::uint32_t>(tiles.size());
    for (std::uint32_t number = 0; number < count && !progress.Cancelled(); ++number) {
        Tile& tile = tiles[number];
        if (!tile.picture)
            continue;
        progress.Report(number, count, RadarTileName(number));
        if (kept.contains(tile.index) || database.FindAliasOf(tile.index, 0))
            continue;
        const Tile* const twin = FindTwin(tiles, tile);
        if (twin == nullptr)
            continue;
        pairs.push_back({.kept = twin->index, .duplicate = tile.index});
        kept.insert(twin->index);
        tile.picture.reset();  // an alias is nobody's target
    }
    return pairs;
}

}  // namespace

std::uint32_t OptimizeRadarMap(CTextureDatabase& database, IEditorHost& host, CacheIndex cache,
                               IProgress& progress)
{
    auto tiles = DecodeTiles(database, host, cache, progress);
    const auto pairs = FindPairs(database, tiles, progress);
    tiles.clear();
    if (pairs.empty() || progress.Cancelled() || !database.MakeAliases(pairs, progress))
        return 0;
    return static_cast<std::uint32_t>(pairs.size());
}
