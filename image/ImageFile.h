#pragma once

// Image files: PNG, BMP, GIF, JPEG and TIFF, told apart by their contents when loading. GDI+ does the work on
// Windows; libpng, libjpeg-turbo, libtiff, giflib and a reader of our own for BMP do it elsewhere. No file
// stays locked.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "image/Bitmap.h"

enum class ImageFormat { Png, Bmp, Gif, Jpeg, Tiff };

/// The system's own constants for "jpg" and "tif", which GetEncoderMimeType knows by identity, not by their
/// text.
extern const wchar_t* const kJpgExtension;
extern const wchar_t* const kTifExtension;

/// "image/" and the extension, which the two constants above turn into "jpeg" and "tiff".
std::wstring GetEncoderMimeType(const wchar_t* extension);
/// The encoder of a typed extension, any case, jpg/jpeg and tif/tiff alike; nothing when there is none.
std::optional<ImageFormat> ImageFormatFromExtension(std::wstring_view extension);

/// Nothing when the bytes are no picture of these formats, are damaged, are larger than 16384 pixels in a
/// direction or memory is short. Pictures without alpha come with 255; of an animation, the first frame.
std::optional<CBitmap> DecodeImage(std::span<const std::byte> bytes);
std::optional<CBitmap> LoadImageFile(const std::filesystem::path& file);

/// BMP and JPEG are written without alpha; GIF with a palette of 256 colours, one of them transparent when
/// needed.
std::optional<std::vector<std::byte>> EncodeImage(const CBitmap& bitmap, ImageFormat format);
/// False when the file cannot be written; what stood there before is kept then.
bool SaveImageFile(const std::filesystem::path& file, const CBitmap& bitmap, ImageFormat format);
