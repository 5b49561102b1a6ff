#pragma once

// Walks one picture level of a format made of 4x4 blocks: cuts pixels into blocks, and hands rows of blocks
// to a kernel. All edge handling is here, so that kernels only ever see whole blocks. Nothing is owned;
// buffers may have any alignment.

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "plugins/common/ErrorDiffusion.h"

namespace Plugin {

inline constexpr std::size_t kBlockSide = 4;
inline constexpr std::size_t kPixelBytes = 4;

/// The 16 pixels of a block, R G B A, row by row.
using BlockPixels = std::array<std::uint8_t, kBlockSide * kBlockSide * kPixelBytes>;

/// Turns a row of `count` blocks into four rows of R G B A pixels, `stride` bytes apart, starting at `out`.
using DecodeRowFn = void (*)(const std::uint8_t* blocks, std::size_t count, std::uint8_t* out,
                             std::size_t stride);

/// Encodes one block into the bytes at `out`. `option` is the codec's own (variant, quality level).
using EncodeBlockFn = void (*)(const BlockPixels& pixels, std::uint32_t option, std::uint8_t* out);

/// What encodes a level, block by block.
struct BlockEncoder {
    std::size_t blockBytes;
    EncodeBlockFn encode;
    std::uint32_t option;
    /// When set, the pixels pass through error diffusion to these depths first.
    std::optional<ChannelBits> dithering;
};

/// Bytes of the pixels of a level, or 0 when a side is 0 or the count does not fit the interface's 32 bits.
std::uint32_t PixelBytes(std::uint32_t width, std::uint32_t height);

/// Bytes of a level of whole blocks, at least one; 0 when PixelBytes refuses the level or the count does not
/// fit.
std::uint32_t LevelBytes(std::uint32_t width, std::uint32_t height, std::size_t blockBytes);

/// Decodes a level of ceil(width / 4) * ceil(height / 4) blocks into exactly width * height pixels.
/// Returns the bytes written: PixelBytes(width, height).
std::uint32_t DecodeBlockLevel(const std::uint8_t* source, std::uint8_t* destination, std::uint32_t width,
                               std::uint32_t height, std::size_t blockBytes, DecodeRowFn decodeRow);

/// Encodes width x height pixels into whole blocks; a block that sticks out repeats the picture's edge
/// pixels. Returns the bytes written: LevelBytes(width, height, blockBytes). Throws std::bad_alloc only
/// with dithering.
std::uint32_t EncodeBlockLevel(const std::uint8_t* source, std::uint8_t* destination, std::uint32_t width,
                               std::uint32_t height, const BlockEncoder& encoder);

}  // namespace Plugin
