#pragma once

// Streets seen from above: asphalt, its markings, kerbs, pavements and rails.

#include <cstdint>

#include "demo/Canvas.h"

namespace Demo {

CCanvas DrawAsphalt(int width, int height, double age, std::uint32_t seed);

enum class Marking { DashedCenter, DoubleCenter, EdgeLines, Crossing, Arrow, StopLine, Parking, Bus };
/// Asphalt with worn paint; the road runs from top to bottom.
CCanvas DrawRoad(int width, int height, Marking marking, std::uint32_t seed);
/// The strip between road (left) and pavement (right).
CCanvas DrawKerb(int width, int height, std::uint32_t seed);
CCanvas DrawManhole(int size, std::uint32_t seed);
CCanvas DrawRails(int width, int height, std::uint32_t seed);
/// A patch of the surface torn open, with transparent surroundings.
CCanvas DrawSkidMarks(int width, int height, std::uint32_t seed);

}  // namespace Demo
