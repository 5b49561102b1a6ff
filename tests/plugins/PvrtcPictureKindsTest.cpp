#include "tests/plugins/PvrtcPictures.h"

// Kinds of pictures that a modder has, and places where the format is special.

namespace {
using namespace PvrtcPictures;

std::uint8_t RandomByte(std::uint32_t& state)
{
    state = state * 1664525u + 1013904223u;
    return static_cast<std::uint8_t>(state >> 24);
}

Picture NoisePicture(std::uint32_t side)
{
    Picture picture{side, side, std::vector<std::uint8_t>(std::size_t{side} * side * 4)};
    std::uint32_t state = side;
    for (std::size_t i = 0; i < picture.pixels.size(); ++i)
        picture.pixels[i] = i % 4 == 3 ? std::uint8_t{255} : RandomByte(state);
    return picture;
}

// Waves as they stand in a normal map: red and green are slopes, blue points out of the surface.
Picture NormalMap(std::uint32_t side)
{
    return Draw(side, side, [](int x, int y) {
        const int slopeX = (Wave(x * 3, 64) - 128) * 3 / 4;
        const int slopeY = (Wave(y * 2 + x, 64) - 128) * 3 / 4;
        const double out = std::sqrt(static_cast<double>(127 * 127 * 2 - slopeX * slopeX - slopeY * slopeY));
        return Rgba{128 + slopeX, 128 + slopeY, std::min(255, 128 + static_cast<int>(out / 1.5)), 255};
    });
}

Picture Shifted(const Picture& picture, std::uint32_t byX, std::uint32_t byY)
{
    Picture shifted = picture;
    for (std::uint32_t y = 0; y < picture.height; ++y) {
        for (std::uint32_t x = 0; x < picture.width; ++x) {
            const std::size_t from = (y * picture.width + x) * std::size_t{4};
            const std::size_t to =
                ((y + byY) % picture.height * picture.width + (x + byX) % picture.width) * std::size_t{4};
            std::copy_n(picture.pixels.begin() + static_cast<std::ptrdiff_t>(from), 4,
                        shifted.pixels.begin() + static_cast<std::ptrdiff_t>(to));
        }
    }
    return shifted;
}
}  // namespace

TEST(PvrtcPictureKinds, FitsNormalMaps)
{
    const Picture picture = NormalMap(64);
    EXPECT_GT(ColorPsnr(picture, RoundTrip(picture, Options(4))), 30.0);
    EXPECT_GT(ColorPsnr(picture, RoundTrip(picture, Options(2))), 25.0);
}

TEST(PvrtcPictureKinds, FitsNoiseBetterThanItsMeanWould)
{
    // Noise of one channel has a variance of 255 * 257 / 12 around its mean.
    const Picture picture = NoisePicture(64);
    constexpr double kVariance = 255.0 * 257 / 12;
    for (const Quality quality : kEveryQuality) {
        EXPECT_LT(ColorError(picture, RoundTrip(picture, Options(4, false, quality))), kVariance * 0.75);
        EXPECT_LT(ColorError(picture, RoundTrip(picture, Options(2, false, quality))), kVariance * 0.9);
    }
}

TEST(PvrtcPictureKinds, FitsGradientsAtEveryQuality)
{
    const Picture picture = Ramps(64);
    for (const Quality quality : kEveryQuality) {
        EXPECT_GT(ColorPsnr(picture, RoundTrip(picture, Options(4, false, quality))), 35.0);
        EXPECT_GT(ColorPsnr(picture, RoundTrip(picture, Options(2, false, quality))), 30.0);
    }
}

TEST(PvrtcPictureKinds, ShiftingAPictureAroundItsEdgesShiftsItsBlocks)
{
    // By two blocks, because even and odd ones are solved in turn.
    const Picture picture = Mixed(64, 64);
    for (const std::uint32_t bitsPerPixel : {2u, 4u}) {
        for (const bool alpha : {false, true}) {
            const EncodeOptions options = Options(bitsPerPixel, alpha, Quality::Fast);
            const Picture expected = RoundTrip(picture, options);
            const Picture shifted = RoundTrip(Shifted(picture, 16, 8), options);
            EXPECT_NEAR(ColorError(Shifted(picture, 16, 8), shifted), ColorError(picture, expected),
                        ColorError(picture, expected) * 0.02)
                << bitsPerPixel << " bits, alpha " << alpha;
        }
    }
}

TEST(PvrtcPictureKinds, SmallLevelsAreAsGoodAsTheirPixels)
{
    // The interface promises 32 bytes below 8 x 8, where all but the picture's corner is padding.
    for (const std::uint32_t bitsPerPixel : {2u, 4u}) {
        for (const std::uint32_t side : {1u, 2u, 4u, 8u}) {
            const Picture picture = Draw(side, side, [](int x, int y) {
                const int grey = 40 + x * 12 + y * 8;
                return Rgba{grey, grey * 3 / 4, 90, 255};
            });
            EXPECT_EQ(Encoded(picture, Options(bitsPerPixel)).size(), 32u);
            EXPECT_LT(ColorError(picture, RoundTrip(picture, Options(bitsPerPixel))), 75.0) << side;
        }
    }
}

TEST(PvrtcPictureKinds, MovingEndpointsByExactErrorsGainsWhereTheEquationsEnd)
{
    // Solving alone ends at 3.77 and 3.71.
    const Picture picture = Ramps(64);
    EXPECT_LT(ColorError(picture, RoundTrip(picture, Options(4, false, Quality::High))), 3.2);
    EXPECT_LT(ColorError(picture, RoundTrip(picture, Options(4, false, Quality::Best))), 2.9);
}

TEST(PvrtcPictureKinds, EveryQualityGivesTheSameBytesForEveryInstructionSetAndThread)
{
    const Picture picture = Mixed(64, 32);
    for (const std::uint32_t bitsPerPixel : {2u, 4u}) {
        for (const bool alpha : {false, true}) {
            for (const Quality quality : kEveryQuality) {
                EncodeOptions options = Options(bitsPerPixel, alpha, quality);
                options.threads = 1;
                options.instructionSet = Plugin::InstructionSet::Portable;
                const std::vector<std::uint8_t> portable = Encoded(picture, options);
                for (const Plugin::InstructionSet set : Plugin::kEveryInstructionSet) {
                    for (const unsigned threads : {1u, 3u}) {
                        options.instructionSet = set;
                        options.threads = threads;
                        EXPECT_EQ(Encoded(picture, options), portable)
                            << bitsPerPixel << " bits, alpha " << alpha << ", set " << static_cast<int>(set)
                            << ", " << threads << " threads, quality " << static_cast<int>(quality);
                    }
                }
            }
        }
    }
}
