#include "plugins/pvrtc/PvrtcBlock.h"

#include <algorithm>
#include <bit>

namespace Pvrtc {
namespace {
constexpr std::uint32_t kOpaqueA = 1u << 15;
constexpr std::uint32_t kOpaqueB = 1u << 31;
constexpr std::int16_t kOpaqueAlpha = 15;

std::uint32_t Field(std::uint32_t word, unsigned shift, unsigned bits)
{
    return (word >> shift) & ((1u << bits) - 1u);
}

std::int16_t FromFive(std::uint32_t value)
{
    return static_cast<std::int16_t>(value);
}

std::int16_t FromFour(std::uint32_t value)
{
    return static_cast<std::int16_t>(value << 1 | value >> 3);
}

std::int16_t FromThree(std::uint32_t value)
{
    return static_cast<std::int16_t>(value << 2 | value >> 1);
}

// A three-bit alpha is padded with a zero, not replicated: only an opaque colour reaches 15.
std::int16_t AlphaFromThree(std::uint32_t value)
{
    return static_cast<std::int16_t>(value << 1);
}

std::uint32_t Bits(std::int16_t value)
{
    return static_cast<std::uint32_t>(value);
}
}  // namespace

std::optional<BlockGrid> GridOf(std::uint32_t width, std::uint32_t height, std::uint32_t bitsPerPixel)
{
    if (!std::has_single_bit(width) || !std::has_single_bit(height) || width > kMaxSide || height > kMaxSide)
        return std::nullopt;
    if (bitsPerPixel != 2 && bitsPerPixel != 4)
        return std::nullopt;
    if (std::uint64_t{width} * height * kPixelBytes > UINT32_MAX)
        return std::nullopt;
    const std::uint32_t blockWidth = bitsPerPixel == 2 ? 8 : 4;
    return BlockGrid{width, height, blockWidth, std::max(width / blockWidth, 2u),
                     std::max(height / kBlockHeight, 2u)};
}

std::size_t StoredIndex(const BlockGrid& grid, std::uint32_t column, std::uint32_t row)
{
    const std::uint32_t shorter = std::min(grid.columns, grid.rows);
    std::size_t index = 0;
    unsigned shift = 0;
    for (std::uint32_t mask = 1; mask < shorter; mask <<= 1, ++shift)
        index |= std::size_t{(row & mask) | (column & mask) << 1} << shift;
    // Only the longer side has bits left.
    return index | std::size_t{(column | row) >> shift} << (2 * shift);
}

BlockWord ReadBlock(const std::uint8_t* bytes)
{
    const auto word = [bytes](std::size_t at) {
        return std::uint32_t{bytes[at]} | std::uint32_t{bytes[at + 1]} << 8 |
               std::uint32_t{bytes[at + 2]} << 16 | std::uint32_t{bytes[at + 3]} << 24;
    };
    return {word(0), word(4)};
}

void WriteBlock(std::uint8_t* bytes, BlockWord block)
{
    for (unsigned i = 0; i < 4; ++i) {
        bytes[i] = static_cast<std::uint8_t>(block.modulation >> (8 * i));
        bytes[i + 4] = static_cast<std::uint8_t>(block.colors >> (8 * i));
    }
}

//            opaque                          translucent
//  colour A  15 = 1, R 14-10, G 9-5, B 4-1    15 = 0, A 14-12, R 11-8, G 7-4, B 3-1
//  colour B  31 = 1, R 30-26, G 25-21, B 20-16  31 = 0, A 30-28, R 27-24, G 23-20, B 19-16
EndpointPair UnpackEndpoints(std::uint32_t colors)
{
    EndpointPair pair{};
    if ((colors & kOpaqueA) != 0) {
        pair[0] = FromFive(Field(colors, 10, 5));
        pair[1] = FromFive(Field(colors, 5, 5));
        pair[2] = FromFour(Field(colors, 1, 4));
        pair[3] = kOpaqueAlpha;
    } else {
        pair[0] = FromFour(Field(colors, 8, 4));
        pair[1] = FromFour(Field(colors, 4, 4));
        pair[2] = FromThree(Field(colors, 1, 3));
        pair[3] = AlphaFromThree(Field(colors, 12, 3));
    }
    if ((colors & kOpaqueB) != 0) {
        pair[4] = FromFive(Field(colors, 26, 5));
        pair[5] = FromFive(Field(colors, 21, 5));
        pair[6] = FromFive(Field(colors, 16, 5));
        pair[7] = kOpaqueAlpha;
    } else {
        pair[4] = FromFour(Field(colors, 24, 4));
        pair[5] = FromFour(Field(colors, 20, 4));
        pair[6] = FromFour(Field(colors, 16, 4));
        pair[7] = AlphaFromThree(Field(colors, 28, 3));
    }
    return pair;
}

std::uint32_t PackEndpoints(const EndpointPair& pair)
{
    std::uint32_t colors = 0;
    if (pair[3] == kOpaqueAlpha)
        colors = kOpaqueA | Bits(pair[0]) << 10 | Bits(pair[1]) << 5 | (Bits(pair[2]) >> 1) << 1;
    else
        colors = (Bits(pair[3]) >> 1) << 12 | (Bits(pair[0]) >> 1) << 8 | (Bits(pair[1]) >> 1) << 4 |
                 (Bits(pair[2]) >> 2) << 1;
    if (pair[7] == kOpaqueAlpha)
        colors |= kOpaqueB | Bits(pair[4]) << 26 | Bits(pair[5]) << 21 | Bits(pair[6]) << 16;
    else
        colors |= (Bits(pair[7]) >> 1) << 28 | (Bits(pair[4]) >> 1) << 24 | (Bits(pair[5]) >> 1) << 20 |
                  (Bits(pair[6]) >> 1) << 16;
    return colors;
}

}  // namespace Pvrtc
