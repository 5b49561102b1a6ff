#include "plugins/pvrtc/PvrtcDecode.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "plugins/pvrtc/Modulation.h"
#include "plugins/pvrtc/PvrtcBlock.h"

namespace {
using Pvrtc::PvrtcDecode;
using Pvrtc::PvrtcLevelBytes;
using Row = std::vector<int>;

// Colour words: A in the low half with the mode in bit 0, B in the high half.
constexpr std::uint32_t kBlackToWhite = 0xFFFF8000;
constexpr std::uint32_t kAllBlack = 0x80008000;
constexpr std::uint32_t kModeBit = 1;

struct Word {
    std::uint32_t modulation;
    std::uint32_t colors;
};

std::vector<std::uint8_t> Level(const std::vector<Word>& words)
{
    std::vector<std::uint8_t> bytes;
    for (const Word& word : words)
        for (const std::uint32_t half : {word.modulation, word.colors})
            for (unsigned shift = 0; shift < 32; shift += 8)
                bytes.push_back(static_cast<std::uint8_t>(half >> shift));
    return bytes;
}

class CDecoded {
public:
    CDecoded(const std::vector<Word>& words, std::uint32_t width, std::uint32_t height,
             std::uint32_t bitsPerPixel)
        : m_nWidth(width), m_aPixels(std::size_t{width} * height * 4)
    {
        const std::vector<std::uint8_t> level = Level(words);
        EXPECT_EQ(level.size(), PvrtcLevelBytes(width, height, bitsPerPixel));
        EXPECT_EQ(PvrtcDecode(level.data(), m_aPixels.data(), width, height, bitsPerPixel), m_aPixels.size());
    }

    std::array<int, 4> Pixel(std::size_t x, std::size_t y) const
    {
        const std::uint8_t* const pixel = m_aPixels.data() + (y * m_nWidth + x) * 4;
        return {pixel[0], pixel[1], pixel[2], pixel[3]};
    }

    Row Channel(std::size_t y, std::size_t channel) const
    {
        Row row;
        for (std::size_t x = 0; x < m_nWidth; ++x)
            row.push_back(Pixel(x, y)[channel]);
        return row;
    }

    Row Red(std::size_t y) const { return Channel(y, 0); }

private:
    std::size_t m_nWidth;
    std::vector<std::uint8_t> m_aPixels;
};

std::vector<Word> FourTimes(Word word)
{
    return {word, word, word, word};
}

// Stored order of 2 x 2 blocks: top left, bottom left, top right, bottom right.
std::vector<Word> LeftAndRight(Word left, Word right)
{
    return {left, left, right, right};
}

using Pixel = std::array<int, 4>;
}  // namespace

TEST(PvrtcDecode, DecodesOneColorToEveryPixel)
{
    const CDecoded white(FourTimes({0, 0xFFFFFFFE}), 8, 8, 4);
    for (std::size_t y = 0; y < 8; ++y)
        for (std::size_t x = 0; x < 8; ++x)
            EXPECT_EQ(white.Pixel(x, y), (Pixel{255, 255, 255, 255}));
}

TEST(PvrtcDecode, BlendsWithTheWeightsZeroThreeFiveEight)
{
    const CDecoded decoded(FourTimes({0x000000E4, kBlackToWhite}), 8, 8, 4);
    EXPECT_EQ(decoded.Red(0), (Row{0, 95, 159, 255, 0, 95, 159, 255}));
    EXPECT_EQ(decoded.Red(1), (Row{0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(decoded.Channel(0, 3), (Row(8, 255)));
}

TEST(PvrtcDecode, PunchesThroughWithTheThirdCodeOnly)
{
    const CDecoded decoded(FourTimes({0x000000E4, kBlackToWhite | kModeBit}), 8, 8, 4);
    EXPECT_EQ(decoded.Pixel(0, 0), (Pixel{0, 0, 0, 255}));
    EXPECT_EQ(decoded.Pixel(1, 0), (Pixel{127, 127, 127, 255}));
    EXPECT_EQ(decoded.Pixel(2, 0), (Pixel{127, 127, 127, 0}));
    EXPECT_EQ(decoded.Pixel(3, 0), (Pixel{255, 255, 255, 255}));
}

TEST(PvrtcDecode, TakesThePunchThroughModeFromThePixelsOwnBlock)
{
    const CDecoded decoded(LeftAndRight({0xAAAAAAAA, kBlackToWhite | kModeBit}, {0xAAAAAAAA, kBlackToWhite}),
                           8, 8, 4);
    EXPECT_EQ(decoded.Channel(5, 3), (Row{0, 0, 0, 0, 255, 255, 255, 255}));
    EXPECT_EQ(decoded.Red(5), (Row{127, 127, 127, 127, 159, 159, 159, 159}));
}

TEST(PvrtcDecode, ReadsOpaqueColorsWithFourBitsOfBlueInA)
{
    // A: R 10, G 21, B 9 of 15. B: R 1, G 30, B 17.
    const std::uint32_t colors =
        0x80000000 | 1u << 26 | 30u << 21 | 17u << 16 | 0x8000 | 10u << 10 | 21u << 5 | 9u << 1;
    const CDecoded a(FourTimes({0, colors}), 8, 8, 4);
    EXPECT_EQ(a.Pixel(3, 3), (Pixel{82, 173, 156, 255}));
    const CDecoded b(FourTimes({0xFFFFFFFF, colors}), 8, 8, 4);
    EXPECT_EQ(b.Pixel(3, 3), (Pixel{8, 247, 140, 255}));
}

TEST(PvrtcDecode, ReadsTranslucentColors)
{
    // A: alpha 5, R 9, G 4, B 5 of 7. B: alpha 2, R 1, G 2, B 12 of 15.
    const CDecoded a(FourTimes({0, 0x212C594A}), 8, 8, 4);
    EXPECT_EQ(a.Pixel(0, 0), (Pixel{156, 33 * 2, 181, 170}));
    const CDecoded b(FourTimes({0xFFFFFFFF, 0x212C594A}), 8, 8, 4);
    EXPECT_EQ(b.Pixel(0, 0), (Pixel{16, 33, 206, 68}));
}

TEST(PvrtcDecode, NeverReachesFullAlphaWithATranslucentColor)
{
    const CDecoded decoded(FourTimes({0, 0xFFFF7FFE}), 8, 8, 4);
    EXPECT_EQ(decoded.Pixel(0, 0), (Pixel{255, 255, 255, 238}));
}

TEST(PvrtcDecode, EnlargesColorsOfFourByFourBlocksAndWrapsAtTheSides)
{
    const CDecoded decoded(LeftAndRight({0, kAllBlack}, {0, 0x8000FFFE}), 8, 8, 4);
    for (const std::size_t y : {0u, 3u, 7u})
        EXPECT_EQ(decoded.Red(y), (Row{127, 63, 0, 63, 127, 191, 255, 191}));
}

TEST(PvrtcDecode, EnlargesColorsOfFourByFourBlocksAndWrapsAtTopAndBottom)
{
    const Word black{0, kAllBlack};
    const Word white{0, 0x8000FFFE};
    const CDecoded decoded({black, white, black, white}, 8, 8, 4);
    const Row expected{127, 63, 0, 63, 127, 191, 255, 191};
    for (std::size_t y = 0; y < 8; ++y)
        EXPECT_EQ(decoded.Red(y), Row(8, expected[y]));
}

TEST(PvrtcDecode, EnlargesBetweenFourBlocks)
{
    const Word black{0, kAllBlack};
    // One white block of four, at the bottom right: its middle is pixel (6, 6).
    const CDecoded decoded({black, black, black, {0, 0x8000FFFE}}, 8, 8, 4);
    EXPECT_EQ(decoded.Red(6), (Row{127, 63, 0, 63, 127, 191, 255, 191}));
    EXPECT_EQ(decoded.Red(5), (Row{95, 47, 0, 47, 95, 143, 191, 143}));
    EXPECT_EQ(decoded.Red(3), (Row{31, 15, 0, 15, 31, 47, 63, 47}));
    EXPECT_EQ(decoded.Red(2), (Row{0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(PvrtcDecode, EnlargesAlphaFromFourBits)
{
    // Alpha 0 on the left, 14 of 15 on the right.
    const CDecoded decoded(LeftAndRight({0, 0x80000000}, {0, 0x80007000}), 8, 8, 4);
    EXPECT_EQ(decoded.Channel(0, 3), (Row{119, 59, 0, 59, 119, 178, 238, 178}));
}

TEST(PvrtcDecode, EnlargesColorsOfEightByFourBlocks)
{
    const CDecoded decoded(LeftAndRight({0, kAllBlack}, {0, 0x8000FFFE}), 16, 8, 2);
    EXPECT_EQ(decoded.Red(0), (Row{127, 95, 63, 31, 0, 31, 63, 95, 127, 159, 191, 223, 255, 223, 191, 159}));
}

TEST(PvrtcDecode, EnlargesAlphaOfEightByFourBlocks)
{
    const CDecoded decoded(LeftAndRight({0, 0x80000000}, {0, 0x80007000}), 16, 8, 2);
    // 14 * 4 * k in sums of 5 fraction bits: 56 k / 2 + 56 k / 32.
    EXPECT_EQ(decoded.Channel(0, 3),
              (Row{119, 89, 59, 29, 0, 29, 59, 89, 119, 148, 178, 208, 238, 208, 178, 148}));
}

TEST(PvrtcDecode, ReadsOneBitForEveryPixelWithTwoBitsPerPixel)
{
    const CDecoded decoded(FourTimes({0x810000A5, kBlackToWhite}), 16, 8, 2);
    EXPECT_EQ(decoded.Red(0), (Row{255, 0, 255, 0, 0, 255, 0, 255, 255, 0, 255, 0, 0, 255, 0, 255}));
    EXPECT_EQ(decoded.Red(1), Row(16, 0));
    EXPECT_EQ(decoded.Red(3), (Row{255, 0, 0, 0, 0, 0, 0, 255, 255, 0, 0, 0, 0, 0, 0, 255}));
}

TEST(PvrtcDecode, InterpolatesWeightsFromAllFourNeighbours)
{
    // Stored weights: 0 in rows 0 and 2, 8 in rows 1 and 3.
    const CDecoded decoded(FourTimes({0xFF00FF00, kBlackToWhite | kModeBit}), 16, 8, 2);
    EXPECT_EQ(decoded.Red(0), (Row{0, 127, 0, 127, 0, 127, 0, 127, 0, 127, 0, 127, 0, 127, 0, 127}));
    EXPECT_EQ(decoded.Red(1),
              (Row{127, 255, 127, 255, 127, 255, 127, 255, 127, 255, 127, 255, 127, 255, 127, 255}));
}

TEST(PvrtcDecode, InterpolatesWeightsHorizontally)
{
    const CDecoded decoded(FourTimes({0xFF00FF01, kBlackToWhite | kModeBit}), 16, 8, 2);
    EXPECT_EQ(decoded.Red(0), Row(16, 0));
    EXPECT_EQ(decoded.Red(1), Row(16, 255));
    EXPECT_EQ(decoded.Red(2), Row(16, 0));
    EXPECT_EQ(decoded.Red(3), Row(16, 255));
}

TEST(PvrtcDecode, InterpolatesWeightsVertically)
{
    const CDecoded decoded(FourTimes({0xFF10FF01, kBlackToWhite | kModeBit}), 16, 8, 2);
    for (std::size_t y = 0; y < 8; ++y)
        EXPECT_EQ(decoded.Red(y), (Row{0, 255, 0, 255, 0, 255, 0, 255, 0, 255, 0, 255, 0, 255, 0, 255}));
}

TEST(PvrtcDecode, RoundsInterpolatedWeightsToTheNearest)
{
    // Weight 3 everywhere but in the corner pixel, which has one bit and therefore 0.
    const CDecoded decoded(FourTimes({0x55555554, kBlackToWhite | kModeBit}), 16, 8, 2);
    EXPECT_EQ(decoded.Red(0), (Row{0, 63, 95, 95, 95, 95, 95, 63, 0, 63, 95, 95, 95, 95, 95, 63}));
    EXPECT_EQ(decoded.Red(1), (Row{63, 95, 95, 95, 95, 95, 95, 95, 63, 95, 95, 95, 95, 95, 95, 95}));
    EXPECT_EQ(decoded.Red(2), (Row(16, 95)));
    EXPECT_EQ(decoded.Red(3), (Row{63, 95, 95, 95, 95, 95, 95, 95, 63, 95, 95, 95, 95, 95, 95, 95}));
}

TEST(PvrtcDecode, RoundsHalvesOfInterpolatedWeightsUp)
{
    // All four: weight 3 in rows 0 and 2 but for the corner pixel, else 0. Two neighbours of 3 make 6 / 4.
    const CDecoded both(FourTimes({0x00550054, kBlackToWhite | kModeBit}), 16, 8, 2);
    EXPECT_EQ(both.Red(2), (Row{95, 63, 95, 63, 95, 63, 95, 63, 95, 63, 95, 63, 95, 63, 95, 63}));
    EXPECT_EQ(both.Red(1), (Row{31, 0, 63, 0, 63, 0, 63, 0, 31, 0, 63, 0, 63, 0, 63, 0}));
    // One direction: weight 3 at (1, 1) and (5, 1), else 0. One neighbour of 3 makes 3 / 2.
    const CDecoded across(FourTimes({0x00001101, kBlackToWhite | kModeBit}), 16, 8, 2);
    EXPECT_EQ(across.Red(1), (Row{63, 95, 63, 0, 63, 95, 63, 0, 63, 95, 63, 0, 63, 95, 63, 0}));
    const CDecoded down(FourTimes({0x00101101, kBlackToWhite | kModeBit}), 16, 8, 2);
    EXPECT_EQ(down.Red(0), (Row{0, 63, 0, 0, 0, 63, 0, 0, 0, 63, 0, 0, 0, 63, 0, 0}));
    EXPECT_EQ(down.Red(1), (Row{0, 95, 0, 0, 0, 95, 0, 0, 0, 95, 0, 0, 0, 95, 0, 0}));
}

TEST(PvrtcDecode, GivesTheCornerPixelItsUpperBit)
{
    const CDecoded decoded(FourTimes({0x00000002, kBlackToWhite | kModeBit}), 16, 8, 2);
    EXPECT_EQ(decoded.Red(0), (Row{255, 63, 0, 0, 0, 0, 0, 63, 255, 63, 0, 0, 0, 0, 0, 63}));
}

TEST(PvrtcDecode, GivesTheMiddlePixelItsUpperBitWhenInterpolatingHorizontally)
{
    const CDecoded decoded(FourTimes({0x00200001, kBlackToWhite | kModeBit}), 16, 8, 2);
    EXPECT_EQ(decoded.Red(2), (Row{0, 0, 0, 127, 255, 127, 0, 0, 0, 0, 0, 127, 255, 127, 0, 0}));
    EXPECT_EQ(decoded.Red(1), Row(16, 0));
}

TEST(PvrtcDecode, GivesTheMiddlePixelItsUpperBitWhenInterpolatingVertically)
{
    const CDecoded decoded(FourTimes({0x00300001, kBlackToWhite | kModeBit}), 16, 8, 2);
    EXPECT_EQ(decoded.Red(1), (Row{0, 0, 0, 0, 127, 0, 0, 0, 0, 0, 0, 0, 127, 0, 0, 0}));
    EXPECT_EQ(decoded.Red(2), (Row{0, 0, 0, 0, 255, 0, 0, 0, 0, 0, 0, 0, 255, 0, 0, 0}));
    EXPECT_EQ(decoded.Red(3), (Row{0, 0, 0, 0, 127, 0, 0, 0, 0, 0, 0, 0, 127, 0, 0, 0}));
}

TEST(PvrtcDecode, GivesTheMiddlePixelBothBitsWhenInterpolatingFromAllFour)
{
    const CDecoded decoded(FourTimes({0x00200000, kBlackToWhite | kModeBit}), 16, 8, 2);
    EXPECT_EQ(decoded.Pixel(4, 2)[0], 159);
}

TEST(PvrtcDecode, InterpolatesWithTheWeightsOfNeighbouringBlocksOfAnotherMode)
{
    // Left: one bit a pixel, all white. Right: all stored weights 0, interpolated horizontally.
    const CDecoded decoded(LeftAndRight({0xFFFFFFFF, kBlackToWhite}, {0x00000001, kBlackToWhite | kModeBit}),
                           16, 8, 2);
    EXPECT_EQ(decoded.Red(1), (Row{255, 255, 255, 255, 255, 255, 255, 255, 127, 0, 0, 0, 0, 0, 0, 0}));
    // In even rows the last pixel is the one that is not stored; its right neighbour is beyond the edge.
    EXPECT_EQ(decoded.Red(0), (Row{255, 255, 255, 255, 255, 255, 255, 255, 0, 0, 0, 0, 0, 0, 0, 127}));
}

TEST(PvrtcDecode, FindsTheBlocksOfAWideLevelInStoredOrder)
{
    // 8 x 2 blocks; word 13 is column 6, row 1.
    std::vector<Word> words(16, {0, kBlackToWhite});
    words[13].modulation = 0xFFFFFFFF;
    const CDecoded decoded(words, 32, 8, 4);
    for (std::size_t y = 0; y < 8; ++y)
        for (std::size_t x = 0; x < 32; ++x)
            EXPECT_EQ(decoded.Pixel(x, y)[0], x >= 24 && x < 28 && y >= 4 ? 255 : 0) << x << ", " << y;
}

TEST(PvrtcDecode, FindsTheBlocksOfATallLevelInStoredOrder)
{
    // 2 x 8 blocks; word 13 is column 0, row 7.
    std::vector<Word> words(16, {0, kBlackToWhite});
    words[13].modulation = 0xFFFFFFFF;
    const CDecoded decoded(words, 8, 32, 4);
    for (std::size_t y = 0; y < 32; ++y)
        for (std::size_t x = 0; x < 8; ++x)
            EXPECT_EQ(decoded.Pixel(x, y)[0], x < 4 && y >= 28 ? 255 : 0) << x << ", " << y;
}

TEST(PvrtcDecode, DecodesSmallLevelsAsTheCornerOfTwoByTwoBlocks)
{
    for (const std::uint32_t bitsPerPixel : {2u, 4u}) {
        const std::vector<Word> words{{0x1234E4F0, 0xC3A59D6E},
                                      {0x89ABCDEF, 0x7F01E3C5},
                                      {0x0F1E2D3C, 0x9A8B4C2D},
                                      {0xDEADBEEF, 0x31415926}};
        const std::uint32_t fullWidth = bitsPerPixel == 2 ? 16 : 8;
        const CDecoded full(words, fullWidth, 8, bitsPerPixel);
        for (const std::uint32_t side : {1u, 2u, 4u}) {
            const CDecoded small(words, side, side, bitsPerPixel);
            for (std::size_t y = 0; y < side; ++y)
                for (std::size_t x = 0; x < side; ++x)
                    EXPECT_EQ(small.Pixel(x, y), full.Pixel(x, y));
        }
    }
}

TEST(PvrtcDecode, ReadsAndWritesExactlyTheLevelForEverySizeUpToSixtyFour)
{
    for (const std::uint32_t bitsPerPixel : {2u, 4u}) {
        for (std::uint32_t width = 1; width <= 64; width *= 2) {
            for (std::uint32_t height = 1; height <= 64; height *= 2) {
                // Heap blocks of the exact size, so that a sanitizer sees every byte too far.
                const std::size_t levelBytes = PvrtcLevelBytes(width, height, bitsPerPixel);
                const auto level = std::make_unique<std::uint8_t[]>(levelBytes);
                std::mt19937 random(width * 131 + height);
                for (std::size_t i = 0; i < levelBytes; ++i)
                    level[i] = static_cast<std::uint8_t>(random() >> 24);
                const std::size_t pixelBytes = std::size_t{width} * height * 4;
                const auto pixels = std::make_unique<std::uint8_t[]>(pixelBytes);
                EXPECT_EQ(PvrtcDecode(level.get(), pixels.get(), width, height, bitsPerPixel), pixelBytes);
            }
        }
    }
}

TEST(PvrtcDecode, RefusesSizesThatTheFormatCannotHoldAndWritesNothing)
{
    const std::array<std::array<std::uint32_t, 3>, 10> refused{{{0, 8, 4},
                                                                {8, 0, 4},
                                                                {12, 8, 4},
                                                                {8, 100, 2},
                                                                {65536, 8, 4},
                                                                {8, 65536, 4},
                                                                {32768, 32768, 2},
                                                                {8, 8, 0},
                                                                {8, 8, 3},
                                                                {8, 8, 16}}};
    const std::vector<std::uint8_t> level(4096, 0x55);
    for (const auto& [width, height, bitsPerPixel] : refused) {
        std::vector<std::uint8_t> pixels(4096, 0xAA);
        EXPECT_EQ(PvrtcDecode(level.data(), pixels.data(), width, height, bitsPerPixel), 0u);
        EXPECT_EQ(pixels, std::vector<std::uint8_t>(4096, 0xAA)) << width << " x " << height;
        EXPECT_EQ(PvrtcLevelBytes(width, height, bitsPerPixel), 0u);
    }
}

TEST(PvrtcLevelBytes, IsThirtyTwoForTheSmallestLevels)
{
    for (const std::uint32_t side : {1u, 2u, 4u, 8u}) {
        EXPECT_EQ(PvrtcLevelBytes(side, side, 4), 32u);
        EXPECT_EQ(PvrtcLevelBytes(side, side, 2), 32u);
    }
}

TEST(PvrtcLevelBytes, IsAQuarterOrHalfAByteAPixelForLargerSquares)
{
    EXPECT_EQ(PvrtcLevelBytes(16, 16, 2), 64u);
    EXPECT_EQ(PvrtcLevelBytes(16, 16, 4), 128u);
    EXPECT_EQ(PvrtcLevelBytes(256, 256, 2), 16384u);
    EXPECT_EQ(PvrtcLevelBytes(256, 256, 4), 32768u);
    EXPECT_EQ(PvrtcLevelBytes(32768, 16384, 4), 268435456u);
}

TEST(PvrtcLevelBytes, CountsTwoBlocksAtLeastInEachDirection)
{
    EXPECT_EQ(PvrtcLevelBytes(2, 64, 4), 256u);
    EXPECT_EQ(PvrtcLevelBytes(64, 2, 4), 256u);
    EXPECT_EQ(PvrtcLevelBytes(8, 64, 2), 256u);
    EXPECT_EQ(PvrtcLevelBytes(64, 1, 2), 128u);
}

TEST(PvrtcStoredIndex, InterleavesRowAndColumnWithTheRowLowest)
{
    const auto grid = Pvrtc::GridOf(64, 16, 4);
    ASSERT_TRUE(grid);
    EXPECT_EQ(Pvrtc::StoredIndex(*grid, 0, 1), 1u);
    EXPECT_EQ(Pvrtc::StoredIndex(*grid, 1, 0), 2u);
    EXPECT_EQ(Pvrtc::StoredIndex(*grid, 3, 3), 15u);
    EXPECT_EQ(Pvrtc::StoredIndex(*grid, 4, 0), 16u);
    // The published example of a level of 16 x 4 blocks.
    EXPECT_EQ(Pvrtc::StoredIndex(*grid, 13, 2), 54u);
}

TEST(PvrtcStoredIndex, AppendsTheLeftOverRowBitsOfATallLevel)
{
    const auto grid = Pvrtc::GridOf(16, 32, 2);
    ASSERT_TRUE(grid);
    EXPECT_EQ(Pvrtc::StoredIndex(*grid, 1, 1), 3u);
    EXPECT_EQ(Pvrtc::StoredIndex(*grid, 0, 2), 4u);
    EXPECT_EQ(Pvrtc::StoredIndex(*grid, 1, 7), 15u);
}

TEST(PvrtcBlock, PacksEveryColorAgainAsItWas)
{
    for (std::uint32_t half = 0; half < 0x10000; ++half) {
        const std::uint32_t colors = half << 16 | (half & 0xFFFE);
        ASSERT_EQ(Pvrtc::PackEndpoints(Pvrtc::UnpackEndpoints(colors)), colors);
    }
}

TEST(PvrtcModulation, PacksEveryWordAgainAsItWas)
{
    std::mt19937 random(7);
    for (const std::uint32_t bitsPerPixel : {2u, 4u}) {
        Pvrtc::ModulationMap map(*Pvrtc::GridOf(16, 8, bitsPerPixel));
        for (int i = 0; i < 2000; ++i) {
            const Pvrtc::BlockWord word{static_cast<std::uint32_t>(random()),
                                        static_cast<std::uint32_t>(i & 1)};
            Pvrtc::UnpackModulation(word, 1, 1, map);
            const Pvrtc::BlockWord again = Pvrtc::PackModulation(map, 1, 1);
            ASSERT_EQ(again.modulation, word.modulation);
            ASSERT_EQ(again.colors, word.colors);
        }
    }
}
