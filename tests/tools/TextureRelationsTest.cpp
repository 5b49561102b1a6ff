#include "tools/TextureRelations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/Format.h"
#include "tests/database/DatabaseFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

CDatabaseBuilder Roads()
{
    CDatabaseBuilder builder;
    builder.Category("cat=0 name=Default");
    builder.Texture("road_lae", " width=4 height=4 hassibling=1").Picture("dxt", 0x11);
    builder.Texture("roadx").Picture("dxt", 0x22);
    builder.Texture("road", " width=4 height=4 hassibling=1").Picture("dxt", 0x33);
    builder.Texture("wall_a_b").Picture("dxt", 0x44);
    builder.Alias("road_sfe", "wall_a_b");
    builder.Texture("wall").Picture("dxt", 0x55);
    builder.Alias("street", "road").Alias("ghost", "nothing").Alias("lane", "road");
    builder.Texture("ghost_a").Picture("dxt", 0x66);
    return builder;
}

std::vector<std::wstring> Lines(CTextureDatabase& database, RelationKind kind,
                                std::optional<std::uint32_t> index)
{
    const auto rows = RelatedTextures(database, kind, index);
    if (!rows)
        return {L"no list"};
    std::vector<std::wstring> lines;
    for (const RelatedTexture& row : *rows) {
        EXPECT_EQ(row.id, Format(L"%02d", row.index));
        lines.push_back(Format(L"%s %s %s [%s] [%s]", row.id, row.name, row.hasSibling ? L"yes" : L"no",
                               row.txd, row.aliasOf));
    }
    return lines;
}

}  // namespace

TEST(AliasList, HoldsEveryAliasInIndexOrder)
{
    CDatabaseFixture database(Roads());
    EXPECT_THAT(Lines(*database, RelationKind::Aliases, 2),
                ElementsAre(L"06 street no [] []", L"08 lane no [] []"));
}

TEST(AliasList, IsEmptyForATextureWithoutAliasesAndForNone)
{
    CDatabaseFixture database(Roads());
    EXPECT_THAT(Lines(*database, RelationKind::Aliases, 1), IsEmpty());
    EXPECT_THAT(Lines(*database, RelationKind::Aliases, std::nullopt), IsEmpty());
}

TEST(SiblingList, HoldsTheBaseAndItsSiblingsInIndexOrder)
{
    CDatabaseFixture database(Roads());
    // "roadx" does not belong to the family.
    const auto family =
        ElementsAre(L"00 road_lae yes [lae] []", L"02 road yes [N/A] []", L"04 road_sfe no [sfe] [wall_a_b]");
    EXPECT_THAT(Lines(*database, RelationKind::Siblings, 2), family);
    EXPECT_THAT(Lines(*database, RelationKind::Siblings, 0), family);
    EXPECT_THAT(Lines(*database, RelationKind::Siblings, 4), family);
}

TEST(SiblingList, StartsAtTheShortestNameThatExists)
{
    CDatabaseFixture database(Roads());
    // "wall_a" does not exist, and "wall" is the base all the same.
    EXPECT_THAT(Lines(*database, RelationKind::Siblings, 3),
                ElementsAre(L"03 wall_a_b no [a_b] []", L"05 wall no [N/A] []"));
}

TEST(SiblingList, OfATextureWithoutFamilyHoldsTheTexture)
{
    CDatabaseFixture database(Roads());
    EXPECT_THAT(Lines(*database, RelationKind::Siblings, 1), ElementsAre(L"01 roadx no [N/A] []"));
}

TEST(SiblingList, IsNotShownWithoutATexture)
{
    CDatabaseFixture database(Roads());
    EXPECT_THAT(Lines(*database, RelationKind::Siblings, std::nullopt), ElementsAre(L"no list"));
}

TEST(RelationLists, AreNotShownForAnAliasOfNothing)
{
    CDatabaseFixture database(Roads());
    EXPECT_THAT(Lines(*database, RelationKind::Aliases, 7), ElementsAre(L"no list"));
    EXPECT_THAT(Lines(*database, RelationKind::Siblings, 7), ElementsAre(L"no list"));
}
