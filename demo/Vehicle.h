#pragma once

// Parts of cars: plates, wheels, lamps, grilles, gauges, and the paint on them.

#include <cstdint>
#include <string_view>

#include "demo/Canvas.h"

namespace Demo {

CCanvas DrawNumberPlate(int width, int height, std::string_view number, const Color& ground,
                        std::uint32_t seed);
/// With alpha: a tyre and a rim with `spokes` spokes.
CCanvas DrawWheel(int size, int spokes, const Color& rim, std::uint32_t seed);
CCanvas DrawTyreTread(int width, int height, std::uint32_t seed);
/// A round lamp behind ribbed glass.
CCanvas DrawLamp(int size, const Color& glass, bool isOn, std::uint32_t seed);
CCanvas DrawGrille(int width, int height, int bars, std::uint32_t seed);
CCanvas DrawGauge(int size, std::string_view unit, double needle, std::uint32_t seed);
CCanvas DrawCamouflage(int size, const Color& ground, const Color& first, const Color& second,
                       std::uint32_t seed);
CCanvas DrawCarPaint(int size, const Color& color, std::uint32_t seed);
/// Squares in two colours between two bands.
CCanvas DrawCheckerBand(int width, int height, const Color& color, std::uint32_t seed);
/// With alpha: a white disc with a number.
CCanvas DrawRoundel(int size, std::string_view number, const Color& rim, std::uint32_t seed);
/// With alpha: flames from left to right.
CCanvas DrawFlames(int width, int height, std::uint32_t seed);
/// With alpha: `count` stripes that taper.
CCanvas DrawStripes(int width, int height, const Color& color, int count);

}  // namespace Demo
