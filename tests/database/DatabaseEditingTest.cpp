#include <functional>

#include "tests/database/DatabaseFixture.h"

namespace {

constexpr const char* kDefault = "cat=0 name=Default onfoot=0 slow=0 fast=0 defaultstream=0\r\n";

std::wstring TextOfError(const std::function<void()>& edit)
{
    try {
        edit();
    } catch (const CError& error) {
        return error.Text();
    }
    return L"";
}

PreparedRecord Record(CacheIndex cache, RecordKind kind, std::span<const std::byte> bytes, std::uint16_t side)
{
    PreparedRecord prepared{.cache = cache, .kind = kind, .record = {}};
    prepared.record.header = {.nameHash16 = 1, .glFormat = 0x1401, .width = side, .heightAndMips = side};
    prepared.record.bytes = bytes;
    return prepared;
}

}  // namespace

TEST(DatabaseEditing, WritesPropertiesOnlyWhenSaved)
{
    CDatabaseFixture database(SmallDatabase());
    const std::string before = database.ListText();
    database->ChangeProperty(1, Property::Cat, 12);
    EXPECT_EQ(database.ListText(), before);
    database->Save();
    EXPECT_NE(database.ListText().find("\"brick\" width=4 height=4 cat=12\r\n"), std::string::npos);
    EXPECT_FALSE(database.Files().contains("textures.txt.bak"));
}

TEST(DatabaseEditing, RefusesALineThatWouldNotBeReadBackWhole)
{
    CDatabaseFixture database(SmallDatabase());
    const FileBytes before = database.Files();
    for (const Property property : {Property::CamNorm, Property::DecalZ, Property::ForceZ, Property::Format})
        database->ChangeProperty(1, property, 100000000);
    EXPECT_EQ(TextOfError([&] {
                  database->ChangeProperty(1, Property::HasSibling, 1000000);
                  database->ChangeProperty(1, Property::HasDetail, 1000000);
              }),
              L"Texture line is too long.");
    EXPECT_EQ(TextOfError([&] { database->RenameEntry(1, std::wstring(60, L'n')); }),
              L"Texture line is too long.");
    EXPECT_EQ(TextOfError([&] { database->AddAlias(std::wstring(60, L'a'), std::wstring(60, L'b')); }),
              L"Texture line is too long.");
    EXPECT_EQ(database.Files(), before);
}

TEST(DatabaseEditing, KeepsACopyOfAListThatLostLinesBeforeTheFirstRewrite)
{
    FileBytes files = SmallDatabase().Files("textures");
    const std::string text = "# a remark\r\n" + TextOf(files["textures.txt"]);
    files["textures.txt"] = BytesOf(text);
    CDatabaseFixture database(files, DiskFileSystem());
    EXPECT_TRUE(database->ListHadWarnings());
    ASSERT_EQ(database.Prompt().Shown().size(), 1U);
    EXPECT_EQ(database.Prompt().Shown()[0].icon, PromptIcon::Warning);
    database->Save();
    EXPECT_EQ(TextOf(database.Files()["textures.txt.bak"]), text);
    database->Save();
    EXPECT_EQ(TextOf(database.Files()["textures.txt.bak"]), text);
    EXPECT_EQ(database.ListText().find("# a remark"), std::string::npos);
}

TEST(DatabaseEditing, NeverWritesAListThatCannotBeOpened)
{
    CDatabaseFixture database(SmallDatabase());
    const FileBytes before = database.Files();
    // A second database on the same files finds them held.
    CScriptedPrompt prompt;
    CTextureDatabase second(StreamMode::Auto, DiskFileSystem(), prompt);
    EXPECT_TRUE(second.Open(database.List()));
    EXPECT_FALSE(second.IsListOpen());
    EXPECT_THROW(second.Save(), CError);
    EXPECT_THROW(second.AddCategory(L"x"), CError);
    EXPECT_THROW(second.AddAlias(L"x", L"y"), CError);
    EXPECT_FALSE(second.RecoverFromDat());
    EXPECT_EQ(database.Files(), before);
}

TEST(DatabaseRenaming, StoresNameHashesAndRefusesTakenNames)
{
    CDatabaseFixture database(SmallDatabase());
    EXPECT_FALSE(database->RenameEntry(1, L"WOOD"));
    EXPECT_FALSE(database->RenameEntry(1, L"Brick")) << "its own name in another case";
    EXPECT_TRUE(database->RenameEntry(1, L"stone"));
    database.Reopen();
    EXPECT_EQ(database->Entry(1).name, L"stone");
    const auto hash = static_cast<std::uint16_t>(BuiltNameHash("stone") & 0xFFFFU);
    for (const CacheIndex cache : {CacheIndex::Dxt, CacheIndex::Unc}) {
        EXPECT_EQ(database->ReadHeader(1, cache).nameHash16, hash);
        EXPECT_EQ(database->Entry(1).thumbHeader[SlotOf(cache)].nameHash16, hash);
    }
    EXPECT_EQ(RasterOf(*database, L"stone"), Pixels(0x11));
}

TEST(DatabaseRenaming, LeavesTheLinesOfAliasesAlone)
{
    CDatabaseFixture database(SmallDatabase());
    EXPECT_TRUE(database->RenameEntry(2, L"oak"));
    EXPECT_EQ(database->AliasTarget(0), 2U);
    EXPECT_EQ(database->Entry(0).affiliate, L"oak");
    EXPECT_NE(database.ListText().find("\"early\" \"affiliate=wood\""), std::string::npos);
}

TEST(DatabaseRenaming, DoesNotTouchTheRecordsOfAnAliasTarget)
{
    CDatabaseFixture database(SmallDatabase());
    FileBytes before = database.Files();
    database->ResolvedEntry(0);
    EXPECT_TRUE(database->RenameEntry(0, L"first"));
    FileBytes after = database.Files();
    before.erase("textures.txt");
    after.erase("textures.txt");
    EXPECT_EQ(after, before);
}

TEST(DatabaseRenaming, RefusesNamesThatNoRecordHolds)
{
    CDatabaseFixture database(SmallDatabase());
    const FileBytes before = database.Files();
    EXPECT_EQ(TextOfError([&] { database->RenameEntry(1, L""); }), L"Name should not be empty.");
    for (const wchar_t* const name : {L"a\"b", L"a\tb", L"\x4E2D"})
        EXPECT_EQ(TextOfError([&] { database->RenameEntry(1, name); }), L"Wrong texture name given.");
    EXPECT_EQ(TextOfError([&] { database->RenameEntry(1, std::wstring(64, L'x')); }),
              L"Wrong texture name given.");
    EXPECT_EQ(database.Files(), before);
}

TEST(DatabaseAliases, GetATableWordAndNoRecord)
{
    CDatabaseFixture database(SmallDatabase());
    FileBytes before = database.Files();
    EXPECT_TRUE(database->AddAlias(L"third", L"brick"));
    EXPECT_EQ(RasterOf(*database, L"third"), Pixels(0x11));
    const FileBytes after = database.Files();
    EXPECT_EQ(after.at("textures.dxt.dat"), before["textures.dxt.dat"]);
    auto toc = before["textures.dxt.toc"];
    toc.insert(toc.end(), 4, std::byte{0xFF});
    EXPECT_EQ(after.at("textures.dxt.toc"), toc);
    EXPECT_NE(database.ListText().find("\"third\" \"affiliate=brick\"\r\n"), std::string::npos);
    database.Reopen();
    EXPECT_TRUE(database->HasThumbnails(CacheIndex::Dxt));
    EXPECT_TRUE(database->IsTocValid(CacheIndex::Dxt));
}

TEST(DatabaseCategories, AreAddedRenamedAndRefused)
{
    CDatabaseFixture database(SmallDatabase());
    database->AddCategory(L"peds");
    EXPECT_TRUE(database->RenameCategory(1, L"people"));
    EXPECT_TRUE(database->RenameCategory(1, L"people"));
    EXPECT_EQ(database.ListText().find(std::string(kDefault) +
                                       "cat=1 name=people onfoot=0 slow=0 fast=0 defaultstream=0\r\n"),
              0U);
    EXPECT_FALSE(database->RenameCategory(1, L""));
    ASSERT_EQ(database.Prompt().Shown().size(), 1U);
    EXPECT_NE(database.Prompt().Shown()[0].text.find(L"Empty category name given"), std::wstring::npos);
    EXPECT_EQ(TextOfError([&] { database->AddCategory(L"two words"); }), L"No spaces allowed");
    EXPECT_EQ(TextOfError([&] { database->AddCategory(L""); }), L"Empty category name given");
    EXPECT_THROW(database->AddCategory(std::wstring(64, L'x')), CError);
    EXPECT_EQ(database->Categories().size(), 2U);
}

TEST(DatabaseCategories, DeletingOneRenumbersTheLaterOnes)
{
    CDatabaseBuilder builder;
    for (const char* const line : {"cat=0 name=a", "cat=1 name=b", "cat=2 name=c", "cat=3 name=d"})
        builder.Category(line);
    builder.Texture("zero")
        .Texture("one", " cat=1")
        .Texture("two", " cat=2 width=8")
        .Texture("three", " cat=3");
    CDatabaseFixture database(builder);
    EXPECT_FALSE(database->DeleteCategory(4));
    EXPECT_TRUE(database->DeleteCategory(2));
    EXPECT_EQ(database->CategoryName(2), L"d");
    EXPECT_EQ(database->Categories()[2].cat, 2);
    EXPECT_EQ(database->Entry(1).lineText, "\"one\" cat=1\n");
    EXPECT_EQ(database->Entry(2).lineText, "\"two\" width=8\n");
    EXPECT_EQ(database->Entry(3).lineText, "\"three\" cat=2");
}

TEST(DatabaseStoring, AppendsRecordsAndEntryTogether)
{
    CDatabaseFixture database(SmallDatabase());
    const auto raster = Pixels(0x44);
    const auto thumbnail = Pixels(0x45, 4);
    const PreparedRecord records[] = {Record(CacheIndex::Dxt, RecordKind::Raster, raster, 4),
                                      Record(CacheIndex::Dxt, RecordKind::Thumbnail, thumbnail, 1)};
    database->StoreTexture(MakeEntry({.name = L"new", .width = 4, .height = 4}), records);
    for (int pass = 0; pass < 2; ++pass) {
        EXPECT_EQ(RasterOf(*database, L"new"), raster);
        EXPECT_EQ(database->ReadRaster(5, CacheIndex::Dxt, RecordKind::Thumbnail), thumbnail);
        EXPECT_EQ(database->Entry(5).datOffset[SlotOf(CacheIndex::Unc)], kNone);
        EXPECT_TRUE(database->IsTocValid(CacheIndex::Dxt));
        EXPECT_TRUE(database->IsTocValid(CacheIndex::Unc));
        EXPECT_TRUE(database->HasThumbnails(CacheIndex::Dxt));
        database.Reopen();
    }
}

TEST(DatabaseStoring, MakesAliasesOfThatNameFindTheNewTexture)
{
    CDatabaseBuilder builder;
    builder.Alias("x", "later").Texture("a").Picture("dxt", 1);
    CDatabaseFixture database(builder);
    EXPECT_EQ(database->AliasTarget(0), kNone);
    const auto raster = Pixels(0x44);
    const PreparedRecord record = Record(CacheIndex::Dxt, RecordKind::Raster, raster, 4);
    database->StoreTexture(MakeEntry({.name = L"later"}), {&record, 1});
    EXPECT_EQ(RasterOf(*database, L"x"), raster);
}

TEST(DatabaseStoring, LeavesEverythingAsItWasWhenACacheIsMissing)
{
    CDatabaseFixture database(SmallDatabase());
    const FileBytes before = database.Files();
    const auto raster = Pixels(0x44);
    const PreparedRecord records[] = {Record(CacheIndex::Dxt, RecordKind::Raster, raster, 4),
                                      Record(CacheIndex::Etc1, RecordKind::Raster, raster, 4)};
    EXPECT_EQ(TextOfError([&] { database->StoreTexture(MakeEntry({.name = L"new"}), records); }),
              L"Unable to write cache file");
    EXPECT_EQ(database->EntryCount(), 5U);
    EXPECT_EQ(database.Files(), before);
    EXPECT_FALSE(database->AppendRecord(CacheIndex::Etc1, RecordKind::Raster, records[1].record));
}

TEST(DatabaseCreating, MakesAListAndValidEmptyCaches)
{
    CDatabaseFixture database(FileBytes{}, DiskFileSystem());
    ASSERT_TRUE(database->Create(database.List(), kAllCaches));
    EXPECT_EQ(database.Files().size(), 13U);
    EXPECT_EQ(database.ListText(), kDefault);
    database.Reopen();
    for (const CacheIndex cache : kAllCaches)
        EXPECT_TRUE(database->IsTocValid(cache));
    EXPECT_EQ(database.Files()["textures.pvr.toc"], std::vector<std::byte>(4));
}

TEST(DatabaseRepairs, RebuildsATableByTheWalk)
{
    for (const int change : {-4, 4}) {
        FileBytes files = SmallDatabase().Files("textures");
        const auto good = files["textures.dxt.toc"];
        auto& toc = files["textures.dxt.toc"];
        toc.resize(change < 0 ? toc.size() - 4 : toc.size() + 4);
        const auto damaged = toc;
        CDatabaseFixture database(files, DiskFileSystem());
        EXPECT_FALSE(database->IsTocValid(CacheIndex::Dxt));
        database->RebuildToc(CacheIndex::Dxt);
        EXPECT_EQ(database.Files()["textures.dxt.toc"], good);
        EXPECT_EQ(database.Files()["textures.dxt.toc.bak"], damaged);
        EXPECT_EQ(RasterOf(*database, L"late"), Pixels(0x21, 128));
    }
}

TEST(DatabaseRepairs, KeepsWordsThatLeadToWholeRecordsWhenTheWalkDoesNotFit)
{
    FileBytes files = SmallDatabase().Files("textures");
    files["textures.dxt.dat"].resize(files["textures.dxt.dat"].size() - 1);
    CDatabaseFixture database(files, DiskFileSystem());
    database->RebuildToc(CacheIndex::Dxt);
    EXPECT_EQ(RasterOf(*database, L"brick"), Pixels(0x11));
    EXPECT_EQ(database->OffsetList(CacheIndex::Dxt)[4], kNone);
    EXPECT_TRUE(database->IsTocValid(CacheIndex::Dxt));
}

TEST(DatabaseRepairs, WritesDefaultThumbnailsAndKeepsTheOldFile)
{
    for (const bool framed : {false, true}) {
        CDatabaseFixture database(SmallDatabase(framed));
        const auto old = database.Files()["textures.dxt.tmb"];
        EXPECT_TRUE(
            database->WriteDefaultThumbnails(CacheIndex::Dxt, framed ? StreamMode::Framed : StreamMode::Raw));
        EXPECT_EQ(database.Files()["textures.dxt.tmb.bak"], old);
        EXPECT_EQ(database.Files()["textures.dxt.tmb"].size(), framed ? 60U : 36U);
        EXPECT_TRUE(database->HasThumbnails(CacheIndex::Dxt));
        EXPECT_EQ(database->ReadRaster(4, CacheIndex::Dxt, RecordKind::Thumbnail), Pixels(0x88, 4));
    }
}

TEST(DatabaseRepairs, RecoversAListFromTheRecords)
{
    FileBytes files = SmallDatabase().Files("textures");
    files.erase("textures.txt");
    CDatabaseFixture database(files, DiskFileSystem());
    EXPECT_TRUE(database->RecoverFromDat());
    EXPECT_EQ(database.ListText(),
              std::string(kDefault) +
                  "\"_0x00000000\" height=4 width=4\r\n\"_0x00000048\" height=4 width=8\r\n"
                  "\"_0x000000d0\" height=4 width=4\r\n");
    EXPECT_EQ(RasterOf(*database, L"_0x000000d0"), Pixels(0x31));
    EXPECT_TRUE(database->IsTocValid(CacheIndex::Dxt));
    EXPECT_TRUE(database->IsTocValid(CacheIndex::Unc));
    EXPECT_EQ(RasterOf(*database, L"_0x00000000", CacheIndex::Unc), Pixels(0x12, 256));
}

TEST(DatabaseRepairs, RecoversNothingFromARecordWithoutPixels)
{
    FileBytes files = SmallDatabase().Files("textures");
    files.erase("textures.txt");
    files["textures.dxt.dat"][2] = std::byte{0};
    CDatabaseFixture database(files, DiskFileSystem());
    EXPECT_THROW(database->RecoverFromDat(), CError);
    ASSERT_FALSE(database.Prompt().Shown().empty());
    EXPECT_NE(database.Prompt().Shown()[0].text.find(L"fatal error: texture size = 0 on offset given"),
              std::wstring::npos);
    EXPECT_FALSE(database.Files().contains("textures.txt"));
}

TEST(DatabaseRepairs, FixesNameHashesOfPresentRecordsOnly)
{
    FileBytes files = SmallDatabase().Files("textures");
    const FileBytes good = files;
    files["textures.dxt.dat"][0] ^= std::byte{0x5A};
    files["textures.unc.tmb"][1] ^= std::byte{0x5A};
    CDatabaseFixture database(files, DiskFileSystem());
    CNoProgress progress;
    database->FixNameHashes(progress);
    EXPECT_EQ(database.Files(), good);
}
