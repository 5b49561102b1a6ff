// 4 bits per pixel: every pixel stands alone, but for the mode of its block.

#include <algorithm>

#include "plugins/pvrtc/ModulationChoice.h"

namespace Pvrtc {
namespace {
constexpr std::size_t kPixels = 16;

struct Choice {
    std::array<std::uint8_t, kPixels> weights;
    int error;
};

int ErrorAt(const std::array<std::int16_t, 8>& colors, const std::uint8_t* target, std::uint8_t importance,
            int weight)
{
    int color = 0;
    for (std::size_t c = 0; c < 3; ++c) {
        const int off =
            (colors[c] * (kWeightScale - weight) + colors[c + 4] * weight) / kWeightScale - target[c];
        color += off * off;
    }
    const int alpha = (colors[3] * (kWeightScale - weight) + colors[7] * weight) / kWeightScale - target[3];
    return ((importance & kColorCounts) != 0 ? color : 0) +
           ((importance & kAlphaCounts) != 0 ? alpha * alpha : 0);
}

int PunchedErrorAt(const std::array<std::int16_t, 8>& colors, const std::uint8_t* target,
                   std::uint8_t importance)
{
    const int alpha = (importance & kAlphaCounts) != 0 ? target[3] * target[3] : 0;
    return ErrorAt(colors, target, importance & kColorCounts, 4) + alpha;
}

struct BlockView {
    const BlockColors& colors;
    std::array<const std::uint8_t*, kPixels> targets;
    std::array<std::uint8_t, kPixels> importance;
};

Choice ChoosePlain(const BlockView& block)
{
    Choice choice{};
    for (std::size_t i = 0; i < kPixels; ++i) {
        int best = ErrorAt(block.colors[i], block.targets[i], block.importance[i], 0);
        for (const std::uint8_t weight : {kWeights[1], kWeights[2], kWeights[3]}) {
            const int error = ErrorAt(block.colors[i], block.targets[i], block.importance[i], weight);
            if (error < best) {
                best = error;
                choice.weights[i] = weight;
            }
        }
        choice.error += best;
    }
    return choice;
}

Choice ChoosePunchThrough(const BlockView& block)
{
    Choice choice{};
    for (std::size_t i = 0; i < kPixels; ++i) {
        choice.weights[i] = 4 | kPunched;
        int best = PunchedErrorAt(block.colors[i], block.targets[i], block.importance[i]);
        for (const std::uint8_t weight : {std::uint8_t{0}, std::uint8_t{4}, std::uint8_t{8}}) {
            const int error = ErrorAt(block.colors[i], block.targets[i], block.importance[i], weight);
            if (error < best) {
                best = error;
                choice.weights[i] = weight;
            }
        }
        choice.error += best;
    }
    return choice;
}

// Punching through pays when a pixel is nearly transparent: half of the smallest translucent alpha.
constexpr std::uint8_t kNearlyTransparent = 17;

bool MayPunchThrough(const BlockView& block)
{
    for (std::size_t i = 0; i < kPixels; ++i)
        if (block.importance[i] != 0 && block.targets[i][3] < kNearlyTransparent)
            return true;
    return false;
}
}  // namespace

void ChooseFourBits(EncodeState& state)
{
    const BlockGrid& grid = state.grid;
    const EnlargeBlockFn enlarge = EnlargeBlock();
    BlockColors colors;
    for (std::uint32_t row = 0; row < grid.rows; ++row) {
        for (std::uint32_t column = 0; column < grid.columns; ++column) {
            enlarge(NeighboursOf(state.endpoints.data(), grid, column, row), grid.blockWidth, colors);
            const std::size_t start =
                std::size_t{row} * kBlockHeight * grid.PaddedWidth() + std::size_t{column} * grid.blockWidth;
            const auto pixelAt = [&](std::size_t i) { return start + i / 4 * grid.PaddedWidth() + i % 4; };
            BlockView block{colors, {}, {}};
            for (std::size_t i = 0; i < kPixels; ++i) {
                block.targets[i] = state.Target(pixelAt(i));
                block.importance[i] = state.importance[pixelAt(i)];
            }
            Choice choice = ChoosePlain(block);
            ModulationMode mode = ModulationMode::Plain;
            if (state.hasAlpha && MayPunchThrough(block)) {
                const Choice punched = ChoosePunchThrough(block);
                if (punched.error < choice.error) {
                    choice = punched;
                    mode = ModulationMode::PunchThrough;
                }
            }
            for (std::size_t i = 0; i < kPixels; ++i)
                state.modulation.weights[pixelAt(i)] = choice.weights[i];
            state.modulation.modes[std::size_t{row} * grid.columns + column] = mode;
        }
    }
}

}  // namespace Pvrtc
