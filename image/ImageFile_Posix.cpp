#include "image/Codecs_Posix.h"
#include "image/ImageCodecs.h"

std::optional<CBitmap> DecodeOnPlatform(std::span<const std::byte> bytes, ImageFormat format)
{
    switch (format) {
        case ImageFormat::Png:
            return DecodePng(bytes);
        case ImageFormat::Bmp:
            return DecodeBmp(bytes);
        case ImageFormat::Gif:
            return DecodeGif(bytes);
        case ImageFormat::Jpeg:
            return DecodeJpeg(bytes);
        case ImageFormat::Tiff:
            return DecodeTiff(bytes);
    }
    return std::nullopt;
}

std::optional<std::vector<std::byte>> EncodeOnPlatform(const CBitmap& bitmap, ImageFormat format)
{
    switch (format) {
        case ImageFormat::Png:
            return EncodePng(bitmap);
        case ImageFormat::Bmp:
            return EncodeBmp(bitmap);
        case ImageFormat::Gif:
            return std::nullopt;
        case ImageFormat::Jpeg:
            return EncodeJpeg(bitmap);
        case ImageFormat::Tiff:
            return EncodeTiff(bitmap);
    }
    return std::nullopt;
}
