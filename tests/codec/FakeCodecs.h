#pragma once

// Codecs whose output tells how they were called, in place of real ones.

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "plugins/plugin.h"

namespace Fake {

/// Fills the level with the source's first byte, so that the output shows where each level was read.
inline std::uint32_t FirstByte(const void* source, void* destination, std::uint32_t width,
                               std::uint32_t height, std::uint32_t, std::uint32_t)
{
    std::memset(destination, *static_cast<const unsigned char*>(source), std::size_t{width} * height * 4);
    return width * height * 4;
}

/// Writes mode and flags into the first pixel: mode, low byte of the flags, high byte of the flags, 0.
inline std::uint32_t ModeAndFlags(const void*, void* destination, std::uint32_t width, std::uint32_t height,
                                  std::uint32_t mode, std::uint32_t flags)
{
    const unsigned char pixel[4] = {static_cast<unsigned char>(mode), static_cast<unsigned char>(flags),
                                    static_cast<unsigned char>(flags >> 8), 0};
    std::memcpy(destination, pixel, sizeof(pixel));
    return width * height * 4;
}

/// Copies 16-bit pixels, as a decoder of the uncompressed cache does.
inline std::uint32_t CopySixteenBit(const void* source, void* destination, std::uint32_t width,
                                    std::uint32_t height, std::uint32_t, std::uint32_t)
{
    std::memcpy(destination, source, std::size_t{width} * height * 2);
    return width * height * 2;
}

/// Decodes nothing.
inline std::uint32_t Refuse(const void*, void*, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t)
{
    return 0;
}

/// Reads every byte of whole 4x4 blocks of `BlockBytes` bytes, so that a sanitizer sees a read past the
/// raster.
template <std::uint32_t BlockBytes>
std::uint32_t ReadBlocks(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                         std::uint32_t, std::uint32_t)
{
    const std::size_t bytes = std::size_t{(width + 3) / 4} * ((height + 3) / 4) * BlockBytes;
    const auto* const from = static_cast<const unsigned char*>(source);
    unsigned sum = 0;
    for (std::size_t at = 0; at < bytes; ++at)
        sum += from[at];
    std::memset(destination, static_cast<int>(sum & 0xFF), std::size_t{width} * height * 4);
    return width * height * 4;
}

/// The same for PVRTC: 2 or 4 bits a pixel by the mode, with the smallest sizes that the format knows.
inline std::uint32_t ReadPvrtc(const void* source, void* destination, std::uint32_t width,
                               std::uint32_t height, std::uint32_t mode, std::uint32_t)
{
    const std::size_t bytes =
        std::size_t{std::max(width, mode == 2 ? 16U : 8U)} * std::max(height, 8U) * mode / 8;
    const auto* const from = static_cast<const unsigned char*>(source);
    unsigned sum = 0;
    for (std::size_t at = 0; at < bytes; ++at)
        sum += from[at];
    std::memset(destination, static_cast<int>(sum & 0xFF), std::size_t{width} * height * 4);
    return width * height * 4;
}

/// An encoder's level: zero but for mode, flags and the first source pixel.
inline std::uint32_t Report(void* destination, std::uint32_t bytes, const void* source, std::uint32_t mode,
                            std::uint32_t flags)
{
    std::memset(destination, 0, bytes);
    auto* const out = static_cast<unsigned char*>(destination);
    out[0] = static_cast<unsigned char>(mode);
    out[1] = static_cast<unsigned char>(flags);
    out[2] = static_cast<unsigned char>(flags >> 8);
    std::memcpy(out + 4, source, 4);
    return bytes;
}

inline std::uint32_t CompressDxt(const void* source, void* destination, std::uint32_t width,
                                 std::uint32_t height, std::uint32_t mode, std::uint32_t flags)
{
    const std::uint32_t blocks = ((width + 3) / 4) * ((height + 3) / 4);
    return Report(destination, blocks * ((flags & MavrelInterpolatedAlpha) != 0 ? 16 : 8), source, mode,
                  flags);
}

inline std::uint32_t CompressEtc1(const void* source, void* destination, std::uint32_t width,
                                  std::uint32_t height, std::uint32_t mode, std::uint32_t flags)
{
    return Report(destination, ((width + 3) / 4) * ((height + 3) / 4) * 8, source, mode, flags);
}

inline std::uint32_t CompressPvrtc(const void* source, void* destination, std::uint32_t width,
                                   std::uint32_t height, std::uint32_t mode, std::uint32_t flags)
{
    const std::uint32_t pixels = width * height;
    return Report(destination, std::max(32U, mode == 4 ? pixels / 2 : pixels / 4), source, mode, flags);
}

/// One byte less than it should be.
inline std::uint32_t CompressShort(const void* source, void* destination, std::uint32_t width,
                                   std::uint32_t height, std::uint32_t mode, std::uint32_t flags)
{
    return CompressDxt(source, destination, width, height, mode, flags) - 1;
}

}  // namespace Fake
