#pragma once

// The layout of DXT blocks and the colours that they can express. Shared by decoder and encoder, so that the
// encoder always measures against what the decoder will show. Values only, nothing is owned.
//
// Colour block, 8 bytes:                    DXT3 alpha, 8 bytes: 4 bits a pixel, first pixel lowest
//   0  u16  colour 0, 5-6-5 bits R G B      DXT5 alpha, 8 bytes:
//   2  u16  colour 1                          0  u8   alpha 0
//   4  u32  2 bits a pixel, first lowest      1  u8   alpha 1
// DXT3 and DXT5: alpha first, then colour.    2  u48  3 bits a pixel, first lowest

#include <array>
#include <cstddef>
#include <cstdint>

namespace Dxt {

inline constexpr std::size_t kColorBytes = 8;
inline constexpr std::size_t kAlphaBytes = 8;
inline constexpr std::size_t kBlockPixelCount = 16;

struct Rgb {
    int red;
    int green;
    int blue;
};

/// Four colours when colour 0 is the greater number (always so in DXT3 and DXT5), else three and a fourth,
/// black.
enum class PaletteMode { FourColors, ThreeColors };

constexpr int Expand5(int value)
{
    return value << 3 | value >> 2;
}

constexpr int Expand6(int value)
{
    return value << 2 | value >> 4;
}

constexpr Rgb ExpandColor(std::uint16_t packed)
{
    return {Expand5(packed >> 11), Expand6(packed >> 5 & 63), Expand5(packed & 31)};
}

constexpr std::uint16_t PackColor(int red5, int green6, int blue5)
{
    return static_cast<std::uint16_t>(red5 << 11 | green6 << 5 | blue5);
}

/// A third of the way from `closer` to `farther`, rounded down.
constexpr int Third(int closer, int farther)
{
    return (2 * closer + farther) / 3;
}

constexpr int Half(int first, int second)
{
    return (first + second) / 2;
}

/// The colours of indices 0 to 3. In three-colour mode the last one is black.
constexpr std::array<Rgb, 4> MakePalette(std::uint16_t color0, std::uint16_t color1, PaletteMode mode)
{
    const Rgb a = ExpandColor(color0);
    const Rgb b = ExpandColor(color1);
    if (mode == PaletteMode::FourColors)
        return {a, b, Rgb{Third(a.red, b.red), Third(a.green, b.green), Third(a.blue, b.blue)},
                Rgb{Third(b.red, a.red), Third(b.green, a.green), Third(b.blue, a.blue)}};
    return {a, b, Rgb{Half(a.red, b.red), Half(a.green, b.green), Half(a.blue, b.blue)}, Rgb{0, 0, 0}};
}

template <int Steps>
constexpr void MixAlphas(int alpha0, int alpha1, std::array<int, 8>& alphas)
{
    for (int i = 1; i < Steps; ++i)
        alphas[static_cast<std::size_t>(i) + 1] = ((Steps - i) * alpha0 + i * alpha1) / Steps;
}

/// The alphas of indices 0 to 7 of a DXT5 block: eight values when alpha 0 is the greater one, else six and 0
/// and 255.
constexpr std::array<int, 8> MakeAlphas(int alpha0, int alpha1)
{
    std::array<int, 8> alphas{alpha0, alpha1, 0, 0, 0, 0, 0, 255};
    // A divisor known to the compiler makes each division a multiplication.
    if (alpha0 > alpha1)
        MixAlphas<7>(alpha0, alpha1, alphas);
    else
        MixAlphas<5>(alpha0, alpha1, alphas);
    return alphas;
}

}  // namespace Dxt
