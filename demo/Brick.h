#pragma once

// Walls laid of equal pieces: bricks, blocks and tiles.

#include <cstdint>

#include "demo/Canvas.h"

namespace Demo {

struct BrickStyle {
    Color piece;
    Color joint;
    int columns = 4;
    int rows = 8;
    double jointWidth = 2;  ///< pixels
    bool shifted = true;    ///< every second row by half a piece
    double variety = 0.3;   ///< how much the pieces differ in tone
    double roughness = 1;   ///< of the surface; 0 is glazed
    std::uint32_t seed = 1;
};

CCanvas DrawBricks(int width, int height, const BrickStyle& style);

}  // namespace Demo
