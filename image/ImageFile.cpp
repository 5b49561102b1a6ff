#include "image/ImageFile.h"

#include <new>

#include "base/File.h"
#include "base/Text.h"
#include "image/GifWriter.h"
#include "image/ImageCodecs.h"
#include "image/ImageProbe.h"

namespace {

/// More than the largest picture without any compression takes.
constexpr std::uint64_t kLongestFile = (std::uint64_t{1} << 30) + (std::uint64_t{1} << 20);

constexpr wchar_t kJpgText[] = L"jpg";
constexpr wchar_t kTifText[] = L"tif";

}  // namespace

const wchar_t* const kJpgExtension = kJpgText;
const wchar_t* const kTifExtension = kTifText;

std::wstring GetEncoderMimeType(const wchar_t* extension)
{
    // Deliberate: the constants are known by their address; a "jpg" from elsewhere stays "image/jpg", which
    // no encoder has. ImageFile.MapsItsOwnConstantsByIdentityOnly pins it.
    if (extension == kJpgExtension)
        return L"image/jpeg";
    if (extension == kTifExtension)
        return L"image/tiff";
    return std::wstring(L"image/") + extension;
}

std::optional<ImageFormat> ImageFormatFromExtension(std::wstring_view extension)
{
    const std::wstring lower = ToLowerAscii(extension);
    if (lower == L"png")
        return ImageFormat::Png;
    if (lower == L"bmp")
        return ImageFormat::Bmp;
    if (lower == L"gif")
        return ImageFormat::Gif;
    if (lower == L"jpg" || lower == L"jpeg")
        return ImageFormat::Jpeg;
    if (lower == L"tif" || lower == L"tiff")
        return ImageFormat::Tiff;
    return std::nullopt;
}

std::optional<CBitmap> DecodeImage(std::span<const std::byte> bytes)
{
    const auto format = FindImageFormat(bytes);
    if (!format || !IsWholeImage(bytes, *format))
        return std::nullopt;
    try {
        return DecodeOnPlatform(bytes, *format);
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}

std::optional<CBitmap> LoadImageFile(const std::filesystem::path& file)
{
    try {
        const auto bytes = ReadWholeFile(DiskFileSystem(), file, kLongestFile);
        return bytes ? DecodeImage(*bytes) : std::nullopt;
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}

std::optional<std::vector<std::byte>> EncodeImage(const CBitmap& bitmap, ImageFormat format)
{
    if (bitmap.IsEmpty())
        return std::nullopt;
    try {
        return format == ImageFormat::Gif ? WriteGif(bitmap) : EncodeOnPlatform(bitmap, format);
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}

bool SaveImageFile(const std::filesystem::path& file, const CBitmap& bitmap, ImageFormat format)
{
    const auto bytes = EncodeImage(bitmap, format);
    return bytes && WriteWholeFile(DiskFileSystem(), file, *bytes);
}
