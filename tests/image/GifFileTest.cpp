#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "image/GifWriter.h"
#include "image/ImageFile.h"
#include "tests/image/Pictures.h"
#include "tests/image/SampleFiles.h"

using testing::ElementsAre;

namespace {

const std::vector<std::uint8_t> kRedGreenBlueWhite = {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255};
constexpr std::uint32_t kRed = 0xFFFF0000;
constexpr std::uint32_t kGreen = 0xFF00FF00;
constexpr std::uint32_t kBlue = 0xFF0000FF;
constexpr std::uint32_t kWhite = 0xFFFFFFFF;

GifSample FourPixels()
{
    return {.palette = kRedGreenBlueWhite, .indices = {0, 1, 2, 3}};
}

std::vector<std::uint32_t> Decode(const GifSample& sample)
{
    const auto bitmap = DecodeImage(MakeGif(sample));
    return bitmap ? PixelsOf(*bitmap) : std::vector<std::uint32_t>{};
}

void ExpectRoundTrip(const CBitmap& picture)
{
    const auto bytes = EncodeImage(picture, ImageFormat::Gif);
    ASSERT_TRUE(bytes);
    const auto again = DecodeImage(*bytes);
    ASSERT_TRUE(again);
    EXPECT_EQ(PixelsOf(*again), PixelsOf(picture));
}

/// Grey values 0 to `colours` - 1 in an order that repeats little.
CBitmap MakeGreyPicture(std::uint32_t width, std::uint32_t height, std::uint32_t colours)
{
    std::vector<std::uint32_t> pixels(std::size_t{width} * height);
    std::uint32_t state = 7;
    for (std::uint32_t& pixel : pixels) {
        state = state * 1664525 + 1013904223;
        pixel = 0xFF000000 | (state >> 16) % colours * 0x010101;
    }
    return MakePicture(width, pixels);
}

}  // namespace

TEST(GifFile, ReadsThePalette)
{
    EXPECT_THAT(Decode(FourPixels()), ElementsAre(kRed, kGreen, kBlue, kWhite));
}

TEST(GifFile, ReadsTransparency)
{
    GifSample sample = FourPixels();
    sample.transparent = 1;
    const auto pixels = Decode(sample);
    ASSERT_EQ(pixels.size(), 4U);
    EXPECT_EQ(pixels[0], kRed);
    EXPECT_EQ(pixels[1] >> 24, 0U);
    EXPECT_EQ(pixels[3], kWhite);
}

TEST(GifFile, ReadsInterlacedRows)
{
    GifSample sample = FourPixels();
    sample.screenHeight = sample.height = 6;
    sample.screenWidth = sample.width = 1;
    sample.interlaced = true;
    // Rows 0; 4; 2; 1, 3, 5.
    sample.indices = {0, 1, 2, 3, 3, 0};
    EXPECT_THAT(Decode(sample), ElementsAre(kRed, kWhite, kBlue, kWhite, kGreen, kRed));
}

TEST(GifFile, PlacesTheFrameOnItsScreen)
{
    GifSample sample = FourPixels();
    sample.screenWidth = 3;
    sample.screenHeight = 3;
    sample.left = 1;
    sample.top = 1;
    const auto pixels = Decode(sample);
    ASSERT_EQ(pixels.size(), 9U);
    EXPECT_EQ(pixels[4], kRed);
    EXPECT_EQ(pixels[5], kGreen);
    EXPECT_EQ(pixels[8], kWhite);
}

TEST(GifFile, CutsAFrameThatLeavesItsScreen)
{
    GifSample sample = FourPixels();
    sample.screenWidth = 3;
    sample.screenHeight = 2;
    sample.left = 2;
    sample.top = 1;
    const auto pixels = Decode(sample);
    ASSERT_EQ(pixels.size(), 6U);
    EXPECT_EQ(pixels[5], kRed);
}

TEST(GifFile, TakesTheFirstFrameOfSeveral)
{
    std::vector<std::byte> bytes = MakeGif(FourPixels());
    GifSample second = FourPixels();
    second.indices = {3, 3, 3, 3};
    const std::vector<std::byte> other = MakeGif(second);
    bytes.pop_back();  // the end mark
    bytes.insert(bytes.end(), other.begin() + 13 + 12, other.end());
    const auto bitmap = DecodeImage(bytes);
    ASSERT_TRUE(bitmap);
    EXPECT_THAT(PixelsOf(*bitmap), ElementsAre(kRed, kGreen, kBlue, kWhite));
}

TEST(GifFile, WritesFewColoursExactly)
{
    ExpectRoundTrip(MakePicture(1, {0xFF123456}));
    ExpectRoundTrip(MakePicture(2, {kRed, kGreen, kBlue, kWhite}));
    ExpectRoundTrip(MakePicture(3, {kRed, 0, kBlue}));
    for (const std::uint32_t colours : {1U, 2U, 3U, 4U, 5U, 16U, 17U, 128U, 129U, 256U})
        ExpectRoundTrip(MakeGreyPicture(61, 67, colours));
}

TEST(GifFile, WritesEveryWidthOfItsCodesAndStartsOverWhenTheTableIsFull)
{
    // About one code a pixel, so the table of 4096 fills several times, wherever the last code falls.
    for (std::uint32_t height = 90; height < 96; ++height)
        ExpectRoundTrip(MakeGreyPicture(127, height, 200));
    // Long runs: codes that the reader meets before it has finished learning them.
    ExpectRoundTrip(MakePicture(300, std::vector<std::uint32_t>(90000, kGreen)));
}

TEST(GifFile, WritesEveryLengthOfASmallPicture)
{
    for (std::uint32_t width = 1; width < 300; ++width)
        ExpectRoundTrip(MakeGreyPicture(width, 1, 4));
}

TEST(GifFile, WritesManyColoursNearly)
{
    std::vector<std::uint32_t> pixels;
    for (std::uint32_t y = 0; y < 64; ++y)
        for (std::uint32_t x = 0; x < 64; ++x)
            pixels.push_back(0xFF000000 | x * 4 << 16 | y * 4 << 8 | (x + y) * 2);
    const CBitmap picture = MakePicture(64, pixels);
    const auto bytes = EncodeImage(picture, ImageFormat::Gif);
    ASSERT_TRUE(bytes);
    const auto again = DecodeImage(*bytes);
    ASSERT_TRUE(again);
    EXPECT_LE(LargestDifference(*again, picture), 24);
}

// Damaged input.

TEST(GifFile, RefusesEveryTruncationOfTheFirstFrame)
{
    const auto whole = MakeGif(FourPixels());
    ASSERT_TRUE(DecodeImage(whole));
    // The last byte only says that no further frame comes.
    for (std::size_t length = 0; length + 1 < whole.size(); ++length) {
        const std::vector<std::byte> cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_FALSE(DecodeImage(cut)) << "first " << length << " bytes";
    }
}
