#pragma once

// Encoding of one PVRTC1 level. Works on the caller's buffers, which it borrows for the call; reentrant. The
// same picture, depth and quality give the same bytes with every compiler, on every platform, with every
// instruction set and any number of threads.

#include <cstdint>
#include <optional>

#include "plugins/common/InstructionSet.h"
#include "plugins/common/PluginInfo.h"

namespace Pvrtc {

struct EncodeOptions {
    std::uint32_t bitsPerPixel = 4;
    /// Without it, every pixel counts as opaque.
    bool alpha = false;
    Plugin::Dithering dithering = Plugin::Dithering::None;
    Plugin::Quality quality = Plugin::Quality::Normal;
    /// 0: as many as are worth their while.
    unsigned threads = 0;
    /// None: the preferred one. One that is not supported stands for the portable one.
    std::optional<Plugin::InstructionSet> instructionSet = std::nullopt;
};

/// Encodes width x height R G B A pixels into the PvrtcLevelBytes bytes at `destination`. Returns their
/// number; 0, with nothing written, for a size that the format cannot hold. Throws std::bad_alloc.
std::uint32_t PvrtcEncode(const std::uint8_t* source, std::uint8_t* destination, std::uint32_t width,
                          std::uint32_t height, const EncodeOptions& options);

}  // namespace Pvrtc
