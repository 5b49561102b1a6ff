#pragma once

// Pictures of one colour, which small levels of a mip chain often are: all blocks alike, chosen by trying.

#include <cstdint>
#include <optional>

#include "plugins/pvrtc/PvrtcBlock.h"

namespace Pvrtc {

/// When all width * height pixels (R G B A) are the same, the block that, repeated everywhere, comes nearest
/// to them. Without alpha every pixel counts as opaque.
std::optional<BlockWord> SolidBlock(const std::uint8_t* pixels, const BlockGrid& grid, bool hasAlpha);

}  // namespace Pvrtc
