#include "base/Text.h"

#include <gtest/gtest.h>

TEST(Text, WidensBytesWithoutSign)
{
    EXPECT_EQ(Widen("caf\xE9"), L"caf\x00E9");
    EXPECT_EQ(Narrow(L"caf\x00E9"), "caf\xE9");
}

TEST(Text, ConvertsUtf8BothWays)
{
    const std::string text = "a \xC3\xA9 \xE4\xB8\xAD \xF0\x9F\x98\x80";
    EXPECT_EQ(ToUtf8(FromUtf8(text)), text);
    EXPECT_EQ(FromUtf8("\xE4\xB8\xAD"), L"\x4E2D");
}

TEST(Text, KeepsBytesThatAreNotUtf8)
{
    for (const char* const text :
         {"\xFF", "a\x80z", "\xC0\xAF", "\xED\xA0\x80", "\xE4\xB8", "\xF5\x80\x80\x80"})
        EXPECT_EQ(ToUtf8(FromUtf8(text)), text);
}

TEST(Text, LowersAsciiLettersOnly)
{
    EXPECT_EQ(ToLowerAscii(L"AZaz\x00C9"), L"azaz\x00C9");
    EXPECT_EQ(ToUpperAscii(L"azAZ\x00E9"), L"AZAZ\x00E9");
}

TEST(Text, TrimsBlanksTabsAndLineEnds)
{
    EXPECT_EQ(Trim(L" \t a b\r\n"), L"a b");
    EXPECT_EQ(Trim(std::string_view(" \r\n")), "");
    EXPECT_EQ(Trim(std::string_view("\va")), "\va");
}

TEST(Text, CarriesPathsOfOtherScripts)
{
    EXPECT_EQ(FromPath(ToPath(L"\x4E2D/\x0416.txt")), L"\x4E2D/\x0416.txt");
}
