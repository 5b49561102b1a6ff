#include "cli/Arguments.h"

#include <gtest/gtest.h>

namespace {

const OptionNames kKnown = {.flags = {L"--all"}, .withValue = {L"--out"}};

}  // namespace

TEST(Arguments, TakesOptionsAnywhere)
{
    const CArguments arguments({L"a", L"--out", L"folder", L"b", L"--all"}, kKnown);
    EXPECT_EQ(arguments.Words(), (std::vector<std::wstring>{L"a", L"b"}));
    EXPECT_TRUE(arguments.Has(L"--all"));
    EXPECT_EQ(arguments.Value(L"--out"), L"folder");
}

TEST(Arguments, KeepsEveryValueOfARepeatedOption)
{
    const CArguments arguments({L"--out", L"a", L"b", L"--out", L"c"}, kKnown);
    EXPECT_EQ(arguments.Values(L"--out"), (std::vector<std::wstring>{L"a", L"c"}));
    EXPECT_EQ(arguments.Value(L"--out"), L"c");
    EXPECT_TRUE(arguments.Values(L"--all").empty());
}

TEST(Arguments, TakesEverythingBehindTwoDashesAsWords)
{
    const CArguments arguments({L"--", L"--all"}, kKnown);
    EXPECT_EQ(arguments.Words(), std::vector<std::wstring>{L"--all"});
    EXPECT_FALSE(arguments.Has(L"--all"));
}

TEST(Arguments, RefusesAnOptionThatIsNotKnown)
{
    EXPECT_THROW(CArguments({L"--other"}, kKnown), CUsageError);
}

TEST(Arguments, RefusesAnOptionWithoutItsValue)
{
    EXPECT_THROW(CArguments({L"--out"}, kKnown), CUsageError);
}
