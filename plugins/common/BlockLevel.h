#pragma once

// The size of a picture level of a format made of 4x4 blocks, and the walk over one that is decoded: rows of
// blocks go to a kernel. All edge handling is here, so that kernels only ever see whole blocks. Nothing is
// owned; buffers may have any alignment.

#include <array>
#include <cstddef>
#include <cstdint>

namespace Plugin {

inline constexpr std::size_t kBlockSide = 4;
inline constexpr std::size_t kPixelBytes = 4;

/// The 16 pixels of a block, R G B A, row by row.
using BlockPixels = std::array<std::uint8_t, kBlockSide * kBlockSide * kPixelBytes>;

/// Turns a row of `count` blocks into four rows of R G B A pixels, `stride` bytes apart, starting at `out`.
using DecodeRowFn = void (*)(const std::uint8_t* blocks, std::size_t count, std::uint8_t* out,
                             std::size_t stride);

/// Bytes of the pixels of a level, or 0 when a side is 0 or the count does not fit the interface's 32 bits.
std::uint32_t PixelBytes(std::uint32_t width, std::uint32_t height);

/// Bytes of a level of whole blocks, at least one; 0 when PixelBytes refuses the level or the count does not
/// fit.
std::uint32_t LevelBytes(std::uint32_t width, std::uint32_t height, std::size_t blockBytes);

/// Decodes a level of ceil(width / 4) * ceil(height / 4) blocks into exactly width * height pixels.
/// Returns the bytes written: PixelBytes(width, height).
std::uint32_t DecodeBlockLevel(const std::uint8_t* source, std::uint8_t* destination, std::uint32_t width,
                               std::uint32_t height, std::size_t blockBytes, DecodeRowFn decodeRow);

}  // namespace Plugin
