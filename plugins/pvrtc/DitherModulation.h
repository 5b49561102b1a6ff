#pragma once

// Dithering of an encoded level. Between two endpoints every pixel has the choice of a few weights; plain
// encoding takes the nearest, dithering takes the one that keeps the mean over a small area right. Endpoints
// stay as they are, so a colour that the level shows exactly stays exact. Works on the caller's buffers.

#include <cstdint>

#include "plugins/pvrtc/PvrtcBlock.h"
#include "plugins/pvrtc/PvrtcEncode.h"

namespace Pvrtc {

/// Chooses the modulation of an encoded level anew, by the options' dithering, which is not None. `source` is
/// the picture, `level` its stored words. Left alone is what would only get noisy: pixels whose weights are
/// far apart or differ in alpha, and punched-through blocks. Throws std::bad_alloc.
void DitherModulation(const BlockGrid& grid, const std::uint8_t* source, std::uint8_t* level,
                      const EncodeOptions& options);

}  // namespace Pvrtc
