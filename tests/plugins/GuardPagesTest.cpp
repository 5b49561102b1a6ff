// Buffers of exactly the promised sizes between inaccessible pages: a codec that reads or writes one byte too
// far ends the program. Vector instructions are caught as well, which a sanitizer does not see.

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

#include "tests/plugins/EveryCodec.h"
#include "tests/plugins/PluginInterfacePictures.h"
#include "tests/support/GuardedBytes.h"

namespace {
using PluginTest::Coder;
using Bytes = std::vector<std::uint8_t>;

struct Size {
    std::uint32_t width;
    std::uint32_t height;
};
constexpr Size kSizes[] = {{1, 1}, {3, 5}, {4, 4}, {7, 9}, {16, 16}, {33, 17}, {64, 64}};
constexpr Size kPowersOfTwo[] = {{1, 1}, {2, 8}, {4, 4}, {16, 8}, {8, 32}, {16, 16}, {64, 64}};
constexpr std::size_t kMostBytes = 64 * 64 * 4;

std::vector<Size> SizesOf(const Coder& coder)
{
    std::vector<Size> sizes(std::begin(kSizes), std::end(kSizes));
    if (coder.powersOfTwo)
        sizes.assign(std::begin(kPowersOfTwo), std::end(kPowersOfTwo));
    // The levels that search long need no more than a few blocks to show where they read and write.
    if (coder.quality == Plugin::Quality::Normal)
        sizes.resize(5);
    else if (coder.quality != Plugin::Quality::Fast)
        sizes.resize(3);
    return sizes;
}

Bytes NoiseBytes(std::size_t count)
{
    std::uint32_t state = 4711;
    Bytes bytes(count);
    for (std::uint8_t& byte : bytes)
        byte = static_cast<std::uint8_t>(PluginTest::NextNumber(state));
    return bytes;
}

class GuardPages : public testing::Test {
protected:
    // What the coder makes of a source, both at the guard of that side.
    Bytes Code(const Coder& coder, Size size, const Bytes& source, std::size_t outBytes, GuardSide side)
    {
        std::uint8_t* const in = m_oSource.At(side, source.size());
        std::uint8_t* const out = m_oDestination.At(side, outBytes);
        std::copy(source.begin(), source.end(), in);
        EXPECT_EQ(coder.code(in, out, size.width, size.height), outBytes) << coder.name;
        EXPECT_TRUE(std::equal(source.begin(), source.end(), in)) << coder.name << " changed its source";
        return {out, out + outBytes};
    }

    CGuardedBytes m_oSource{kMostBytes};
    CGuardedBytes m_oDestination{kMostBytes};
};

TEST_F(GuardPages, AreNeverReachedByAnEncoder)
{
    for (const Coder& coder : PluginTest::EveryEncoder())
        for (const Size size : SizesOf(coder)) {
            const Bytes source = NoiseBytes(std::size_t{size.width} * size.height * 4);
            const std::size_t bytes = coder.levelBytes(size.width, size.height);
            EXPECT_EQ(Code(coder, size, source, bytes, GuardSide::Before),
                      Code(coder, size, source, bytes, GuardSide::Behind))
                << coder.name;
        }
}

TEST_F(GuardPages, AreNeverReachedByADecoderOfRandomBlocks)
{
    for (const Coder& coder : PluginTest::EveryDecoder())
        for (const Size size : SizesOf(coder)) {
            const Bytes source = NoiseBytes(coder.levelBytes(size.width, size.height));
            const std::size_t bytes = std::size_t{size.width} * size.height * 4;
            EXPECT_EQ(Code(coder, size, source, bytes, GuardSide::Before),
                      Code(coder, size, source, bytes, GuardSide::Behind))
                << coder.name;
        }
}

TEST_F(GuardPages, StayOutOfReachWithBuffersOfAnyAlignment)
{
    std::vector<Coder> coders;
    for (const Plugin::InstructionSet set : PluginTest::SupportedSets())
        PluginTest::AddEncoders(Plugin::Quality::Fast, set, Plugin::Dithering::Ordered, coders);
    for (const Coder& coder : coders) {
        const Size size = coder.powersOfTwo ? Size{16, 8} : Size{15, 6};
        const Bytes source = NoiseBytes(std::size_t{size.width} * size.height * 4);
        const std::size_t bytes = coder.levelBytes(size.width, size.height);
        const Bytes wanted = Code(coder, size, source, bytes, GuardSide::Behind);
        for (std::size_t offset = 0; offset < 8; ++offset) {
            std::uint8_t* const in = m_oSource.At(GuardSide::Behind, source.size() + offset);
            std::uint8_t* const out = m_oDestination.At(GuardSide::Before, 0) + offset;
            std::copy(source.begin(), source.end(), in);
            ASSERT_EQ(coder.code(in, out, size.width, size.height), bytes) << coder.name;
            ASSERT_TRUE(std::equal(wanted.begin(), wanted.end(), out)) << coder.name << " offset " << offset;
        }
    }
}

TEST_F(GuardPages, StayOutOfReachOfDecodersWithBuffersOfAnyAlignment)
{
    for (const Coder& coder : PluginTest::EveryDecoder()) {
        const Size size = coder.powersOfTwo ? Size{16, 8} : Size{15, 6};
        const Bytes source = NoiseBytes(coder.levelBytes(size.width, size.height));
        const std::size_t bytes = std::size_t{size.width} * size.height * 4;
        const Bytes wanted = Code(coder, size, source, bytes, GuardSide::Behind);
        for (std::size_t offset = 0; offset < 8; ++offset) {
            std::uint8_t* const in = m_oSource.At(GuardSide::Behind, source.size() + offset);
            std::uint8_t* const out = m_oDestination.At(GuardSide::Before, 0) + offset;
            std::copy(source.begin(), source.end(), in);
            ASSERT_EQ(coder.code(in, out, size.width, size.height), bytes) << coder.name;
            ASSERT_TRUE(std::equal(wanted.begin(), wanted.end(), out)) << coder.name << " offset " << offset;
        }
    }
}

TEST_F(GuardPages, AreNotReachedForSizesThatAreRefused)
{
    // 0 pixels, pixels that 32 bits cannot count, and bytes of pixels that they cannot.
    constexpr Size kRefused[] = {
        {0, 0},          {0, 4}, {4, 0}, {0x10000, 0x10000}, {0, ~0U}, {~0U, ~0U}, {0x20000, 0x8000},
        {0x80000000U, 2}};
    std::vector<Coder> coders = PluginTest::EveryDecoder();
    for (const Plugin::Dithering dithering : Plugin::kEveryDithering)
        PluginTest::AddEncoders(Plugin::Quality::Normal, Plugin::PreferredInstructionSet(), dithering,
                                coders);
    const CGuardedBytes nothing(0);
    for (const Coder& coder : coders)
        for (const Size size : kRefused)
            EXPECT_EQ(coder.code(nothing.At(GuardSide::Before, 0), nothing.At(GuardSide::Before, 0),
                                 size.width, size.height),
                      0U)
                << coder.name << ' ' << size.width << " x " << size.height;
}

TEST(GuardedBytes, LieDirectlyAtBothGuards)
{
    const CGuardedBytes bytes(5000);
    std::uint8_t* const first = bytes.At(GuardSide::Before, 5000);
    std::uint8_t* const last = bytes.At(GuardSide::Behind, 5000) + 4999;
    *first = 1;
    *last = 2;
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(first) % 4096, 0U);
    EXPECT_EQ((reinterpret_cast<std::uintptr_t>(last) + 1) % 4096, 0U);
}
}  // namespace
