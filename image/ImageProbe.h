#pragma once

// A first look at the bytes of an image file, before any decoder sees them: which format it is, whether its
// outer frame is whole, and how large the picture is. Decoders differ in what they do with a cut file (an
// error, or a picture with a grey part); this makes every platform refuse it.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "image/ImageFile.h"

/// By the first bytes.
std::optional<ImageFormat> FindImageFormat(std::span<const std::byte> bytes);

/// True for 1 to 16384 pixels in both directions: the pictures that are decoded at all.
bool IsDecodableSize(std::uint64_t width, std::uint64_t height);

/// False when the file breaks off before the end of its first picture, or the size that its header gives is
/// not decodable. Damage inside the picture is left to the decoder.
bool IsWholeImage(std::span<const std::byte> bytes, ImageFormat format);

/// Where the first frame of a GIF file lies on its screen.
struct GifFrame {
    std::uint32_t screenWidth = 0;
    std::uint32_t screenHeight = 0;
    std::uint32_t left = 0;
    std::uint32_t top = 0;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
};
/// Nothing when the file breaks off before the end of the frame.
std::optional<GifFrame> FindGifFrame(std::span<const std::byte> bytes);
