#pragma once

// The codecs under measurement as one list: how each format decodes and, where it has an encoder, encodes one
// level.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "plugins/common/PluginInfo.h"

namespace Bench {

/// Width and height in pixels.
struct Size {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
};

struct Codec {
    std::string name;
    bool hasAlpha = false;  ///< keeps at least one bit of it
    bool onlyPowersOfTwo = false;
    std::function<std::uint64_t(Size)> levelBytes;
    /// R G B A pixels to the encoded level.
    std::function<std::uint32_t(const std::uint8_t*, std::uint8_t*, Size, Plugin::Quality)> encode;
    /// The encoded level to R G B A pixels.
    std::function<std::uint32_t(const std::uint8_t*, std::uint8_t*, Size)> decode;
};

/// DXT1, DXT1-A, DXT3, DXT5, ETC1, PVRTC2, PVRTC4.
std::vector<Codec> BlockCodecs();

/// "normal", "fast", "high", "best".
std::string QualityText(Plugin::Quality quality);

}  // namespace Bench
