// A disk that fails at the n-th write, for every n until the edit succeeds. Nothing is lost when, after
// opening again and mending the tables that are found invalid, every texture that the edit should not remove
// has its name, its line and its raster in every cache.

#include <functional>

#include "tests/database/DatabaseFixture.h"
#include "tests/support/FaultyFileSystem.h"

namespace {

std::vector<std::byte> RasterOrNothing(CTextureDatabase& database, const std::wstring& name, CacheIndex cache)
{
    try {
        return RasterOf(database, name, cache);
    } catch (const CError&) {
        return {};
    }
}

using Contents = std::map<std::wstring, std::vector<std::vector<std::byte>>>;

Contents ContentsOf(CTextureDatabase& database)
{
    Contents contents;
    for (std::uint32_t i = 0; i < database.EntryCount(); ++i)
        for (const CacheIndex cache : {CacheIndex::Dxt, CacheIndex::Unc})
            contents[database.Entry(i).name].push_back(
                RasterOrNothing(database, database.Entry(i).name, cache));
    return contents;
}

struct FaultCase {
    std::string name;
    std::function<bool(CTextureDatabase&)> edit;
    std::vector<std::wstring> mayChange = {};  // names that the edit removes or makes
};

PreparedRecord Picture(RecordKind kind, std::span<const std::byte> bytes, std::uint16_t side)
{
    PreparedRecord prepared{.cache = CacheIndex::Dxt, .kind = kind, .record = {}};
    prepared.record.header = {.nameHash16 = 1, .glFormat = 0x1401, .width = side, .heightAndMips = side};
    prepared.record.bytes = bytes;
    return prepared;
}

std::vector<FaultCase> FaultCases()
{
    return {
        {"Save", [](CTextureDatabase& d) { return d.Save(), true; }},
        {"AddCategory", [](CTextureDatabase& d) { return d.AddCategory(L"fresh"), true; }},
        {"DeleteCategory", [](CTextureDatabase& d) { return d.DeleteCategory(0); }},
        {"AddAlias", [](CTextureDatabase& d) { return d.AddAlias(L"new", L"sand"); }, {L"new"}},
        {"RenameEntry", [](CTextureDatabase& d) { return d.RenameEntry(1, L"new"); }, {L"brick", L"new"}},
        {"StoreTexture",
         [](CTextureDatabase& d) {
             const auto raster = Pixels(0x66);
             const auto thumbnail = Pixels(0x67, 4);
             const std::vector<PreparedRecord> records = {Picture(RecordKind::Raster, raster, 4),
                                                          Picture(RecordKind::Thumbnail, thumbnail, 1)};
             d.StoreTexture(MakeEntry({.name = L"new"}), records);
             return true;
         },
         {L"new"}},
        {"StoreMany",
         [](CTextureDatabase& d) {
             const CStoringMany many(d);
             const auto raster = Pixels(0x66);
             const PreparedRecord record = Picture(RecordKind::Raster, raster, 4);
             for (const wchar_t* name : {L"new", L"newer", L"newest"})
                 d.StoreTexture(MakeEntry({.name = name}), {&record, 1});
             d.Save();
             return true;
         },
         {L"new", L"newer", L"newest"}},
        {"DeleteFirst", [](CTextureDatabase& d) { return d.DeleteEntry(1, std::nullopt); }, {L"brick"}},
        {"DeleteWithAliases",
         [](CTextureDatabase& d) { return d.DeleteEntry(2, std::nullopt); },
         {L"wood", L"early", L"late"}},
        {"DeleteLast", [](CTextureDatabase& d) { return d.DeleteEntry(4, std::nullopt); }, {L"sand"}},
        {"DeleteTwo",
         [](CTextureDatabase& d) {
             CNoProgress progress;
             return d.DeleteEntries(std::vector<std::uint32_t>{1, 4}, progress);
         },
         {L"brick", L"sand"}},
        {"MakeAliases",
         [](CTextureDatabase& d) {
             CNoProgress progress;
             return d.MakeAliases(
                 std::vector<AliasPair>{{.kept = 1, .duplicate = 2}, {.kept = 1, .duplicate = 4}}, progress);
         },
         {L"wood", L"early", L"late", L"sand"}},
        {"RebuildToc", [](CTextureDatabase& d) { return d.RebuildToc(CacheIndex::Dxt), true; }},
        {"WriteDefaultThumbnails",
         [](CTextureDatabase& d) { return d.WriteDefaultThumbnails(CacheIndex::Dxt, StreamMode::Raw); }},
        {"RenameCategory", [](CTextureDatabase& d) { return d.RenameCategory(0, L"other"); }},
    };
}

// True when the edit succeeded.
bool TryWithFault(const FaultCase& fault, std::uint32_t goodWrites)
{
    CFaultyFileSystem disk(1000000);
    CDatabaseFixture database(SmallDatabase().Files("textures"), disk);
    Contents before = ContentsOf(*database);
    disk.Allow(goodWrites);
    bool succeeded = false;
    try {
        succeeded = fault.edit(*database);
    } catch (const CError& error) {
        EXPECT_FALSE(error.Text().empty());
    }
    disk.Allow(1000000);
    database.Reopen();
    EXPECT_TRUE(database->IsListOpen());
    for (const CacheIndex cache : {CacheIndex::Dxt, CacheIndex::Unc}) {
        EXPECT_TRUE(database->IsOpen(cache));
        if (!database->IsTocValid(cache))
            database->RebuildToc(cache);
    }
    Contents after = ContentsOf(*database);
    for (const std::wstring& name : fault.mayChange) {
        before.erase(name);
        after.erase(name);
    }
    EXPECT_EQ(after, before) << fault.name << " after " << goodWrites << " good writes";
    for (const auto& [name, bytes] : database.Files())
        EXPECT_EQ(name.find(".new"), std::string::npos) << fault.name << " left " << name;
    return succeeded;
}

}  // namespace

TEST(DatabaseFaults, LoseNothingWhereverTheDiskFails)
{
    for (const FaultCase& fault : FaultCases()) {
        SCOPED_TRACE(fault.name);
        std::uint32_t goodWrites = 0;
        while (!TryWithFault(fault, goodWrites) && goodWrites < 200)
            ++goodWrites;
        EXPECT_GT(goodWrites, 0U) << "the edit wrote nothing";
        EXPECT_LT(goodWrites, 200U) << "the edit never succeeded";
        if (HasFailure())
            return;
    }
}

TEST(DatabaseFaults, ReportAListThatCannotBeRewrittenAndKeepTheOldOneOpen)
{
    CFaultyFileSystem disk(1000000);
    CDatabaseFixture database(SmallDatabase().Files("textures"), disk);
    const FileBytes before = database.Files();
    disk.Allow(2);  // the length words of the two tables come first
    try {
        database->Save();
        ADD_FAILURE() << "it was written";
    } catch (const CError& error) {
        EXPECT_TRUE(error.WasShown());
    }
    ASSERT_EQ(database.Prompt().Shown().size(), 1U);
    EXPECT_NE(database.Prompt().Shown()[0].text.find(L"Unable to rebuild TXT file"), std::wstring::npos);
    EXPECT_NE(database.Prompt().Shown()[0].text.find(L"Value: 4294967295 [0xffffffff]"), std::wstring::npos);
    EXPECT_EQ(database.Files(), before);
    EXPECT_TRUE(database->IsListOpen());
    disk.Allow(1000000);
    database->Save();
    EXPECT_EQ(database.Files(), before);
}

TEST(DatabaseFaults, UndoAStoredTextureToTheLastByteWhenTheListCannotBeWritten)
{
    CFaultyFileSystem disk(1000000);
    CDatabaseFixture database(SmallDatabase().Files("textures"), disk);
    const FileBytes before = database.Files();
    const auto raster = Pixels(0x66);
    const PreparedRecord record = Picture(RecordKind::Raster, raster, 4);
    for (std::uint32_t goodWrites = 0; goodWrites < 6; ++goodWrites) {
        disk.Allow(goodWrites);
        EXPECT_THROW(database->StoreTexture(MakeEntry({.name = L"new"}), {&record, 1}), CError) << goodWrites;
        EXPECT_EQ(database.Files(), before) << goodWrites;
        EXPECT_EQ(database->EntryCount(), 5U);
        EXPECT_EQ(database->OffsetList(CacheIndex::Dxt).size(), 5U);
    }
}
