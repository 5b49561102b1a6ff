#include "tools/RadarMapImport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/codec/FakeCodecs.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/tools/RadarFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr CacheIndex kDxt = CacheIndex::Dxt;

/// 8 x 8 tiles of 16 pixels, every one different.
CBitmap NewMap(std::uint8_t blue = 0x80)
{
    return MapPicture(8, 16, [blue](std::uint32_t number) {
        return (number % 16) << 4 | number / 16 | static_cast<std::uint32_t>(blue) << 8;
    });
}

/// The boxes but for their captions.
std::vector<std::wstring> Texts(const CRadarDatabase& database)
{
    std::vector<std::wstring> texts;
    for (const PromptBox& box : database.Shown())
        texts.push_back(box.text);
    return texts;
}

void ExpectNothingChanged(CRadarDatabase& database, const CBitmap& picture, const std::wstring& text)
{
    const auto before = database.Files();
    const ImportCounts counts = database.Import(picture);
    EXPECT_EQ(counts.imported + counts.aliased, 0U);
    EXPECT_EQ(counts.failed, 1U);
    ASSERT_THAT(Texts(database), ElementsAre(text));
    EXPECT_EQ(database.Shown()[0].caption, L"Error");
    EXPECT_EQ(database.Shown()[0].icon, PromptIcon::Error);
    EXPECT_EQ(database.Files(), before);
    EXPECT_THAT(database.Progress().reports, IsEmpty());
}

/// All old tiles are deleted, then the new ones imported in order: what the tool's files are compared with.
void ImportStepByStep(CRadarDatabase& database, const CBitmap& picture, bool hasAlpha)
{
    const bool isSanAndreas = database->EntryCount() != 0 && database->GameOf(0, kDxt) == StreamMode::Framed;
    const std::uint32_t side = isSanAndreas ? 12 : 8;
    std::vector<std::uint32_t> categories(std::size_t{side} * side);
    for (std::uint32_t number = 0; number < side * side; ++number)
        if (const auto tile = FindRadarTile(*database, number)) {
            categories[number] = database->Entry(*tile).Value(Property::Cat);
            database->DeleteEntry(*tile, *tile);
        }
    // A texture that is replaced while it has aliases is no duplicate of another.
    std::vector<bool> isWanted(categories.size());
    for (std::uint32_t index = 0; index < database->EntryCount(); ++index)
        for (std::uint32_t number = 0; number < side * side; ++number)
            if (database->Entry(index).affiliate == RadarTileName(number))
                isWanted[number] = true;
    for (std::uint32_t number = 0; number < side * side; ++number) {
        const CStoringMany many(*database);
        const CBitmap tile = CutRadarTile(picture, number, side);
        ImportRecord record;
        SetRecordText(record.name, RadarTileName(number));
        record.width = tile.Width();
        record.height = tile.Height();
        record.hasAlpha = hasAlpha ? 1 : 0;
        record.category = categories[number];
        record.noRefresh = 1;
        record.format = isSanAndreas ? 3 : ImportRecord::kFormatByRules;
        record.hasAliases = isWanted[number] ? 1 : 0;
        database.Host().Import(&tile, record);
    }
    database->Save();
}

void FillAtRandom(CRadarDatabase& database, std::uint32_t seed)
{
    const CStoringMany many(*database);
    CRandom random(seed);
    database->AddCategory(L"maps");
    const std::uint32_t count = seed == 2 ? 150 : random(80);
    database.Add(L"first", 8);
    for (std::uint32_t number = 0; number < count; ++number) {
        if (random(9) == 0)
            continue;
        const auto blue = static_cast<std::uint8_t>(random(3) * 64 + 8);
        if (number != 0 && random(7) == 0)
            database->AddAlias(RadarTileName(number), RadarTileName(random(number)));
        else if (!database->FindByName(RadarTileName(number), true))
            database.Add(RadarTileName(number), CRadarDatabase::Shade(number, random(5) == 0 ? 8 : 16, blue),
                         random(2));
        if (random(6) == 0)
            database.Add(L"other" + std::to_wstring(number), CRadarDatabase::Shade(number, 16, 0x30));
        if (random(6) == 0)
            database->AddAlias(L"alias" + std::to_wstring(number), RadarTileName(random(number + 1)));
    }
}

CBitmap RandomMap(std::uint32_t seed, std::uint32_t side)
{
    CRandom random(seed);
    std::vector<std::uint32_t> colours(std::size_t{side} * side);
    for (auto& colour : colours)
        colour = random(colours.size() / 2) * 37;
    return MapPicture(side, 16, [&colours](std::uint32_t number) { return colours[number]; });
}

enum class MapState { Old, New, Lost };

/// Whether every tile can still be decoded under its name, in the old colours or in the new ones.
MapState StateOf(CRadarDatabase& database, const std::vector<std::vector<int>>& before,
                 const CBitmap& picture)
{
    std::uint32_t old = 0;
    std::uint32_t fresh = 0;
    for (std::uint32_t number = 0; number < 64; ++number) {
        bool isOld = false;
        bool isNew = false;
        for (std::uint32_t index = 0; index < database->EntryCount(); ++index) {
            if (database->Entry(index).name != RadarTileName(number))
                continue;
            const auto tile = database.Host().Decode(index, kDxt);
            isOld = isOld || (tile && PixelAt(*tile, 0, 0) == before[number]);
            isNew =
                isNew || (tile && PixelAt(*tile, 0, 0) == PixelAt(picture, number % 8 * 16, number / 8 * 16));
        }
        old += isOld ? 1 : 0;
        fresh += isNew ? 1 : 0;
    }
    if (old == 64)
        return MapState::Old;
    return fresh == 64 ? MapState::New : MapState::Lost;
}

/// From the report of tile `tile` on, `goodWrites` changes of the disk succeed. True when all went well.
bool ImportOnFailingDisk(std::uint32_t tile, std::uint32_t goodWrites)
{
    CFaultyFileSystem files(1000000);
    CRadarDatabase database(StreamMode::Raw, files, {kDxt});
    database.Add(L"wall", 8);
    database.AddTiles(64, 8);
    database.Add(L"door", 16);
    database->AddAlias(L"sea", L"radar05");
    std::vector<std::vector<int>> before;
    for (std::uint32_t number = 0; number < 64; ++number)
        before.push_back(PixelAt(*database.Host().Decode(number + 1, kDxt), 0, 0));
    database.Progress().onReport = [&](std::uint32_t current, const std::wstring& text) {
        if (current == tile && text == RadarTileName(tile))
            files.Allow(goodWrites);
    };
    const CBitmap picture = NewMap();
    bool worked = false;
    try {
        worked = database.Import(picture).imported == 64 && !files.HasFailed();
    } catch (const CError&) {
        EXPECT_TRUE(files.HasFailed());
    }
    files.Allow(1000000);
    database.Reopen();
    EXPECT_EQ(ShadeOf(database, L"wall"), 8) << goodWrites;
    EXPECT_EQ(ShadeOf(database, L"door"), 16) << goodWrites;
    EXPECT_TRUE(database->FindByName(L"sea", true));
    const MapState state = StateOf(database, before, picture);
    EXPECT_NE(state, MapState::Lost) << "tile " << tile << ", writes " << goodWrites;
    if (worked) {
        EXPECT_EQ(state, MapState::New);
        EXPECT_EQ(database->EntryCount(), 67U);
    }
    return worked;
}

}  // namespace

TEST(RadarMapImport, RefusesAPictureThatIsNotSquare)
{
    CRadarDatabase database;
    database.AddTiles(4);
    ExpectNothingChanged(database, SolidPicture(256, 128, 1, 2, 3, 255), L"Image must be square.");
}

TEST(RadarMapImport, RefusesAPictureThatIsTooSmall)
{
    CRadarDatabase database;
    database.AddTiles(4);
    ExpectNothingChanged(database, SolidPicture(127, 127, 1, 2, 3, 255), L"Image is too small.");
}

TEST(RadarMapImport, RecommendsTheSideOfTheGridTwice)
{
    CRadarDatabase viceCity;
    viceCity.AddTiles(4);
    ExpectNothingChanged(viceCity, SolidPicture(130, 130, 1, 2, 3, 255),
                         L"Wrong texture dimensions given.\n\nRecommended dimensions is 8 8.");
    CRadarDatabase sanAndreas(StreamMode::Framed);
    sanAndreas.AddTiles(4);
    ExpectNothingChanged(sanAndreas, SolidPicture(1000, 1000, 1, 2, 3, 255),
                         L"Wrong texture dimensions given.\n\nRecommended dimensions is 12 12.");
}

TEST(RadarMapImport, RefusesTilesThatCannotBeStoredBeforeItDeletesAny)
{
    CRadarDatabase database;
    database.AddTiles(4);
    ExpectNothingChanged(database, SolidPicture(1000, 1000, 1, 2, 3, 255),
                         L"Wrong texture dimensions given.\n\nRecommended dimensions is 8 8.");
}

TEST(RadarMapImport, TakesMultiplesOfSixtyFourWhereNothingIsCompressed)
{
    // A rule of the category says so, and it has to hold for every tile.
    CRadarDatabase viceCity;
    viceCity->AddCategory(L"maps");
    viceCity->AddCategory(L"plain");
    TextureCategory uncompressed = viceCity->Categories()[2];
    uncompressed.defaultformat = 4;
    viceCity->SetCategory(2, uncompressed);
    for (std::uint32_t number = 0; number < 64; ++number)
        viceCity.Add(RadarTileName(number), CRadarDatabase::Shade(number, 4, 0), number == 63 ? 0 : 2);
    const CBitmap picture = SolidPicture(8 * 192, 8 * 192, 8, 8, 8, 255);
    ExpectNothingChanged(viceCity, picture,
                         L"Wrong texture dimensions given.\n\nRecommended dimensions is 8 8.");
    viceCity->ChangeProperty(63, Property::Cat, 2);
    EXPECT_EQ(viceCity.Import(picture).imported, 1U);
}

TEST(RadarMapImport, CutsAPictureIntoSixtyFourTiles)
{
    CRadarDatabase database;
    const CBitmap picture = NewMap();
    const ImportCounts counts = database.Import(picture);
    EXPECT_EQ(counts.imported, 64U);
    EXPECT_EQ(counts.aliased + counts.failed, 0U);
    ASSERT_EQ(database->EntryCount(), 64U);
    for (std::uint32_t number = 0; number < 64; ++number) {
        EXPECT_EQ(database->Entry(number).name, RadarTileName(number));
        EXPECT_EQ(database->Entry(number).Value(Property::Width), 16U);
        const auto tile = database.Host().Decode(number, kDxt);
        ASSERT_TRUE(tile);
        EXPECT_EQ(PixelAt(*tile, 15, 15), PixelAt(picture, number % 8 * 16, number / 8 * 16));
    }
    EXPECT_THAT(database.Shown(), IsEmpty());
    ASSERT_THAT(database.Progress().reports, SizeIs(64));
    EXPECT_EQ(database.Progress().reports.front(), L"0/63 radar00");
    EXPECT_EQ(database.Progress().reports.back(), L"63/63 radar63");
}

TEST(RadarMapImport, FillsTheRecordsOfTheHost)
{
    CRadarDatabase database(StreamMode::Framed, DiskFileSystem(), {CacheIndex::Unc});
    database->AddCategory(L"maps");
    database.Add(L"radar01", CRadarDatabase::Shade(1, 4, 0), 1);
    database.Answer(PromptAnswer::Yes);
    database->SetForcedMode(StreamMode::Auto);
    const CBitmap picture = MapPicture(12, 16, [](std::uint32_t number) { return number; });
    ImportRadarMap({.database = *database,
                    .plugins = database.Plugins(),
                    .settings = database.Settings(),
                    .host = database.Host(),
                    .prompt = database.Prompt(),
                    .cache = CacheIndex::Unc},
                   picture, std::nullopt, database.Progress());
    ASSERT_THAT(Texts(database), ElementsAre(L"Use alpha?"));
    EXPECT_EQ(database.Shown()[0].buttons, PromptButtons::YesNo);
    const auto& records = database.Host().records;
    ASSERT_THAT(records, SizeIs(144));
    for (std::size_t number = 0; number < records.size(); ++number) {
        const ImportRecord& record = records[number];
        EXPECT_EQ(RecordText(record.name), RadarTileName(static_cast<std::uint32_t>(number)));
        EXPECT_EQ(RecordText(record.aliasTarget), L"");
        EXPECT_EQ(record.hasAlpha, 1U);
        EXPECT_EQ(record.width, 16U);
        EXPECT_EQ(record.height, 16U);
        EXPECT_EQ(record.noRefresh, 1U);
        EXPECT_EQ(record.storeRgba8888, 0U);
        EXPECT_EQ(record.cacheGiven, 0U);
        EXPECT_EQ(record.format, 3U);
        EXPECT_EQ(record.category, number == 1 ? 1U : 0U) << "a tile keeps its category";
    }
    EXPECT_EQ(database->Entry(0).Value(Property::AlphaMode), 2U);
}

TEST(RadarMapImport, LeavesTheFormatToTheRulesForTheOtherGame)
{
    CRadarDatabase database;
    database.Answer(PromptAnswer::No);
    database.Import(NewMap(), std::nullopt);
    EXPECT_EQ(database.Host().records.at(0).format, ImportRecord::kFormatByRules);
    EXPECT_EQ(database.Host().records.at(0).hasAlpha, 0U);
}

TEST(RadarMapImport, MakesEqualTilesAliasesOfTheFirst)
{
    CRadarDatabase database;
    const ImportCounts counts =
        database.Import(MapPicture(8, 16, [](std::uint32_t number) { return number % 2 * 0xF0; }));
    EXPECT_EQ(counts.imported, 2U);
    EXPECT_EQ(counts.aliased, 62U);
    EXPECT_EQ(database.Names().at(2), L"radar02 > radar00");
    EXPECT_EQ(database.Names().at(63), L"radar63 > radar01");
}

TEST(RadarMapImport, NeverMakesANewTileAnAliasOfAnOldOne)
{
    CRadarDatabase database;
    const CBitmap picture = NewMap();
    database.Import(picture);
    EXPECT_EQ(database.Import(picture).imported, 64U) << "the same pixels, but the old ones go";
    EXPECT_EQ(database->EntryCount(), 64U);
    database.Reopen();
    EXPECT_TRUE(database.Host().Decode(0, kDxt));
}

TEST(RadarMapImport, GivesATileThatOthersAreAliasesOfItsOwnPixels)
{
    CRadarDatabase database;
    database.AddTiles(64);
    database->AddAlias(L"sea", L"radar05");
    const ImportCounts counts = database.Import(MapPicture(8, 16, [](std::uint32_t) { return 0xF0; }));
    EXPECT_EQ(counts.imported, 2U);
    EXPECT_EQ(database.Names().at(0), L"sea > radar05");
    EXPECT_EQ(database.Names().at(6), L"radar05");
    EXPECT_EQ(database.Names().at(7), L"radar06 > radar00");
    EXPECT_TRUE(database.Host().Decode(0, kDxt));
}

TEST(RadarMapImport, LeavesTilesBeyondItsGridAlone)
{
    CRadarDatabase database;
    database.AddTiles(70);
    database.Import(NewMap());
    EXPECT_EQ(CountRadarTiles(*database), 70U);
    EXPECT_EQ(database.Names().at(0), L"radar64");
    EXPECT_EQ(database.Names().at(6), L"radar00");
}

TEST(RadarMapImport, ReplacesEveryEntryOfATilesName)
{
    CRadarDatabase database;
    database.Settings().WriteInt(L"global", L"enable_img_hash", 0);
    database.Add(L"radar00", 8);
    database.Add(L"wall", 16);
    database.Add(L"radar00", 24);
    database.Import(NewMap());
    EXPECT_EQ(database->EntryCount(), 65U);
    EXPECT_EQ(database.Names().at(0), L"wall");
}

TEST(RadarMapImport, ChangesNothingWhenItIsStopped)
{
    CRadarDatabase database;
    database.AddTiles(64);
    const auto before = database.Files();
    for (const std::size_t stop : {1U, 2U, 40U, 64U}) {
        database.Progress().reports.clear();
        database.Progress().stopAt = stop;
        const ImportCounts counts = database.Import(NewMap());
        EXPECT_TRUE(counts.wasStopped);
        EXPECT_EQ(counts.imported, 0U);
        EXPECT_EQ(database->EntryCount(), 64U);
        EXPECT_EQ(database.Files(), before) << stop;
    }
}

TEST(RadarMapImport, ChangesNothingWhenTheGameQuestionIsCancelled)
{
    CRadarDatabase database(StreamMode::Auto);
    const auto before = database.Files();
    database.Answer(PromptAnswer::Cancel);
    EXPECT_TRUE(database.Import(NewMap()).wasStopped);
    EXPECT_THAT(database.Shown(), SizeIs(1)) << "asked once, not for every tile";
    EXPECT_EQ(database.Files(), before);
}

TEST(RadarMapImport, ChangesNothingWhenATileFails)
{
    CRadarDatabase database;
    database.AddTiles(64);
    // Its output does not keep to the sizes of its format.
    database.Plugins().BindFunctions(kDxt, Fake::CompressShort, Fake::FirstByte);
    const auto before = database.Files();
    const ImportCounts counts = database.Import(NewMap());
    EXPECT_EQ(counts.failed, 1U);
    EXPECT_THAT(database.Shown(), SizeIs(1));
    EXPECT_EQ(database.Files(), before);
}

TEST(RadarMapImport, LeavesTheSameFilesAsOneStepAfterTheOther)
{
    for (std::uint32_t seed = 0; seed < 6; ++seed) {
        const StreamMode game = seed % 3 == 2 ? StreamMode::Framed : StreamMode::Raw;
        CRadarDatabase database(game);
        CRadarDatabase reference(game);
        FillAtRandom(database, seed);
        FillAtRandom(reference, seed);
        ASSERT_EQ(database.Files(), reference.Files());
        const CBitmap picture = RandomMap(seed, game == StreamMode::Framed ? 12 : 8);
        const ImportCounts counts = database.Import(picture, seed % 2 == 0);
        EXPECT_GT(counts.aliased, 0U);
        ImportStepByStep(reference, picture, seed % 2 == 0);
        ASSERT_EQ(database.Names(), reference.Names()) << seed;
        ASSERT_EQ(database.Files(), reference.Files()) << seed;
    }
}

TEST(RadarMapImport, KeepsTheOldMapWhileTheNewOneIsNotWhole)
{
    for (const std::uint32_t tile : {0U, 63U})
        for (std::uint32_t goodWrites = 0; goodWrites < 3; ++goodWrites)
            ImportOnFailingDisk(tile, goodWrites);
}

TEST(RadarMapImport, LosesNoMapOnADiskThatFailsWhileTheOldOneGoes)
{
    std::uint32_t goodWrites = 3;
    while (!ImportOnFailingDisk(63, goodWrites))
        ASSERT_LT(++goodWrites, 300U);
}

TEST(RadarMapImport, UsesTheDatabaseOnItsOwnThreadOnly)
{
    CRadarDatabase database;
    database.AddTiles(4);
    std::uint32_t steps = 0;
    const ImportCounts counts = ImportRadarMap({.database = *database,
                                                .plugins = database.Plugins(),
                                                .settings = database.Settings(),
                                                .host = database.Host(),
                                                .prompt = database.Prompt(),
                                                .cache = kDxt,
                                                .onOwner =
                                                    [&steps](const std::function<void()>& step) {
                                                        ++steps;
                                                        step();
                                                    }},
                                               NewMap(), true, database.Progress());
    EXPECT_EQ(counts.imported, 64U);
    EXPECT_EQ(steps, 3U) << "the preparation, the deletion and the end of the run";
}
