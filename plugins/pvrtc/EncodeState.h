#pragma once

// What the steps of the encoder share while they fit one level: the picture that is to be met, the endpoints
// and the modulation found so far, and what is still missing at every pixel. Owned by PvrtcEncode for the
// time of one call.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "plugins/pvrtc/LowFrequency.h"
#include "plugins/pvrtc/Modulation.h"
#include "plugins/pvrtc/PvrtcBlock.h"

namespace Pvrtc {

/// What of a pixel counts as an error. Padding counts nothing; neither does the colour of a fully transparent
/// pixel, nor the alpha of a picture without alpha.
inline constexpr std::uint8_t kColorCounts = 1;
inline constexpr std::uint8_t kAlphaCounts = 2;

/// kImportance[what counts][channel]
inline constexpr float kImportance[4][4] = {{0, 0, 0, 0}, {1, 1, 1, 0}, {0, 0, 0, 1}, {1, 1, 1, 1}};

/// 8-bit values per step of an endpoint channel (R, G, B in 31 steps, alpha in 15).
inline constexpr float kChannelStep[4] = {255.0F / 31, 255.0F / 31, 255.0F / 31, 17.0F};

struct EncodeState {
    /// `pixels` is the picture, width * height R G B A. Without alpha every pixel counts as opaque.
    EncodeState(const BlockGrid& levelGrid, const std::uint8_t* pixels, bool withAlpha);

    const std::uint8_t* Target(std::size_t pixel) const { return target.data() + pixel * kPixelBytes; }

    BlockGrid grid;
    bool hasAlpha;
    std::vector<std::uint8_t> target;  ///< R G B A of every pixel of the padded level
    std::vector<std::uint8_t>
        importance;  ///< kColorCounts and kAlphaCounts of every pixel of the padded level
    std::vector<EndpointPair> endpoints;  ///< one a block, rows top to bottom
    ModulationMap modulation;
    std::vector<float> residual;  ///< target minus decoded value, 4 channels a pixel
};

/// Sets the residual of every pixel to what a decoder would leave, exactly.
void UpdateResidual(EncodeState& state);

}  // namespace Pvrtc
