#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "image/ImageFile.h"
#include "tests/image/Pictures.h"
#include "tests/image/SampleFiles.h"

using testing::ElementsAre;

namespace {

std::vector<std::uint32_t> Decode(const PngSample& sample)
{
    const auto bitmap = DecodeImage(MakePng(sample));
    return bitmap ? PixelsOf(*bitmap) : std::vector<std::uint32_t>{};
}

}  // namespace

TEST(PngFile, ReadsColoursWithAndWithoutAlpha)
{
    EXPECT_THAT(Decode({.width = 2, .colourType = 6, .rows = {0, 1, 2, 3, 4, 250, 251, 252, 0}}),
                ElementsAre(0x04010203, 0x00FAFBFC));
    EXPECT_THAT(Decode({.width = 2, .colourType = 2, .rows = {0, 1, 2, 3, 250, 251, 252}}),
                ElementsAre(0xFF010203, 0xFFFAFBFC));
}

TEST(PngFile, ReadsGrey)
{
    EXPECT_THAT(Decode({.width = 2, .colourType = 0, .rows = {0, 16, 200}}),
                ElementsAre(0xFF101010, 0xFFC8C8C8));
    EXPECT_THAT(Decode({.width = 2, .colourType = 4, .rows = {0, 16, 128, 200, 1}}),
                ElementsAre(0x80101010, 0x01C8C8C8));
    EXPECT_THAT(Decode({.width = 4, .bits = 2, .colourType = 0, .rows = {0, 0x1B}}),
                ElementsAre(0xFF000000, 0xFF555555, 0xFFAAAAAA, 0xFFFFFFFF));
    EXPECT_THAT(Decode({.width = 3, .bits = 1, .colourType = 0, .rows = {0, 0xA0}}),
                ElementsAre(0xFFFFFFFF, 0xFF000000, 0xFFFFFFFF));
}

TEST(PngFile, ReadsPalettes)
{
    EXPECT_THAT(
        Decode({.width = 2, .bits = 4, .colourType = 3, .rows = {0, 0x10}, .palette = {1, 2, 3, 4, 5, 6}}),
        ElementsAre(0xFF040506, 0xFF010203));
    // Entries beyond the list of alphas are opaque.
    EXPECT_THAT(Decode({.width = 2,
                        .colourType = 3,
                        .rows = {0, 0, 1},
                        .palette = {1, 2, 3, 4, 5, 6},
                        .transparency = {0x40}}),
                ElementsAre(0x40010203, 0xFF040506));
}

TEST(PngFile, TakesTheHighPartOfSixteenBits)
{
    const auto bitmap = DecodeImage(MakePng({.width = 2,
                                             .bits = 16,
                                             .colourType = 2,
                                             .rows = {0, 0, 0, 0x80, 0x80, 0xFF, 0xFF, 1, 1, 2, 2, 3, 3}}));
    ASSERT_TRUE(bitmap);
    EXPECT_THAT(PixelsOf(*bitmap), ElementsAre(0xFF0080FF, 0xFF010203));
    EXPECT_THAT(Decode({.width = 1, .bits = 16, .colourType = 0, .rows = {0, 0x42, 0x42}}),
                ElementsAre(0xFF424242));
}

TEST(PngFile, ReadsInterlacedPictures)
{
    // Of 3x3 pixels the passes hold: (0,0); -; -; (2,0); (0,2) (2,2); (1,0) (1,2); the middle row.
    PngSample sample{.width = 3, .height = 3, .colourType = 0, .interlaced = true};
    sample.rows = {0, 1, 0, 3, 0, 7, 9, 0, 2, 0, 8, 0, 4, 5, 6};
    std::vector<std::uint32_t> wanted;
    for (std::uint32_t i = 1; i <= 9; ++i)
        wanted.push_back(0xFF000000 | i * 0x010101);
    EXPECT_EQ(Decode(sample), wanted);
}

TEST(PngFile, WritesWhatItReadsWithAlpha)
{
    for (const std::uint32_t side : {1U, 2U, 5U, 64U, 129U}) {
        const CBitmap picture = MakeColourfulPicture(side, side + 1);
        const auto bytes = EncodeImage(picture, ImageFormat::Png);
        ASSERT_TRUE(bytes);
        const auto again = DecodeImage(*bytes);
        ASSERT_TRUE(again);
        EXPECT_EQ(LargestDifference(*again, picture), 0) << side;
    }
}

// Damaged input.

TEST(PngFile, RefusesEveryTruncation)
{
    const auto whole =
        MakePng({.width = 2, .height = 2, .colourType = 2, .rows = std::vector<std::uint8_t>(14)});
    ASSERT_TRUE(DecodeImage(whole));
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const std::vector<std::byte> cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_FALSE(DecodeImage(cut)) << "first " << length << " bytes";
    }
}

TEST(PngFile, RefusesFewerPixelsThanTheHeaderPromises)
{
    EXPECT_FALSE(
        DecodeImage(MakePng({.width = 2, .height = 3, .colourType = 0, .rows = {0, 1, 2, 0, 3, 4}})));
}

TEST(PngFile, RefusesSizesBeyondTheLimit)
{
    const std::vector<std::uint8_t> row(16386);
    EXPECT_TRUE(
        DecodeImage(MakePng({.width = 16384, .colourType = 0, .rows = {row.begin(), row.end() - 1}})));
    EXPECT_FALSE(DecodeImage(MakePng({.width = 16385, .colourType = 0, .rows = row})));
    EXPECT_FALSE(DecodeImage(MakePng({.width = 0, .colourType = 0, .rows = {0}})));
    EXPECT_FALSE(DecodeImage(MakePng({.width = 0x7FFFFFFF, .height = 0x7FFFFFFF, .rows = {0}})));
}

TEST(PngFile, RefusesAWrongChecksumOfThePixels)
{
    auto bytes = MakePng({.width = 2, .colourType = 2, .rows = {0, 1, 2, 3, 250, 251, 252}});
    bytes[bytes.size() - 18] ^= std::byte{1};
    EXPECT_FALSE(DecodeImage(bytes));
}
