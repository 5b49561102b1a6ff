#include "codec/BuildNumber.h"

#include <gtest/gtest.h>

TEST(BuildNumber, IsFourHundredAndFifteen)
{
    EXPECT_EQ(BuildNumber(), 415U);
    EXPECT_EQ(BuildNumberOf("Jan 28 2014"), 415U);
}

TEST(BuildNumber, CountsTheDaysOfTheMonthItself)
{
    EXPECT_EQ(BuildNumberOf("Jan  1 2014"), 388U);
    EXPECT_EQ(BuildNumberOf("Feb 1 2014"), 416U);
    EXPECT_EQ(BuildNumberOf("Oct 1 2013"), 295U);
    EXPECT_EQ(BuildNumberOf("Dec 31 2013"), 387U);
}

TEST(BuildNumber, KnowsNoLeapYears)
{
    EXPECT_EQ(BuildNumberOf("Mar 1 2016"), BuildNumberOf("Feb 28 2016") + 4);
}

TEST(BuildNumber, IsZeroForATextThatIsNoDate)
{
    EXPECT_EQ(BuildNumberOf(""), 0U);
    EXPECT_EQ(BuildNumberOf("Foo 1 2014"), 0U);
    EXPECT_EQ(BuildNumberOf("Jan"), 0U);
    EXPECT_EQ(BuildNumberOf("January 28 2014"), 0U);
}
