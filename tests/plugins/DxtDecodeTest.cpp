#include <array>
#include <gtest/gtest.h>
#include <vector>

#include "plugins/dxt/Dxt.h"
#include "tests/plugins/PluginInterfacePictures.h"

namespace {
using Dxt::Variant;
using Bytes = std::vector<std::uint8_t>;
using Pixel = std::array<int, 4>;

constexpr std::array kVariants{Variant::Dxt1, Variant::Dxt1Alpha, Variant::Dxt3, Variant::Dxt5};

Bytes Decode(const Bytes& blocks, std::uint32_t width, std::uint32_t height, Variant variant)
{
    Bytes out(std::size_t{width} * height * 4, 0xCD);
    EXPECT_EQ(Dxt::Decompress(blocks.data(), out.data(), width, height, variant), out.size());
    return out;
}

Pixel At(const Bytes& pixels, std::size_t index)
{
    return {pixels[index * 4], pixels[index * 4 + 1], pixels[index * 4 + 2], pixels[index * 4 + 3]};
}

// The pixels of the rows follow as indices 0 1 2 3, 0 0 0 0, 1 1 1 1 and 3 3 3 3.
Bytes ColorBlock(std::uint16_t color0, std::uint16_t color1)
{
    return {static_cast<std::uint8_t>(color0),
            static_cast<std::uint8_t>(color0 >> 8),
            static_cast<std::uint8_t>(color1),
            static_cast<std::uint8_t>(color1 >> 8),
            0xE4,
            0x00,
            0x55,
            0xFF};
}

Bytes Join(Bytes first, const Bytes& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

TEST(DxtDecode, MixesFourColoursWhenTheFirstIsGreater)
{
    const Bytes pixels = Decode(ColorBlock(0xF800, 0x001F), 4, 4, Variant::Dxt1);
    EXPECT_EQ(At(pixels, 0), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(At(pixels, 1), (Pixel{0, 0, 255, 255}));
    EXPECT_EQ(At(pixels, 2), (Pixel{170, 0, 85, 255}));
    EXPECT_EQ(At(pixels, 3), (Pixel{85, 0, 170, 255}));
}

TEST(DxtDecode, TakesTheFirstPixelFromTheLowestBitsRowByRow)
{
    const Bytes pixels = Decode(ColorBlock(0xF800, 0x001F), 4, 4, Variant::Dxt1);
    for (std::size_t x = 0; x < 4; ++x) {
        EXPECT_EQ(At(pixels, 4 + x), (Pixel{255, 0, 0, 255}));
        EXPECT_EQ(At(pixels, 8 + x), (Pixel{0, 0, 255, 255}));
        EXPECT_EQ(At(pixels, 12 + x), (Pixel{85, 0, 170, 255}));
    }
}

TEST(DxtDecode, RepeatsTheHighBitsOfAnEndpoint)
{
    // Levels 1, 1, 1 and 16, 32, 16.
    const Bytes pixels = Decode(ColorBlock(0x8410, 0x0821), 4, 4, Variant::Dxt1);
    EXPECT_EQ(At(pixels, 0), (Pixel{132, 130, 132, 255}));
    EXPECT_EQ(At(pixels, 1), (Pixel{8, 4, 8, 255}));
}

TEST(DxtDecode, RoundsAThirdDown)
{
    // Red 8 and green 4 against black: 16/3 and 8/3, 8/3 and 4/3.
    const Bytes pixels = Decode(ColorBlock(0x0820, 0x0000), 4, 4, Variant::Dxt1);
    EXPECT_EQ(At(pixels, 2), (Pixel{5, 2, 0, 255}));
    EXPECT_EQ(At(pixels, 3), (Pixel{2, 1, 0, 255}));
}

TEST(DxtDecode, MixesThreeColoursAndOpaqueBlackWhenTheFirstIsNotGreater)
{
    const Bytes pixels = Decode(ColorBlock(0x001F, 0xF800), 4, 4, Variant::Dxt1);
    EXPECT_EQ(At(pixels, 0), (Pixel{0, 0, 255, 255}));
    EXPECT_EQ(At(pixels, 1), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(At(pixels, 2), (Pixel{127, 0, 127, 255}));
    EXPECT_EQ(At(pixels, 3), (Pixel{0, 0, 0, 255}));
}

TEST(DxtDecode, ShowsTheFourthOfThreeColoursTransparentWithOneBitAlpha)
{
    const Bytes pixels = Decode(ColorBlock(0x001F, 0xF800), 4, 4, Variant::Dxt1Alpha);
    EXPECT_EQ(At(pixels, 2), (Pixel{127, 0, 127, 255}));
    EXPECT_EQ(At(pixels, 3), (Pixel{0, 0, 0, 0}));
}

TEST(DxtDecode, ShowsFourColoursOpaqueWithOneBitAlpha)
{
    const Bytes pixels = Decode(ColorBlock(0xF800, 0x001F), 4, 4, Variant::Dxt1Alpha);
    EXPECT_EQ(At(pixels, 3), (Pixel{85, 0, 170, 255}));
}

TEST(DxtDecode, TakesEqualColoursForTheThreeColourMode)
{
    const Bytes pixels = Decode(ColorBlock(0xFFFF, 0xFFFF), 4, 4, Variant::Dxt1);
    EXPECT_EQ(At(pixels, 2), (Pixel{255, 255, 255, 255}));
    EXPECT_EQ(At(pixels, 3), (Pixel{0, 0, 0, 255}));
}

TEST(DxtDecode, ReadsFourBitsOfAlphaInDxt3)
{
    const Bytes alpha{0x10, 0x32, 0x54, 0x76, 0x98, 0xBA, 0xDC, 0xFE};
    const Bytes pixels = Decode(Join(alpha, ColorBlock(0xFFFF, 0x0000)), 4, 4, Variant::Dxt3);
    constexpr std::array kWanted{0, 17, 34, 51, 68, 85, 102, 119, 136, 153, 170, 187, 204, 221, 238, 255};
    for (std::size_t i = 0; i < kWanted.size(); ++i)
        EXPECT_EQ(At(pixels, i)[3], kWanted[i]) << "pixel " << i;
}

TEST(DxtDecode, MixesFourColoursInDxt3AndDxt5WhateverTheirOrder)
{
    const Bytes block = Join(Bytes(8, 0), ColorBlock(0x001F, 0xF800));
    for (const Variant variant : {Variant::Dxt3, Variant::Dxt5}) {
        const Bytes pixels = Decode(block, 4, 4, variant);
        EXPECT_EQ(At(pixels, 2), (Pixel{85, 0, 170, 0}));
        EXPECT_EQ(At(pixels, 3), (Pixel{170, 0, 85, 0}));
    }
}

TEST(DxtDecode, MixesEightAlphasWhenTheFirstIsGreater)
{
    // Indices 0 to 7 twice.
    const Bytes alpha{200, 10, 0x88, 0xC6, 0xFA, 0x88, 0xC6, 0xFA};
    const Bytes pixels = Decode(Join(alpha, ColorBlock(0xFFFF, 0x0000)), 4, 4, Variant::Dxt5);
    constexpr std::array kWanted{200, 10, 172, 145, 118, 91, 64, 37};
    for (std::size_t i = 0; i < 16; ++i)
        EXPECT_EQ(At(pixels, i)[3], kWanted[i % 8]) << "pixel " << i;
}

TEST(DxtDecode, MixesSixAlphasBesideNoneAndFullWhenTheFirstIsNotGreater)
{
    const Bytes alpha{10, 201, 0x88, 0xC6, 0xFA, 0x88, 0xC6, 0xFA};
    const Bytes pixels = Decode(Join(alpha, ColorBlock(0xFFFF, 0x0000)), 4, 4, Variant::Dxt5);
    constexpr std::array kWanted{10, 201, 48, 86, 124, 162, 0, 255};
    for (std::size_t i = 0; i < 16; ++i)
        EXPECT_EQ(At(pixels, i)[3], kWanted[i % 8]) << "pixel " << i;
}

TEST(DxtDecode, DividesEveryPairOfLevelsExactly)
{
    for (int first = 0; first < 64; ++first)
        for (int second = 0; second < 64; ++second) {
            const int red0 = first / 2;
            const int red1 = second / 2;
            const Bytes block = ColorBlock(static_cast<std::uint16_t>(red0 << 11 | first << 5 | red0),
                                           static_cast<std::uint16_t>(red1 << 11 | second << 5 | red1));
            const Bytes pixels = Decode(Join(Bytes(8, 0), block), 4, 4, Variant::Dxt5);
            const int wide0 = red0 * 8 + red0 / 4;
            const int wide1 = red1 * 8 + red1 / 4;
            const int green0 = first * 4 + first / 16;
            const int green1 = second * 4 + second / 16;
            const int third = (2 * wide0 + wide1) / 3;
            const int twoThirds = (wide0 + 2 * wide1) / 3;
            ASSERT_EQ(At(pixels, 2), (Pixel{third, (2 * green0 + green1) / 3, third, 0}));
            ASSERT_EQ(At(pixels, 3), (Pixel{twoThirds, (green0 + 2 * green1) / 3, twoThirds, 0}));
        }
}

TEST(DxtDecode, WritesOnlyThePixelsOfThePicture)
{
    // Two blocks across; of the second one column is inside, and two rows of both.
    const Bytes blocks = Join(ColorBlock(0xF800, 0x001F), ColorBlock(0x07E0, 0x0000));
    const Bytes pixels = Decode(blocks, 5, 2, Variant::Dxt1);
    EXPECT_EQ(At(pixels, 3), (Pixel{85, 0, 170, 255}));
    EXPECT_EQ(At(pixels, 4), (Pixel{0, 255, 0, 255}));
    EXPECT_EQ(At(pixels, 5), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(At(pixels, 9), (Pixel{0, 255, 0, 255}));
}

TEST(DxtDecode, StaysInsideItsBuffersAtEverySize)
{
    for (const Variant variant : kVariants)
        for (std::uint32_t width = 1; width <= 17; ++width)
            for (std::uint32_t height = 1; height <= 17; ++height) {
                const std::size_t blocks = std::size_t{(width + 3) / 4} * ((height + 3) / 4);
                const auto source = PluginTest::ExactCopy(Bytes(blocks * Dxt::BlockBytes(variant), 0x5A));
                const std::size_t size = std::size_t{width} * height * 4;
                const auto out = std::make_unique<std::uint8_t[]>(size);
                EXPECT_EQ(Dxt::Decompress(source.get(), out.get(), width, height, variant), size);
            }
}

TEST(DxtDecode, TakesBuffersOfAnyAlignment)
{
    const Bytes block = ColorBlock(0xF800, 0x001F);
    const Bytes wanted = Decode(block, 4, 4, Variant::Dxt1);
    Bytes shifted(1, 0);
    shifted.insert(shifted.end(), block.begin(), block.end());
    Bytes out(65);
    EXPECT_EQ(Dxt::Decompress(shifted.data() + 1, out.data() + 1, 4, 4, Variant::Dxt1), 64U);
    EXPECT_EQ(Bytes(out.begin() + 1, out.end()), wanted);
}

TEST(DxtDecode, RefusesAPictureWithoutPixels)
{
    std::uint8_t byte = 7;
    for (const Variant variant : kVariants) {
        EXPECT_EQ(Dxt::Decompress(&byte, &byte, 0, 4, variant), 0U);
        EXPECT_EQ(Dxt::Decompress(&byte, &byte, 4, 0, variant), 0U);
        EXPECT_EQ(Dxt::Decompress(&byte, &byte, 0x10000, 0x10000, variant), 0U);
    }
    EXPECT_EQ(byte, 7);
}

TEST(DxtDecode, ChoosesTheVariantByTheFlags)
{
    EXPECT_EQ(Dxt::VariantOf(64), Variant::Dxt1);
    EXPECT_EQ(Dxt::VariantOf(32 + 64), Variant::Dxt1Alpha);
    EXPECT_EQ(Dxt::VariantOf(32), Variant::Dxt3);
    EXPECT_EQ(Dxt::VariantOf(32 + 256), Variant::Dxt5);
    EXPECT_EQ(Dxt::VariantOf(0), std::nullopt);
    EXPECT_EQ(Dxt::VariantOf(15 + 16), std::nullopt);
}
}  // namespace
