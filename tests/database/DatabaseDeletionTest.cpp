#include "database/DeletionPlan.h"
#include "tests/database/DatabaseFixture.h"

namespace {

// Ten textures of different sizes in three caches, some without a raster here and there, with aliases between
// them.
CDatabaseBuilder MixedDatabase(bool framed)
{
    CDatabaseBuilder builder(framed);
    builder.Category("cat=0 name=Default");
    for (std::uint8_t i = 0; i < 10; ++i) {
        const std::string name = "t" + std::to_string(i);
        if (i % 3 == 1)
            builder.Alias("before" + name, name);
        builder.Texture(name);
        const auto side = static_cast<std::uint16_t>(1 + i * 5 % 7);
        builder.Picture("dxt", static_cast<std::uint8_t>(0x10 + i), side, side);
        builder.Picture("unc", static_cast<std::uint8_t>(0x40 + i), 4, static_cast<std::uint16_t>(10 - i));
        if (i % 4 != 2)
            builder.Picture("etc", static_cast<std::uint8_t>(0x70 + i));
        else
            builder.Thumbnail("etc", {.pixels = Pixels(i, 4)});
        if (i % 3 == 0)
            builder.Alias("after" + name, name);
    }
    return builder;
}

std::map<std::wstring, std::vector<std::byte>> AllRasters(CTextureDatabase& database, CacheIndex cache)
{
    std::map<std::wstring, std::vector<std::byte>> rasters;
    for (std::uint32_t i = 0; i < database.EntryCount(); ++i)
        if (database.ResolvedEntry(i).datOffset[SlotOf(cache)] != kNone)
            rasters[database.Entry(i).name] = *database.ReadRaster(i, cache, RecordKind::Raster);
    return rasters;
}

}  // namespace

TEST(DatabaseDeletion, GivesTheSameFilesAtOnceAndOneByOne)
{
    for (const bool framed : {false, true}) {
        for (unsigned chosen = 1; chosen < 1024; chosen = chosen * 3 + 1) {
            CDatabaseFixture once(MixedDatabase(framed));
            CDatabaseFixture oneByOne(MixedDatabase(framed));
            std::vector<std::uint32_t> indices;
            for (unsigned i = 0; i < 10; ++i)
                if ((chosen >> i & 1U) != 0)
                    indices.push_back(*once->FindByName(L"t" + std::to_wstring(i), true));
            CNoProgress progress;
            ASSERT_TRUE(once->DeleteEntries(indices, progress));
            for (unsigned i = 0; i < 10; ++i)
                if ((chosen >> i & 1U) != 0) {
                    const auto index = oneByOne->FindByName(L"t" + std::to_wstring(i), true);
                    ASSERT_TRUE(oneByOne->DeleteEntry(*index, std::nullopt));
                }
            ASSERT_EQ(once.Files(), oneByOne.Files()) << chosen;
            const auto inMemory = AllRasters(*once, CacheIndex::Dxt);
            once.Reopen();
            EXPECT_EQ(AllRasters(*once, CacheIndex::Dxt), inMemory);
            EXPECT_TRUE(once->IsTocValid(CacheIndex::Dxt));
            EXPECT_TRUE(once->IsTocValid(CacheIndex::Etc1));
            EXPECT_TRUE(once->HasThumbnails(CacheIndex::Dxt));
        }
    }
}

TEST(DatabaseDeletion, LeavesTheFilesOfADatabaseThatNeverHadTheTexture)
{
    CDatabaseFixture database(SmallDatabase());
    ASSERT_TRUE(database->DeleteEntry(2, std::nullopt));
    CDatabaseBuilder expected;
    expected.Category("cat=0 name=Default onfoot=0 slow=0 fast=0 defaultstream=0");
    expected.Texture("brick").Picture("dxt", 0x11).Picture("unc", 0x12, 8, 8);
    expected.Texture("sand").Picture("dxt", 0x31).Picture("unc", 0x32, 2, 2);
    EXPECT_EQ(database.Files(), expected.Files("textures"));
}

TEST(DatabaseDeletion, RemovesOnlyTheTableWordOfAnAlias)
{
    CDatabaseFixture database(SmallDatabase());
    const FileBytes before = database.Files();
    ASSERT_TRUE(database->DeleteEntry(0, std::nullopt));
    EXPECT_EQ(database->EntryCount(), 4U);
    FileBytes after = database.Files();
    EXPECT_EQ(after["textures.dxt.dat"], before.at("textures.dxt.dat"));
    EXPECT_EQ(after["textures.dxt.tmb"], before.at("textures.dxt.tmb"));
    EXPECT_EQ(after["textures.dxt.toc"].size(), before.at("textures.dxt.toc").size() - 4);
    EXPECT_EQ(RasterOf(*database, L"late"), Pixels(0x21, 128));
}

TEST(DatabaseDeletion, GivesAliasesTheirNewTargetAndKeepsTheirLines)
{
    CDatabaseFixture database(SmallDatabase());
    ASSERT_TRUE(database->DeleteEntry(2, 4));
    EXPECT_EQ(database->AliasTarget(0), 3U);
    EXPECT_EQ(RasterOf(*database, L"early"), Pixels(0x31));
    EXPECT_NE(database.ListText().find("\"early\" \"affiliate=wood\""), std::string::npos);
    // An alias cannot be an heir; the aliases stay and find nothing.
    CDatabaseFixture other(SmallDatabase());
    ASSERT_TRUE(other->DeleteEntry(2, 0));
    EXPECT_EQ(other->EntryCount(), 4U);
    EXPECT_EQ(other->AliasTarget(0), kNone);
}

TEST(DatabaseDeletion, KeepsTheAliasesOfATwin)
{
    CDatabaseBuilder builder;
    builder.Texture("twin").Picture("dxt", 1).Alias("x", "twin").Texture("twin").Picture("dxt", 2);
    CDatabaseFixture database(builder);
    ASSERT_TRUE(database->DeleteEntry(2, std::nullopt));
    EXPECT_EQ(database->EntryCount(), 2U) << "the alias resolves to the first twin";
}

TEST(DatabaseDeletion, RefusesIndicesThatDoNotExist)
{
    CDatabaseFixture database(SmallDatabase());
    const FileBytes before = database.Files();
    CNoProgress progress;
    EXPECT_FALSE(database->DeleteEntry(5, std::nullopt));
    EXPECT_FALSE(database->DeleteEntries(std::vector<std::uint32_t>{1, 5}, progress));
    EXPECT_TRUE(database->DeleteEntries({}, progress));
    EXPECT_EQ(database.Files(), before);
}

TEST(DatabaseDeletion, RefusesDamagedTablesAndChangesNothing)
{
    // The words of the first and the last texture of the table, and what they become.
    const std::vector<std::pair<std::size_t, std::uint8_t>> damages = {
        {8, 0x48}, {8, 0xF0}, {20, 0x00}, {20, 0x10}};
    for (const auto& [position, value] : damages) {
        FileBytes files = SmallDatabase().Files("textures");
        files["textures.dxt.toc"][position] = std::byte{value};
        CDatabaseFixture database(files, DiskFileSystem());
        const FileBytes before = database.Files();
        EXPECT_THROW(database->DeleteEntry(1, std::nullopt), CError) << position;
        EXPECT_EQ(database.Files(), before);
        EXPECT_EQ(database->EntryCount(), 5U);
    }
}

TEST(DatabaseDeletion, CreatesATableForACacheWithoutOne)
{
    FileBytes files = SmallDatabase().Files("textures");
    files.erase("textures.dxt.toc");
    CDatabaseFixture database(files, DiskFileSystem());
    ASSERT_TRUE(database->DeleteEntry(1, std::nullopt));
    EXPECT_TRUE(database->IsTocValid(CacheIndex::Dxt));
    EXPECT_EQ(RasterOf(*database, L"sand"), Pixels(0x31));
}

TEST(DatabaseDeletion, LeavesIgnoredThumbnailsAlone)
{
    FileBytes files = SmallDatabase().Files("textures");
    files["textures.dxt.tmb"].push_back(std::byte{1});
    CDatabaseFixture database(files, DiskFileSystem());
    ASSERT_TRUE(database->DeleteEntry(1, std::nullopt));
    EXPECT_EQ(database.Files()["textures.dxt.tmb"], files["textures.dxt.tmb"]);
}

TEST(DeletionPlan, MovesWhatStaysDownOverTheGaps)
{
    const std::vector<PlacedRecord> records = {{0, 0}, {10, 1}, {30, 2}, {60, 3}, {100, 4}};
    const auto plan = PlanDeletion(records, {true, false, true, false, false}, 150);
    ASSERT_TRUE(plan);
    EXPECT_EQ(plan->newLength, 110U);
    ASSERT_EQ(plan->moved.size(), 2U);
    EXPECT_EQ(plan->moved[0].from, 10U);
    EXPECT_EQ(plan->moved[0].down, 10U);
    EXPECT_EQ(plan->moved[0].length, 20U);
    EXPECT_EQ(plan->moved[0].firstOwner, 0U);
    EXPECT_EQ(plan->moved[0].ownerCount, 1U);
    EXPECT_EQ(plan->moved[1].from, 60U);
    EXPECT_EQ(plan->moved[1].down, 40U);
    EXPECT_EQ(plan->moved[1].length, 90U);
    EXPECT_EQ(plan->moved[1].firstOwner, 1U);
    EXPECT_EQ(plan->moved[1].ownerCount, 2U);
}

TEST(DeletionPlan, MovesALongRecordAloneAndShortOnesTogether)
{
    const std::vector<PlacedRecord> records = {{0, 0}, {10, 1}, {20, 2}, {30, 3}, {200030, 4}, {200040, 5}};
    const auto plan = PlanDeletion(records, {true, false, false, false, false, false}, 200050);
    ASSERT_TRUE(plan);
    ASSERT_EQ(plan->moved.size(), 3U);
    EXPECT_EQ(plan->moved[0].length, 20U);
    EXPECT_EQ(plan->moved[0].ownerCount, 2U);
    EXPECT_EQ(plan->moved[1].from, 30U);
    EXPECT_EQ(plan->moved[1].length, 200000U);
    EXPECT_EQ(plan->moved[1].ownerCount, 1U);
    EXPECT_EQ(plan->moved[2].length, 20U);
    EXPECT_EQ(plan->moved[2].firstOwner, 3U);
}

TEST(DeletionPlan, KeepsRecordsAtOnePlaceInOnePiece)
{
    const std::vector<PlacedRecord> records = {{0, 0}, {10, 1}, {10, 2}, {70000, 3}};
    const auto plan = PlanDeletion(records, {true, false, false, false}, 140000);
    ASSERT_TRUE(plan);
    ASSERT_EQ(plan->moved.size(), 2U);
    EXPECT_EQ(plan->moved[0].ownerCount, 2U);
    EXPECT_EQ(plan->moved[0].length, 69990U);
    EXPECT_EQ(plan->moved[1].ownerCount, 1U);
}

TEST(DeletionPlan, GroupsPiecesSoThatNoDirectStepReachesIntoItself)
{
    const std::vector<MovedPiece> pieces = {
        {.from = 10, .length = 30, .down = 10},   {.from = 50, .length = 50, .down = 20},
        {.from = 200, .length = 40, .down = 120}, {.from = 240, .length = 60, .down = 120},
        {.from = 300, .length = 70, .down = 120}, {.from = 370, .length = 500, .down = 120}};
    const auto groups = GroupPieces(pieces, 100, 110);
    ASSERT_EQ(groups.size(), 4U);
    EXPECT_EQ(groups[0].pieceCount, 2U) << "staged, up to 110 bytes";
    EXPECT_EQ(groups[0].length, 80U);
    EXPECT_EQ(groups[1].firstPiece, 2U);
    EXPECT_EQ(groups[1].length, 100U) << "direct, but no longer than a staged one";
    EXPECT_EQ(groups[2].length, 70U);
    EXPECT_EQ(groups[3].length, 500U) << "a piece that is longer than any group";
}

TEST(DeletionPlan, CutsTheLastRecordOffWithoutMovingAnything)
{
    const std::vector<PlacedRecord> records = {{0, 0}, {10, 1}};
    const auto plan = PlanDeletion(records, {false, true}, 30);
    ASSERT_TRUE(plan);
    EXPECT_TRUE(plan->moved.empty());
    EXPECT_EQ(plan->newLength, 10U);
}

TEST(DeletionPlan, RefusesSharedUnorderedAndOutlyingRecords)
{
    EXPECT_FALSE(PlanDeletion(std::vector<PlacedRecord>{{10, 0}, {10, 1}}, {true, false}, 30));
    EXPECT_FALSE(PlanDeletion(std::vector<PlacedRecord>{{20, 0}, {10, 1}}, {true, false}, 30));
    EXPECT_FALSE(PlanDeletion(std::vector<PlacedRecord>{{40, 0}}, {true}, 30));
    EXPECT_FALSE(PlanDeletion(std::vector<PlacedRecord>{{0, 0}, {20, 1}, {10, 2}}, {true, false, false}, 30));
}
