#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "plugins/common/BlockLevel.h"
#include "plugins/common/ErrorDiffusion.h"
#include "plugins/common/PluginInfo.h"

namespace {
std::vector<std::u16string> ReadList(const char16_t* list)
{
    std::vector<std::u16string> names;
    while (*list != 0) {
        names.emplace_back(list);
        list += names.back().size() + 1;
    }
    return names;
}

TEST(PluginInterface, ListsTheFourQualityLevelsWithTheDefaultFirst)
{
    const std::vector<std::u16string> names{u"Normal", u"Fast", u"High", u"Best"};
    EXPECT_TRUE(ReadList(Plugin::kQualityNames) == names);
}

TEST(PluginInterface, ListsNoDitheringFirst)
{
    const std::vector<std::u16string> names{u"None", u"Error diffusion"};
    EXPECT_TRUE(ReadList(Plugin::kDitheringNames) == names);
}

TEST(PluginInterface, TakesTheQualityFromTheLowestFourBits)
{
    EXPECT_EQ(Plugin::QualityOf(0), Plugin::Quality::Normal);
    EXPECT_EQ(Plugin::QualityOf(1), Plugin::Quality::Fast);
    EXPECT_EQ(Plugin::QualityOf(32 + 256 + 2), Plugin::Quality::High);
    EXPECT_EQ(Plugin::QualityOf(16 + 3), Plugin::Quality::Best);
}

TEST(PluginInterface, TakesAQualityBehindTheListForNormal)
{
    EXPECT_EQ(Plugin::QualityOf(4), Plugin::Quality::Normal);
    EXPECT_EQ(Plugin::QualityOf(15), Plugin::Quality::Normal);
}

TEST(PluginInterface, AnswersTheFourTextsAndNothingElse)
{
    constexpr Plugin::Texts kTexts{u"q\0", u"d\0", u"name", u"about"};
    EXPECT_EQ(Plugin::TextFor(kTexts, 0), nullptr);
    EXPECT_EQ(Plugin::TextFor(kTexts, 1), kTexts.qualityNames);
    EXPECT_EQ(Plugin::TextFor(kTexts, 2), kTexts.ditheringNames);
    EXPECT_EQ(Plugin::TextFor(kTexts, 3), kTexts.displayName);
    EXPECT_EQ(Plugin::TextFor(kTexts, 4), kTexts.description);
    EXPECT_EQ(Plugin::TextFor(kTexts, 5), nullptr);
}

TEST(PluginInterface, CountsWholeBlocksInALevel)
{
    EXPECT_EQ(Plugin::LevelBytes(1, 1, 8), 8U);
    EXPECT_EQ(Plugin::LevelBytes(4, 4, 16), 16U);
    EXPECT_EQ(Plugin::LevelBytes(8, 2, 8), 16U);
    EXPECT_EQ(Plugin::LevelBytes(5, 5, 8), 32U);
    EXPECT_EQ(Plugin::LevelBytes(512, 256, 16), 131072U);
}

TEST(PluginInterface, RefusesLevelsThatDoNotFitTheInterface)
{
    EXPECT_EQ(Plugin::LevelBytes(0, 4, 8), 0U);
    EXPECT_EQ(Plugin::LevelBytes(4, 0, 8), 0U);
    EXPECT_EQ(Plugin::LevelBytes(0x8000, 0x8000, 8), 0U);
    EXPECT_EQ(Plugin::LevelBytes(0xFFFFFFFF, 0xFFFFFFFF, 8), 0U);
    // One pixel wide: 2^30 - 1 rows of pixels fit, but their 2^28 blocks of 16 bytes do not.
    EXPECT_EQ(Plugin::LevelBytes(1, 0x3FFFFFFF, 16), 0U);
    EXPECT_EQ(Plugin::LevelBytes(1, 0x3FFFFFFF, 8), 0x80000000U);
}

TEST(ErrorDiffusion, PassesChannelsOfEightBitsUnchanged)
{
    Plugin::CErrorDiffusion diffusion(2, {8, 8, 8, 8});
    const std::vector<std::uint8_t> row{1, 2, 3, 4, 250, 251, 252, 253};
    std::vector<std::uint8_t> out(8);
    diffusion.NextRow(row.data(), out.data());
    EXPECT_EQ(out, row);
}

TEST(ErrorDiffusion, SpreadsTheErrorToTheRightAndBelow)
{
    // One bit: 100 becomes 0 and leaves 100; its right neighbour gets 7 sixteenths, 43.75, and becomes 144,
    // so 255.
    Plugin::CErrorDiffusion diffusion(2, {1, 8, 8, 8});
    const std::vector<std::uint8_t> row{100, 9, 9, 9, 100, 9, 9, 9};
    std::vector<std::uint8_t> out(8);
    diffusion.NextRow(row.data(), out.data());
    EXPECT_EQ(out, (std::vector<std::uint8_t>{0, 9, 9, 9, 255, 9, 9, 9}));
    // Below the first: 5 sixteenths of 100 and 3 of -111, so 110 and 0. Below the second: 1 of 100, 5 of -111
    // and 7 of 110 make 120, so 0.
    diffusion.NextRow(row.data(), out.data());
    EXPECT_EQ(out, (std::vector<std::uint8_t>{0, 9, 9, 9, 0, 9, 9, 9}));
}

TEST(ErrorDiffusion, KeepsTheMeanOfAFlatPicture)
{
    constexpr std::size_t kSide = 64;
    Plugin::CErrorDiffusion diffusion(kSide, {1, 1, 1, 1});
    std::vector<std::uint8_t> row(kSide * 4, 77);
    double sum = 0;
    for (std::size_t y = 0; y < kSide; ++y) {
        std::vector<std::uint8_t> out(kSide * 4);
        diffusion.NextRow(row.data(), out.data());
        for (const std::uint8_t value : out) {
            EXPECT_TRUE(value == 0 || value == 255);
            sum += value;
        }
    }
    EXPECT_NEAR(sum / (kSide * kSide * 4), 77, 2);
}
}  // namespace
