#include <array>
#include <gtest/gtest.h>
#include <vector>

#include "plugins/etc1/Etc1.h"
#include "tests/plugins/PluginInterfacePictures.h"

namespace {
using Bytes = std::vector<std::uint8_t>;
using Pixel = std::array<int, 4>;

Bytes Decode(const Bytes& blocks, std::uint32_t width, std::uint32_t height)
{
    Bytes out(std::size_t{width} * height * 4, 0xCD);
    EXPECT_EQ(Etc1::Decompress(blocks.data(), out.data(), width, height), out.size());
    return out;
}

// A pixel of a picture that is four pixels wide.
Pixel At(const Bytes& pixels, std::size_t x, std::size_t y)
{
    const std::size_t at = (y * 4 + x) * 4;
    return {pixels[at], pixels[at + 1], pixels[at + 2], pixels[at + 3]};
}

// Every column has, from top to bottom, the codes 0, 1, 2, 3: + small, + large, - small, - large.
Bytes Block(std::uint8_t red, std::uint8_t green, std::uint8_t blue, std::uint8_t control)
{
    return {red, green, blue, control, 0xCC, 0xCC, 0xAA, 0xAA};
}

// Left: base 255, 0, 136 with modifiers 2 and 8. Right: base 0, 255, 136 with modifiers 5 and 17.
constexpr std::uint8_t kIndividual = 0x04;

TEST(Etc1Decode, ReadsTwoHalvesSideBySideInIndividualMode)
{
    const Bytes pixels = Decode(Block(0xF0, 0x0F, 0x88, kIndividual), 4, 4);
    for (std::size_t x = 0; x < 2; ++x) {
        EXPECT_EQ(At(pixels, x, 0), (Pixel{255, 2, 138, 255}));
        EXPECT_EQ(At(pixels, x, 1), (Pixel{255, 8, 144, 255}));
        EXPECT_EQ(At(pixels, x, 2), (Pixel{253, 0, 134, 255}));
        EXPECT_EQ(At(pixels, x, 3), (Pixel{247, 0, 128, 255}));
    }
    for (std::size_t x = 2; x < 4; ++x) {
        EXPECT_EQ(At(pixels, x, 0), (Pixel{5, 255, 141, 255}));
        EXPECT_EQ(At(pixels, x, 1), (Pixel{17, 255, 153, 255}));
        EXPECT_EQ(At(pixels, x, 2), (Pixel{0, 250, 131, 255}));
        EXPECT_EQ(At(pixels, x, 3), (Pixel{0, 238, 119, 255}));
    }
}

TEST(Etc1Decode, ReadsTwoHalvesOneAboveTheOtherWhenFlipped)
{
    const Bytes pixels = Decode(Block(0xF0, 0x0F, 0x88, kIndividual | 1), 4, 4);
    for (std::size_t x = 0; x < 4; ++x) {
        EXPECT_EQ(At(pixels, x, 0), (Pixel{255, 2, 138, 255}));
        EXPECT_EQ(At(pixels, x, 1), (Pixel{255, 8, 144, 255}));
        EXPECT_EQ(At(pixels, x, 2), (Pixel{0, 250, 131, 255}));
        EXPECT_EQ(At(pixels, x, 3), (Pixel{0, 238, 119, 255}));
    }
}

TEST(Etc1Decode, AddsASignedDifferenceInDifferentialMode)
{
    // Levels 16, 0, 31 with differences -4, +3, -1; tables 7 and 0; every pixel adds the small modifier.
    const Bytes pixels = Decode({0x84, 0x03, 0xFF, 0xE2, 0, 0, 0, 0}, 4, 4);
    EXPECT_EQ(At(pixels, 0, 0), (Pixel{132 + 47, 47, 255, 255}));
    EXPECT_EQ(At(pixels, 1, 3), (Pixel{132 + 47, 47, 255, 255}));
    EXPECT_EQ(At(pixels, 2, 0), (Pixel{99 + 2, 24 + 2, 247 + 2, 255}));
    EXPECT_EQ(At(pixels, 3, 3), (Pixel{99 + 2, 24 + 2, 247 + 2, 255}));
}

TEST(Etc1Decode, WrapsADifferenceThatLeavesFiveBits)
{
    // 31 + 1 wraps to level 0, 0 - 1 to level 31, 30 + 3 to level 1.
    const Bytes pixels = Decode({0xF9, 0x07, 0xF3, 0x02, 0, 0, 0, 0}, 4, 4);
    EXPECT_EQ(At(pixels, 2, 0), (Pixel{0 + 2, 255, 8 + 2, 255}));
}

TEST(Etc1Decode, KnowsTheEightModifierTables)
{
    constexpr std::array<std::array<int, 4>, 8> kRows{{{138, 144, 134, 128},
                                                       {141, 153, 131, 119},
                                                       {145, 165, 127, 107},
                                                       {149, 178, 123, 94},
                                                       {154, 196, 118, 76},
                                                       {160, 216, 112, 56},
                                                       {169, 242, 103, 30},
                                                       {183, 255, 89, 0}}};
    for (std::size_t table = 0; table < kRows.size(); ++table) {
        const auto control = static_cast<std::uint8_t>(table << 5 | table << 2);
        const Bytes pixels = Decode(Block(0x88, 0x88, 0x88, control), 4, 4);
        for (std::size_t y = 0; y < 4; ++y)
            for (std::size_t x = 0; x < 4; ++x) {
                const int grey = kRows[table][y];
                EXPECT_EQ(At(pixels, x, y), (Pixel{grey, grey, grey, 255})) << "table " << table;
            }
    }
}

TEST(Etc1Decode, CountsThePixelBitsDownTheColumns)
{
    // The low bit of one pixel alone: bit 4 is the top pixel of the second column, bit 13 the second of the
    // last.
    const Bytes pixels = Decode({0x88, 0x88, 0x88, 0x00, 0x00, 0x00, 0x20, 0x10}, 4, 4);
    EXPECT_EQ(At(pixels, 0, 0), (Pixel{138, 138, 138, 255}));
    EXPECT_EQ(At(pixels, 1, 0), (Pixel{144, 144, 144, 255}));
    EXPECT_EQ(At(pixels, 0, 1), (Pixel{138, 138, 138, 255}));
    EXPECT_EQ(At(pixels, 3, 1), (Pixel{144, 144, 144, 255}));
}

TEST(Etc1Decode, WritesOnlyThePixelsOfThePicture)
{
    Bytes blocks = Block(0x88, 0x88, 0x88, 0x00);
    const Bytes second = Block(0xFF, 0x00, 0x00, 0x00);
    blocks.insert(blocks.end(), second.begin(), second.end());
    const Bytes pixels = Decode(blocks, 5, 2);
    EXPECT_EQ((Bytes(pixels.begin() + 16, pixels.begin() + 24)), (Bytes{255, 2, 2, 255, 144, 144, 144, 255}));
    EXPECT_EQ((Bytes(pixels.begin() + 36, pixels.end())), (Bytes{255, 8, 8, 255}));
}

TEST(Etc1Decode, StaysInsideItsBuffersAtEverySize)
{
    for (std::uint32_t width = 1; width <= 17; ++width)
        for (std::uint32_t height = 1; height <= 17; ++height) {
            const std::size_t blocks = std::size_t{(width + 3) / 4} * ((height + 3) / 4);
            const auto source = PluginTest::ExactCopy(Bytes(blocks * 8, 0xA7));
            const std::size_t size = std::size_t{width} * height * 4;
            const auto out = std::make_unique<std::uint8_t[]>(size);
            EXPECT_EQ(Etc1::Decompress(source.get(), out.get(), width, height), size);
        }
}

TEST(Etc1Decode, TakesBuffersOfAnyAlignment)
{
    const Bytes block = Block(0xF0, 0x0F, 0x88, kIndividual);
    Bytes shifted(1, 0);
    shifted.insert(shifted.end(), block.begin(), block.end());
    Bytes out(65);
    EXPECT_EQ(Etc1::Decompress(shifted.data() + 1, out.data() + 1, 4, 4), 64U);
    EXPECT_EQ(Bytes(out.begin() + 1, out.end()), Decode(block, 4, 4));
}

TEST(Etc1Decode, RefusesAPictureWithoutPixels)
{
    std::uint8_t byte = 7;
    EXPECT_EQ(Etc1::Decompress(&byte, &byte, 0, 4), 0U);
    EXPECT_EQ(Etc1::Decompress(&byte, &byte, 4, 0), 0U);
    EXPECT_EQ(Etc1::Decompress(&byte, &byte, 0x10000, 0x10000), 0U);
    EXPECT_EQ(byte, 7);
}
}  // namespace
