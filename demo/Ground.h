#pragma once

// What lies under the feet: grass, sand, earth, stones, snow, rock and water.

#include <cstdint>

#include "demo/Canvas.h"

namespace Demo {

/// Blades in all directions over a soft ground.
CCanvas DrawGrass(int size, const Color& dark, const Color& light, std::uint32_t seed);
CCanvas DrawSand(int size, const Color& color, double ripples, std::uint32_t seed);
CCanvas DrawEarth(int size, const Color& color, double stones, std::uint32_t seed);
/// Rounded stones, `count` across.
CCanvas DrawCobbles(int size, const Color& color, int count, std::uint32_t seed);
CCanvas DrawRock(int size, const Color& color, std::uint32_t seed);
CCanvas DrawSnow(int size, std::uint32_t seed);
CCanvas DrawWater(int size, const Color& deep, const Color& crest, std::uint32_t seed);
/// One ground that turns into another from left to right.
CCanvas BlendGrounds(const CCanvas& left, const CCanvas& right, std::uint32_t seed);

}  // namespace Demo
