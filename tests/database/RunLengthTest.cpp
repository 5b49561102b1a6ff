#include "database/RunLength.h"

#include <gtest/gtest.h>

#include "tests/support/DatabaseBuilder.h"

namespace {

std::vector<std::byte> Bytes(std::initializer_list<int> values)
{
    std::vector<std::byte> bytes;
    for (const int value : values)
        bytes.push_back(static_cast<std::byte>(value));
    return bytes;
}

std::vector<std::byte> Decoded(std::span<const std::byte> frame, std::uint32_t unitBytes, std::size_t size)
{
    std::vector<std::byte> out(size);
    RleDecode(frame, unitBytes, out);
    return out;
}

std::vector<std::byte> Units(std::size_t count, std::uint8_t fill)
{
    return std::vector<std::byte>(count * 4, std::byte{fill});
}

}  // namespace

TEST(RunLength, WritesMarkerCountAndUnitForARun)
{
    const auto frame = RleEncode(Bytes({9, 8, 7, 6, 9, 8, 7, 6, 9, 8, 7, 6, 1, 2, 3, 4}), 4);
    ASSERT_TRUE(frame);
    // Units begin with 9 and 1, so 2 is the smallest free marker.
    EXPECT_EQ(*frame, Bytes({2, 0, 0, 0, 2, 3, 9, 8, 7, 6, 1, 2, 3, 4}));
}

TEST(RunLength, FailsWithoutARun)
{
    std::vector<std::byte> raster;
    for (int i = 0; i < 16; ++i)
        for (const int part : {i, 0, 0, 0})
            raster.push_back(static_cast<std::byte>(part));
    EXPECT_FALSE(RleEncode(raster, 4));
}

TEST(RunLength, FailsWhenUnitsBeginWithEveryMarker)
{
    std::vector<std::byte> raster = Units(64, 0);
    for (int i = 1; i < 256; ++i)
        for (const int part : {i, 0, 0, 0})
            raster.push_back(static_cast<std::byte>(part));
    EXPECT_FALSE(RleEncode(raster, 4));
    raster[raster.size() - 4] = std::byte{1};
    EXPECT_TRUE(RleEncode(raster, 4)) << "255 is free again";
}

TEST(RunLength, SplitsRunsLongerThan255Units)
{
    const auto raster = Units(600, 0x33);
    const auto frame = RleEncode(raster, 4);
    ASSERT_TRUE(frame);
    EXPECT_EQ(*frame, Bytes({1,   0,    0,    0,    1,    255, 0x33, 0x33, 0x33, 0x33, 1,
                             255, 0x33, 0x33, 0x33, 0x33, 1,   90,   0x33, 0x33, 0x33, 0x33}));
    EXPECT_EQ(Decoded(*frame, 4, raster.size()), raster);
}

TEST(RunLength, FailsWhenNothingIsGained)
{
    // One run of two units costs as much as it saves.
    EXPECT_FALSE(RleEncode(Bytes({5, 0, 0, 0}), 4));
    EXPECT_FALSE(RleEncode({}, 4));
}

TEST(RunLength, TreatsUnitsBelowFourBytesAsFour)
{
    const auto raster = Units(8, 0x44);
    EXPECT_EQ(RleEncode(raster, 2), RleEncode(raster, 4));
}

TEST(RunLength, WritesALastPartialUnitAsItStands)
{
    auto raster = Units(10, 0x55);
    raster.push_back(std::byte{0x01});
    raster.push_back(std::byte{0x02});
    const auto frame = RleEncode(raster, 2);
    ASSERT_TRUE(frame);
    // The partial unit begins with 1, so the marker is 2.
    EXPECT_EQ(*frame, Bytes({2, 0, 0, 0, 2, 10, 0x55, 0x55, 0x55, 0x55, 1, 2}));
    EXPECT_EQ(Decoded(*frame, 2, raster.size()), raster);
}

TEST(RunLength, ExpandsWhatItCodedForEveryLengthAndUnit)
{
    for (const std::uint32_t unit : {1U, 2U, 4U, 8U, 16U, 32U}) {
        for (std::size_t length = 1; length < 700; length += 3) {
            std::vector<std::byte> raster(length);
            for (std::size_t i = 0; i < length; ++i)
                raster[i] = static_cast<std::byte>(i / 97 * 3);
            if (const auto frame = RleEncode(raster, unit)) {
                ASSERT_LT(frame->size(), raster.size() + 4);
                ASSERT_EQ(Decoded(*frame, unit, length), raster) << unit << " " << length;
            }
        }
    }
}

// Damaged input.

TEST(RunLength, DecodesAFrameBelowFiveBytesToNothing)
{
    EXPECT_EQ(Decoded(Bytes({1, 0, 0, 0}), 4, 4), Bytes({0, 0, 0, 0}));
    EXPECT_EQ(Decoded({}, 4, 4), Bytes({0, 0, 0, 0}));
}

TEST(RunLength, StopsAtAMarkerAtTheEnd)
{
    EXPECT_EQ(Decoded(Bytes({1, 0, 0, 0, 9, 9, 9, 9, 1}), 4, 8), Bytes({9, 9, 9, 9, 0, 0, 0, 0}));
}

TEST(RunLength, SkipsTheUnitOfAZeroCount)
{
    EXPECT_EQ(Decoded(Bytes({1, 0, 0, 0, 1, 0, 7, 7, 7, 7, 8, 8, 8, 8}), 4, 4), Bytes({8, 8, 8, 8}));
}

TEST(RunLength, StopsBeforeAUnitThatWouldPassTheCapacity)
{
    EXPECT_EQ(Decoded(Bytes({1, 0, 0, 0, 1, 9, 7, 7, 7, 7}), 4, 6), Bytes({7, 7, 7, 7, 0, 0}));
}

TEST(RunLength, SurvivesEveryTruncationOfAGoodFrame)
{
    const auto frame = RleEncode(Units(300, 0x12), 4);
    ASSERT_TRUE(frame);
    for (std::size_t length = 0; length < frame->size(); ++length) {
        const std::vector<std::byte> cut(frame->begin(),
                                         frame->begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_EQ(Decoded(cut, 4, 1200).size(), 1200U);
    }
}
