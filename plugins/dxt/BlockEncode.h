#pragma once

// Encodes one 4x4 block of pixels: chooses what the block's colour part and alpha part are fitted to, and
// writes the bytes. Pure: the same pixels and options always give the same bytes.

#include <cstdint>

#include "plugins/common/BlockLevel.h"
#include "plugins/dxt/Dxt.h"

namespace Dxt {

/// Writes BlockBytes(variant) bytes to `out`.
void EncodeBlock(const Plugin::BlockPixels& pixels, Variant variant, Plugin::Quality quality,
                 std::uint8_t* out);

}  // namespace Dxt
