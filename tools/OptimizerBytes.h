#pragma once

// What the optimizer compares of a texture: the raster as it is stored, or the pixels that it decodes to.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tools/Optimizer.h"

bool IsDecoded(RasterComparison comparison);

/// An ordinary texture with a raster in this cache.
bool HasRasterIn(const CTextureDatabase& database, std::uint32_t index, CacheIndex cache);

/// Empty for aliases, without a raster, and for one that cannot be read or decoded.
std::vector<std::byte> ComparedBytes(CTextureDatabase& database, IEditorHost& host, std::uint32_t index,
                                     CacheIndex cache, bool isDecoded);
