#include "codec/MipChain.h"

#include <algorithm>
#include <new>

#include "image/BitmapTools.h"
#include "image/PixelOrder.h"

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
    std::vector<std::byte> pixels(picture.Pixels().size());
    SwapBlueAndRed(std::as_bytes(picture.Pixels()), pixels, hasAlpha ? AlphaBytes::Kept : AlphaBytes::Opaque);
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
    const std::size_t start = out.size();
    out.resize(start + rgba.size() / 2);
    std::byte* to = out.data() + start;
    for (std::size_t at = 0; at + kPixelBytes <= rgba.size(); at += kPixelBytes, to += 2) {
        const auto red = std::to_integer<std::uint32_t>(rgba[at]);
        const auto green = std::to_integer<std::uint32_t>(rgba[at + 1]);
        const auto blue = std::to_integer<std::uint32_t>(rgba[at + 2]);
        const auto alpha = std::to_integer<std::uint32_t>(rgba[at + 3]);
        const std::uint32_t packed =
            hasAlpha ? Packed4444(red, green, blue, alpha) : Packed565(red, green, blue);
        to[0] = static_cast<std::byte>(packed);
        to[1] = static_cast<std::byte>(packed >> 8);
    }
}
