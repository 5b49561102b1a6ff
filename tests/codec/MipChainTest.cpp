#include "codec/MipChain.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/codec/TestDatabase.h"

namespace {

using testing::ElementsAre;

std::vector<int> Numbers(const std::vector<std::byte>& bytes)
{
    std::vector<int> numbers;
    for (const std::byte value : bytes)
        numbers.push_back(std::to_integer<int>(value));
    return numbers;
}

std::vector<std::byte> Pixel(int red, int green, int blue, int alpha)
{
    return {static_cast<std::byte>(red), static_cast<std::byte>(green), static_cast<std::byte>(blue),
            static_cast<std::byte>(alpha)};
}

}  // namespace

TEST(MipChain, HalvesBothSidesAndNeverGoesBelowOne)
{
    EXPECT_THAT(LevelSizes({8, 2}, true),
                ElementsAre(PixelSize{8, 2}, PixelSize{4, 1}, PixelSize{2, 1}, PixelSize{1, 1}));
    EXPECT_THAT(LevelSizes({1, 1}, true), ElementsAre(PixelSize{1, 1}));
    EXPECT_THAT(LevelSizes({8, 2}, false), ElementsAre(PixelSize{8, 2}));
}

TEST(MipChain, TurnsBitmapPixelsIntoRedGreenBlueAlpha)
{
    const CBitmap picture = SolidPicture(1, 1, 10, 20, 30, 40);
    EXPECT_THAT(Numbers(RgbaPixels(picture, true)), ElementsAre(10, 20, 30, 40));
    EXPECT_THAT(Numbers(RgbaPixels(picture, false)), ElementsAre(10, 20, 30, 255));
}

TEST(MipChain, ScalesAPictureToALevel)
{
    const CBitmap picture = SolidPicture(4, 4, 10, 20, 30, 40);
    EXPECT_THAT(Numbers(ScaledRgbaPixels(picture, {1, 1}, true)), ElementsAre(10, 20, 30, 40));
    EXPECT_EQ(ScaledRgbaPixels(picture, {2, 1}, true).size(), 8U);
}

TEST(MipChain, PacksOpaquePixelsAsFiveSixFive)
{
    std::vector<std::byte> out;
    AppendPacked16(Pixel(0xFF, 0x00, 0x00, 0x00), false, out);
    AppendPacked16(Pixel(0x00, 0xFF, 0x00, 0x00), false, out);
    AppendPacked16(Pixel(0x0F, 0x07, 0xFF, 0xFF), false, out);
    EXPECT_THAT(Numbers(out), ElementsAre(0x00, 0xF8, 0xE0, 0x07, 0x3F, 0x08));
}

TEST(MipChain, PacksPixelsWithAlphaAsFourNibblesRedHighest)
{
    std::vector<std::byte> out;
    AppendPacked16(Pixel(0x12, 0x34, 0x56, 0x78), true, out);
    EXPECT_THAT(Numbers(out), ElementsAre(0x57, 0x13));
}
