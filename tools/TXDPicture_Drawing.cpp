#include <algorithm>
#include <cstring>
#include <utility>

#include "base/Format.h"
#include "codec/CodecMessages.h"
#include "database/DatabaseError.h"
#include "image/RasterToBitmap.h"
#include "rw/Messages.h"
#include "tools/TXDPicture.h"

namespace {

// Blocks are decoded in strips that stay in the processor's cache until their colours are in order.
constexpr std::uint32_t kStripRows = 32;

struct Decoder {
    CacheIndex plugin = CacheIndex::Dxt;
    std::uint32_t mode = 0;
    std::uint32_t flags = 0;
    std::uint32_t bytesPerBlock = 0;  // of DXT
};

Decoder DecoderOf(PixelCoding coding)
{
    switch (coding) {
        case PixelCoding::Dxt1:
            return {CacheIndex::Dxt, 0, MavrelDxt1, 8};
        case PixelCoding::Dxt1Alpha:
            return {CacheIndex::Dxt, 0, MavrelAlpha | MavrelDxt1, 8};
        case PixelCoding::Dxt3:
            return {CacheIndex::Dxt, 0, MavrelAlpha, 16};
        case PixelCoding::Dxt5:
            return {CacheIndex::Dxt, 0, MavrelAlpha | MavrelInterpolatedAlpha, 16};
        case PixelCoding::Pvrtc2:
            return {CacheIndex::Pvrtc, 2, 0, 0};
        case PixelCoding::Pvrtc4:
            return {CacheIndex::Pvrtc, 4, MavrelAlpha, 0};
        case PixelCoding::Linear:
        case PixelCoding::Unsupported:
            break;
    }
    return {};
}

[[noreturn]] void Fail(std::wstring_view text)
{
    throw CError(std::wstring(text));
}

MavrelDecompressFn RequireDecompress(const CPluginTable& plugins, CacheIndex cache)
{
    const MavrelDecompressFn decompress = plugins.Decompress(cache);
    if (decompress == nullptr)
        Fail(Format(CodecMessage::kNoPlugin, CacheName(cache)));
    return decompress;
}

CBitmap Blank(const TXDPicture& picture)
{
    auto bitmap = CBitmap::Create(picture.width, picture.height);
    if (!bitmap)
        Fail(CodecMessage::kCannotDecompress);
    return std::move(*bitmap);
}

void SwapRedAndBlue(std::span<std::uint8_t> pixels)
{
    // Whole words, because single bytes are no work for vector instructions.
    for (std::size_t at = 0; at + 4 <= pixels.size(); at += 4) {
        std::uint32_t pixel = 0;
        std::memcpy(&pixel, pixels.data() + at, 4);
        pixel = (pixel & 0xFF00FF00U) | (pixel >> 16 & 0xFFU) | (pixel & 0xFFU) << 16;
        std::memcpy(pixels.data() + at, &pixel, 4);
    }
}

/// Each four bits came out one channel too far: alpha as red, red as green, green as blue, blue as alpha.
void MoveAlphaFromTop(std::span<std::uint8_t> pixels)
{
    for (std::size_t at = 0; at + 4 <= pixels.size(); at += 4)
        std::rotate(pixels.begin() + static_cast<std::ptrdiff_t>(at),
                    pixels.begin() + static_cast<std::ptrdiff_t>(at + 3),
                    pixels.begin() + static_cast<std::ptrdiff_t>(at + 4));
}

void MakeOpaque(std::span<std::uint8_t> pixels)
{
    for (std::size_t at = 3; at < pixels.size(); at += 4)
        pixels[at] = 255;
}

void DoubleAlpha(std::span<std::uint8_t> pixels)
{
    for (std::size_t at = 3; at < pixels.size(); at += 4)
        pixels[at] = static_cast<std::uint8_t>(std::min(pixels[at] * 2, 255));
}

CBitmap DrawBlocks(const TXDPicture& picture, const CPluginTable& plugins)
{
    const Decoder decoder = DecoderOf(picture.coding);
    const MavrelDecompressFn decompress = RequireDecompress(plugins, decoder.plugin);
    const std::size_t rowBytes = std::size_t{(picture.width + 3) / 4} * decoder.bytesPerBlock;
    if (picture.pixels.size() / rowBytes < (picture.height + 3) / 4)
        Fail(RW::Message::kRecordUnreadable);
    CBitmap bitmap = Blank(picture);
    const auto lock = LockCodec(plugins.OneAtATime(decoder.plugin));
    for (std::uint32_t y = 0; y < picture.height; y += kStripRows) {
        const std::uint32_t rows = std::min(kStripRows, picture.height - y);
        const std::size_t stride = std::size_t{picture.width} * 4;
        const auto strip = bitmap.Pixels().subspan(y * stride, rows * stride);
        if (decompress(picture.pixels.data() + y / 4 * rowBytes, strip.data(), picture.width, rows,
                       decoder.mode, decoder.flags) == 0)
            Fail(CodecMessage::kCannotDecompress);
        SwapRedAndBlue(strip);
    }
    return bitmap;
}

/// What the decoder reads: flat pictures are padded to whole blocks, which the record need not hold.
std::uint64_t PvrtcBytes(const TXDPicture& picture, std::uint32_t bitsPerPixel)
{
    const std::uint32_t narrowest = bitsPerPixel == 2 ? 16 : 8;
    return std::uint64_t{std::max(picture.width, narrowest)} * std::max(picture.height, 8U) * bitsPerPixel /
           8;
}

CBitmap DrawPvrtc(const TXDPicture& picture, const CPluginTable& plugins)
{
    const Decoder decoder = DecoderOf(picture.coding);
    const MavrelDecompressFn decompress = RequireDecompress(plugins, decoder.plugin);
    const std::uint64_t stored = std::uint64_t{picture.width} * picture.height * decoder.mode / 8;
    if (picture.pixels.size() < std::max<std::uint64_t>(stored, 32))
        Fail(RW::Message::kRecordUnreadable);
    CBitmap bitmap = Blank(picture);
    std::vector<std::byte> padded;
    const std::byte* source = picture.pixels.data();
    const std::uint64_t needed = PvrtcBytes(picture, decoder.mode);
    if (picture.pixels.size() < needed) {
        padded.assign(picture.pixels.begin(), picture.pixels.end());
        padded.resize(static_cast<std::size_t>(needed));
        source = padded.data();
    }
    const auto lock = LockCodec(plugins.OneAtATime(decoder.plugin));
    if (decompress(source, bitmap.Pixels().data(), picture.width, picture.height, decoder.mode,
                   decoder.flags) == 0)
        Fail(CodecMessage::kCannotDecompress);
    SwapRedAndBlue(bitmap.Pixels());
    return bitmap;
}

std::wstring_view TextOf(RasterFault fault)
{
    switch (fault) {
        case RasterFault::WrongDimensions:
            return CodecMessage::kWrongDimensions;
        case RasterFault::NoPixels:
        case RasterFault::TooShort:
            return RW::Message::kRecordUnreadable;
        case RasterFault::None:
        case RasterFault::OutOfMemory:
            break;
    }
    return CodecMessage::kCannotDecompress;
}

CBitmap DrawLinear(const TXDPicture& picture)
{
    RasterFault fault = RasterFault::None;
    auto bitmap = RasterToBitmap(picture.pixels,
                                 {.width = picture.width,
                                  .height = picture.height,
                                  .depth = picture.depth,
                                  .layout = picture.layout,
                                  .level = 0,
                                  .swapRB = picture.redFirst},
                                 picture.palette, &fault);
    if (!bitmap)
        Fail(TextOf(fault));
    if (picture.alphaOnTop)
        MoveAlphaFromTop(bitmap->Pixels());
    if (picture.swapRedBlue)
        SwapRedAndBlue(bitmap->Pixels());
    if (picture.isOpaque)
        MakeOpaque(bitmap->Pixels());
    else if (picture.halfAlpha)
        DoubleAlpha(bitmap->Pixels());
    return std::move(*bitmap);
}

}  // namespace

CBitmap DrawPicture(const TXDPicture& picture, const CPluginTable& plugins)
{
    if (picture.width == 0 || picture.height == 0)
        Fail(CodecMessage::kWrongDimensions);
    switch (picture.coding) {
        case PixelCoding::Linear:
            return DrawLinear(picture);
        case PixelCoding::Dxt1:
        case PixelCoding::Dxt1Alpha:
        case PixelCoding::Dxt3:
        case PixelCoding::Dxt5:
            return DrawBlocks(picture, plugins);
        case PixelCoding::Pvrtc2:
        case PixelCoding::Pvrtc4:
            return DrawPvrtc(picture, plugins);
        case PixelCoding::Unsupported:
            break;
    }
    Fail(CodecMessage::kUnsupportedFormat);
}
