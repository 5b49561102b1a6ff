#include "database/CacheRebuild.h"

#include <algorithm>
#include <array>

#include "tests/database/DatabaseFixture.h"
#include "tests/database/WatchedFileSystem.h"
#include "tests/support/FaultyFileSystem.h"

namespace {

/// A raster and a thumbnail of "RGBA 8888".
class CNewPicture {
public:
    CNewPicture(CacheIndex cache, std::uint8_t fill, std::uint16_t hash16)
        : m_aRaster(Pixels(fill)), m_aThumbnail(Pixels(fill, 4))
    {
        m_aRecords.push_back({cache, RecordKind::Raster, Record(m_aRaster, hash16, 4)});
        m_aRecords.push_back({cache, RecordKind::Thumbnail, Record(m_aThumbnail, hash16, 1)});
    }
    std::span<const PreparedRecord> Records() const { return m_aRecords; }

private:
    static NewRecord Record(std::span<const std::byte> bytes, std::uint16_t hash16, std::uint16_t side)
    {
        return {{.nameHash16 = hash16, .glFormat = 0x1401, .width = side, .heightAndMips = side}, bytes};
    }
    std::vector<std::byte> m_aRaster;
    std::vector<std::byte> m_aThumbnail;
    std::vector<PreparedRecord> m_aRecords;
};

/// Every ordinary entry of the small database gets a new picture: brick 0x61, wood 0x62, sand 0x64.
void AppendAll(CCacheRebuild& rebuild, CTextureDatabase& database, CacheIndex cache)
{
    for (std::uint32_t i = 0; i < database.EntryCount(); ++i) {
        if (database.IsAlias(i))
            rebuild.Append({});
        else
            rebuild.Append(CNewPicture(cache, static_cast<std::uint8_t>(0x60 + i), 0x0100).Records());
    }
}

void RebuildAll(CTextureDatabase& database, CacheIndex cache)
{
    CCacheRebuild rebuild(database, cache);
    AppendAll(rebuild, database, cache);
    rebuild.Finish();
}

std::vector<std::byte> Record(std::uint8_t fill, std::uint8_t side, std::size_t count)
{
    const std::array<std::uint8_t, 8> header = {0, 1, 1, 0x14, side, 0, side, 0};
    std::vector<std::byte> bytes(header.size() + count, std::byte{fill});
    std::ranges::transform(header, bytes.begin(), [](std::uint8_t value) { return std::byte{value}; });
    return bytes;
}

std::vector<std::byte> Words(std::initializer_list<std::uint32_t> words)
{
    std::vector<std::byte> bytes;
    for (const std::uint32_t word : words)
        for (int shift = 0; shift < 32; shift += 8)
            bytes.push_back(static_cast<std::byte>(word >> shift));
    return bytes;
}

std::vector<std::byte> Joined(std::initializer_list<std::vector<std::byte>> parts)
{
    std::vector<std::byte> bytes;
    for (const auto& part : parts)
        bytes.insert(bytes.end(), part.begin(), part.end());
    return bytes;
}

using Rasters = std::vector<std::vector<std::byte>>;

Rasters RastersOf(CTextureDatabase& database, CacheIndex cache)
{
    Rasters rasters;
    for (std::uint32_t i = 0; i < database.EntryCount(); ++i)
        rasters.push_back(RasterOf(database, database.Entry(i).name, cache));
    return rasters;
}

const Rasters kNew = {Pixels(0x62), Pixels(0x61), Pixels(0x62), Pixels(0x62), Pixels(0x64)};

// Opened again as at the next start, tables mended where they are found invalid.
Rasters RastersAfterMending(CDatabaseFixture& database, CacheIndex cache)
{
    database.Reopen();
    if (!database->IsOpen(cache))
        return {};
    if (database->HasToc(cache) && !database->IsTocValid(cache))
        database->RebuildToc(cache);
    return RastersOf(*database, cache);
}

}  // namespace

TEST(CacheRebuild, WritesTheFilesOfACacheThatWasNotThere)
{
    CDatabaseFixture database(SmallDatabase());
    const FileBytes before = database.Files();
    RebuildAll(*database, CacheIndex::Etc1);
    FileBytes after = database.Files();
    EXPECT_EQ(after["textures.etc.dat"],
              Joined({Record(0x61, 4, 64), Record(0x62, 4, 64), Record(0x64, 4, 64)}));
    EXPECT_EQ(after["textures.etc.toc"], Words({216, 0xFFFFFFFF, 0, 72, 0xFFFFFFFF, 144}));
    EXPECT_EQ(after["textures.etc.tmb"],
              Joined({Record(0x61, 1, 4), Record(0x62, 1, 4), Record(0x64, 1, 4)}));
    for (const auto& [name, bytes] : before)
        EXPECT_EQ(after[name], bytes) << name;
    EXPECT_EQ(after.size(), before.size() + 3);
}

TEST(CacheRebuild, OpensTheNewFilesForTheDatabase)
{
    CDatabaseFixture database(SmallDatabase());
    RebuildAll(*database, CacheIndex::Etc1);
    EXPECT_TRUE(database->IsOpen(CacheIndex::Etc1));
    EXPECT_TRUE(database->IsTocValid(CacheIndex::Etc1));
    EXPECT_TRUE(database->HasThumbnails(CacheIndex::Etc1));
    EXPECT_EQ(RastersOf(*database, CacheIndex::Etc1), kNew);
    EXPECT_EQ(database->Entry(2).tmbOffset[SlotOf(CacheIndex::Etc1)], 12U);
    EXPECT_EQ(RasterOf(*database, L"wood"), Pixels(0x21, 128)) << "the other caches are as before";
}

TEST(CacheRebuild, ReplacesAnOpenCacheAlsoForItsAliases)
{
    CDatabaseFixture database(SmallDatabase());
    EXPECT_EQ(RasterOf(*database, L"late"), Pixels(0x21, 128));
    RebuildAll(*database, CacheIndex::Dxt);
    EXPECT_EQ(RastersOf(*database, CacheIndex::Dxt), kNew);
    database.Reopen();
    EXPECT_EQ(RastersOf(*database, CacheIndex::Dxt), kNew);
}

TEST(CacheRebuild, MakesANewPrimaryCache)
{
    CDatabaseBuilder builder;
    builder.Texture("wood").Picture("unc", 0x22).Alias("late", "wood");
    CDatabaseFixture database(builder);
    EXPECT_EQ(RasterOf(*database, L"late", CacheIndex::Unc), Pixels(0x22));
    RebuildAll(*database, CacheIndex::Dxt);
    EXPECT_EQ(database->PrimaryCache(), CacheIndex::Dxt);
    EXPECT_EQ(RasterOf(*database, L"late"), Pixels(0x60));
}

TEST(CacheRebuild, LeavesNoTraceWhenItIsGivenUp)
{
    CDatabaseFixture database(SmallDatabase());
    const FileBytes before = database.Files();
    {
        CCacheRebuild rebuild(*database, CacheIndex::Dxt);
        AppendAll(rebuild, *database, CacheIndex::Dxt);
        EXPECT_EQ(RasterOf(*database, L"brick"), Pixels(0x11)) << "the old files are in use until the end";
        EXPECT_EQ(database.Files().size(), before.size() + 3);
    }
    EXPECT_EQ(database.Files(), before);
}

TEST(CacheRebuild, RefusesToFinishWithoutARecordForEveryEntry)
{
    CDatabaseFixture database(SmallDatabase());
    const FileBytes before = database.Files();
    {
        CCacheRebuild rebuild(*database, CacheIndex::Dxt);
        rebuild.Append({});
        EXPECT_THROW(rebuild.Finish(), CError);
    }
    EXPECT_EQ(database.Files(), before);
    EXPECT_EQ(RasterOf(*database, L"brick"), Pixels(0x11));
}

TEST(CacheRebuild, RefusesAFileThatItCouldNotReplace)
{
    CDatabaseFixture database(SmallDatabase());
    std::filesystem::create_directory(database.Folder() / "textures.etc.dat");
    const FileBytes before = database.Files();
    EXPECT_THROW(CCacheRebuild(*database, CacheIndex::Etc1), CError);
    EXPECT_EQ(database.Files(), before);
}

TEST(CacheRebuild, TakesAnotherNameWhenANewFileIsLeftFromACrash)
{
    CDatabaseFixture database(SmallDatabase());
    WriteFiles(database.Folder(), {{"textures.etc.dat.new", BytesOf("left")}});
    RebuildAll(*database, CacheIndex::Etc1);
    EXPECT_EQ(TextOf(database.Files()["textures.etc.dat.new"]), "left");
    EXPECT_EQ(RastersOf(*database, CacheIndex::Etc1), kNew);
}

// Failures.

TEST(CacheRebuild, KeepsTheOldCacheWhereverTheDiskFails)
{
    std::uint32_t goodWrites = 0;
    for (bool isDone = false; !isDone && goodWrites < 100; ++goodWrites) {
        CFaultyFileSystem disk(1000000);
        CDatabaseFixture database(SmallDatabase().Files("textures"), disk);
        const Rasters old = RastersOf(*database, CacheIndex::Dxt);
        const Rasters other = RastersOf(*database, CacheIndex::Unc);
        disk.Allow(goodWrites);
        try {
            RebuildAll(*database, CacheIndex::Dxt);
            isDone = true;
        } catch (const CError& error) {
            EXPECT_EQ(error.Text(), L"Unable to write cache file");
        }
        disk.Allow(1000000);
        EXPECT_TRUE(database->IsOpen(CacheIndex::Dxt)) << goodWrites;
        const Rasters now = RastersAfterMending(database, CacheIndex::Dxt);
        EXPECT_TRUE(now == kNew || (!isDone && now == old)) << goodWrites;
        EXPECT_EQ(RastersAfterMending(database, CacheIndex::Unc), other) << goodWrites;
        for (const auto& [name, bytes] : database.Files())
            EXPECT_EQ(name.find(".new"), std::string::npos) << name << " after " << goodWrites;
    }
    EXPECT_GT(goodWrites, 10U);
    EXPECT_LT(goodWrites, 100U) << "it never succeeded";
}

TEST(CacheRebuild, LeavesTheOldOrTheNewCacheWheneverItIsInterrupted)
{
    std::vector<FileBytes> images;
    Rasters old;
    {
        CWatchedFileSystem disk;
        CDatabaseFixture database(SmallDatabase().Files("textures"), disk);
        old = RastersOf(*database, CacheIndex::Dxt);
        disk.Watch([&] { images.push_back(database.Files()); });
        RebuildAll(*database, CacheIndex::Dxt);
        disk.Watch({});
    }
    EXPECT_GT(images.size(), 10U);
    for (std::size_t image = 0; image < images.size(); ++image) {
        CDatabaseFixture database(images[image], DiskFileSystem());
        const Rasters now = RastersAfterMending(database, CacheIndex::Dxt);
        EXPECT_TRUE(now == old || now == kNew) << "change " << image;
    }
}
