#include "plugins/pvrtc/Modulation.h"

namespace Pvrtc {
namespace {
constexpr std::uint32_t kModeBit = 1;
constexpr std::uint32_t kOneDirection = 1;  // in the modulation word of an interpolated block
constexpr std::uint32_t kVertical = 1u << 20;

std::uint8_t* BlockStart(ModulationMap& map, std::uint32_t column, std::uint32_t row)
{
    return map.weights.data() + std::size_t{row} * kBlockHeight * map.grid.PaddedWidth() +
           std::size_t{column} * map.grid.blockWidth;
}

void UnpackFourBits(BlockWord block, std::uint8_t* out, std::size_t stride, ModulationMode mode)
{
    constexpr std::uint8_t kPunchThroughWeights[4] = {0, 4, kPunchedWeight, 8};
    const std::uint8_t* const weights =
        mode == ModulationMode::PunchThrough ? kPunchThroughWeights : kWeights;
    std::uint32_t bits = block.modulation;
    for (std::uint32_t y = 0; y < kBlockHeight; ++y, out += stride)
        for (std::uint32_t x = 0; x < 4; ++x, bits >>= 2)
            out[x] = weights[bits & 3];
}

void UnpackOneBit(BlockWord block, std::uint8_t* out, std::size_t stride)
{
    std::uint32_t bits = block.modulation;
    for (std::uint32_t y = 0; y < kBlockHeight; ++y, out += stride)
        for (std::uint32_t x = 0; x < 8; ++x, bits >>= 1)
            out[x] = (bits & 1) != 0 ? 8 : 0;
}

ModulationMode InterpolatedMode(std::uint32_t modulation)
{
    if ((modulation & kOneDirection) == 0)
        return ModulationMode::InterpolateBoth;
    return (modulation & kVertical) != 0 ? ModulationMode::InterpolateVertical
                                         : ModulationMode::InterpolateHorizontal;
}

void UnpackInterpolated(BlockWord block, std::uint8_t* out, std::size_t stride, ModulationMode mode)
{
    std::uint32_t bits = block.modulation;
    for (std::uint32_t y = 0; y < kBlockHeight; ++y, out += stride) {
        for (std::uint32_t x = 0; x < 8; ++x) {
            if (!IsStored(x, y))
                continue;
            // The upper of the two bits is the value of a pixel that has only one.
            out[x] = IsOneBit(mode, x, y) ? ((bits & 2) != 0 ? 8 : 0) : kWeights[bits & 3];
            bits >>= 2;
        }
    }
}

std::uint8_t Interpolated(const ModulationMap& map, std::size_t x, std::size_t y, ModulationMode mode)
{
    const std::size_t width = map.grid.PaddedWidth();
    const std::size_t height = map.grid.PaddedHeight();
    const auto at = [&](std::size_t column, std::size_t row) {
        return unsigned{map.weights[(row & (height - 1)) * width + (column & (width - 1))]};
    };
    // Unsigned wrap-around followed by the mask is the wrap at the level's edges.
    if (mode == ModulationMode::InterpolateHorizontal)
        return static_cast<std::uint8_t>((at(x - 1, y) + at(x + 1, y) + 1) / 2);
    if (mode == ModulationMode::InterpolateVertical)
        return static_cast<std::uint8_t>((at(x, y - 1) + at(x, y + 1) + 1) / 2);
    return static_cast<std::uint8_t>((at(x - 1, y) + at(x + 1, y) + at(x, y - 1) + at(x, y + 1) + 2) / 4);
}

std::uint32_t CodeOf(std::uint8_t weight)
{
    switch (weight) {
        case 0:
            return 0;
        case 3:
        case 4:
            return 1;
        case 8:
            return 3;
        default:  // 5, or punched through
            return 2;
    }
}

std::uint32_t PackFourBits(const std::uint8_t* in, std::size_t stride)
{
    std::uint32_t bits = 0;
    for (std::uint32_t y = 0; y < kBlockHeight; ++y, in += stride)
        for (std::uint32_t x = 0; x < 4; ++x)
            bits |= CodeOf(in[x]) << (2 * (4 * y + x));
    return bits;
}

std::uint32_t PackOneBit(const std::uint8_t* in, std::size_t stride)
{
    std::uint32_t bits = 0;
    for (std::uint32_t y = 0; y < kBlockHeight; ++y, in += stride)
        for (std::uint32_t x = 0; x < 8; ++x)
            bits |= (in[x] >= 4 ? 1u : 0u) << (8 * y + x);
    return bits;
}

std::uint32_t PackInterpolated(const std::uint8_t* in, std::size_t stride, ModulationMode mode)
{
    std::uint32_t bits = 0;
    unsigned shift = 0;
    for (std::uint32_t y = 0; y < kBlockHeight; ++y, in += stride) {
        for (std::uint32_t x = 0; x < 8; ++x) {
            if (!IsStored(x, y))
                continue;
            // The lower bit of a pixel that has only one belongs to the mode.
            bits |= (CodeOf(in[x]) & (IsOneBit(mode, x, y) ? 2u : 3u)) << shift;
            shift += 2;
        }
    }
    if (mode != ModulationMode::InterpolateBoth)
        bits |= kOneDirection;
    if (mode == ModulationMode::InterpolateVertical)
        bits |= kVertical;
    return bits;
}
}  // namespace

ModulationMap::ModulationMap(const BlockGrid& levelGrid)
    : grid(levelGrid),
      weights(levelGrid.PaddedWidth() * levelGrid.PaddedHeight()),
      modes(levelGrid.Blocks(), ModulationMode::Plain)
{
}

void UnpackModulation(BlockWord block, std::uint32_t column, std::uint32_t row, ModulationMap& map)
{
    const bool flagged = (block.colors & kModeBit) != 0;
    const std::size_t stride = map.grid.PaddedWidth();
    std::uint8_t* const out = BlockStart(map, column, row);
    ModulationMode mode = ModulationMode::Plain;
    if (map.grid.blockWidth == 4) {
        mode = flagged ? ModulationMode::PunchThrough : ModulationMode::Plain;
        UnpackFourBits(block, out, stride, mode);
    } else if (flagged) {
        mode = InterpolatedMode(block.modulation);
        UnpackInterpolated(block, out, stride, mode);
    } else {
        UnpackOneBit(block, out, stride);
    }
    map.modes[std::size_t{row} * map.grid.columns + column] = mode;
}

void FillInterpolated(ModulationMap& map)
{
    const std::size_t width = map.grid.PaddedWidth();
    const std::size_t blockWidth = map.grid.blockWidth;
    for (std::size_t block = 0; block < map.modes.size(); ++block) {
        const ModulationMode mode = map.modes[block];
        if (!IsInterpolated(mode))
            continue;
        const std::size_t left = block % map.grid.columns * blockWidth;
        const std::size_t top = block / map.grid.columns * kBlockHeight;
        // All neighbours of a pixel that is not stored are stored ones, so the order does not matter.
        for (std::size_t y = top; y < top + kBlockHeight; ++y)
            for (std::size_t x = left + (IsStored(left, y) ? 1 : 0); x < left + blockWidth; x += 2)
                map.weights[y * width + x] = Interpolated(map, x, y, mode);
    }
}

BlockWord PackModulation(const ModulationMap& map, std::uint32_t column, std::uint32_t row)
{
    const std::size_t stride = map.grid.PaddedWidth();
    const std::uint8_t* const in = map.weights.data() + std::size_t{row} * kBlockHeight * stride +
                                   std::size_t{column} * map.grid.blockWidth;
    const ModulationMode mode = map.modes[std::size_t{row} * map.grid.columns + column];
    const std::uint32_t modeBit = mode == ModulationMode::Plain ? 0 : kModeBit;
    if (map.grid.blockWidth == 4)
        return {PackFourBits(in, stride), modeBit};
    if (IsInterpolated(mode))
        return {PackInterpolated(in, stride, mode), modeBit};
    return {PackOneBit(in, stride), modeBit};
}

}  // namespace Pvrtc
