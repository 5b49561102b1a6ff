#pragma once

// Cuts the picture into cells. Included once by the kernels of every instruction set, after its lanes.

#include "plugins/pvrtc/FitKernels.h"

namespace {
// Cuts a line of pixels, R G B A, into the cells of one line: `pixels` starts with the first pixel of the
// first cell and is as long as all tiles together. `y` is the row within the cells.
template <int Width>
inline void SpreadLineAs(const LevelView& view, const std::uint8_t* pixels, std::size_t row, std::size_t y)
{
    constexpr std::size_t kPixels = Width * 4;
    const std::size_t channels = view.channels;
    for (std::size_t tile = 0; tile < view.tiles; ++tile) {
        for (std::size_t parity = 0; parity < 2; ++parity) {
            std::uint8_t* const target =
                view.target + view.Tile(row, parity, tile) * channels * kPixels * kLanes;
            for (std::size_t x = 0; x < Width; x += 4) {
                const std::uint8_t* const from = pixels + ((tile * kLanes * 2 + parity) * Width + x) * 4;
                std::uint8_t unused[kLanes];
                std::uint8_t* out[16];
                for (std::size_t i = 0; i < 16; ++i) {
                    const std::size_t c = i & 3;
                    out[i] = c < channels ? target + (c * kPixels + y * Width + x + i / 4) * kLanes : unused;
                }
                TransposeBytes(from, std::size_t{Width} * 8, out);
            }
        }
    }
}

void SpreadLine(const LevelView& view, const std::uint8_t* pixels, std::uint32_t row, std::uint32_t y)
{
    if (view.blockWidth == 4)
        SpreadLineAs<4>(view, pixels, row, y);
    else
        SpreadLineAs<8>(view, pixels, row, y);
}

}  // namespace
