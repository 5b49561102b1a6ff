#pragma once

// Least squares for the endpoints. Enlarging is linear, so with the modulation held still the error is a
// quadratic function of all endpoints; each reaches the window of pixels around its block (7 x 7 with 4 bits
// per pixel, 15 x 7 with 2). Blocks are solved one after the other against what their neighbours leave,
// directly on the values that can be stored.

#include <array>
#include <cstddef>
#include <cstdint>

#include "plugins/pvrtc/EncodeState.h"

namespace Pvrtc {

/// Sums over the window of one block, per channel: how far changes of A and B carry, and what is missing
/// along them. u is a pixel's share of A, v its share of B.
struct FitSums {
    std::array<float, 4> uu;
    std::array<float, 4> uv;
    std::array<float, 4> vv;
    std::array<float, 4> ur;
    std::array<float, 4> vr;
};

/// Adds up one window row by row, left to right; a faster kernel keeps that order.
using SumWindowFn = void (*)(const EncodeState& state, std::uint32_t column, std::uint32_t row,
                             FitSums& sums);

void SumWindow_Portable(const EncodeState& state, std::uint32_t column, std::uint32_t row, FitSums& sums);

/// The fastest kernel here.
SumWindowFn SumWindow();

/// Solves every block once, in rows. The residual must be exact before; afterwards it is right up to the
/// rounding of the decoder. `breadth` is that of SolveChannel.
void SweepEndpoints(EncodeState& state, std::size_t breadth);

}  // namespace Pvrtc
