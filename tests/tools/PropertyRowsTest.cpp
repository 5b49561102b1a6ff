#include "tools/PropertyRows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/database/DatabaseFixture.h"

namespace {

using testing::ElementsAre;

const PropertyRowTexts kTexts = {L"Original", L"%s size", L"no raster"};

CDatabaseBuilder Textures()
{
    CDatabaseBuilder builder;
    builder.Category("cat=0 name=Default onfoot=0 slow=0 fast=0 defaultstream=0");
    builder.Category("cat=1 name=walls onfoot=2 slow=3 fast=-4 defaultformat=5 defaultstream=6");
    builder.Cache("dxt").Cache("unc");
    builder.Texture("wood", " width=16 height=8 cat=1 decalz=3 img=0000beef")
        .Picture("dxt", 0x11, 16, 8)
        .Picture("unc", 0x12, 64, 32);
    builder.Alias("bark", "wood");
    builder.Alias("ghost", "nothing");
    builder.Texture("sand").Picture("dxt", 0x33);
    return builder;
}

std::vector<std::wstring> Lines(const std::vector<PropertyRow>& rows)
{
    std::vector<std::wstring> lines;
    for (const PropertyRow& row : rows)
        lines.push_back(row.label + L": " + row.text);
    return lines;
}

const PropertyRow& RowNamed(const std::vector<PropertyRow>& rows, std::wstring_view label)
{
    const auto found = std::ranges::find(rows, label, &PropertyRow::label);
    EXPECT_NE(found, rows.end());
    return *found;
}

}  // namespace

TEST(PropertyRows, OfATextureAreItsTwentyPropertiesItsOriginalAndItsCaches)
{
    CDatabaseFixture database(Textures());
    EXPECT_THAT(Lines(RowsOfTexture(*database, 0, kTexts)),
                ElementsAre(L"name: wood", L"affiliate: ", L"Original: ", L"camnorm: 0", L"decalz: 3",
                            L"forcez: 0", L"hassibling: 0", L"mipmode: 1", L"noalphatest: 0", L"alphamode: 0",
                            L"cat: 1", L"detailtile: 0", L"format: 0", L"hasbias: 0", L"hasdetail: 0",
                            L"height: 8", L"isdetail: 0", L"width: 16", L"streammode: 0", L"img: 0x0000beef",
                            L"png: 0x00000000", L"DXT: 16 x 8, RGBA 8888", L"DXT size: 512 B",
                            L"UNC: 64 x 32, RGBA 8888", L"UNC size: 8.000 KB"));
}

TEST(PropertyRows, OfAnAliasShowWhatItSharesAndLetOnlyHasSiblingChange)
{
    CDatabaseFixture database(Textures());
    const auto rows = RowsOfTexture(*database, 1, kTexts);
    EXPECT_EQ(RowNamed(rows, L"affiliate").text, L"wood");
    EXPECT_EQ(RowNamed(rows, L"Original").text, L"wood, ID: 00");
    EXPECT_EQ(RowNamed(rows, L"DXT").text, L"16 x 8, RGBA 8888");
    for (const PropertyRow& row : rows)
        EXPECT_EQ(row.canChange, row.label == L"hassibling") << ToUtf8(row.label);
}

TEST(PropertyRows, OfAnAliasOfNothingHaveNoOriginalAndNoRaster)
{
    CDatabaseFixture database(Textures());
    const auto rows = RowsOfTexture(*database, 2, kTexts);
    EXPECT_EQ(RowNamed(rows, L"affiliate").text, L"nothing");
    EXPECT_EQ(RowNamed(rows, L"Original").text, L"");
    EXPECT_EQ(RowNamed(rows, L"DXT").text, L"no raster");
    EXPECT_EQ(RowNamed(rows, L"UNC").text, L"no raster");
}

TEST(PropertyRows, SayWhichCacheHasNoRaster)
{
    CDatabaseFixture database(Textures());
    const auto rows = RowsOfTexture(*database, 3, kTexts);
    EXPECT_EQ(RowNamed(rows, L"DXT").text, L"4 x 4, RGBA 8888");
    EXPECT_EQ(RowNamed(rows, L"DXT size").text, L"64 B");
    EXPECT_EQ(RowNamed(rows, L"UNC").text, L"no raster");
    EXPECT_EQ(RowNamed(rows, L"UNC size").text, L"");
}

TEST(PropertyRows, TellFlagsNumbersAndFactsApart)
{
    CDatabaseFixture database(Textures());
    const auto rows = RowsOfTexture(*database, 0, kTexts);
    EXPECT_EQ(RowNamed(rows, L"name").kind, PropertyRowKind::Fact);
    EXPECT_FALSE(RowNamed(rows, L"name").canChange);
    EXPECT_EQ(RowNamed(rows, L"DXT").kind, PropertyRowKind::Fact);
    EXPECT_EQ(RowNamed(rows, L"decalz").kind, PropertyRowKind::Flag);
    EXPECT_EQ(RowNamed(rows, L"decalz").value, 3U);
    EXPECT_EQ(RowNamed(rows, L"decalz").property, 3U);
    EXPECT_EQ(RowNamed(rows, L"cat").kind, PropertyRowKind::Number);
    EXPECT_TRUE(RowNamed(rows, L"cat").canChange);
    EXPECT_EQ(RowNamed(rows, L"png").property, 19U);
}

TEST(PropertyRows, OfACategoryAreItsSevenProperties)
{
    CDatabaseFixture database(Textures());
    const auto rows = RowsOfCategory(*database, 1);
    EXPECT_THAT(Lines(rows), ElementsAre(L"name: walls", L"cat: 1", L"onfoot: 2", L"slow: 3", L"fast: -4",
                                         L"defaultformat: 5", L"defaultstream: 6"));
    for (const PropertyRow& row : rows)
        EXPECT_EQ(row.canChange, row.label != L"name" && row.label != L"cat") << ToUtf8(row.label);
    EXPECT_EQ(RowNamed(rows, L"fast").property, 4U);
}
