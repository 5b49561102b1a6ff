#include "tools/RadarMap.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tools/RadarFixture.h"

namespace {

using testing::ElementsAre;

constexpr CacheIndex kDxt = CacheIndex::Dxt;

}  // namespace

TEST(RadarMap, NamesTilesWithTwoDigitsAtLeast)
{
    EXPECT_EQ(RadarTileName(0), L"radar00");
    EXPECT_EQ(RadarTileName(63), L"radar63");
    EXPECT_EQ(RadarTileName(143), L"radar143");
}

TEST(RadarMap, MakesTheSmallestGridThatHasRoom)
{
    const std::pair<std::uint32_t, std::uint32_t> sides[] = {
        {0, 0}, {1, 1}, {2, 2}, {4, 2}, {5, 3}, {10, 4}, {16, 4}, {17, 5}, {64, 8}, {65, 9}, {144, 12}};
    for (const auto& [count, side] : sides)
        EXPECT_EQ(RadarGridSide(count), side) << count;
    EXPECT_EQ(RadarGridSide(0xFFFFFFFF), 65536U);
}

TEST(RadarMap, CountsTilesUpToTheFirstGap)
{
    CRadarDatabase database;
    EXPECT_EQ(CountRadarTiles(*database), 0U);
    database.AddTiles(64);
    EXPECT_EQ(CountRadarTiles(*database), 64U);
    database->DeleteEntry(10, std::nullopt);
    EXPECT_EQ(CountRadarTiles(*database), 10U);
    database->DeleteEntry(0, std::nullopt);
    EXPECT_EQ(CountRadarTiles(*database), 0U);
}

TEST(RadarMap, CountsTilesWhereverTheyStandAndAliasesToo)
{
    CRadarDatabase database;
    database.Add(L"radar02", 8);
    database.Add(L"wall", 16);
    database.Add(L"radar00", 24);
    database->AddAlias(L"radar01", L"radar00");
    EXPECT_EQ(CountRadarTiles(*database), 3U);
    EXPECT_EQ(FindRadarTile(*database, 2), 0U);
    EXPECT_EQ(FindRadarTile(*database, 3), std::nullopt);
}

TEST(RadarMap, HasTwelveByTwelveTilesForSanAndreas)
{
    CRadarDatabase viceCity(StreamMode::Raw);
    CRadarDatabase sanAndreas(StreamMode::Framed);
    EXPECT_EQ(RadarLayoutOf(*sanAndreas, kDxt).Count(), 64U) << "without a texture nobody can tell";
    viceCity.Add(L"wall", 8);
    sanAndreas.Add(L"wall", 8);
    EXPECT_EQ(RadarLayoutOf(*viceCity, kDxt).Count(), 64U);
    EXPECT_EQ(RadarLayoutOf(*viceCity, kDxt).format, std::nullopt);
    EXPECT_EQ(RadarLayoutOf(*sanAndreas, kDxt).Count(), 144U);
    EXPECT_EQ(RadarLayoutOf(*sanAndreas, kDxt).format, CacheIndex::Unc);
}

TEST(RadarMap, AsksTheFirstTextureForItsGame)
{
    CRadarDatabase database(StreamMode::Framed);
    database.Add(L"wall", 8);
    database->SetForcedMode(StreamMode::Auto);
    EXPECT_EQ(RadarLayoutOf(*database, kDxt).side, 12U);
    EXPECT_EQ(RadarLayoutOf(*database, CacheIndex::Etc1).side, 8U) << "this cache is not there";
}

TEST(RadarMap, DescribesATileByItsRecordInTheCache)
{
    CRadarDatabase database;
    database.Add(L"wall", 8);
    database.Add(L"radar00", SolidPicture(8, 4, 8, 8, 8, 255));
    database->AddAlias(L"radar01", L"radar00");
    const RadarTile tile = DescribeRadarTile(*database, 0, kDxt);
    EXPECT_EQ(tile.index, 1U);
    EXPECT_EQ(tile.name, L"radar00");
    EXPECT_EQ(tile.Info(), L"8 x 4, RGBA 565");
    EXPECT_EQ(tile.aliasOf, L"");
    const RadarTile alias = DescribeRadarTile(*database, 1, kDxt);
    EXPECT_EQ(alias.index, 2U);
    EXPECT_EQ(alias.Info(), L"8 x 4, RGBA 565");
    EXPECT_EQ(alias.aliasOf, L"radar00");
}

TEST(RadarMap, LeavesTheMipFlagOutOfTheHeight)
{
    CRadarDatabase database;
    database.Settings().WriteInt(L"global", L"enable_mipmaps", 1);
    database.Add(L"radar00", 8, 16);
    EXPECT_EQ(DescribeRadarTile(*database, 0, kDxt).Info(), L"16 x 16, RGBA 565");
}

// ---- Joining ----

TEST(RadarMapPicture, HasNoPlanWithoutATileOrItsRaster)
{
    CRadarDatabase database;
    EXPECT_FALSE(PlanRadarMap(*database, kDxt));
    database->AddAlias(L"radar00", L"nothing");
    EXPECT_FALSE(PlanRadarMap(*database, kDxt)) << "an alias of nothing has no raster";
    EXPECT_FALSE(PlanRadarMap(*database, CacheIndex::Etc1));
}

TEST(RadarMapPicture, PutsTilesIntoRowsFromTheUpperLeft)
{
    CRadarDatabase database;
    for (std::uint32_t number = 0; number < 5; ++number)
        database.Add(RadarTileName(number), static_cast<std::uint8_t>(number * 16 + 8), 4);
    const auto plan = PlanRadarMap(*database, kDxt);
    ASSERT_TRUE(plan);
    const auto map = JoinRadarMap(*plan, database.Host(), database.Progress());
    ASSERT_TRUE(map);
    EXPECT_EQ(map->Width(), 12U);
    EXPECT_EQ(map->Height(), 12U);
    EXPECT_THAT(PixelAt(*map, 0, 0), ElementsAre(8, 8, 8, 255));
    EXPECT_THAT(PixelAt(*map, 3, 3), ElementsAre(8, 8, 8, 255));
    EXPECT_THAT(PixelAt(*map, 4, 0), ElementsAre(24, 24, 24, 255));
    EXPECT_THAT(PixelAt(*map, 11, 3), ElementsAre(40, 40, 40, 255));
    EXPECT_THAT(PixelAt(*map, 0, 4), ElementsAre(56, 56, 56, 255));
    EXPECT_THAT(PixelAt(*map, 7, 7), ElementsAre(72, 72, 72, 255));
    EXPECT_THAT(PixelAt(*map, 8, 4), ElementsAre(0, 0, 0, 0)) << "no tile lies here";
    EXPECT_THAT(PixelAt(*map, 11, 11), ElementsAre(0, 0, 0, 0));
    EXPECT_THAT(database.Progress().reports,
                ElementsAre(L"0/100 radar00", L"20/100 radar01", L"40/100 radar02", L"60/100 radar03",
                            L"80/100 radar04"));
}

TEST(RadarMapPicture, ScalesTilesOfAnotherSize)
{
    CRadarDatabase database;
    database.Add(L"radar00", 8, 4);
    database.Add(L"radar01", 16, 16);
    database.Add(L"radar02", SolidPicture(2, 8, 24, 24, 24, 255));
    const auto map =
        JoinRadarMap(PlanRadarMap(*database, kDxt).value(), database.Host(), database.Progress());
    ASSERT_TRUE(map);
    EXPECT_EQ(map->Width(), 8U);
    EXPECT_THAT(PixelAt(*map, 7, 3), ElementsAre(16, 16, 16, 255));
    EXPECT_THAT(PixelAt(*map, 3, 7), ElementsAre(24, 24, 24, 255));
    EXPECT_THAT(PixelAt(*map, 4, 4), ElementsAre(0, 0, 0, 0));
}

TEST(RadarMapPicture, TakesItsSizeFromTheOriginalOfAnAlias)
{
    CRadarDatabase database;
    database.Add(L"sea", SolidPicture(8, 4, 8, 8, 8, 255));
    database->AddAlias(L"radar00", L"sea");
    const auto map =
        JoinRadarMap(PlanRadarMap(*database, kDxt).value(), database.Host(), database.Progress());
    ASSERT_TRUE(map);
    EXPECT_EQ(map->Width(), 8U);
    EXPECT_EQ(map->Height(), 4U);
    EXPECT_THAT(PixelAt(*map, 7, 3), ElementsAre(8, 8, 8, 255));
}

TEST(RadarMapPicture, LeavesATileThatCannotBeDecodedTransparent)
{
    CRadarDatabase database;
    database.Add(L"radar00", 8);
    database->AddAlias(L"radar01", L"nothing");
    database.Add(L"radar02", 16);
    const auto map =
        JoinRadarMap(PlanRadarMap(*database, kDxt).value(), database.Host(), database.Progress());
    ASSERT_TRUE(map);
    EXPECT_THAT(PixelAt(*map, 0, 0), ElementsAre(8, 8, 8, 255));
    EXPECT_THAT(PixelAt(*map, 4, 0), ElementsAre(0, 0, 0, 0));
    EXPECT_THAT(PixelAt(*map, 0, 4), ElementsAre(16, 16, 16, 255));
    database.Host().isBlind = true;
    const auto blank =
        JoinRadarMap(PlanRadarMap(*database, kDxt).value(), database.Host(), database.Progress());
    ASSERT_TRUE(blank);
    EXPECT_THAT(PixelAt(*blank, 0, 0), ElementsAre(0, 0, 0, 0));
}

TEST(RadarMapPicture, RefusesAMapLargerThanAPictureCanBe)
{
    CRadarDatabase database;
    const RadarMapPlan plans[] = {
        {.cache = kDxt, .tiles = std::vector<std::uint32_t>(144), .tileWidth = 32768, .tileHeight = 32767},
        {.cache = kDxt, .tiles = std::vector<std::uint32_t>(144), .tileWidth = 4096, .tileHeight = 4096},
        {.cache = kDxt, .tiles = std::vector<std::uint32_t>(1 << 20), .tileWidth = 65535, .tileHeight = 1}};
    for (const RadarMapPlan& plan : plans)
        EXPECT_EQ(ErrorOf([&] { JoinRadarMap(plan, database.Host(), database.Progress()); }),
                  L"Radar map is too large.");
    EXPECT_TRUE(database.Progress().reports.empty());
}

TEST(RadarMapPicture, StopsBetweenTwoTiles)
{
    CRadarDatabase database;
    database.AddTiles(4);
    database.Progress().stopAt = 2;
    EXPECT_FALSE(JoinRadarMap(PlanRadarMap(*database, kDxt).value(), database.Host(), database.Progress()));
    EXPECT_EQ(database.Progress().reports.size(), 2U);
}

// ---- Cutting ----

TEST(RadarMapPicture, CutsTilesOfAnEighthOfTheSide)
{
    const CBitmap picture = MapPicture(8, 128, [](std::uint32_t number) { return number * 16; });
    ASSERT_EQ(picture.Width(), 1024U);
    for (const std::uint32_t number : {0U, 1U, 9U, 63U}) {
        const CBitmap tile = CutRadarTile(picture, number, 8);
        EXPECT_EQ(tile.Width(), 128U);
        EXPECT_EQ(tile.Height(), 128U);
        const std::vector<int> expected = PixelAt(picture, number % 8 * 128 + 5, number / 8 * 128 + 7);
        EXPECT_EQ(PixelAt(tile, 0, 0), expected);
        EXPECT_EQ(PixelAt(tile, 127, 127), expected);
    }
}

TEST(RadarMapPicture, CutsWhatJoiningPutTogether)
{
    CRadarDatabase database;
    database.AddTiles(64);
    const auto map =
        JoinRadarMap(PlanRadarMap(*database, kDxt).value(), database.Host(), database.Progress());
    ASSERT_TRUE(map);
    for (std::uint32_t number = 0; number < 64; ++number) {
        const auto stored = database.Host().Decode(number, kDxt);
        const CBitmap cut = CutRadarTile(*map, number, 8);
        ASSERT_TRUE(stored);
        EXPECT_TRUE(std::ranges::equal(cut.Pixels(), stored->Pixels())) << number;
    }
}
