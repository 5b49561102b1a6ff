// Storing many textures in a row: the same files as one by one, and nothing lost whenever it breaks off.

#include <algorithm>
#include <fstream>
#include <functional>
#include <optional>

#include "tests/database/DatabaseFixture.h"
#include "tests/database/WatchedFileSystem.h"
#include "tests/support/FaultyFileSystem.h"

namespace {

void Store(CTextureDatabase& database, const std::wstring& name, std::uint8_t fill)
{
    const auto raster = Pixels(fill);
    const auto thumbnail = Pixels(fill, 4);
    std::vector<PreparedRecord> records;
    for (const CacheIndex cache : {CacheIndex::Dxt, CacheIndex::Unc}) {
        const auto add = [&](RecordKind kind, std::span<const std::byte> bytes, std::uint16_t side) {
            PreparedRecord prepared{.cache = cache, .kind = kind, .record = {}};
            prepared.record.header = {
                .nameHash16 = 1, .glFormat = 0x1401, .width = side, .heightAndMips = side};
            prepared.record.bytes = bytes;
            records.push_back(prepared);
        };
        add(RecordKind::Raster, raster, 4);
        add(RecordKind::Thumbnail, thumbnail, 1);
    }
    database.StoreTexture(MakeEntry({.name = name, .width = 4, .height = 4, .category = 1}), records);
}

using Step = std::function<void(CTextureDatabase&)>;

std::vector<Step> Steps()
{
    return {[](CTextureDatabase& d) { Store(d, L"new1", 0x61); },
            [](CTextureDatabase& d) { Store(d, L"new2", 0x62); },
            [](CTextureDatabase& d) { d.AddAlias(L"new3", L"new1"); },
            [](CTextureDatabase& d) { Store(d, L"new4", 0x64); },
            [](CTextureDatabase& d) { d.ChangeProperty(6, Property::HasDetail, 7); },
            [](CTextureDatabase& d) { Store(d, L"new5", 0x65); },
            [](CTextureDatabase& d) { d.DeleteEntry(1, std::nullopt); },
            [](CTextureDatabase& d) { Store(d, L"new6", 0x66); },
            [](CTextureDatabase& d) { d.RenameEntry(0, L"first"); },
            [](CTextureDatabase& d) { d.AddCategory(L"fresh"); },
            [](CTextureDatabase& d) { Store(d, L"new7", 0x67); },
            [](CTextureDatabase& d) { d.Save(); }};
}

/// What was in the small database before, by name: its rasters in both caches.
bool HasEverythingOld(CTextureDatabase& database)
{
    const auto has = [&database](std::wstring_view name, std::vector<std::byte> dxt,
                                 std::vector<std::byte> unc) {
        return RasterOf(database, name) == dxt && RasterOf(database, name, CacheIndex::Unc) == unc;
    };
    return has(L"brick", Pixels(0x11), Pixels(0x12, 256)) && has(L"wood", Pixels(0x21, 128), Pixels(0x22)) &&
           has(L"early", Pixels(0x21, 128), Pixels(0x22)) && has(L"late", Pixels(0x21, 128), Pixels(0x22)) &&
           has(L"sand", Pixels(0x31), Pixels(0x32, 16));
}

void Mend(CTextureDatabase& database)
{
    for (const CacheIndex cache : {CacheIndex::Dxt, CacheIndex::Unc})
        if (!database.IsTocValid(cache))
            database.RebuildToc(cache);
}

}  // namespace

TEST(StoringMany, GivesTheSameFilesAfterEveryStepAsOneByOne)
{
    CDatabaseFixture alone(SmallDatabase());
    CDatabaseFixture together(SmallDatabase());
    const CStoringMany many(*together);
    for (const Step& step : Steps()) {
        step(*alone);
        step(*together);
        ASSERT_EQ(together.Files(), alone.Files());
    }
}

TEST(StoringMany, RewritesTheListOnceAndThenOnlyAddsLines)
{
    CWatchedFileSystem disk;
    CDatabaseFixture database(SmallDatabase().Files("textures"), disk);
    {
        const CStoringMany many(*database);
        for (int i = 0; i < 10; ++i)
            Store(*database, L"new" + std::to_wstring(i), 0x61);
        EXPECT_EQ(disk.Replacements(), 1U);
    }
    Store(*database, L"after", 0x62);
    EXPECT_EQ(disk.Replacements(), 2U) << "no longer than the object exists";
}

TEST(StoringMany, KeepsACopyOfAListThatLostText)
{
    FileBytes files = SmallDatabase().Text("strange line\r\n").Files("textures");
    CDatabaseFixture database(files, DiskFileSystem());
    const CStoringMany many(*database);
    Store(*database, L"new1", 0x61);
    Store(*database, L"new2", 0x62);
    EXPECT_EQ(database.Files().at("textures.txt.bak"), files.at("textures.txt"));
    EXPECT_EQ(database.ListText().find("strange"), std::string::npos);
}

TEST(StoringMany, RewritesAListThatSomebodyElseMadeLonger)
{
    CDatabaseFixture database(SmallDatabase());
    const CStoringMany many(*database);
    Store(*database, L"new1", 0x61);
    const std::string expected = database.ListText();
    std::ofstream(database.List(), std::ios::binary | std::ios::app) << "\"stray\"\r\n";
    Store(*database, L"new2", 0x62);
    EXPECT_EQ(database.ListText().substr(0, expected.size()), expected);
    EXPECT_EQ(database.ListText().find("stray"), std::string::npos);
}

TEST(StoringMany, UndoesATextureToTheLastByteWhereverTheDiskFails)
{
    CFaultyFileSystem disk(1000000);
    CDatabaseFixture database(SmallDatabase().Files("textures"), disk);
    std::optional<CStoringMany> many(*database);
    Store(*database, L"new1", 0x61);
    const FileBytes before = database.Files();
    std::uint32_t goodWrites = 0;
    // Four records, two words of tables, the line.
    for (; goodWrites < 7; ++goodWrites) {
        disk.Allow(goodWrites);
        EXPECT_THROW(Store(*database, L"new2", 0x62), CError) << goodWrites;
        EXPECT_EQ(database.Files(), before) << goodWrites;
        EXPECT_EQ(database->EntryCount(), 6U);
    }
    disk.Allow(1000000);
    Store(*database, L"new2", 0x62);
    EXPECT_EQ(database->EntryCount(), 7U);
    many.reset();
    database.Reopen();
    EXPECT_EQ(database->EntryCount(), 7U);
    EXPECT_TRUE(database->HasThumbnails(CacheIndex::Dxt));
}

TEST(StoringMany, LosesNothingWheneverTheProgramDies)
{
    CWatchedFileSystem disk;
    CDatabaseFixture database(SmallDatabase().Files("textures"), disk);
    std::uint32_t stored = 0;
    struct Moment {
        FileBytes files;
        std::uint32_t stored;
    };
    std::vector<Moment> moments;
    disk.Watch([&] { moments.push_back({database.Files(), stored}); });
    {
        const CStoringMany many(*database);
        for (const wchar_t* name : {L"new1", L"new2", L"new3"}) {
            Store(*database, name, 0x61);
            ++stored;
        }
        database->AddAlias(L"new4", L"new2");
        ++stored;
        database->Save();
    }
    disk.Watch({});
    ASSERT_GT(moments.size(), 30U);
    for (const Moment& moment : moments) {
        CDatabaseFixture later(moment.files, DiskFileSystem());
        ASSERT_TRUE(later->IsListOpen());
        Mend(*later);
        EXPECT_TRUE(HasEverythingOld(*later));
        ASSERT_GE(later->EntryCount(), 5 + moment.stored) << "a texture that was stored is not listed";
        for (std::uint32_t i = 5; i < 5 + std::min(moment.stored, 3U); ++i)
            EXPECT_EQ(RasterOf(*later, later->Entry(i).name), Pixels(0x61));
    }
}
