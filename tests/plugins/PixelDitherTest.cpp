#include "plugins/common/PixelDither.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

namespace {
using Plugin::CPixelDither;
using Plugin::Dithering;
using Bytes = std::vector<std::uint8_t>;

Bytes NextRow(CPixelDither& dither, const Bytes& row)
{
    Bytes out(row.size());
    dither.NextRow(row.data(), out.data());
    return out;
}

// Red of every pixel of a picture whose pixels are all the same.
Bytes RedOfFlat(Dithering mode, int bits, std::uint8_t red, std::size_t side)
{
    CPixelDither dither(mode, side, {bits, 8, 8, 8}, false);
    Bytes row(side * 4, 255);
    for (std::size_t x = 0; x < side; ++x)
        row[x * 4] = red;
    Bytes reds;
    for (std::size_t y = 0; y < side; ++y) {
        const Bytes out = NextRow(dither, row);
        for (std::size_t x = 0; x < side; ++x)
            reds.push_back(out[x * 4]);
    }
    return reds;
}

TEST(PixelDither, PassesChannelsOfEightBitsUnchanged)
{
    const Bytes row{1, 2, 3, 4, 250, 251, 252, 253};
    for (const Dithering mode : Plugin::kEveryDithering) {
        CPixelDither dither(mode, 2, {8, 8, 8, 8}, false);
        EXPECT_EQ(NextRow(dither, row), row);
        EXPECT_EQ(NextRow(dither, row), row);
    }
}

TEST(PixelDither, LeavesEveryValueThatTheDepthHasAsItIs)
{
    // Three bits repeat: 101 becomes 10110110.
    for (const std::uint8_t value : Bytes{0, 0x24, 0x49, 0x6D, 0x92, 0xB6, 0xDB, 0xFF})
        for (const Dithering mode : Plugin::kEveryDithering)
            EXPECT_EQ(RedOfFlat(mode, 3, value, 16), Bytes(256, value)) << int{value};
    for (const std::uint8_t value : Bytes{0x08, 0x10, 0x21, 0xA5, 0xF7})
        for (const Dithering mode : Plugin::kEveryDithering)
            EXPECT_EQ(RedOfFlat(mode, 5, value, 16), Bytes(256, value)) << int{value};
}

TEST(PixelDither, RoundsToTheNearestValueWithoutDithering)
{
    CPixelDither dither(Dithering::None, 2, {4, 4, 4, 1}, false);
    EXPECT_EQ(NextRow(dither, {8, 9, 25, 127, 26, 200, 254, 128}), (Bytes{0, 17, 17, 0, 34, 204, 255, 255}));
}

TEST(PixelDither, SpreadsTheErrorAheadAndBelowAndTurnsRoundAtTheEndOfARow)
{
    // One bit: 100 becomes 0 and leaves 100; its right neighbour gets 7 sixteenths, 43.75, and becomes 144,
    // so 255.
    CPixelDither dither(Dithering::ErrorDiffusion, 2, {1, 8, 8, 8}, false);
    const Bytes row{100, 9, 9, 9, 100, 9, 9, 9};
    EXPECT_EQ(NextRow(dither, row), (Bytes{0, 9, 9, 9, 255, 9, 9, 9}));
    // Backwards. Below the second: 1 sixteenth of 100 and 5 of -111 make 72, so 0. Below the first: 5 of 100,
    // 3 of -111 and 7 of 72 make 142, so 255.
    EXPECT_EQ(NextRow(dither, row), (Bytes{255, 9, 9, 9, 0, 9, 9, 9}));
}

TEST(PixelDither, SetsAsManyPixelsOfAnOrderedSquareAsTheValueSays)
{
    const auto lit = [](std::uint8_t value) {
        const Bytes reds = RedOfFlat(Dithering::Ordered, 1, value, 8);
        return std::count(reds.begin(), reds.end(), 255);
    };
    EXPECT_EQ(lit(0), 0);
    EXPECT_EQ(lit(1), 0);
    EXPECT_EQ(lit(4), 1);
    EXPECT_EQ(lit(64), 16);
    EXPECT_EQ(lit(128), 32);
    EXPECT_EQ(lit(251), 63);
    EXPECT_EQ(lit(255), 64);
}

TEST(PixelDither, AlternatesLikeAChessboardAtHalfInOrder)
{
    const Bytes reds = RedOfFlat(Dithering::Ordered, 1, 128, 8);
    for (std::size_t i = 0; i < reds.size(); ++i)
        EXPECT_EQ(reds[i], (i + i / 8) % 2 == 0 ? 255 : 0) << i;
}

TEST(PixelDither, UsesEachOfTheSixtyFourThresholdsOnce)
{
    Bytes all;
    for (const auto& row : Plugin::kBayerThresholds)
        all.insert(all.end(), row.begin(), row.end());
    std::sort(all.begin(), all.end());
    for (std::size_t i = 0; i < 64; ++i)
        EXPECT_EQ(all[i], i);
}

TEST(PixelDither, KeepsTheMeanOfAFlatPicture)
{
    constexpr std::size_t kSide = 64;
    for (const Dithering mode : {Dithering::ErrorDiffusion, Dithering::Ordered}) {
        CPixelDither dither(mode, kSide, {1, 1, 1, 1}, false);
        const Bytes row(kSide * 4, 77);
        double sum = 0;
        for (std::size_t y = 0; y < kSide; ++y)
            for (const std::uint8_t value : NextRow(dither, row)) {
                EXPECT_TRUE(value == 0 || value == 255);
                sum += value;
            }
        EXPECT_NEAR(sum / (kSide * kSide * 4), 77, 2);
    }
}

TEST(PixelDither, LetsNoErrorIntoOrOutOfPixelsThatNobodySees)
{
    // The last pixel comes out as if it stood alone, and hidden ones are rounded.
    CPixelDither dither(Dithering::ErrorDiffusion, 3, {1, 1, 1, 8}, true);
    const Bytes row{0, 0, 0, 255, 120, 120, 120, 0, 120, 120, 120, 255};
    EXPECT_EQ(NextRow(dither, row), (Bytes{0, 0, 0, 255, 0, 0, 0, 0, 0, 0, 0, 255}));
    CPixelDither seen(Dithering::ErrorDiffusion, 3, {1, 1, 1, 8}, false);
    EXPECT_EQ(NextRow(seen, row), (Bytes{0, 0, 0, 255, 0, 0, 0, 0, 255, 255, 255, 255}));
}

TEST(PixelDither, PutsNoSpecksIntoFullyTransparentOrOpaqueParts)
{
    for (const Dithering mode : {Dithering::ErrorDiffusion, Dithering::Ordered}) {
        CPixelDither dither(mode, 12, {8, 8, 8, 1}, false);
        Bytes row(48, 10);
        for (std::size_t x = 0; x < 12; ++x)
            row[x * 4 + 3] = x < 4 ? 0 : x < 8 ? 127 : 255;
        int lit = 0;
        for (int y = 0; y < 32; ++y) {
            const Bytes out = NextRow(dither, row);
            for (std::size_t x = 0; x < 4; ++x) {
                EXPECT_EQ(out[x * 4 + 3], 0);
                EXPECT_EQ(out[(x + 8) * 4 + 3], 255);
                lit += out[(x + 4) * 4 + 3] == 255 ? 1 : 0;
            }
        }
        EXPECT_NEAR(lit, 64, 6);
    }
}
}  // namespace
