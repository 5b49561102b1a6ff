#include "image/ImageTexts.h"

#include <gtest/gtest.h>

TEST(ImageTexts, ShowsBytesKilobytesAndMegabytes)
{
    EXPECT_EQ(FormatSize(0), L"0 b");
    EXPECT_EQ(FormatSize(1023), L"1023 b");
    EXPECT_EQ(FormatSize(1024), L"1.00 KB");
    EXPECT_EQ(FormatSize(1536), L"1.50 KB");
    EXPECT_EQ(FormatSize(1048575), L"1024.00 KB");
    EXPECT_EQ(FormatSize(1048576), L"1.00 MB");
    EXPECT_EQ(FormatSize(1073741823), L"1024.00 MB");
}

TEST(ImageTexts, ShowsNothingFromOneGigabyte)
{
    EXPECT_EQ(FormatSize(1073741824), L"");
    EXPECT_EQ(FormatSize(0xFFFFFFFF), L"");
}

TEST(ImageTexts, TakesTheTitleAfterTheLastBackslash)
{
    EXPECT_EQ(GetFileTitle(L"C:\\games\\road.01.png", true), L"road.01.png");
    EXPECT_EQ(GetFileTitle(L"C:\\games\\road.01.png", false), L"road.01");
    EXPECT_EQ(GetFileTitle(L"road.png", true), L"road.png");
    EXPECT_EQ(GetFileTitle(L"C:\\games\\", true), L"");
    EXPECT_EQ(GetFileTitle(L"", false), L"");
}

TEST(ImageTexts, GivesNoTitleToANameWithoutADot)
{
    EXPECT_EQ(GetFileTitle(L"road", false), L"");
    EXPECT_EQ(GetFileTitle(L"C:\\games.old\\road", false), L"");
    EXPECT_EQ(GetFileTitle(L"C:\\games.old\\road", true), L"road");
}

TEST(ImageTexts, KnowsTheBackslashOnly)
{
    EXPECT_EQ(GetFileTitle(L"/home/road.png", true), L"/home/road.png");
    EXPECT_EQ(GetFolder(L"/home/road.png"), L"");
}

TEST(ImageTexts, TakesTheExtensionAfterTheLastDot)
{
    EXPECT_EQ(GetFileExtension(L"C:\\a\\road.tar.PNG"), L"PNG");
    EXPECT_EQ(GetFileExtension(L"road."), L"");
    EXPECT_EQ(GetFileExtension(L"C:\\games.old\\road"), L"old\\road");
}

TEST(ImageTexts, TakesTheWholePathAsExtensionWithoutADot)
{
    EXPECT_EQ(GetFileExtension(L"C:\\games\\road"), L"C:\\games\\road");
    EXPECT_EQ(GetFileExtension(L""), L"");
}

TEST(ImageTexts, KeepsTheLastBackslashOfTheFolder)
{
    EXPECT_EQ(GetFolder(L"C:\\games\\road.png"), L"C:\\games\\");
    EXPECT_EQ(GetFolder(L"C:\\games\\"), L"C:\\games\\");
    EXPECT_EQ(GetFolder(L"road.png"), L"");
}
