#include <array>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

#include "plugins/dxt/Dxt.h"
#include "tests/plugins/EveryInstructionSet.h"
#include "tests/plugins/PluginInterfacePictures.h"

// What must hold for the decoding kernels of every instruction set; the portable ones are the definition.

namespace {
using Dxt::Variant;
using Plugin::InstructionSet;
using Bytes = std::vector<std::uint8_t>;

constexpr std::array kVariants{Variant::Dxt1, Variant::Dxt1Alpha, Variant::Dxt3, Variant::Dxt5};

Bytes RandomBlocks(std::size_t count, std::size_t blockBytes, std::uint32_t seed)
{
    Bytes blocks(count * blockBytes);
    std::uint32_t state = seed;
    for (std::uint8_t& byte : blocks)
        byte = static_cast<std::uint8_t>(PluginTest::NextNumber(state));
    return blocks;
}

Bytes Decode(const Bytes& blocks, std::uint32_t width, std::uint32_t height, Variant variant,
             InstructionSet set)
{
    Bytes out(std::size_t{width} * height * 4, 0xCD);
    EXPECT_EQ(Dxt::Decompress(blocks.data(), out.data(), width, height, variant, set), out.size());
    return out;
}

class DxtDecodeKernels : public testing::TestWithParam<InstructionSet> {};
class DxtVectorDecodeKernels : public testing::TestWithParam<InstructionSet> {};

TEST_P(DxtVectorDecodeKernels, GiveTheBytesOfThePortableOnesForRandomBlocks)
{
    if (!Plugin::IsSupported(GetParam()))
        GTEST_SKIP() << "not on this processor";
    for (const Variant variant : kVariants)
        for (std::uint32_t width = 1; width <= 69; width += 4)
            for (const std::uint32_t height : {3U, 4U, 9U}) {
                const std::size_t count = std::size_t{(width + 3) / 4} * ((height + 3) / 4);
                const Bytes blocks = RandomBlocks(count, Dxt::BlockBytes(variant), width * 7 + height);
                ASSERT_EQ(Decode(blocks, width, height, variant, GetParam()),
                          Decode(blocks, width, height, variant, InstructionSet::Portable))
                    << width << " x " << height;
            }
}

TEST_P(DxtVectorDecodeKernels, MixEveryPairOfAlphasLikeThePortableOnes)
{
    if (!Plugin::IsSupported(GetParam()))
        GTEST_SKIP() << "not on this processor";
    constexpr std::size_t kAcross = 256;
    for (std::size_t first = 0; first < 256; ++first) {
        Bytes blocks(kAcross * 16);
        for (std::size_t second = 0; second < kAcross; ++second) {
            // All eight indices, twice.
            const std::array<std::size_t, 8> alphas{first, second, 0x88, 0xC6, 0xFA, 0x88, 0xC6, 0xFA};
            for (std::size_t i = 0; i < alphas.size(); ++i)
                blocks[second * 16 + i] = static_cast<std::uint8_t>(alphas[i]);
        }
        ASSERT_EQ(Decode(blocks, kAcross * 4, 4, Variant::Dxt5, GetParam()),
                  Decode(blocks, kAcross * 4, 4, Variant::Dxt5, InstructionSet::Portable))
            << "alpha " << first;
    }
}

TEST_P(DxtVectorDecodeKernels, MixEveryPairOfLevelsLikeThePortableOnes)
{
    if (!Plugin::IsSupported(GetParam()))
        GTEST_SKIP() << "not on this processor";
    for (std::size_t first = 0; first < 64; ++first) {
        Bytes blocks(64 * 8);
        for (std::size_t second = 0; second < 64; ++second) {
            const std::size_t ends = (first / 2 << 11 | first << 5 | first / 2) |
                                     (second / 2 << 11 | second << 5 | second / 2) << 16;
            for (std::size_t i = 0; i < 4; ++i) {
                blocks[second * 8 + i] = static_cast<std::uint8_t>(ends >> 8 * i & 0xFF);
                blocks[second * 8 + 4 + i] = 0xE4;
            }
        }
        for (const Variant variant : {Variant::Dxt1, Variant::Dxt1Alpha})
            ASSERT_EQ(Decode(blocks, 64 * 4, 4, variant, GetParam()),
                      Decode(blocks, 64 * 4, 4, variant, InstructionSet::Portable))
                << "level " << first;
    }
}

TEST_P(DxtDecodeKernels, StayInsideTheirBuffersAtEveryWidth)
{
    if (!Plugin::IsSupported(GetParam()))
        GTEST_SKIP() << "not on this processor";
    for (const Variant variant : kVariants)
        for (std::uint32_t width = 1; width <= 40; ++width) {
            const auto source =
                PluginTest::ExactCopy(RandomBlocks((width + 3) / 4, Dxt::BlockBytes(variant), width));
            const std::size_t size = std::size_t{width} * 4 * 4;
            const auto out = std::make_unique<std::uint8_t[]>(size);
            EXPECT_EQ(Dxt::Decompress(source.get(), out.get(), width, 4, variant, GetParam()), size);
        }
}

INSTANTIATE_TEST_SUITE_P(Every, DxtVectorDecodeKernels,
                         testing::Values(InstructionSet::Sse41, InstructionSet::Avx2), PluginTest::NameOfSet);
INSTANTIATE_TEST_SUITE_P(Every, DxtDecodeKernels, testing::ValuesIn(Plugin::kEveryInstructionSet),
                         PluginTest::NameOfSet);
}  // namespace
