#include "image/BitmapTools.h"

#include <gtest/gtest.h>

#include "tests/image/Pictures.h"

TEST(ImageDifference, ComparesOnlyEqualSizes)
{
    const CBitmap small = MakePicture(2, {0, 0});
    EXPECT_EQ(ImageDifference(small, MakePicture(2, {0, 0, 0, 0})), -1);
    EXPECT_EQ(ImageDifference(small, MakePicture(1, {0, 0})), -1);
}

TEST(ImageDifference, IsZeroForThePictureItselfAndForItsCopy)
{
    const CBitmap picture = MakeColourfulPicture(5, 3);
    const CBitmap copy = picture;
    EXPECT_EQ(ImageDifference(picture, picture), 0);
    EXPECT_EQ(ImageDifference(picture, copy), 0);
}

TEST(ImageDifference, AddsTheDifferencesOfAllChannels)
{
    const CBitmap one = MakePicture(2, {0xFF010203, 0x00000000});
    const CBitmap other = MakePicture(2, {0xFE000000, 0x000000FF});
    EXPECT_EQ(ImageDifference(one, other), 1 + 1 + 2 + 3 + 255);
    EXPECT_EQ(ImageDifference(other, one), 262);
}

TEST(ImageDifference, WrapsAroundInThirtyTwoBits)
{
    // 1541 * 1367 pixels of four times 255 make 2148677940, 2^32 - 2146289356.
    const auto black = CBitmap::Create(1541, 1367);
    auto white = CBitmap::Create(1541, 1367);
    ASSERT_TRUE(black && white);
    for (std::uint8_t& byte : white->Pixels())
        byte = 255;
    EXPECT_EQ(ImageDifference(*black, *white), -2146289356);
}

TEST(MakeThumbnail, GivesThePictureAtTheSize)
{
    const auto thumbnail =
        MakeThumbnail(MakePicture(2, {0xFF000000, 0xFF000000, 0xFFFFFFFF, 0xFFFFFFFF}), 1, 1);
    ASSERT_TRUE(thumbnail);
    EXPECT_EQ(PixelsOf(*thumbnail), std::vector<std::uint32_t>{0xFF808080});
}
