#pragma once

// The radar map as one picture: joined from the tiles of a cache, and cut into tiles.

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "base/Progress.h"
#include "image/Bitmap.h"
#include "tools/EditorHost.h"
#include "tools/RadarMap.h"

inline constexpr std::wstring_view kRadarMapNotSaved = L"Unable to save the radar map.";

/// What joining needs to know of the database, so that it may run on another thread.
struct RadarMapPlan {
    CacheIndex cache = CacheIndex::Dxt;
    std::vector<std::uint32_t> tiles;  // their entries, in order
    std::uint32_t tileWidth = 0;       // of radar00, to which the others are scaled
    std::uint32_t tileHeight = 0;
};
/// Nothing when there is no map, or no raster of radar00 in the cache.
std::optional<RadarMapPlan> PlanRadarMap(CTextureDatabase& database, CacheIndex cache);

/// Every tile in its place; one that cannot be decoded stays transparent. Nothing when it was stopped. Throws
/// CError when the picture would be larger than a bitmap can be.
std::optional<CBitmap> JoinRadarMap(const RadarMapPlan& plan, IEditorHost& host, IProgress& progress);

/// Tile `number` of a picture whose sides `gridSide` divides. Throws std::bad_alloc.
CBitmap CutRadarTile(const CBitmap& picture, std::uint32_t number, std::uint32_t gridSide);
