#pragma once

// The headers of a BMP file: where its pixels lie and how they are stored. Pure reading; no pixel is touched.

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

enum class BmpCompression { None, Rle8, Rle4, BitFields };

struct BmpHeader {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    bool topDown = false;
    std::uint32_t bits = 0;  // per pixel: 1, 4, 8, 16, 24 or 32
    BmpCompression compression = BmpCompression::None;
    std::array<std::uint32_t, 4> masks{};  // red, green, blue, alpha; for 16 and 32 bits
    std::size_t paletteOffset = 0;
    std::size_t paletteEntry = 4;  // bytes: 3 in files of the oldest kind
    std::size_t paletteCount = 0;
    std::size_t pixelOffset = 0;

    /// Bytes of a row, padded to four.
    std::uint64_t Stride() const { return (std::uint64_t{width} * bits + 31) / 32 * 4; }
};

/// Nothing when the bytes are no BMP file of these kinds, or end before the pixels that the header promises.
std::optional<BmpHeader> ReadBmpHeader(std::span<const std::byte> bytes);
