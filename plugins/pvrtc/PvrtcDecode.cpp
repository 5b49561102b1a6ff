#include "plugins/pvrtc/PvrtcDecode.h"

#include <algorithm>
#include <vector>

#include "plugins/pvrtc/LowFrequency.h"
#include "plugins/pvrtc/Modulation.h"

namespace Pvrtc {
namespace {
void WritePixel(const std::array<std::int16_t, 8>& colors, std::uint8_t modulation, std::uint8_t* out)
{
    const int weight = modulation & kWeightMask;
    for (std::size_t c = 0; c < kPixelBytes; ++c)
        out[c] = static_cast<std::uint8_t>((colors[c] * (kWeightScale - weight) + colors[c + 4] * weight) /
                                           kWeightScale);
    if ((modulation & kPunched) != 0)
        out[3] = 0;
}

// Blocks may stick out of a level smaller than 2 x 2 blocks; what sticks out is not written.
void WriteBlockPixels(const ModulationMap& map, std::uint32_t column, std::uint32_t row,
                      const BlockColors& colors, std::uint8_t* destination)
{
    const BlockGrid& grid = map.grid;
    const std::size_t left = std::size_t{column} * grid.blockWidth;
    const std::size_t top = std::size_t{row} * kBlockHeight;
    const std::size_t right = std::min<std::size_t>(left + grid.blockWidth, grid.width);
    const std::size_t bottom = std::min<std::size_t>(top + kBlockHeight, grid.height);
    for (std::size_t y = top; y < bottom; ++y)
        for (std::size_t x = left; x < right; ++x)
            WritePixel(colors[(y - top) * grid.blockWidth + (x - left)],
                       map.weights[y * grid.PaddedWidth() + x],
                       destination + (y * grid.width + x) * kPixelBytes);
}
}  // namespace

std::uint64_t PvrtcLevelBytes(std::uint32_t width, std::uint32_t height, std::uint32_t bitsPerPixel)
{
    const auto grid = GridOf(width, height, bitsPerPixel);
    return grid ? std::uint64_t{grid->Blocks()} * kBlockBytes : 0;
}

std::uint32_t PvrtcDecode(const std::uint8_t* source, std::uint8_t* destination, std::uint32_t width,
                          std::uint32_t height, std::uint32_t bitsPerPixel)
{
    const auto grid = GridOf(width, height, bitsPerPixel);
    if (!grid)
        return 0;
    ModulationMap map(*grid);
    std::vector<EndpointPair> endpoints(grid->Blocks());
    for (std::uint32_t row = 0; row < grid->rows; ++row) {
        for (std::uint32_t column = 0; column < grid->columns; ++column) {
            const BlockWord block = ReadBlock(source + StoredIndex(*grid, column, row) * kBlockBytes);
            endpoints[std::size_t{row} * grid->columns + column] = UnpackEndpoints(block.colors);
            UnpackModulation(block, column, row, map);
        }
    }
    FillInterpolated(map);

    const EnlargeBlockFn enlarge = EnlargeBlock();
    BlockColors colors;
    for (std::uint32_t row = 0; row < grid->rows; ++row) {
        for (std::uint32_t column = 0; column < grid->columns; ++column) {
            enlarge(NeighboursOf(endpoints.data(), *grid, column, row), grid->blockWidth, colors);
            WriteBlockPixels(map, column, row, colors, destination);
        }
    }
    return static_cast<std::uint32_t>(std::size_t{width} * height * kPixelBytes);
}

}  // namespace Pvrtc
