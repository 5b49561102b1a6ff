#include <array>
#include <cstdlib>
#include <gtest/gtest.h>
#include <vector>

#include "plugins/dxt/Dxt.h"
#include "tests/plugins/EveryInstructionSet.h"
#include "tests/plugins/PluginInterfacePictures.h"

// Blocks of one colour come as near as the format can, at every level and with every instruction set.

namespace {
using Dxt::Variant;
using Plugin::InstructionSet;
using Plugin::Quality;
using PluginTest::Picture;
using Bytes = std::vector<std::uint8_t>;
using Color = std::array<std::uint8_t, 4>;

// The smallest distance to each value that two levels can show, by trying all pairs.
using Distances = std::array<int, 256>;

struct Reach {
    Distances five{};
    Distances six{};

    int ErrorOf(const Color& color) const
    {
        const int red = five[color[0]];
        const int green = six[color[1]];
        const int blue = five[color[2]];
        return red * red + green * green + blue * blue;
    }
};

Distances DistancesOf(int bits, bool isThree)
{
    Distances distances;
    distances.fill(255);
    for (int first = 0; first < 1 << bits; ++first)
        for (int second = 0; second < 1 << bits; ++second) {
            const int a = first << (8 - bits) | first >> (2 * bits - 8);
            const int b = second << (8 - bits) | second >> (2 * bits - 8);
            const int shown = isThree ? (a + b) / 2 : (2 * a + b) / 3;
            for (int value = 0; value < 256; ++value) {
                int& best = distances[static_cast<std::size_t>(value)];
                best = std::min(best, std::abs(value - shown));
            }
        }
    return distances;
}

Reach ReachOf(bool isThree)
{
    return {DistancesOf(5, isThree), DistancesOf(6, isThree)};
}

// Every value of every channel beside fixed others, then colours from all over the cube. Alpha passes through
// all its values too.
std::vector<Color> ManyColors()
{
    std::vector<Color> colors;
    std::uint32_t state = 31;
    for (std::size_t channel = 0; channel < 3; ++channel)
        for (int value = 0; value < 256; ++value) {
            Color color{17, 93, 201, static_cast<std::uint8_t>(value)};
            color[channel] = static_cast<std::uint8_t>(value);
            colors.push_back(color);
        }
    for (int i = 0; i < 512; ++i) {
        Color color{};
        for (std::uint8_t& value : color)
            value = static_cast<std::uint8_t>(PluginTest::NextNumber(state));
        colors.push_back(color);
    }
    return colors;
}

constexpr std::size_t kBlocksAcross = 64;

Picture SolidBlocks(const std::vector<Color>& colors)
{
    const std::size_t rows = colors.size() / kBlocksAcross * 4;
    const std::size_t width = kBlocksAcross * 4;
    Picture picture{static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(rows), {}};
    for (std::size_t y = 0; y < rows; ++y)
        for (std::size_t x = 0; x < width; ++x) {
            const Color& color = colors[y / 4 * kBlocksAcross + x / 4];
            picture.pixels.insert(picture.pixels.end(), color.begin(), color.end());
        }
    return picture;
}

Bytes RoundTrip(const Picture& picture, const Dxt::EncodeOptions& options)
{
    Bytes blocks(picture.pixels.size() / 64 * Dxt::BlockBytes(options.variant));
    Bytes out(picture.pixels.size());
    EXPECT_EQ(Dxt::Compress(picture.pixels.data(), blocks.data(), picture.width, picture.height, options),
              blocks.size());
    EXPECT_EQ(Dxt::Decompress(blocks.data(), out.data(), picture.width, picture.height, options.variant),
              out.size());
    return out;
}

int ErrorAt(const Picture& picture, const Bytes& got, std::size_t pixel)
{
    int error = 0;
    for (std::size_t i = pixel * 4; i < pixel * 4 + 3; ++i) {
        const int difference = picture.pixels[i] - got[i];
        error += difference * difference;
    }
    return error;
}

Color ColorAt(const Picture& picture, std::size_t pixel)
{
    Color color{};
    for (std::size_t channel = 0; channel < 4; ++channel)
        color[channel] = picture.pixels[pixel * 4 + channel];
    return color;
}

class DxtSolid : public testing::TestWithParam<InstructionSet> {};

Dxt::EncodeOptions Options(Variant variant, Quality quality, InstructionSet set)
{
    Dxt::EncodeOptions options{variant, quality};
    options.instructionSet = set;
    return options;
}

TEST_P(DxtSolid, ShowsEveryColourAsNearAsFourOrThreeColoursCan)
{
    if (!Plugin::IsSupported(GetParam()))
        GTEST_SKIP() << "not on this processor";
    const Reach four = ReachOf(false);
    const Reach three = ReachOf(true);
    const Picture picture = SolidBlocks(ManyColors());
    const Bytes got = RoundTrip(picture, Options(Variant::Dxt1, Quality::Fast, GetParam()));
    for (std::size_t i = 0; i < got.size() / 4; ++i) {
        const Color color = ColorAt(picture, i);
        ASSERT_EQ(ErrorAt(picture, got, i), std::min(four.ErrorOf(color), three.ErrorOf(color)))
            << "pixel " << i;
    }
}

TEST_P(DxtSolid, ShowsEveryColourAsNearAsFourColoursCanAndEveryAlphaExactly)
{
    if (!Plugin::IsSupported(GetParam()))
        GTEST_SKIP() << "not on this processor";
    const Reach four = ReachOf(false);
    const Picture picture = SolidBlocks(ManyColors());
    for (const Variant variant : {Variant::Dxt3, Variant::Dxt5}) {
        const Bytes got = RoundTrip(picture, Options(variant, Quality::Fast, GetParam()));
        for (std::size_t i = 0; i < got.size() / 4; ++i) {
            const Color color = ColorAt(picture, i);
            ASSERT_EQ(ErrorAt(picture, got, i), four.ErrorOf(color)) << "pixel " << i;
            // Four bits: the nearest multiple of 17.
            ASSERT_EQ(got[i * 4 + 3], variant == Variant::Dxt5 ? color[3] : (color[3] + 8) / 17 * 17);
        }
    }
}

TEST_P(DxtSolid, ShowsAColourBesideHolesAsNearAsThreeColoursCan)
{
    if (!Plugin::IsSupported(GetParam()))
        GTEST_SKIP() << "not on this processor";
    const Reach three = ReachOf(true);
    Picture picture = SolidBlocks(ManyColors());
    for (std::size_t i = 0; i < picture.pixels.size() / 4; ++i)
        picture.pixels[i * 4 + 3] = i % 3 == 0 ? 127 : 128;
    const Bytes got = RoundTrip(picture, Options(Variant::Dxt1Alpha, Quality::Fast, GetParam()));
    for (std::size_t i = 0; i < got.size() / 4; ++i)
        if (i % 3 == 0) {
            ASSERT_EQ(got[i * 4 + 3], 0);
        } else {
            ASSERT_EQ(ErrorAt(picture, got, i), three.ErrorOf(ColorAt(picture, i))) << "pixel " << i;
            ASSERT_EQ(got[i * 4 + 3], 255);
        }
}

TEST_P(DxtSolid, IsNoWorseAtTheOtherLevels)
{
    if (!Plugin::IsSupported(GetParam()))
        GTEST_SKIP() << "not on this processor";
    std::vector<Color> colors = ManyColors();
    colors.erase(colors.begin(), colors.end() - 64);
    const Picture picture = SolidBlocks(colors);
    for (const Variant variant : {Variant::Dxt1, Variant::Dxt1Alpha, Variant::Dxt3, Variant::Dxt5}) {
        const Bytes fast = RoundTrip(picture, Options(variant, Quality::Fast, GetParam()));
        for (const Quality quality : {Quality::Normal, Quality::High, Quality::Best})
            EXPECT_EQ(RoundTrip(picture, Options(variant, quality, GetParam())), fast);
    }
}

INSTANTIATE_TEST_SUITE_P(Every, DxtSolid, testing::ValuesIn(Plugin::kEveryInstructionSet),
                         PluginTest::NameOfSet);
}  // namespace
