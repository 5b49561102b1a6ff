#pragma once

// The 64-bit words of PVRTC1: how a level is cut into blocks, in which order the blocks are stored, and how
// the two endpoint colours of a block are packed. Pure functions over values; nothing is owned.

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace Pvrtc {

inline constexpr std::uint32_t kBlockHeight = 4;
inline constexpr std::uint32_t kMaxBlockPixels = 32;
inline constexpr std::size_t kBlockBytes = 8;
inline constexpr std::size_t kPixelBytes = 4;
inline constexpr std::uint32_t kMaxSide = 32768;

/// How one level is cut into blocks. Every count of blocks is a power of two and at least 2, so a level
/// smaller than 2 x 2 blocks is the top left corner of that many; the rest is padding.
struct BlockGrid {
    std::uint32_t width;       ///< of the picture, in pixels
    std::uint32_t height;      ///< of the picture, in pixels
    std::uint32_t blockWidth;  ///< 4 pixels with 4 bits per pixel, 8 with 2
    std::uint32_t columns;     ///< in blocks
    std::uint32_t rows;        ///< in blocks

    std::size_t PaddedWidth() const { return std::size_t{columns} * blockWidth; }
    std::size_t PaddedHeight() const { return std::size_t{rows} * kBlockHeight; }
    std::size_t Blocks() const { return std::size_t{columns} * rows; }
    std::size_t BlockPixels() const { return std::size_t{blockWidth} * kBlockHeight; }
};

/// The grid of a level. None when a side is not a power of two from 1 to kMaxSide, when the pixels would not
/// fit 32 bits of bytes, or when bitsPerPixel is neither 2 nor 4.
std::optional<BlockGrid> GridOf(std::uint32_t width, std::uint32_t height, std::uint32_t bitsPerPixel);

/// Position of a block among the stored words.
std::size_t StoredIndex(const BlockGrid& grid, std::uint32_t column, std::uint32_t row);

struct BlockWord {
    std::uint32_t modulation;
    std::uint32_t colors;
};

/// Little-endian, modulation first.
BlockWord ReadBlock(const std::uint8_t* bytes);
void WriteBlock(std::uint8_t* bytes, BlockWord block);

/// Colour A and colour B of a block: R G B A of A, then R G B A of B. R, G and B are 0 to 31, alpha is 0
/// to 15.
using EndpointPair = std::array<std::int16_t, 8>;

/// Bit 0 of the colour word, the modulation mode, is left out.
EndpointPair UnpackEndpoints(std::uint32_t colors);

/// The inverse for every pair that UnpackEndpoints can give; alpha 15 selects the opaque form. Bit 0 is
/// clear.
std::uint32_t PackEndpoints(const EndpointPair& pair);

}  // namespace Pvrtc
