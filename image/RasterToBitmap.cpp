#include "image/RasterToBitmap.h"

#include <algorithm>
#include <array>

#include "image/PixelOrder.h"

namespace {

constexpr std::uint32_t kLargestSide = 65535;
constexpr std::size_t kPaletteEntry = 4;
constexpr std::size_t kMostPaletteEntries = 256;

/// Blue, green, red, alpha.
using Pixel = std::array<std::uint8_t, 4>;
using Palette = std::array<Pixel, kMostPaletteEntries>;

struct Level {
    std::uint64_t offset = 0;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
};

/// Where the wanted level starts. With sides of 16 bits nothing here can overflow 64 bits.
Level FindLevel(const RasterLayout& layout)
{
    Level at{0, layout.width, layout.height};
    std::uint32_t left = layout.level;
    for (; left > 0 && (at.width > 1 || at.height > 1); --left) {
        at.offset += (std::uint64_t{at.width} * at.height * layout.depth) >> 3;
        at.width = std::max(at.width / 2, 1U);
        at.height = std::max(at.height / 2, 1U);
    }
    // From here on every level is a single pixel.
    at.offset += std::uint64_t{left} * (layout.depth >> 3);
    return at;
}

/// Entries that the palette does not have are transparent black.
Palette ReadPalette(std::span<const std::byte> bytes, bool swapRB)
{
    Palette palette{};
    const std::size_t count = std::min(bytes.size() / kPaletteEntry, palette.size());
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t channel = 0; channel < kPaletteEntry; ++channel)
            palette[i][channel] = std::to_integer<std::uint8_t>(bytes[i * kPaletteEntry + channel]);
        if (swapRB)
            std::swap(palette[i][0], palette[i][2]);
    }
    return palette;
}

/// Fills `out` with the pixels that `convert` makes of `Width` bytes each.
template <std::size_t Width, class Convert>
void ConvertPixels(std::span<const std::byte> in, std::span<std::uint8_t> out, Convert convert)
{
    const auto* source = reinterpret_cast<const std::uint8_t*>(in.data());
    std::uint8_t* target = out.data();
    const std::uint8_t* const end = target + out.size();
    for (; target != end; target += 4, source += Width) {
        const Pixel pixel = convert(source);
        std::copy(pixel.begin(), pixel.end(), target);
    }
}

template <class Convert>
void ConvertWords(std::span<const std::byte> in, std::span<std::uint8_t> out, Convert convert)
{
    ConvertPixels<2>(in, out, [convert](const std::uint8_t* bytes) {
        return convert(static_cast<std::uint32_t>(bytes[0] | bytes[1] << 8));
    });
}

constexpr std::uint8_t Low8(std::uint32_t value)
{
    return static_cast<std::uint8_t>(value & 0xFF);
}

void ConvertNibbles(std::span<const std::byte> in, std::span<std::uint8_t> out, const Palette& palette)
{
    // Deliberate: the nibbles run on over the ends of the rows; rows of odd length have no padding.
    for (std::size_t n = 0; n < out.size() / 4; ++n) {
        const auto two = std::to_integer<std::uint8_t>(in[n / 2]);
        const Pixel& pixel = palette[n % 2 == 0 ? two & 15U : two >> 4U];
        std::copy(pixel.begin(), pixel.end(), out.data() + n * 4);
    }
}

void Convert8(std::span<const std::byte> in, std::span<std::uint8_t> out, std::uint32_t layout,
              const Palette& palette)
{
    if (layout == 0x8) {
        ConvertPixels<1>(in, out, [](const std::uint8_t* s) { return Pixel{s[0], s[0], s[0], 255}; });
    } else if (layout == 0x888 || layout == 0x8888) {
        ConvertPixels<1>(in, out, [&palette](const std::uint8_t* s) { return palette[s[0]]; });
    }
}

// Deliberate: 5 and 6 bits are only moved up, 4 bits are repeated.
// RasterToBitmap.MovesFiveAndSixBitsUpWithoutRepeatingThem pins it.
void Convert16(std::span<const std::byte> in, std::span<std::uint8_t> out, std::uint32_t layout)
{
    switch (layout) {
        case 0x88:
            ConvertWords(in, out, [](std::uint32_t p) {
                return Pixel{Low8(p), Low8(p), Low8(p), Low8(p >> 8)};
            });
            break;
        case 0x565:
            ConvertWords(in, out, [](std::uint32_t p) {
                return Pixel{Low8(p << 3 & 0xF8), Low8(p >> 3 & 0xFC), Low8(p >> 8 & 0xF8), 255};
            });
            break;
        case 0x1555:
            ConvertWords(in, out, [](std::uint32_t p) {
                return Pixel{Low8(p << 3 & 0xF8), Low8(p >> 2 & 0xF8), Low8(p >> 7 & 0xF8),
                             Low8(p >> 15 ? 255 : 0)};
            });
            break;
        case 0x4444:
            ConvertWords(in, out, [](std::uint32_t p) {
                return Pixel{Low8((p >> 4 & 15) * 17), Low8((p >> 8 & 15) * 17), Low8((p >> 12) * 17),
                             Low8((p & 15) * 17)};
            });
            break;
        case 0x5551:
            ConvertWords(in, out, [](std::uint32_t p) {
                return Pixel{Low8(p << 2 & 0xF8), Low8(p >> 3 & 0xF8), Low8(p >> 8 & 0xF8),
                             Low8(p & 1 ? 255 : 0)};
            });
            break;
        default:
            break;
    }
}

void Convert24(std::span<const std::byte> in, std::span<std::uint8_t> out, bool swapRB)
{
    if (swapRB)
        ConvertPixels<3>(in, out, [](const std::uint8_t* s) { return Pixel{s[2], s[1], s[0], 255}; });
    else
        ConvertPixels<3>(in, out, [](const std::uint8_t* s) { return Pixel{s[0], s[1], s[2], 255}; });
}

void Convert32(std::span<const std::byte> in, std::span<std::uint8_t> out, bool swapRB)
{
    const auto bytes = std::as_writable_bytes(out);
    if (swapRB)
        SwapBlueAndRed(in, bytes);
    else
        std::copy(in.begin(), in.end(), bytes.begin());
}

void Convert(std::span<const std::byte> in, std::span<std::uint8_t> out, const RasterLayout& layout,
             std::span<const std::byte> palette)
{
    switch (layout.depth) {
        case 4:
            ConvertNibbles(in, out, ReadPalette(palette, layout.swapRB));
            break;
        case 8:
            Convert8(in, out, layout.layout, ReadPalette(palette, layout.swapRB));
            break;
        case 16:
            Convert16(in, out, layout.layout);
            break;
        case 24:
            Convert24(in, out, layout.swapRB);
            break;
        case 32:
            Convert32(in, out, layout.swapRB);
            break;
        default:
            break;
    }
}

}  // namespace

std::optional<CBitmap> RasterToBitmap(std::span<const std::byte> pixels, const RasterLayout& layout,
                                      std::span<const std::byte> palette, RasterFault* fault)
{
    const auto fail = [fault](RasterFault reason) {
        if (fault)
            *fault = reason;
        return std::nullopt;
    };
    const auto isSide = [](std::uint32_t side) { return side >= 1 && side <= kLargestSide; };
    if (!isSide(layout.width) || !isSide(layout.height))
        return fail(RasterFault::WrongDimensions);
    if (pixels.empty())
        return fail(RasterFault::NoPixels);
    const Level level = FindLevel(layout);
    // A last nibble needs its byte, though a following level would begin in it.
    const std::uint64_t bytes = (std::uint64_t{level.width} * level.height * layout.depth + 7) / 8;
    if (level.offset > pixels.size() || bytes > pixels.size() - level.offset)
        return fail(RasterFault::TooShort);
    auto bitmap = CBitmap::Create(level.width, level.height);
    if (!bitmap)
        return fail(RasterFault::OutOfMemory);
    const auto offset = static_cast<std::size_t>(level.offset);
    Convert(pixels.subspan(offset, static_cast<std::size_t>(bytes)), bitmap->Pixels(), layout, palette);
    if (fault)
        *fault = RasterFault::None;
    return bitmap;
}
