#include "database/TextList.h"

#include <gtest/gtest.h>

#include "tests/support/DatabaseBuilder.h"

namespace {

TextList Parsed(std::string_view text)
{
    return ParseTextList(BytesOf(text));
}

std::string Rewritten(std::string_view text)
{
    TextList list = Parsed(text);
    return TextOf(SerializeTextList(list.categories, list.entries));
}

}  // namespace

TEST(TextList, ReadsALastLineWithoutLineEndLikeOneWithIt)
{
    const TextList list = Parsed("\"a\" width=8\r\n\"b\" width=16");
    ASSERT_EQ(list.entries.size(), 2U);
    EXPECT_EQ(list.entries[1].name, L"b");
    EXPECT_EQ(list.entries[1].Value(Property::Width), 16U);
    EXPECT_EQ(Parsed("\"a\" width=8\r\n\"b\" width=16\r\n").entries.size(), 2U);
}

TEST(TextList, SkipsEmptyLinesWithoutAWord)
{
    const TextList list = Parsed("\n\r\n\"a\"\n\n");
    EXPECT_EQ(list.entries.size(), 1U);
    EXPECT_TRUE(list.warnings.empty());
    EXPECT_FALSE(list.lostText);
}

TEST(TextList, WarnsOfUnknownLinesAndDropsThem)
{
    for (const char* const line : {" \"a\"\n", "\t\"a\"\n", "#x\n", "x=1\n", "   \n"}) {
        const TextList list = Parsed(std::string("\"first\"\n\n") + line);
        ASSERT_EQ(list.warnings.size(), 1U) << line;
        EXPECT_EQ(list.warnings[0].line, 2U) << "empty lines count too";
        EXPECT_EQ(list.entries.size(), 1U);
        EXPECT_TRUE(list.lostText);
    }
    EXPECT_EQ(Parsed("#x\r\n").warnings[0].message, L"Unknown line '#x\n' found while parsing TXT file.");
    EXPECT_EQ(Rewritten("#x\r\n\"a\" width=8\r\n"), "\"a\" width=8\r\n");
}

TEST(TextList, SplitsALineBehind127Characters)
{
    const std::string start = "\"long\" width=8 height=8 zfill=";
    const std::string whole = start + std::string(127 - start.size(), '1');
    EXPECT_TRUE(Parsed(whole + "\r\n\"b\"\r\n").warnings.empty());
    EXPECT_FALSE(Parsed(whole + "\r\n\"b\"\r\n").lostText);
    const TextList list = Parsed(whole + "234\r\n\"b\"\r\n");
    ASSERT_EQ(list.entries.size(), 2U);
    EXPECT_EQ(list.entries[0].lineText, whole);
    ASSERT_EQ(list.warnings.size(), 1U);
    EXPECT_EQ(list.warnings[0].message, L"Unknown line '234\n' found while parsing TXT file.");
    EXPECT_EQ(list.warnings[0].line, 1U);
    EXPECT_TRUE(list.lostText);
}

TEST(TextList, TakesTheRestOfASplitLineForAnEntryWhenItBeginsLikeOne)
{
    const std::string start = "\"long\"" + std::string(121, '-');
    const TextList list = Parsed(start + "\"false\" width=1\n");
    ASSERT_EQ(list.entries.size(), 2U);
    EXPECT_EQ(list.entries[1].name, L"false");
    EXPECT_TRUE(list.lostText) << "the rewrite keeps a copy";
}

TEST(TextList, CountsCharactersAfterTurningCrLfIntoLf)
{
    const std::string line = "\"" + std::string(125, 'x');  // 126 characters, and the LF
    const TextList list = Parsed(line + "\r\n\"b\"\r\n");
    ASSERT_EQ(list.entries.size(), 2U);
    EXPECT_EQ(list.entries[0].lineText, line + "\n");
}

TEST(TextList, EndsALineAtANul)
{
    const TextList list = Parsed(std::string_view("\"a\" width=8\0 height=4\n\"b\"\n", 26));
    ASSERT_EQ(list.entries.size(), 2U);
    EXPECT_EQ(list.entries[0].lineText, "\"a\" width=8");
    EXPECT_EQ(list.entries[0].Value(Property::Height), 0U);
    EXPECT_TRUE(list.lostText);
    EXPECT_TRUE(list.warnings.empty());
}

TEST(TextList, TakesALoneCrAndControlZAsOrdinaryCharacters)
{
    const TextList list = Parsed("\"a\rb\x1A\" width=8\n");
    ASSERT_EQ(list.entries.size(), 1U);
    EXPECT_EQ(list.entries[0].name, L"a\rb\x1A");
}

TEST(TextList, CutsATooLongNameInTheEntryAndKeepsItsLine)
{
    const std::string line = "\"" + std::string(70, 'x') + "\" width=8";
    const TextList list = Parsed(line + "\r\n\"b\"\r\n");
    ASSERT_EQ(list.entries.size(), 2U) << "dropping it would shift every later record";
    EXPECT_EQ(list.entries[0].name, std::wstring(63, L'x'));
    EXPECT_TRUE(list.entries[0].nameWasCut);
    EXPECT_EQ(list.entries[0].lineText, line + "\n");
    ASSERT_EQ(list.warnings.size(), 1U);
    EXPECT_EQ(list.warnings[0].line, 0U);
    EXPECT_TRUE(list.lostText);
}

TEST(TextList, WritesCategoriesBeforeEntriesWithCrLf)
{
    EXPECT_EQ(Rewritten("\"a\" width=8\ncat=0 name=Default\n \"dropped\"\n\"b\"  \t\n"),
              "cat=0 name=Default onfoot=0 slow=0 fast=0 defaultstream=0\r\n\"a\" width=8\r\n\"b\"\r\n");
}

TEST(TextList, GeneratesTheLineOfANewEntryInTheFixedOrder)
{
    TextureEntry entry =
        MakeEntry({.name = L"new", .width = 64, .height = 32, .category = 3, .alphaMode = 2});
    EXPECT_EQ(EntryLine(entry), "\"new\" alphamode=2 cat=3 height=32 width=64");
    TextureEntry every;
    every.name = L"every";
    for (std::size_t key = 2; key < kPropertyCount; ++key)
        every.values[key] = static_cast<std::uint32_t>(key);
    EXPECT_EQ(EntryLine(every),
              "\"every\" camnorm=2 decalz=3 forcez=4 hassibling=5 mipmode=6 noalphatest=7 alphamode=8 cat=9 "
              "detailtile=10 format=11 hasbias=12 hasdetail=13 height=14 isdetail=15 width=16 streammode=17 "
              "img=00000012 png=00000013");
    TextureEntry alias = MakeAlias(L"new", L"old");
    EXPECT_EQ(std::string(EntryLine(alias)), "\"new\" \"affiliate=old\"");
}

TEST(TextList, ReadsEveryTruncationOfAGoodList)
{
    const std::string text =
        "cat=1 name=peds onfoot=1 defaultformat=3 defaultstream=2\r\n\"a\" \"affiliate=b\" img=1f w=";
    for (std::size_t length = 0; length <= text.size(); ++length) {
        const std::vector<std::byte> cut = BytesOf(std::string_view(text).substr(0, length));
        EXPECT_LE(ParseTextList(cut).entries.size(), 1U);
    }
}

TEST(CategoryLine, IsWrittenBackUnchanged)
{
    const std::string line = "cat=2 name=peds onfoot=1 slow=0 fast=0 defaultstream=0";
    TextureCategory category = ParseCategoryLine(line);
    EXPECT_EQ(CategoryLine(category), line);
    category.defaultformat = 3;
    EXPECT_EQ(CategoryLine(category),
              "cat=2 name=peds onfoot=1 slow=0 fast=0 defaultformat=3 defaultstream=0");
    category.defaultformat = 0;
    category.defaultstream = 5;
    EXPECT_EQ(CategoryLine(category),
              "cat=2 name=peds onfoot=1 slow=0 fast=0 defaultformat=0 defaultstream=5");
}

TEST(CategoryLine, LetsAnEmptyNameSwallowTheNextWord)
{
    EXPECT_EQ(ParseCategoryLine("cat=1 name= onfoot=3").name, L"onfoot=3");
}

TEST(CategoryLine, ClampsNumbersAndStopsAtTheEnd)
{
    const TextureCategory category = ParseCategoryLine("cat=99999999999 slow=-5 fast=x d");
    EXPECT_EQ(category.cat, 2147483647);
    EXPECT_EQ(category.slow, -5);
    EXPECT_EQ(category.fast, 0);
}

TEST(CategoryLine, CutsATooLongName)
{
    const TextList list = Parsed("cat=0 name=" + std::string(70, 'n') + " onfoot=4\n");
    ASSERT_EQ(list.categories.size(), 1U);
    EXPECT_EQ(list.categories[0].name, std::wstring(63, L'n'));
    EXPECT_EQ(list.categories[0].onfoot, 4);
    EXPECT_EQ(list.warnings.size(), 1U);
}
