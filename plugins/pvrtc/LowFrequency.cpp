#include "plugins/pvrtc/LowFrequency.h"

namespace Pvrtc {
namespace {
constexpr std::size_t kChannels = 8;
using Column = std::array<int, kChannels>;

// One row of the three columns of endpoints, enlarged downwards: sums of quarters.
std::array<Column, 3> RowOf(const Neighbourhood& neighbours, std::size_t y)
{
    // An endpoint is exact at the middle pixel of its block, (blockWidth / 2, 2).
    const std::size_t upper = y < 2 ? 0 : 3;
    const int below = static_cast<int>((y + 2) & 3);
    std::array<Column, 3> columns;
    for (std::size_t k = 0; k < columns.size(); ++k) {
        const EndpointPair& top = *neighbours[upper + k];
        const EndpointPair& bottom = *neighbours[upper + 3 + k];
        for (std::size_t c = 0; c < kChannels; ++c)
            columns[k][c] = top[c] * (4 - below) + bottom[c] * below;
    }
    return columns;
}

// Replicates bits from the top: five-bit colours and four-bit alpha, with their fraction bits, to eight bits.
template <int BlockWidth>
void WriteEightBits(const Column& sums, std::array<std::int16_t, kChannels>& out)
{
    // Sums carry 4 fraction bits with blocks of 4 x 4 pixels and 5 with 8 x 4.
    constexpr int kColorShift = BlockWidth == 4 ? 1 : 2;
    constexpr int kAlphaShift = BlockWidth == 4 ? 0 : 1;
    for (std::size_t c = 0; c < kChannels; ++c) {
        const int color = (sums[c] >> kColorShift) + (sums[c] >> (kColorShift + 5));
        const int alpha = (sums[c] >> kAlphaShift) + (sums[c] >> (kAlphaShift + 4));
        out[c] = static_cast<std::int16_t>((c & 3) == 3 ? alpha : color);
    }
}

template <int BlockWidth>
void Enlarge(const Neighbourhood& neighbours, BlockColors& out)
{
    constexpr int kHalf = BlockWidth / 2;
    for (std::size_t y = 0; y < kBlockHeight; ++y) {
        const std::array<Column, 3> columns = RowOf(neighbours, y);
        for (int x = 0; x < BlockWidth; ++x) {
            const Column& left = columns[x < kHalf ? 0 : 1];
            const Column& right = columns[x < kHalf ? 1 : 2];
            const int toRight = (x + kHalf) % BlockWidth;
            Column sums;
            for (std::size_t c = 0; c < kChannels; ++c)
                sums[c] = left[c] * (BlockWidth - toRight) + right[c] * toRight;
            WriteEightBits<BlockWidth>(sums, out[y * BlockWidth + static_cast<std::size_t>(x)]);
        }
    }
}
}  // namespace

Neighbourhood NeighboursOf(const EndpointPair* endpoints, const BlockGrid& grid, std::uint32_t column,
                           std::uint32_t row)
{
    Neighbourhood neighbours{};
    std::size_t i = 0;
    for (const std::uint32_t y : {row + grid.rows - 1, row, row + 1}) {
        const EndpointPair* const line = endpoints + std::size_t{y & (grid.rows - 1)} * grid.columns;
        for (const std::uint32_t x : {column + grid.columns - 1, column, column + 1})
            neighbours[i++] = line + (x & (grid.columns - 1));
    }
    return neighbours;
}

void EnlargeBlock_Portable(const Neighbourhood& neighbours, std::uint32_t blockWidth, BlockColors& out)
{
    if (blockWidth == 4)
        Enlarge<4>(neighbours, out);
    else
        Enlarge<8>(neighbours, out);
}

EnlargeBlockFn EnlargeBlock()
{
    return EnlargeBlock_Portable;
}

}  // namespace Pvrtc
