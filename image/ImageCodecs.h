#pragma once

// The platform's half of ImageFile.h. Only ImageFile.cpp calls it, with files that ImageProbe.h has found
// whole.

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "image/Bitmap.h"
#include "image/ImageFile.h"

/// Nothing when the picture is damaged or memory is short.
std::optional<CBitmap> DecodeOnPlatform(std::span<const std::byte> bytes, ImageFormat format);
/// Every format but GIF, which GifWriter.h writes on every platform.
std::optional<std::vector<std::byte>> EncodeOnPlatform(const CBitmap& bitmap, ImageFormat format);
