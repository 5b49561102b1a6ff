#include "plugins/dxt/BlockEncode.h"

#include "plugins/dxt/AlphaFit.h"
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

void StoreAlphaFit(const AlphaFit& fit, std::uint8_t* out)
{
    out[0] = static_cast<std::uint8_t>(fit.alpha0);
    out[1] = static_cast<std::uint8_t>(fit.alpha1);
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < kBlockPixelCount; ++i)
        bits |= static_cast<std::uint64_t>(fit.indices[i]) << 3 * i;
    StoreBytes(out + 2, bits, 6);
}
}  // namespace

void EncodeBlock(const Plugin::BlockPixels& pixels, Variant variant, Plugin::Quality quality,
                 std::uint8_t* out)
{
    switch (variant) {
        case Variant::Dxt1:
            StoreColorFit(FitColors(TakeColors(pixels), Palettes::FourThreeOrBlack, quality), out);
            break;
        case Variant::Dxt1Alpha:
            EncodeOneBitAlpha(pixels, quality, out);
            break;
        case Variant::Dxt3:
            StoreExplicitAlpha(TakeAlphas(pixels), out);
            StoreColorFit(FitColors(TakeColors(pixels), Palettes::FourOnly, quality), out + kAlphaBytes);
            break;
        case Variant::Dxt5:
            StoreAlphaFit(FitAlphas(TakeAlphas(pixels), quality), out);
            StoreColorFit(FitColors(TakeColors(pixels), Palettes::FourOnly, quality), out + kAlphaBytes);
            break;
    }
}

}  // namespace Dxt
