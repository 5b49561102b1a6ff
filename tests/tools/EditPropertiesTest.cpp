#include "tools/EditProperties.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/codec/TestDatabase.h"
#include "tests/database/DatabaseFixture.h"
#include "tests/support/FaultyFileSystem.h"
#include "tools/EditTextures.h"

namespace {

using testing::ElementsAre;
using testing::SizeIs;

/// Two categories, three textures and an alias.
CDatabaseBuilder Textures(bool framed = false)
{
    CDatabaseBuilder builder(framed);
    builder.Category("cat=0 name=Default onfoot=0 slow=0 fast=0 defaultstream=0");
    builder.Category("cat=1 name=walls onfoot=2 slow=3 fast=4 defaultformat=5 defaultstream=6");
    builder.Texture("brick").Picture("dxt", 0x11);
    builder.Texture("wood", " width=4 height=4 forcez=1").Picture("dxt", 0x22);
    builder.Alias("bark", "wood");
    builder.Texture("sand", " width=4 height=4 cat=1").Picture("dxt", 0x33);
    return builder;
}

constexpr std::uint32_t kBrick = 0;
constexpr std::uint32_t kWood = 1;
constexpr std::uint32_t kBark = 2;
constexpr std::uint32_t kSand = 3;
constexpr std::uint32_t kNoNumber = 0xDEADBEEF;

std::uint32_t Answer(Property property, std::wstring_view text)
{
    return ParseAnswer(property, text).value_or(kNoNumber);
}

/// A line that has `length` characters without its end.
std::string PairsUpTo(std::size_t length, std::string_view name)
{
    std::string pairs = " width=4 height=4";
    pairs.append(length - name.size() - 2 - pairs.size(), ' ');
    pairs.back() = '.';
    return pairs;
}

}  // namespace

TEST(PropertyValue, IsADecimalOrEightHexadecimalDigits)
{
    EXPECT_EQ(ValueText(Property::CamNorm, 1), L"1");
    EXPECT_EQ(ValueText(Property::StreamMode, 0xFFFFFFFF), L"-1");
    EXPECT_EQ(ValueText(Property::Img, 0xBEEF), L"0x0000beef");
    EXPECT_EQ(ValueText(Property::Png, 0), L"0x00000000");
    EXPECT_EQ(KeyText(Property::NoAlphaTest), L"noalphatest");
}

TEST(PropertyValue, IsReadBackAsDecimal)
{
    EXPECT_EQ(Answer(Property::Width, L"512"), 512U);
    EXPECT_EQ(Answer(Property::Width, L" 512\t"), 512U);
    EXPECT_EQ(Answer(Property::Format, L"-1"), 0xFFFFFFFFU);
    EXPECT_EQ(Answer(Property::Format, L"-2147483648"), 0x80000000U);
    EXPECT_EQ(Answer(Property::Format, L"4294967295"), 0xFFFFFFFFU);
    EXPECT_EQ(Answer(Property::Cat, L"4000"), 4000U) << "as typed, whether there is such a category or not";
}

TEST(PropertyValue, OfAHashIsReadBackAsHexadecimal)
{
    EXPECT_EQ(Answer(Property::Img, L"0x0000beef"), 0xBEEFU);
    EXPECT_EQ(Answer(Property::Img, L"0XBeef"), 0xBEEFU);
    EXPECT_EQ(Answer(Property::Png, L"10"), 0x10U);
    EXPECT_EQ(Answer(Property::Png, L"ffffffff"), 0xFFFFFFFFU);
}

TEST(PropertyValue, OfAFlagIsReducedToOneOrZero)
{
    for (const Property flag : {Property::CamNorm, Property::DecalZ, Property::ForceZ, Property::HasSibling,
                                Property::MipMode, Property::NoAlphaTest}) {
        EXPECT_TRUE(IsFlag(flag));
        EXPECT_EQ(Answer(flag, L"3"), 1U);
        EXPECT_EQ(Answer(flag, L"-1"), 1U);
        EXPECT_EQ(Answer(flag, L"0"), 0U);
    }
    EXPECT_FALSE(IsFlag(Property::Affiliate));
    EXPECT_FALSE(IsFlag(Property::AlphaMode));
    EXPECT_EQ(InvertedFlag(0), 1U);
    EXPECT_EQ(InvertedFlag(1), 0U);
    EXPECT_EQ(InvertedFlag(3), 0U);
}

TEST(PropertyValue, IsNothingWhenTheTextIsNoNumber)
{
    for (const wchar_t* text :
         {L"", L" ", L"-", L"--1", L"+1", L"three", L"1.5", L"12abc", L"1 2", L"4294967296", L"-2147483649",
          L"99999999999999999999999999", L"0x10", L"\u0661"}) {
        EXPECT_FALSE(ParseAnswer(Property::Width, text)) << ToUtf8(text);
        EXPECT_FALSE(ParseAnswer(Property::CamNorm, text)) << ToUtf8(text);
    }
    for (const wchar_t* text : {L"", L"0x", L"-1", L"xyz", L"0x123456789", L"000000001", L"12 34"})
        EXPECT_FALSE(ParseAnswer(Property::Img, text)) << ToUtf8(text);
}

TEST(PropertyValue, IsComparedAcrossTextures)
{
    CDatabaseFixture database(Textures());
    const std::uint32_t two[] = {kBrick, kSand};
    const std::uint32_t all[] = {kBrick, kWood, kSand};
    EXPECT_TRUE(HaveValue(*database, two, Property::ForceZ, 0));
    EXPECT_FALSE(HaveValue(*database, two, Property::ForceZ, 1));
    EXPECT_FALSE(HaveValue(*database, all, Property::ForceZ, 0));
    EXPECT_TRUE(HaveValue(*database, all, Property::Width, 4));
}

TEST(ChangeTextureProperty, SetsEveryTextureAndSavesTheList)
{
    CDatabaseFixture database(Textures());
    const std::uint32_t textures[] = {kBrick, kSand};
    ChangeTextureProperty(*database, textures, Property::AlphaMode, 2);
    EXPECT_EQ(database.ListText(),
              "cat=0 name=Default onfoot=0 slow=0 fast=0 defaultstream=0\r\n"
              "cat=1 name=walls onfoot=2 slow=3 fast=4 defaultformat=5 defaultstream=6\r\n"
              "\"brick\" width=4 height=4 alphamode=2\r\n"
              "\"wood\" width=4 height=4 forcez=1\r\n"
              "\"bark\" \"affiliate=wood\"\r\n"
              "\"sand\" width=4 height=4 cat=1 alphamode=2\r\n");
    EXPECT_EQ(database->Entry(kSand).Value(Property::AlphaMode), 2U);
}

TEST(ChangeTextureProperty, OfAnAliasSetsOnlyHasSibling)
{
    CDatabaseFixture database(Textures());
    const std::uint32_t textures[] = {kBrick, kBark};
    ChangeTextureProperty(*database, textures, Property::CamNorm, 1);
    EXPECT_EQ(database->Entry(kBrick).Value(Property::CamNorm), 1U);
    EXPECT_EQ(database->Entry(kBark).Value(Property::CamNorm), 0U);
    ChangeTextureProperty(*database, textures, Property::HasSibling, 1);
    EXPECT_NE(database.ListText().find("\"brick\" width=4 height=4 camnorm=1 hassibling=1\r\n"),
              std::string::npos);
    EXPECT_NE(database.ListText().find("\"bark\" \"affiliate=wood\" hassibling=1\r\n"), std::string::npos);
}

TEST(ChangeTextureProperty, NeverTouchesNameAndAffiliate)
{
    CDatabaseFixture database(Textures());
    const std::string before = database.ListText();
    const std::uint32_t textures[] = {kBrick, kBark};
    ChangeTextureProperty(*database, textures, Property::Name, 1);
    ChangeTextureProperty(*database, textures, Property::Affiliate, 1);
    EXPECT_EQ(database.ListText(), before);
    EXPECT_EQ(database->Entry(kBrick).Value(Property::Name), 0U);
    EXPECT_FALSE(CanChange(database->Entry(kBrick), Property::Affiliate));
    EXPECT_TRUE(CanChange(database->Entry(kBrick), Property::Cat));
    EXPECT_FALSE(CanChange(database->Entry(kBark), Property::Cat));
    EXPECT_TRUE(CanChange(database->Entry(kBark), Property::HasSibling));
}

TEST(ChangeTextureProperty, TakesACategoryThatDoesNotExist)
{
    CDatabaseFixture database(Textures());
    const std::uint32_t textures[] = {kBrick};
    ChangeTextureProperty(*database, textures, Property::Cat, 70);
    EXPECT_NE(database.ListText().find("\"brick\" width=4 height=4 cat=70\r\n"), std::string::npos);
    EXPECT_EQ(database->CategoryName(70), L"");
}

// Refusals and failures.

TEST(ChangeTextureProperty, ChangesNothingWhenOneLineWouldBeTooLong)
{
    CDatabaseBuilder builder;
    builder.Category("cat=0 name=Default");
    builder.Texture("short").Picture("dxt", 0x11);
    builder.Texture("long", PairsUpTo(120, "long")).Picture("dxt", 0x22);
    CDatabaseFixture database(builder);
    const auto before = database.Files();
    const std::uint32_t both[] = {0, 1};
    EXPECT_EQ(ErrorOf([&] { ChangeTextureProperty(*database, both, Property::HasBias, 1); }),
              L"Texture line is too long.");
    EXPECT_EQ(database.Files(), before);
    EXPECT_EQ(database->Entry(0).Value(Property::HasBias), 0U);
    EXPECT_EQ(database->Entry(1).Value(Property::HasBias), 0U);
    // Six characters are left: " cat=1" just fits.
    ChangeTextureProperty(*database, both, Property::Cat, 1);
    EXPECT_EQ(database->Entry(1).Value(Property::Cat), 1U);
    database.Reopen();
    EXPECT_EQ(database->Entry(1).Value(Property::Cat), 1U);
}

TEST(ChangeTextureProperty, LeavesEntriesAsTheyWereWhenTheListCannotBeWritten)
{
    for (std::uint32_t failing = 0;; ++failing) {
        CFaultyFileSystem files(1000);
        CDatabaseFixture database(Textures().Files("textures"), files);
        const std::string before = database.ListText();
        files.Allow(failing);
        const std::uint32_t textures[] = {kBrick, kSand};
        try {
            ChangeTextureProperty(*database, textures, Property::AlphaMode, 2);
        } catch (const CError&) {
            EXPECT_EQ(database->Entry(kBrick).Value(Property::AlphaMode), 0U) << failing;
            EXPECT_EQ(database->Entry(kSand).lineText.find("alphamode"), std::string::npos) << failing;
            EXPECT_EQ(database.ListText(), before) << failing;
            continue;
        }
        EXPECT_EQ(database->Entry(kBrick).Value(Property::AlphaMode), 2U);
        EXPECT_GT(failing, 0U);
        break;
    }
}

TEST(ChangeTextureProperty, RefusesAnEntryThatDoesNotExist)
{
    CDatabaseFixture database(Textures());
    const auto before = database.Files();
    const PropertyChange changes[] = {{kBrick, Property::CamNorm, 1}, {99, Property::CamNorm, 1}};
    EXPECT_THROW(database->ChangeProperties(changes), CError);
    EXPECT_EQ(database.Files(), before);
    EXPECT_EQ(database->Entry(kBrick).Value(Property::CamNorm), 0U);
}

// Categories.

TEST(CategoryProperty, HasAKeyAValueAndAField)
{
    CDatabaseFixture database(Textures());
    const TextureCategory& walls = database->Categories()[1];
    std::vector<std::wstring> shown;
    for (const CategoryProperty property : kCategoryProperties)
        shown.push_back(std::wstring(KeyText(property)) + L"=" + ValueText(walls, property));
    EXPECT_THAT(shown, ElementsAre(L"name=walls", L"cat=1", L"onfoot=2", L"slow=3", L"fast=4",
                                   L"defaultformat=5", L"defaultstream=6"));
    EXPECT_EQ(CategoryPropertyFromKey(L"slow"), CategoryProperty::Slow);
    EXPECT_FALSE(CategoryPropertyFromKey(L"Slow"));
    EXPECT_FALSE(CanChange(CategoryProperty::Name));
    EXPECT_FALSE(CanChange(CategoryProperty::Cat));
    EXPECT_TRUE(CanChange(CategoryProperty::DefaultStream));
}

TEST(CategoryProperty, IsReadBackAsASignedDecimal)
{
    EXPECT_EQ(ParseCategoryNumber(L"7"), 7);
    EXPECT_EQ(ParseCategoryNumber(L"-2147483648"), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(ParseCategoryNumber(L"2147483647"), std::numeric_limits<std::int32_t>::max());
    for (const wchar_t* text : {L"", L"2147483648", L"-2147483649", L"seven", L"7 ", L"0x7"})
        EXPECT_FALSE(ParseCategoryNumber(text)) << ToUtf8(text);
}

TEST(CategoryProperty, IsStoredAndSavedWhenItChanged)
{
    CDatabaseFixture database(Textures());
    EXPECT_TRUE(ChangeCategoryProperty(*database, 1, CategoryProperty::OnFoot, -5));
    EXPECT_EQ(database->Categories()[1].onfoot, -5);
    EXPECT_NE(database.ListText().find("cat=1 name=walls onfoot=-5 slow=3 fast=4 defaultformat=5"),
              std::string::npos);
}

TEST(CategoryProperty, IsNotSavedWhenItStaysTheSameOrMayNotChange)
{
    CDatabaseFixture database(Textures());
    const auto before = database.Files();
    EXPECT_FALSE(ChangeCategoryProperty(*database, 1, CategoryProperty::OnFoot, 2));
    EXPECT_FALSE(ChangeCategoryProperty(*database, 1, CategoryProperty::Cat, 9));
    EXPECT_FALSE(ChangeCategoryProperty(*database, 1, CategoryProperty::Name, 9));
    EXPECT_FALSE(ChangeCategoryProperty(*database, 7, CategoryProperty::Slow, 9));
    EXPECT_EQ(database.Files(), before);
}

TEST(CategoryProperty, IsRefusedWhenTheLineWouldBeTooLong)
{
    CDatabaseBuilder builder;
    builder.Category("cat=0 name=" + std::string(63, 'n') + " slow=1234567 fast=0").Texture("brick");
    CDatabaseFixture database(builder);
    const auto before = database.Files();
    EXPECT_EQ(ErrorOf([&] { ChangeCategoryProperty(*database, 0, CategoryProperty::Fast, -2147483647); }),
              L"Texture line is too long.");
    EXPECT_EQ(database.Files(), before);
    EXPECT_EQ(database->Categories()[0].fast, 0);
}

// Details.

TEST(DetailNames, AreTheBuiltInOnesOfTheGame)
{
    const CMemorySettings settings;
    CDatabaseFixture framed(Textures(true));
    EXPECT_THAT(DetailNames(settings, *framed),
                ElementsAre(L"Asphalt", L"Grass", L"Sand", L"Water", L"Bark", L"Stucco", L"Rock", L"Fabric",
                            L"Concrete", L"WoodHoriz", L"WoodVert", L"Bark2", L"Gravel", L"Darken"));
    CDatabaseFixture raw(Textures(false));
    EXPECT_THAT(DetailNames(settings, *raw), ElementsAre(L"Asphalt", L"Concrete", L"Grass", L"Sand", L"Water",
                                                         L"Bark", L"Stucco", L"Rock", L"Fabric"));
}

TEST(DetailNames, ComeFromTheSettings)
{
    CMemorySettings settings;
    settings.WriteString(L"details", L"gtasa", L"Dust||Snow|");
    settings.WriteString(L"details", L"gtavc", L"Mud");
    CDatabaseFixture framed(Textures(true));
    EXPECT_THAT(DetailNames(settings, *framed), ElementsAre(L"Dust", L"", L"Snow"));
    CDatabaseFixture raw(Textures(false));
    EXPECT_THAT(DetailNames(settings, *raw), ElementsAre(L"Mud"));
}

TEST(DetailNames, AreTheOnesOfViceCityWhenTheGameIsNotKnown)
{
    const CMemorySettings settings;
    CTestDatabase empty({CacheIndex::Dxt}, StreamMode::Auto);
    EXPECT_THAT(DetailNames(settings, *empty), SizeIs(9));
    CDatabaseBuilder builder;
    builder.Texture("brick");  // and no cache at all
    CDatabaseFixture without(builder);
    EXPECT_THAT(DetailNames(settings, *without), SizeIs(9));
}

TEST(DetailNames, AreAsManyAsTheMenuHasCommandsFor)
{
    CMemorySettings settings;
    settings.WriteString(L"details", L"gtavc", L"1|2|3|4|5|6|7|8|9|10|11|12|13|14|15|16|17|18|19|20");
    CDatabaseFixture database(Textures());
    const auto names = DetailNames(settings, *database);
    ASSERT_THAT(names, SizeIs(18));
    EXPECT_EQ(names.back(), L"18");
}

TEST(SetDetail, GivesEverySelectedTextureTheDetailAliasesToo)
{
    CDatabaseFixture database(Textures());
    const std::uint32_t textures[] = {kWood, kBark};
    SetDetail(*database, textures, 3);
    EXPECT_NE(database.ListText().find("\"wood\" width=4 height=4 forcez=1 hasdetail=3\r\n"),
              std::string::npos);
    EXPECT_NE(database.ListText().find("\"bark\" \"affiliate=wood\" hasdetail=3\r\n"), std::string::npos);
    SetDetail(*database, textures, 0);
    EXPECT_NE(database.ListText().find("\"wood\" width=4 height=4 forcez=1\r\n"), std::string::npos);
}

TEST(MoveToCategory, LeavesEntriesAsTheyWereWhenTheListCannotBeWritten)
{
    for (std::uint32_t failing = 0;; ++failing) {
        CFaultyFileSystem files(1000);
        CDatabaseFixture database(Textures().Files("textures"), files);
        files.Allow(failing);
        const std::uint32_t textures[] = {kWood};
        try {
            MoveToCategory(*database, 1, textures);
        } catch (const CError&) {
            EXPECT_EQ(database->Entry(kWood).Value(Property::Cat), 0U) << failing;
            EXPECT_EQ(database->Entry(kBark).Value(Property::Cat), 0U) << failing;
            continue;
        }
        EXPECT_EQ(database->Entry(kBark).Value(Property::Cat), 1U);
        break;
    }
}
