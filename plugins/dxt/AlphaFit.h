#pragma once

// The search for the two alphas and sixteen indices of a DXT5 block. Pure, integers only.

#include <array>
#include <cstdint>

#include "plugins/common/PluginInfo.h"
#include "plugins/dxt/BlockFormat.h"

namespace Dxt {

using AlphaPixels = std::array<int, kBlockPixelCount>;

struct AlphaFit {
    int alpha0 = 0;
    int alpha1 = 0;
    std::array<std::uint8_t, kBlockPixelCount> indices{};
    /// Summed squared difference, as the decoder will show the values.
    int error = 0;
};

/// Fast: the block's range in eight steps. Normal: also six steps with 0 and 255, each refined by least
/// squares. High and Best: also a search around both results, farther at Best.
AlphaFit FitAlphas(const AlphaPixels& alphas, Plugin::Quality quality);

}  // namespace Dxt
