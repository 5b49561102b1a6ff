#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "image/ImageFile.h"
#include "tests/image/Pictures.h"
#include "tests/image/SampleFiles.h"

using testing::ElementsAre;

namespace {

// clang-format off
// 4x2 pixels, LZW, a strip a row: red, half transparent green and blue on nothing.
constexpr std::string_view kLzwTiff =
    "49492a0026000000803fc00007f806048100004008081c0e02800020503823fdff0200806020110000010300010000000400"
    "00000101030001000000020000000201030004000000f8000000030103000100000005000000060103000100000002000000"
    "0a01030001000000010000001101040002000000000100001201030001000000010000001501030001000000040000001601"
    "03000100000001000000170103000200000011000d001c01030001000000010000002901030002000000000001003d010300"
    "01000000020000003e01050002000000380100003f0105000600000008010000520103000100000002000000000000000800"
    "080008000800080000001900000085eb510000008000c3f5a80000000002cdcc4c0000000001cdcc4c0000008000cdcc4c00"
    "000000028fc2f50000000010371aa000000000022b870a0000002000";

// 4x2 pixels, deflate: two of 200, 40, 30, then two of 20, 60, 220.
constexpr std::string_view kDeflateTiff =
    "49492a001200000078da636505000011000b1000000103000100000004000000010103000100000002000000020103000100"
    "0000020000000301030001000000080000000601030001000000030000000a01030001000000010000001101040001000000"
    "0800000012010300010000000100000015010300010000000100000016010300010000000200000017010400010000000a00"
    "00001c01030001000000010000002901030002000000000001003e01050002000000200100003f01050006000000f0000000"
    "400103000c000000d800000000000000c8c81414ffff000028283c3cffff00001e1edcdcffff000085eb510000008000c3f5"
    "a80000000002cdcc4c0000000001cdcc4c0000008000cdcc4c00000000028fc2f50000000010371aa000000000022b870a00"
    "00002000";
// clang-format on

std::vector<std::uint32_t> Decode(const TiffSample& sample)
{
    const auto bitmap = DecodeImage(MakeTiff(sample));
    return bitmap ? PixelsOf(*bitmap) : std::vector<std::uint32_t>{};
}

}  // namespace

TEST(TiffFile, ReadsColours)
{
    EXPECT_THAT(Decode({.width = 2, .pixels = {1, 2, 3, 250, 251, 252}}),
                ElementsAre(0xFF010203, 0xFFFAFBFC));
    EXPECT_THAT(Decode({.width = 1, .height = 2, .isBigEndian = true, .pixels = {1, 2, 3, 250, 251, 252}}),
                ElementsAre(0xFF010203, 0xFFFAFBFC));
}

TEST(TiffFile, ReadsPlainAlphaExactly)
{
    EXPECT_THAT(Decode({.width = 2, .samples = 4, .alphaKind = 2, .pixels = {1, 2, 3, 4, 250, 251, 252, 0}}),
                ElementsAre(0x04010203, 0x00FAFBFC));
}

TEST(TiffFile, ReadsGreyAndPalettes)
{
    EXPECT_THAT(Decode({.width = 2, .samples = 1, .photometric = 1, .pixels = {16, 200}}),
                ElementsAre(0xFF101010, 0xFFC8C8C8));
    TiffSample sample{.width = 2, .samples = 1, .photometric = 3, .pixels = {1, 0}};
    sample.palette.resize(3 * 256);
    sample.palette[1] = 0x1111;
    sample.palette[257] = 0x2222;
    sample.palette[513] = 0xFFFF;
    EXPECT_THAT(Decode(sample), ElementsAre(0xFF1122FF, 0xFF000000));
}

TEST(TiffFile, ReadsLzwAndDeflate)
{
    const auto lzw = DecodeImage(FromHex(kLzwTiff));
    ASSERT_TRUE(lzw);
    const auto pixels = PixelsOf(*lzw);
    ASSERT_EQ(pixels.size(), 8U);
    EXPECT_EQ(pixels[0], 0xFFFF0000U);
    EXPECT_EQ(pixels[1] & 0xFF00FF00, 0x8000FF00U);
    EXPECT_EQ(pixels[3] >> 24, 0U);
    EXPECT_EQ(pixels[6], 0xFF0000FFU);
    const auto deflate = DecodeImage(FromHex(kDeflateTiff));
    ASSERT_TRUE(deflate);
    EXPECT_THAT(PixelsOf(*deflate), ElementsAre(0xFFC8281E, 0xFFC8281E, 0xFF143CDC, 0xFF143CDC, 0xFFC8281E,
                                                0xFFC8281E, 0xFF143CDC, 0xFF143CDC));
}

TEST(TiffFile, WritesWhatItReadsWithAlpha)
{
    for (const std::uint32_t side : {1U, 2U, 5U, 64U, 129U}) {
        const CBitmap picture = MakeColourfulPicture(side, side + 1);
        const auto bytes = EncodeImage(picture, ImageFormat::Tiff);
        ASSERT_TRUE(bytes);
        const auto again = DecodeImage(*bytes);
        ASSERT_TRUE(again);
        EXPECT_EQ(LargestDifference(*again, picture), 0) << side;
    }
}

#ifndef _WIN32
TEST(TiffFile, DividesColoursThatAreStoredMultiplied)
{
    EXPECT_THAT(Decode({.width = 2, .samples = 4, .alphaKind = 1, .pixels = {64, 32, 0, 128, 9, 9, 9, 0}}),
                ElementsAre(0x80804000, 0x00090909));
}
#endif

// Damaged input.

TEST(TiffFile, RefusesEveryTruncation)
{
    // The directory is the last part but for the offset of the next one, of which libraries differ.
    const auto whole = MakeTiff({.width = 2, .pixels = {1, 2, 3, 250, 251, 252}});
    ASSERT_TRUE(DecodeImage(whole));
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const std::vector<std::byte> cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        const auto bitmap = DecodeImage(cut);
        if (length + 4 < whole.size()) {
            EXPECT_FALSE(bitmap) << "first " << length << " bytes";
        }
    }
}

TEST(TiffFile, RefusesSizesBeyondTheLimit)
{
    EXPECT_FALSE(DecodeImage(MakeTiff({.width = 16385, .pixels = std::vector<std::uint8_t>(16385 * 3)})));
    EXPECT_FALSE(DecodeImage(MakeTiff({.width = 0, .pixels = {1, 2, 3}})));
}
