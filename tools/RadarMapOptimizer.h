#pragma once

// Makes tiles of the radar map that look alike aliases of one another.

#include <cstdint>

#include "base/Progress.h"
#include "tools/EditorHost.h"
#include "tools/RadarMap.h"

/// Compares every tile with pixels of its own with every other one. The first that looks nearly the same
/// takes its place, also one behind it; a tile that others are aliases of stays. To be called on the
/// database's thread. Returns how many tiles became aliases; none when it was stopped. Throws CError when the
/// files cannot be written.
std::uint32_t OptimizeRadarMap(CTextureDatabase& database, IEditorHost& host, CacheIndex cache,
                               IProgress& progress);
