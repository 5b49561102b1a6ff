#pragma once

// Roofs: clay tiles, shingles, and flat tar.

#include <cstdint>

#include "demo/Canvas.h"

namespace Demo {

/// Rounded tiles in rows that overlap.
CCanvas DrawRoofTiles(int size, const Color& color, int columns, int rows, std::uint32_t seed);
/// Flat shingles of uneven width.
CCanvas DrawShingles(int size, const Color& color, int columns, int rows, std::uint32_t seed);
/// Tar sheets with seams and gravel.
CCanvas DrawTarRoof(int size, std::uint32_t seed);

}  // namespace Demo
