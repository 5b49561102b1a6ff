#include <cstdlib>
#include <gtest/gtest.h>

#include "image/ImageFile.h"
#include "tests/image/Pictures.h"

namespace {

// clang-format off
// 16x8 pixels: the left half 200, 40, 30, the right half 20, 60, 220.
constexpr std::string_view kColourJpeg =
    "ffd8ffe000104a46494600010100000100010000ffdb0043000302020302020303030304030304050805050404050a070706"
    "080c0a0c0c0b0a0b0b0d0e12100d0e110e0b0b1016101113141515150c0f171816141812141514ffdb004301030404050405"
    "09050509140d0b0d141414141414141414141414141414141414141414141414141414141414141414141414141414141414"
    "1414141414141414ffc00011080008001003011100021101031101ffc4001500010100000000000000000000000000000607"
    "ffc40014100100000000000000000000000000000000ffc400160101010100000000000000000000000000090708ffc40014"
    "110100000000000000000000000000000000ffda000c03010002110311003f0089254db00e4f467bffd9";

// The same picture in several passes.
constexpr std::string_view kProgressiveJpeg =
    "ffd8ffe000104a46494600010100000100010000ffdb0043000302020302020303030304030304050805050404050a070706"
    "080c0a0c0c0b0a0b0b0d0e12100d0e110e0b0b1016101113141515150c0f171816141812141514ffdb004301030404050405"
    "09050509140d0b0d141414141414141414141414141414141414141414141414141414141414141414141414141414141414"
    "1414141414141414ffc20011080008001003011100021101031101ffc4001500010100000000000000000000000000000506"
    "ffc400160101010100000000000000000000000000080607ffda000c030100021003100000018894db034f99ff00ffc40014"
    "100100000000000000000000000000000010ffda00080101000105023fffc400141101000000000000000000000000000000"
    "10ffda0008010301013f013fffc40014110100000000000000000000000000000010ffda0008010201013f013fffc4001410"
    "0100000000000000000000000000000010ffda0008010100063f023fffc40014100100000000000000000000000000000010"
    "ffda0008010100013f213fffda000c03010002000300000010d3ffc40014110100000000000000000000000000000010ffda"
    "0008010301013f103fffc40014110100000000000000000000000000000010ffda0008010201013f103fffc4001410010000"
    "0000000000000000000000000010ffda0008010100013f103fffd9";

// The same picture in grey.
constexpr std::string_view kGreyJpeg =
    "ffd8ffe000104a46494600010100000100010000ffdb0043000302020302020303030304030304050805050404050a070706"
    "080c0a0c0c0b0a0b0b0d0e12100d0e110e0b0b1016101113141515150c0f171816141812141514ffc0000b08000800100101"
    "1100ffc4001500010100000000000000000000000000000508ffc40014100100000000000000000000000000000000ffda00"
    "08010100003f009b02bfffd9";

// 8x8 pixels of no cyan, full magenta, half yellow and a quarter of black, stored inverted.
constexpr std::string_view kInkJpeg =
    "ffd8ffee000e41646f626500640000000002ffdb004300020101010101020101010202020202040302020202050404030406"
    "0506060605060606070908060709070606080b08090a0a0a0a0a06080b0c0b0a0c090a0a0affdb0043010202020202020503"
    "03050a0706070a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a"
    "0a0a0a0a0a0affc00014080008000804011100021101031101041100ffc40014000100000000000000000000000000000008"
    "ffc40014100100000000000000000000000000000000ffc4001501010100000000000000000000000000000709ffc4001411"
    "0100000000000000000000000000000000ffda000e040100021103110400003f00480bd0acfc7fffd9";

// clang-format on

/// JPEG loses bits, and every decoder rounds in its own way.
void ExpectNear(std::uint32_t pixel, int red, int green, int blue)
{
    constexpr int kTolerance = 6;
    EXPECT_LE(std::abs(static_cast<int>(pixel >> 16 & 255) - red), kTolerance) << std::hex << pixel;
    EXPECT_LE(std::abs(static_cast<int>(pixel >> 8 & 255) - green), kTolerance) << std::hex << pixel;
    EXPECT_LE(std::abs(static_cast<int>(pixel & 255) - blue), kTolerance) << std::hex << pixel;
    EXPECT_EQ(pixel >> 24, 255U);
}

void ExpectTwoHalves(std::string_view hex)
{
    const auto bitmap = DecodeImage(FromHex(hex));
    ASSERT_TRUE(bitmap);
    ASSERT_EQ(bitmap->Width(), 16U);
    ASSERT_EQ(bitmap->Height(), 8U);
    const auto pixels = PixelsOf(*bitmap);
    ExpectNear(pixels[3], 200, 40, 30);
    ExpectNear(pixels[127], 20, 60, 220);
}

/// Steps in colour that JPEG keeps well.
CBitmap MakeSoftPicture(std::uint32_t width, std::uint32_t height)
{
    std::vector<std::uint32_t> pixels;
    for (std::uint32_t y = 0; y < height; ++y)
        for (std::uint32_t x = 0; x < width; ++x)
            pixels.push_back(0xFF000000 | x * 255 / width << 16 | y * 255 / height << 8 | 100);
    return MakePicture(width, pixels);
}

}  // namespace

TEST(JpegFile, ReadsColours)
{
    ExpectTwoHalves(kColourJpeg);
}

TEST(JpegFile, ReadsProgressiveFiles)
{
    ExpectTwoHalves(kProgressiveJpeg);
}

TEST(JpegFile, ReadsGrey)
{
    const auto bitmap = DecodeImage(FromHex(kGreyJpeg));
    ASSERT_TRUE(bitmap);
    const auto pixels = PixelsOf(*bitmap);
    EXPECT_EQ(pixels[0] & 255, pixels[0] >> 16 & 255);
    EXPECT_EQ(pixels[0] & 255, pixels[0] >> 8 & 255);
    EXPECT_EQ(pixels[0] >> 24, 255U);
    EXPECT_LT(pixels[127] & 255, pixels[0] & 255);
}

TEST(JpegFile, TurnsInksIntoColours)
{
    const auto bitmap = DecodeImage(FromHex(kInkJpeg));
    ASSERT_TRUE(bitmap);
    // (255 - ink) * (255 - black) / 255 with inks of 0, 255 and 128 and a black of 64.
    ExpectNear(PixelsOf(*bitmap)[9], 191, 0, 95);
}

TEST(JpegFile, WritesNearlyWhatItReads)
{
    const CBitmap picture = MakeSoftPicture(50, 37);
    const auto bytes = EncodeImage(picture, ImageFormat::Jpeg);
    ASSERT_TRUE(bytes);
    const auto again = DecodeImage(*bytes);
    ASSERT_TRUE(again);
    EXPECT_LE(LargestDifference(*again, picture), 16);
}

TEST(JpegFile, LosesAlphaButKeepsTheColoursUnderIt)
{
    const std::vector<std::uint32_t> pixels(256, 0x00C86432);
    const auto bytes = EncodeImage(MakePicture(16, pixels), ImageFormat::Jpeg);
    ASSERT_TRUE(bytes);
    const auto again = DecodeImage(*bytes);
    ASSERT_TRUE(again);
    ExpectNear(PixelsOf(*again)[100], 200, 100, 50);
}

// Damaged input.

TEST(JpegFile, RefusesEveryTruncation)
{
    for (const std::string_view hex : {kColourJpeg, kProgressiveJpeg, kInkJpeg}) {
        const auto whole = FromHex(hex);
        for (std::size_t length = 0; length < whole.size(); ++length) {
            const std::vector<std::byte> cut(whole.begin(),
                                             whole.begin() + static_cast<std::ptrdiff_t>(length));
            EXPECT_FALSE(DecodeImage(cut)) << "first " << length << " bytes";
        }
    }
}

TEST(JpegFile, RefusesAScanThatEndsBeforeItsPixels)
{
    // Cut in the middle of the pixels, with the end code put back.
    auto bytes = EncodeImage(MakeColourfulPicture(64, 64), ImageFormat::Jpeg).value();
    bytes.resize(bytes.size() / 2);
    bytes.insert(bytes.end(), {std::byte{0}, std::byte{0xFF}, std::byte{0xD9}});
#ifdef _WIN32
    DecodeImage(bytes);  // GDI+ may fill the rest; it must only survive
#else
    EXPECT_FALSE(DecodeImage(bytes));
#endif
}
