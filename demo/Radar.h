#pragma once

// The map of an island that the radar shows: sea, beaches, parks, hills, town blocks, streets, a river, an
// airport.

#include "demo/Canvas.h"

namespace Demo {

inline constexpr int kRadarTilesAcross = 8;
inline constexpr int kRadarTileSize = 64;

/// The whole map, kRadarTilesAcross * kRadarTileSize pixels on a side.
CCanvas DrawIslandMap();
/// Tile 0 is the upper left one; they count from left to right, then down.
CCanvas CutRadarTile(const CCanvas& map, int tile);

}  // namespace Demo
