#pragma once

// Rooms: floors, walls, cloth and furniture.

#include <cstdint>

#include "demo/Canvas.h"

namespace Demo {

enum class Pattern { Stripes, Diamonds, Blossoms, Dots };
CCanvas DrawWallpaper(int size, const Color& ground, const Color& print, Pattern pattern, std::uint32_t seed);
CCanvas DrawCarpet(int size, const Color& color, const Color& border, std::uint32_t seed);
/// Squares in two colours with marble veins.
CCanvas DrawTileFloor(int size, const Color& first, const Color& second, int tiles, std::uint32_t seed);
CCanvas DrawMarble(int size, const Color& ground, const Color& vein, std::uint32_t seed);
CCanvas DrawWeave(int size, const Color& first, const Color& second, int threads, std::uint32_t seed);
CCanvas DrawCurtain(int width, int height, const Color& color, int folds, std::uint32_t seed);
CCanvas DrawLeather(int size, const Color& color, std::uint32_t seed);
CCanvas DrawCeiling(int size, std::uint32_t seed);
CCanvas DrawBookshelf(int width, int height, int shelves, std::uint32_t seed);
CCanvas DrawPainting(int width, int height, std::uint32_t seed);
/// Drawers, a radiator or a loudspeaker: a box with a grid of bevelled fronts.
enum class Surface { Wood, Metal };
CCanvas DrawDrawers(int width, int height, const Color& color, Surface surface, int columns, int rows,
                    std::uint32_t seed);

}  // namespace Demo
