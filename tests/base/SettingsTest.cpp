#include "base/Settings.h"

#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"

TEST(Settings, ReadAndWriteKeysOfAFileThatNeedNotExist)
{
    const CTemporaryFolder folder;
    const auto settings = OpenSettings(folder / "mavrel.ini");
    EXPECT_EQ(settings->ReadInt(L"global", L"game", 7), 7);
    EXPECT_EQ(settings->ReadString(L"global", L"game"), L"");
    EXPECT_TRUE(settings->WriteInt(L"global", L"game", 2));
    EXPECT_TRUE(settings->WriteString(L"paths", L"last_open", L"\x4E2D"));
    EXPECT_EQ(settings->ReadInt(L"global", L"game", 7), 2);
    EXPECT_EQ(settings->ReadString(L"paths", L"last_open"), L"\x4E2D");
    EXPECT_TRUE(settings->IsOn(L"global", L"game", false));
    EXPECT_TRUE(settings->Delete(L"global", L"game"));
    EXPECT_EQ(settings->ReadInt(L"global", L"game", 7), 7);
}

TEST(Settings, ReadsLeadingDigitsAsNumbers)
{
    const CTemporaryFolder folder;
    const auto settings = OpenSettings(folder / "mavrel.ini");
    settings->WriteString(L"a", L"text", L"abc");
    settings->WriteString(L"a", L"mixed", L"12abc");
    settings->WriteString(L"a", L"negative", L"-5");
    EXPECT_EQ(settings->ReadInt(L"a", L"text", 7), 0);
    EXPECT_EQ(settings->ReadInt(L"a", L"mixed", 7), 12);
    EXPECT_EQ(settings->ReadInt(L"a", L"negative", 7), -5);
}

TEST(Settings, LieBesideTheProgram)
{
    EXPECT_EQ(SettingsPathOf(L"C:\\tools\\mavrel.exe"), L"C:\\tools\\mavrel.ini");
    EXPECT_EQ(SettingsPathOf(L"mavrel"), L"ini");
}
