#pragma once

// Doors, gates and shutters, each filling its picture.

#include <cstdint>

#include "demo/Canvas.h"

namespace Demo {

/// A wooden door with sunken panels, two across and `rows` down.
CCanvas DrawPanelDoor(int width, int height, const Color& color, int rows, std::uint32_t seed);
CCanvas DrawSteelDoor(int width, int height, const Color& color, std::uint32_t seed);
/// A glazed shop door in a metal frame.
CCanvas DrawGlassDoor(int width, int height, const Color& frame, std::uint32_t seed);
/// Slats from side to side.
CCanvas DrawShutter(int width, int height, const Color& color, int slats, std::uint32_t seed);
CCanvas DrawGarageDoor(int width, int height, const Color& color, std::uint32_t seed);

}  // namespace Demo
