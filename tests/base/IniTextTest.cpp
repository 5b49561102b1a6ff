#include "base/IniText.h"

#include <gtest/gtest.h>

#include "tests/support/DatabaseBuilder.h"

TEST(IniText, FindsTheFirstMatchWithoutCase)
{
    const CIniText ini =
        CIniText::Parse(BytesOf("x=0\r\n[Global]\r\n Key = one \r\nkey=two\r\n[other]\nkey=three\n"));
    EXPECT_EQ(ini.Find(L"GLOBAL", L"KEY"), L"one");
    EXPECT_EQ(ini.Find(L"other", L"key"), L"three");
    EXPECT_FALSE(ini.Find(L"global", L"x"));
    EXPECT_FALSE(ini.Find(L"missing", L"key"));
}

TEST(IniText, KeepsEveryOtherLineWhenAValueChanges)
{
    CIniText ini = CIniText::Parse(BytesOf("; remark\r\n[a]\r\nk=1\r\n\r\n[b]\r\nk=2\r\n"));
    ini.Set(L"a", L"new", L"3");
    ini.Set(L"a", L"k", L"4");
    ini.Set(L"c", L"k", L"5");
    ini.Remove(L"b", L"k");
    EXPECT_EQ(TextOf(ini.Serialize()), "; remark\r\n[a]\r\nk=4\r\nnew=3\r\n\r\n[b]\r\n[c]\r\nk=5\r\n");
}

TEST(IniText, WritesANewTextAsUtf16)
{
    CIniText ini;
    ini.Set(L"a", L"k", L"\x4E2D");
    const auto bytes = ini.Serialize();
    ASSERT_GE(bytes.size(), 2U);
    EXPECT_EQ(bytes[0], std::byte{0xFF});
    EXPECT_EQ(bytes[1], std::byte{0xFE});
    EXPECT_EQ(CIniText::Parse(bytes).Find(L"a", L"k"), L"\x4E2D");
    EXPECT_EQ(CIniText::Parse(bytes).Serialize(), bytes);
}

TEST(IniText, SurvivesEveryTruncation)
{
    CIniText ini;
    ini.Set(L"section", L"key", L"value");
    auto bytes = ini.Serialize();
    while (!bytes.empty()) {
        bytes.pop_back();
        CIniText cut = CIniText::Parse(bytes);
        cut.Set(L"section", L"key", L"other");
        EXPECT_EQ(CIniText::Parse(cut.Serialize()).Find(L"section", L"key"), L"other");
    }
}
