#include "rw/Unswizzle.h"

#include <gtest/gtest.h>
#include <vector>

#include "tests/support/RenderWareFiles.h"

namespace {

using RwFile::Bytes;

/// The pixel of a column and row after unswizzling bytes 0, 1, 2, … of a 16-bit range, by two passes.
std::vector<std::uint32_t> IndicesOf8(std::uint32_t width, std::uint32_t height)
{
    const std::size_t count = std::size_t{width} * height;
    Bytes low(count);
    Bytes high(count);
    for (std::size_t i = 0; i < count; ++i) {
        low[i] = static_cast<std::byte>(i & 0xFF);
        high[i] = static_cast<std::byte>(i >> 8);
    }
    Bytes lowOut(count);
    Bytes highOut(count);
    RW::UnswizzlePal8(low, lowOut, width, height);
    RW::UnswizzlePal8(high, highOut, width, height);
    std::vector<std::uint32_t> indices(count);
    for (std::size_t i = 0; i < count; ++i)
        indices[i] = std::to_integer<std::uint32_t>(lowOut[i]) | std::to_integer<std::uint32_t>(highOut[i])
                                                                     << 8;
    return indices;
}

}  // namespace

TEST(Unswizzle, PlacesEightBitPixelsByTheFormula)
{
    const auto at = [indices = IndicesOf8(16, 16)](std::uint32_t x, std::uint32_t y) {
        return indices[y * 16 + x];
    };
    // Row 0: columns 0 to 3, then 4 to 7, lie four apart.
    EXPECT_EQ(at(0, 0), 0U);
    EXPECT_EQ(at(1, 0), 4U);
    EXPECT_EQ(at(7, 0), 28U);
    // The right half of a block is two bytes further.
    EXPECT_EQ(at(8, 0), 2U);
    EXPECT_EQ(at(15, 0), 30U);
    // Row 1 is a stored row of 32 further; row 2 is one byte further, its columns turned by four.
    EXPECT_EQ(at(0, 1), 32U);
    EXPECT_EQ(at(0, 2), 17U);
    EXPECT_EQ(at(4, 2), 1U);
    EXPECT_EQ(at(0, 3), 49U);
    // Row 4 begins a pair of stored rows, turned by four; row 6 is not turned: (6 + 2) & ~3 is 8.
    EXPECT_EQ(at(0, 4), 80U);
    EXPECT_EQ(at(0, 6), 65U);
    EXPECT_EQ(at(15, 15), 255U);
}

TEST(Unswizzle, EveryEightBitPixelOfWholeBlocksHasAPlaceOfItsOwn)
{
    for (const auto& [width, height] : {std::pair{16U, 16U}, std::pair{32U, 16U}, std::pair{64U, 32U}}) {
        const auto indices = IndicesOf8(width, height);
        std::vector<bool> isTaken(indices.size());
        for (const std::uint32_t index : indices) {
            ASSERT_LT(index, isTaken.size());
            EXPECT_FALSE(isTaken[index]);
            isTaken[index] = true;
        }
    }
}

TEST(Unswizzle, FourBitPixelsTakeTheLowHalfFirst)
{
    // 32 x 16 nibbles; nibble 4 is the low half of byte 2, nibble 2 the low half of byte 1.
    Bytes source(256);
    source[0] = std::byte{0x21};
    source[1] = std::byte{0x43};
    source[2] = std::byte{0x65};
    Bytes target(256, std::byte{0xEE});
    RW::UnswizzlePal4(source, target, 32, 16);
    // Columns 0 and 1 of row 0 are nibbles 0 and 4; column 8 is nibble 2.
    EXPECT_EQ(target[0], std::byte{0x51});
    EXPECT_EQ(target[4], std::byte{0x03});
    // Columns 4 and 5 of row 2 are nibbles 1 and 5, the high halves of bytes 0 and 2.
    EXPECT_EQ(target[2 * 16 + 2], std::byte{0x62});
}

TEST(Unswizzle, SixteenFourBitPixelsAreTakenForThirtyTwo)
{
    // Row 1 starts 64 nibbles into the source, as it does in rows of 32 pixels.
    Bytes source(256);
    source[32] = std::byte{0x0A};
    Bytes target(256);
    RW::UnswizzlePal4(source, target, 16, 16);
    EXPECT_EQ(target[16], std::byte{0x0A});
}

TEST(Unswizzle, WhatLiesBeyondTheSourceIsZero)
{
    // In 8 x 8 pixels some places lie beyond the 64 bytes: column 0 of row 4 is at 48, column 4 of row 4
    // at 32.
    Bytes target(64, std::byte{0xEE});
    RW::UnswizzlePal8(RwFile::Filled(64, 7), target, 8, 8);
    EXPECT_EQ(target[0], std::byte{7});
    // Column 7 of row 7 is pixel 28 + 48 + 1 = 77 of 64.
    EXPECT_EQ(target[7 * 8 + 7], std::byte{0});
    Bytes narrow(256, std::byte{0xEE});
    RW::UnswizzlePal4(RwFile::Filled(128, 0x77), narrow, 16, 16);
    EXPECT_EQ(narrow[0], std::byte{0x77});
    EXPECT_EQ(narrow[255], std::byte{0});
    Bytes none(64, std::byte{0xEE});
    RW::UnswizzlePal8({}, none, 8, 8);
    EXPECT_EQ(none, Bytes(64));
}

TEST(Unswizzle, WritesNoFurtherThanItsTarget)
{
    Bytes target(3);
    RW::UnswizzlePal8(RwFile::Counting(256), target, 16, 16);
    EXPECT_EQ(target[1], std::byte{4});
    RW::UnswizzlePal4(RwFile::Counting(256), target, 32, 16);
    RW::UnswizzlePal8(RwFile::Counting(256), {}, 0, 0);
}
