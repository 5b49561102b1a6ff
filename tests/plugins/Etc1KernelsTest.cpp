#include <algorithm>
#include <array>
#include <climits>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "plugins/etc1/Etc1.h"
#include "tests/plugins/PluginInterfacePictures.h"

// What must hold for the kernels of every instruction set, whatever the number of threads.

namespace {
using Plugin::Dithering;
using Plugin::InstructionSet;
using Plugin::Quality;
using PluginTest::Picture;
using Bytes = std::vector<std::uint8_t>;

constexpr std::array kQualities{Quality::Fast, Quality::Normal, Quality::High, Quality::Best};

std::size_t BlockCount(std::uint32_t width, std::uint32_t height)
{
    return std::size_t{(width + 3) / 4} * ((height + 3) / 4);
}

Bytes Encode(const Picture& picture, const Etc1::EncodeOptions& options)
{
    Bytes out(BlockCount(picture.width, picture.height) * 8, 0xCD);
    EXPECT_EQ(Etc1::Compress(picture.pixels.data(), out.data(), picture.width, picture.height, options),
              out.size());
    return out;
}

Bytes Decode(const Bytes& blocks, std::uint32_t width, std::uint32_t height, InstructionSet set)
{
    Bytes out(std::size_t{width} * height * 4, 0xCD);
    EXPECT_EQ(Etc1::Decompress(blocks.data(), out.data(), width, height, set), out.size());
    return out;
}

// Blocks of every kind that could part the kernels: noise, two values, one colour with little noise, the ends
// of the range, single odd pixels, slopes; alpha of all sorts.
Picture OddBlocks(std::uint32_t width, std::uint32_t height)
{
    Picture picture{width, height, Bytes(std::size_t{width} * height * 4)};
    std::uint32_t state = 11;
    for (std::uint32_t y = 0; y < height; ++y)
        for (std::uint32_t x = 0; x < width; ++x) {
            const std::uint32_t kind = (x / 4 * 5 + y / 4 * 3) % 11;
            std::uint8_t* const pixel = picture.pixels.data() + (std::size_t{y} * width + x) * 4;
            for (std::uint32_t channel = 0; channel < 4; ++channel) {
                const std::uint32_t noise = PluginTest::NextNumber(state) & 0xFF;
                const std::uint32_t flat = x / 4 * 37 + y / 4 * 91 + channel * 53;
                const std::array<std::uint32_t, 11> values{noise,
                                                           noise % 2 * 255,
                                                           flat,
                                                           flat + noise % 3,
                                                           254 + noise % 2,
                                                           noise % 2,
                                                           noise / 255,
                                                           noise / 8,
                                                           x % 4 == y % 4 ? noise : flat,
                                                           255 - noise % 40,
                                                           x * 9 + y * 5 * channel};
                pixel[channel] = static_cast<std::uint8_t>(values[kind] & 0xFF);
            }
        }
    return picture;
}

class Etc1Kernels : public testing::TestWithParam<InstructionSet> {
protected:
    void SetUp() override
    {
        if (!Plugin::IsSupported(GetParam()))
            GTEST_SKIP() << "not on this processor";
    }
};

TEST_P(Etc1Kernels, GiveTheBytesOfThePortableOnes)
{
    // Widths that leave every number of blocks over, and rows that stick out.
    for (const auto& [width, height] : {std::pair{84U, 12U}, {36U, 8U}, {29U, 7U}, {1U, 1U}, {5U, 14U}}) {
        const Picture picture = OddBlocks(width, height);
        for (const Quality quality : kQualities) {
            if (width > 30 && (quality == Quality::Best || (quality == Quality::High && width > 40)))
                continue;
            Etc1::EncodeOptions options{quality, Dithering::None, 1, InstructionSet::Portable};
            const Bytes wanted = Encode(picture, options);
            options.instructionSet = GetParam();
            EXPECT_EQ(Encode(picture, options), wanted)
                << width << " x " << height << ", quality " << static_cast<int>(quality);
        }
    }
}

TEST_P(Etc1Kernels, DecodeEveryControlByteLikeThePortableOne)
{
    // Each of the 256 with three sets of other bytes.
    Bytes blocks(std::size_t{256} * 3 * 8);
    std::uint32_t state = 5;
    for (std::size_t i = 0; i < blocks.size(); ++i)
        blocks[i] = static_cast<std::uint8_t>(i % 8 == 3 ? i / 8 : PluginTest::NextNumber(state));
    EXPECT_EQ(Decode(blocks, 128, 96, GetParam()), Decode(blocks, 128, 96, InstructionSet::Portable));
}

TEST_P(Etc1Kernels, DecodeEveryPairOfLevelsLikeThePortableOne)
{
    // Red and blue run through all bytes in both modes, so that every difference of every level comes up.
    Bytes blocks;
    for (unsigned level = 0; level < 256; ++level)
        for (const unsigned mode : {0U, 2U}) {
            const auto byte = static_cast<std::uint8_t>(level);
            const auto inverse = static_cast<std::uint8_t>(255 - level);
            const auto control = static_cast<std::uint8_t>(mode);
            const Bytes block{byte, 0x88, inverse, control, 0x12, 0x34, 0x56, 0x78};
            blocks.insert(blocks.end(), block.begin(), block.end());
        }
    EXPECT_EQ(Decode(blocks, 128, 64, GetParam()), Decode(blocks, 128, 64, InstructionSet::Portable));
}

// The least squared error that any block of one colour can have: by trying every modifier of both modes, with
// the best level of each channel.
int LeastSolidError(const std::array<int, 3>& color)
{
    constexpr std::array<int, 16> kSizes{2, 8, 5, 17, 9, 29, 13, 42, 18, 60, 24, 80, 33, 106, 47, 183};
    int least = INT_MAX;
    for (const int bits : {4, 5})
        for (const int size : kSizes)
            for (const int modifier : {size, -size}) {
                int error = 0;
                for (const int value : color) {
                    int nearest = 255;
                    for (int level = 0; level < 1 << bits; ++level) {
                        const int base = bits == 4 ? level * 17 : level << 3 | level >> 2;
                        const int shown = std::min(std::max(base + modifier, 0), 255);
                        nearest = std::min(nearest, std::abs(shown - value));
                    }
                    error += nearest * nearest;
                }
                least = std::min(least, error);
            }
    return least;
}

TEST_P(Etc1Kernels, ReachTheNearestColourOfEverySolidBlock)
{
    // Every grey and as many colours, beside each other so that solid blocks of a batch differ.
    std::vector<std::array<int, 3>> colors;
    for (int value = 0; value < 256; ++value) {
        colors.push_back({value, value, value});
        colors.push_back({value, (value * 7 + 3) & 0xFF, 255 - value});
    }
    Picture picture{128, 64, Bytes(std::size_t{128} * 64 * 4)};
    for (std::size_t i = 0; i < std::size_t{128} * 64; ++i) {
        const auto& color = colors[i / 128 / 4 * 32 + i % 128 / 4];
        for (std::size_t channel = 0; channel < 4; ++channel)
            picture.pixels[i * 4 + channel] =
                static_cast<std::uint8_t>(channel == 3 ? i : static_cast<std::size_t>(color[channel]));
    }
    const Bytes got = Decode(Encode(picture, {Quality::Fast, Dithering::None, 1, GetParam()}), 128, 64,
                             InstructionSet::Portable);
    for (std::size_t block = 0; block < colors.size(); ++block) {
        const int least = LeastSolidError(colors[block]);
        for (std::size_t i = 0; i < 16; ++i) {
            const std::size_t pixel = (block / 32 * 4 + i / 4) * 128 + block % 32 * 4 + i % 4;
            int error = 0;
            for (std::size_t channel = 0; channel < 3; ++channel) {
                const int away = got[pixel * 4 + channel] - colors[block][channel];
                error += away * away;
            }
            ASSERT_EQ(error, least) << "colour " << block << ", pixel " << i;
        }
    }
}

TEST_P(Etc1Kernels, StayInsideTheirBuffersAtEverySize)
{
    for (const std::uint32_t width : {1U, 3U, 4U, 15U, 16U, 31U, 33U, 69U})
        for (const std::uint32_t height : {1U, 2U, 4U, 5U}) {
            const Bytes noise = PluginTest::Noise(width, height).pixels;
            const auto pixels = PluginTest::ExactCopy(noise);
            const std::size_t size = BlockCount(width, height) * 8;
            const auto blocks = std::make_unique<std::uint8_t[]>(size);
            const Etc1::EncodeOptions options{Quality::Fast, Dithering::None, 1, GetParam()};
            EXPECT_EQ(Etc1::Compress(pixels.get(), blocks.get(), width, height, options), size);
            const auto decoded = std::make_unique<std::uint8_t[]>(noise.size());
            EXPECT_EQ(Etc1::Decompress(blocks.get(), decoded.get(), width, height, GetParam()), noise.size());
        }
}

TEST_P(Etc1Kernels, TakeBuffersOfAnyAlignment)
{
    const Picture picture = OddBlocks(36, 8);
    const Etc1::EncodeOptions options{Quality::Normal, Dithering::None, 1, GetParam()};
    const Bytes blocks = Encode(picture, options);
    const Bytes pixels = Decode(blocks, 36, 8, GetParam());
    for (std::size_t shift = 1; shift < 4; ++shift) {
        Bytes shifted(shift, 0);
        shifted.insert(shifted.end(), picture.pixels.begin(), picture.pixels.end());
        Bytes out(shift + blocks.size());
        Etc1::Compress(shifted.data() + shift, out.data() + shift, 36, 8, options);
        const auto begin = static_cast<std::ptrdiff_t>(shift);
        EXPECT_EQ(Bytes(out.begin() + begin, out.end()), blocks);
        Bytes decoded(shift + pixels.size());
        Etc1::Decompress(out.data() + shift, decoded.data() + shift, 36, 8, GetParam());
        EXPECT_EQ(Bytes(decoded.begin() + begin, decoded.end()), pixels);
    }
}

std::string NameOfSet(const testing::TestParamInfo<InstructionSet>& info)
{
    switch (info.param) {
        case InstructionSet::Portable:
            return "Portable";
        case InstructionSet::Sse41:
            return "Sse41";
        case InstructionSet::Avx2:
            return "Avx2";
    }
    return "";
}

INSTANTIATE_TEST_SUITE_P(Every, Etc1Kernels, testing::ValuesIn(Plugin::kEveryInstructionSet), NameOfSet);

TEST(Etc1Threads, GiveTheSameBytesInAnyNumber)
{
    const Picture picture = OddBlocks(75, 50);
    for (const Quality quality : {Quality::Fast, Quality::Normal}) {
        Etc1::EncodeOptions options{quality, Dithering::None, 1};
        const Bytes wanted = Encode(picture, options);
        for (const unsigned threads : {0U, 2U, 3U, 40U}) {
            options.threads = threads;
            EXPECT_EQ(Encode(picture, options), wanted) << threads << " threads";
        }
    }
}

struct Floor {
    Quality quality;
    double decibels;
};

TEST(Etc1Encode, ComesNearToWhatItsBlocksCanHold)
{
    // Pictures made of blocks that exist: a perfect search would find every one of them again.
    Bytes blocks(64 * 8);
    std::uint32_t state = 21;
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        // Tables that are not the widest, in both modes and flips; colours away from the ends.
        const std::uint32_t random = PluginTest::NextNumber(state);
        constexpr std::array<unsigned, 8> kLeast{0x60, 0x60, 0x60, 0, 0, 0, 0, 0};
        constexpr std::array<unsigned, 8> kMask{0x3B, 0x3B, 0x3B, 0x6F, 0xFF, 0xFF, 0xFF, 0xFF};
        blocks[i] = static_cast<std::uint8_t>(kLeast[i % 8] + (random & kMask[i % 8]));
    }
    const Picture picture{32, 32, Decode(blocks, 32, 32, InstructionSet::Portable)};
    for (const Floor& floor :
         {Floor{Quality::Fast, 34.8}, {Quality::Normal, 41.6}, {Quality::High, 45.8}, {Quality::Best, 46}}) {
        const Bytes got = Decode(Encode(picture, {floor.quality}), 32, 32, InstructionSet::Portable);
        EXPECT_GE(PluginTest::Psnr(picture.pixels, got, 3), floor.decibels)
            << "quality " << static_cast<int>(floor.quality);
    }
}
}  // namespace
