#pragma once

// Walks one level for the encoding kernels: hands them rows of whole blocks, fills blocks that stick out of
// the picture, dithers, and shares the rows among threads. Nothing is owned; buffers may have any alignment.

#include <cstddef>
#include <cstdint>

#include "plugins/common/BlockLevel.h"
#include "plugins/common/PluginInfo.h"

namespace Plugin {

/// Encodes `count` whole blocks that lie side by side in four rows of R G B A pixels, `stride` bytes apart.
using EncodeRowFn = void (*)(const std::uint8_t* pixels, std::size_t stride, std::size_t count,
                             std::uint8_t* out);

/// How a level is dithered, see BlockDither.h. With a mode other than None it needs the format's decoder.
struct BlockDithering {
    Dithering mode = Dithering::None;
    DecodeRowFn decodeRow = nullptr;
    /// Fewer than 8: alpha is dithered to so many, pixel by pixel.
    int alphaBits = 8;
    /// The format has alpha, so nobody sees the colour of a pixel whose alpha is 0.
    bool hidesColors = false;
};

struct LevelEncoder {
    EncodeRowFn encodeRow;
    std::size_t blockBytes;
    BlockDithering dithering;
    /// Threads that share the rows, the calling one included.
    unsigned threads;
};

/// Encodes width x height pixels into whole blocks; a block that sticks out repeats the picture's edge
/// pixels. Returns the bytes written, 0 for a size that is refused. Throws std::bad_alloc only with dithering
/// or more than one thread. The number of threads does not change the bytes.
std::uint32_t EncodeLevel(const std::uint8_t* source, std::uint8_t* destination, std::uint32_t width,
                          std::uint32_t height, const LevelEncoder& encoder);

}  // namespace Plugin
