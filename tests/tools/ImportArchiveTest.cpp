// Importing the dictionaries of an archive: the order of steps, the texts, and the same files whether one
// thread does everything or several prepare the textures.

#include "tools/ImportArchive.h"

#include <array>
#include <chrono>
#include <deque>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

#include "base/Text.h"
#include "tests/codec/FakeCodecs.h"
#include "tests/codec/MemorySettings.h"
#include "tests/support/DatabaseBuilder.h"
#include "tests/support/ImgFiles.h"
#include "tests/support/MemoryFileSystem.h"
#include "tests/support/RecordingFailures.h"
#include "tests/support/RenderWareFiles.h"
#include "tests/support/ScriptedPrompt.h"
#include "tests/support/TemporaryFolder.h"
#include "tools/DirectHost.h"
#include "tools/TXDHelper.h"

namespace {

using RwFile::Bytes;
using testing::ElementsAre;
using testing::IsEmpty;

/// Pixels that depend on the seed alone.
Bytes Noise(std::size_t count, std::uint32_t seed)
{
    Bytes bytes(count);
    for (std::byte& byte : bytes) {
        seed = seed * 1664525 + 1013904223;
        byte = static_cast<std::byte>(seed >> 24);
    }
    return bytes;
}

Bytes Texture32(const std::string& name, std::uint32_t seed, std::uint16_t side = 8)
{
    return RwFile::PCNative({.name = name,
                             .rasterFormat = 0x500,
                             .width = side,
                             .height = side,
                             .depth = 32,
                             .pixels = Noise(std::size_t{side} * side * 4, seed)});
}

Bytes Texture16(const std::string& name, std::uint32_t seed, const std::string& mask = {})
{
    return RwFile::PCNative({.name = name,
                             .mask = mask,
                             .rasterFormat = 0x200,
                             .width = 16,
                             .height = 8,
                             .depth = 16,
                             .pixels = Noise(256, seed)});
}

Bytes TextureDxt1(const std::string& name, std::uint32_t seed)
{
    return RwFile::PCNative({.name = name,
                             .rasterFormat = 0x200,
                             .width = 32,
                             .height = 32,
                             .depth = 16,
                             .compression = 1,
                             .pixels = Noise(512, seed)});
}

Bytes TexturePalette(const std::string& name, std::uint32_t seed)
{
    return RwFile::PCNative({.name = name,
                             .rasterFormat = 0x2500,
                             .width = 8,
                             .height = 8,
                             .depth = 8,
                             .palette = Noise(1024, seed),
                             .pixels = Noise(64, seed + 1)});
}

/// A record that ends behind its first words.
Bytes DamagedTexture()
{
    return RwFile::Section(0x15,
                           RwFile::Joined({RwFile::Struct(RwFile::Words({8, 0})), RwFile::EmptyExtension()}));
}

class CNotedProgress final : public IProgress {
public:
    explicit CNotedProgress(std::size_t stopAt) : m_nStopAt(stopAt) {}
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

/// Notes what it is asked for.
class CNotingHost final : public CDirectHost {
public:
    using CDirectHost::CDirectHost;
    void Import(const CBitmap* picture, ImportRecord& record) override
    {
        records.push_back(record);
        pictureSizes.emplace_back(picture->Width(), picture->Height());
        CDirectHost::Import(picture, record);
        targetsAfterwards.push_back(record.targetCache);
    }
    void Refresh() override { ++refreshes; }

    std::vector<ImportRecord> records;
    std::vector<std::pair<std::uint32_t, std::uint32_t>> pictureSizes;
    std::vector<std::int32_t> targetsAfterwards;
    int refreshes = 0;
};

struct Scenario {
    std::deque<PromptAnswer> answers = {};
    StreamMode game = StreamMode::Framed;
    std::size_t cancelAt = SIZE_MAX;
    std::vector<std::uint32_t> entries = {};  // empty: all
    CacheIndex target = CacheIndex::Dxt;
    int runs = 1;
};

/// Everything that can be seen of an import.
struct Outcome {
    FileBytes files;
    std::vector<std::string> boxes;  // "caption: text"
    std::vector<std::string> progress;
    std::array<std::uint32_t, 5> counts{};
    std::vector<std::wstring> stopBoxes;
    int refreshes = 0;

    bool operator==(const Outcome&) const = default;
};

class ImportArchive : public testing::Test {
protected:
    ImportArchive()
    {
        m_oPlugins.BindFunctions(CacheIndex::Dxt, Fake::CompressDxt, Fake::ReadBlocks<8>,
                                 CodecThreading::Free);
        m_oPlugins.BindFunctions(CacheIndex::Etc1, Fake::CompressEtc1, nullptr);
        m_oPlugins.BindFunctions(CacheIndex::Pvrtc, Fake::CompressPvrtc, nullptr, CodecThreading::Free);
    }

    void Put(const std::vector<ImgEntry>& entries)
    {
        m_oArchive.Close();
        m_oFiles.Put("a.img", Version2Archive(entries));
        ASSERT_TRUE(m_oArchive.Open("a.img"));
    }
    void PutDictionaries(const std::vector<std::pair<std::string, std::vector<Bytes>>>& dictionaries)
    {
        std::vector<ImgEntry> entries;
        for (const auto& [name, natives] : dictionaries)
            entries.push_back({.name = name, .contents = RwFile::Dictionary(natives)});
        Put(entries);
    }

    std::vector<std::uint32_t> EntriesOf(const Scenario& scenario) const
    {
        if (!scenario.entries.empty())
            return scenario.entries;
        std::vector<std::uint32_t> all(m_oArchive.EntryCount());
        for (std::uint32_t i = 0; i < all.size(); ++i)
            all[i] = i;
        return all;
    }

    /// Runs in a new database; `work` does the import.
    template <class Work>
    Outcome RunIn(const Scenario& scenario, Work work)
    {
        CTemporaryFolder folder;
        CScriptedPrompt prompt(scenario.answers);
        CNotedProgress progress(scenario.cancelAt);
        CRecordingFailures failures;
        ImportCounts counts;
        int refreshes = 0;
        {
            CTextureDatabase database(scenario.game, DiskFileSystem(), prompt);
            EXPECT_TRUE(database.Create(folder / "list.txt", kAllCaches));
            CNotingHost host({database, m_oPlugins, m_oSettings, prompt});
            for (int run = 0; run < scenario.runs; ++run)
                counts = work({database, m_oPlugins, m_oSettings, host, prompt, progress, failures});
            refreshes = host.refreshes;
            m_aRecords = host.records;
            m_aPictureSizes = host.pictureSizes;
            m_aTargetsAfterwards = host.targetsAfterwards;
        }
        Outcome outcome;
        outcome.files = FilesOf(folder.Path());
        for (const PromptBox& box : prompt.Shown())
            outcome.boxes.push_back(ToUtf8(box.caption + L": " + box.text));
        m_aBoxes = prompt.Shown();
        outcome.progress = progress.Reports();
        outcome.counts = {counts.imported, counts.aliased, counts.skipped, counts.failed, counts.wasStopped};
        outcome.stopBoxes = failures.Lines();
        outcome.refreshes = refreshes;
        return outcome;
    }

    Outcome RunWith(const Scenario& scenario, unsigned jobs)
    {
        return RunIn(scenario, [&](const ArchiveImportParts& parts) {
            const auto entries = EntriesOf(scenario);
            return CArchiveImporter(parts, {.targetCache = scenario.target, .jobs = jobs})
                .Run(m_oArchive, entries);
        });
    }

    /// The plain way: one texture after the other, each saved before the next.
    FileBytes OneByOne(const Scenario& scenario)
    {
        return RunIn(scenario,
                     [&](const ArchiveImportParts& parts) {
                         for (const std::uint32_t entry : EntriesOf(scenario))
                             ImportPlainly(parts, entry);
                         return ImportCounts();
                     })
            .files;
    }

    void ImportPlainly(const ArchiveImportParts& parts, std::uint32_t entry)
    {
        CTXDHelper helper(parts.plugins, parts.failures);
        try {
            helper.AttachDictionary(*m_oArchive.File(), m_oArchive.EntryOffset(entry));
        } catch (const RW::CException&) {
            parts.prompt.Show({.text = L"?", .buttons = PromptButtons::YesNo});
        }
        for (const DictionaryTexture& texture : helper.DescribeAll()) {
            if (texture.isDamaged || parts.database.FindByName(texture.name, false))
                continue;
            ImportRecord record;
            SetRecordText(record.name, texture.name);
            record.hasAlpha = texture.hasAlpha || texture.depth == 32 ? 1 : 0;
            record.storeRgba8888 = texture.depth == 32 ? 1 : 0;
            record.noRefresh = 1;
            try {
                const CBitmap picture = helper.ToBitmap(texture.index);
                parts.host.Import(&picture, record);
                parts.database.Save();
            } catch (const CError&) {
                continue;
            }
        }
    }

    /// The outcome with one thread, after comparing it with that of several and with the plain way.
    Outcome SameInEveryWay(const Scenario& scenario)
    {
        const Outcome alone = RunWith(scenario, 1);
        for (const unsigned jobs : {2U, 5U}) {
            const Outcome together = RunWith(scenario, jobs);
            EXPECT_EQ(together.counts, alone.counts) << jobs;
            EXPECT_EQ(together.boxes, alone.boxes) << jobs;
            EXPECT_EQ(together.progress, alone.progress) << jobs;
            EXPECT_EQ(together.stopBoxes, alone.stopBoxes) << jobs;
            EXPECT_TRUE(together == alone) << "files with " << jobs;
        }
        if (scenario.cancelAt == SIZE_MAX) {
            EXPECT_TRUE(OneByOne(scenario) == alone.files) << "not as one by one";
        }
        return alone;
    }

    std::vector<std::string> NamesIn(const FileBytes& files) const
    {
        std::vector<std::string> names;
        const std::string text = TextOf(files.at("list.txt"));
        for (std::size_t at = text.find("\n\""); at != std::string::npos; at = text.find("\n\"", at + 1))
            names.push_back(text.substr(at + 2, text.find('"', at + 2) - at - 2));
        return names;
    }

    CMemoryFileSystem m_oFiles;
    CImgArchive m_oArchive{m_oFiles};
    CPluginTable m_oPlugins;
    CMemorySettings m_oSettings;
    std::vector<ImportRecord> m_aRecords;
    std::vector<std::pair<std::uint32_t, std::uint32_t>> m_aPictureSizes;
    std::vector<std::int32_t> m_aTargetsAfterwards;
    std::vector<PromptBox> m_aBoxes;
};

constexpr auto kYes = PromptAnswer::Yes;
constexpr auto kNo = PromptAnswer::No;

}  // namespace

TEST_F(ImportArchive, ReportsEveryDictionaryAndEveryTextureFromOneOn)
{
    PutDictionaries(
        {{"a.txd", {Texture32("wall", 1), Texture16("door", 2)}}, {"B.TXD", {TextureDxt1("roof", 3)}}});
    const Outcome outcome = SameInEveryWay({});
    EXPECT_THAT(outcome.progress, ElementsAre("1/2 a.txd", "1/2 a.txd / wall", "1/2 a.txd / door",
                                              "2/2 B.TXD", "2/2 B.TXD / roof", "2/2 "));
    EXPECT_EQ(outcome.counts, (std::array<std::uint32_t, 5>{3, 0, 0, 0, 0}));
    EXPECT_EQ(outcome.refreshes, 1);
    EXPECT_THAT(outcome.boxes, IsEmpty());
    EXPECT_THAT(NamesIn(outcome.files), ElementsAre("wall", "door", "roof"));
}

TEST_F(ImportArchive, FillsTheRecordFromTheTexture)
{
    PutDictionaries(
        {{"a.txd", {Texture32("wall", 1), Texture16("door", 2), Texture16("glass", 3, "glassa")}}});
    RunWith({.target = CacheIndex::Pvrtc}, 2);
    ASSERT_EQ(m_aRecords.size(), 3U);
    const ImportRecord& wall = m_aRecords[0];
    EXPECT_EQ(RecordText(wall.name), L"wall");
    EXPECT_EQ(wall.hasAlpha, 1U);
    EXPECT_EQ(wall.storeRgba8888, 1U);
    EXPECT_EQ(wall.depth, 32U);
    EXPECT_EQ(wall.width, 8U);
    EXPECT_EQ(wall.height, 8U);
    EXPECT_NE(wall.pixels, nullptr);
    EXPECT_EQ(wall.category, 0U);
    EXPECT_EQ(RecordText(wall.aliasTarget), L"");
    EXPECT_EQ(wall.noRefresh, 1U);
    EXPECT_EQ(wall.targetCache, 2);
    EXPECT_EQ(wall.cacheGiven, 0U);
    EXPECT_EQ(wall.format, 0xFFFFFFFFU);
    const ImportRecord& door = m_aRecords[1];
    EXPECT_EQ(door.depth, 16U);
    EXPECT_EQ(door.hasAlpha, 0U);
    EXPECT_EQ(door.storeRgba8888, 0U);
    EXPECT_EQ(m_aRecords[2].storeRgba8888, 0U);
    EXPECT_THAT(m_aPictureSizes, ElementsAre(std::pair(8U, 8U), std::pair(16U, 8U), std::pair(16U, 8U)));
    // Every open cache gets the texture, whichever the window shows.
    EXPECT_THAT(m_aTargetsAfterwards, ElementsAre(-1, -1, -1));
}

TEST_F(ImportArchive, WritesIntoEveryCache)
{
    PutDictionaries({{"a.txd", {Texture32("wall", 1)}}});
    const Outcome outcome = RunWith({.target = CacheIndex::Unc}, 2);
    for (const char* file : {"list.dxt.dat", "list.etc.dat", "list.pvr.dat", "list.unc.dat"})
        EXPECT_GT(outcome.files.at(file).size(), 256U) << file;
}

TEST_F(ImportArchive, AddsNothingTheSecondTime)
{
    PutDictionaries(
        {{"a.txd", {Texture32("wall", 1), Texture16("door", 2)}}, {"b.txd", {TextureDxt1("roof", 3)}}});
    const Outcome once = SameInEveryWay({});
    const Outcome twice = SameInEveryWay({.runs = 2});
    EXPECT_TRUE(twice.files == once.files);
    EXPECT_EQ(twice.counts, (std::array<std::uint32_t, 5>{0, 0, 3, 0, 0}));
    EXPECT_THAT(twice.boxes, IsEmpty()) << "existing names are skipped without a word";
    EXPECT_EQ(twice.refreshes, 2);
}

TEST_F(ImportArchive, SkipsNamesThatExistInAnyCase)
{
    PutDictionaries(
        {{"a.txd", {Texture32("wall", 1), Texture16("WALL", 2)}}, {"b.txd", {TextureDxt1("Wall", 3)}}});
    const Outcome outcome = SameInEveryWay({});
    EXPECT_EQ(outcome.counts, (std::array<std::uint32_t, 5>{1, 0, 2, 0, 0}));
    EXPECT_THAT(NamesIn(outcome.files), ElementsAre("wall"));
}

TEST_F(ImportArchive, MakesAliasesOfTheSamePicture)
{
    PutDictionaries({{"a.txd", {Texture32("wall", 1), Texture16("door", 2)}},
                     {"b.txd", {Texture32("wall2", 1), Texture16("door2", 2), Texture32("last", 9)}}});
    const Outcome outcome = SameInEveryWay({});
    EXPECT_EQ(outcome.counts, (std::array<std::uint32_t, 5>{3, 2, 0, 0, 0}));
    EXPECT_NE(TextOf(outcome.files.at("list.txt")).find("\"wall2\" \"affiliate=wall\""), std::string::npos)
        << TextOf(outcome.files.at("list.txt"));
}

TEST_F(ImportArchive, ImportsTheGivenEntriesInTheGivenOrder)
{
    PutDictionaries({{"a.txd", {Texture32("wall", 1)}},
                     {"b.txd", {Texture32("door", 2)}},
                     {"c.txd", {Texture32("roof", 3)}}});
    const Outcome outcome = SameInEveryWay({.entries = {2, 0}});
    EXPECT_THAT(NamesIn(outcome.files), ElementsAre("roof", "wall"));
    EXPECT_THAT(outcome.progress,
                ElementsAre("1/2 c.txd", "1/2 c.txd / roof", "2/2 a.txd", "2/2 a.txd / wall", "2/2 "));
}

TEST_F(ImportArchive, DoesNothingWithoutEntries)
{
    PutDictionaries({});
    const Outcome outcome = SameInEveryWay({});
    EXPECT_EQ(outcome.counts, (std::array<std::uint32_t, 5>{}));
    EXPECT_THAT(outcome.progress, ElementsAre("0/0 "));
}

TEST_F(ImportArchive, GoesOnWhateverTheAnswerAboutABrokenDictionary)
{
    Put({{.name = "a.txd", .contents = RwFile::Dictionary({Texture32("wall", 1)})},
         {.name = "broken.txd", .contents = RwFile::Dictionary({RwFile::PCNative({.platform = 99})})},
         {.name = "c.txd", .contents = RwFile::Dictionary({Texture32("door", 2)})}});
    for (const PromptAnswer answer : {kYes, kNo}) {
        const Outcome outcome = SameInEveryWay({.answers = {answer}});
        EXPECT_THAT(outcome.boxes, ElementsAre("broken.txd: This is not a valid PC texture.\n\nDo "
                                               "you want to continue?"));
        EXPECT_EQ(outcome.counts, (std::array<std::uint32_t, 5>{2, 0, 0, 1, 0}));
        EXPECT_THAT(NamesIn(outcome.files), ElementsAre("wall", "door"));
    }
    RunWith({.answers = {kNo}}, 1);
    ASSERT_EQ(m_aBoxes.size(), 1U);
    EXPECT_EQ(m_aBoxes[0].buttons, PromptButtons::YesNo);
    EXPECT_EQ(m_aBoxes[0].icon, PromptIcon::Error);
}

TEST_F(ImportArchive, ImportsWhatWasReadOfABrokenDictionary)
{
    Bytes cut = RwFile::Dictionary({Texture32("wall", 1), Texture32("door", 2), Texture32("roof", 3)});
    // In the middle of the last texture's header: the archive ends there.
    cut.resize(cut.size() - 12 - 88 - 256 - 20);
    Bytes archive = Version2Archive({{.name = "cut.txd", .contents = cut}});
    archive.resize(2048 + cut.size());
    m_oFiles.Put("a.img", archive);
    ASSERT_TRUE(m_oArchive.Open("a.img"));
    const Outcome outcome = SameInEveryWay({.answers = {kNo}});
    EXPECT_EQ(outcome.boxes.size(), 1U);
    EXPECT_EQ(outcome.counts[0], 2U);
    EXPECT_THAT(NamesIn(outcome.files), ElementsAre("wall", "door"));
}

TEST_F(ImportArchive, TellsAboutATextureThatIsDamagedOrCannotBeStored)
{
    PutDictionaries(
        {{"a.txd", {Texture32("wall", 1), DamagedTexture(), Texture32("", 4), Texture32("door", 2)}},
         {"b.txd",
          {RwFile::PCNative({.name = "odd",
                             .rasterFormat = 0x500,
                             .width = 6,
                             .height = 6,
                             .depth = 32,
                             .pixels = Noise(144, 5)}),
           Texture32("roof", 3)}}});
    const Outcome outcome = SameInEveryWay({});
    EXPECT_THAT(NamesIn(outcome.files), ElementsAre("wall", "door", "roof"));
    EXPECT_THAT(outcome.boxes,
                ElementsAre("Error: Name should not be empty.", "Error: Wrong texture dimensions given."));
    EXPECT_EQ(outcome.stopBoxes.size(), 1U) << "of the damaged record";
    EXPECT_EQ(outcome.counts, (std::array<std::uint32_t, 5>{3, 0, 0, 3, 0}));
}

TEST_F(ImportArchive, CannotReadWhatEndsAtFourGigabytes)
{
    Put({{.name = "far.txd", .offset = 0x200000, .size = 1},
         {.name = "a.txd", .contents = RwFile::Dictionary({Texture32("wall", 1)})}});
    const Outcome outcome = RunWith({.answers = {kYes}}, 2);
    EXPECT_THAT(outcome.boxes, ElementsAre("far.txd: Stream reading error.\n\nDo you want to continue?"));
    EXPECT_THAT(NamesIn(outcome.files), ElementsAre("wall"));
}

TEST_F(ImportArchive, ReadsADictionaryWhoseEntryHasNoSize)
{
    Put({{.name = "a.txd", .contents = RwFile::Dictionary({Texture32("wall", 1)}), .size = 0}});
    EXPECT_THAT(NamesIn(SameInEveryWay({}).files), ElementsAre("wall"));
}

TEST_F(ImportArchive, StopsBetweenTwoTexturesAndKeepsWhatIsThere)
{
    PutDictionaries(
        {{"a.txd", {Texture32("wall", 1), Texture16("door", 2)}}, {"b.txd", {TextureDxt1("roof", 3)}}});
    for (std::size_t stop = 1; stop <= 5; ++stop) {
        const Outcome outcome = SameInEveryWay({.cancelAt = stop});
        EXPECT_EQ(outcome.counts[4], 1U) << stop;
        EXPECT_EQ(outcome.progress.size(), stop);
        EXPECT_EQ(outcome.refreshes, 1) << stop;
        const CTemporaryFolder folder;
        WriteFiles(folder.Path(), outcome.files);
        CScriptedPrompt prompt;
        CTextureDatabase database(StreamMode::Framed, DiskFileSystem(), prompt);
        ASSERT_TRUE(database.Open(folder / "list.txt"));
        EXPECT_EQ(database.EntryCount(), outcome.counts[0]) << stop;
        for (const CacheIndex cache : kAllCaches)
            EXPECT_TRUE(database.IsTocValid(cache)) << stop;
    }
}

TEST_F(ImportArchive, AsksForTheGameOnceAndEndsWhenThatIsCancelled)
{
    PutDictionaries(
        {{"a.txd", {Texture32("wall", 1), Texture16("door", 2)}}, {"b.txd", {TextureDxt1("roof", 3)}}});
    for (const PromptAnswer answer : {kYes, kNo}) {
        const Outcome outcome = SameInEveryWay({.answers = {answer}, .game = StreamMode::Auto});
        EXPECT_EQ(outcome.counts, (std::array<std::uint32_t, 5>{3, 0, 0, 0, 0}));
    }
    const Outcome cancelled = RunWith({.answers = {PromptAnswer::Cancel}, .game = StreamMode::Auto}, 2);
    EXPECT_EQ(cancelled.counts, (std::array<std::uint32_t, 5>{0, 0, 0, 0, 1}));
}

TEST_F(ImportArchive, GivesTheSameFilesForManyDictionaries)
{
    std::vector<std::pair<std::string, std::vector<Bytes>>> dictionaries;
    for (std::uint32_t i = 0; i < 30; ++i) {
        auto& [name, natives] = dictionaries.emplace_back();
        name = "d" + std::to_string(i) + ".txd";
        for (std::uint32_t t = 0; t < i % 4; ++t) {
            const std::string texture = "t" + std::to_string((i * 7 + t) % 40);
            const std::uint32_t seed = (i * 5 + t) % 17;
            natives.push_back(t == 0 ? Texture32(texture, seed, 16)
                                     : (t == 1 ? TextureDxt1(texture, seed) : Texture16(texture, seed)));
        }
    }
    PutDictionaries(dictionaries);
    const Outcome outcome = SameInEveryWay({});
    EXPECT_EQ(outcome.counts[0] + outcome.counts[1] + outcome.counts[2], 43U);
    EXPECT_GT(outcome.counts[1], 0U);
    EXPECT_GT(outcome.counts[2], 0U);
}

TEST_F(ImportArchive, GivesTheSameFilesForEveryPlatform)
{
    PutDictionaries(
        {{"pc.txd", {TexturePalette("floor", 1), TextureDxt1("wall", 2)}},
         {"ps2.txd",
          {RwFile::PS2Native({.name = "road"}), RwFile::PS2Native({.name = "sky", .data = Noise(64, 3)})}},
         {"mobile.txd", {RwFile::MobileNative({.name = "hill"})}}});
    const Outcome outcome = SameInEveryWay({});
    EXPECT_THAT(NamesIn(outcome.files), ElementsAre("floor", "wall", "road", "sky", "hill"));
    EXPECT_THAT(outcome.boxes, IsEmpty());
}

TEST_F(ImportArchive, LetsTheWindowPaintWhileItWaits)
{
    m_oPlugins.BindFunctions(
        CacheIndex::Dxt,
        [](const void* source, void* destination, std::uint32_t width, std::uint32_t height,
           std::uint32_t mode, std::uint32_t flags) {
            std::this_thread::sleep_for(std::chrono::milliseconds(60));
            return Fake::CompressDxt(source, destination, width, height, mode, flags);
        },
        nullptr);
    PutDictionaries({{"a.txd", {Texture32("wall", 1), Texture16("door", 2)}}});
    int painted = 0;
    RunIn({}, [&](const ArchiveImportParts& parts) {
        return CArchiveImporter(parts, {.jobs = 1, .whileWaiting = [&] { ++painted; }})
            .Run(m_oArchive, EntriesOf({}));
    });
    EXPECT_GT(painted, 0);
}
