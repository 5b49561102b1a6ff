#pragma once

// Encoding of one PVRTC1 level. Works on the caller's buffers, which it borrows for the call; reentrant. The
// same picture and options give the same bytes with every compiler and on every platform.

#include <cstdint>

#include "plugins/common/PluginInfo.h"

namespace Pvrtc {

struct EncodeOptions {
    std::uint32_t bitsPerPixel = 4;
    /// Without it, every pixel counts as opaque.
    bool alpha = false;
    bool dithering = false;
    Plugin::Quality quality = Plugin::Quality::Normal;
};

/// Encodes width x height R G B A pixels into the PvrtcLevelBytes bytes at `destination`. Returns their
/// number; 0, with nothing written, for a size that the format cannot hold. Throws std::bad_alloc.
std::uint32_t PvrtcEncode(const std::uint8_t* source, std::uint8_t* destination, std::uint32_t width,
                          std::uint32_t height, const EncodeOptions& options);

}  // namespace Pvrtc
