#pragma once

// One pair of functions a format, each in its own source file, for builds without GDI+. They get files that
// ImageProbe.h has found whole, answer nothing for damage, and let std::bad_alloc pass.

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "image/Bitmap.h"

/// 16-bit channels are scaled to 8 bits (the nearest value), grey and palettes become colours, transparency
/// alpha.
std::optional<CBitmap> DecodePng(std::span<const std::byte> bytes);
/// Eight bits a channel with alpha, never interlaced.
std::optional<std::vector<std::byte>> EncodePng(const CBitmap& bitmap);

/// Also progressive, grey and CMYK. A stored orientation is not applied.
std::optional<CBitmap> DecodeJpeg(std::span<const std::byte> bytes);
/// Quality 90, chroma at full resolution.
std::optional<std::vector<std::byte>> EncodeJpeg(const CBitmap& bitmap);

/// The first picture of the file. A stored orientation is not applied; colours stored multiplied by alpha are
/// divided.
std::optional<CBitmap> DecodeTiff(std::span<const std::byte> bytes);
/// LZW with differences, alpha not multiplied into the colours.
std::optional<std::vector<std::byte>> EncodeTiff(const CBitmap& bitmap);

/// The first frame, on a transparent screen.
std::optional<CBitmap> DecodeGif(std::span<const std::byte> bytes);

/// 1 to 32 bits, RLE8, RLE4 and masks, from below and from above.
std::optional<CBitmap> DecodeBmp(std::span<const std::byte> bytes);
/// 24 bits without alpha.
std::optional<std::vector<std::byte>> EncodeBmp(const CBitmap& bitmap);
