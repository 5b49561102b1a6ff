#include <array>
#include <cstdlib>
#include <gtest/gtest.h>
#include <vector>

#include "plugins/dxt/Dxt.h"
#include "tests/plugins/PluginInterfacePictures.h"

namespace {
using Dxt::Variant;
using Plugin::Dithering;
using Plugin::Quality;
using PluginTest::Picture;
using Bytes = std::vector<std::uint8_t>;

constexpr std::array kVariants{Variant::Dxt1, Variant::Dxt1Alpha, Variant::Dxt3, Variant::Dxt5};
constexpr std::array kRisingQuality{Quality::Fast, Quality::Normal, Quality::High, Quality::Best};

Bytes Encode(const Picture& picture, const Dxt::EncodeOptions& options)
{
    const std::size_t blocks = std::size_t{(picture.width + 3) / 4} * ((picture.height + 3) / 4);
    Bytes out(blocks * Dxt::BlockBytes(options.variant), 0xCD);
    EXPECT_EQ(Dxt::Compress(picture.pixels.data(), out.data(), picture.width, picture.height, options),
              out.size());
    return out;
}

Bytes RoundTrip(const Picture& picture, const Dxt::EncodeOptions& options)
{
    const Bytes blocks = Encode(picture, options);
    Bytes out(picture.pixels.size());
    EXPECT_EQ(Dxt::Decompress(blocks.data(), out.data(), picture.width, picture.height, options.variant),
              out.size());
    return out;
}

// The smallest distance to `value` of anything that two endpoint levels can show in one channel.
int SmallestDistance(int value, int bits, bool threeColors)
{
    const int top = (1 << bits) - 1;
    const auto wide = [bits](int level) { return level << (8 - bits) | level >> (2 * bits - 8); };
    int best = 255;
    for (int first = 0; first <= top; ++first)
        for (int second = 0; second <= top; ++second) {
            const int a = wide(first);
            const int b = wide(second);
            best = std::min(best, std::abs(value - (2 * a + b) / 3));
            if (threeColors)
                best = std::min(best, std::abs(value - (a + b) / 2));
        }
    return best;
}

TEST(DxtEncode, ReachesTheNearestPossibleValueOfASolidChannel)
{
    for (const Variant variant : {Variant::Dxt1, Variant::Dxt5})
        for (int value = 0; value < 256; ++value) {
            const Bytes red = RoundTrip(PluginTest::Solid(4, 4, value, 0, 0, 255), {variant, Quality::Fast});
            const Bytes green =
                RoundTrip(PluginTest::Solid(4, 4, 0, value, 0, 255), {variant, Quality::Fast});
            const Bytes blue = RoundTrip(PluginTest::Solid(4, 4, 0, 0, value, 255), {variant, Quality::Fast});
            const int five = SmallestDistance(value, 5, variant == Variant::Dxt1);
            const int six = SmallestDistance(value, 6, variant == Variant::Dxt1);
            for (std::size_t i = 0; i < 64; i += 4) {
                ASSERT_EQ(std::abs(red[i] - value), five) << value;
                ASSERT_EQ(std::abs(green[i + 1] - value), six) << value;
                ASSERT_EQ(std::abs(blue[i + 2] - value), five) << value;
                ASSERT_EQ(red[i + 1] + red[i + 2] + green[i] + green[i + 2] + blue[i] + blue[i + 1], 0)
                    << value;
            }
        }
}

TEST(DxtEncode, ShowsEveryGreyNearlyExactly)
{
    for (const Quality quality : kRisingQuality)
        for (int value = 0; value < 256; ++value) {
            const Picture picture = PluginTest::Solid(4, 4, value, value, value, 255);
            const Bytes got = RoundTrip(picture, {Variant::Dxt1, quality});
            for (std::size_t i = 0; i < 64; ++i)
                ASSERT_LE(std::abs(got[i] - picture.pixels[i]), 1) << value;
        }
}

TEST(DxtEncode, KeepsTwoColoursThatTheFormatHolds)
{
    Picture picture = PluginTest::Solid(4, 4, 255, 0, 0, 255);
    for (std::size_t i = 0; i < 64; i += 8) {
        picture.pixels[i] = 0;
        picture.pixels[i + 2] = 255;
    }
    for (const Variant variant : kVariants)
        for (const Quality quality : {Quality::Normal, Quality::High, Quality::Best})
            EXPECT_EQ(RoundTrip(picture, {variant, quality}), picture.pixels);
}

TEST(DxtEncode, DrawsTwoColoursInByNoMoreThanAnEighthAtTheQuickestLevel)
{
    Picture picture = PluginTest::Solid(4, 4, 255, 0, 0, 255);
    for (std::size_t i = 0; i < 64; i += 8) {
        picture.pixels[i] = 0;
        picture.pixels[i + 2] = 255;
    }
    for (const Variant variant : {Variant::Dxt1, Variant::Dxt5}) {
        const Bytes got = RoundTrip(picture, {variant, Quality::Fast});
        for (std::size_t i = 0; i < 64; ++i)
            EXPECT_LE(std::abs(got[i] - picture.pixels[i]), 33) << "byte " << i;
    }
}

TEST(DxtEncode, IgnoresTheAlphaOfTheSourceInPlainDxt1)
{
    const Picture opaque = PluginTest::Solid(4, 4, 10, 200, 30, 255);
    const Picture clear = PluginTest::Solid(4, 4, 10, 200, 30, 0);
    EXPECT_EQ(Encode(opaque, {}), Encode(clear, {}));
    EXPECT_EQ(RoundTrip(clear, {})[3], 255);
}

TEST(DxtEncode, CutsOneBitAlphaInTheMiddle)
{
    for (const Quality quality : kRisingQuality) {
        Picture picture = PluginTest::Bricks(4, 4);
        for (std::size_t i = 0; i < 16; ++i)
            picture.pixels[i * 4 + 3] = static_cast<std::uint8_t>(120 + i);
        const Bytes got = RoundTrip(picture, {Variant::Dxt1Alpha, quality});
        for (std::size_t i = 0; i < 16; ++i)
            EXPECT_EQ(got[i * 4 + 3], i < 8 ? 0 : 255) << "alpha " << 120 + i;
    }
}

TEST(DxtEncode, MakesAFullyTransparentBlockTransparentEverywhere)
{
    const Bytes got =
        RoundTrip(PluginTest::Solid(4, 4, 90, 80, 70, 0), {Variant::Dxt1Alpha, Quality::Normal});
    EXPECT_EQ(got, Bytes(64, 0));
}

TEST(DxtEncode, RoundsDxt3AlphaToTheNearestOfSixteen)
{
    for (int alpha = 0; alpha < 256; ++alpha) {
        const Bytes got =
            RoundTrip(PluginTest::Solid(1, 1, 0, 0, 0, alpha), {Variant::Dxt3, Quality::Normal});
        EXPECT_EQ(got[3] % 17, 0);
        EXPECT_LE(std::abs(got[3] - alpha), 8);
    }
}

TEST(DxtEncode, KeepsASingleDxt5AlphaExactly)
{
    for (const Quality quality : kRisingQuality)
        for (int alpha = 0; alpha < 256; ++alpha) {
            const Bytes got = RoundTrip(PluginTest::Solid(4, 4, 0, 0, 0, alpha), {Variant::Dxt5, quality});
            for (std::size_t i = 3; i < 64; i += 4)
                ASSERT_EQ(got[i], alpha);
        }
}

TEST(DxtEncode, KeepsNoneAndFullAlphaBesideTwoOthersInDxt5)
{
    constexpr std::array kAlphas{0, 255, 100, 160};
    for (const Quality quality : {Quality::Normal, Quality::High, Quality::Best}) {
        Picture picture = PluginTest::Solid(4, 4, 0, 0, 0, 0);
        for (std::size_t i = 0; i < 16; ++i)
            picture.pixels[i * 4 + 3] = static_cast<std::uint8_t>(kAlphas[i % 4]);
        const Bytes got = RoundTrip(picture, {Variant::Dxt5, quality});
        for (std::size_t i = 0; i < 16; ++i)
            EXPECT_EQ(got[i * 4 + 3], kAlphas[i % 4]);
    }
}

TEST(DxtEncode, RepeatsTheEdgeInABlockThatSticksOut)
{
    Picture small = PluginTest::Bricks(3, 2);
    Picture whole{4, 4, {}};
    for (const std::size_t y : {0U, 1U, 1U, 1U})
        for (const std::size_t x : {0U, 1U, 2U, 2U})
            for (std::size_t channel = 0; channel < 4; ++channel)
                whole.pixels.push_back(small.pixels[(y * 3 + x) * 4 + channel]);
    for (const Variant variant : kVariants)
        EXPECT_EQ(Encode(small, {variant, Quality::Normal}), Encode(whole, {variant, Quality::Normal}));
}

TEST(DxtEncode, StaysInsideItsBuffersAtEverySize)
{
    for (const Variant variant : kVariants)
        for (std::uint32_t width = 1; width <= 17; ++width)
            for (std::uint32_t height = 1; height <= 17; ++height)
                for (const Dithering dithering : Plugin::kEveryDithering) {
                    const auto source = PluginTest::ExactCopy(PluginTest::Noise(width, height).pixels);
                    const std::size_t size =
                        std::size_t{(width + 3) / 4} * ((height + 3) / 4) * Dxt::BlockBytes(variant);
                    const auto out = std::make_unique<std::uint8_t[]>(size);
                    EXPECT_EQ(Dxt::Compress(source.get(), out.get(), width, height,
                                            {variant, Quality::Fast, dithering}),
                              size);
                }
}

TEST(DxtEncode, RefusesAPictureWithoutPixels)
{
    std::uint8_t byte = 7;
    EXPECT_EQ(Dxt::Compress(&byte, &byte, 0, 4, {}), 0U);
    EXPECT_EQ(Dxt::Compress(&byte, &byte, 4, 0, {Variant::Dxt5, Quality::Best, Dithering::ErrorDiffusion}),
              0U);
    EXPECT_EQ(byte, 7);
}

TEST(DxtEncode, TakesBuffersOfAnyAlignment)
{
    const Picture picture = PluginTest::Bricks(8, 8);
    Bytes shifted(1, 0);
    shifted.insert(shifted.end(), picture.pixels.begin(), picture.pixels.end());
    Bytes out(33);
    EXPECT_EQ(Dxt::Compress(shifted.data() + 1, out.data() + 1, 8, 8, {}), 32U);
    EXPECT_EQ(Bytes(out.begin() + 1, out.end()), Encode(picture, {}));
}

TEST(DxtEncode, GivesTheSameBytesEveryTime)
{
    const Picture picture = PluginTest::Noise(16, 16);
    for (const Variant variant : kVariants)
        for (const Quality quality : kRisingQuality)
            EXPECT_EQ(Encode(picture, {variant, quality, Dithering::ErrorDiffusion}),
                      Encode(picture, {variant, quality, Dithering::ErrorDiffusion}));
}

struct Floor {
    Quality quality;
    double noise;
    double gradient;
    double bricks;
};

void ExpectRisingQuality(Variant variant, std::size_t channels, const std::array<Floor, 4>& floors)
{
    const std::array pictures{PluginTest::Noise(32, 32), PluginTest::Gradient(32, 32),
                              PluginTest::Bricks(32, 32)};
    std::array<double, 3> before{};
    for (const Floor& floor : floors) {
        const std::array wanted{floor.noise, floor.gradient, floor.bricks};
        for (std::size_t i = 0; i < pictures.size(); ++i) {
            const Bytes got = RoundTrip(pictures[i], {variant, floor.quality});
            const double psnr = PluginTest::Psnr(pictures[i].pixels, got, channels);
            EXPECT_GE(psnr, wanted[i]) << "picture " << i;
            EXPECT_GE(psnr, before[i]) << "picture " << i;
            before[i] = psnr;
        }
    }
}

TEST(DxtEncode, KeepsItsQualityInDxt1AndNeverGetsWorseWithAHigherLevel)
{
    ExpectRisingQuality(Variant::Dxt1, 3,
                        {{{Quality::Fast, 12.3, 29.7, 30.4},
                          {Quality::Normal, 13.8, 33.0, 33.5},
                          {Quality::High, 13.85, 33.15, 33.75},
                          {Quality::Best, 14.0, 33.2, 33.9}}});
}

TEST(DxtEncode, KeepsItsQualityInDxt5AndNeverGetsWorseWithAHigherLevel)
{
    ExpectRisingQuality(Variant::Dxt5, 4,
                        {{{Quality::Fast, 13.5, 30.9, 31.5},
                          {Quality::Normal, 15.0, 34.2, 34.7},
                          {Quality::High, 15.0, 34.3, 35.0},
                          {Quality::Best, 15.0, 34.35, 35.1}}});
}

TEST(DxtEncode, DithersOnlyWhenAsked)
{
    // A ramp so slow that 5-6-5 bits show it in few steps: with dithering single pixels leave their step.
    Picture ramp{64, 4, {}};
    for (std::size_t i = 0; i < 256; ++i) {
        const auto value = static_cast<std::uint8_t>(100 + i % 64 / 8);
        ramp.pixels.insert(ramp.pixels.end(), {value, value, value, 255});
    }
    EXPECT_NE(Encode(ramp, {Variant::Dxt1, Quality::Normal, Dithering::ErrorDiffusion}),
              Encode(ramp, {Variant::Dxt1, Quality::Normal}));
}

TEST(DxtEncode, DithersOneBitAlphaToItsMean)
{
    const Bytes got = RoundTrip(PluginTest::Solid(64, 64, 0, 0, 0, 64),
                                {Variant::Dxt1Alpha, Quality::Fast, Dithering::ErrorDiffusion});
    double sum = 0;
    for (std::size_t i = 3; i < got.size(); i += 4)
        sum += got[i];
    EXPECT_NEAR(sum / 4096, 64, 3);
}
}  // namespace
