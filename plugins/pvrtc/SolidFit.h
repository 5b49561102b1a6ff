#pragma once

// Pictures of one colour, which small levels of a mip chain often are: all blocks alike, chosen by trying.

#include <cstddef>
#include <cstdint>
#include <optional>

#include "plugins/pvrtc/PvrtcBlock.h"

namespace Pvrtc {

/// When everything that counts of the pixels (R G B A) has one value, the block that, everywhere the same,
/// comes nearest to it. Without alpha every pixel counts as opaque.
std::optional<BlockWord> SolidBlock(const std::uint8_t* pixels, std::size_t count, std::uint32_t bitsPerPixel,
                                    bool hasAlpha);

}  // namespace Pvrtc
