#pragma once

// Walks one level for the encoding kernels: hands them rows of whole blocks, fills blocks that stick out of
// the picture, dithers, and shares the rows among threads. Nothing is owned; buffers may have any alignment.

#include <cstddef>
#include <cstdint>
#include <optional>

#include "plugins/common/ErrorDiffusion.h"
namespace Plugin {

/// Encodes `count` whole blocks that lie side by side in four rows of R G B A pixels, `stride` bytes apart.
using EncodeRowFn = void (*)(const std::uint8_t* pixels, std::size_t stride, std::size_t count,
                             std::uint8_t* out);

struct LevelEncoder {
    EncodeRowFn encodeRow;
    std::size_t blockBytes;
    /// When set, the pixels pass through error diffusion to these depths first, on the calling thread.
    std::optional<ChannelBits> dithering;
    /// Threads that share the rows, the calling one included.
    unsigned threads;
};

/// Encodes width x height pixels into whole blocks; a block that sticks out repeats the picture's edge
/// pixels. Returns the bytes written, 0 for a size that is refused. Throws std::bad_alloc only with dithering
/// or more than one thread. The number of threads does not change the bytes.
std::uint32_t EncodeLevel(const std::uint8_t* source, std::uint8_t* destination, std::uint32_t width,
                          std::uint32_t height, const LevelEncoder& encoder);

}  // namespace Plugin
