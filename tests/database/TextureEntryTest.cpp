#include "database/TextureEntry.h"

#include <array>
#include <gtest/gtest.h>

#include "database/EntryLine.h"
#include "database/TextScan.h"

TEST(EntryLine, ReadsEveryKeyByItsCharacters)
{
    const TextureEntry entry = ParseEntryLine(
        "\"t\" camnorm=1 decalz=2 forcez=3 hassibling=4 mipmode=5 alphamode=6 cat=7 detailtile=8 format=9 "
        "hasbias=10 "
        "hasdetail=11 height=12 isdetail=13 width=14 streammode=15 img=0000beef png=DEADBEEF\n");
    EXPECT_EQ(entry.name, L"t");
    const std::array<std::uint32_t, kPropertyCount> expected = {
        0, 0, 1, 2, 3, 4, 5, 0, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 0xBEEF, 0xDEADBEEF};
    EXPECT_EQ(entry.values, expected);
    EXPECT_EQ(entry.nameHash, 119U) << "one letter: 116 + (116 >> 5)";
}

TEST(EntryLine, KeepsNoalphatestInTheTextOnly)
{
    TextureEntry entry = ParseEntryLine("\"tex\" width=64 height=64 noalphatest=1");
    EXPECT_EQ(entry.Value(Property::NoAlphaTest), 0U);
    EXPECT_EQ(EntryLine(entry), "\"tex\" width=64 height=64 noalphatest=1");
    SetProperty(entry, Property::NoAlphaTest, 1);
    EXPECT_EQ(entry.lineText, "\"tex\" width=64 height=64 noalphatest=1 noalphatest=1");
}

TEST(EntryLine, ReadsAnAlias)
{
    const TextureEntry entry = ParseEntryLine("\"a\" \"affiliate=two words\" hassibling=2\n");
    EXPECT_EQ(entry.affiliate, L"two words");
    EXPECT_EQ(entry.Value(Property::HasSibling), 2U);
    EXPECT_EQ(ParseEntryLine("\"a\" \"affiliate=open end\n").affiliate, L"open end");
    EXPECT_EQ(ParseEntryLine("\"a\" \"affil").affiliate, L"");
    EXPECT_EQ(ParseEntryLine("\"a\" \"affiliate=").affiliate, L"");
}

TEST(EntryLine, LetsTheLastOfRepeatedKeysWin)
{
    EXPECT_EQ(ParseEntryLine("\"a\" width=8 width=16").Value(Property::Width), 16U);
}

TEST(EntryLine, LeavesTheDefaultWhenAValueDoesNotScan)
{
    const TextureEntry entry = ParseEntryLine("\"a\" width=abc m=0 widthscale=2 mipmode= c=5 fx=1 h w=3");
    EXPECT_EQ(entry.Value(Property::Width), 0U);
    EXPECT_EQ(entry.Value(Property::MipMode), 1U);
    EXPECT_EQ(entry.Value(Property::Cat), 0U);
}

TEST(EntryLine, TakesTheWholeLineForANameWithoutClosingQuote)
{
    EXPECT_EQ(ParseEntryLine("\"open width=8\n").name, L"open width=8");
    EXPECT_EQ(ParseEntryLine("\"").name, L"");
}

TEST(TextScan, ScansNumbersAsTheCLibraryDoes)
{
    EXPECT_EQ(ScanDecimal("  +12x"), 12);
    EXPECT_EQ(ScanDecimal("-99999999999"), -2147483647 - 1);
    EXPECT_EQ(ScanDecimal("99999999999"), 2147483647);
    EXPECT_FALSE(ScanDecimal("-"));
    EXPECT_EQ(ScanHex("123456789"), 0x12345678U);
    EXPECT_EQ(ScanHex("0x1Fz"), 0x1FU);
    EXPECT_EQ(ScanHex("-1"), 0xFFFFFFFFU);
    EXPECT_FALSE(ScanHex("g"));
    EXPECT_EQ(ScanWord("  peds fast=1"), "peds");
}

TEST(TextureEntry, MovesAChangedPropertyToTheEnd)
{
    TextureEntry entry = ParseEntryLine("\"t\" width=8 height=8 cat=1");
    SetProperty(entry, Property::Cat, 12);
    EXPECT_EQ(entry.lineText, "\"t\" width=8 height=8 cat=12");
    SetProperty(entry, Property::Width, 16);
    EXPECT_EQ(entry.lineText, "\"t\" height=8 cat=12 width=16");
    SetProperty(entry, Property::Cat, 0);
    EXPECT_EQ(entry.lineText, "\"t\" height=8 width=16");
}

TEST(TextureEntry, NeverWritesTheDefaultMipmode)
{
    TextureEntry entry = ParseEntryLine("\"t\" width=8");
    SetProperty(entry, Property::MipMode, 0);
    EXPECT_EQ(entry.lineText, "\"t\" width=8 mipmode=0");
    SetProperty(entry, Property::MipMode, 1);
    EXPECT_EQ(entry.lineText, "\"t\" width=8");
}

TEST(TextureEntry, RemovesThePairEvenInsideALongerNumber)
{
    TextureEntry entry = ParseEntryLine("\"t\" cat=12 cat=1");
    SetProperty(entry, Property::Cat, 5);
    EXPECT_EQ(entry.lineText, "\"t\"2 cat=5");
}

TEST(TextureEntry, WritesHashesAsEightDigitsAndDecimalsSigned)
{
    EXPECT_EQ(PropertyPair(Property::Img, 0xBEEF), "img=0000beef");
    EXPECT_EQ(PropertyPair(Property::Cat, 0xFFFFFFFF), "cat=-1");
    EXPECT_EQ(PropertyFromKey("streammode"), Property::StreamMode);
    EXPECT_FALSE(PropertyFromKey("Width"));
}

TEST(TextureEntry, IgnoresNameAndAffiliateAsProperties)
{
    TextureEntry entry = ParseEntryLine("\"t\"");
    SetProperty(entry, Property::Name, 7);
    SetProperty(entry, Property::Affiliate, 7);
    EXPECT_EQ(entry.lineText, "\"t\"");
    EXPECT_EQ(entry.Value(Property::Name), 0U);
}

TEST(TextureEntry, RenamesEveryQuotedOccurrence)
{
    TextureEntry entry = ParseEntryLine("\"old\" note=\"old\" x=old");
    SetEntryName(entry, L"new");
    EXPECT_EQ(entry.lineText, "\"new\" note=\"new\" x=old");
    EXPECT_EQ(entry.name, L"new");
    entry = ParseEntryLine("\"radar\"");
    SetEntryName(entry, L"radar00");
    EXPECT_EQ(entry.nameHash, 0x32840275U);
}
