#include "plugins/pvrtc/PvrtcEncode.h"

#include <algorithm>
#include <vector>

#include "plugins/common/ErrorDiffusion.h"
#include "plugins/pvrtc/EndpointFit.h"
#include "plugins/pvrtc/EndpointPolish.h"
#include "plugins/pvrtc/EndpointSeed.h"
#include "plugins/pvrtc/ModulationChoice.h"
#include "plugins/pvrtc/SolidFit.h"

namespace Pvrtc {
namespace {
struct Effort {
    int rounds;           ///< of endpoints and modulation in turn
    std::size_t breadth;  ///< of SolveChannel
    int polishes;         ///< PolishEndpoints and modulation in turn, where that applies
};

Effort EffortOf(Plugin::Quality quality)
{
    switch (quality) {
        case Plugin::Quality::Fast:
            return {2, 1, 0};
        case Plugin::Quality::Normal:
            return {6, 1, 0};
        case Plugin::Quality::High:
            return {10, 1, 1};
        case Plugin::Quality::Best:
            return {20, 2, 4};
    }
    return {6, 1, 0};
}

// Alpha is left alone: noise in it would tear holes into edges that are tested against a threshold.
std::vector<std::uint8_t> Dithered(const std::uint8_t* source, const BlockGrid& grid, bool hasAlpha)
{
    // The depth of an endpoint; the weights between endpoints add finer steps, so this never looks coarser
    // than the format itself.
    constexpr Plugin::ChannelBits kEndpointBits{5, 5, 5, 8};
    const std::size_t rowBytes = grid.width * kPixelBytes;
    std::vector<std::uint8_t> pixels(source, source + rowBytes * grid.height);
    // Invisible colours must not spread into visible ones.
    for (std::size_t i = 0; hasAlpha && i < pixels.size(); i += kPixelBytes)
        if (pixels[i + 3] == 0)
            std::fill_n(pixels.begin() + static_cast<std::ptrdiff_t>(i), 3, std::uint8_t{0});
    Plugin::CErrorDiffusion diffusion(grid.width, kEndpointBits);
    for (std::size_t y = 0; y < grid.height; ++y)
        diffusion.NextRow(pixels.data() + y * rowBytes, pixels.data() + y * rowBytes);
    return pixels;
}

void Fit(EncodeState& state, const Effort& effort)
{
    if (FitSolid(state))
        return;
    SeedEndpoints(state);
    ChooseModulation(state, ModulationStart::Fresh);
    for (int round = 0; round < effort.rounds; ++round) {
        SweepEndpoints(state, effort.breadth);
        ChooseModulation(state, ModulationStart::Current);
    }
    for (int polish = 0; polish < effort.polishes && state.grid.blockWidth == 4; ++polish) {
        PolishEndpoints(state);
        ChooseModulation(state, ModulationStart::Current);
    }
}

void Pack(const EncodeState& state, std::uint8_t* destination)
{
    const BlockGrid& grid = state.grid;
    for (std::uint32_t row = 0; row < grid.rows; ++row) {
        for (std::uint32_t column = 0; column < grid.columns; ++column) {
            BlockWord block = PackModulation(state.modulation, column, row);
            block.colors |= PackEndpoints(state.endpoints[std::size_t{row} * grid.columns + column]);
            WriteBlock(destination + StoredIndex(grid, column, row) * kBlockBytes, block);
        }
    }
}
}  // namespace

std::uint32_t PvrtcEncode(const std::uint8_t* source, std::uint8_t* destination, std::uint32_t width,
                          std::uint32_t height, const EncodeOptions& options)
{
    const auto grid = GridOf(width, height, options.bitsPerPixel);
    if (!grid)
        return 0;
    std::vector<std::uint8_t> dithered;
    if (options.dithering) {
        dithered = Dithered(source, *grid, options.alpha);
        source = dithered.data();
    }
    EncodeState state(*grid, source, options.alpha);
    Fit(state, EffortOf(options.quality));
    Pack(state, destination);
    return static_cast<std::uint32_t>(grid->Blocks() * kBlockBytes);
}

}  // namespace Pvrtc
