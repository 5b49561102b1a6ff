#include <array>
#include <cstdlib>
#include <gtest/gtest.h>
#include <vector>

#include "plugins/etc1/Etc1.h"
#include "tests/plugins/PluginInterfacePictures.h"

namespace {
using Plugin::Dithering;
using Plugin::Quality;
using PluginTest::Picture;
using Bytes = std::vector<std::uint8_t>;

constexpr std::array kRisingQuality{Quality::Fast, Quality::Normal, Quality::High, Quality::Best};

Bytes Encode(const Picture& picture, const Etc1::EncodeOptions& options)
{
    Bytes out(std::size_t{(picture.width + 3) / 4} * ((picture.height + 3) / 4) * 8, 0xCD);
    EXPECT_EQ(Etc1::Compress(picture.pixels.data(), out.data(), picture.width, picture.height, options),
              out.size());
    return out;
}

Bytes RoundTrip(const Picture& picture, const Etc1::EncodeOptions& options)
{
    const Bytes blocks = Encode(picture, options);
    Bytes out(picture.pixels.size());
    EXPECT_EQ(Etc1::Decompress(blocks.data(), out.data(), picture.width, picture.height), out.size());
    return out;
}

// Two colours that the individual mode holds exactly, 17 and 119 being levels 1 and 7 of four bits, each
// plus 2.
Picture TwoHalves(bool oneAboveTheOther)
{
    Picture picture{4, 4, {}};
    for (std::size_t i = 0; i < 16; ++i) {
        const bool second = (oneAboveTheOther ? i / 4 : i % 4) >= 2;
        const Bytes pixel = second ? Bytes{121, 19, 19, 255} : Bytes{19, 121, 121, 255};
        picture.pixels.insert(picture.pixels.end(), pixel.begin(), pixel.end());
    }
    return picture;
}

TEST(Etc1Encode, SplitsABlockWhereItsColoursChange)
{
    for (const Quality quality : kRisingQuality)
        for (const bool oneAboveTheOther : {false, true}) {
            const Picture picture = TwoHalves(oneAboveTheOther);
            EXPECT_EQ(RoundTrip(picture, {quality}), picture.pixels);
            EXPECT_EQ(Encode(picture, {quality})[3] & 1, oneAboveTheOther ? 1 : 0);
        }
}

TEST(Etc1Encode, UsesTheDifferentialModeForCloseColours)
{
    // Levels 16 and 18 of five bits are 132 and 148; each plus 2.
    Picture picture = PluginTest::Solid(4, 4, 134, 134, 134, 255);
    for (std::size_t i = 0; i < 16; ++i)
        if (i % 4 >= 2)
            picture.pixels[i * 4] = 150;
    for (const Quality quality : kRisingQuality) {
        EXPECT_EQ(RoundTrip(picture, {quality}), picture.pixels);
        EXPECT_EQ(Encode(picture, {quality})[3] & 2, 2);
    }
}

TEST(Etc1Encode, ShowsEveryGreyNearlyExactly)
{
    for (const Quality quality : kRisingQuality)
        for (int value = 0; value < 256; ++value) {
            const Bytes got = RoundTrip(PluginTest::Solid(4, 4, value, value, value, 255), {quality});
            for (std::size_t i = 0; i < 64; i += 4)
                ASSERT_LE(std::abs(got[i] - value), 2) << value;
        }
}

TEST(Etc1Encode, IgnoresTheAlphaOfTheSource)
{
    const Picture clear = PluginTest::Solid(4, 4, 10, 200, 30, 0);
    EXPECT_EQ(Encode(PluginTest::Solid(4, 4, 10, 200, 30, 255), {}), Encode(clear, {}));
    EXPECT_EQ(RoundTrip(clear, {})[3], 255);
}

TEST(Etc1Encode, RepeatsTheEdgeInABlockThatSticksOut)
{
    const Picture small = PluginTest::Bricks(3, 2);
    Picture whole{4, 4, {}};
    for (const std::size_t y : {0U, 1U, 1U, 1U})
        for (const std::size_t x : {0U, 1U, 2U, 2U})
            for (std::size_t channel = 0; channel < 4; ++channel)
                whole.pixels.push_back(small.pixels[(y * 3 + x) * 4 + channel]);
    EXPECT_EQ(Encode(small, {}), Encode(whole, {}));
}

TEST(Etc1Encode, StaysInsideItsBuffersAtEverySize)
{
    for (std::uint32_t width = 1; width <= 17; ++width)
        for (std::uint32_t height = 1; height <= 17; ++height)
            for (const Dithering dithering : Plugin::kEveryDithering) {
                const auto source = PluginTest::ExactCopy(PluginTest::Noise(width, height).pixels);
                const std::size_t size = std::size_t{(width + 3) / 4} * ((height + 3) / 4) * 8;
                const auto out = std::make_unique<std::uint8_t[]>(size);
                EXPECT_EQ(Etc1::Compress(source.get(), out.get(), width, height, {Quality::Fast, dithering}),
                          size);
            }
}

TEST(Etc1Encode, RefusesAPictureWithoutPixels)
{
    std::uint8_t byte = 7;
    EXPECT_EQ(Etc1::Compress(&byte, &byte, 0, 4, {}), 0U);
    EXPECT_EQ(Etc1::Compress(&byte, &byte, 4, 0, {Quality::Best, Dithering::ErrorDiffusion}), 0U);
    EXPECT_EQ(byte, 7);
}

TEST(Etc1Encode, TakesBuffersOfAnyAlignment)
{
    const Picture picture = PluginTest::Bricks(8, 8);
    Bytes shifted(1, 0);
    shifted.insert(shifted.end(), picture.pixels.begin(), picture.pixels.end());
    Bytes out(33);
    EXPECT_EQ(Etc1::Compress(shifted.data() + 1, out.data() + 1, 8, 8, {}), 32U);
    EXPECT_EQ(Bytes(out.begin() + 1, out.end()), Encode(picture, {}));
}

TEST(Etc1Encode, GivesTheSameBytesEveryTime)
{
    const Picture picture = PluginTest::Noise(16, 16);
    for (const Quality quality : kRisingQuality)
        EXPECT_EQ(Encode(picture, {quality, Dithering::ErrorDiffusion}),
                  Encode(picture, {quality, Dithering::ErrorDiffusion}));
}

struct Floor {
    Quality quality;
    double noise;
    double gradient;
    double bricks;
};

TEST(Etc1Encode, KeepsItsQualityAndNeverGetsWorseWithAHigherLevel)
{
    constexpr std::array<Floor, 4> kFloors{{{Quality::Fast, 13.25, 31.99, 34.12},
                                            {Quality::Normal, 13.31, 32.0, 34.38},
                                            {Quality::High, 13.32, 32.01, 34.39},
                                            {Quality::Best, 13.32, 32.01, 34.4}}};
    const std::array pictures{PluginTest::Noise(32, 32), PluginTest::Gradient(32, 32),
                              PluginTest::Bricks(32, 32)};
    std::array<double, 3> before{};
    for (const Floor& floor : kFloors) {
        const std::array floors{floor.noise, floor.gradient, floor.bricks};
        for (std::size_t i = 0; i < pictures.size(); ++i) {
            const double psnr =
                PluginTest::Psnr(pictures[i].pixels, RoundTrip(pictures[i], {floor.quality}), 3);
            EXPECT_GE(psnr, floors[i]);
            EXPECT_GE(psnr, before[i]);
            before[i] = psnr;
        }
    }
}

TEST(Etc1Encode, DithersOnlyWhenAsked)
{
    Picture ramp{64, 4, {}};
    for (std::size_t i = 0; i < 256; ++i) {
        const auto value = static_cast<std::uint8_t>(100 + i % 64 / 8);
        ramp.pixels.insert(ramp.pixels.end(), {value, 90, 60, 255});
    }
    EXPECT_NE(Encode(ramp, {Quality::Normal, Dithering::ErrorDiffusion}), Encode(ramp, {Quality::Normal}));
}
}  // namespace
