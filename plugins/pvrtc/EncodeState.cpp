#include "plugins/pvrtc/EncodeState.h"

#include <algorithm>

namespace Pvrtc {

EncodeState::EncodeState(const BlockGrid& levelGrid, const std::uint8_t* pixels, bool withAlpha)
    : grid(levelGrid),
      hasAlpha(withAlpha),
      target(levelGrid.PaddedWidth() * levelGrid.PaddedHeight() * kPixelBytes),
      importance(levelGrid.PaddedWidth() * levelGrid.PaddedHeight()),
      endpoints(levelGrid.Blocks()),
      modulation(levelGrid),
      residual(levelGrid.PaddedWidth() * levelGrid.PaddedHeight() * 4)
{
    for (std::size_t y = 0; y < grid.height; ++y) {
        const std::uint8_t* const source = pixels + y * grid.width * kPixelBytes;
        const std::size_t start = y * grid.PaddedWidth();
        std::copy_n(source, grid.width * kPixelBytes, target.data() + start * kPixelBytes);
        for (std::size_t x = 0; x < grid.width; ++x) {
            std::uint8_t& alpha = target[(start + x) * kPixelBytes + 3];
            if (!hasAlpha)
                alpha = 255;
            const std::uint8_t alphaCounts = hasAlpha ? kAlphaCounts : 0;
            importance[start + x] = static_cast<std::uint8_t>(alphaCounts | (alpha != 0 ? kColorCounts : 0));
        }
    }
}

void UpdateResidual(EncodeState& state)
{
    const BlockGrid& grid = state.grid;
    const std::size_t width = grid.PaddedWidth();
    const EnlargeBlockFn enlarge = EnlargeBlock();
    BlockColors colors;
    for (std::uint32_t row = 0; row < grid.rows; ++row) {
        for (std::uint32_t column = 0; column < grid.columns; ++column) {
            enlarge(NeighboursOf(state.endpoints.data(), grid, column, row), grid.blockWidth, colors);
            for (std::size_t i = 0; i < grid.BlockPixels(); ++i) {
                const std::size_t pixel = (std::size_t{row} * kBlockHeight + i / grid.blockWidth) * width +
                                          std::size_t{column} * grid.blockWidth + i % grid.blockWidth;
                const std::uint8_t modulation = state.modulation.weights[pixel];
                const int weight = modulation & kWeightMask;
                const std::uint8_t* const target = state.Target(pixel);
                float* const residual = state.residual.data() + pixel * 4;
                for (std::size_t c = 0; c < 4; ++c) {
                    const int value =
                        (colors[i][c] * (kWeightScale - weight) + colors[i][c + 4] * weight) / kWeightScale;
                    residual[c] = static_cast<float>(target[c] - value);
                }
            }
        }
    }
}

}  // namespace Pvrtc
