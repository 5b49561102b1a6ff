#pragma once

// Metal: sheets, plates, rust, and fences that are holes for the most part.

#include <cstdint>

#include "demo/Canvas.h"

namespace Demo {

CCanvas DrawCorrugated(int width, int height, const Color& color, int waves, double rust, std::uint32_t seed);
CCanvas DrawBrushed(int width, int height, const Color& color, std::uint32_t seed);
CCanvas DrawRust(int size, std::uint32_t seed);
CCanvas DrawTreadPlate(int size, const Color& color, std::uint32_t seed);
/// `panels` plates across and down with rivets along their edges.
CCanvas DrawRivetedPlates(int size, const Color& color, int panels, double rust, std::uint32_t seed);
/// With alpha.
CCanvas DrawChainLink(int size, std::uint32_t seed);
CCanvas DrawGrating(int size, const Color& color, int bars, std::uint32_t seed);
CCanvas DrawRailing(int width, int height, const Color& color, std::uint32_t seed);

}  // namespace Demo
