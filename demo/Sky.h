#pragma once

// Light and air: skies, clouds, glows, smoke and shadows.

#include <cstdint>

#include "demo/Canvas.h"

namespace Demo {

/// From `top` to `horizon`, with clouds; `stars` of them by night.
CCanvas DrawSky(int width, int height, const Color& top, const Color& horizon, double clouds, double stars,
                std::uint32_t seed);
/// Plain steps from one colour to another, downwards.
CCanvas DrawRamp(int width, int height, const Color& top, const Color& bottom);

// All of these have alpha.
CCanvas DrawCloud(int width, int height, std::uint32_t seed);
CCanvas DrawGlow(int size, const Color& color, int rays, std::uint32_t seed);
CCanvas DrawSmoke(int size, const Color& color, std::uint32_t seed);
CCanvas DrawShadow(int size, double roundness);
CCanvas DrawRain(int width, int height, std::uint32_t seed);
CCanvas DrawSplash(int size, const Color& color, std::uint32_t seed);

}  // namespace Demo
