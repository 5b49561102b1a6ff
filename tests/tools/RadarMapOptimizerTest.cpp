#include "tools/RadarMapOptimizer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "image/BitmapTools.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/tools/RadarFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr CacheIndex kDxt = CacheIndex::Dxt;

void Replace(CTextureDatabase& database, IEditorHost& host, std::uint32_t number, std::uint32_t by)
{
    const std::uint32_t index = FindRadarTile(database, number).value();
    database.DeleteEntry(index, index);
    ImportRecord record;
    SetRecordText(record.name, RadarTileName(number));
    SetRecordText(record.aliasTarget, RadarTileName(by));
    record.noRefresh = 1;
    host.Import(nullptr, record);
}

/// One step after the other, as it is told: what the tool's files are compared with.
void OptimizeStepByStep(CTextureDatabase& database, IEditorHost& host)
{
    const std::uint32_t count = CountRadarTiles(database);
    std::vector<std::unique_ptr<CBitmap>> slots(count);
    for (std::uint32_t i = 0; i < count; ++i)
        if (const auto index = FindRadarTile(database, i); !database.IsAlias(*index))
            slots[i] = host.Decode(*index, kDxt);
    for (std::uint32_t i = 0; i < count; ++i)
        for (std::uint32_t j = 0; j < count && slots[i]; ++j) {
            if (j == i || !slots[j] ||
                static_cast<std::uint32_t>(ImageDifference(*slots[i], *slots[j])) >= 80 ||
                database.FindAliasOf(*FindRadarTile(database, i), 0))
                continue;
            Replace(database, host, i, j);
            slots[i].reset();
        }
}

/// Tiles of few colours between other textures, with aliases of all kinds.
void FillAtRandom(CRadarDatabase& database, std::uint32_t seed)
{
    const CStoringMany many(*database);
    CRandom random(seed);
    database.Settings().WriteInt(L"global", L"enable_img_hash", 0);
    const std::uint32_t count = random(12);
    for (std::uint32_t number = 0; number < count; ++number) {
        if (random(4) == 0)
            database.Add(L"other" + std::to_wstring(number), static_cast<std::uint8_t>(random(4) * 64));
        if (number != 0 && random(5) == 0)
            database->AddAlias(RadarTileName(number), RadarTileName(random(number)));
        else
            database.Add(RadarTileName(number), static_cast<std::uint8_t>(random(3) * 64),
                         random(6) == 0 ? 8 : 4);
        if (random(5) == 0)
            database->AddAlias(L"alias" + std::to_wstring(number), RadarTileName(random(number + 1)));
    }
}

/// Two tiles of 4 x 4 that differ by `difference` in all.
void AddNearTwins(CRadarDatabase& database, std::uint32_t difference)
{
    database.Settings().WriteInt(L"global", L"enable_img_hash", 0);
    const CBitmap first = SolidPicture(4, 4, 0, 0, 0, 255);
    CBitmap second = first;
    // Steps of 8 are what five bits tell apart.
    for (std::uint32_t at = 0; difference != 0; difference -= 8, at += 4)
        second.Pixels()[at] = 8;
    database.Add(L"radar00", first);
    database.Add(L"radar01", second);
}

}  // namespace

TEST(RadarMapOptimizer, MakesTheEarlierOfTwoEqualTilesTheAlias)
{
    CRadarDatabase database;
    database.Settings().WriteInt(L"global", L"enable_img_hash", 0);
    database.Add(L"radar00", 64);
    database.Add(L"wall", 8);
    database.Add(L"radar01", 128);
    database.Add(L"radar02", 64);
    EXPECT_EQ(database.Optimize(), 1U);
    EXPECT_THAT(database.Names(), ElementsAre(L"wall", L"radar01", L"radar02", L"radar00 > radar02"));
    EXPECT_EQ(database->Entry(3).Value(Property::Cat), 0U);
}

TEST(RadarMapOptimizer, LeavesATileThatOthersAreAliasesOf)
{
    CRadarDatabase database;
    database.Settings().WriteInt(L"global", L"enable_img_hash", 0);
    database.Add(L"radar00", 64);
    database.Add(L"radar01", 64);
    database->AddAlias(L"sea", L"radar00");
    EXPECT_EQ(database.Optimize(), 1U);
    EXPECT_THAT(database.Names(), ElementsAre(L"radar00", L"sea > radar00", L"radar01 > radar00"));
}

TEST(RadarMapOptimizer, MakesThreeEqualTilesOne)
{
    CRadarDatabase database;
    database.Settings().WriteInt(L"global", L"enable_img_hash", 0);
    for (std::uint32_t number = 0; number < 3; ++number)
        database.Add(RadarTileName(number), 64);
    EXPECT_EQ(database.Optimize(), 2U);
    // The first goes to the second, which stays because of that; the third finds the second.
    EXPECT_THAT(database.Names(), ElementsAre(L"radar01", L"radar00 > radar01", L"radar02 > radar01"));
    EXPECT_EQ(database.Optimize(), 0U);
}

TEST(RadarMapOptimizer, TakesTilesForEqualBelowADifferenceOfEighty)
{
    CRadarDatabase below;
    AddNearTwins(below, 72);
    EXPECT_EQ(below.Optimize(), 1U);
    CRadarDatabase above;
    AddNearTwins(above, 80);
    EXPECT_EQ(above.Optimize(), 0U);
}

TEST(RadarMapOptimizer, NeverMatchesTilesOfAnotherSize)
{
    CRadarDatabase database;
    database.Add(L"radar00", 64, 4);
    database.Add(L"radar01", 64, 8);
    EXPECT_EQ(database.Optimize(), 0U);
}

TEST(RadarMapOptimizer, SkipsTilesThatCannotBeDecoded)
{
    CRadarDatabase database;
    database.Settings().WriteInt(L"global", L"enable_img_hash", 0);
    database.Add(L"radar00", 64);
    database.Add(L"radar01", 64);
    database.Host().isBlind = true;
    EXPECT_EQ(database.Optimize(), 0U);
    EXPECT_EQ(database->EntryCount(), 2U);
}

TEST(RadarMapOptimizer, ReportsEveryTileTwice)
{
    CRadarDatabase database;
    database.AddTiles(2);
    database->AddAlias(L"radar02", L"radar00");
    database.Optimize();
    EXPECT_THAT(database.Progress().reports,
                ElementsAre(L"0/3 radar00", L"1/3 radar01", L"0/3 radar00", L"1/3 radar01"));
}

TEST(RadarMapOptimizer, ChangesNothingWithoutAMapOrWhenStopped)
{
    CRadarDatabase empty;
    EXPECT_EQ(empty.Optimize(), 0U);
    EXPECT_THAT(empty.Progress().reports, IsEmpty());

    CRadarDatabase database;
    database.Settings().WriteInt(L"global", L"enable_img_hash", 0);
    for (std::uint32_t number = 0; number < 3; ++number)
        database.Add(RadarTileName(number), 64);
    const auto before = database.Files();
    for (std::size_t stop = 1; stop <= 6; ++stop) {
        database.Progress().reports.clear();
        database.Progress().stopAt = stop;
        EXPECT_EQ(database.Optimize(), 0U);
        EXPECT_EQ(database.Files(), before) << stop;
    }
}

TEST(RadarMapOptimizer, LeavesTheSameFilesAsOneStepAfterTheOther)
{
    for (std::uint32_t seed = 0; seed < 30; ++seed) {
        const StreamMode game = seed % 2 == 0 ? StreamMode::Raw : StreamMode::Framed;
        CRadarDatabase database(game);
        CRadarDatabase reference(game);
        FillAtRandom(database, seed);
        FillAtRandom(reference, seed);
        ASSERT_EQ(database.Files(), reference.Files());
        database.Optimize();
        OptimizeStepByStep(*reference, reference.Host());
        ASSERT_EQ(database.Names(), reference.Names()) << seed;
        ASSERT_EQ(database.Files(), reference.Files()) << seed;
    }
}

TEST(RadarMapOptimizer, LosesNoTileOnADiskThatFails)
{
    bool hasSucceeded = false;
    for (std::uint32_t goodWrites = 0; !hasSucceeded; ++goodWrites) {
        CFaultyFileSystem files(1000000);
        CRadarDatabase database(StreamMode::Raw, files);
        database.Settings().WriteInt(L"global", L"enable_img_hash", 0);
        database.Add(L"wall", 8);
        for (std::uint32_t number = 0; number < 4; ++number)
            database.Add(RadarTileName(number), static_cast<std::uint8_t>(number % 2 * 64));
        database.Add(L"door", 16);
        files.Allow(goodWrites);
        try {
            hasSucceeded = database.Optimize() == 2 && !files.HasFailed();
        } catch (const CError&) {
            EXPECT_TRUE(files.HasFailed());
        }
        files.Allow(1000000);
        database.Reopen();
        EXPECT_EQ(ShadeOf(database, L"wall"), 8) << goodWrites;
        EXPECT_EQ(ShadeOf(database, L"door"), 16) << goodWrites;
        for (std::uint32_t number = 0; number < 4; ++number) {
            bool isThere = false;
            for (std::uint32_t index = 0; index < database->EntryCount(); ++index)
                isThere = isThere || (database->Entry(index).name == RadarTileName(number) &&
                                      database.Host().Decode(index, kDxt));
            // A tile whose record is gone already stands in its twin.
            const auto twin = database->FindByName(RadarTileName(number ^ 2U), true);
            EXPECT_TRUE(isThere || database.Host().Decode(twin.value(), kDxt)) << goodWrites << " " << number;
        }
        ASSERT_LT(goodWrites, 500U);
    }
}
