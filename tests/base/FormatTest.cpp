#include "base/Format.h"

#include <gtest/gtest.h>

TEST(Format, PrintsTheConversionsOfTheProgram)
{
    EXPECT_EQ(Format(L"%s: %d of %u", L"name", -3, 4294967295U), L"name: -3 of 4294967295");
    EXPECT_EQ(Format(L"_0x%08x 0x%X", 0xBEEFU, 255), L"_0x0000beef 0xFF");
    EXPECT_EQ(Format(L"%.2f KB|%0.0f b|%5d|%-5s|", 1.005, 12.6, 42, L"ab"), L"1.00 KB|13 b|   42|ab   |");
    EXPECT_EQ(Format(L"100%% %c", L'x'), L"100% x");
}

TEST(Format, ShowsAnUnsignedValueAsSigned32BitsWithD)
{
    EXPECT_EQ(Format(L"%d %x", 0xFFFFFFFFU, 0xFFFFFFFFU), L"-1 ffffffff");
    EXPECT_EQ(Format(L"%lld", std::int64_t{5000000000}), L"5000000000");
}

TEST(Format, NeverReadsAnArgumentThatIsNotThere)
{
    EXPECT_EQ(Format(L"%s %d %q %"), L"%s %d %q %");
    EXPECT_EQ(Format(L"%s|%d", 5, L"text"), L"|0") << "an argument of the wrong kind";
}

TEST(Format, CutsAbsurdWidths)
{
    EXPECT_EQ(Format(L"%99999999999d", 1).size(), 512U);
    EXPECT_LE(Format(L"%.99999f", 1e308).size(), 1024U);
}
