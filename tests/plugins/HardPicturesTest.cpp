// Pictures whose sums are degenerate for a least squares fit: all pixels alike, two colours, colours on one
// line, one pixel that is not like the others, nothing to be seen. The output is defined: the same with every
// instruction set, and as good as the format allows where that is easy to say.

#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

#include "tests/plugins/EveryCodec.h"
#include "tests/plugins/PluginInterfacePictures.h"

namespace {
using Plugin::InstructionSet;
using Plugin::Quality;
using PluginTest::Coder;
using PluginTest::Picture;
using Bytes = std::vector<std::uint8_t>;

constexpr std::uint32_t kSide = 8;

struct Pixel {
    int red;
    int green;
    int blue;
    int alpha = 255;
};

template <typename Draw>
Picture Drawn(Draw draw)
{
    Picture picture{kSide, kSide, {}};
    for (int y = 0; y < static_cast<int>(kSide); ++y)
        for (int x = 0; x < static_cast<int>(kSide); ++x) {
            const Pixel pixel = draw(x, y);
            for (const int value : {pixel.red, pixel.green, pixel.blue, pixel.alpha})
                picture.pixels.push_back(static_cast<std::uint8_t>(value));
        }
    return picture;
}

std::map<std::string, Picture> HardPictures()
{
    const auto chess = [](int x, int y) { return (x + y) % 2 != 0; };
    return {
        {"black", Drawn([](int, int) {
             return Pixel{0, 0, 0};
         })},
        {"white", Drawn([](int, int) {
             return Pixel{255, 255, 255};
         })},
        {"odd grey", Drawn([](int, int) {
             return Pixel{3, 3, 3};
         })},
        {"nothing seen", Drawn([](int x, int y) {
             return Pixel{x * 32, y * 32, 99, 0};
         })},
        {"all half seen", Drawn([](int x, int y) {
             return Pixel{x * 32, y * 32, 99, 128};
         })},
        {"chessboard", Drawn([=](int x, int y) {
             return chess(x, y) ? Pixel{255, 255, 255} : Pixel{0, 0, 0};
         })},
        {"columns", Drawn([](int x, int) {
             return x % 2 != 0 ? Pixel{255, 255, 255} : Pixel{0, 0, 0};
         })},
        {"red and cyan", Drawn([=](int x, int y) {
             return chess(x, y) ? Pixel{255, 0, 0} : Pixel{0, 255, 255};
         })},
        {"next to each other", Drawn([=](int x, int y) {
             return chess(x, y) ? Pixel{100, 100, 100} : Pixel{101, 100, 100};
         })},
        {"one line", Drawn([](int x, int y) {
             return Pixel{(x + y) * 16, 255 - (x + y) * 16, 7};
         })},
        {"red line", Drawn([](int x, int y) {
             return Pixel{(x + y) * 16, 0, 0};
         })},
        {"one odd pixel", Drawn([](int x, int y) {
             return x == 5 && y == 6 ? Pixel{255, 0, 255} : Pixel{0, 255, 0};
         })},
        {"one seen pixel", Drawn([](int x, int y) {
             return x == 5 && y == 6 ? Pixel{255, 0, 255} : Pixel{0, 255, 0, 0};
         })},
        {"alpha chessboard", Drawn([=](int x, int y) {
             return chess(x, y) ? Pixel{10, 20, 30, 255} : Pixel{10, 20, 30, 0};
         })},
    };
}

Bytes Encoded(const Coder& coder, const Picture& picture)
{
    Bytes level(coder.levelBytes(picture.width, picture.height), 0xCD);
    EXPECT_EQ(coder.code(picture.pixels.data(), level.data(), picture.width, picture.height), level.size())
        << coder.name;
    return level;
}

// The encoders of all formats for every instruction set, the portable one first.
std::vector<std::vector<Coder>> EncodersBySet(Quality quality, Plugin::Dithering dithering)
{
    std::vector<std::vector<Coder>> sets;
    for (const InstructionSet set : PluginTest::SupportedSets())
        PluginTest::AddEncoders(quality, set, dithering, sets.emplace_back());
    return sets;
}

void ExpectEqualBytes(Quality quality, Plugin::Dithering dithering)
{
    const auto sets = EncodersBySet(quality, dithering);
    for (const auto& [name, picture] : HardPictures())
        for (std::size_t i = 0; i < sets[0].size(); ++i) {
            const Bytes wanted = Encoded(sets[0][i], picture);
            for (std::size_t set = 1; set < sets.size(); ++set)
                ASSERT_EQ(Encoded(sets[set][i], picture), wanted) << sets[set][i].name << ", " << name;
        }
}

class EveryHardPicture : public testing::TestWithParam<Quality> {};

TEST_P(EveryHardPicture, GivesTheSameBytesWithEveryInstructionSet)
{
    ExpectEqualBytes(GetParam(), Plugin::Dithering::None);
}

INSTANTIATE_TEST_SUITE_P(Level, EveryHardPicture,
                         testing::Values(Quality::Fast, Quality::Normal, Quality::High, Quality::Best));

TEST(HardPicture, GivesTheSameBytesWithEveryInstructionSetWhenDithered)
{
    for (const Plugin::Dithering dithering : {Plugin::Dithering::ErrorDiffusion, Plugin::Dithering::Ordered})
        ExpectEqualBytes(Quality::Fast, dithering);
}

TEST(HardPicture, OfBlackOrWhiteComesBackExactlyAtEveryLevel)
{
    for (const Quality quality : {Quality::Fast, Quality::Normal, Quality::High, Quality::Best})
        for (const int value : {0, 255}) {
            const Picture flat = PluginTest::Solid(kSide, kSide, value, value, value, 255);
            for (const Dxt::Variant variant : PluginTest::kEveryVariant) {
                const Bytes blocks = Encoded(PluginTest::DxtEncoder({variant, quality}), flat);
                Bytes shown(flat.pixels.size());
                Dxt::Decompress(blocks.data(), shown.data(), kSide, kSide, variant);
                EXPECT_EQ(shown, flat.pixels);
            }
            const Bytes etc1 = Encoded(PluginTest::Etc1Encoder({quality}), flat);
            Bytes shown(flat.pixels.size());
            Etc1::Decompress(etc1.data(), shown.data(), kSide, kSide);
            EXPECT_EQ(shown, flat.pixels);
            for (const std::uint32_t bits : {2U, 4U}) {
                Pvrtc::EncodeOptions options;
                options.bitsPerPixel = bits;
                options.quality = quality;
                const Bytes level = Encoded(PluginTest::PvrtcEncoder(options), flat);
                Pvrtc::PvrtcDecode(level.data(), shown.data(), kSide, kSide, bits);
                EXPECT_EQ(shown, flat.pixels);
            }
        }
}

// The fastest level only looks at the box around the colours.
TEST(HardPicture, OfTwoColoursThatTheFormatHasComesBackExactlyInDxt)
{
    for (const Quality quality : {Quality::Normal, Quality::High, Quality::Best})
        for (const char* const name : {"chessboard", "columns", "red and cyan"}) {
            const Picture picture = HardPictures().at(name);
            for (const Dxt::Variant variant : {Dxt::Variant::Dxt1, Dxt::Variant::Dxt5}) {
                const Bytes blocks = Encoded(PluginTest::DxtEncoder({variant, quality}), picture);
                Bytes shown(picture.pixels.size());
                Dxt::Decompress(blocks.data(), shown.data(), kSide, kSide, variant);
                EXPECT_EQ(shown, picture.pixels) << name;
            }
        }
}
}  // namespace
