#include "image/RasterToBitmap.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/ByteWriter.h"
#include "tests/image/Pictures.h"

using testing::Each;
using testing::ElementsAre;

namespace {

std::vector<std::uint32_t> Convert(std::string_view hex, const RasterLayout& layout,
                                   std::string_view palette = "")
{
    const auto bitmap = RasterToBitmap(FromHex(hex), layout, FromHex(palette));
    return bitmap ? PixelsOf(*bitmap) : std::vector<std::uint32_t>{};
}

/// A row of two pixels.
RasterLayout Two(std::uint32_t depth, std::uint32_t layout = 0, bool swapRB = false)
{
    return {.width = 2, .height = 1, .depth = depth, .layout = layout, .level = 0, .swapRB = swapRB};
}

RasterFault FaultOf(std::span<const std::byte> pixels, const RasterLayout& layout)
{
    RasterFault fault = RasterFault::None;
    EXPECT_FALSE(RasterToBitmap(pixels, layout, {}, &fault));
    return fault;
}

}  // namespace

TEST(RasterToBitmap, ReadsTheLowNibbleFirst)
{
    EXPECT_THAT(Convert("10", Two(4), "010203040a0b0c0d"), ElementsAre(0x04030201, 0x0D0C0B0A));
    EXPECT_THAT(Convert("10", Two(4, 0, true), "010203040a0b0c0d"), ElementsAre(0x04010203, 0x0D0A0B0C));
}

TEST(RasterToBitmap, RunsNibblesOnOverTheEndsOfOddRows)
{
    const RasterLayout odd{.width = 3, .height = 2, .depth = 4};
    EXPECT_THAT(Convert("102132", odd, "00000000010000000200000003000000"), ElementsAre(0, 1, 1, 2, 2, 3));
}

TEST(RasterToBitmap, ReadsLuminance)
{
    EXPECT_THAT(Convert("40c0", Two(8, 0x8)), ElementsAre(0xFF404040, 0xFFC0C0C0));
    EXPECT_THAT(Convert("40800020", Two(16, 0x88)), ElementsAre(0x80404040, 0x20000000));
}

TEST(RasterToBitmap, LooksEightBitPixelsUpInThePalette)
{
    EXPECT_THAT(Convert("0100", Two(8, 0x8888), "0102030405060708"), ElementsAre(0x08070605, 0x04030201));
    EXPECT_THAT(Convert("0100", Two(8, 0x888, true), "0102030405060708"),
                ElementsAre(0x08050607, 0x04010203));
}

TEST(RasterToBitmap, MakesTransparentBlackWithoutAPalette)
{
    EXPECT_THAT(Convert("10", Two(4)), ElementsAre(0, 0));
    EXPECT_THAT(Convert("0102", Two(8, 0x8888)), ElementsAre(0, 0));
}

TEST(RasterToBitmap, MakesTransparentBlackOfIndicesBeyondThePalette)
{
    EXPECT_THAT(Convert("0001", Two(8, 0x888), "010203ff"), ElementsAre(0xFF030201, 0));
    // Three bytes are no entry.
    EXPECT_THAT(Convert("0000", Two(8, 0x888), "010203"), ElementsAre(0, 0));
}

TEST(RasterToBitmap, MovesFiveAndSixBitsUpWithoutRepeatingThem)
{
    EXPECT_THAT(Convert("ffff0108", Two(16, 0x565)), ElementsAre(0xFFF8FCF8, 0xFF080008));
    EXPECT_THAT(Convert("ff7f2188", Two(16, 0x1555)), ElementsAre(0x00F8F8F8, 0xFF100808));
    EXPECT_THAT(Convert("feff4310", Two(16, 0x5551)), ElementsAre(0x00F8F8F8, 0xFF100808));
}

TEST(RasterToBitmap, RepeatsFourBits)
{
    EXPECT_THAT(Convert("ffff0000", Two(16, 0x565)), ElementsAre(0xFFF8FCF8, 0xFF000000));
    EXPECT_THAT(Convert("0ff08421", Two(16, 0x4444)), ElementsAre(0xFFFF0000, 0x44221188));
}

TEST(RasterToBitmap, ReadsTrueColour)
{
    EXPECT_THAT(Convert("010203040506", Two(24)), ElementsAre(0xFF030201, 0xFF060504));
    EXPECT_THAT(Convert("010203040506", Two(24, 0, true)), ElementsAre(0xFF010203, 0xFF040506));
    EXPECT_THAT(Convert("0102030405060708", Two(32)), ElementsAre(0x04030201, 0x08070605));
    EXPECT_THAT(Convert("0102030405060708", Two(32, 0, true)), ElementsAre(0x04010203, 0x08050607));
}

TEST(RasterToBitmap, IgnoresTheLayoutOfTrueColour)
{
    for (const std::uint32_t layout : {0U, 0x565U, 0x1555U, 0x4444U, 0x8888U}) {
        EXPECT_THAT(Convert("0102030405060708", Two(32, layout, true)), ElementsAre(0x04010203, 0x08050607));
        EXPECT_THAT(Convert("010203040506", Two(24, layout)), ElementsAre(0xFF030201, 0xFF060504));
    }
}

TEST(RasterToBitmap, MakesTransparentBlackOfWhatItDoesNotKnow)
{
    EXPECT_THAT(Convert("0102", Two(8, 0x88), "01020304"), ElementsAre(0, 0));
    EXPECT_THAT(Convert("01020304", Two(16, 0x888)), ElementsAre(0, 0));
    EXPECT_THAT(Convert("010203", Two(12, 0x8888)), ElementsAre(0, 0));
    EXPECT_THAT(Convert("01", Two(0)), ElementsAre(0, 0));
}

TEST(RasterToBitmap, SkipsLevelsAndNeverGoesBelowOnePixel)
{
    // 16x4, 8x2, 4x1, 2x1, 1x1 pixels of 8 bits.
    std::vector<std::byte> pixels(64 + 16 + 4 + 2 + 1);
    pixels[84] = std::byte{0x11};
    pixels[85] = std::byte{0x22};
    pixels[86] = std::byte{0x33};
    const auto third =
        RasterToBitmap(pixels, {.width = 16, .height = 4, .depth = 8, .layout = 0x8, .level = 3});
    ASSERT_TRUE(third);
    EXPECT_EQ(third->Width(), 2U);
    EXPECT_EQ(third->Height(), 1U);
    EXPECT_THAT(PixelsOf(*third), ElementsAre(0xFF111111, 0xFF222222));
    const auto last =
        RasterToBitmap(pixels, {.width = 16, .height = 4, .depth = 8, .layout = 0x8, .level = 4});
    ASSERT_TRUE(last);
    EXPECT_THAT(PixelsOf(*last), ElementsAre(0xFF333333));
    EXPECT_EQ(FaultOf(pixels, {.width = 16, .height = 4, .depth = 8, .layout = 0x8, .level = 5}),
              RasterFault::TooShort);
}

TEST(RasterToBitmap, CutsTheLengthOfSmallLevelsToWholeBytes)
{
    // 1x3 and 1x1 nibbles: the second level begins at byte 12 >> 3.
    const RasterLayout second{.width = 1, .height = 3, .depth = 4, .level = 1};
    EXPECT_THAT(Convert("0001", second, "0000000001000000"), ElementsAre(1));
}

TEST(RasterToBitmap, SurvivesAnyNumberOfLevels)
{
    const std::vector<std::byte> pixels(64);
    EXPECT_EQ(FaultOf(pixels, {.width = 4, .height = 4, .depth = 32, .level = 0xFFFFFFFF}),
              RasterFault::TooShort);
    EXPECT_TRUE(RasterToBitmap(pixels, {.width = 4, .height = 4, .depth = 4, .level = 0xFFFFFFFF}));
}

// Damaged input.

TEST(RasterToBitmap, RefusesEveryTruncationOfALevel)
{
    for (const std::uint32_t depth : {4U, 8U, 12U, 16U, 24U, 32U}) {
        const std::size_t whole = (15 * depth + 7) / 8;
        for (std::size_t length = 1; length <= whole; ++length) {
            const std::vector<std::byte> cut(length);
            RasterFault fault = RasterFault::NoPixels;
            const bool made =
                RasterToBitmap(cut, {.width = 5, .height = 3, .depth = depth, .layout = 0x8888}, {}, &fault)
                    .has_value();
            EXPECT_EQ(made, length == whole) << depth << " bits, first " << length << " bytes";
            EXPECT_EQ(fault, length == whole ? RasterFault::None : RasterFault::TooShort);
        }
    }
}

TEST(RasterToBitmap, TellsWhatIsWrong)
{
    const std::vector<std::byte> pixels(16);
    EXPECT_EQ(FaultOf({}, Two(32)), RasterFault::NoPixels);
    EXPECT_EQ(FaultOf(pixels, {.width = 0, .height = 1, .depth = 32}), RasterFault::WrongDimensions);
    EXPECT_EQ(FaultOf(pixels, {.width = 1, .height = 0, .depth = 32}), RasterFault::WrongDimensions);
    EXPECT_EQ(FaultOf(pixels, {.width = 65536, .height = 1, .depth = 4}), RasterFault::WrongDimensions);
    EXPECT_EQ(FaultOf(pixels, {.width = 65535, .height = 65535, .depth = 32}), RasterFault::TooShort);
    EXPECT_EQ(FaultOf(pixels, {.width = 65535, .height = 65535, .depth = 0xFFFFFFFF, .level = 1}),
              RasterFault::TooShort);
}

TEST(RasterToBitmap, DoesNotTryPicturesThatNoMemoryHolds)
{
    // Without bits a pixel takes no bytes, so the length cannot stop this.
    const std::vector<std::byte> pixels(1);
    EXPECT_EQ(FaultOf(pixels, {.width = 65535, .height = 65535, .depth = 0}), RasterFault::OutOfMemory);
}
