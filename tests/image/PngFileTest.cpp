#include <array>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>
#include <string_view>

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

enum class PictureKind { Smooth, Blocks, Noise };

/// Smooth: gradients with a hidden colour under alpha 0. Blocks: four of eight colours in each 4 x 4. Noise:
/// every byte by chance.
CBitmap DrawPicture(PictureKind kind, std::uint32_t width, std::uint32_t height)
{
    CBitmap picture = CBitmap::Create(width, height).value();
    std::minstd_rand random(width + height);
    const auto pixels = picture.Pixels();
    std::size_t at = 0;
    for (std::uint32_t y = 0; y < height; ++y)
        for (std::uint32_t x = 0; x < width; ++x)
            for (std::uint32_t channel = 0; channel < 4; ++channel) {
                std::uint32_t value = x * (channel + 1) + y * (4 - channel);
                if (kind == PictureKind::Noise)
                    value = static_cast<std::uint32_t>(random() >> 8);
                else if (kind == PictureKind::Blocks)
                    value = (((x / 4 + y / 4) % 5 + (x * 7 + y * y) % 4) * 57) * (channel + 1);
                pixels[at++] = static_cast<std::uint8_t>(value);
            }
    return picture;
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

TEST(PngFile, KeepsEveryByteOfPicturesOfEveryKindAndShape)
{
    constexpr std::array<std::array<std::uint32_t, 2>, 8> kSizes = {
        {{1, 1}, {1, 300}, {300, 1}, {3, 17}, {16, 16}, {64, 31}, {4096, 2}, {2, 4096}}};
    for (const auto& [width, height] : kSizes)
        for (const PictureKind kind : {PictureKind::Smooth, PictureKind::Blocks, PictureKind::Noise}) {
            const CBitmap picture = DrawPicture(kind, width, height);
            const auto bytes = EncodeImage(picture, ImageFormat::Png);
            ASSERT_TRUE(bytes);
            const auto again = DecodeImage(*bytes);
            ASSERT_TRUE(again);
            EXPECT_EQ(LargestDifference(*again, picture), 0) << width << " x " << height;
        }
}

TEST(PngFile, KeepsTheColoursOfTransparentPixels)
{
    const CBitmap picture = MakePicture(2, {0x00123456, 0x00FFFFFF, 0x01FEDCBA, 0xFF000000});
    const auto again = DecodeImage(EncodeImage(picture, ImageFormat::Png).value());
    ASSERT_TRUE(again);
    EXPECT_THAT(PixelsOf(*again), ElementsAre(0x00123456, 0x00FFFFFF, 0x01FEDCBA, 0xFF000000));
}

TEST(PngFile, WritesNoiseThatIsLongerThanAnythingItCanCompress)
{
    const CBitmap picture = DrawPicture(PictureKind::Noise, 700, 300);
    const auto bytes = EncodeImage(picture, ImageFormat::Png);
    ASSERT_TRUE(bytes);
    const auto again = DecodeImage(*bytes);
    ASSERT_TRUE(again);
    EXPECT_EQ(LargestDifference(*again, picture), 0);
}

#if !defined(_WIN32)

// Without filters the first would take 262673 bytes; with them the second would take 3909.
TEST(PngFile, WritesDifferencesOfSmoothPicturesAndTheColoursThemselvesOfBlockyOnes)
{
    EXPECT_LT(EncodeImage(DrawPicture(PictureKind::Smooth, 256, 256), ImageFormat::Png)->size(), 2000U);
    EXPECT_LT(EncodeImage(DrawPicture(PictureKind::Blocks, 256, 256), ImageFormat::Png)->size(), 3300U);
}

TEST(PngFile, WritesNothingButTheNecessaryChunks)
{
    const auto bytes = EncodeImage(MakePicture(2, {0x01020304, 0xFF000000}), ImageFormat::Png);
    ASSERT_TRUE(bytes);
    const std::vector<std::byte> start(bytes->begin(), bytes->begin() + 33);
    EXPECT_EQ(start, FromHex("89504e470d0a1a0a"
                             "0000000d49484452000000020000000108060000"
                             "00f4227f8a"));
    const std::string_view text(reinterpret_cast<const char*>(bytes->data()), bytes->size());
    EXPECT_EQ(text.substr(37, 4), "IDAT");
    EXPECT_EQ(std::to_integer<std::size_t>((*bytes)[36]) + 33 + 12 + 12, bytes->size());
    const std::vector<std::byte> end(bytes->end() - 12, bytes->end());
    EXPECT_EQ(end, FromHex("0000000049454e44ae426082"));
}

#endif

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
