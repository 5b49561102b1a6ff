#include "plugins/dxt/BlockEncode.h"

#include <cstring>

#include "plugins/common/BlockLevel.h"
#include "plugins/dxt/ColorFit.h"

namespace Dxt {
namespace {
// One-bit alpha: from this value on a pixel is opaque.
constexpr int kOpaqueFrom = 128;

void StoreBytes(std::uint8_t* out, std::uint64_t value, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i, value >>= 8)
        out[i] = static_cast<std::uint8_t>(value);
}

ColorPixels TakeColors(const Plugin::BlockPixels& pixels)
{
    ColorPixels colors;
    for (std::size_t i = 0; i < kBlockPixelCount; ++i) {
        colors.red[i] = pixels[i * 4];
        colors.green[i] = pixels[i * 4 + 1];
        colors.blue[i] = pixels[i * 4 + 2];
        colors.counts[i] = 1;
    }
    return colors;
}

using AlphaPixels = std::array<int, kBlockPixelCount>;

AlphaPixels TakeAlphas(const Plugin::BlockPixels& pixels)
{
    AlphaPixels alphas;
    for (std::size_t i = 0; i < kBlockPixelCount; ++i)
        alphas[i] = pixels[i * 4 + 3];
    return alphas;
}

void StoreColorFit(const ColorFit& fit, std::uint8_t* out)
{
    StoreBytes(out, fit.color0, 2);
    StoreBytes(out + 2, fit.color1, 2);
    std::uint32_t indices = 0;
    for (std::size_t i = 0; i < kBlockPixelCount; ++i)
        indices |= static_cast<std::uint32_t>(fit.indices[i]) << 2 * i;
    StoreBytes(out + 4, indices, 4);
}

void EncodeOneBitAlpha(const Plugin::BlockPixels& pixels, Plugin::Quality quality, std::uint8_t* out)
{
    ColorPixels colors = TakeColors(pixels);
    bool anyTransparent = false;
    for (std::size_t i = 0; i < kBlockPixelCount; ++i)
        if (pixels[i * 4 + 3] < kOpaqueFrom) {
            colors.counts[i] = 0;
            anyTransparent = true;
        }
    StoreColorFit(FitColors(colors, anyTransparent ? Palettes::ThreeOnly : Palettes::FourOrThree, quality),
                  out);
}

void StoreExplicitAlpha(const AlphaPixels& alphas, std::uint8_t* out)
{
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < kBlockPixelCount; ++i)
        bits |= static_cast<std::uint64_t>((alphas[i] * 15 + 127) / 255) << 4 * i;
    StoreBytes(out, bits, kAlphaBytes);
}

void EncodeExplicitAlpha(const Plugin::BlockPixels& pixels, Plugin::Quality quality, std::uint8_t* out)
{
    StoreExplicitAlpha(TakeAlphas(pixels), out);
    StoreColorFit(FitColors(TakeColors(pixels), Palettes::FourOnly, quality), out + kAlphaBytes);
}

template <Variant Format, Plugin::Quality Level>
void EncodeRow(const std::uint8_t* pixels, std::size_t stride, std::size_t count, std::uint8_t* out)
{
    constexpr std::size_t kBlockStride = Plugin::kBlockSide * Plugin::kPixelBytes;
    for (; count != 0; --count, pixels += kBlockStride, out += BlockBytes(Format)) {
        Plugin::BlockPixels block;
        for (std::size_t y = 0; y < Plugin::kBlockSide; ++y)
            std::memcpy(block.data() + y * kBlockStride, pixels + y * stride, kBlockStride);
        if constexpr (Format == Variant::Dxt3)
            EncodeExplicitAlpha(block, Level, out);
        else
            EncodeOneBitAlpha(block, Level, out);
    }
}

template <Variant Format>
Plugin::EncodeRowFn RowFor(Plugin::Quality quality)
{
    switch (quality) {
        case Plugin::Quality::Normal:
            break;
        case Plugin::Quality::Fast:
            return EncodeRow<Format, Plugin::Quality::Fast>;
        case Plugin::Quality::High:
            return EncodeRow<Format, Plugin::Quality::High>;
        case Plugin::Quality::Best:
            return EncodeRow<Format, Plugin::Quality::Best>;
    }
    return EncodeRow<Format, Plugin::Quality::Normal>;
}
}  // namespace

Plugin::EncodeRowFn BlockEncodeRowFor(Variant variant, Plugin::Quality quality)
{
    return variant == Variant::Dxt3 ? RowFor<Variant::Dxt3>(quality) : RowFor<Variant::Dxt1Alpha>(quality);
}

}  // namespace Dxt
