#pragma once

// The kernel of the decoder: one row of pixels, two at a time, each with colour A and B in eight lanes.
// Included once by the kernels of every instruction set, after its lanes.

#include "plugins/pvrtc/FitKernels.h"
#include "plugins/pvrtc/PixelKernels.h"

namespace {

// Eighths of A, then of B, for R G B A: weights 0 to 8, then a punched-through pixel.
constexpr std::int16_t kShares[10][8] = {
    {8, 8, 8, 8, 0, 0, 0, 0}, {7, 7, 7, 7, 1, 1, 1, 1}, {6, 6, 6, 6, 2, 2, 2, 2}, {5, 5, 5, 5, 3, 3, 3, 3},
    {4, 4, 4, 4, 4, 4, 4, 4}, {3, 3, 3, 3, 5, 5, 5, 5}, {2, 2, 2, 2, 6, 6, 6, 6}, {1, 1, 1, 1, 7, 7, 7, 7},
    {0, 0, 0, 0, 8, 8, 8, 8}, {4, 4, 4, 0, 4, 4, 4, 0}};
constexpr std::int16_t kAlphaLanes[16] = {0, 0, 0, -1, 0, 0, 0, -1, 0, 0, 0, -1, 0, 0, 0, -1};
constexpr std::int16_t kSecondPixel[16] = {0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 1};

template <int Width>
inline void DecodeHalf(CShorts left, CShorts right, int firstPhase, const std::uint8_t* weights,
                       std::uint8_t* out)
{
    const CShorts alphaLanes = CShorts::Load(kAlphaLanes);
    const CShorts step = right - left;
    CShorts sum = ShiftLeft < Width == 8
                      ? 3
                      : 2 > (left) + step * CShorts::All(firstPhase) + step * CShorts::Load(kSecondPixel);
    for (int x = 0; x < Width / 2; x += 2) {
        const CShorts colors = Select(alphaLanes, EightBits<Width, true>(sum), EightBits<Width, false>(sum));
        const CShorts shares = LoadTwo(kShares[weights[x]], kShares[weights[x + 1]]);
        StoreTwoPixels(colors * shares, out + x * 4);
        sum = sum + ShiftLeft<1>(step);
    }
}

template <int Width>
inline void DecodeRowAs(const std::int16_t* top, const std::int16_t* bottom, std::size_t columns,
                        int toBottom, const std::uint8_t* weights, std::uint8_t* out)
{
    const CShorts ofTop = CShorts::All(4 - toBottom);
    const CShorts ofBottom = CShorts::All(toBottom);
    const auto columnAt = [&](std::size_t column) {
        return CShorts::Load(top + column * 16) * ofTop + CShorts::Load(bottom + column * 16) * ofBottom;
    };
    CShorts left = columnAt(0);
    CShorts middle = columnAt(1);
    for (std::size_t column = 0; column < columns; ++column) {
        const CShorts right = columnAt(column + 2);
        DecodeHalf<Width>(left, middle, Width / 2, weights, out);
        DecodeHalf<Width>(middle, right, 0, weights + Width / 2, out + Width * 2);
        left = middle;
        middle = right;
        weights += Width;
        out += Width * 4;
    }
}

void DecodeRow(const Pvrtc::DecodedRow& row, std::uint8_t* out)
{
    if (row.blockWidth == 4)
        DecodeRowAs<4>(row.top, row.bottom, row.columns, row.toBottom, row.weights, out);
    else
        DecodeRowAs<8>(row.top, row.bottom, row.columns, row.toBottom, row.weights, out);
}

}  // namespace
