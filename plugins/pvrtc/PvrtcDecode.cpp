#include "plugins/pvrtc/PvrtcDecode.h"

#include <algorithm>
#include <vector>

#include "plugins/pvrtc/FitKernels.h"
#include "plugins/pvrtc/Modulation.h"

namespace Pvrtc {
namespace {
constexpr std::size_t kColumnShorts = 16;

// All endpoints as DecodedRow wants them, a column more on both sides: a level wraps.
class CDecodeEndpoints {
public:
    explicit CDecodeEndpoints(const BlockGrid& grid)
        : m_oGrid(grid), m_aShorts((std::size_t{grid.columns} + 2) * grid.rows * kColumnShorts)
    {
    }

    void Set(std::uint32_t column, std::uint32_t row, const EndpointPair& pair)
    {
        Put(column + 1, row, pair);
        if (column == 0)
            Put(m_oGrid.columns + 1, row, pair);
        if (column + 1 == m_oGrid.columns)
            Put(0, row, pair);
    }

    const std::int16_t* Row(std::size_t row) const
    {
        return m_aShorts.data() + (row & (m_oGrid.rows - 1)) * (m_oGrid.columns + 2) * kColumnShorts;
    }

private:
    void Put(std::size_t column, std::size_t row, const EndpointPair& pair)
    {
        std::int16_t* const out = m_aShorts.data() + (row * (m_oGrid.columns + 2) + column) * kColumnShorts;
        std::copy(pair.begin(), pair.end(), out);
        std::copy(pair.begin(), pair.end(), out + pair.size());
    }

    BlockGrid m_oGrid;
    std::vector<std::int16_t> m_aShorts;
};

void DecodeRows(const ModulationMap& map, const CDecodeEndpoints& endpoints, const FitKernels& kernels,
                std::uint8_t* destination)
{
    const BlockGrid& grid = map.grid;
    const std::size_t rowBytes = std::size_t{grid.width} * kPixelBytes;
    // Blocks may stick out of a level smaller than 2 x 2 blocks; what sticks out is not written.
    std::vector<std::uint8_t> whole(grid.width == grid.PaddedWidth() ? 0 : grid.PaddedWidth() * kPixelBytes);
    for (std::size_t y = 0; y < grid.height; ++y) {
        // A row of pixels lies between the middles of two rows of blocks.
        const std::size_t upper = (y + kBlockHeight / 2) / kBlockHeight + grid.rows - 1;
        const DecodedRow row{grid.blockWidth,
                             grid.columns,
                             endpoints.Row(upper),
                             endpoints.Row(upper + 1),
                             static_cast<int>((y + kBlockHeight / 2) % kBlockHeight),
                             map.weights.data() + y * grid.PaddedWidth()};
        std::uint8_t* const out = destination + y * rowBytes;
        kernels.decodeRow(row, whole.empty() ? out : whole.data());
        if (!whole.empty())
            std::copy_n(whole.data(), rowBytes, out);
    }
}
}  // namespace

std::uint64_t PvrtcLevelBytes(std::uint32_t width, std::uint32_t height, std::uint32_t bitsPerPixel)
{
    const auto grid = GridOf(width, height, bitsPerPixel);
    return grid ? std::uint64_t{grid->Blocks()} * kBlockBytes : 0;
}

std::uint32_t PvrtcDecode(const std::uint8_t* source, std::uint8_t* destination, std::uint32_t width,
                          std::uint32_t height, std::uint32_t bitsPerPixel,
                          std::optional<Plugin::InstructionSet> instructionSet)
{
    const auto grid = GridOf(width, height, bitsPerPixel);
    if (!grid)
        return 0;
    const FitKernels* const kernels =
        FitKernelsFor(instructionSet.value_or(Plugin::PreferredInstructionSet()));
    ModulationMap map(*grid);
    CDecodeEndpoints endpoints(*grid);
    for (std::uint32_t row = 0; row < grid->rows; ++row) {
        for (std::uint32_t column = 0; column < grid->columns; ++column) {
            const BlockWord block = ReadBlock(source + StoredIndex(*grid, column, row) * kBlockBytes);
            endpoints.Set(column, row, UnpackEndpoints(block.colors));
            UnpackModulation(block, column, row, map);
        }
    }
    FillInterpolated(map);
    DecodeRows(map, endpoints, kernels != nullptr ? *kernels : *FitKernels_Portable(), destination);
    return static_cast<std::uint32_t>(std::size_t{width} * height * kPixelBytes);
}

}  // namespace Pvrtc
