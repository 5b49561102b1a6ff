#pragma once

// Signs with lettering: painted boards, neon, posters, and road signs on a transparent ground.

#include <cstdint>
#include <string_view>

#include "demo/Canvas.h"

namespace Demo {

struct BoardStyle {
    Color ground;
    Color letters;
    std::string_view text;
    std::string_view second;  ///< a smaller line below; may be empty
    double age = 0.3;
    std::uint32_t seed = 1;
};

CCanvas DrawBoard(int width, int height, const BoardStyle& style);
/// Glowing tubes on a dark wall; switched off by day.
CCanvas DrawNeon(int width, int height, std::string_view text, const Color& glow, bool isOn,
                 std::uint32_t seed);
/// A poster: a sunset over hills with a title.
CCanvas DrawBillboard(int width, int height, std::string_view text, std::string_view second, const Color& sky,
                      std::uint32_t seed);

enum class RoadSign { Stop, Yield, SpeedLimit, NoEntry, Parking, Warning, OneWay, Street };
/// With alpha.
CCanvas DrawRoadSign(int width, int height, RoadSign sign, std::string_view text, std::uint32_t seed);

}  // namespace Demo
