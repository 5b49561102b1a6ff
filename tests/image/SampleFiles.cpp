#include "tests/image/SampleFiles.h"

#include <cstdlib>
#include <span>
#include <string_view>

#include "base/ByteWriter.h"

namespace {

using Octets = std::vector<std::uint8_t>;

std::span<const std::byte> AsBytes(const Octets& octets)
{
    return std::as_bytes(std::span(octets));
}

void PutBig(Octets& out, std::uint32_t value)
{
    for (int shift = 24; shift >= 0; shift -= 8)
        out.push_back(static_cast<std::uint8_t>(value >> shift & 0xFF));
}

std::uint32_t Crc32(std::span<const std::uint8_t> octets)
{
    std::uint32_t crc = 0xFFFFFFFF;
    for (const std::uint8_t octet : octets) {
        crc ^= octet;
        for (int bit = 0; bit < 8; ++bit)
            crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320U : 0U);
    }
    return ~crc;
}

/// zlib with one block that is not compressed.
Octets Stored(const Octets& octets)
{
    Octets out = {0x78, 0x01, 0x01};
    const auto length = static_cast<std::uint32_t>(octets.size());
    for (const std::uint32_t value : {length, ~length}) {
        out.push_back(static_cast<std::uint8_t>(value & 0xFF));
        out.push_back(static_cast<std::uint8_t>(value >> 8 & 0xFF));
    }
    std::uint32_t low = 1;
    std::uint32_t high = 0;
    for (const std::uint8_t octet : octets) {
        out.push_back(octet);
        low = (low + octet) % 65521;
        high = (high + low) % 65521;
    }
    PutBig(out, high << 16 | low);
    return out;
}

void PutChunk(Octets& out, std::string_view type, const Octets& contents)
{
    PutBig(out, static_cast<std::uint32_t>(contents.size()));
    Octets checked(type.begin(), type.end());
    checked.insert(checked.end(), contents.begin(), contents.end());
    out.insert(out.end(), checked.begin(), checked.end());
    PutBig(out, Crc32(checked));
}

}  // namespace

std::vector<std::byte> MakePng(const PngSample& sample)
{
    Octets out = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    Octets header;
    PutBig(header, sample.width);
    PutBig(header, sample.height);
    header.push_back(static_cast<std::uint8_t>(sample.bits));
    header.push_back(static_cast<std::uint8_t>(sample.colourType));
    header.insert(header.end(), {0, 0, static_cast<std::uint8_t>(sample.interlaced ? 1 : 0)});
    PutChunk(out, "IHDR", header);
    if (!sample.palette.empty())
        PutChunk(out, "PLTE", sample.palette);
    if (!sample.transparency.empty())
        PutChunk(out, "tRNS", sample.transparency);
    PutChunk(out, "IDAT", Stored(sample.rows));
    PutChunk(out, "IEND", {});
    const auto bytes = AsBytes(out);
    return {bytes.begin(), bytes.end()};
}

std::vector<std::byte> MakeGif(const GifSample& sample)
{
    CByteWriter out;
    out.Text("GIF89a", 6).U16(sample.screenWidth).U16(sample.screenHeight).U8(0x91).U8(0).U8(0);
    out.Bytes(AsBytes(sample.palette));
    if (sample.transparent >= 0)
        out.U8(0x21).U8(0xF9).U8(4).U8(1).U16(0).U8(static_cast<std::uint32_t>(sample.transparent)).U8(0);
    out.U8(0x2C).U16(sample.left).U16(sample.top).U16(sample.width).U16(sample.height);
    out.U8(sample.interlaced ? 0x40 : 0).U8(2);
    // Codes of three bits: a clear code (4) before every second index keeps them from growing; 5 ends.
    std::vector<std::uint32_t> codes;
    for (std::size_t i = 0; i < sample.indices.size(); ++i) {
        if (i % 2 == 0)
            codes.push_back(4);
        codes.push_back(sample.indices[i]);
    }
    codes.push_back(5);
    Octets packed((codes.size() * 3 + 7) / 8);
    for (std::size_t bit = 0; bit < codes.size() * 3; ++bit)
        if (codes[bit / 3] >> (bit % 3) & 1)
            packed[bit / 8] = static_cast<std::uint8_t>(packed[bit / 8] | 1U << (bit % 8));
    out.U8(static_cast<std::uint32_t>(packed.size())).Bytes(AsBytes(packed)).U8(0).U8(0x3B);
    return out.Take();
}

std::vector<std::byte> MakeBmp(const BmpSample& sample)
{
    const std::uint32_t header = sample.isOldest ? 12 : 40;
    const auto offset = static_cast<std::uint32_t>(14 + header + sample.palette.size());
    CByteWriter out;
    out.Text("BM", 2).U32(offset + static_cast<std::uint32_t>(sample.pixels.size())).U32(0).U32(offset);
    out.U32(header);
    if (sample.isOldest) {
        out.U16(sample.width).U16(static_cast<std::uint32_t>(sample.height)).U16(1).U16(sample.bits);
    } else {
        out.U32(sample.width).U32(static_cast<std::uint32_t>(sample.height)).U16(1).U16(sample.bits);
        out.U32(sample.compression).U32(static_cast<std::uint32_t>(sample.pixels.size())).U32(0).U32(0);
        const bool hasPalette = sample.bits <= 8;
        out.U32(hasPalette ? static_cast<std::uint32_t>(sample.palette.size() / 4) : 0).U32(0);
    }
    return out.Bytes(AsBytes(sample.palette)).Bytes(AsBytes(sample.pixels)).Take();
}

std::vector<std::byte> MakeTiff(const TiffSample& sample)
{
    Octets out = {'I', 'I', 42, 0};
    if (sample.isBigEndian)
        out = {'M', 'M', 0, 42};
    const auto put = [&](std::uint32_t value, unsigned width) {
        for (unsigned i = 0; i < width; ++i)
            out.push_back(
                static_cast<std::uint8_t>(value >> 8 * (sample.isBigEndian ? width - 1 - i : i) & 0xFF));
    };
    const auto shortEntry = [&](std::uint32_t tag, std::uint32_t value) {
        put(tag, 2);
        put(3, 2);
        put(1, 4);
        put(value, 2);
        put(0, 2);
    };
    const auto longEntry = [&](std::uint32_t tag, std::uint32_t type, std::uint32_t count,
                               std::uint32_t value) {
        put(tag, 2);
        put(type, 2);
        put(count, 4);
        put(value, 4);
    };
    // The pixels lie behind the header, then the bits of the samples, the palette, and the directory, on even
    // places.
    const auto pixels = static_cast<std::uint32_t>(sample.pixels.size());
    const std::uint32_t bitsOffset = (8 + pixels + 1) / 2 * 2;
    const std::uint32_t paletteOffset = bitsOffset + 2 * sample.samples;
    const std::uint32_t directory = paletteOffset + 2 * static_cast<std::uint32_t>(sample.palette.size());
    put(directory, 4);
    out.insert(out.end(), sample.pixels.begin(), sample.pixels.end());
    out.resize(bitsOffset);
    for (std::uint32_t i = 0; i < sample.samples; ++i)
        put(8, 2);
    for (const std::uint16_t value : sample.palette)
        put(value, 2);

    const bool hasPalette = !sample.palette.empty();
    const bool hasAlpha = sample.alphaKind >= 0;
    put(9U + (hasAlpha ? 1U : 0U) + (hasPalette ? 1U : 0U), 2);
    shortEntry(256, sample.width);
    shortEntry(257, sample.height);
    if (sample.samples > 2)
        longEntry(258, 3, sample.samples, bitsOffset);
    else
        shortEntry(258, 8);
    shortEntry(259, 1);
    shortEntry(262, sample.photometric);
    longEntry(273, 4, 1, 8);
    shortEntry(277, sample.samples);
    shortEntry(278, sample.height);
    longEntry(279, 4, 1, pixels);
    if (hasPalette)
        longEntry(320, 3, static_cast<std::uint32_t>(sample.palette.size()), paletteOffset);
    if (hasAlpha)
        shortEntry(338, static_cast<std::uint32_t>(sample.alphaKind));
    put(0, 4);
    const auto bytes = AsBytes(out);
    return {bytes.begin(), bytes.end()};
}
