#include "image/BmpHeader.h"

#include <algorithm>
#include <bit>

#include "base/ByteReader.h"

namespace {

constexpr std::size_t kFileHeader = 14;
constexpr std::uint32_t kCoreHeader = 12;
constexpr std::uint32_t kInfoHeader = 40;
constexpr std::uint32_t kInfoHeaderWithAlpha = 56;
constexpr std::uint32_t kLargestHeader = 124;

std::uint32_t Magnitude(std::uint32_t value, bool negative)
{
    return negative ? 0U - value : value;
}

bool IsNegative(std::uint32_t value)
{
    return value >> 31 != 0;
}

//  0  u32  size of this header, 12            0  u32  size of this header, 40 or more
//  4  u16  width                              4  i32  width
//  6  u16  height                             8  i32  height, negative when the first row is the upper one
//  8  u16  planes                            12  u16  planes
// 10  u16  bits                              14  u16  bits
//                                            16  u32  compression: 0 none, 1 RLE8, 2 RLE4, 3 masks
//                                            20  12 bytes not needed
//                                            32  u32  palette entries, 0 for all
//                                            36  4 bytes not needed
//                                            40  u32  masks of red, green, blue (behind a header of 40 bytes,
//                                            too) 52  u32  mask of alpha (headers of 56 bytes and more)
struct RawHeader {
    std::uint32_t size = 0;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t bits = 0;
    std::uint32_t compression = 0;
    std::uint32_t colours = 0;
    std::array<std::uint32_t, 4> masks{};
};

RawHeader ReadRawHeader(CByteReader& in)
{
    RawHeader raw;
    raw.size = in.U32();
    if (raw.size == kCoreHeader) {
        raw.width = in.U16();
        raw.height = in.U16();
        in.Skip(2);
        raw.bits = in.U16();
        return raw;
    }
    raw.width = in.U32();
    raw.height = in.U32();
    in.Skip(2);
    raw.bits = in.U16();
    raw.compression = in.U32();
    in.Skip(12);
    raw.colours = in.U32();
    in.Skip(4);
    if (raw.compression == 3) {
        for (std::size_t i = 0; i < 3; ++i)
            raw.masks[i] = in.U32();
        raw.masks[3] = raw.size >= kInfoHeaderWithAlpha ? in.U32() : 0;
    }
    return raw;
}

std::optional<BmpCompression> CompressionOf(const RawHeader& raw)
{
    const std::uint32_t bits = raw.bits;
    switch (raw.compression) {
        case 0:
            if (bits == 1 || bits == 4 || bits == 8 || bits == 16 || bits == 24 || bits == 32)
                return BmpCompression::None;
            return std::nullopt;
        case 1:
            return bits == 8 ? std::optional(BmpCompression::Rle8) : std::nullopt;
        case 2:
            return bits == 4 ? std::optional(BmpCompression::Rle4) : std::nullopt;
        case 3:
            return bits == 16 || bits == 32 ? std::optional(BmpCompression::BitFields) : std::nullopt;
        default:
            return std::nullopt;
    }
}

std::array<std::uint32_t, 4> MasksOf(const RawHeader& raw)
{
    if (raw.compression == 3)
        return raw.masks;
    if (raw.bits == 16)
        return {0x7C00, 0x03E0, 0x001F, 0};
    // Deliberate: the fourth byte of plain 32-bit files is not alpha; many writers leave it 0.
    // BmpFile.TakesPlainThirtyTwoBitPixelsAsOpaque pins it.
    return {0xFF0000, 0xFF00, 0xFF, 0};
}

bool IsRun(std::uint32_t mask)
{
    const std::uint32_t low = mask >> std::min(std::countr_zero(mask), 31);
    return (low & (low + 1)) == 0;
}

bool HasItsPixels(const BmpHeader& header, std::size_t length)
{
    if (header.pixelOffset > length)
        return false;
    const bool runs =
        header.compression == BmpCompression::Rle8 || header.compression == BmpCompression::Rle4;
    return runs || header.Stride() * header.height <= length - header.pixelOffset;
}

}  // namespace

std::optional<BmpHeader> ReadBmpHeader(std::span<const std::byte> bytes)
{
    CByteReader in(bytes);
    const bool isBmp = in.U8() == 'B' && in.U8() == 'M';
    in.Skip(8);
    BmpHeader header;
    header.pixelOffset = in.U32();
    const RawHeader raw = ReadRawHeader(in);
    const bool knownSize = raw.size == kCoreHeader || (raw.size >= kInfoHeader && raw.size <= kLargestHeader);
    const auto compression = CompressionOf(raw);
    if (!in.Ok() || !isBmp || !knownSize || !compression || IsNegative(raw.width))
        return std::nullopt;

    header.width = raw.width;
    header.topDown = IsNegative(raw.height);
    header.height = Magnitude(raw.height, header.topDown);
    header.bits = raw.bits;
    header.compression = *compression;
    header.masks = MasksOf(raw);
    if (!std::all_of(header.masks.begin(), header.masks.end(), IsRun))
        return std::nullopt;
    header.paletteEntry = raw.size == kCoreHeader ? 3 : 4;
    header.paletteOffset = kFileHeader + raw.size;
    if (raw.bits <= 8) {
        const std::size_t most = std::size_t{1} << raw.bits;
        const std::size_t wanted = raw.colours == 0 ? most : std::min<std::size_t>(raw.colours, most);
        const std::size_t end = std::min(header.pixelOffset, bytes.size());
        const std::size_t room = end - std::min(header.paletteOffset, end);
        header.paletteCount = std::min(wanted, room / header.paletteEntry);
    }
    if (header.width == 0 || header.height == 0 || !HasItsPixels(header, bytes.size()))
        return std::nullopt;
    return header;
}
