#include "image/Bitmap.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

TEST(Bitmap, BeginsTransparentBlack)
{
    const auto bitmap = CBitmap::Create(3, 2);
    ASSERT_TRUE(bitmap);
    EXPECT_EQ(bitmap->Width(), 3U);
    EXPECT_EQ(bitmap->Height(), 2U);
    EXPECT_EQ(bitmap->Pixels().size(), 24U);
    EXPECT_THAT(bitmap->Pixels(), testing::Each(0));
}

TEST(Bitmap, RefusesSizesThatNoBitmapHas)
{
    EXPECT_FALSE(CBitmap::Create(0, 1));
    EXPECT_FALSE(CBitmap::Create(1, 0));
    EXPECT_FALSE(CBitmap::Create(65536, 1));
    EXPECT_FALSE(CBitmap::Create(1, 65536));
    EXPECT_FALSE(CBitmap::Create(65535, 65535));
    EXPECT_TRUE(CBitmap::Create(65535, 1));
}

TEST(Bitmap, GivesItsRowsFromTheTop)
{
    auto bitmap = CBitmap::Create(1, 2);
    ASSERT_TRUE(bitmap);
    bitmap->Pixels()[4] = 7;
    EXPECT_THAT(std::as_const(*bitmap).Row(1), testing::ElementsAre(7, 0, 0, 0));
}
