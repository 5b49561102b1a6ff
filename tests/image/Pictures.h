#pragma once

// Bitmaps of tests, written and read as 0xAARRGGBB.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "image/Bitmap.h"

/// Rows top to bottom; the height follows from the number of pixels.
CBitmap MakePicture(std::uint32_t width, std::span<const std::uint32_t> pixels);
inline CBitmap MakePicture(std::uint32_t width, std::initializer_list<std::uint32_t> pixels)
{
    return MakePicture(width, std::span(pixels.begin(), pixels.size()));
}

std::vector<std::uint32_t> PixelsOf(const CBitmap& bitmap);

/// Colours and alpha that change everywhere, the same on every run.
CBitmap MakeColourfulPicture(std::uint32_t width, std::uint32_t height);
/// The same with an alpha of 255.
CBitmap MakeOpaquePicture(std::uint32_t width, std::uint32_t height);

/// The largest difference of two bytes; 256 for different sizes.
int LargestDifference(const CBitmap& a, const CBitmap& b);

/// Bytes from hexadecimal digits.
std::vector<std::byte> FromHex(std::string_view digits);
