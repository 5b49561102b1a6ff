#pragma once

// Windows in walls: single ones, whole fronts of them, shop windows; and panes of glass that one sees
// through.

#include <cstdint>

#include "demo/Canvas.h"

namespace Demo {

enum class Hour { Day, Night };

/// One window with a frame, `panes` across and down. By night a lamp may burn behind it.
CCanvas DrawWindow(int width, int height, const Color& frame, int panes, Hour hour, std::uint32_t seed);
/// A front of `columns` x `rows` windows in a wall of one colour.
CCanvas DrawOfficeFront(int width, int height, const Color& wall, int columns, int rows, Hour hour,
                        std::uint32_t seed);
/// Glass from floor to floor with thin bars.
CCanvas DrawGlassFront(int size, const Color& tint, int columns, int rows, Hour hour, std::uint32_t seed);

/// With alpha: tinted glass with a reflection.
CCanvas DrawPane(int width, int height, const Color& tint, double alpha, std::uint32_t seed);
/// With alpha: a hole with cracks around it.
CCanvas DrawBrokenPane(int size, std::uint32_t seed);
/// With alpha: leaded coloured pieces.
CCanvas DrawStainedGlass(int size, int pieces, std::uint32_t seed);

}  // namespace Demo
