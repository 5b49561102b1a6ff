#include "plugins/pvrtc/PvrtcEncode.h"

#include <algorithm>
#include <vector>

#include "plugins/common/ErrorDiffusion.h"
#include "plugins/pvrtc/FitLevel.h"
#include "plugins/pvrtc/LevelFit.h"
#include "plugins/pvrtc/SolidFit.h"

namespace Pvrtc {
namespace {
// A thread more takes about as long to start as this many pixels take at the fastest level.
constexpr std::uint64_t kPixelsPerThread = std::uint64_t{128} * 128;

FitEffort EffortOf(const EncodeOptions& options)
{
    const bool fourBits = options.bitsPerPixel == 4;
    switch (options.quality) {
        case Plugin::Quality::Fast:
            return {1, 1, true};
        case Plugin::Quality::Normal:
            return {!fourBits ? 2 : options.alpha ? 4 : 5, 1};
        case Plugin::Quality::High:
            return {10, 1};
        case Plugin::Quality::Best:
            return {fourBits ? 30 : 20, 1};
    }
    return {4, 1};
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

void Pack(const CFitLevel& level, std::uint8_t* destination)
{
    const BlockGrid& grid = level.Grid();
    for (std::uint32_t row = 0; row < grid.rows; ++row)
        for (std::uint32_t column = 0; column < grid.columns; ++column)
            WriteBlock(destination + StoredIndex(grid, column, row) * kBlockBytes, level.WordOf(column, row));
}

const FitKernels& KernelsFor(const EncodeOptions& options)
{
    const FitKernels* const kernels =
        FitKernelsFor(options.instructionSet.value_or(Plugin::PreferredInstructionSet()));
    return kernels != nullptr ? *kernels : *FitKernels_Portable();
}

void Fit(const BlockGrid& grid, const std::uint8_t* source, std::uint8_t* destination,
         const EncodeOptions& options)
{
    const std::size_t pixels = std::size_t{grid.width} * grid.height;
    if (const auto solid = SolidBlock(source, pixels, options.bitsPerPixel, options.alpha)) {
        for (std::size_t block = 0; block < grid.Blocks(); ++block)
            WriteBlock(destination + block * kBlockBytes, *solid);
        return;
    }
    const FitKernels& kernels = KernelsFor(options);
    CFitLevel level(grid, source, options.alpha, kernels);
    const unsigned members = Plugin::TeamSizeFor(pixels, kPixelsPerThread);
    Plugin::CRowTeam team(options.threads != 0 ? options.threads : members);
    CLevelFit(level, kernels, team).Run(EffortOf(options));
    Pack(level, destination);
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
    Fit(*grid, source, destination, options);
    return static_cast<std::uint32_t>(grid->Blocks() * kBlockBytes);
}

}  // namespace Pvrtc
