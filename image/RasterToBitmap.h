#pragma once

// Turns raw pixels of any layout that the caches and the texture dictionaries store into a bitmap.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "image/Bitmap.h"

/// How the pixels of a raster are stored. The layout is a hexadecimal number whose digits are the bit widths
/// of A, R, G and B: 0x8, 0x88, 0x565, 0x1555, 0x4444, 0x5551, 0x888, 0x8888.
struct RasterLayout {
    std::uint32_t width = 0;  // of the largest level
    std::uint32_t height = 0;
    std::uint32_t depth = 0;   // bits per pixel: 4, 8, 16, 24 or 32; anything else gives transparent black
    std::uint32_t layout = 0;  // ignored for depths 24 and 32
    std::uint32_t level = 0;   // how many mip levels to skip
    bool swapRB = false;
};

enum class RasterFault { None, NoPixels, WrongDimensions, TooShort, OutOfMemory };

/// `pixels` starts at the largest level; `palette` has four bytes an entry and may be empty. Nothing, with
/// the reason in `fault` when asked for, when there are no pixels, when a side is 0 ("Wrong texture
/// dimensions given."), or when the level does not lie in `pixels` ("Section data reading failed.").
std::optional<CBitmap> RasterToBitmap(std::span<const std::byte> pixels, const RasterLayout& layout,
                                      std::span<const std::byte> palette = {}, RasterFault* fault = nullptr);
