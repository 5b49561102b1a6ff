#include <array>
#include <functional>
#include <gtest/gtest.h>
#include <vector>

#include "plugins/dxt/Dxt.h"
#include "tests/plugins/PluginInterfacePictures.h"

// Colours of pixels without alpha: what they may cost the others, in DXT3 and DXT5.

namespace {
using Dxt::Variant;
using Plugin::Quality;
using PluginTest::Picture;
using Bytes = std::vector<std::uint8_t>;

constexpr std::array kWithAlpha{Variant::Dxt3, Variant::Dxt5};
constexpr std::array kThatLook{Quality::Normal, Quality::High, Quality::Best};

Bytes RoundTrip(const Picture& picture, Variant variant, Quality quality)
{
    Bytes blocks(picture.pixels.size() / 64 * Dxt::BlockBytes(variant));
    Bytes out(picture.pixels.size());
    EXPECT_EQ(Dxt::Compress(picture.pixels.data(), blocks.data(), picture.width, picture.height,
                            {variant, quality}),
              blocks.size());
    EXPECT_EQ(Dxt::Decompress(blocks.data(), out.data(), picture.width, picture.height, variant), out.size());
    return out;
}

bool IsSeen(const Picture& picture, std::size_t pixel)
{
    return picture.pixels[pixel * 4 + 3] != 0;
}

// With a hole in most blocks of a picture of 64 x 64; `color(channel)` paints what lies in the holes.
Picture WithHoles(Picture picture, const std::function<int(std::size_t channel)>& color)
{
    for (std::size_t i = 0; i < std::size_t{64} * 64; ++i) {
        const std::size_t x = i % 64;
        const std::size_t y = i / 64;
        const bool isHole = (x * 5 + y * 3) % 64 < 20;
        picture.pixels[i * 4 + 3] = isHole ? 0 : 255;
        for (std::size_t channel = 0; isHole && channel < 3; ++channel)
            picture.pixels[i * 4 + channel] = static_cast<std::uint8_t>(color(channel));
    }
    return picture;
}

Picture WallWithNoise(std::uint32_t seed)
{
    std::uint32_t state = seed;
    return WithHoles(PluginTest::Bricks(64, 64),
                     [&](std::size_t) { return static_cast<int>(PluginTest::NextNumber(state) & 0xFF); });
}

// Squared error of the colours of the pixels for which IsSeen() is `seen`, for each of them.
double ErrorOf(const Picture& picture, const Bytes& got, bool seen)
{
    double error = 0;
    double count = 0;
    for (std::size_t i = 0; i < got.size() / 4; ++i) {
        if (IsSeen(picture, i) != seen)
            continue;
        ++count;
        for (std::size_t channel = 0; channel < 3; ++channel) {
            const double difference = double{1} * picture.pixels[i * 4 + channel] - got[i * 4 + channel];
            error += difference * difference;
        }
    }
    return error / count;
}

TEST(DxtUnseen, SpendsNothingOnNoise)
{
    // One visible colour beside unseen ones of every kind: it must come out as well as if it stood alone.
    Picture picture = PluginTest::Noise(4, 4);
    for (std::size_t i = 0; i < 16; ++i) {
        const bool isSeen = i % 3 == 0;
        picture.pixels[i * 4 + 3] = isSeen ? 255 : 0;
        if (isSeen) {
            picture.pixels[i * 4] = 90;
            picture.pixels[i * 4 + 1] = 150;
            picture.pixels[i * 4 + 2] = 33;
        }
    }
    for (const Variant variant : kWithAlpha)
        for (const Quality quality : kThatLook) {
            const Bytes got = RoundTrip(picture, variant, quality);
            for (std::size_t i = 0; i < 16; i += 3)
                EXPECT_EQ((std::array{got[i * 4], got[i * 4 + 1], got[i * 4 + 2], got[i * 4 + 3]}),
                          (std::array<std::uint8_t, 4>{90, 150, 33, 255}))
                    << "quality " << static_cast<int>(quality);
        }
}

TEST(DxtUnseen, ShowsTheVisibleAlikeBesideEveryColourButBlack)
{
    const Picture light = WithHoles(PluginTest::Bricks(64, 64), [](std::size_t) { return 255; });
    const Picture green =
        WithHoles(PluginTest::Bricks(64, 64), [](std::size_t channel) { return channel == 1 ? 200 : 0; });
    for (const Variant variant : kWithAlpha)
        for (const Quality quality : kThatLook) {
            const double besideLight = ErrorOf(light, RoundTrip(light, variant, quality), true);
            EXPECT_EQ(ErrorOf(green, RoundTrip(green, variant, quality), true), besideLight);
            const Picture noise = WallWithNoise(77);
            EXPECT_EQ(ErrorOf(noise, RoundTrip(noise, variant, quality), true), besideLight)
                << "quality " << static_cast<int>(quality);
        }
}

TEST(DxtUnseen, ShowsTheVisibleNoWorseThanBesideTheirOwnColours)
{
    // The holes have the colours of the wall, which is the most that unseen colours could help by counting.
    const Picture noise = WallWithNoise(5);
    Picture wall = PluginTest::Bricks(64, 64);
    for (std::size_t i = 3; i < wall.pixels.size(); i += 4)
        wall.pixels[i] = noise.pixels[i];
    for (const Quality quality : kThatLook)
        EXPECT_EQ(ErrorOf(noise, RoundTrip(noise, Variant::Dxt5, quality), true),
                  ErrorOf(wall, RoundTrip(wall, Variant::Dxt5, quality), true))
            << "quality " << static_cast<int>(quality);
}

TEST(DxtUnseen, KeepsBlackThatMultipliedColoursHave)
{
    Picture grain = PluginTest::Solid(64, 64, 140, 130, 110, 255);
    std::uint32_t state = 3;
    for (std::size_t i = 0; i < grain.pixels.size(); i += 4) {
        const std::uint32_t shade = PluginTest::NextNumber(state) % 24;
        for (std::size_t channel = 0; channel < 3; ++channel)
            grain.pixels[i + channel] = static_cast<std::uint8_t>(grain.pixels[i + channel] + shade);
    }
    const Picture picture = WithHoles(grain, [](std::size_t) { return 0; });
    for (const Quality quality : kThatLook) {
        const Bytes got = RoundTrip(picture, Variant::Dxt5, quality);
        // Black beside such walls would be off by more than 40000.
        EXPECT_LT(ErrorOf(picture, got, false), 100) << "quality " << static_cast<int>(quality);
        EXPECT_LT(ErrorOf(picture, got, true), 200) << "quality " << static_cast<int>(quality);
    }
}

TEST(DxtUnseen, EncodesWhollyUnseenBlocksAsUsual)
{
    Picture clear = PluginTest::Bricks(32, 32);
    Picture opaque = clear;
    for (std::size_t i = 3; i < clear.pixels.size(); i += 4) {
        clear.pixels[i] = 0;
        opaque.pixels[i] = 255;
    }
    for (const Quality quality : kThatLook) {
        Bytes got = RoundTrip(clear, Variant::Dxt5, quality);
        for (std::size_t i = 3; i < got.size(); i += 4) {
            ASSERT_EQ(got[i], 0);
            got[i] = 255;
        }
        EXPECT_EQ(got, RoundTrip(opaque, Variant::Dxt5, quality));
    }
}
}  // namespace
