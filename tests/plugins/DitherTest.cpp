// The dithering modes of all codecs, judged by what a viewer judges them by: over a small area the mean
// colour is nearer to the picture's, and nothing that was right before gets noisy.

#include <array>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "plugins/dxt/Dxt.h"
#include "plugins/etc1/Etc1.h"
#include "plugins/pvrtc/PvrtcDecode.h"
#include "plugins/pvrtc/PvrtcEncode.h"
#include "plugins/unc/Unc.h"
#include "tests/plugins/PluginInterfacePictures.h"

namespace {
using Plugin::Dithering;
using Plugin::Quality;
using PluginTest::Picture;
using Bytes = std::vector<std::uint8_t>;

constexpr Dithering kModes[] = {Dithering::ErrorDiffusion, Dithering::Ordered};
constexpr std::uint32_t kSide = 64;

Bytes DxtRoundTrip(const Picture& picture, Dxt::Variant variant, Dithering mode, Quality quality)
{
    Bytes blocks(std::size_t{(picture.width + 3) / 4} * ((picture.height + 3) / 4) *
                 Dxt::BlockBytes(variant));
    Bytes shown(picture.pixels.size());
    EXPECT_EQ(Dxt::Compress(picture.pixels.data(), blocks.data(), picture.width, picture.height,
                            {variant, quality, mode}),
              blocks.size());
    Dxt::Decompress(blocks.data(), shown.data(), picture.width, picture.height, variant);
    return shown;
}

Bytes Etc1RoundTrip(const Picture& picture, Dithering mode, Quality quality)
{
    Bytes blocks(std::size_t{(picture.width + 3) / 4} * ((picture.height + 3) / 4) * 8);
    Bytes shown(picture.pixels.size());
    EXPECT_EQ(
        Etc1::Compress(picture.pixels.data(), blocks.data(), picture.width, picture.height, {quality, mode}),
        blocks.size());
    Etc1::Decompress(blocks.data(), shown.data(), picture.width, picture.height);
    return shown;
}

Bytes PvrtcRoundTrip(const Picture& picture, std::uint32_t bitsPerPixel, bool alpha, Dithering mode,
                     Quality quality)
{
    Bytes level(Pvrtc::PvrtcLevelBytes(picture.width, picture.height, bitsPerPixel));
    Pvrtc::EncodeOptions options;
    options.bitsPerPixel = bitsPerPixel;
    options.alpha = alpha;
    options.dithering = mode;
    options.quality = quality;
    Bytes shown(picture.pixels.size());
    EXPECT_EQ(Pvrtc::PvrtcEncode(picture.pixels.data(), level.data(), picture.width, picture.height, options),
              level.size());
    Pvrtc::PvrtcDecode(level.data(), shown.data(), picture.width, picture.height, bitsPerPixel);
    return shown;
}

Bytes UncRoundTrip(const Picture& picture, bool alpha, Dithering mode, Quality /*quality*/)
{
    const std::size_t count = picture.pixels.size() / 4;
    Bytes packed(count * 2);
    EXPECT_EQ(Unc::Compress(picture.pixels.data(), packed.data(), picture.width, picture.height, alpha, mode),
              packed.size());
    Bytes shown;
    for (std::size_t i = 0; i < count; ++i) {
        const unsigned value = packed[i * 2] | static_cast<unsigned>(packed[i * 2 + 1]) << 8;
        std::array<unsigned, 4> pixel{};
        if (alpha)
            pixel = {(value >> 12) * 17, (value >> 8 & 15) * 17, (value >> 4 & 15) * 17, (value & 15) * 17};
        else
            pixel = {(value >> 11) << 3 | value >> 13, (value >> 5 & 63) << 2 | (value >> 9 & 3),
                     (value & 31) << 3 | (value >> 2 & 7), 255};
        for (const unsigned channel : pixel)
            shown.push_back(static_cast<std::uint8_t>(channel));
    }
    return shown;
}

// What a viewer sees of a picture that was stored in the format.
struct Format {
    std::string name;
    std::function<Bytes(const Picture&, Dithering, Quality)> roundTrip;
};

Format DxtFormat(const char* name, Dxt::Variant variant)
{
    return {name, [variant](const Picture& picture, Dithering mode, Quality quality) {
                return DxtRoundTrip(picture, variant, mode, quality);
            }};
}

Format PvrtcFormat(const char* name, std::uint32_t bitsPerPixel, bool alpha)
{
    return {name, [=](const Picture& picture, Dithering mode, Quality quality) {
                return PvrtcRoundTrip(picture, bitsPerPixel, alpha, mode, quality);
            }};
}

Format UncFormat(const char* name, bool alpha)
{
    return {name, [alpha](const Picture& picture, Dithering mode, Quality quality) {
                return UncRoundTrip(picture, alpha, mode, quality);
            }};
}

std::vector<Format> AllFormats()
{
    return {DxtFormat("Dxt1", Dxt::Variant::Dxt1),
            DxtFormat("Dxt1Alpha", Dxt::Variant::Dxt1Alpha),
            DxtFormat("Dxt3", Dxt::Variant::Dxt3),
            DxtFormat("Dxt5", Dxt::Variant::Dxt5),
            {"Etc1", Etc1RoundTrip},
            PvrtcFormat("Pvrtc4", 4, false),
            PvrtcFormat("Pvrtc4Alpha", 4, true),
            PvrtcFormat("Pvrtc2", 2, false),
            UncFormat("Rgb565", false),
            UncFormat("Rgba4444", true)};
}

using Color = std::array<double, 3>;

// Smooth from `from` at the top left by `across` to the right and by `down` to the bottom.
Picture Ramp(const Color& from, const Color& across, const Color& down)
{
    Picture picture{kSide, kSide, {}};
    for (std::uint32_t y = 0; y < kSide; ++y)
        for (std::uint32_t x = 0; x < kSide; ++x) {
            for (std::size_t channel = 0; channel < 3; ++channel)
                picture.pixels.push_back(static_cast<std::uint8_t>(
                    from[channel] + (across[channel] * x + down[channel] * y) / kSide + 0.5));
            picture.pixels.push_back(255);
        }
    return picture;
}

std::vector<Picture> Ramps()
{
    return {Ramp({60, 60, 60}, {80, 80, 80}, {0, 0, 0}), Ramp({90, 120, 180}, {0, 0, 0}, {40, 30, 20}),
            Ramp({40, 100, 80}, {60, -40, 0}, {0, 50, 60}), Ramp({100, 100, 100}, {12, 12, 12}, {12, 12, 12}),
            Ramp({130, 90, 60}, {20, 0, 12}, {0, 14, 12})};
}

// The squared differences between the means of 8 x 8 pixels, summed over colours and places.
double BoxError(const Picture& picture, const Bytes& shown)
{
    constexpr std::size_t kBox = 8;
    double sum = 0;
    for (std::size_t top = 0; top + kBox <= picture.height; top += 2)
        for (std::size_t left = 0; left + kBox <= picture.width; left += 2)
            for (std::size_t channel = 0; channel < 3; ++channel) {
                int off = 0;
                for (std::size_t i = 0; i < kBox * kBox; ++i) {
                    const std::size_t pixel = (top + i / kBox) * picture.width + left + i % kBox;
                    off += shown[pixel * 4 + channel] - picture.pixels[pixel * 4 + channel];
                }
                sum += off * off / 4096.0;
            }
    return sum;
}

double BoxErrorOfRamps(const Format& format, Dithering mode, Quality quality)
{
    double sum = 0;
    for (const Picture& ramp : Ramps())
        sum += BoxError(ramp, format.roundTrip(ramp, mode, quality));
    return sum;
}

class DitheredFormat : public testing::TestWithParam<Format> {};

TEST_P(DitheredFormat, ShowsMeansOfRampsBetterThanWithoutDithering)
{
    for (const Quality quality : {Quality::Fast, Quality::Normal}) {
        const double plain = BoxErrorOfRamps(GetParam(), Dithering::None, quality);
        for (const Dithering mode : kModes)
            EXPECT_LT(BoxErrorOfRamps(GetParam(), mode, quality), plain)
                << "level " << static_cast<int>(quality) << ", mode " << static_cast<int>(mode);
    }
}

TEST_P(DitheredFormat, LeavesFlatColoursThatItHasAlone)
{
    int exact = 0;
    for (int value = 0; value < 256; value += 5) {
        const Picture flat = PluginTest::Solid(16, 16, value, 255 - value, 77, 255);
        if (GetParam().roundTrip(flat, Dithering::None, Quality::Normal) != flat.pixels)
            continue;
        ++exact;
        for (const Dithering mode : kModes)
            EXPECT_EQ(GetParam().roundTrip(flat, mode, Quality::Normal), flat.pixels) << value;
    }
    for (const int value : {0, 255}) {
        const Picture flat = PluginTest::Solid(16, 16, value, value, value, 255);
        for (const Dithering mode : kModes)
            EXPECT_EQ(GetParam().roundTrip(flat, mode, Quality::Normal), flat.pixels) << value;
    }
    RecordProperty("exact", exact);
}

TEST_P(DitheredFormat, ShowsTheModesDifferently)
{
    const Picture ramp = Ramps()[2];
    const Bytes plain = GetParam().roundTrip(ramp, Dithering::None, Quality::Fast);
    const Bytes diffused = GetParam().roundTrip(ramp, Dithering::ErrorDiffusion, Quality::Fast);
    const Bytes ordered = GetParam().roundTrip(ramp, Dithering::Ordered, Quality::Fast);
    EXPECT_NE(plain, diffused);
    EXPECT_NE(plain, ordered);
    EXPECT_NE(diffused, ordered);
}

TEST_P(DitheredFormat, StaysNearTheUnditheredPictureOnTextures)
{
    const Picture bricks = PluginTest::Bricks(kSide, kSide);
    Picture opaque = bricks;
    for (std::size_t i = 3; i < opaque.pixels.size(); i += 4)
        opaque.pixels[i] = 255;
    const double plain =
        PluginTest::Psnr(opaque.pixels, GetParam().roundTrip(opaque, Dithering::None, Quality::Normal), 3);
    for (const Dithering mode : kModes)
        EXPECT_GT(PluginTest::Psnr(opaque.pixels, GetParam().roundTrip(opaque, mode, Quality::Normal), 3),
                  plain - 2);
}

std::string NameOfFormat(const testing::TestParamInfo<Format>& tested)
{
    return tested.param.name;
}

INSTANTIATE_TEST_SUITE_P(Every, DitheredFormat, testing::ValuesIn(AllFormats()), NameOfFormat);

// Blocks.

TEST(BlockDither, HalvesTheErrorOfTheMeansOrBetter)
{
    // Squared errors: a quarter is half the error.
    for (const Format& format :
         {DxtFormat("", Dxt::Variant::Dxt1), DxtFormat("", Dxt::Variant::Dxt5), Format{"", Etc1RoundTrip}}) {
        const double plain = BoxErrorOfRamps(format, Dithering::None, Quality::Normal);
        for (const Dithering mode : kModes)
            EXPECT_LT(BoxErrorOfRamps(format, mode, Quality::Normal), plain / 4);
    }
}

// Noise on the left, a flat colour on the right, the border on a border of blocks.
Picture HalfFlat(std::array<std::uint8_t, 3> color)
{
    Picture picture = PluginTest::Noise(32, 32);
    for (std::size_t i = 0; i < 32 * 32; ++i) {
        picture.pixels[i * 4 + 3] = 255;
        if (i % 32 >= 16)
            std::copy(color.begin(), color.end(),
                      picture.pixels.begin() + static_cast<std::ptrdiff_t>(i * 4));
    }
    return picture;
}

TEST(BlockDither, LetsNoNoiseIntoFlatPartsThatAreExact)
{
    // Colours that every one of the formats has: 24, 16 and 8 are five-bit values of DXT; ETC1 has 18 as 16
    // and 2 more.
    const std::vector<std::pair<Format, std::array<std::uint8_t, 3>>> cases = {
        {DxtFormat("Dxt1", Dxt::Variant::Dxt1), {24, 20, 8}},
        {DxtFormat("Dxt5", Dxt::Variant::Dxt5), {24, 20, 8}},
        {{"Etc1", Etc1RoundTrip}, {18, 18, 18}}};
    for (const auto& [format, color] : cases) {
        const Picture picture = HalfFlat(color);
        for (const Dithering mode : kModes) {
            const Bytes shown = format.roundTrip(picture, mode, Quality::Normal);
            for (std::size_t i = 0; i < 32 * 32; ++i)
                if (i % 32 >= 16) {
                    ASSERT_EQ((std::array{shown[i * 4], shown[i * 4 + 1], shown[i * 4 + 2]}), color)
                        << format.name << " pixel " << i;
                }
        }
    }
}

// A visible disc of whole blocks in surroundings that nobody sees.
Picture DiscInHidden(bool noisySurroundings)
{
    Picture picture = Ramps()[1];
    const Picture noise = PluginTest::Noise(kSide, kSide);
    for (std::size_t i = 0; i < std::size_t{kSide} * kSide; ++i) {
        const int x = static_cast<int>(i % kSide / 4 * 4) - 30;
        const int y = static_cast<int>(i / kSide / 4 * 4) - 30;
        if (x * x + y * y < 700)
            continue;
        for (std::size_t channel = 0; channel < 3; ++channel)
            picture.pixels[i * 4 + channel] = noisySurroundings ? noise.pixels[i * 4 + channel] : 0;
        picture.pixels[i * 4 + 3] = 0;
    }
    return picture;
}

TEST(BlockDither, TakesNothingFromColoursThatNobodySees)
{
    const Picture quiet = DiscInHidden(false);
    const Picture noisy = DiscInHidden(true);
    for (const Format& format : {DxtFormat("Dxt1Alpha", Dxt::Variant::Dxt1Alpha),
                                 DxtFormat("Dxt5", Dxt::Variant::Dxt5), UncFormat("Rgba4444", true)})
        for (const Dithering mode : kModes) {
            const Bytes one = format.roundTrip(quiet, mode, Quality::Normal);
            const Bytes other = format.roundTrip(noisy, mode, Quality::Normal);
            for (std::size_t i = 0; i < one.size(); i += 4)
                if (quiet.pixels[i + 3] != 0) {
                    ASSERT_TRUE(std::equal(one.begin() + static_cast<std::ptrdiff_t>(i),
                                           one.begin() + static_cast<std::ptrdiff_t>(i + 4),
                                           other.begin() + static_cast<std::ptrdiff_t>(i)))
                        << format.name << " mode " << static_cast<int>(mode) << " pixel " << i / 4;
                }
        }
}

TEST(BlockDither, GivesTheSameBytesWithEveryInstructionSet)
{
    const Picture picture = PluginTest::Bricks(36, 28);
    for (const Dxt::Variant variant :
         {Dxt::Variant::Dxt1, Dxt::Variant::Dxt1Alpha, Dxt::Variant::Dxt3, Dxt::Variant::Dxt5})
        for (const Dithering mode : kModes) {
            Dxt::EncodeOptions options{variant, Quality::Normal, mode, 1, Plugin::InstructionSet::Portable};
            Bytes wanted(7 * 9 * Dxt::BlockBytes(variant));
            Dxt::Compress(picture.pixels.data(), wanted.data(), 36, 28, options);
            for (const Plugin::InstructionSet set : Plugin::kEveryInstructionSet) {
                if (!Plugin::IsSupported(set))
                    continue;
                options.instructionSet = set;
                Bytes got(wanted.size());
                Dxt::Compress(picture.pixels.data(), got.data(), 36, 28, options);
                EXPECT_EQ(got, wanted);
            }
        }
}

TEST(BlockDither, KeepsTheOutputOfOneBlockThatSticksOutOnAllSides)
{
    for (const std::uint32_t side : {1U, 2U, 3U, 5U})
        for (const Dithering mode : kModes) {
            const Picture flat = PluginTest::Solid(side, side, 24, 20, 8, 255);
            EXPECT_EQ(DxtRoundTrip(flat, Dxt::Variant::Dxt1, mode, Quality::Normal), flat.pixels) << side;
        }
}

// Alpha.

double MeanAlpha(const Bytes& pixels)
{
    double sum = 0;
    for (std::size_t i = 3; i < pixels.size(); i += 4)
        sum += pixels[i];
    return sum / static_cast<double>(pixels.size() / 4);
}

TEST(AlphaDither, ShowsHalfTransparencyByOneBitAlpha)
{
    for (const Dithering mode : kModes) {
        const Picture flat = PluginTest::Solid(kSide, kSide, 0, 0, 0, 64);
        EXPECT_NEAR(MeanAlpha(DxtRoundTrip(flat, Dxt::Variant::Dxt1Alpha, mode, Quality::Fast)), 64, 3);
    }
}

TEST(AlphaDither, ShowsFinerStepsThanFourBitsHave)
{
    for (const Dithering mode : kModes)
        for (const Format& format : {DxtFormat("Dxt3", Dxt::Variant::Dxt3), UncFormat("Rgba4444", true)}) {
            const Picture flat = PluginTest::Solid(kSide, kSide, 0, 0, 0, 76);
            EXPECT_NEAR(MeanAlpha(format.roundTrip(flat, mode, Quality::Fast)), 76, 0.5) << format.name;
        }
}

TEST(AlphaDither, LeavesInterpolatedAlphaAsItIsWithoutDithering)
{
    const Picture bricks = PluginTest::Bricks(kSide, kSide);
    const Bytes plain = DxtRoundTrip(bricks, Dxt::Variant::Dxt5, Dithering::None, Quality::Normal);
    for (const Dithering mode : kModes) {
        const Bytes dithered = DxtRoundTrip(bricks, Dxt::Variant::Dxt5, mode, Quality::Normal);
        for (std::size_t i = 3; i < plain.size(); i += 4)
            ASSERT_EQ(dithered[i], plain[i]) << i / 4;
    }
}

TEST(AlphaDither, LeavesAlphaOfPvrtcAsItIsWithoutDithering)
{
    const Picture bricks = PluginTest::Bricks(kSide, kSide);
    const Bytes plain = PvrtcRoundTrip(bricks, 4, true, Dithering::None, Quality::Fast);
    for (const Dithering mode : kModes) {
        const Bytes dithered = PvrtcRoundTrip(bricks, 4, true, mode, Quality::Fast);
        for (std::size_t i = 3; i < plain.size(); i += 4)
            ASSERT_EQ(dithered[i], plain[i]) << i / 4;
    }
}

TEST(AlphaDither, CutsFourBitAlphaOffOnlyWithoutDithering)
{
    const Bytes pixels{0x1F, 0x2E, 0x3D, 0x4C};
    Bytes out(2);
    EXPECT_EQ(Unc::Compress(pixels.data(), out.data(), 1, 1, true, Dithering::None), 2U);
    EXPECT_EQ(out, (Bytes{0x34, 0x12}));
}
}  // namespace
