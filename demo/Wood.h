#pragma once

// Wood: planks side by side, and parquet laid in squares.

#include <cstdint>

#include "demo/Canvas.h"

namespace Demo {

struct WoodStyle {
    Color light;
    Color dark;
    int planks = 4;
    bool upright = true;   ///< planks from top to bottom, else from left to right
    double variety = 0.2;  ///< how much the planks differ
    double age = 0.3;      ///< 0 fresh, 1 gray and cracked
    bool nails = false;
    std::uint32_t seed = 1;
};

CCanvas DrawPlanks(int width, int height, const WoodStyle& style);
CCanvas DrawParquet(int size, const WoodStyle& style, int squares);

}  // namespace Demo
