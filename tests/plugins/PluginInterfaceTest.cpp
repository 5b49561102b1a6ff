#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

#include "plugins/common/BlockLevel.h"
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

TEST(PluginInterface, ListsTheDitheringModesWithNoneFirst)
{
    const std::vector<std::u16string> names{u"None", u"Error diffusion", u"Ordered"};
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

TEST(PluginInterface, TakesTheDitheringFromBitsTwelveToFifteenWhenBitFourIsSet)
{
    EXPECT_EQ(Plugin::DitheringOf(0), Plugin::Dithering::None);
    EXPECT_EQ(Plugin::DitheringOf(0x2000), Plugin::Dithering::None);
    EXPECT_EQ(Plugin::DitheringOf(16 + 0x2000), Plugin::Dithering::Ordered);
    EXPECT_EQ(Plugin::DitheringOf(3 + 16 + 32 + 256 + 0x2000), Plugin::Dithering::Ordered);
}

TEST(PluginInterface, TakesDitheringWithoutAKnownModeForErrorDiffusion)
{
    EXPECT_EQ(Plugin::DitheringOf(16), Plugin::Dithering::ErrorDiffusion);
    EXPECT_EQ(Plugin::DitheringOf(16 + 0x1000), Plugin::Dithering::ErrorDiffusion);
    EXPECT_EQ(Plugin::DitheringOf(16 + 0x3000), Plugin::Dithering::ErrorDiffusion);
    EXPECT_EQ(Plugin::DitheringOf(16 + 0xF000), Plugin::Dithering::ErrorDiffusion);
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
    EXPECT_EQ(Plugin::TextFor(kTexts, 7), nullptr);
}

TEST(PluginInterface, SaysThatItTakesTheDitheringModeFromTheFlags)
{
    constexpr Plugin::Texts kTexts{u"q\0", u"d\0", u"name", u"about"};
    EXPECT_TRUE(Plugin::TextFor(kTexts, 6) == std::u16string_view(u"bits 12-15"));
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
}  // namespace
