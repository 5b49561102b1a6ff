#pragma once

// Smooth walls: plaster, concrete, and concrete panels.

#include <cstdint>

#include "demo/Canvas.h"

namespace Demo {

CCanvas DrawPlaster(int width, int height, const Color& color, double age, std::uint32_t seed);
/// Cast concrete; `panels` across and down with joints and tie holes, 0 for one bare wall.
CCanvas DrawConcrete(int width, int height, const Color& color, int panels, std::uint32_t seed);
/// Plaster that came off in places and shows the bricks.
CCanvas DrawPeelingPlaster(int width, int height, const Color& color, std::uint32_t seed);

}  // namespace Demo
