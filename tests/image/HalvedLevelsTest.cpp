#include "image/HalvedLevels.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

#include "image/BitmapTools.h"
#include "tests/image/Pictures.h"

using testing::Each;
using testing::ElementsAre;

namespace {

CBitmap RandomPicture(std::uint32_t width, std::uint32_t height, std::uint32_t seed)
{
    CBitmap picture = CBitmap::Create(width, height).value();
    std::minstd_rand random(seed);
    for (std::uint8_t& byte : picture.Pixels())
        byte = static_cast<std::uint8_t>(random() >> 8);
    return picture;
}

/// The level by its definition: every byte is the mean of all that it covers, rounded to nearest, half up.
std::vector<std::byte> MeansOf(const CBitmap& picture, std::uint32_t width, std::uint32_t height)
{
    const std::uint32_t columns = picture.Width() / width;
    const std::uint32_t rows = picture.Height() / height;
    const double count = static_cast<double>(columns) * rows;
    std::vector<std::byte> means;
    for (std::uint32_t y = 0; y < height; ++y)
        for (std::uint32_t i = 0; i < width * 4; ++i) {
            std::uint64_t sum = 0;
            for (std::uint32_t row = 0; row < rows; ++row)
                for (std::uint32_t column = 0; column < columns; ++column)
                    sum += picture.Row(y * rows + row)[(i / 4 * columns + column) * 4 + i % 4];
            means.push_back(static_cast<std::byte>(static_cast<double>(sum) / count + 0.5));
        }
    return means;
}

enum class Against { Scaled, ScaledAndDefinition };

void ExpectExactLevels(const CBitmap& picture, Against against)
{
    CHalvedLevels levels(std::as_bytes(picture.Pixels()), picture.Width(), picture.Height());
    std::uint32_t width = picture.Width();
    std::uint32_t height = picture.Height();
    while (width > 1 || height > 1) {
        width = std::max(width / 2, 1U);
        height = std::max(height / 2, 1U);
        const auto level = levels.Next();
        const auto scaled = ScaleBitmap(picture, width, height);
        ASSERT_TRUE(scaled);
        ASSERT_TRUE(std::ranges::equal(level, std::as_bytes(scaled->Pixels())))
            << picture.Width() << " x " << picture.Height() << " to " << width << " x " << height;
        if (against == Against::ScaledAndDefinition) {
            ASSERT_TRUE(level == MeansOf(picture, width, height))
                << picture.Width() << " x " << picture.Height() << " to " << width << " x " << height;
        }
    }
}

std::vector<std::byte> Grey(std::initializer_list<int> values)
{
    std::vector<std::byte> pixels;
    for (const int value : values)
        pixels.insert(pixels.end(), 4, static_cast<std::byte>(value));
    return pixels;
}

}  // namespace

TEST(HalvedLevels, RoundsEachLevelOnceFromTheWholePicture)
{
    const auto pixels = Grey({0, 0, 0, 2,    // 0 | 0.5
                              0, 1, 0, 0,    // with the row above: 0.25 | 0.5
                              1, 1, 0, 0,    //
                              0, 0, 0, 3});  // 0.5 | 0.75
    CHalvedLevels levels(pixels, 4, 4);
    EXPECT_EQ(levels.Next(), Grey({0, 1, 1, 1}));
    // 8 of 16 are a half, up. From the level above it would be three quarters.
    EXPECT_EQ(levels.Next(), Grey({1}));
    const auto less = Grey({0, 0, 0, 2, 0, 1, 0, 0, 1, 1, 0, 0, 0, 0, 0, 2});
    CHalvedLevels lower(less, 4, 4);
    EXPECT_EQ(lower.Next(), Grey({0, 1, 1, 1}));
    EXPECT_EQ(lower.Next(), Grey({0}));
}

TEST(HalvedLevels, KeepsTheOtherSideAtOne)
{
    const auto pixels = Grey({10, 21, 30, 40});
    CHalvedLevels wide(pixels, 4, 1);
    EXPECT_EQ(wide.Next(), Grey({16, 35}));
    EXPECT_EQ(wide.Next(), Grey({25}));
    CHalvedLevels high(pixels, 1, 4);
    EXPECT_EQ(high.Next(), Grey({16, 35}));
    EXPECT_EQ(high.Next(), Grey({25}));
}

TEST(HalvedLevels, TreatsTheChannelsIndependently)
{
    const CBitmap picture = MakePicture(2, {0x00C80000, 0xFF000000, 0x00C80002, 0xFF000000});
    CHalvedLevels levels(std::as_bytes(picture.Pixels()), 2, 2);
    EXPECT_EQ(levels.Next(), (std::vector{std::byte{1}, std::byte{0}, std::byte{0x64}, std::byte{0x80}}));
}

TEST(HalvedLevels, AreTheExactMeansOfRandomPicturesOfEverySizeUpTo512)
{
    std::uint32_t seed = 1;
    for (std::uint32_t width = 1; width <= 512; width *= 2)
        for (std::uint32_t height = 1; height <= 512; height *= 2)
            ExpectExactLevels(RandomPicture(width, height, seed++),
                              width <= 32 && height <= 32 ? Against::ScaledAndDefinition : Against::Scaled);
    ExpectExactLevels(RandomPicture(512, 64, seed), Against::ScaledAndDefinition);
}

TEST(HalvedLevels, HoldTheLargestSumsOfTheLongestSides)
{
    for (const std::uint32_t height : {1U, 2U, 16U}) {
        const std::vector<std::byte> white(std::size_t{32768} * height * 4, std::byte{0xFF});
        CHalvedLevels levels(white, 32768, height);
        for (int level = 0; level < 15; ++level)
            EXPECT_THAT(levels.Next(), Each(std::byte{0xFF})) << height << ", " << level;
    }
}
