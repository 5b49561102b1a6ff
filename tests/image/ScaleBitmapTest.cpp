#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "image/BitmapTools.h"
#include "tests/image/Pictures.h"

using testing::Each;
using testing::ElementsAre;

namespace {

/// Scales grey values, given and returned as the blue channel.
std::vector<std::uint32_t> Scale(std::uint32_t width, std::initializer_list<std::uint32_t> pixels,
                                 std::uint32_t newWidth, std::uint32_t newHeight)
{
    const auto scaled = ScaleBitmap(MakePicture(width, pixels), newWidth, newHeight);
    return scaled ? PixelsOf(*scaled) : std::vector<std::uint32_t>{};
}

}  // namespace

TEST(ScaleBitmap, AveragesWhenItHalves)
{
    EXPECT_THAT(Scale(2, {1, 2, 3, 5}, 1, 1), ElementsAre(3));  // 2.75
    EXPECT_THAT(Scale(2, {0, 0, 0, 2}, 1, 1), ElementsAre(1));  // 0.5, up
    EXPECT_THAT(Scale(2, {0, 0, 0, 1}, 1, 1), ElementsAre(0));  // 0.25
    EXPECT_THAT(Scale(2, {255, 255, 255, 255}, 1, 1), ElementsAre(255));
    EXPECT_THAT(Scale(4, {0, 4, 8, 8, 4, 8, 8, 8}, 2, 1), ElementsAre(4, 8));
}

TEST(ScaleBitmap, AveragesOneDirection)
{
    EXPECT_THAT(Scale(4, {0, 10, 20, 31}, 2, 1), ElementsAre(5, 26));  // 25.5
    EXPECT_THAT(Scale(1, {0, 10, 20, 31}, 1, 2), ElementsAre(5, 26));
    EXPECT_THAT(Scale(4, {0, 10, 20, 31}, 1, 1), ElementsAre(15));  // 15.25
}

TEST(ScaleBitmap, SharesPixelsThatLieUnderTwo)
{
    // A target pixel covers one and a half: two parts of the outer, one of the middle.
    EXPECT_THAT(Scale(3, {0, 30, 90}, 2, 1), ElementsAre(10, 70));
    EXPECT_THAT(Scale(1, {0, 30, 90}, 1, 2), ElementsAre(10, 70));
    // Five to three: 3+2, 1+3+1, 2+3 parts of five.
    EXPECT_THAT(Scale(5, {10, 20, 30, 40, 50}, 3, 1), ElementsAre(14, 30, 46));
}

TEST(ScaleBitmap, AveragesBoxesOfWholePixelsExactly)
{
    EXPECT_THAT(Scale(3, {1, 2, 3, 4, 5, 6, 7, 8, 9}, 1, 1), ElementsAre(5));
    EXPECT_THAT(Scale(3, {0, 0, 0, 0, 1, 0, 0, 0, 3}, 1, 1), ElementsAre(0));              // 4 / 9
    EXPECT_THAT(Scale(3, {0, 0, 0, 0, 1, 0, 0, 0, 4}, 1, 1), ElementsAre(1));              // 5 / 9
    EXPECT_THAT(Scale(6, {0, 0, 1, 9, 9, 8, 0, 0, 2, 9, 9, 9}, 2, 1), ElementsAre(1, 9));  // 0.5, 8.83
    EXPECT_THAT(Scale(2, {1, 3, 3, 4, 5, 5, 0, 0, 0, 0, 1, 2}, 2, 2), ElementsAre(3, 4, 0, 1));
}

TEST(ScaleBitmap, AveragesTheTallestBoxes)
{
    // Sums of more rows than this take another way.
    for (const std::uint32_t height : {257U, 258U, 65535U}) {
        const std::vector<std::uint32_t> white(height, 0xFFFFFFFF);
        EXPECT_THAT(PixelsOf(ScaleBitmap(MakePicture(1, white), 1, 1).value()), ElementsAre(0xFFFFFFFF));
    }
}

TEST(ScaleBitmap, InterpolatesWhenItEnlarges)
{
    EXPECT_THAT(Scale(2, {0, 100}, 4, 1), ElementsAre(0, 25, 75, 100));
    EXPECT_THAT(Scale(1, {0, 100}, 1, 4), ElementsAre(0, 25, 75, 100));
    EXPECT_THAT(Scale(2, {0, 100}, 3, 1), ElementsAre(0, 50, 100));
    // Centres at 0.1 (before the first), 0.7, 1.3, 1.9, 2.5 of three pixels of 1.
    EXPECT_THAT(Scale(3, {0, 100, 200}, 5, 1), ElementsAre(0, 40, 100, 160, 200));
}

TEST(ScaleBitmap, RoundsOnceForBothDirections)
{
    // The corners stay; the middle is the mean of all four, 63.75.
    EXPECT_THAT(Scale(2, {0, 0, 0, 255}, 3, 3), ElementsAre(0, 0, 0, 0, 64, 128, 0, 128, 255));
}

TEST(ScaleBitmap, TreatsEachDirectionForItself)
{
    EXPECT_THAT(Scale(4, {0, 10, 20, 31}, 2, 3), ElementsAre(5, 26, 5, 26, 5, 26));
    EXPECT_THAT(Scale(2, {0, 100, 50, 200, 20, 60, 30, 40}, 4, 1), ElementsAre(25, 44, 81, 100));
}

TEST(ScaleBitmap, TreatsTheChannelsIndependently)
{
    EXPECT_THAT(Scale(2, {0x00C80000, 0xFF000000}, 1, 1), ElementsAre(0x80640000));
    EXPECT_THAT(Scale(2, {0x00C80000, 0xFF000000, 0x00C80000, 0xFF000000}, 1, 1), ElementsAre(0x80640000));
}

TEST(ScaleBitmap, CopiesWhenTheSizeStays)
{
    const CBitmap picture = MakeColourfulPicture(7, 5);
    const auto scaled = ScaleBitmap(picture, 7, 5);
    ASSERT_TRUE(scaled);
    EXPECT_EQ(PixelsOf(*scaled), PixelsOf(picture));
}

TEST(ScaleBitmap, KeepsSolidPicturesExact)
{
    for (const std::uint32_t from : {1U, 2U, 3U, 5U, 64U, 255U})
        for (const std::uint32_t to : {1U, 2U, 3U, 7U, 32U, 100U, 257U})
            for (const std::uint32_t colour : {0xFFFFFFFFU, 0x01020304U, 0x80FE7F01U}) {
                const std::vector<std::uint32_t> solid(std::size_t{from} * 3, colour);
                const auto scaled = ScaleBitmap(MakePicture(from, solid), to, 5);
                ASSERT_TRUE(scaled);
                EXPECT_THAT(PixelsOf(*scaled), Each(colour)) << from << " to " << to;
            }
}

TEST(ScaleBitmap, MakesEveryPixelOfASinglePixel)
{
    EXPECT_THAT(Scale(1, {0x12345678}, 3, 2), Each(0x12345678U));
}

TEST(ScaleBitmap, ReachesTheLargestSides)
{
    const auto wide = ScaleBitmap(MakePicture(2, {0xFFFFFFFF, 0xFFFFFFFF}), 65535, 1);
    ASSERT_TRUE(wide);
    EXPECT_THAT(wide->Pixels(), Each(255));
    const auto back = ScaleBitmap(*wide, 1, 65535);
    ASSERT_TRUE(back);
    EXPECT_THAT(back->Pixels(), Each(255));
}

TEST(ScaleBitmap, RefusesSizesThatNoBitmapHas)
{
    const CBitmap picture = MakePicture(1, {0});
    EXPECT_FALSE(ScaleBitmap(picture, 0, 1));
    EXPECT_FALSE(ScaleBitmap(picture, 1, 0));
    EXPECT_FALSE(ScaleBitmap(picture, 65536, 1));
    EXPECT_FALSE(ScaleBitmap(CBitmap(), 1, 1));
}
