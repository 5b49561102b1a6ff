#pragma once

// The levels of a picture on its way into a cache, as the pixels that encoders take.

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "image/Bitmap.h"

struct PixelSize {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    bool operator==(const PixelSize&) const = default;
};

/// The full size, and with `mips` every half of it down to 1x1, never below 1 in a direction.
std::vector<PixelSize> LevelSizes(PixelSize full, bool mips);

/// R G B A, rows top to bottom; every alpha is 255 when the picture is to have none.
std::vector<std::byte> RgbaPixels(const CBitmap& picture, bool hasAlpha);
/// The same of the picture at another size, always scaled from the full one. Throws std::bad_alloc when there
/// is no memory for it.
std::vector<std::byte> ScaledRgbaPixels(const CBitmap& picture, PixelSize size, bool hasAlpha);

/// Appends R G B A pixels as little-endian 16-bit values: RGBA 4444 with alpha, RGBA 565 without.
void AppendPacked16(std::span<const std::byte> rgba, bool hasAlpha, std::vector<std::byte>& out);
