#include "image/Palette.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/image/Pictures.h"

using testing::ElementsAre;

TEST(Palette, KeepsFewColoursExactInAscendingOrder)
{
    const auto paletted = ReduceToPalette(MakePicture(3, {0xFFFF0000, 0xFF000001, 0xFFFF0000}));
    EXPECT_THAT(paletted.palette, ElementsAre(PaletteColour{0, 0, 1}, PaletteColour{255, 0, 0}));
    EXPECT_THAT(paletted.indices, ElementsAre(1, 0, 1));
    EXPECT_FALSE(paletted.transparent);
}

TEST(Palette, GivesThePixelsBelowHalfAlphaOneTransparentEntry)
{
    const auto paletted = ReduceToPalette(MakePicture(4, {0x7FFF0000, 0x80000001, 0x00123456, 0xFF000001}));
    EXPECT_THAT(paletted.palette, ElementsAre(PaletteColour{0, 0, 1}, PaletteColour{}));
    EXPECT_EQ(paletted.transparent, 1);
    EXPECT_THAT(paletted.indices, ElementsAre(1, 0, 1, 0));
}

TEST(Palette, NeedsNoColourForAnEmptyPicture)
{
    const auto paletted = ReduceToPalette(MakePicture(2, {0, 0}));
    EXPECT_EQ(paletted.palette.size(), 1U);
    EXPECT_EQ(paletted.transparent, 0);
}

TEST(Palette, KeepsTwoHundredAndFiftySixColoursExact)
{
    std::vector<std::uint32_t> pixels;
    for (std::uint32_t i = 0; i < 256; ++i)
        pixels.push_back(0xFF000000U | i << 16 | (255 - i) << 8 | i / 2);
    const auto paletted = ReduceToPalette(MakePicture(256, pixels));
    ASSERT_EQ(paletted.palette.size(), 256U);
    for (std::uint32_t i = 0; i < 256; ++i) {
        EXPECT_EQ(paletted.indices[i], i);
        EXPECT_EQ(paletted.palette[i].green, 255 - i);
    }
}

TEST(Palette, ApproximatesManyColours)
{
    // 4096 colours, 16 apart: 256 of them leave no pixel further away than two such steps in any channel.
    std::vector<std::uint32_t> pixels;
    for (std::uint32_t i = 0; i < 4096; ++i)
        pixels.push_back(0xFF000000U | (i >> 8) * 17 << 16 | (i >> 4 & 15) * 17 << 8 | (i & 15) * 17);
    const auto paletted = ReduceToPalette(MakePicture(64, pixels));
    EXPECT_EQ(paletted.palette.size(), 256U);
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        const PaletteColour& colour = paletted.palette[paletted.indices[i]];
        EXPECT_LE(std::abs(colour.red - static_cast<int>(pixels[i] >> 16 & 255)), 34);
        EXPECT_LE(std::abs(colour.green - static_cast<int>(pixels[i] >> 8 & 255)), 34);
        EXPECT_LE(std::abs(colour.blue - static_cast<int>(pixels[i] & 255)), 34);
    }
}

TEST(Palette, LeavesRoomForTheTransparentEntryAmongManyColours)
{
    CBitmap picture = MakeOpaquePicture(40, 40);
    picture.Pixels()[3] = 0;
    const auto paletted = ReduceToPalette(picture);
    EXPECT_EQ(paletted.palette.size(), 256U);
    EXPECT_EQ(paletted.transparent, 255);
    EXPECT_EQ(paletted.indices[0], 255);
    EXPECT_NE(paletted.indices[1], 255);
}

TEST(Palette, KeepsRareColoursWhenOneColourFillsThePicture)
{
    // Almost everything is black; the 300 other colours still get the rest of the palette.
    std::vector<std::uint32_t> pixels(100000, 0xFF000000);
    for (std::uint32_t i = 0; i < 300; ++i)
        pixels[i * 7] = 0xFF800000U | i * 40 % 256 << 8 | i % 256;
    const auto paletted = ReduceToPalette(MakePicture(1000, pixels));
    EXPECT_GT(paletted.palette.size(), 200U);
    EXPECT_EQ(paletted.palette[paletted.indices[1]], PaletteColour{});
}
