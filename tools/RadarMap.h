#pragma once

// The map of the game's radar: a square grid of textures named "radar00", "radar01" and so on, row by row
// from the upper left. Here is what a database says about it.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "database/TextureDatabase.h"

inline constexpr std::wstring_view kNoRadarMap = L"Radar map not found.";

/// "radar00"; from 100 on it has three digits.
std::wstring RadarTileName(std::uint32_t number);
/// The first entry of that name.
std::optional<std::uint32_t> FindRadarTile(const CTextureDatabase& database, std::uint32_t number);
/// How many tiles there are from radar00 on without a gap.
std::uint32_t CountRadarTiles(const CTextureDatabase& database);
/// The smallest grid that has room for `count` tiles.
std::uint32_t RadarGridSide(std::uint32_t count);

/// How a picture becomes a map, which goes by the game of the first texture.
struct RadarLayout {
    std::uint32_t side = 8;
    /// The cache whose encoder is forced on every tile.
    std::optional<CacheIndex> format = std::nullopt;

    std::uint32_t Count() const { return side * side; }
};
RadarLayout RadarLayoutOf(CTextureDatabase& database, CacheIndex cache);

/// What a list of tiles shows of one.
struct RadarTile {
    std::uint32_t index = 0;
    std::wstring name;
    std::uint32_t width = 0;  // in the cache
    std::uint32_t height = 0;
    std::wstring_view format;
    std::wstring aliasOf;  // empty for a tile with pixels of its own

    /// "128 x 128, DXT1".
    std::wstring Info() const;
};
/// `number` must be below the count of tiles.
RadarTile DescribeRadarTile(CTextureDatabase& database, std::uint32_t number, CacheIndex cache);
