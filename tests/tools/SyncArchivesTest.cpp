// Finding and deleting the textures that no model uses: what counts as used, the texts, and the same files as
// deleting one texture after the other.

#include "tools/SyncArchives.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

#include "base/Text.h"
#include "tests/support/DatabaseBuilder.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/ImgFiles.h"
#include "tests/support/MemoryFileSystem.h"
#include "tests/support/RenderWareFiles.h"
#include "tests/support/ScriptedPrompt.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using RwFile::Bytes;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class CNotedProgress final : public IProgress {
public:
    explicit CNotedProgress(std::size_t stopAt = SIZE_MAX) : m_nStopAt(stopAt) {}
    void Report(std::uint32_t current, std::uint32_t total, const std::wstring& text) override
    {
        m_aReports.push_back(std::to_string(current) + "/" + std::to_string(total) + " " + ToUtf8(text));
    }
    bool Cancelled() const override { return m_aReports.size() >= m_nStopAt; }
    const std::vector<std::string>& Reports() const { return m_aReports; }

private:
    std::size_t m_nStopAt;
    std::vector<std::string> m_aReports;
};

Bytes ModelOf(const std::vector<std::string>& textures)
{
    return RwFile::Model({{.textures = textures}});
}

UsedTextures Collect(const ImgBytes& archive, IProgress& progress)
{
    CMemoryFileSystem files;
    files.Put("a.img", archive);
    UsedTextures used;
    CollectUsedTextures("a.img", used, progress, files);
    return used;
}

UsedTextures Collect(const std::vector<ImgEntry>& entries)
{
    CNoProgress progress;
    return Collect(Version2Archive(entries), progress);
}

UsedTextures UsedNames(std::vector<std::wstring> names)
{
    UsedTextures used;
    used.names.insert(names.begin(), names.end());
    used.modelsRead = 1;
    return used;
}

class SyncArchives : public testing::Test {
protected:
    void Write(CDatabaseBuilder& builder) { builder.Write(List()); }
    std::filesystem::path List() const { return m_oFolder / "list.txt"; }

    template <class Work>
    void WithDatabase(Work work)
    {
        CTextureDatabase database(StreamMode::Auto, DiskFileSystem(), m_oPrompt);
        ASSERT_TRUE(database.Open(List()));
        work(database);
    }

    SyncDeletion Delete(CTextureDatabase& database, const std::vector<std::uint32_t>& entries)
    {
        const auto rows = CheckedRows(database, entries);
        return DeleteUnusedTextures(database, rows, m_oProgress);
    }

    std::vector<std::wstring> Names(const CTextureDatabase& database) const
    {
        std::vector<std::wstring> names;
        for (std::uint32_t i = 0; i < database.EntryCount(); ++i)
            names.push_back(database.Entry(i).name);
        return names;
    }

    CTemporaryFolder m_oFolder;
    CScriptedPrompt m_oPrompt;
    CNotedProgress m_oProgress;
};

/// Two textures, each with an alias, and one without.
CDatabaseBuilder Aliases()
{
    CDatabaseBuilder builder;
    builder.Texture("brick")
        .Picture("dxt", 1)
        .Alias("wall", "brick")
        .Texture("wood")
        .Picture("dxt", 2)
        .Alias("fence", "wood")
        .Texture("glass")
        .Picture("dxt", 3);
    return builder;
}

}  // namespace

// What counts as used.

TEST_F(SyncArchives, CollectsTheNamesOfEveryGeometryAndMaterial)
{
    const Bytes model = RwFile::Clump(
        {RwFile::Geometry(RwFile::MaterialList(
             {RwFile::Material({.textures = {"brick", "wood"}}), RwFile::Material({.textures = {}})})),
         RwFile::Geometry(RwFile::MaterialList({RwFile::Material({.textures = {"Brick"}})}))});
    const auto used = Collect(
        {{.name = "house.dff", .contents = model}, {.name = "ROAD.DFF", .contents = ModelOf({"tar"})}});
    EXPECT_THAT(used.names, UnorderedElementsAre(L"brick", L"wood", L"Brick", L"tar"));
    EXPECT_EQ(used.modelsRead, 2U);
    EXPECT_EQ(used.modelsSkipped, 0U);
    EXPECT_TRUE(used.IsKnown());
}

TEST_F(SyncArchives, CollectsTheNamesOfEffects)
{
    const Bytes deep = RwFile::EffectExtension("shine", 120);
    const Bytes effects = RwFile::Section(
        0x120, RwFile::Joined({RwFile::Words({2, 2, 0}), RwFile::Texture("env"), RwFile::Words({0})}));
    const auto used = Collect(
        {{.name = "a.dff", .contents = RwFile::Model({{.textures = {"body"}, .extension = deep}})},
         {.name = "b.dff", .contents = RwFile::Model({{.textures = {"body"}, .extension = effects}})}});
    EXPECT_THAT(used.names, UnorderedElementsAre(L"body", L"shine", L"env"));
}

TEST_F(SyncArchives, LooksAtModelsOnly)
{
    const auto used = Collect({{.name = "a.dff.old", .contents = ModelOf({"old"})},
                               {.name = "a.txd", .contents = ModelOf({"txd"})},
                               {.name = "dff", .contents = ModelOf({"bare"})}});
    EXPECT_THAT(used.names, UnorderedElementsAre(L"bare"));
}

TEST_F(SyncArchives, ReadsModelsBehindOtherSectionsAndSeveralInOneEntry)
{
    const Bytes animations = RwFile::Section(0x2B, RwFile::Filled(300, 7));
    const auto used =
        Collect({{.name = "a.dff",
                  .contents = RwFile::Joined({animations, ModelOf({"first"}), ModelOf({"second"})})}});
    EXPECT_THAT(used.names, UnorderedElementsAre(L"first", L"second"));
    EXPECT_EQ(used.modelsRead, 1U);
}

TEST_F(SyncArchives, DoesNotReadIntoTheNextEntry)
{
    // The first model fills its sector to the last byte.
    Bytes model = ModelOf({"first"});
    const std::size_t spare = 2048 - model.size() - 12;
    model = RwFile::Joined({model, RwFile::Section(0x2B, RwFile::Filled(spare, 0))});
    ASSERT_EQ(model.size(), 2048U);
    const auto used =
        Collect({{.name = "a.dff", .contents = model}, {.name = "b.txt", .contents = ModelOf({"other"})}});
    EXPECT_THAT(used.names, UnorderedElementsAre(L"first"));
}

TEST_F(SyncArchives, ReadsAModelWhoseEntryHasNoSize)
{
    const auto used = Collect({{.name = "a.dff", .contents = ModelOf({"brick"}), .size = 0}});
    EXPECT_THAT(used.names, UnorderedElementsAre(L"brick"));
    EXPECT_EQ(used.modelsRead, 1U);
}

TEST_F(SyncArchives, SkipsModelsThatCannotBeReadAndKeepsWhatWasRead)
{
    // More geometries than there are, a section of another version in the middle, and no model at all.
    const Bytes short1 = RwFile::Clump(
        {RwFile::Geometry(RwFile::MaterialList({RwFile::Material({.textures = {"kept"}})}))}, 3);
    const Bytes noModel = BytesOf("this is no model, but some text");
    const Bytes dictionary = RwFile::Dictionary({});
    const auto used = Collect({{.name = "short.dff", .contents = short1},
                               {.name = "text.dff", .contents = noModel},
                               {.name = "txd.dff", .contents = dictionary},
                               {.name = "far.dff", .offset = 0x200000, .size = 1},
                               {.name = "beyond.dff", .offset = 1000, .size = 1},
                               {.name = "good.dff", .contents = ModelOf({"good"})}});
    EXPECT_THAT(used.names, UnorderedElementsAre(L"kept", L"good"));
    EXPECT_EQ(used.modelsRead, 1U);
    EXPECT_EQ(used.modelsSkipped, 5U);
}

TEST_F(SyncArchives, ReadsEveryTruncationOfAModel)
{
    const Bytes whole = Version2Archive(
        {{.name = "a.dff",
          .contents = RwFile::Model({{.textures = {"brick", "wood"}}, {.textures = {"glass"}}})}});
    CNoProgress progress;
    std::size_t most = 0;
    for (std::size_t length = 0; length <= whole.size(); length += 5) {
        const ImgBytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        const UsedTextures used = Collect(cut, progress);
        EXPECT_LE(used.modelsRead + used.modelsSkipped, 1U) << length;
        EXPECT_GE(used.names.size(), most) << "more bytes never tell less: " << length;
        most = std::max(most, used.names.size());
    }
    EXPECT_EQ(most, 3U);
}

TEST_F(SyncArchives, ReportsTheModelsByTheirPlaceInTheDirectory)
{
    CNotedProgress progress;
    Collect(Version2Archive({{.name = "a.txd"},
                             {.name = "b.dff", .contents = ModelOf({})},
                             {.name = "c.dff", .contents = ModelOf({})}}),
            progress);
    EXPECT_THAT(progress.Reports(), ElementsAre("0/3 ", "1/3 b.dff", "2/3 c.dff"));
}

TEST_F(SyncArchives, JoinsSeveralArchivesAndCountsThoseThatCannotBeOpened)
{
    CMemoryFileSystem files;
    files.Put("a.img", Version2Archive({{.name = "a.dff", .contents = ModelOf({"brick"})}}));
    const Version1Files old = Version1Archive({{.name = "b.dff", .contents = ModelOf({"wood"})}});
    files.Put("b.img", old.img);
    files.Put("b.dir", old.dir);
    files.Put("c.img", old.img);
    const std::vector<std::filesystem::path> archives = {"a.img", "b.img", "c.img", "missing.img"};
    CNoProgress progress;
    const UsedTextures used = CollectUsedTextures(archives, progress, files);
    EXPECT_THAT(used.names, UnorderedElementsAre(L"brick", L"wood"));
    EXPECT_EQ(used.modelsRead, 2U);
    EXPECT_EQ(used.archivesNotOpened, 2U);
}

TEST_F(SyncArchives, KnowsNothingWhenItWasStopped)
{
    CNotedProgress progress(3);
    const UsedTextures used = Collect(Version2Archive({{.name = "a.dff", .contents = ModelOf({"a"})},
                                                       {.name = "b.dff", .contents = ModelOf({"b"})}}),
                                      progress);
    EXPECT_TRUE(used.wasStopped);
    EXPECT_FALSE(used.IsKnown());
}

// What is unused.

TEST_F(SyncArchives, ComparesNamesExactly)
{
    auto builder = Aliases();
    Write(builder);
    WithDatabase([&](CTextureDatabase& database) {
        const auto unused =
            FindUnusedTextures(database, UsedNames({L"brick", L"WOOD", L"fence"}), m_oProgress);
        EXPECT_THAT(unused.entries, ElementsAre(1, 2, 4));
        EXPECT_THAT(m_oProgress.Reports(),
                    ElementsAre("0/5 brick", "1/5 wall", "2/5 wood", "3/5 fence", "4/5 glass"));
        // Two pictures of 64 bytes with a header of eight; the alias holds nothing.
        EXPECT_EQ(unused.bytes, 144U);
        EXPECT_EQ(UnusedStatusText(unused), L"3 to delete (0.00 MB)");
    });
}

TEST_F(SyncArchives, AddsUpTheRecordsOfEveryCache)
{
    CDatabaseBuilder builder;
    builder.Texture("a")
        .Picture("dxt", 1, 512, 512)
        .Picture("unc", 1, 512, 512)
        .Texture("b")
        .Picture("dxt", 2)
        .Texture("c");
    Write(builder);
    WithDatabase([&](CTextureDatabase& database) {
        const auto unused = FindUnusedTextures(database, UsedNames({L"b"}), m_oProgress);
        EXPECT_THAT(unused.entries, ElementsAre(0, 2));
        EXPECT_EQ(unused.bytes, 2U * (512 * 512 * 4 + 8));
        EXPECT_EQ(UnusedStatusText(unused), L"2 to delete (2.00 MB)");
    });
}

TEST_F(SyncArchives, HasNothingToShowWhenNothingIsGained)
{
    auto builder = Aliases();
    Write(builder);
    WithDatabase([&](CTextureDatabase& database) {
        const auto unused =
            FindUnusedTextures(database, UsedNames({L"brick", L"wood", L"glass", L"fence"}), m_oProgress);
        EXPECT_THAT(unused.entries, ElementsAre(1));
        EXPECT_EQ(UnusedStatusText(unused), L"Cache N/A");
    });
}

TEST_F(SyncArchives, CountsNothingAsUnusedWithoutAModel)
{
    auto builder = Aliases();
    Write(builder);
    WithDatabase([&](CTextureDatabase& database) {
        EXPECT_THAT(FindUnusedTextures(database, UsedTextures(), m_oProgress).entries, IsEmpty());
        UsedTextures stopped = UsedNames({L"brick"});
        stopped.wasStopped = true;
        EXPECT_THAT(FindUnusedTextures(database, stopped, m_oProgress).entries, IsEmpty());
        CNotedProgress cancelled(2);
        EXPECT_THAT(FindUnusedTextures(database, UsedNames({L"brick"}), cancelled).entries, IsEmpty());
    });
}

// Deleting.

TEST_F(SyncArchives, AsksWithNoAsTheDefault)
{
    UsedTextures used = UsedNames({});
    used.modelsRead = 120;
    used.modelsSkipped = 3;
    used.archivesNotOpened = 1;
    const PromptBox box = DeletionQuestion(17, used);
    EXPECT_EQ(box.text,
              L"Delete 17 textures?\n\nModels read: 120\nModels skipped: 3\nArchives not opened: 1");
    EXPECT_EQ(box.buttons, PromptButtons::YesNo);
    EXPECT_EQ(box.proposed, PromptAnswer::No);
}

TEST_F(SyncArchives, DeletesAliasesFirstAndThenTheirTextures)
{
    auto builder = Aliases();
    Write(builder);
    WithDatabase([&](CTextureDatabase& database) {
        const auto deletion = Delete(database, {0, 1, 4});
        EXPECT_EQ(deletion.deleted, 3U);
        EXPECT_EQ(deletion.kept, 0U);
        EXPECT_FALSE(deletion.wasStopped);
        EXPECT_EQ(DeletionStatusText(deletion), L"3 deleted");
        EXPECT_THAT(Names(database), ElementsAre(L"wood", L"fence"));
        EXPECT_EQ(database.FileSize(CacheIndex::Dxt, RecordKind::Raster), 72U);
        EXPECT_EQ(database.TocSize(CacheIndex::Dxt), 12U);
        EXPECT_TRUE(database.IsTocValid(CacheIndex::Dxt));
        ASSERT_GE(m_oProgress.Reports().size(), 6U);
        EXPECT_EQ(m_oProgress.Reports()[0], "0/6 brick");
        EXPECT_EQ(m_oProgress.Reports()[3], "3/6 brick");
        EXPECT_EQ(m_oProgress.Reports()[5], "5/6 glass");
        EXPECT_EQ(m_oProgress.Reports().back(), "6/6 ");
    });
}

TEST_F(SyncArchives, KeepsATextureWhoseAliasStays)
{
    auto builder = Aliases();
    Write(builder);
    WithDatabase([&](CTextureDatabase& database) {
        const auto deletion = Delete(database, {0, 2, 3});
        EXPECT_EQ(deletion.deleted, 2U);
        EXPECT_EQ(deletion.kept, 1U);
        EXPECT_EQ(DeletionStatusText(deletion), L"2 deleted, 1 kept because aliases of them stay");
        EXPECT_THAT(Names(database), ElementsAre(L"brick", L"wall", L"glass"));
        EXPECT_EQ(database.AliasTarget(1), 0U);
    });
}

TEST_F(SyncArchives, DeletesOfEqualNamesTheOneThatWasChecked)
{
    CDatabaseBuilder builder;
    builder.Texture("a").Picture("dxt", 1).Texture("a").Picture("dxt", 2).Texture("b").Picture("dxt", 3);
    Write(builder);
    WithDatabase([&](CTextureDatabase& database) {
        EXPECT_EQ(Delete(database, {1}).deleted, 1U);
        EXPECT_THAT(Names(database), ElementsAre(L"a", L"b"));
        EXPECT_EQ(database.ReadRaster(0, CacheIndex::Dxt, RecordKind::Raster)->at(0), std::byte{1});
        // A row that is out of date is found by its name, in this very spelling.
        const std::vector<CheckedTexture> rows = {{.index = 9, .name = L"b"}, {.index = 0, .name = L"A"}};
        EXPECT_EQ(DeleteUnusedTextures(database, rows, m_oProgress).deleted, 1U);
        EXPECT_THAT(Names(database), ElementsAre(L"a"));
    });
}

TEST_F(SyncArchives, DeletesNothingWhenItIsStoppedBefore)
{
    auto builder = Aliases();
    Write(builder);
    const FileBytes before = FilesOf(m_oFolder.Path());
    for (std::size_t stop = 1; stop <= 10; ++stop)
        WithDatabase([&](CTextureDatabase& database) {
            CNotedProgress progress(stop);
            const auto rows = CheckedRows(database, std::vector<std::uint32_t>{0, 1, 2, 3, 4});
            const auto deletion = DeleteUnusedTextures(database, rows, progress);
            EXPECT_TRUE(deletion.wasStopped) << stop;
            EXPECT_EQ(deletion.deleted, 0U) << stop;
        });
    EXPECT_TRUE(FilesOf(m_oFolder.Path()) == before);
}

TEST_F(SyncArchives, DeletesNothingWithoutRows)
{
    auto builder = Aliases();
    Write(builder);
    const FileBytes before = FilesOf(m_oFolder.Path());
    WithDatabase([&](CTextureDatabase& database) { EXPECT_EQ(Delete(database, {}).deleted, 0U); });
    EXPECT_TRUE(FilesOf(m_oFolder.Path()) == before);
}

TEST_F(SyncArchives, LosesNoOtherTextureWhenTheDiskIsFull)
{
    CDatabaseBuilder builder;
    for (int i = 0; i < 12; ++i)
        builder.Texture("t" + std::to_string(i)).Picture("dxt", static_cast<std::uint8_t>(i + 1));
    for (std::uint32_t good = 0;; ++good) {
        Write(builder);
        CScriptedPrompt prompt;
        bool isDone = false;
        {
            CFaultyFileSystem files(10000);
            CTextureDatabase database(StreamMode::Auto, files, prompt);
            ASSERT_TRUE(database.Open(List()));
            const auto rows = CheckedRows(database, std::vector<std::uint32_t>{0, 3, 4, 9});
            files.Allow(good);
            try {
                isDone = DeleteUnusedTextures(database, rows, m_oProgress).deleted == 4;
            } catch (const CError&) {
                isDone = false;
            }
            isDone = isDone && !files.HasFailed();
        }
        CTextureDatabase database(StreamMode::Auto, DiskFileSystem(), prompt);
        ASSERT_TRUE(database.Open(List()));
        if (!database.IsTocValid(CacheIndex::Dxt))
            database.RebuildToc(CacheIndex::Dxt);
        for (const int stays : {1, 2, 5, 6, 7, 8, 10, 11}) {
            const auto entry = database.FindByName(L"t" + std::to_wstring(stays), true);
            ASSERT_TRUE(entry) << good;
            const auto raster = database.ReadRaster(*entry, CacheIndex::Dxt, RecordKind::Raster);
            ASSERT_TRUE(raster) << good;
            EXPECT_EQ(raster->at(0), static_cast<std::byte>(stays + 1)) << good;
        }
        if (isDone)
            break;
        ASSERT_LT(good, 300U);
    }
}

// Against the plain way, on many databases.

namespace {

/// The entries whose names stand in none of the models.
std::vector<std::uint32_t> UnusedPlainly(const CTextureDatabase& database,
                                         const std::vector<std::vector<std::string>>& models)
{
    std::vector<std::uint32_t> unused;
    for (std::uint32_t entry = 0; entry < database.EntryCount(); ++entry) {
        bool isUsed = false;
        for (const auto& model : models)
            for (const std::string& name : model)
                isUsed = isUsed || Widen(name) == database.Entry(entry).name;
        if (!isUsed)
            unused.push_back(entry);
    }
    return unused;
}

/// One entry after the other, by its name.
void DeletePlainly(CTextureDatabase& database, const std::vector<std::wstring>& names)
{
    for (const bool aliases : {true, false})
        for (const std::wstring& name : names) {
            const auto entry = database.FindByName(name, true);
            if (!entry || database.IsAlias(*entry) != aliases)
                continue;
            if (aliases || database.CountAliasesOf(*entry) == 0)
                database.DeleteEntry(*entry, std::nullopt);
        }
}

/// The files of a database after some work on it.
template <class Work>
FileBytes AfterWork(const FileBytes& before, Work work)
{
    CMemoryFileSystem files;
    for (const auto& [name, bytes] : before)
        files.Put(name, bytes);
    CScriptedPrompt prompt;
    {
        CTextureDatabase database(StreamMode::Auto, files, prompt);
        EXPECT_TRUE(database.Open("list.txt"));
        work(database);
    }
    FileBytes after;
    for (const auto& [name, bytes] : before)
        after[name] = *files.Find(name);
    return after;
}

struct RandomCase {
    CDatabaseBuilder builder;
    std::vector<std::vector<std::string>> models;
};

RandomCase MakeCase(std::mt19937& random)
{
    const auto below = [&random](std::uint32_t limit) {
        return static_cast<std::uint32_t>(random() % limit);
    };
    RandomCase result{CDatabaseBuilder(below(2) == 1), {}};
    result.builder.Cache("dxt");
    result.builder.Cache("unc");
    const std::uint32_t count = 1 + below(20);
    std::vector<std::string> textures;
    std::vector<std::string> all;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::string name = (below(2) == 0 ? "t" : "T") + std::to_string(i);
        all.push_back(name);
        if (!textures.empty() && below(3) == 0) {
            result.builder.Alias(name, textures[below(static_cast<std::uint32_t>(textures.size()))]);
            continue;
        }
        textures.push_back(name);
        result.builder.Texture(name);
        const auto fill = static_cast<std::uint8_t>(1 + below(250));
        const auto side = static_cast<std::uint16_t>(4U << below(3));
        result.builder.Picture("dxt", fill, side, side);
        result.builder.Picture("unc", fill, side, 4);
    }
    const std::uint32_t models = 1 + below(5);
    for (std::uint32_t m = 0; m < models; ++m) {
        auto& model = result.models.emplace_back();
        for (std::uint32_t t = below(4); t > 0; --t) {
            std::string name = all[below(count)];
            if (below(5) == 0)
                name[0] = name[0] == 't' ? 'T' : 't';
            model.push_back(name);
        }
    }
    return result;
}

}  // namespace

TEST_F(SyncArchives, GivesTheSameFilesAsOneDeletionAfterTheOther)
{
    std::mt19937 random(20);
    std::uint32_t deleted = 0;
    std::uint32_t kept = 0;
    for (int round = 0; round < 80; ++round) {
        const RandomCase oneCase = MakeCase(random);
        std::vector<ImgEntry> entries;
        for (const auto& model : oneCase.models)
            entries.push_back(
                {.name = "m" + std::to_string(entries.size()) + ".dff", .contents = ModelOf(model)});
        const UsedTextures used = Collect(entries);
        const FileBytes before = oneCase.builder.Files("list");
        std::vector<std::wstring> names;
        const FileBytes ours = AfterWork(before, [&](CTextureDatabase& database) {
            const auto unused = FindUnusedTextures(database, used, m_oProgress);
            EXPECT_EQ(unused.entries, UnusedPlainly(database, oneCase.models)) << round;
            for (const std::uint32_t entry : unused.entries)
                names.push_back(database.Entry(entry).name);
            const auto deletion = Delete(database, unused.entries);
            deleted += deletion.deleted;
            kept += deletion.kept;
        });
        const FileBytes plain =
            AfterWork(before, [&](CTextureDatabase& database) { DeletePlainly(database, names); });
        for (const auto& [name, bytes] : plain)
            EXPECT_TRUE(ours.at(name) == bytes) << name << " in round " << round;
    }
    EXPECT_GT(deleted, 50U);
    EXPECT_GT(kept, 5U);
}
