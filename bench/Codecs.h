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
    bool hasAlpha = false;  ///< is measured with pictures that have alpha
    bool onlyPowersOfTwo = false;
    std::function<std::uint64_t(Size)> levelBytes;
    /// R G B A pixels to the encoded level, on so many threads.
    std::function<std::uint32_t(const std::uint8_t*, std::uint8_t*, Size, Plugin::Quality, unsigned)> encode;
    /// The encoded level to R G B A pixels.
    std::function<std::uint32_t(const std::uint8_t*, std::uint8_t*, Size)> decode;
};

/// DXT1, DXT1-A, DXT3, DXT5, ETC1, PVRTC2, PVRTC4, PVRTC4-RGB (no alpha).
std::vector<Codec> BlockCodecs();

inline constexpr Plugin::Quality kLevels[] = {Plugin::Quality::Fast, Plugin::Quality::Normal,
                                              Plugin::Quality::High, Plugin::Quality::Best};

/// "fast", "normal", "high", "best".
std::string QualityText(Plugin::Quality quality);

}  // namespace Bench
