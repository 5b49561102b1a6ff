#include "plugins/pvrtc/PvrtcEncode.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "tests/plugins/PvrtcPictures.h"

namespace {
using namespace PvrtcPictures;

std::uint64_t Fingerprint(const std::vector<std::uint8_t>& bytes)
{
    std::uint64_t hash = 14695981039346656037u;
    for (const std::uint8_t byte : bytes)
        hash = (hash ^ byte) * 1099511628211u;
    return hash;
}

}  // namespace

TEST(PvrtcEncode, ReturnsTheSizeOfSquareLevels)
{
    struct Case {
        std::uint32_t side;
        std::uint32_t bytesWithFourBits;
        std::uint32_t bytesWithTwoBits;
    };
    for (const Case& expected : {Case{1, 32, 32}, Case{2, 32, 32}, Case{4, 32, 32}, Case{8, 32, 32},
                                 Case{16, 128, 64}, Case{32, 512, 256}, Case{64, 2048, 1024}}) {
        const Picture picture = Bricks(expected.side);
        EXPECT_EQ(Encoded(picture, Options(4)).size(), expected.bytesWithFourBits);
        EXPECT_EQ(Encoded(picture, Options(2)).size(), expected.bytesWithTwoBits);
    }
}

TEST(PvrtcEncode, ReadsAndWritesExactlyTheLevelForEverySizeUpToSixtyFour)
{
    for (const std::uint32_t bitsPerPixel : {2u, 4u}) {
        for (std::uint32_t width = 1; width <= 64; width *= 2) {
            for (std::uint32_t height = 1; height <= 64; height *= 2) {
                const std::size_t pixelBytes = std::size_t{width} * height * 4;
                const auto pixels = std::make_unique<std::uint8_t[]>(pixelBytes);
                for (std::size_t i = 0; i < pixelBytes; ++i)
                    pixels[i] = static_cast<std::uint8_t>(i * i * 7 + i / 3);
                const std::size_t levelBytes = PvrtcLevelBytes(width, height, bitsPerPixel);
                const auto level = std::make_unique<std::uint8_t[]>(levelBytes);
                EXPECT_EQ(PvrtcEncode(pixels.get(), level.get(), width, height,
                                      Options(bitsPerPixel, true, Quality::Fast)),
                          levelBytes)
                    << width << " x " << height;
            }
        }
    }
}

TEST(PvrtcEncode, RefusesSizesThatTheFormatCannotHoldAndWritesNothing)
{
    const std::vector<std::uint8_t> pixels(100 * 100 * 4, 0x55);
    for (const std::array<std::uint32_t, 3>& refused : {std::array<std::uint32_t, 3>{0, 8, 4},
                                                        {8, 0, 4},
                                                        {100, 100, 4},
                                                        {24, 8, 2},
                                                        {65536, 1, 4},
                                                        {8, 8, 3}}) {
        std::vector<std::uint8_t> level(4096, 0xAA);
        EXPECT_EQ(PvrtcEncode(pixels.data(), level.data(), refused[0], refused[1], Options(refused[2])), 0u);
        EXPECT_EQ(level, std::vector<std::uint8_t>(4096, 0xAA));
    }
}

TEST(PvrtcEncode, ReachesOpaqueSolidColorsWithFourBits)
{
    for (const Rgba& color :
         {Rgba{0, 0, 0, 255}, Rgba{255, 255, 255, 255}, Rgba{128, 128, 128, 255}, Rgba{1, 2, 3, 255},
          Rgba{254, 253, 252, 255}, Rgba{200, 100, 50, 255}, Rgba{77, 33, 199, 255}}) {
        for (const std::uint32_t side : {1u, 2u, 4u, 8u, 32u}) {
            const Picture picture = Solid(side, color);
            EXPECT_LE(LargestError(picture, RoundTrip(picture, Options(4))), 1) << side;
        }
    }
}

TEST(PvrtcEncode, ReachesTranslucentSolidColors)
{
    for (const Rgba& color : {Rgba{10, 20, 30, 128}, Rgba{200, 100, 50, 254}, Rgba{255, 255, 255, 1},
                              Rgba{90, 90, 90, 64}, Rgba{0, 0, 0, 0}}) {
        const Picture picture = Solid(8, color);
        EXPECT_LE(LargestError(picture, RoundTrip(picture, Options(4, true))), 3);
    }
}

TEST(PvrtcEncode, KeepsSmoothRampsSmooth)
{
    const Picture picture = Ramps(64);
    EXPECT_GT(ColorPsnr(picture, RoundTrip(picture, Options(4))), 36.0);
    EXPECT_GT(ColorPsnr(picture, RoundTrip(picture, Options(2))), 30.0);
}

TEST(PvrtcEncode, KeepsBricks)
{
    const Picture picture = Bricks(64);
    EXPECT_GT(ColorPsnr(picture, RoundTrip(picture, Options(4))), 31.0);
    EXPECT_GT(ColorPsnr(picture, RoundTrip(picture, Options(2))), 27.0);
}

TEST(PvrtcEncode, KeepsPicturesThatAreNotSquare)
{
    const Picture square = Bricks(64);
    const Picture wide{64, 16, {square.pixels.begin(), square.pixels.begin() + 64 * 16 * 4}};
    EXPECT_GT(ColorPsnr(wide, RoundTrip(wide, Options(4))), 30.5);
    EXPECT_GT(ColorPsnr(wide, RoundTrip(wide, Options(2))), 27.0);
}

TEST(PvrtcEncode, IsNoWorseAtTheEdgesThanInside)
{
    // The ramps are continuous across the edges, where the format takes colours from the opposite side.
    const Picture picture = Ramps(64);
    const Picture decoded = RoundTrip(picture, Options(4));
    for (std::size_t i = 0; i < 64 * 4; ++i) {
        EXPECT_LE(std::abs(picture.pixels[i] - decoded.pixels[i]), 24);
        const std::size_t last = 63 * 64 * 4 + i;
        EXPECT_LE(std::abs(picture.pixels[last] - decoded.pixels[last]), 24);
    }
}

TEST(PvrtcEncode, GetsNoWorseWithEveryQualityLevelAndBetterOverAll)
{
    const Picture picture = Bricks(64);
    for (const std::uint32_t bitsPerPixel : {2u, 4u}) {
        std::vector<double> errors;
        for (const Quality quality : kEveryQuality)
            errors.push_back(ColorError(picture, RoundTrip(picture, Options(bitsPerPixel, false, quality))));
        EXPECT_TRUE(std::is_sorted(errors.rbegin(), errors.rend())) << bitsPerPixel << " bits per pixel";
        EXPECT_LT(errors.back(), errors.front() * 0.98) << bitsPerPixel << " bits per pixel";
    }
}

TEST(PvrtcEncode, IgnoresAlphaWithoutTheAlphaOption)
{
    Picture picture = Bricks(32);
    const std::vector<std::uint8_t> opaque = Encoded(picture, Options(4));
    for (std::size_t i = 3; i < picture.pixels.size(); i += 4)
        picture.pixels[i] = static_cast<std::uint8_t>(i);
    EXPECT_EQ(Encoded(picture, Options(4)), opaque);
    const Picture decoded = RoundTrip(picture, Options(4));
    for (std::size_t i = 3; i < decoded.pixels.size(); i += 4)
        ASSERT_EQ(decoded.pixels[i], 255);
}

TEST(PvrtcEncode, KeepsAnOpaquePictureOpaqueWithTheAlphaOption)
{
    const Picture decoded = RoundTrip(Bricks(32), Options(4, true));
    for (std::size_t i = 3; i < decoded.pixels.size(); i += 4)
        ASSERT_EQ(decoded.pixels[i], 255);
}

TEST(PvrtcEncode, CutsOutShapesWithFourBits)
{
    const Picture picture = Disc(64, {0, 0, 0, 0});
    const Picture decoded = RoundTrip(picture, Options(4, true));
    double squares = 0;
    for (std::size_t i = 3; i < picture.pixels.size(); i += 4) {
        const double off = picture.pixels[i] - decoded.pixels[i];
        squares += off * off;
    }
    EXPECT_LT(std::sqrt(squares / (64 * 64)), 12.0);
    EXPECT_GT(ColorPsnr(picture, decoded), 34.0);
    EXPECT_EQ(decoded.pixels[3], 0);
    EXPECT_EQ(decoded.pixels[(32 * 64 + 32) * 4 + 3], 255);
}

TEST(PvrtcEncode, KeepsAlphaRamps)
{
    const Picture picture = Draw(64, 64, [](int x, int y) { return Rgba{120, 60 + y, 200, Wave(x, 64)}; });
    const Picture decoded = RoundTrip(picture, Options(4, true));
    double squares = 0;
    for (std::size_t i = 3; i < picture.pixels.size(); i += 4) {
        const double off = picture.pixels[i] - decoded.pixels[i];
        squares += off * off;
    }
    EXPECT_LT(std::sqrt(squares / (64 * 64)), 8.0);
}

TEST(PvrtcEncode, DitheringChangesABandedRampAndKeepsItsMean)
{
    const Picture picture = Draw(64, 64, [](int x, int) {
        return Rgba{100 + x / 8, 100 + x / 8, 100 + x / 8, 255};
    });
    EncodeOptions options = Options(4);
    const std::vector<std::uint8_t> plain = Encoded(picture, options);
    options.dithering = Plugin::Dithering::ErrorDiffusion;
    EXPECT_NE(Encoded(picture, options), plain);
    const Picture decoded = RoundTrip(picture, options);
    double sum = 0;
    for (std::size_t i = 0; i < picture.pixels.size(); ++i)
        sum += decoded.pixels[i] - picture.pixels[i];
    EXPECT_LT(std::abs(sum / (64 * 64 * 3)), 1.5);
}

TEST(PvrtcEncode, AcceptsPicturesWithoutAnyVisiblePixel)
{
    const Picture picture = Draw(32, 32, [](int x, int y) { return Rgba{x * 8, y * 8, 99, 0}; });
    const Picture decoded = RoundTrip(picture, Options(4, true));
    for (std::size_t i = 3; i < decoded.pixels.size(); i += 4)
        ASSERT_EQ(decoded.pixels[i], 0);
}

class PvrtcInstructionSets : public testing::TestWithParam<Plugin::InstructionSet> {
protected:
    void SetUp() override
    {
        if (!Plugin::IsSupported(GetParam()))
            GTEST_SKIP() << "not on this processor";
    }
};

INSTANTIATE_TEST_SUITE_P(Every, PvrtcInstructionSets, testing::ValuesIn(Plugin::kEveryInstructionSet),
                         [](const auto& set) { return "Set" + std::to_string(set.index); });

TEST_P(PvrtcInstructionSets, EncodeTheSameBytesForEverySizeAndOption)
{
    constexpr std::uint32_t kSides[][2] = {{1, 1}, {2, 8}, {8, 8}, {16, 16}, {64, 4}, {32, 64}, {128, 32}};
    for (const auto& side : kSides) {
        const Picture picture = Mixed(side[0], side[1]);
        for (const std::uint32_t bitsPerPixel : {2u, 4u}) {
            for (const bool alpha : {false, true}) {
                EncodeOptions options = Options(bitsPerPixel, alpha);
                options.threads = 1;
                options.instructionSet = Plugin::InstructionSet::Portable;
                const std::vector<std::uint8_t> portable = Encoded(picture, options);
                options.instructionSet = GetParam();
                EXPECT_EQ(Encoded(picture, options), portable)
                    << side[0] << " x " << side[1] << ", " << bitsPerPixel << " bits, alpha " << alpha;
            }
        }
    }
}

TEST_P(PvrtcInstructionSets, DecodeTheSamePixelsFromRandomBlocks)
{
    for (const std::uint32_t bitsPerPixel : {2u, 4u}) {
        for (const std::uint32_t side : {4u, 8u, 64u}) {
            std::vector<std::uint8_t> level(PvrtcLevelBytes(side, side, bitsPerPixel));
            std::uint32_t state = side + bitsPerPixel;
            for (std::uint8_t& byte : level) {
                state = state * 1664525u + 1013904223u;
                byte = static_cast<std::uint8_t>(state >> 24);
            }
            std::vector<std::uint8_t> portable(std::size_t{side} * side * 4);
            std::vector<std::uint8_t> pixels(portable.size());
            PvrtcDecode(level.data(), portable.data(), side, side, bitsPerPixel,
                        Plugin::InstructionSet::Portable);
            PvrtcDecode(level.data(), pixels.data(), side, side, bitsPerPixel, GetParam());
            EXPECT_EQ(pixels, portable) << side << ", " << bitsPerPixel << " bits";
        }
    }
}

TEST(PvrtcEncode, GivesTheSameBytesWithAnyNumberOfThreads)
{
    for (const std::uint32_t bitsPerPixel : {2u, 4u}) {
        for (const std::uint32_t side : {8u, 64u, 256u}) {
            const Picture picture = Mixed(side, side);
            EncodeOptions options = Options(bitsPerPixel, bitsPerPixel == 4);
            options.threads = 1;
            const std::vector<std::uint8_t> alone = Encoded(picture, options);
            for (const unsigned threads : {0u, 2u, 3u, 7u}) {
                options.threads = threads;
                EXPECT_EQ(Encoded(picture, options), alone) << side << ", " << threads << " threads";
            }
        }
    }
}

TEST(PvrtcEncode, FitsPicturesThatLeaveEndpointsUndecided)
{
    // Two colours and nothing between them, single bright pixels, and one channel alone.
    const Picture halves = Draw(64, 64, [](int x, int) {
        return x < 32 ? Rgba{255, 0, 0, 255} : Rgba{0, 0, 255, 255};
    });
    const Picture dots = Draw(64, 64, [](int x, int y) {
        return x % 16 == 3 && y % 16 == 9 ? Rgba{255, 255, 255, 255} : Rgba{0, 0, 0, 255};
    });
    const Picture blue = Draw(64, 64, [](int x, int y) { return Rgba{0, 0, Wave(x + y, 64), 255}; });
    for (const std::uint32_t bitsPerPixel : {2u, 4u}) {
        EXPECT_GT(ColorPsnr(halves, RoundTrip(halves, Options(bitsPerPixel))), 20.0) << bitsPerPixel;
        EXPECT_GT(ColorPsnr(dots, RoundTrip(dots, Options(bitsPerPixel))), 22.0) << bitsPerPixel;
        EXPECT_GT(ColorPsnr(blue, RoundTrip(blue, Options(bitsPerPixel))), 30.0) << bitsPerPixel;
    }
}

TEST(PvrtcEncode, GivesTheSameBytesOnEveryPlatform)
{
    // Kept from a native build: a compiler that adds or fuses in another order would change them.
    const Picture opaque = Bricks(64);
    const Picture cutOut = Disc(64, {0, 0, 0, 0});
    EXPECT_EQ(Fingerprint(Encoded(opaque, Options(4))), 2460373121333268101u);
    EXPECT_EQ(Fingerprint(Encoded(opaque, Options(2))), 12863051073741388869u);
    EXPECT_EQ(Fingerprint(Encoded(cutOut, Options(4, true))), 4752096492795550905u);
    EXPECT_EQ(Fingerprint(Encoded(cutOut, Options(4, true, Quality::Best))), 18048401235947773692u);
}
