#include "app/MessagePattern.h"

#include <gtest/gtest.h>

namespace {

using Found = std::vector<std::wstring_view>;

TEST(MessagePattern, FindsWhatStoodForEachConversion)
{
    const CMessagePattern pattern(L"'%s' has %d items, %0.2f MB, 0x%X.");
    const auto found = pattern.Match(L"'a wall' has -12 items, 0.50 MB, 0x1AF.");
    ASSERT_TRUE(found);
    EXPECT_EQ(*found, (Found{L"a wall", L"-12", L"0.50", L"1AF"}));
}

TEST(MessagePattern, KnowsATextWithoutConversionsOnlyWhenItIsTheSame)
{
    const CMessagePattern pattern(L"Done!");
    EXPECT_TRUE(pattern.Match(L"Done!"));
    EXPECT_FALSE(pattern.Match(L"Done! "));
    EXPECT_FALSE(pattern.Match(L"Don"));
    EXPECT_FALSE(pattern.Match(L""));
}

TEST(MessagePattern, TakesATextThatLooksLikeTheRestOfTheFormat)
{
    const auto found = CMessagePattern(L"'%s' exists.").Match(L"'a' exists.' exists.");
    ASSERT_TRUE(found);
    EXPECT_EQ(*found, (Found{L"a' exists."}));
}

TEST(MessagePattern, TakesAnEmptyText)
{
    const auto found = CMessagePattern(L"'%s'").Match(L"''");
    ASSERT_TRUE(found);
    EXPECT_EQ(*found, (Found{L""}));
}

TEST(MessagePattern, TakesSeveralLinesOnlyWhereTheFormatHasSeveral)
{
    EXPECT_FALSE(CMessagePattern(L"Game: %s").Match(L"Game: one\nTotal: 5"));
    const auto found = CMessagePattern(L"%s\nContinue?").Match(L"Error:\n 5\nContinue?");
    ASSERT_TRUE(found);
    EXPECT_EQ(*found, (Found{L"Error:\n 5"}));
}

TEST(MessagePattern, RefusesANumberThatIsNone)
{
    EXPECT_FALSE(CMessagePattern(L"%d items").Match(L"no items"));
    EXPECT_FALSE(CMessagePattern(L"%d items").Match(L"- items"));
    EXPECT_FALSE(CMessagePattern(L"0x%x").Match(L"0xg"));
    EXPECT_FALSE(CMessagePattern(L"%c").Match(L""));
}

TEST(MessagePattern, ReadsNumbersThatAreFilledUp)
{
    EXPECT_EQ(*CMessagePattern(L"[%02d]").Match(L"[07]"), (Found{L"07"}));
    EXPECT_EQ(*CMessagePattern(L"[%5d]").Match(L"[   -7]"), (Found{L"   -7"}));
}

TEST(MessagePattern, TakesADoublePercentSignForOne)
{
    EXPECT_TRUE(CMessagePattern(L"100%%").Match(L"100%"));
    EXPECT_EQ(CMessagePattern(L"%d%%").Fill({L"5"}), L"5%");
}

TEST(MessagePattern, LeavesAPercentSignThatBeginsNoConversion)
{
    EXPECT_TRUE(CMessagePattern(L"5% of all, %").Match(L"5% of all, %"));
    EXPECT_EQ(CMessagePattern(L"%").Conversions().size(), 0U);
}

TEST(MessagePattern, FillsTextsInTheirOrderAndLeavesAConversionWithoutOne)
{
    EXPECT_EQ(CMessagePattern(L"%s: %0.3f MB").Fill({L"dxt", L"1.500"}), L"dxt: 1.500 MB");
    EXPECT_EQ(CMessagePattern(L"%s: %d").Fill({L"dxt"}), L"dxt: %d");
    EXPECT_EQ(CMessagePattern(L"none").Fill({L"too many"}), L"none");
}

TEST(MessagePattern, CountsTheCharactersThatEveryTextHas)
{
    EXPECT_EQ(CMessagePattern(L"%s is %d.").FixedLength(), 5U);
    EXPECT_EQ(CMessagePattern(L"%s").FixedLength(), 0U);
}

}  // namespace
