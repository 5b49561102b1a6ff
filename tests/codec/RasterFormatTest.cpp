#include "codec/RasterFormat.h"

#include <gtest/gtest.h>

namespace {

RasterHeader Header(std::uint16_t glFormat, std::uint16_t width, std::uint16_t height, bool mips = false)
{
    return {0, glFormat, width, static_cast<std::uint16_t>(height | (mips ? 0x8000 : 0))};
}

}  // namespace

TEST(RasterFormat, KnowsTheThirteenEnumerantsOfHeaders)
{
    EXPECT_EQ(FormatFromGl(0x1401), RasterFormatCode::Rgba8888);
    EXPECT_EQ(FormatFromGl(0x8033), RasterFormatCode::Rgba4444);
    EXPECT_EQ(FormatFromGl(0x8034), RasterFormatCode::Rgba5551);
    EXPECT_EQ(FormatFromGl(0x8363), RasterFormatCode::Rgba565);
    EXPECT_EQ(FormatFromGl(0x190A), RasterFormatCode::Lum16);
    EXPECT_EQ(FormatFromGl(0x1909), RasterFormatCode::Lum8);
    EXPECT_EQ(FormatFromGl(0x83F0), RasterFormatCode::Dxt1);
    EXPECT_EQ(FormatFromGl(0x83F1), RasterFormatCode::Dxt1A);
    EXPECT_EQ(FormatFromGl(0x83F2), RasterFormatCode::Dxt3);
    EXPECT_EQ(FormatFromGl(0x83F3), RasterFormatCode::Dxt5);
    EXPECT_EQ(FormatFromGl(0x8D64), RasterFormatCode::Etc1);
    EXPECT_EQ(FormatFromGl(0x8C01), RasterFormatCode::Pvrtc2);
    EXPECT_EQ(FormatFromGl(0x8C02), RasterFormatCode::Pvrtc4);
    EXPECT_EQ(FormatFromGl(0), RasterFormatCode::Unknown);
    EXPECT_EQ(FormatFromGl(0x8C00), RasterFormatCode::Unknown);
}

TEST(RasterFormat, NamesFormatsAsTheStatusBarDoes)
{
    EXPECT_EQ(FormatName(RasterFormatCode::Unknown), L"Unknown");
    EXPECT_EQ(FormatName(RasterFormatCode::Rgba8888), L"RGBA 8888");
    EXPECT_EQ(FormatName(RasterFormatCode::Rgba565), L"RGBA 565");
    EXPECT_EQ(FormatName(RasterFormatCode::Lum16), L"LUM-16");
    EXPECT_EQ(FormatName(RasterFormatCode::Dxt1A), L"DXT1-A");
    EXPECT_EQ(FormatName(RasterFormatCode::Pvrtc4), L"PVRTC4");
}

TEST(RasterFormat, CountsTheSmallestLevelsAsWholeBlocks)
{
    EXPECT_EQ(RasterSize(Header(0x83F0, 256, 256, true)), 43704U);
    EXPECT_EQ(RasterSize(Header(0x83F0, 1, 1)), 8U);
    EXPECT_EQ(RasterSize(Header(0x83F3, 4, 4, true)), 48U);
    EXPECT_EQ(RasterSize(Header(0x8D64, 8, 2)), 16U);
}

TEST(RasterFormat, GivesPvrtcLevelsAtLeastThirtyTwoBytes)
{
    EXPECT_EQ(RasterSize(Header(0x8C01, 8, 8)), 32U);
    EXPECT_EQ(RasterSize(Header(0x8C02, 8, 8)), 32U);
    EXPECT_EQ(RasterSize(Header(0x8C02, 16, 16, true)), 128U + 4 * 32);
}

TEST(RasterFormat, CountsUncompressedChainsPixelByPixel)
{
    EXPECT_EQ(RasterSize(Header(0x1401, 4, 2, true)), (8U + 2 + 1) * 4);
    EXPECT_EQ(RasterSize(Header(0x8363, 4, 4, true)), (16U + 4 + 1) * 2);
    EXPECT_EQ(RasterSize(Header(0x1909, 4, 4)), 16U);
    EXPECT_EQ(RasterSize(Header(0x190A, 4, 4)), 32U);
}

TEST(RasterFormat, GivesNoSizeToUnknownFormatsAndEmptyPictures)
{
    EXPECT_EQ(RasterSize(Header(0x1234, 8, 8)), 0U);
    EXPECT_EQ(RasterSize(Header(0x1401, 0, 8)), 0U);
    EXPECT_EQ(RasterSize(Header(0x1401, 8, 0)), 0U);
}

TEST(RasterFormat, CountsTheLargestHeaderInSixtyFourBits)
{
    EXPECT_EQ(RasterSize(Header(0x1401, 65535, 32767)), 65535ULL * 32767 * 4);
}

TEST(RasterFormat, CountsLevelsDownToOnePixel)
{
    EXPECT_EQ(LevelCount(Header(0x83F0, 256, 256, true)), 9U);
    EXPECT_EQ(LevelCount(Header(0x83F0, 4, 64, true)), 7U);
    EXPECT_EQ(LevelCount(Header(0x83F0, 4, 64)), 1U);
    EXPECT_EQ(LevelCount(Header(0x83F0, 0, 64, true)), 0U);
}

TEST(RasterFormat, KnowsTheRunLengthUnits)
{
    EXPECT_EQ(UnitBytes(RasterFormatCode::Rgba8888), 4U);
    EXPECT_EQ(UnitBytes(RasterFormatCode::Dxt5), 16U);
    EXPECT_EQ(UnitBytes(RasterFormatCode::Pvrtc2), 32U);
    EXPECT_EQ(UnitBytes(RasterFormatCode::Unknown), 0U);
}

TEST(RasterFormat, CountsASinglePixelOnceWithAndWithoutMips)
{
    EXPECT_EQ(RasterSize(Header(0x1401, 1, 1)), 4U);
    EXPECT_EQ(RasterSize(Header(0x1401, 1, 1, true)), 4U);
}

TEST(RasterFormat, TakesAtLeastThirtyTwoBytesForAPvrtcLevel)
{
    EXPECT_EQ(RasterSize(Header(0x8C02, 4, 4)), 32U);
    EXPECT_EQ(RasterSize(Header(0x8C01, 8, 8)), 32U);
}
