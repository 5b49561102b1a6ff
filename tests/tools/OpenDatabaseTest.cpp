#include "tools/OpenDatabase.h"

#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "image/Hash.h"
#include "tests/codec/TestDatabase.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kDefaultLimit = 3;
const std::vector<CacheIndex> kTwo = {CacheIndex::Dxt, CacheIndex::Unc};

/// Makes a database on disk, lets a test damage it, and opens it again with scripted answers.
class OpenDatabase : public testing::Test {
protected:
    std::filesystem::path List() const { return m_oFolder / "list.txt"; }
    std::filesystem::path File(const std::string& suffix) const { return m_oFolder / ("list." + suffix); }

    /// `names` with 2x2 rasters and 1x1 thumbnails in every cache.
    void Make(const std::vector<std::wstring>& names, const std::vector<CacheIndex>& caches = kTwo)
    {
        CScriptedPrompt prompt;
        CTextureDatabase database(StreamMode::Raw, DiskFileSystem(), prompt);
        ASSERT_TRUE(database.Create(List(), caches));
        for (const std::wstring& name : names)
            Store(database, name, caches);
    }
    static void Store(CTextureDatabase& database, const std::wstring& name,
                      const std::vector<CacheIndex>& caches)
    {
        const auto hash = static_cast<std::uint16_t>(NameHash(name));
        const auto raster = CountingBytes(16);
        const auto thumbnail = CountingBytes(4);
        std::vector<PreparedRecord> records;
        for (const CacheIndex cache : caches)
            records.push_back(
                {cache, RecordKind::Raster, {{hash, 0x1401, 2, 2}, raster, StreamMode::Raw, false}});
        for (const CacheIndex cache : caches)
            records.push_back(
                {cache, RecordKind::Thumbnail, {{hash, 0x1401, 1, 1}, thumbnail, StreamMode::Raw, false}});
        database.StoreTexture(MakeEntry({.name = name, .width = 2, .height = 2}), records);
    }
    /// Overwrites bytes of a file.
    void Patch(const std::string& suffix, std::streamoff position, const std::string& bytes) const
    {
        std::fstream file(File(suffix), std::ios::binary | std::ios::in | std::ios::out);
        file.seekp(position);
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }
    OpenResult Open(std::deque<PromptAnswer> answers = {})
    {
        m_pPrompt = std::make_unique<CScriptedPrompt>(std::move(answers));
        m_pDatabase = std::make_unique<CTextureDatabase>(StreamMode::Raw, DiskFileSystem(), *m_pPrompt);
        return Opener().Open(*m_pDatabase, List());
    }
    CDatabaseOpener Opener() { return {m_oSettings, *m_pPrompt, m_oProgress}; }
    /// Opens, runs the repairs with the answers; returns how often "Done!" was due.
    int Repair(std::deque<PromptAnswer> answers)
    {
        EXPECT_EQ(Open(std::move(answers)), OpenResult::Opened);
        int done = 0;
        Opener().OfferFileRepairs(*m_pDatabase, [&done] { ++done; });
        EXPECT_TRUE(m_pPrompt->ScriptIsFinished());
        return done;
    }
    std::vector<std::wstring> Texts() const
    {
        std::vector<std::wstring> texts;
        for (const PromptBox& box : m_pPrompt->Shown())
            texts.push_back(box.text);
        return texts;
    }
    DatabaseCheck Check(int limit = kDefaultLimit) { return CheckDatabase(*m_pDatabase, limit); }

    CTemporaryFolder m_oFolder;
    CMemorySettings m_oSettings;
    CNoProgress m_oProgress;
    std::unique_ptr<CScriptedPrompt> m_pPrompt;
    std::unique_ptr<CTextureDatabase> m_pDatabase;
};

constexpr const wchar_t* kDxtToc = L"DXT.TOC file is corrupted.\r\n\r\nDo you want to fix it?";
constexpr const wchar_t* kDxtTmb =
    L"DXT.TMB file is corrupted, it can hang game loading.\r\n\r\nDo you wanna apply fast fix?";
constexpr const wchar_t* kUncTmb =
    L"UNC.TMB file is corrupted, it can hang game loading.\r\n\r\nDo you wanna apply fast fix?";

}  // namespace

// Which list.

TEST(ListPathOf, FindsTheListOfACacheFile)
{
    const std::filesystem::path folder = "some.folder";
    EXPECT_EQ(ListPathOf(folder / "name.dxt.toc"), folder / "name.txt");
    EXPECT_EQ(ListPathOf(folder / "name.unc.dat"), folder / "name.txt");
    EXPECT_EQ(ListPathOf(folder / "name.toc"), folder / "name.txt");
    EXPECT_EQ(ListPathOf("name.pvr.dat"), "name.txt");
    EXPECT_EQ(ListPathOf(folder / "my.name.etc.toc"), folder / "my.name.txt");
}

TEST(ListPathOf, KeepsEveryOtherPath)
{
    for (const char* name : {"name.DXT.TOC", "name.dxt.tmb", "name.txt", "name", "name.Dat", "dat"})
        EXPECT_EQ(ListPathOf(name), name);
}

// Opening.

TEST_F(OpenDatabase, FindsNoDamageInACacheThatAnotherProgramHolds)
{
    Make({L"a", L"b"});
    const auto held = DiskFileSystem().Open(File("unc.dat"), OpenMode::Exclusive);
    ASSERT_NE(held, nullptr);
    EXPECT_EQ(Open(), OpenResult::Opened);
    EXPECT_TRUE(m_pDatabase->IsBlocked(CacheIndex::Unc));
    EXPECT_TRUE(Check().IsClean());
}

TEST_F(OpenDatabase, OpensASoundDatabaseWithoutAWord)
{
    Make({L"first", L"second"});
    EXPECT_EQ(Repair({}), 0);
    Opener().OfferNameHashRepair(*m_pDatabase);
    EXPECT_THAT(Texts(), IsEmpty());
    EXPECT_TRUE(Check().IsClean());
}

TEST_F(OpenDatabase, ShowsABoxWhenThereAreNoCaches)
{
    std::ofstream(List()) << "cat=0 name=Default defaultstream=0\n";
    EXPECT_EQ(Open(), OpenResult::NoCaches);
    ASSERT_EQ(m_pPrompt->Shown().size(), 1U);
    EXPECT_EQ(m_pPrompt->Shown()[0].text,
              L"No caches found to load, lol.\n\nCheck .DAT, .TMB and .TOC files, all of them sholuld be "
              L"located in "
              L"the same folder as TXT.");
    EXPECT_EQ(m_pPrompt->Shown()[0].caption, L"Error");
    EXPECT_EQ(m_pPrompt->Shown()[0].icon, PromptIcon::Error);
}

TEST_F(OpenDatabase, LooksForCachesBeforeItMissesTheList)
{
    EXPECT_EQ(Open(), OpenResult::NoCaches);
}

TEST_F(OpenDatabase, AsksBeforeItBuildsALostList)
{
    Make({L"first"});
    std::filesystem::remove(List());
    EXPECT_EQ(Open({PromptAnswer::No}), OpenResult::NoList);
    EXPECT_THAT(Texts(), ElementsAre(L"Whoa! No TXT database found.\n\nDo you want to build new database?\n"
                                     L"(Mavrel can't work without txt database)"));
    EXPECT_EQ(m_pPrompt->Shown()[0].icon, PromptIcon::Question);
    EXPECT_EQ(m_pPrompt->Shown()[0].buttons, PromptButtons::YesNo);
    EXPECT_FALSE(std::filesystem::exists(List()));
}

TEST_F(OpenDatabase, BuildsALostListAndMendsTheTables)
{
    Make({L"first", L"second"});
    std::filesystem::remove(List());
    Patch("unc.toc", 0, std::string(4, '\x7F'));
    EXPECT_EQ(Open({PromptAnswer::Yes}), OpenResult::Recovered);
    ASSERT_EQ(m_pDatabase->EntryCount(), 2U);
    EXPECT_EQ(m_pDatabase->Entry(0).name, L"_0x00000000");
    EXPECT_EQ(m_pDatabase->Entry(1).name, L"_0x00000018");
    EXPECT_TRUE(m_pDatabase->IsTocValid(CacheIndex::Dxt));
    EXPECT_TRUE(m_pDatabase->IsTocValid(CacheIndex::Unc));
    EXPECT_TRUE(std::filesystem::exists(List()));
}

TEST_F(OpenDatabase, BuildsNoListFromAnEmptyCache)
{
    Make({});
    std::filesystem::remove(List());
    EXPECT_EQ(Open({PromptAnswer::Yes}), OpenResult::NoList);
    EXPECT_FALSE(std::filesystem::exists(List()));
}

TEST_F(OpenDatabase, RefusesAListThatIsNotAFile)
{
    Make({L"first"});
    std::filesystem::remove(List());
    std::filesystem::create_directory(List());
    EXPECT_EQ(Open(), OpenResult::ListLocked);
    ASSERT_EQ(m_pPrompt->Shown().size(), 1U);
    EXPECT_EQ(m_pPrompt->Shown()[0].icon, PromptIcon::Error);
}

// Tables of contents.

TEST_F(OpenDatabase, AsksForEachBadTableAndLeavesItOnNo)
{
    Make({L"first"});
    Patch("dxt.toc", 0, std::string(4, '\x7F'));
    EXPECT_EQ(Repair({PromptAnswer::No}), 0);
    EXPECT_THAT(Texts(), ElementsAre(kDxtToc));
    EXPECT_EQ(m_pPrompt->Shown()[0].icon, PromptIcon::Warning);
    EXPECT_EQ(m_pPrompt->Shown()[0].buttons, PromptButtons::YesNo);
    EXPECT_EQ(m_pPrompt->Shown()[0].proposed, std::nullopt);
    EXPECT_THAT(Check().badTocs, ElementsAre(CacheIndex::Dxt));
}

TEST_F(OpenDatabase, MendsATableOnYes)
{
    Make({L"first", L"second"});
    std::filesystem::resize_file(File("dxt.toc"), 8);
    EXPECT_EQ(Repair({PromptAnswer::Yes}), 1);
    EXPECT_THAT(Texts(), ElementsAre(kDxtToc));
    EXPECT_TRUE(Check().IsClean());
    EXPECT_EQ(m_pDatabase->Entry(1).datOffset[0], 24U);
}

TEST_F(OpenDatabase, ProposesNoWhenTheListItselfWasDamaged)
{
    Make({L"first"});
    std::ofstream(List(), std::ios::app) << "what is this\n";
    Patch("dxt.toc", 0, std::string(4, '\x7F'));
    EXPECT_EQ(Repair({PromptAnswer::No}), 0);
    EXPECT_EQ(m_pPrompt->Shown().back().text, kDxtToc);
    EXPECT_EQ(m_pPrompt->Shown().back().proposed, PromptAnswer::No);
}

// Thumbnails.

TEST_F(OpenDatabase, AsksForThumbnailsThatAreMissingAndMakesDefaultOnes)
{
    Make({L"first", L"second"});
    std::filesystem::remove(File("unc.tmb"));
    EXPECT_EQ(Repair({PromptAnswer::Yes}), 1);
    EXPECT_THAT(Texts(), ElementsAre(kUncTmb));
    EXPECT_EQ(std::filesystem::file_size(File("unc.tmb")), 24U);
    EXPECT_TRUE(Check().IsClean());
    EXPECT_EQ(m_pDatabase->ReadRaster(1, CacheIndex::Unc, RecordKind::Thumbnail).value(),
              std::vector<std::byte>(4, std::byte{0x88}));
}

TEST_F(OpenDatabase, AsksForThumbnailsThatAreTooFew)
{
    Make({L"first", L"second"});
    std::filesystem::resize_file(File("dxt.tmb"), 12);
    EXPECT_EQ(Repair({PromptAnswer::No}), 0);
    EXPECT_THAT(Texts(), ElementsAre(kDxtTmb));
    EXPECT_EQ(std::filesystem::file_size(File("dxt.tmb")), 12U);
}

TEST_F(OpenDatabase, WritesFramedThumbnailsForAFramedDatabase)
{
    Make({L"first"});
    std::filesystem::remove(File("unc.tmb"));
    m_pPrompt = std::make_unique<CScriptedPrompt>(std::deque{PromptAnswer::Yes});
    m_pDatabase = std::make_unique<CTextureDatabase>(StreamMode::Framed, DiskFileSystem(), *m_pPrompt);
    Opener().Open(*m_pDatabase, List());
    // The thumbnails of the other cache were written raw and do not count up when they are read as frames.
    EXPECT_TRUE(m_pDatabase->WriteDefaultThumbnails(CacheIndex::Dxt, StreamMode::Framed));
    m_pDatabase->ReloadThumbnailOffsets();
    Opener().OfferFileRepairs(*m_pDatabase, [] {});
    EXPECT_EQ(std::filesystem::file_size(File("unc.tmb")), 20U);
}

TEST_F(OpenDatabase, AsksForThumbnailsOfAnEmptyDatabaseAndMakesAnEmptyFile)
{
    Make({});
    std::filesystem::remove(File("dxt.tmb"));
    EXPECT_EQ(Repair({PromptAnswer::Yes}), 1);
    EXPECT_EQ(std::filesystem::file_size(File("dxt.tmb")), 0U);
}

TEST_F(OpenDatabase, ComparesEveryCacheWithTheRastersOfTheLast)
{
    // "second" is in the DXT cache only: its thumbnails are complete there, and are questioned all the same.
    Make({L"first"});
    {
        CScriptedPrompt prompt;
        CTextureDatabase database(StreamMode::Raw, DiskFileSystem(), prompt);
        database.Open(List());
        Store(database, L"second", {CacheIndex::Dxt});
    }
    Repair({PromptAnswer::No});
    EXPECT_THAT(Texts(), ElementsAre(kDxtTmb));
}

TEST_F(OpenDatabase, CountsOnlyOrdinaryEntries)
{
    Make({L"first", L"second"});
    {
        CScriptedPrompt prompt;
        CTextureDatabase database(StreamMode::Raw, DiskFileSystem(), prompt);
        database.Open(List());
        database.AddAlias(L"alias", L"first");
    }
    Repair({});
    EXPECT_TRUE(Check().IsClean());
}

TEST_F(OpenDatabase, FindsNothingWrongByChangingNothing)
{
    Make({L"first", L"second"});
    std::filesystem::remove(File("dxt.tmb"));
    Patch("unc.toc", 0, std::string(4, '\x7F'));
    EXPECT_EQ(Open(), OpenResult::Opened);
    const DatabaseCheck check = Check();
    EXPECT_THAT(check.badTocs, ElementsAre(CacheIndex::Unc));
    EXPECT_THAT(check.badThumbnails, ElementsAre(CacheIndex::Dxt));
    EXPECT_FALSE(check.nameHashesWrong);
    EXPECT_FALSE(std::filesystem::exists(File("dxt.tmb")));
    EXPECT_THAT(Texts(), IsEmpty());
}

// Name hashes.

TEST_F(OpenDatabase, AsksForWrongNameHashesAndMendsThem)
{
    Make({L"first", L"second"});
    Patch("dxt.dat", 24, "\x01\x02");
    EXPECT_EQ(Open({PromptAnswer::Yes}), OpenResult::Opened);
    Opener().OfferNameHashRepair(*m_pDatabase);
    EXPECT_THAT(Texts(),
                ElementsAre(L"Name hashes seems to be corrupted (by previous Mavrel version?).\r\n\r\nDo you "
                            L"wanna fix hashes?"));
    EXPECT_EQ(m_pPrompt->Shown()[0].icon, PromptIcon::Warning);
    EXPECT_EQ(Open(), OpenResult::Opened);
    EXPECT_TRUE(Check().IsClean());
}

TEST_F(OpenDatabase, LeavesWrongNameHashesOnNo)
{
    Make({L"first", L"second"});
    Patch("unc.tmb", 12, "\x01\x02");
    Open({PromptAnswer::No});
    Opener().OfferNameHashRepair(*m_pDatabase);
    Open();
    EXPECT_TRUE(Check().nameHashesWrong);
}

TEST_F(OpenDatabase, NeverChecksTheHashOfTheFirstEntry)
{
    Make({L"only"});
    Patch("dxt.dat", 0, "\x01\x02");
    Open();
    EXPECT_FALSE(AreNameHashesWrong(*m_pDatabase, 100));
}

TEST_F(OpenDatabase, ChecksNoHashesOfAnEmptyDatabase)
{
    Make({});
    Open();
    EXPECT_FALSE(AreNameHashesWrong(*m_pDatabase, kDefaultLimit));
}

TEST_F(OpenDatabase, ChecksOneEntryMoreThanTheLimit)
{
    Make({L"a", L"b", L"c", L"d"});
    Patch("dxt.dat", 24 * 2, "\x01\x02");
    Open();
    EXPECT_FALSE(AreNameHashesWrong(*m_pDatabase, 0)) << "only the last is checked";
    EXPECT_TRUE(AreNameHashesWrong(*m_pDatabase, 1));
    EXPECT_FALSE(AreNameHashesWrong(*m_pDatabase, -1));
}

TEST_F(OpenDatabase, TakesTheLimitFromTheSettings)
{
    Make({L"a", L"b", L"c"});
    Patch("dxt.dat", 24, "\x01\x02");
    m_oSettings.WriteInt(L"global", L"onload_check_limit", 0);
    Open();
    Opener().OfferNameHashRepair(*m_pDatabase);
    EXPECT_THAT(Texts(), IsEmpty());
}

TEST_F(OpenDatabase, SkipsAliasesAndEntriesWithoutRecordsWhenItChecksHashes)
{
    Make({L"a", L"b"});
    {
        CScriptedPrompt prompt;
        CTextureDatabase database(StreamMode::Raw, DiskFileSystem(), prompt);
        database.Open(List());
        Store(database, L"empty", {});
        database.AddAlias(L"alias", L"b");
    }
    Open();
    EXPECT_FALSE(AreNameHashesWrong(*m_pDatabase, 0));
    m_pDatabase.reset();
    Patch("dxt.dat", 24, "\x01\x02");
    Open();
    EXPECT_FALSE(AreNameHashesWrong(*m_pDatabase, 0)) << "the entry without records was the one";
    EXPECT_TRUE(AreNameHashesWrong(*m_pDatabase, 1));
}
