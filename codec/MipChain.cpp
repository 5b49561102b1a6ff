#include "codec/MipChain.h"

#include <algorithm>
#include <new>

#include "image/BitmapTools.h"

namespace {

constexpr std::size_t kPixelBytes = 4;

std::uint32_t Packed4444(std::uint32_t red, std::uint32_t green, std::uint32_t blue, std::uint32_t alpha)
{
    return (red & 0xF0U) << 8 | (green & 0xF0U) << 4 | (blue & 0xF0U) | alpha >> 4;
}

std::uint32_t Packed565(std::uint32_t red, std::uint32_t green, std::uint32_t blue)
{
    return (red & 0xF8U) << 8 | (green & 0xFCU) << 3 | blue >> 3;
}

}  // namespace

std::vector<PixelSize> LevelSizes(PixelSize full, bool mips)
{
    std::vector<PixelSize> sizes = {full};
    while (mips && (sizes.back().width > 1 || sizes.back().height > 1))
        sizes.push_back({std::max(sizes.back().width >> 1, 1U), std::max(sizes.back().height >> 1, 1U)});
    return sizes;
}

std::vector<std::byte> RgbaPixels(const CBitmap& picture, bool hasAlpha)
{
    const std::span<const std::uint8_t> source = picture.Pixels();
    std::vector<std::byte> pixels(source.size());
    for (std::size_t at = 0; at + kPixelBytes <= source.size(); at += kPixelBytes) {
        pixels[at] = std::byte{source[at + 2]};
        pixels[at + 1] = std::byte{source[at + 1]};
        pixels[at + 2] = std::byte{source[at]};
        pixels[at + 3] = hasAlpha ? std::byte{source[at + 3]} : std::byte{0xFF};
    }
    return pixels;
}

std::vector<std::byte> ScaledRgbaPixels(const CBitmap& picture, PixelSize size, bool hasAlpha)
{
    if (size == PixelSize{picture.Width(), picture.Height()})
        return RgbaPixels(picture, hasAlpha);
    const auto scaled = ScaleBitmap(picture, size.width, size.height);
    if (!scaled)
        throw std::bad_alloc();
    return RgbaPixels(*scaled, hasAlpha);
}

void AppendPacked16(std::span<const std::byte> rgba, bool hasAlpha, std::vector<std::byte>& out)
{
    out.reserve(out.size() + rgba.size() / 2);
    for (std::size_t at = 0; at + kPixelBytes <= rgba.size(); at += kPixelBytes) {
        const auto red = std::to_integer<std::uint32_t>(rgba[at]);
        const auto green = std::to_integer<std::uint32_t>(rgba[at + 1]);
        const auto blue = std::to_integer<std::uint32_t>(rgba[at + 2]);
        const auto alpha = std::to_integer<std::uint32_t>(rgba[at + 3]);
        const std::uint32_t packed =
            hasAlpha ? Packed4444(red, green, blue, alpha) : Packed565(red, green, blue);
        out.push_back(static_cast<std::byte>(packed));
        out.push_back(static_cast<std::byte>(packed >> 8));
    }
}
