#include "database/CacheFileName.h"
#include "database/RecordLayout.h"
#include "tests/database/DatabaseFixture.h"

namespace {

std::wstring ErrorOf(CTextureDatabase& database, std::uint32_t index, CacheIndex cache = CacheIndex::Dxt)
{
    try {
        database.ReadRaster(index, cache, RecordKind::Raster);
    } catch (const CError& error) {
        EXPECT_FALSE(error.WasShown());
        return error.Text();
    }
    return L"";
}

constexpr const wchar_t* kWrongSize = L"Wrong texture size given. Cache is corrupted.";
constexpr const wchar_t* kWrongOffset = L"Wrong texture offset given. DAT / TOC is corrupted.";

}  // namespace

TEST(CacheFileName, DropsTheLastFourCharactersOfTheListWhateverTheyAre)
{
    EXPECT_EQ(CacheFilePath("a/textures.txt", CacheIndex::Etc1, L".toc"),
              std::filesystem::path("a/textures.etc.toc"));
    EXPECT_EQ(CacheFilePath("a/textures", CacheIndex::Pvrtc, L".dat"),
              std::filesystem::path("a/text.pvr.dat"));
}

TEST(DatabaseReading, ReadsRastersOfBothStreamModesAndThroughAliases)
{
    for (const bool framed : {false, true}) {
        CDatabaseFixture database(SmallDatabase(framed));
        ASSERT_EQ(database->EntryCount(), 5U);
        EXPECT_EQ(database->PrimaryCache(), CacheIndex::Dxt);
        EXPECT_EQ(RasterOf(*database, L"brick"), Pixels(0x11));
        EXPECT_EQ(RasterOf(*database, L"wood"), Pixels(0x21, 128));
        EXPECT_EQ(RasterOf(*database, L"early", CacheIndex::Unc), Pixels(0x22));
        EXPECT_EQ(RasterOf(*database, L"late"), Pixels(0x21, 128));
        EXPECT_EQ(database->AliasTarget(0), 2U);
        EXPECT_EQ(database->GameOf(0, CacheIndex::Dxt), framed ? StreamMode::Framed : StreamMode::Raw);
        EXPECT_TRUE(database->HasThumbnails(CacheIndex::Dxt));
        EXPECT_EQ(database->ReadRaster(4, CacheIndex::Dxt, RecordKind::Thumbnail), Pixels(0x31, 4));
        EXPECT_TRUE(database->IsTocValid(CacheIndex::Dxt));
        EXPECT_FALSE(database->IsOpen(CacheIndex::Etc1));
        EXPECT_TRUE(database.Prompt().Shown().empty());
    }
}

TEST(DatabaseReading, ChangesNoByteByLooking)
{
    CDatabaseFixture database(SmallDatabase());
    const FileBytes before = database.Files();
    for (std::uint32_t i = 0; i < database->EntryCount(); ++i) {
        database->ResolvedEntry(i);
        for (const CacheIndex cache : {CacheIndex::Dxt, CacheIndex::Unc}) {
            database->ReadHeader(i, cache);
            database->ReadRaster(i, cache, RecordKind::Raster);
            database->RecordSize(i, cache, RecordKind::Thumbnail);
        }
        database->FindContaining(L"O", i);
    }
    database->Reload();
    database.Close();
    EXPECT_EQ(database.Files(), before);
}

TEST(DatabaseReading, FindsNamesWithAndWithoutCase)
{
    CDatabaseFixture database(SmallDatabase());
    EXPECT_FALSE(database->FindByName(L"BRICK", true));
    EXPECT_EQ(database->FindByName(L"BRICK", false), 1U);
    EXPECT_EQ(database->FindContaining(L"OO", 0), 2U);
    EXPECT_FALSE(database->FindContaining(L"OO", 3));
    EXPECT_EQ(database->CountAliasesOf(2), 2U);
    EXPECT_EQ(database->FindAliasOf(2, 1), 3U);
    EXPECT_EQ(database->CategoryName(0), L"Default");
    EXPECT_EQ(database->CategoryName(1), L"");
}

TEST(DatabaseReading, LeavesAnAliasOfNothingWithoutARaster)
{
    CDatabaseBuilder builder;
    builder.Alias("lost", "nobody")
        .Alias("chain", "lost")
        .Alias("self", "self")
        .Texture("a")
        .Picture("dxt", 1);
    CDatabaseFixture database(builder);
    for (const std::uint32_t index : {0U, 1U, 2U}) {
        EXPECT_EQ(database->AliasTarget(index), kNone);
        EXPECT_EQ(ErrorOf(*database, index), kWrongSize);
    }
}

TEST(DatabaseReading, ResolvesToTheFirstOfEqualNames)
{
    CDatabaseBuilder builder;
    builder.Alias("x", "twin").Texture("twin").Picture("dxt", 1).Texture("twin").Picture("dxt", 2);
    CDatabaseFixture database(builder);
    EXPECT_EQ(database->AliasTarget(0), 1U);
}

TEST(DatabaseReading, WalksTheRecordsWithoutATableOfContents)
{
    FileBytes files = SmallDatabase().Files("textures");
    files.erase("textures.dxt.toc");
    CDatabaseFixture database(files, DiskFileSystem());
    EXPECT_FALSE(database->HasToc(CacheIndex::Dxt));
    EXPECT_EQ(RasterOf(*database, L"sand"), Pixels(0x31));
    EXPECT_EQ(RasterOf(*database, L"sand", CacheIndex::Unc), Pixels(0x32, 16));
    EXPECT_EQ(database->OffsetList(CacheIndex::Dxt)[3], kNone) << "an alias has no place";
}

TEST(DatabaseReading, IgnoresThumbnailsWhoseNumberDiffers)
{
    for (const int change : {-1, 12}) {
        FileBytes files = SmallDatabase().Files("textures");
        auto& tmb = files["textures.dxt.tmb"];
        tmb.resize(change < 0 ? tmb.size() - 12 : tmb.size() + 12);
        CDatabaseFixture database(files, DiskFileSystem());
        EXPECT_FALSE(database->HasThumbnails(CacheIndex::Dxt));
        EXPECT_EQ(database->ResolvedEntry(1).tmbOffset[0], kNone);
        EXPECT_TRUE(database->HasThumbnails(CacheIndex::Unc));
    }
}

TEST(DatabaseReading, TakesARawRecordThatLooksFramedAsForced)
{
    CDatabaseBuilder builder;
    BuiltRaster raster{.glFormat = 0x1401, .width = 4, .heightAndMips = 4, .pixels = Pixels(0)};
    raster.pixels[0] = std::byte{60};
    raster.pixels[4] = std::byte{7};
    builder.Texture("a").Raster("unc", raster);
    CDatabaseFixture detected(builder);
    EXPECT_EQ(detected->DetectStreamMode(0, CacheIndex::Unc, RecordKind::Raster), StreamMode::Framed);
    CDatabaseFixture forced(builder, StreamMode::Raw);
    EXPECT_EQ(RasterOf(*forced, L"a", CacheIndex::Unc), raster.pixels);
}

TEST(DatabaseReading, ReadsAFrameOfSizeZeroAsUncoded)
{
    CDatabaseBuilder builder;
    BuiltRaster raster{.glFormat = 0x1401, .width = 4, .heightAndMips = 4, .pixels = Pixels(0, 4)};
    const auto pixels = Pixels(0x5A);
    raster.pixels.insert(raster.pixels.end(), pixels.begin(), pixels.end());
    builder.Texture("a").Raster("dxt", raster);
    CDatabaseFixture database(builder, StreamMode::Framed);
    EXPECT_EQ(RasterOf(*database, L"a"), pixels);
    EXPECT_EQ(database->RecordSize(0, CacheIndex::Dxt, RecordKind::Raster), 64U + 12);
}

TEST(DatabaseReading, ReadsARecordBeyondTwoGigabytes)
{
    CDatabaseBuilder builder;
    builder.Texture("a").Picture("dxt", 0x77);
    FileBytes files = builder.Files("textures");
    const auto record = files["textures.dxt.dat"];
    for (const unsigned part : {4U, 5U, 6U})
        files["textures.dxt.toc"][part] = std::byte{0};
    files["textures.dxt.toc"][7] = std::byte{0xC0};
    CDatabaseFixture database(files, DiskFileSystem());
    database.Close();
    auto dat = DiskFileSystem().Open(database.Folder() / "textures.dxt.dat", OpenMode::ReadWrite);
    if (!dat || !dat->Resize(0xC0000000U) || !dat->WriteAt(0xC0000000U, record))
        GTEST_SKIP() << "this disk does not hold a sparse file of 3 GB";
    dat.reset();
    database.Reopen();
    EXPECT_EQ(RasterOf(*database, L"a"), Pixels(0x77));
}

// Damaged input.

TEST(DatabaseReading, RefusesHeadersThatCannotBeRight)
{
    CDatabaseBuilder builder;
    const auto raster = [](std::uint16_t format, std::uint16_t width, std::uint16_t height) {
        return BuiltRaster{
            .glFormat = format, .width = width, .heightAndMips = height, .pixels = Pixels(1, 16)};
    };
    builder.Texture("no width").Raster("dxt", raster(0x1401, 0, 4));
    builder.Texture("unknown").Raster("dxt", raster(0x1234, 4, 4));
    builder.Texture("tiny dxt5").Raster("dxt", raster(0x83F3, 1, 1));
    builder.Texture("huge").Raster("dxt", raster(0x1401, 65535, 32767));
    builder.Texture("none");
    CDatabaseFixture database(builder);
    EXPECT_EQ(ErrorOf(*database, 0), kWrongSize);
    EXPECT_EQ(ErrorOf(*database, 1), kWrongSize);
    EXPECT_EQ(ErrorOf(*database, 2), kWrongSize);
    EXPECT_EQ(ErrorOf(*database, 3), kWrongOffset) << "8 GB that the file does not hold";
    EXPECT_EQ(ErrorOf(*database, 4), kWrongSize);
    EXPECT_EQ(ErrorOf(*database, 0, CacheIndex::Etc1), kWrongSize);
    EXPECT_THROW(database->ReadHeader(0, CacheIndex::Etc1), CError);
    EXPECT_EQ(database->ReadHeader(4, CacheIndex::Dxt), RasterHeader{});
}

TEST(DatabaseReading, SurvivesEveryTruncationOfEveryCacheFile)
{
    const FileBytes whole = SmallDatabase(true).Files("textures");
    for (const char* const name :
         {"textures.dxt.toc", "textures.dxt.dat", "textures.dxt.tmb", "textures.txt"}) {
        for (std::size_t length = 0; length < whole.at(name).size(); ++length) {
            FileBytes files = whole;
            files[name].resize(length);
            CDatabaseFixture database(files, DiskFileSystem());
            for (std::uint32_t i = 0; i < database->EntryCount(); ++i)
                for (const RecordKind kind : {RecordKind::Raster, RecordKind::Thumbnail})
                    try {
                        database->RecordSize(i, CacheIndex::Dxt, kind);
                        database->ReadRaster(i, CacheIndex::Dxt, kind);
                    } catch (const CError& error) {
                        EXPECT_FALSE(error.Text().empty());
                    }
        }
    }
}

TEST(DatabaseReading, SurvivesADirectoryInPlaceOfAFile)
{
    FileBytes files = SmallDatabase().Files("textures");
    files.erase("textures.dxt.dat");
    CDatabaseFixture database(files, DiskFileSystem());
    database.Close();
    std::filesystem::create_directory(database.Folder() / "textures.dxt.dat");
    database.Reopen();
    EXPECT_FALSE(database->IsOpen(CacheIndex::Dxt));
    EXPECT_EQ(RasterOf(*database, L"brick", CacheIndex::Unc), Pixels(0x12, 256));
    EXPECT_THROW(database->DeleteEntry(1, std::nullopt), CError)
        << "its records would belong to other entries";
}

TEST(DatabaseReading, WorksWithoutAnyFile)
{
    CDatabaseFixture database(FileBytes{}, DiskFileSystem());
    EXPECT_EQ(database->EntryCount(), 0U);
    EXPECT_FALSE(database->IsListOpen());
    EXPECT_FALSE(database->PrimaryCache());
    EXPECT_FALSE(database->RecoverFromDat());
    EXPECT_THROW(database->Save(), CError);
    EXPECT_TRUE(database.Files().empty());
    EXPECT_TRUE(database.Prompt().Shown().empty());
}

TEST(DatabaseReading, ReportsALoadOfOffsetsWithoutData)
{
    CDatabaseFixture database(SmallDatabase());
    EXPECT_THROW(database->LoadOffsets(CacheIndex::Pvrtc, RecordKind::Raster), CError);
    ASSERT_EQ(database.Prompt().Shown().size(), 1U);
    const PromptBox& box = database.Prompt().Shown()[0];
    EXPECT_EQ(box.icon, PromptIcon::Error);
    EXPECT_NE(
        box.text.find(L"A fuckin' error occurred:\n\nDAT file is not loaded for requested cache: \n\n File: "
                      L"CTextureDatabase\n Line: "),
        std::wstring::npos);
    EXPECT_NE(box.text.find(L"\n Value: 2 [0x2]\n\nPlease check latest program version on it's homepage."),
              std::wstring::npos);
}

TEST(RecordLayout, TellsTheStreamModeByTheTwoWords)
{
    const RasterHeader header{.nameHash16 = 0, .glFormat = 0x1401, .width = 4, .heightAndMips = 4};
    const auto mode = [&header](std::uint32_t frameSize, std::uint32_t marker) {
        return DetectMode({.header = header, .frameSize = frameSize, .marker = marker, .bytes = 16});
    };
    EXPECT_EQ(mode(68, 0), StreamMode::Framed);
    EXPECT_EQ(mode(68, 9), StreamMode::Framed);
    EXPECT_EQ(mode(4, 9), StreamMode::Raw);
    EXPECT_EQ(mode(5, 255), StreamMode::Framed);
    EXPECT_EQ(mode(69, 9), StreamMode::Raw);
    EXPECT_EQ(mode(40, 256), StreamMode::Raw);
    EXPECT_EQ(mode(40, 0), StreamMode::Raw);
}
