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

#include "plugins/pvrtc/PvrtcDecode.h"

namespace {
using Plugin::Quality;
using Pvrtc::EncodeOptions;
using Pvrtc::PvrtcDecode;
using Pvrtc::PvrtcEncode;
using Pvrtc::PvrtcLevelBytes;

constexpr Quality kEveryQuality[] = {Quality::Fast, Quality::Normal, Quality::High, Quality::Best};

struct Picture {
    std::uint32_t width;
    std::uint32_t height;
    std::vector<std::uint8_t> pixels;
};

template <typename PixelAt>
Picture Draw(std::uint32_t width, std::uint32_t height, PixelAt pixelAt)
{
    Picture picture{width, height, {}};
    for (std::uint32_t y = 0; y < height; ++y)
        for (std::uint32_t x = 0; x < width; ++x)
            for (const int value : pixelAt(static_cast<int>(x), static_cast<int>(y)))
                picture.pixels.push_back(static_cast<std::uint8_t>(value));
    return picture;
}

using Rgba = std::array<int, 4>;

// A triangle wave from 0 to 255, continuous where the picture wraps.
int Wave(int position, int period)
{
    const int phase = position % period;
    return (phase < period / 2 ? phase : period - phase) * 255 / (period / 2);
}

Picture Ramps(std::uint32_t side)
{
    const int period = static_cast<int>(side);
    return Draw(side, side, [period](int x, int y) {
        return Rgba{Wave(x, period), Wave(y, period), Wave(x + y, period), 255};
    });
}

// Bricks with mortar and a little noise: edges, flat parts and texture, all from integers.
Picture Bricks(std::uint32_t side)
{
    return Draw(side, side, [](int x, int y) {
        const int row = y / 8;
        const int along = (x + (row % 2) * 8) % 16;
        const bool mortar = y % 8 == 0 || along == 0;
        const int noise = (x * 37 + y * 91 + x * y * 13) % 23 - 11;
        if (mortar)
            return Rgba{150 + noise, 145 + noise, 140 + noise, 255};
        return Rgba{170 + noise, 75 + noise + row % 3 * 6, 55 + noise, 255};
    });
}

// A disc with soft shading; outside it everything is transparent.
Picture Disc(std::uint32_t side, Rgba outside)
{
    const int middle = static_cast<int>(side) / 2;
    return Draw(side, side, [middle, outside](int x, int y) {
        const int distance = (x - middle) * (x - middle) + (y - middle) * (y - middle);
        if (distance > middle * middle * 3 / 4)
            return outside;
        return Rgba{60 + x * 2, 200 - y, 90, 255};
    });
}

std::vector<std::uint8_t> Encoded(const Picture& picture, const EncodeOptions& options)
{
    std::vector<std::uint8_t> level(PvrtcLevelBytes(picture.width, picture.height, options.bitsPerPixel));
    EXPECT_EQ(PvrtcEncode(picture.pixels.data(), level.data(), picture.width, picture.height, options),
              level.size());
    return level;
}

Picture RoundTrip(const Picture& picture, const EncodeOptions& options)
{
    const std::vector<std::uint8_t> level = Encoded(picture, options);
    Picture decoded{picture.width, picture.height, std::vector<std::uint8_t>(picture.pixels.size())};
    EXPECT_EQ(
        PvrtcDecode(level.data(), decoded.pixels.data(), picture.width, picture.height, options.bitsPerPixel),
        decoded.pixels.size());
    return decoded;
}

// Mean squared error over R, G and B of the pixels that can be seen.
double ColorError(const Picture& wanted, const Picture& got)
{
    double sum = 0;
    double count = 0;
    for (std::size_t i = 0; i < wanted.pixels.size(); ++i) {
        if ((i & 3) == 3 || wanted.pixels[i | 3] == 0)
            continue;
        const double off = wanted.pixels[i] - got.pixels[i];
        sum += off * off;
        ++count;
    }
    return sum / count;
}

double ColorPsnr(const Picture& wanted, const Picture& got)
{
    return 10 * std::log10(255.0 * 255.0 / ColorError(wanted, got));
}

int LargestError(const Picture& wanted, const Picture& got)
{
    int largest = 0;
    for (std::size_t i = 0; i < wanted.pixels.size(); ++i)
        largest = std::max(largest, std::abs(wanted.pixels[i] - got.pixels[i]));
    return largest;
}

Picture Solid(std::uint32_t side, Rgba color)
{
    return Draw(side, side, [color](int, int) { return color; });
}

std::uint64_t Fingerprint(const std::vector<std::uint8_t>& bytes)
{
    std::uint64_t hash = 14695981039346656037u;
    for (const std::uint8_t byte : bytes)
        hash = (hash ^ byte) * 1099511628211u;
    return hash;
}

EncodeOptions Options(std::uint32_t bitsPerPixel, bool alpha = false, Quality quality = Quality::Normal)
{
    EncodeOptions options;
    options.bitsPerPixel = bitsPerPixel;
    options.alpha = alpha;
    options.quality = quality;
    return options;
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

TEST(PvrtcEncode, ReachesSolidColorsOfTwoBitsToHalfAnEndpointStep)
{
    for (const Rgba& color :
         {Rgba{0, 0, 0, 255}, Rgba{255, 255, 255, 255}, Rgba{128, 12, 70, 255}, Rgba{200, 100, 50, 255}}) {
        for (const std::uint32_t side : {1u, 8u, 16u, 32u}) {
            const Picture picture = Solid(side, color);
            EXPECT_LE(LargestError(picture, RoundTrip(picture, Options(2))), 4) << side;
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
    EXPECT_GT(ColorPsnr(wide, RoundTrip(wide, Options(4))), 31.0);
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

TEST(PvrtcEncode, SpendsNothingOnColorsUnderFullTransparency)
{
    for (const std::uint32_t bitsPerPixel : {2u, 4u}) {
        for (const bool dithering : {false, true}) {
            EncodeOptions options = Options(bitsPerPixel, true);
            options.dithering = dithering;
            EXPECT_EQ(Encoded(Disc(64, {0, 0, 0, 0}), options), Encoded(Disc(64, {255, 0, 255, 0}), options));
        }
    }
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
    options.dithering = true;
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

// A picture that uses every path: cut out, with soft alpha and noise.
Picture Mixed(std::uint32_t width, std::uint32_t height)
{
    std::uint32_t state = 12345;
    return Draw(width, height, [&state](int x, int y) {
        state = state * 1664525u + 1013904223u;
        const int noise = static_cast<int>(state >> 24) / 4;
        const int alpha = (x / 8 + y / 8) % 3 == 0 ? 0 : (x * 5 + y * 3) % 8 == 0 ? 120 : 255;
        return Rgba{(x * 7 + noise) % 256, (y * 5 + noise) % 256, (x + y) * 3 % 256, alpha};
    });
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

// Least squared error of one channel when every pixel of every block has the same weight.
int LeastError(int wanted, int weight, int stepsOfA)
{
    int least = 255 * 255;
    for (int a = 0; a <= stepsOfA; ++a) {
        for (int b = 0; b <= 31; ++b) {
            const int fiveA = stepsOfA == 31 ? a : a << 1 | a >> 3;
            const int value = ((fiveA << 3 | fiveA >> 2) * (8 - weight) + (b << 3 | b >> 2) * weight) / 8;
            least = std::min(least, (value - wanted) * (value - wanted));
        }
    }
    return least;
}

TEST(PvrtcEncode, ComesAsNearToEveryGreyAsAnyBlockCan)
{
    for (int grey = 0; grey < 256; ++grey) {
        int least = 3 * 255 * 255;
        for (const int weight : {0, 3, 4, 5, 8})
            least = std::min(least, 2 * LeastError(grey, weight, 31) + LeastError(grey, weight, 15));
        const Picture picture = Solid(8, {grey, grey, grey, 255});
        EXPECT_NEAR(ColorError(picture, RoundTrip(picture, Options(4))) * 3, least, 1e-9) << grey;
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
    EXPECT_EQ(Fingerprint(Encoded(opaque, Options(4))), 16821965583808469589u);
    EXPECT_EQ(Fingerprint(Encoded(opaque, Options(2))), 7180767372247782345u);
    EXPECT_EQ(Fingerprint(Encoded(cutOut, Options(4, true))), 7549770131229074356u);
    EXPECT_EQ(Fingerprint(Encoded(cutOut, Options(4, true, Quality::Best))), 7199813140163607940u);
}
