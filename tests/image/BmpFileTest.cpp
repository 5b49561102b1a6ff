#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "image/ImageFile.h"
#include "tests/image/Pictures.h"
#include "tests/image/SampleFiles.h"

using testing::ElementsAre;

namespace {

// Blue, green, red, nothing.
const std::vector<std::uint8_t> kBlackRedBlue = {0, 0, 0, 0, 0, 0, 255, 0, 255, 0, 0, 0};
constexpr std::uint32_t kBlack = 0xFF000000;
constexpr std::uint32_t kRed = 0xFFFF0000;
constexpr std::uint32_t kBlue = 0xFF0000FF;

std::vector<std::uint32_t> Decode(const BmpSample& sample)
{
    const auto bitmap = DecodeImage(MakeBmp(sample));
    return bitmap ? PixelsOf(*bitmap) : std::vector<std::uint32_t>{};
}

BmpSample Runs(std::uint32_t bits, std::vector<std::uint8_t> pixels)
{
    return {.width = 4,
            .height = 2,
            .bits = bits,
            .compression = bits == 8 ? 1U : 2U,
            .pixels = std::move(pixels),
            .palette = kBlackRedBlue};
}

}  // namespace

TEST(BmpFile, ReadsTheLowestRowFirst)
{
    EXPECT_THAT(Decode({.width = 1, .height = 2, .pixels = {1, 2, 3, 0, 4, 5, 6, 0}}),
                ElementsAre(0xFF060504, 0xFF030201));
}

TEST(BmpFile, ReadsTheHighestRowFirstWhenTheHeightIsNegative)
{
    EXPECT_THAT(Decode({.width = 1, .height = -2, .pixels = {1, 2, 3, 0, 4, 5, 6, 0}}),
                ElementsAre(0xFF030201, 0xFF060504));
}

TEST(BmpFile, ReadsPalettes)
{
    EXPECT_THAT(Decode({.width = 3, .bits = 8, .pixels = {2, 0, 1, 0}, .palette = kBlackRedBlue}),
                ElementsAre(kBlue, kBlack, kRed));
    EXPECT_THAT(Decode({.width = 3, .bits = 4, .pixels = {0x20, 0x10, 0, 0}, .palette = kBlackRedBlue}),
                ElementsAre(kBlue, kBlack, kRed));
    EXPECT_THAT(
        Decode({.width = 3, .bits = 1, .pixels = {0xA0, 0, 0, 0}, .palette = {0, 0, 0, 0, 0, 0, 255, 0}}),
        ElementsAre(kRed, kBlack, kRed));
}

TEST(BmpFile, ReadsTheOldestHeader)
{
    std::vector<std::uint8_t> palette(768);
    palette[5] = 255;
    EXPECT_THAT(Decode({.width = 2, .bits = 8, .pixels = {1, 0, 0, 0}, .palette = palette, .isOldest = true}),
                ElementsAre(kRed, kBlack));
}

TEST(BmpFile, ReadsSixteenBits)
{
    // Five bits a channel; all set is white.
    EXPECT_THAT(Decode({.width = 2, .bits = 16, .pixels = {0xFF, 0x7F, 0x00, 0x7C}}),
                ElementsAre(0xFFFFFFFF, 0xFFFF0000));
    EXPECT_THAT(Decode({.width = 2,
                        .bits = 16,
                        .compression = 3,
                        .pixels = {0xE0, 0x07, 0x00, 0xF8},
                        .palette = {0x00, 0xF8, 0, 0, 0xE0, 0x07, 0, 0, 0x1F, 0, 0, 0}}),
                ElementsAre(0xFF00FF00, 0xFFFF0000));
}

TEST(BmpFile, TakesPlainThirtyTwoBitPixelsAsOpaque)
{
    EXPECT_THAT(Decode({.width = 2, .bits = 32, .pixels = {1, 2, 3, 0, 4, 5, 6, 128}}),
                ElementsAre(0xFF030201, 0xFF060504));
}

#ifndef _WIN32
TEST(BmpFile, ReadsMasksInAnyOrder)
{
    // Red in the lowest byte, then green, then blue.
    EXPECT_THAT(Decode({.width = 1,
                        .bits = 32,
                        .compression = 3,
                        .pixels = {10, 20, 30, 40},
                        .palette = {0xFF, 0, 0, 0, 0, 0xFF, 0, 0, 0, 0, 0xFF, 0}}),
                ElementsAre(0xFF0A141E));
}
#endif

TEST(BmpFile, ReadsRunsOfEightBits)
{
    // Lower row: three of red, one of blue; upper row: three literals and their padding, one of red; end.
    EXPECT_THAT(Decode(Runs(8, {3, 1, 1, 2, 0, 0, 0, 3, 2, 0, 1, 0, 1, 1, 0, 1})),
                ElementsAre(kBlue, kBlack, kRed, kRed, kRed, kRed, kRed, kBlue));
}

TEST(BmpFile, ReadsRunsOfFourBits)
{
    // Lower row: four in turn; upper row: three literals in two bytes, one of red; end.
    EXPECT_THAT(Decode(Runs(4, {4, 0x12, 0, 0, 0, 3, 0x20, 0x10, 1, 0x10, 0, 1})),
                ElementsAre(kBlue, kBlack, kRed, kRed, kRed, kBlue, kRed, kBlue));
}

TEST(BmpFile, WritesColoursWithoutAlpha)
{
    for (const std::uint32_t width : {1U, 2U, 3U, 4U, 63U}) {
        const CBitmap picture = MakeOpaquePicture(width, 5);
        const auto bytes = EncodeImage(picture, ImageFormat::Bmp);
        ASSERT_TRUE(bytes);
        const auto again = DecodeImage(*bytes);
        ASSERT_TRUE(again);
        EXPECT_EQ(LargestDifference(*again, picture), 0) << width;
    }
    const auto bytes = EncodeImage(MakePicture(1, {0x00102030}), ImageFormat::Bmp);
    ASSERT_TRUE(bytes);
    EXPECT_THAT(PixelsOf(DecodeImage(*bytes).value()), ElementsAre(0xFF102030));
}

// Damaged input.

TEST(BmpFile, RefusesEveryTruncation)
{
    const auto whole = MakeBmp({.width = 2, .height = 2, .pixels = std::vector<std::uint8_t>(16)});
    ASSERT_TRUE(DecodeImage(whole));
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const std::vector<std::byte> cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_FALSE(DecodeImage(cut)) << "first " << length << " bytes";
    }
}

TEST(BmpFile, SurvivesRunsThatLeaveThePicture)
{
    DecodeImage(MakeBmp(Runs(8, {255, 1, 0, 2, 255, 255, 9, 9, 0, 1})));
    DecodeImage(MakeBmp(Runs(8, {0, 2, 0, 255, 5, 1, 0, 1})));
    DecodeImage(MakeBmp(Runs(4, {0, 255, 1, 2})));
    DecodeImage(MakeBmp(Runs(8, {})));
}

TEST(BmpFile, RefusesWhatItDoesNotKnow)
{
    EXPECT_FALSE(DecodeImage(MakeBmp({.bits = 2, .pixels = {0, 0, 0, 0}})));
    EXPECT_FALSE(DecodeImage(MakeBmp({.bits = 24, .compression = 1, .pixels = {0, 0, 0, 0}})));
    EXPECT_FALSE(DecodeImage(MakeBmp({.bits = 24, .compression = 9, .pixels = {0, 0, 0, 0}})));
    EXPECT_FALSE(DecodeImage(MakeBmp({.width = 0, .pixels = {0, 0, 0, 0}})));
    EXPECT_FALSE(DecodeImage(MakeBmp({.height = 0, .pixels = {0, 0, 0, 0}})));
    EXPECT_FALSE(
        DecodeImage(MakeBmp({.width = 16385, .bits = 1, .pixels = std::vector<std::uint8_t>(2052)})));
}
