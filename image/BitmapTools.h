#pragma once

// What is done with whole bitmaps: comparing and scaling. The same result on every platform.

#include <cstdint>
#include <optional>

#include "image/Bitmap.h"

/// -1 for different sizes, 0 for the same object, else the sum of the absolute differences of all bytes, in
/// 32 bits with wrap-around. 0 means identical pixels.
std::int32_t ImageDifference(const CBitmap& a, const CBitmap& b);

/// Area average when shrinking, bilinear when enlarging, each direction for itself; the four channels
/// independently, not premultiplied. Integer arithmetic. Nothing when the size is not one that a bitmap can
/// have.
std::optional<CBitmap> ScaleBitmap(const CBitmap& source, std::uint32_t width, std::uint32_t height);

/// The picture at the given size.
std::optional<CBitmap> MakeThumbnail(const CBitmap& source, std::uint32_t width, std::uint32_t height);
