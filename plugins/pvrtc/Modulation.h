#pragma once

// The full-resolution part of PVRTC1: the weight of colour B at every pixel of a level, and how the 32
// modulation bits of a block stand for it. A ModulationMap owns its weights; decoder and encoder share it.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "plugins/pvrtc/PvrtcBlock.h"

namespace Pvrtc {

enum class ModulationMode : std::uint8_t {
    Plain,            ///< 4 bits per pixel: weights 0, 3, 5, 8. 2 bits per pixel: weights 0 and 8
    PunchThrough,     ///< 4 bits per pixel only: weights 0, 4, 4 with alpha 0, 8
    InterpolateBoth,  ///< 2 bits per pixel only: every second pixel is stored with weights 0, 3, 5, 8, the
                      ///< ...
    InterpolateHorizontal,  ///< ... others are the mean of their stored neighbours: all four, the two beside
                            ///< ...
    InterpolateVertical,    ///< ... them, or the two above and below them
};

/// Stands for weight 4 with alpha 0.
inline constexpr std::uint8_t kPunchedWeight = 9;
inline constexpr int kWeightScale = 8;

/// The four weights of two stored bits.
inline constexpr std::uint8_t kWeights[4] = {0, 3, 5, 8};

/// Weights and modes of a whole level, padding included.
struct ModulationMap {
    /// All weights 0, all modes Plain.
    explicit ModulationMap(const BlockGrid& levelGrid);

    BlockGrid grid;
    std::vector<std::uint8_t> weights;  ///< PaddedWidth * PaddedHeight, rows top to bottom
    std::vector<ModulationMode> modes;  ///< one a block, rows top to bottom
};

constexpr bool IsInterpolated(ModulationMode mode)
{
    return mode >= ModulationMode::InterpolateBoth;
}

/// True for the pixels whose weight an interpolated block stores. Blocks have even sides, so the coordinates
/// may be relative to the block or to the level.
constexpr bool IsStored(std::size_t x, std::size_t y)
{
    return ((x ^ y) & 1) == 0;
}

/// In an interpolated block two pixels have one bit instead of two, because bits 0 and 20 tell the mode:
/// their weight is 0 or 8. The coordinates are relative to the block.
constexpr bool IsOneBit(ModulationMode mode, std::size_t x, std::size_t y)
{
    return (x == 0 && y == 0) || (mode != ModulationMode::InterpolateBoth && x == 4 && y == 2);
}

/// Takes the mode and the stored weights of one block from its word.
void UnpackModulation(BlockWord block, std::uint32_t column, std::uint32_t row, ModulationMap& map);

/// Computes the weights that interpolated blocks do not store, after every block was unpacked or chosen.
void FillInterpolated(ModulationMap& map);

/// The modulation bits of one block, and bit 0 of its colour word.
BlockWord PackModulation(const ModulationMap& map, std::uint32_t column, std::uint32_t row);

}  // namespace Pvrtc
