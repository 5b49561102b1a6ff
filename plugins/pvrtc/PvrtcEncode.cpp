#include "plugins/pvrtc/PvrtcEncode.h"

#include "plugins/pvrtc/DitherModulation.h"
#include "plugins/pvrtc/FitLevel.h"
#include "plugins/pvrtc/LevelFit.h"
#include "plugins/pvrtc/SolidFit.h"

namespace Pvrtc {
namespace {
// A thread more costs about as long as a third of these pixels take at the fastest level.
constexpr std::uint64_t kPixelsPerThread = std::uint64_t{256} * 128;
// Levels up to this size take no time worth mentioning.
constexpr std::size_t kSmallLevel = std::size_t{32} * 32;

FitEffort EffortOf(const EncodeOptions& options, std::size_t pixels)
{
    const bool fourBits = options.bitsPerPixel == 4;
    switch (pixels <= kSmallLevel ? Plugin::Quality::Best : options.quality) {
        case Plugin::Quality::Fast:
            return {1, 0, true};
        case Plugin::Quality::Normal:
            return !fourBits ? FitEffort{2} : options.alpha ? FitEffort{3} : FitEffort{4};
        case Plugin::Quality::High:
            return fourBits ? FitEffort{6, 2} : FitEffort{6};
        case Plugin::Quality::Best:
            return !fourBits ? FitEffort{16} : options.alpha ? FitEffort{8, 3} : FitEffort{10, 4};
    }
    return {3};
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
    if (const auto solid = SolidBlock(source, grid, options.alpha)) {
        for (std::size_t block = 0; block < grid.Blocks(); ++block)
            WriteBlock(destination + block * kBlockBytes, *solid);
        return;
    }
    const FitKernels& kernels = KernelsFor(options);
    CFitLevel level(grid, source, options.alpha);
    const unsigned members = Plugin::TeamSizeFor(pixels, kPixelsPerThread);
    Plugin::CRowTeam team(options.threads != 0 ? options.threads : members);
    CLevelFit(level, kernels, team).Run(EffortOf(options, pixels), destination);
}
}  // namespace

std::uint32_t PvrtcEncode(const std::uint8_t* source, std::uint8_t* destination, std::uint32_t width,
                          std::uint32_t height, const EncodeOptions& options)
{
    const auto grid = GridOf(width, height, options.bitsPerPixel);
    if (!grid)
        return 0;
    Fit(*grid, source, destination, options);
    if (options.dithering != Plugin::Dithering::None)
        DitherModulation(*grid, source, destination, options);
    return static_cast<std::uint32_t>(grid->Blocks() * kBlockBytes);
}

}  // namespace Pvrtc
