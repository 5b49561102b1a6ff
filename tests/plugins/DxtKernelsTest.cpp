#include <array>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

#include "plugins/dxt/Dxt.h"
#include "tests/plugins/EveryInstructionSet.h"
#include "tests/plugins/PluginInterfacePictures.h"

// What must hold for the encoding kernels of every instruction set, whatever the number of threads.

namespace {
using Dxt::Variant;
using Plugin::Dithering;
using Plugin::InstructionSet;
using Plugin::Quality;
using PluginTest::Picture;
using Bytes = std::vector<std::uint8_t>;

constexpr std::array kVariants{Variant::Dxt1, Variant::Dxt1Alpha, Variant::Dxt3, Variant::Dxt5};
constexpr std::array kQualities{Quality::Fast, Quality::Normal, Quality::High, Quality::Best};

Bytes Encode(const Picture& picture, const Dxt::EncodeOptions& options)
{
    const std::size_t blocks = std::size_t{(picture.width + 3) / 4} * ((picture.height + 3) / 4);
    Bytes out(blocks * Dxt::BlockBytes(options.variant), 0xCD);
    EXPECT_EQ(Dxt::Compress(picture.pixels.data(), out.data(), picture.width, picture.height, options),
              out.size());
    return out;
}

Bytes Decode(const Picture& picture, const Bytes& blocks, Variant variant)
{
    Bytes out(picture.pixels.size());
    EXPECT_EQ(Dxt::Decompress(blocks.data(), out.data(), picture.width, picture.height, variant), out.size());
    return out;
}

// Blocks of every kind that could part the kernels: noise, two values, one colour with little noise, extremes
// of alpha, single odd pixels, unseen pixels.
Picture OddBlocks(std::uint32_t width, std::uint32_t height)
{
    Picture picture{width, height, Bytes(std::size_t{width} * height * 4)};
    std::uint32_t state = 7;
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
                                                           channel == 3 ? noise % 3 * 127 : noise,
                                                           x % 4 == y % 4 ? noise : flat,
                                                           channel == 3 ? noise % 2 : flat + noise % 40,
                                                           x * 9 + y * 5 * channel};
                pixel[channel] = static_cast<std::uint8_t>(values[kind] & 0xFF);
            }
        }
    return picture;
}

class DxtKernels : public testing::TestWithParam<InstructionSet> {};
class DxtVectorKernels : public testing::TestWithParam<InstructionSet> {};

TEST_P(DxtVectorKernels, GiveTheBytesOfThePortableOnes)
{
    if (!Plugin::IsSupported(GetParam()))
        GTEST_SKIP() << "not on this processor";
    // Widths that leave every number of blocks over, and rows that stick out.
    for (const auto& [width, height] : {std::pair{84U, 16U}, {36U, 8U}, {29U, 7U}, {1U, 1U}, {5U, 30U}}) {
        const Picture picture = OddBlocks(width, height);
        for (const Variant variant : kVariants)
            for (const Quality quality : kQualities) {
                if (quality == Quality::Best && width > 30)
                    continue;
                Dxt::EncodeOptions options{variant, quality};
                options.instructionSet = InstructionSet::Portable;
                const Bytes wanted = Encode(picture, options);
                options.instructionSet = GetParam();
                EXPECT_EQ(Encode(picture, options), wanted)
                    << width << " x " << height << ", quality " << static_cast<int>(quality);
            }
    }
}

TEST_P(DxtKernels, StayInsideTheirBuffersAtEverySize)
{
    if (!Plugin::IsSupported(GetParam()))
        GTEST_SKIP() << "not on this processor";
    for (const Variant variant : kVariants)
        for (const Quality quality : {Quality::Fast, Quality::Normal})
            for (const std::uint32_t width : {1U, 3U, 4U, 15U, 16U, 31U, 33U, 69U})
                for (const std::uint32_t height : {1U, 2U, 4U, 5U}) {
                    const auto source = PluginTest::ExactCopy(PluginTest::Noise(width, height).pixels);
                    const std::size_t size =
                        std::size_t{(width + 3) / 4} * ((height + 3) / 4) * Dxt::BlockBytes(variant);
                    const auto out = std::make_unique<std::uint8_t[]>(size);
                    Dxt::EncodeOptions options{variant, quality};
                    options.instructionSet = GetParam();
                    EXPECT_EQ(Dxt::Compress(source.get(), out.get(), width, height, options), size);
                }
}

INSTANTIATE_TEST_SUITE_P(Every, DxtVectorKernels,
                         testing::Values(InstructionSet::Sse41, InstructionSet::Avx2), PluginTest::NameOfSet);
INSTANTIATE_TEST_SUITE_P(Every, DxtKernels, testing::ValuesIn(Plugin::kEveryInstructionSet),
                         PluginTest::NameOfSet);

TEST(DxtThreads, GiveTheSameBytesInAnyNumber)
{
    const Picture picture = OddBlocks(75, 50);
    for (const Variant variant : kVariants)
        for (const Dithering dithering : Plugin::kEveryDithering) {
            Dxt::EncodeOptions options{variant, Quality::Normal, dithering, 1};
            const Bytes wanted = Encode(picture, options);
            for (const unsigned threads : {0U, 2U, 3U, 40U}) {
                options.threads = threads;
                EXPECT_EQ(Encode(picture, options), wanted) << threads << " threads";
            }
        }
}

TEST(DxtEncode, UsesBlackBesideThreeColoursAtTheBestLevel)
{
    // A line of three colours and black off the line: four colours on one line cannot show all of them.
    constexpr std::array<std::array<std::uint8_t, 3>, 4> kColors{
        {{0, 0, 0}, {255, 255, 0}, {0, 255, 255}, {127, 255, 127}}};
    Picture picture = PluginTest::Solid(4, 4, 0, 0, 0, 255);
    for (std::size_t i = 0; i < 16; ++i)
        for (std::size_t channel = 0; channel < 3; ++channel)
            picture.pixels[i * 4 + channel] = kColors[i % 4][channel];
    const Bytes got = Decode(picture, Encode(picture, {Variant::Dxt1, Quality::Best}), Variant::Dxt1);
    EXPECT_EQ(got, picture.pixels);
}
}  // namespace
