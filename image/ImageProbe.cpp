#include "image/ImageProbe.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "base/ByteReader.h"
#include "image/BmpHeader.h"

namespace {

constexpr std::uint32_t kLargestSide = 16384;

using Bytes = std::span<const std::byte>;

bool StartsWith(Bytes bytes, std::string_view magic)
{
    return bytes.size() >= magic.size() &&
           std::equal(magic.begin(), magic.end(), bytes.begin(),
                      [](char c, std::byte b) { return static_cast<std::byte>(c) == b; });
}

std::uint32_t BigEndian(Bytes bytes)
{
    std::uint32_t value = 0;
    for (const std::byte byte : bytes)
        value = value << 8 | std::to_integer<std::uint32_t>(byte);
    return value;
}

/// A signature of eight bytes, then chunks (length, type, contents, checksum) from IHDR to IEND.
bool IsWholePng(Bytes bytes)
{
    CByteReader in(bytes);
    in.Skip(8);
    bool first = true;
    while (in.Ok()) {
        const std::uint32_t length = BigEndian(in.Bytes(4));
        const std::uint32_t type = in.U32();
        const Bytes contents = in.Bytes(length);
        in.Skip(4);
        if (!in.Ok())
            return false;
        constexpr std::uint32_t kHeaderType = 0x52444849;  // "IHDR", its first letter lowest
        constexpr std::uint32_t kEndType = 0x444E4549;     // "IEND"
        if (first && (type != kHeaderType || length < 8 ||
                      !IsDecodableSize(BigEndian(contents.first(4)), BigEndian(contents.subspan(4, 4)))))
            return false;
        if (type == kEndType)
            return true;
        first = false;
    }
    return false;
}

bool IsJpegFrame(std::uint32_t marker)
{
    // The sixteen start-of-frame codes without DHT, JPG and DAC, which lie between them.
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

/// Inside a scan 0xFF is followed by 0 or a restart code, so an end code is always the real one.
bool HasJpegEnd(Bytes scan)
{
    constexpr std::array kEnd = {std::byte{0xFF}, std::byte{0xD9}};
    return std::search(scan.begin(), scan.end(), kEnd.begin(), kEnd.end()) != scan.end();
}

/// Segments (0xFF, code, length with itself, contents) up to the first scan.
bool IsWholeJpeg(Bytes bytes)
{
    CByteReader in(bytes);
    in.Skip(2);
    bool hasFrame = false;
    while (in.Ok()) {
        std::uint32_t marker = in.U8();
        if (marker != 0xFF)
            continue;  // decoders step over stray bytes between segments
        while (in.Ok() && marker == 0xFF)
            marker = in.U8();
        if (marker == 0 || marker == 0x01 || (marker >= 0xD0 && marker <= 0xD8))
            continue;
        if (marker == 0xD9)
            return false;
        const std::uint32_t length = BigEndian(in.Bytes(2));
        const Bytes contents = in.Bytes(std::max(length, 2U) - 2);
        if (!in.Ok())
            return false;
        if (IsJpegFrame(marker)) {
            if (contents.size() < 5 ||
                !IsDecodableSize(BigEndian(contents.subspan(3, 2)), BigEndian(contents.subspan(1, 2))))
                return false;
            hasFrame = true;
        }
        if (marker == 0xDA)
            return hasFrame && HasJpegEnd(in.Bytes(in.Left()));
    }
    return false;
}

/// Sub-blocks, each with its length before it, to the empty one.
void SkipGifBlocks(CByteReader& in)
{
    std::size_t length = 0;
    do {
        length = in.U8();
        in.Skip(length);
    } while (in.Ok() && length != 0);
}

void SkipGifColours(CByteReader& in, std::uint32_t flags)
{
    if (flags & 0x80)
        in.Skip(std::size_t{3} << ((flags & 7) + 1));
}

bool IsWholeGif(Bytes bytes)
{
    const auto frame = FindGifFrame(bytes);
    // Some writers leave the size of the screen 0.
    return frame && IsDecodableSize(std::max(frame->screenWidth, 1U), std::max(frame->screenHeight, 1U)) &&
           IsDecodableSize(frame->width, frame->height);
}

/// Numbers of a TIFF file, in the byte order that its first letter gives.
class CTiffReader {
public:
    explicit CTiffReader(Bytes bytes) : m_aBytes(bytes), m_bBig(StartsWith(bytes, "M")) {}

    /// 0 beyond the end.
    std::uint32_t Number(std::uint64_t at, std::size_t width) const
    {
        if (at > m_aBytes.size() || width > m_aBytes.size() - at)
            return 0;
        const Bytes bytes = m_aBytes.subspan(static_cast<std::size_t>(at), width);
        if (m_bBig)
            return BigEndian(bytes);
        CByteReader in(bytes);
        return width == 2 ? in.U16() : in.U32();
    }

private:
    Bytes m_aBytes;
    bool m_bBig;
};

/// The first directory must hold a width and a height: 12 bytes an entry, tag, type (3 u16, 4 u32), count,
/// value.
bool IsWholeTiff(Bytes bytes)
{
    constexpr std::uint32_t kWidthTag = 256;
    constexpr std::uint32_t kHeightTag = 257;
    const CTiffReader in(bytes);
    const std::uint64_t directory = in.Number(4, 4);
    const std::uint32_t count = in.Number(directory, 2);
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint64_t entry = directory + 2 + std::uint64_t{12} * i;
        const std::uint32_t value = in.Number(entry + 8, in.Number(entry + 2, 2) == 3 ? 2 : 4);
        if (in.Number(entry, 2) == kWidthTag)
            width = value;
        if (in.Number(entry, 2) == kHeightTag)
            height = value;
    }
    return IsDecodableSize(width, height);
}

bool IsWholeBmp(Bytes bytes)
{
    const auto header = ReadBmpHeader(bytes);
    return header && IsDecodableSize(header->width, header->height);
}

}  // namespace

std::optional<ImageFormat> FindImageFormat(std::span<const std::byte> bytes)
{
    using namespace std::string_view_literals;
    if (StartsWith(bytes, "\x89PNG\r\n\x1A\n"))
        return ImageFormat::Png;
    if (StartsWith(bytes, "BM"))
        return ImageFormat::Bmp;
    if (StartsWith(bytes, "GIF87a") || StartsWith(bytes, "GIF89a"))
        return ImageFormat::Gif;
    if (StartsWith(bytes, "\xFF\xD8\xFF"))
        return ImageFormat::Jpeg;
    if (StartsWith(bytes, "II*\0"sv) || StartsWith(bytes, "MM\0*"sv))
        return ImageFormat::Tiff;
    return std::nullopt;
}

bool IsDecodableSize(std::uint64_t width, std::uint64_t height)
{
    return width >= 1 && height >= 1 && width <= kLargestSide && height <= kLargestSide;
}

bool IsWholeImage(std::span<const std::byte> bytes, ImageFormat format)
{
    switch (format) {
        case ImageFormat::Png:
            return IsWholePng(bytes);
        case ImageFormat::Bmp:
            return IsWholeBmp(bytes);
        case ImageFormat::Gif:
            return IsWholeGif(bytes);
        case ImageFormat::Jpeg:
            return IsWholeJpeg(bytes);
        case ImageFormat::Tiff:
            return IsWholeTiff(bytes);
    }
    return false;
}

std::optional<GifFrame> FindGifFrame(std::span<const std::byte> bytes)
{
    CByteReader in(bytes);
    GifFrame frame;
    in.Skip(6);
    frame.screenWidth = in.U16();
    frame.screenHeight = in.U16();
    const std::uint32_t flags = in.U8();
    in.Skip(2);
    SkipGifColours(in, flags);
    std::uint32_t block = in.U8();
    for (; in.Ok() && block == 0x21; block = in.U8()) {
        in.Skip(1);
        SkipGifBlocks(in);
    }
    if (block != 0x2C)
        return std::nullopt;
    frame.left = in.U16();
    frame.top = in.U16();
    frame.width = in.U16();
    frame.height = in.U16();
    SkipGifColours(in, in.U8());
    in.Skip(1);
    SkipGifBlocks(in);
    return in.Ok() ? std::optional(frame) : std::nullopt;
}
