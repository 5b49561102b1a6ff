#pragma once

// Sums over the pixels of cells, weighted by how near the pixels are to the four corners: of values, and of
// the products of two shares. Included once by the kernels of every instruction set, after its lanes.

#include "plugins/pvrtc/FitKernels.h"

namespace {
// Sums of rows weighted by their nearness to the top, and to the bottom.
inline CInts TowardsTop(const CShorts* rows)
{
    return Products(rows[0], CShorts::All(4), rows[1], CShorts::All(3)) +
           Products(rows[2], CShorts::All(2), rows[3], CShorts::All(1));
}

inline CInts TowardsBottom(const CShorts* rows)
{
    return Products(rows[2], CShorts::All(2), rows[3], CShorts::All(3)) +
           Products(rows[1], CShorts::All(1), rows[1], CShorts::All(0));
}

struct CornerSums {
    CInts corner[4];  // top left, top right, bottom left, bottom right
};

// What is weighted may be -2040 to 2040.
template <int Width>
[[gnu::always_inline]] inline CornerSums TowardsCorners(const CShorts* values)
{
    constexpr int kHalves = Width / 4;
    CShorts plain[kHalves][4];
    CShorts falling[kHalves][4];  // weights 4, 3, 2, 1
    for (int half = 0; half < kHalves; ++half) {
        for (int y = 0; y < 4; ++y) {
            const CShorts* const row = values + y * Width + half * 4;
            CShorts sum = row[0];
            CShorts weighted = row[0];
            for (int x = 1; x < 4; ++x) {
                sum = sum + row[x];
                weighted = weighted + sum;
            }
            plain[half][y] = sum;
            falling[half][y] = weighted;
        }
    }
    CornerSums sums;
    if constexpr (Width == 4) {
        CShorts rising[4];
        for (int y = 0; y < 4; ++y)
            rising[y] = ShiftLeft<2>(plain[0][y]) - falling[0][y];
        sums.corner[0] = TowardsTop(falling[0]);
        sums.corner[1] = TowardsTop(rising);
        sums.corner[2] = TowardsBottom(falling[0]);
        sums.corner[3] = TowardsBottom(rising);
    } else {
        const CInts topPlain = TowardsTop(plain[0]);
        const CInts bottomPlain = TowardsBottom(plain[0]);
        sums.corner[0] = TowardsTop(falling[0]) + ShiftLeft<2>(topPlain) + TowardsTop(falling[1]);
        sums.corner[1] = ShiftLeft<3>(topPlain + TowardsTop(plain[1])) - sums.corner[0];
        sums.corner[2] = TowardsBottom(falling[0]) + ShiftLeft<2>(bottomPlain) + TowardsBottom(falling[1]);
        sums.corner[3] = ShiftLeft<3>(bottomPlain + TowardsBottom(plain[1])) - sums.corner[2];
    }
    return sums;
}

// Products of two shares: left with left, left with right, right with right; each top with top, top with
// bottom, bottom with bottom.
struct SquareSums {
    CInts term[9];
};

// What is weighted may be 0 to 64.
template <int Width>
[[gnu::always_inline]] inline SquareSums OverSquares(const CShorts* values)
{
    CShorts across[3][4];
    for (int y = 0; y < 4; ++y) {
        CShorts sum = values[y * Width];
        CShorts first = CShorts::All(0);
        CShorts second = CShorts::All(0);
        for (int x = 1; x < Width; ++x) {
            const CShorts value = values[y * Width + x];
            sum = sum + value;
            first = first + value * CShorts::All(x);
            second = second + value * CShorts::All(x * x);
        }
        across[0][y] = sum * CShorts::All(Width * Width) - first * CShorts::All(2 * Width) + second;
        across[1][y] = first * CShorts::All(Width) - second;
        across[2][y] = second;
    }
    SquareSums sums;
    for (int i = 0; i < 3; ++i) {
        const CShorts* const rows = across[i];
        sums.term[i * 3] = Products(rows[0], CShorts::All(16), rows[1], CShorts::All(9)) +
                           Products(rows[2], CShorts::All(4), rows[3], CShorts::All(1));
        sums.term[i * 3 + 1] = Products(rows[1], CShorts::All(3), rows[2], CShorts::All(4)) +
                               Products(rows[3], CShorts::All(3), rows[3], CShorts::All(0));
        sums.term[i * 3 + 2] = Products(rows[1], CShorts::All(1), rows[2], CShorts::All(4)) +
                               Products(rows[3], CShorts::All(9), rows[3], CShorts::All(0));
    }
    return sums;
}

}  // namespace
