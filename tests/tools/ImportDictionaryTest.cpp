#include "tools/ImportDictionary.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <deque>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <span>
#include <thread>

#include "tests/codec/TestDatabase.h"
#include "tests/support/DatabaseBuilder.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/MemoryFileSystem.h"
#include "tests/support/RecordingFailures.h"
#include "tests/support/RenderWareFiles.h"

namespace {

using RwFile::Bytes;
using RwFile::Dictionary;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kFile = "file.txd";
constexpr std::wstring_view kWallExists = L"Texture 'wall' already exists. Would you like to replace it?";

class CRecordingProgress final : public IProgress {
public:
    void Report(std::uint32_t current, std::uint32_t total, const std::wstring& text) override
    {
        m_aReports.push_back(std::to_wstring(current) + L"/" + std::to_wstring(total) + L" " + text);
    }
    bool Cancelled() const override { return m_aReports.size() >= m_nStopAt; }

    void StopAt(std::size_t reports) { m_nStopAt = reports; }
    void Clear() { m_aReports.clear(); }
    const std::vector<std::wstring>& Reports() const { return m_aReports; }

private:
    std::vector<std::wstring> m_aReports;
    std::size_t m_nStopAt = SIZE_MAX;
};

/// A square of 32 bits a pixel, every byte of it `shade`, alpha too.
Bytes Shade(const std::string& name, std::uint8_t shade, std::uint16_t side = 4)
{
    return RwFile::PCNative({.name = name,
                             .rasterFormat = 0x500,
                             .width = side,
                             .height = side,
                             .depth = 32,
                             .pixels = RwFile::Filled(std::size_t{side} * side * 4, shade)});
}

/// A record that ends behind its first words.
Bytes Damaged()
{
    return RwFile::Section(0x15,
                           RwFile::Joined({RwFile::Struct(RwFile::Words({8, 0})), RwFile::EmptyExtension()}));
}

bool IsReadable(CTextureDatabase& database, std::uint32_t index, CacheIndex cache)
{
    try {
        return database.ReadRaster(index, cache, RecordKind::Raster).has_value();
    } catch (const CError&) {
        return false;
    }
}

/// The entries whose rasters can be read in every cache, after the repairs of opening.
std::uint32_t CountReadable(CTextureDatabase& database, std::span<const CacheIndex> caches)
{
    for (const CacheIndex cache : caches)
        if (!database.IsTocValid(cache))
            database.RebuildToc(cache);
    std::uint32_t count = 0;
    for (std::uint32_t index = 0; index < database.EntryCount(); ++index)
        if (std::all_of(caches.begin(), caches.end(),
                        [&](CacheIndex cache) { return IsReadable(database, index, cache); }))
            ++count;
    return count;
}

class ImportDictionary : public testing::Test {
protected:
    ImportDictionary() : m_oDatabase({CacheIndex::Dxt, CacheIndex::Unc})
    {
        m_oDatabase.Settings().WriteInt(L"global", L"enable_mipmaps", 0);
    }

    ImportCounts Run(const std::vector<Bytes>& natives, std::deque<PromptAnswer> answers = {},
                     const DictionaryImportOptions& options = {}, const ImportRequest& request = {})
    {
        CTXDHelper helper(m_oDatabase.Plugins(), m_oFailures, m_oFiles);
        Open(helper, natives);
        return WithPrompt(std::move(answers), options,
                          [&](CDictionaryImporter& importer) { return importer.RunAll(helper, request); });
    }
    ImportCounts Replace(const std::vector<Bytes>& natives)
    {
        return Run(natives, {}, {.clash = ClashAnswer::Replace});
    }
    template <class Call>
    ImportCounts WithPrompt(std::deque<PromptAnswer> answers, const DictionaryImportOptions& options,
                            Call call)
    {
        CScriptedPrompt prompt(std::move(answers));
        CDictionaryImporter importer(*m_oDatabase, m_oDatabase.Plugins(), m_oDatabase.Settings(), prompt,
                                     m_oProgress, options);
        const ImportCounts counts = call(importer);
        EXPECT_TRUE(prompt.ScriptIsFinished());
        m_aShown = prompt.Shown();
        return counts;
    }
    void Open(CTXDHelper& helper, const std::vector<Bytes>& natives)
    {
        m_oFiles.Put(kFile, Dictionary(natives));
        helper.OpenDictionary(kFile);
    }
    std::vector<std::wstring> Names()
    {
        std::vector<std::wstring> names;
        for (std::uint32_t index = 0; index < m_oDatabase->EntryCount(); ++index)
            names.push_back(m_oDatabase->Entry(index).name);
        return names;
    }
    std::string Line(std::uint32_t index)
    {
        TextureEntry entry = m_oDatabase->Entry(index);
        std::string line = EntryLine(entry);
        line.erase(line.find_last_not_of("\r\n") + 1);
        return line;
    }
    std::vector<std::byte> Raster(std::uint32_t index)
    {
        return m_oDatabase->ReadRaster(index, CacheIndex::Dxt, RecordKind::Raster).value();
    }
    std::uint8_t ShadeOf(std::uint32_t index) { return std::to_integer<std::uint8_t>(Raster(index).at(0)); }
    std::vector<std::wstring> ShownTexts() const
    {
        std::vector<std::wstring> texts;
        for (const PromptBox& box : m_aShown)
            texts.push_back(box.text);
        return texts;
    }

    CTestDatabase m_oDatabase;
    CMemoryFileSystem m_oFiles;
    CRecordingFailures m_oFailures;
    CRecordingProgress m_oProgress;
    std::vector<PromptBox> m_aShown;
};

}  // namespace

TEST_F(ImportDictionary, ImportsEveryTextureInItsOrder)
{
    const auto counts = Run({Shade("wall", 1), Shade("door", 2)});
    EXPECT_EQ(counts.imported, 2U);
    EXPECT_EQ(counts.skipped + counts.aliased + counts.failed, 0U);
    EXPECT_FALSE(counts.wasStopped);
    EXPECT_THAT(Names(), ElementsAre(L"wall", L"door"));
    EXPECT_EQ(ShadeOf(1), 2);
    EXPECT_THAT(m_oProgress.Reports(), ElementsAre(L"0/2 wall", L"1/2 door", L"2/2 "));
    m_oDatabase->Reload();
    EXPECT_THAT(Names(), ElementsAre(L"wall", L"door"));
}

TEST_F(ImportDictionary, StoresTexturesOf32BitsWithAlphaAndIn32Bits)
{
    // Neither a mask nor an alpha layout: the depth alone decides.
    Run({RwFile::PCNative({.name = "wall",
                           .rasterFormat = 0x600,
                           .width = 4,
                           .height = 4,
                           .depth = 32,
                           .pixels = RwFile::Filled(64, 7)})});
    EXPECT_TRUE(Line(0).starts_with("\"wall\" alphamode=2 height=4 width=4 ")) << Line(0);
    const auto raster = Raster(0);
    ASSERT_EQ(raster.size(), 64U);
    EXPECT_EQ(raster[0], std::byte{7});
    EXPECT_EQ(raster[3], std::byte{255});
}

TEST_F(ImportDictionary, StoresOthersAsTheCachesDoAndByTheirOwnAlpha)
{
    const RwFile::PCTexture plain = {.name = "plain",
                                     .rasterFormat = 0x200,
                                     .width = 4,
                                     .height = 4,
                                     .depth = 16,
                                     .pixels = RwFile::Filled(32, 0x18)};
    RwFile::PCTexture glass = plain;
    glass.name = "glass";
    glass.mask = "glassa";
    glass.rasterFormat = 0x300;
    glass.platformFormat = 1;
    EXPECT_EQ(Run({RwFile::PCNative(plain), RwFile::PCNative(glass)}).imported, 2U);
    EXPECT_TRUE(Line(0).starts_with("\"plain\" height=4 width=4 ")) << Line(0);
    EXPECT_TRUE(Line(1).starts_with("\"glass\" alphamode=2 height=4 width=4 ")) << Line(1);
    EXPECT_EQ(Raster(0).size(), 32U) << "16 bits a pixel";
    EXPECT_EQ(Raster(1).size(), 32U);
}

TEST_F(ImportDictionary, IgnoresTheAlphaOfTheRequest)
{
    const Bytes plain = RwFile::PCNative({.name = "plain",
                                          .rasterFormat = 0x200,
                                          .width = 4,
                                          .height = 4,
                                          .depth = 16,
                                          .pixels = RwFile::Filled(32, 0x18)});
    Run({plain}, {}, {}, {.hasAlpha = true, .storeRgba8888 = true});
    EXPECT_EQ(Line(0).find("alphamode"), std::string::npos);
    EXPECT_EQ(Raster(0).size(), 32U);
}

TEST_F(ImportDictionary, PutsTheCategoryIntoTexturesAndDuplicates)
{
    const auto counts = Run({Shade("wall", 1), Shade("again", 1)}, {}, {}, {.category = 3});
    EXPECT_EQ(counts.imported, 1U);
    EXPECT_EQ(counts.aliased, 1U);
    EXPECT_TRUE(Line(0).ends_with(" cat=3")) << Line(0);
    EXPECT_EQ(Line(1), "\"again\" \"affiliate=wall\" cat=3");
}

TEST_F(ImportDictionary, WritesTheSameFilesWhenAnotherThreadMakesTheRecords)
{
    const RwFile::PCTexture plain = {.name = "plain",
                                     .rasterFormat = 0x200,
                                     .width = 4,
                                     .height = 4,
                                     .depth = 16,
                                     .pixels = RwFile::Filled(32, 0x18)};
    m_oFiles.Put(kFile, Dictionary({Shade("wall", 1), Shade("again", 1), Shade("odd", 5, 7), Damaged(),
                                    RwFile::PCNative(plain), Shade("wall", 9, 64), Shade("", 3),
                                    Shade("last", 9, 64)}));
    const auto filesAfter = [this](const DictionaryImportOptions& options) {
        CTestDatabase database({CacheIndex::Dxt, CacheIndex::Unc});
        CTXDHelper helper(database.Plugins(), m_oFailures, m_oFiles);
        helper.OpenDictionary(kFile);
        CScriptedPrompt prompt({PromptAnswer::Yes});
        CNoProgress progress;
        CDictionaryImporter importer(*database, database.Plugins(), database.Settings(), prompt, progress,
                                     options);
        const ImportCounts counts = importer.RunAll(helper);
        EXPECT_EQ(counts.imported + counts.aliased, 5U);
        EXPECT_EQ(counts.failed, 3U) << "seven pixels a side, the damaged one, the one without a name";
        EXPECT_EQ(prompt.Shown().size(), 3U) << "a stop box told of the damaged one";
        return FilesOf(database.Folder().Path());
    };
    EXPECT_EQ(filesAfter({}), filesAfter({.whileWaiting = [] {}}));
}

TEST_F(ImportDictionary, LetsAWindowPaintWhileTheRecordsAreMade)
{
    constexpr auto encodeSlowly = [](const void*, void* destination, std::uint32_t width,
                                     std::uint32_t height, std::uint32_t, std::uint32_t) -> std::uint32_t {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        const std::uint32_t bytes = (width + 3) / 4 * ((height + 3) / 4) * 8;
        std::memset(destination, 0, bytes);
        return bytes;
    };
    m_oDatabase.Plugins().BindFunctions(CacheIndex::Dxt, encodeSlowly, nullptr);
    int calls = 0;
    const auto own = std::this_thread::get_id();
    const RwFile::PCTexture plain = {.name = "plain",
                                     .rasterFormat = 0x200,
                                     .width = 4,
                                     .height = 4,
                                     .depth = 16,
                                     .pixels = RwFile::Filled(32, 0x18)};
    const auto counts = Run({RwFile::PCNative(plain)}, {}, {.whileWaiting = [&calls, own] {
                                EXPECT_EQ(std::this_thread::get_id(), own);
                                ++calls;
                            }});
    EXPECT_EQ(counts.imported, 1U);
    EXPECT_GT(calls, 0);
}

TEST_F(ImportDictionary, ImportsTheChosenTexturesOnly)
{
    CTXDHelper helper(m_oDatabase.Plugins(), m_oFailures, m_oFiles);
    Open(helper, {Shade("a", 1), Shade("b", 2), Shade("c", 3)});
    const auto counts = WithPrompt({}, {}, [&](CDictionaryImporter& importer) {
        return importer.Run(helper, {2, 7, 0});
    });
    EXPECT_EQ(counts.imported, 2U);
    EXPECT_EQ(counts.skipped, 1U) << "there is no texture 7";
    EXPECT_THAT(Names(), ElementsAre(L"c", L"a"));
    EXPECT_EQ(m_oFailures.Count(), 0U);
}

TEST_F(ImportDictionary, ImportsNothingFromAnEmptyDictionaryOrNone)
{
    const auto time = std::filesystem::last_write_time(m_oDatabase.ListPath());
    EXPECT_EQ(Run({}).imported, 0U);
    CTXDHelper closed(m_oDatabase.Plugins(), m_oFailures, m_oFiles);
    const auto counts =
        WithPrompt({}, {}, [&](CDictionaryImporter& importer) { return importer.Run(closed, {0}); });
    EXPECT_EQ(counts.skipped, 1U);
    EXPECT_EQ(std::filesystem::last_write_time(m_oDatabase.ListPath()), time);
}

TEST_F(ImportDictionary, ImportsTexturesOfOtherPlatforms)
{
    const auto counts = Run({RwFile::PS2Native({.name = "statue"})});
    EXPECT_EQ(counts.imported, 1U);
    Run({RwFile::MobileNative({.name = "phone"})});
    EXPECT_THAT(Names(), ElementsAre(L"statue", L"phone"));
    EXPECT_EQ(m_oFailures.Count(), 0U);
}

TEST_F(ImportDictionary, AsksForTheGameOfANewCacheOnceForAllDictionaries)
{
    m_oDatabase->SetForcedMode(StreamMode::Auto);
    CTXDHelper helper(m_oDatabase.Plugins(), m_oFailures, m_oFiles);
    const auto counts = WithPrompt({PromptAnswer::Yes}, {}, [&](CDictionaryImporter& importer) {
        Open(helper, {Shade("a", 1)});
        importer.RunAll(helper);
        m_oDatabase->DeleteEntry(0, std::nullopt);
        Open(helper, {Shade("b", 2)});
        return importer.RunAll(helper);
    });
    EXPECT_EQ(counts.imported, 1U);
    EXPECT_EQ(m_oDatabase->DetectStreamMode(0, CacheIndex::Dxt, RecordKind::Raster), StreamMode::Framed);
}

TEST_F(ImportDictionary, EndsWhenTheGameQuestionIsCancelled)
{
    m_oDatabase->SetForcedMode(StreamMode::Auto);
    const auto counts = Run({Shade("a", 1), Shade("b", 2)}, {PromptAnswer::Cancel});
    EXPECT_TRUE(counts.wasStopped);
    EXPECT_EQ(m_oDatabase->EntryCount(), 0U);
}

TEST_F(ImportDictionary, StopsBetweenTwoTexturesWhenAskedTo)
{
    m_oProgress.StopAt(2);
    const auto counts = Run({Shade("a", 1), Shade("b", 2), Shade("c", 3)});
    EXPECT_TRUE(counts.wasStopped);
    EXPECT_THAT(Names(), ElementsAre(L"a"));
    EXPECT_THAT(m_oProgress.Reports(), ElementsAre(L"0/3 a", L"1/3 b"));
}

// Names that exist already.

TEST_F(ImportDictionary, AsksForEachNameThatExistsWhateverItsCase)
{
    Run({Shade("WALL", 1), Shade("b", 2)});
    const auto counts =
        Run({Shade("wall", 3), Shade("b", 4), Shade("c", 5)}, {PromptAnswer::Yes, PromptAnswer::No});
    EXPECT_EQ(counts.imported, 2U);
    EXPECT_EQ(counts.skipped, 1U);
    EXPECT_THAT(ShownTexts(),
                ElementsAre(kWallExists, L"Texture 'b' already exists. Would you like to replace it?"));
    EXPECT_EQ(m_aShown[0].caption, L"Mavrel");
    EXPECT_EQ(m_aShown[0].icon, PromptIcon::Question);
    EXPECT_EQ(m_aShown[0].buttons, PromptButtons::YesNoCancel);
    EXPECT_THAT(Names(), ElementsAre(L"b", L"wall", L"c"));
    EXPECT_EQ(ShadeOf(0), 2);
    EXPECT_EQ(ShadeOf(1), 3);
}

TEST_F(ImportDictionary, CancelImportsTheTextureBesideTheOldOne)
{
    Run({Shade("wall", 1)});
    m_oDatabase->AddAlias(L"copy", L"wall");
    const auto counts = Run({Shade("wall", 2), Shade("c", 3)}, {PromptAnswer::Cancel});
    EXPECT_EQ(counts.imported, 2U);
    EXPECT_FALSE(counts.wasStopped);
    EXPECT_THAT(Names(), ElementsAre(L"wall", L"copy", L"wall", L"c"));
    EXPECT_EQ(ShadeOf(0), 1);
    EXPECT_EQ(ShadeOf(2), 2);
    EXPECT_EQ(m_oDatabase->AliasTarget(1), 0U);
}

TEST_F(ImportDictionary, CancelCanEndTheRunInstead)
{
    Run({Shade("wall", 1)});
    const auto counts = Run({Shade("a", 2), Shade("wall", 3), Shade("c", 4)}, {PromptAnswer::Cancel},
                            {.onCancel = ClashChoice::Stop});
    EXPECT_TRUE(counts.wasStopped);
    EXPECT_EQ(counts.imported, 1U);
    EXPECT_THAT(Names(), ElementsAre(L"wall", L"a"));
    EXPECT_EQ(ShadeOf(0), 1);
}

TEST_F(ImportDictionary, AsksNothingWhenTheAnswerIsGiven)
{
    Run({Shade("wall", 1)});
    EXPECT_EQ(Run({Shade("wall", 2)}, {}, {.clash = ClashAnswer::Skip}).skipped, 1U);
    EXPECT_EQ(ShadeOf(0), 1);
    EXPECT_EQ(Replace({Shade("wall", 2)}).imported, 1U);
    EXPECT_EQ(ShadeOf(0), 2);
    EXPECT_EQ(m_oDatabase->EntryCount(), 1U);
}

TEST_F(ImportDictionary, AsksAboutTwoTexturesOfOneDictionaryToo)
{
    const auto counts = Run({Shade("wall", 1), Shade("wall", 2)}, {PromptAnswer::No});
    EXPECT_EQ(counts.imported, 1U);
    EXPECT_EQ(counts.skipped, 1U);
    EXPECT_THAT(ShownTexts(), ElementsAre(kWallExists));
}

TEST_F(ImportDictionary, TellsOfImportedTexturesOnlyAfterEach)
{
    Run({Shade("wall", 1)});
    int imported = 0;
    Run({Shade("a", 2), Shade("wall", 3), Shade("odd", 4, 3), Shade("again", 2)}, {},
        {.clash = ClashAnswer::Skip, .afterImport = [&imported] { ++imported; }});
    EXPECT_EQ(imported, 2) << "a texture and a duplicate; one was skipped, one failed";
}

TEST_F(ImportDictionary, KeepsTheAliasesOfAReplacedTexture)
{
    Run({Shade("door", 1), Shade("wall", 2)});
    m_oDatabase->AddAlias(L"copy", L"door");
    EXPECT_EQ(Replace({Shade("DOOR", 2)}).imported, 1U);
    ASSERT_THAT(Names(), ElementsAre(L"wall", L"copy", L"door"));
    EXPECT_EQ(m_oDatabase->AliasTarget(1), 2U);
    EXPECT_FALSE(m_oDatabase->IsAlias(2)) << "the same pixels as 'wall', and yet no alias";
    m_oDatabase->Reload();
    EXPECT_EQ(m_oDatabase->AliasTarget(1), 2U);
}

TEST_F(ImportDictionary, ReplacesAnAliasByATexture)
{
    Run({Shade("wall", 1)});
    m_oDatabase->AddAlias(L"copy", L"wall");
    Replace({Shade("copy", 2)});
    EXPECT_THAT(Names(), ElementsAre(L"wall", L"copy"));
    EXPECT_FALSE(m_oDatabase->IsAlias(1));
    EXPECT_EQ(ShadeOf(1), 2);
}

// Errors.

TEST_F(ImportDictionary, TellsOfATextureThatFailsAndGoesOn)
{
    const Bytes unsupported = RwFile::MobileNative({.platform = 11, .name = "etc"});
    const auto counts = Run({unsupported, RwFile::MobileNative({.platform = 11, .name = "etc2"})});
    EXPECT_EQ(counts.failed, 2U);
    EXPECT_FALSE(counts.wasStopped);
    EXPECT_THAT(ShownTexts(), ElementsAre(L"This format is unsupported", L"This format is unsupported"));
    EXPECT_EQ(m_aShown[0].caption, L"Error");
    EXPECT_EQ(m_aShown[0].icon, PromptIcon::Error);
    EXPECT_EQ(m_aShown[0].buttons, PromptButtons::Ok);
}

TEST_F(ImportDictionary, ImportsTheTexturesAroundADamagedOne)
{
    const auto counts = Run({Shade("a", 1), Damaged(), Shade("c", 3)});
    EXPECT_EQ(counts.imported, 2U);
    EXPECT_EQ(counts.failed, 1U);
    EXPECT_THAT(Names(), ElementsAre(L"a", L"c"));
    EXPECT_THAT(m_oFailures.Lines(), ElementsAre(L"Section data reading failed. (112)"));
    EXPECT_THAT(ShownTexts(), IsEmpty()) << "the stop box has told of it";
}

TEST_F(ImportDictionary, ImportsTheTexturesAroundOneWithoutAllItsPixels)
{
    const Bytes cut = RwFile::PCNative({.name = "b",
                                        .rasterFormat = 0x500,
                                        .width = 4,
                                        .height = 4,
                                        .depth = 32,
                                        .pixels = RwFile::Filled(63, 1)});
    const auto counts = Run({Shade("a", 1), cut, Shade("c", 3)});
    EXPECT_EQ(counts.failed, 1U);
    EXPECT_THAT(Names(), ElementsAre(L"a", L"c"));
    EXPECT_EQ(m_oFailures.Count() + m_aShown.size(), 1U) << "told once";
}

TEST_F(ImportDictionary, RefusesNamesThatATextureCannotHaveBeforeItAsks)
{
    const auto counts = Run({Shade("", 1), Shade("say \"a\"", 2), Shade("tab\there", 3), Shade("b", 4)});
    EXPECT_EQ(counts.failed, 3U);
    EXPECT_THAT(ShownTexts(), ElementsAre(L"Name should not be empty.", L"Wrong texture name given.",
                                          L"Wrong texture name given."));
    EXPECT_THAT(Names(), ElementsAre(L"b"));
}

TEST_F(ImportDictionary, KeepsTheOldTextureWhenTheNewOneCannotBeImported)
{
    Run({Shade("wall", 1)});
    EXPECT_EQ(Replace({Shade("wall", 2, 3)}).failed, 1U);
    EXPECT_THAT(ShownTexts(), ElementsAre(L"Wrong texture dimensions given."));
    EXPECT_EQ(Replace({RwFile::MobileNative({.platform = 11, .name = "wall"})}).failed, 1U);
    EXPECT_THAT(Names(), ElementsAre(L"wall"));
    EXPECT_EQ(ShadeOf(0), 1);
}

TEST_F(ImportDictionary, KeepsTheOldTextureWhenTheDuplicateCannotBeNamed)
{
    Run({Shade("wall", 1), Shade("good", 2)});
    // A list with such a name comes from elsewhere; this one is held open.
    FileBytes files = FilesOf(m_oDatabase.Folder().Path());
    std::string list = TextOf(files.at("mobile.txt"));
    list[list.find("wall")] = '\x01';
    files["mobile.txt"] = BytesOf(list);
    std::filesystem::create_directory(m_oDatabase.Folder() / "foreign");
    WriteFiles(m_oDatabase.Folder() / "foreign", files);
    m_oDatabase->Open(m_oDatabase.Folder() / "foreign" / "mobile.txt");
    ASSERT_THAT(Names(), ElementsAre(L"\x01"
                                     L"all",
                                     L"good"));
    EXPECT_EQ(Replace({Shade("good", 1)}).failed, 1U);
    EXPECT_THAT(ShownTexts(), ElementsAre(L"Wrong texture name given."));
    ASSERT_EQ(m_oDatabase->EntryCount(), 2U);
    EXPECT_EQ(m_oDatabase->Entry(1).name, L"good");
    EXPECT_EQ(ShadeOf(1), 2);
}

TEST_F(ImportDictionary, TellsOfTexturesThatAreCountedButNotThere)
{
    m_oFiles.Put(kFile, Dictionary({Shade("a", 1)}, 200));
    CTXDHelper helper(m_oDatabase.Plugins(), m_oFailures, m_oFiles);
    helper.OpenDictionary(kFile);
    const auto counts =
        WithPrompt({}, {}, [&](CDictionaryImporter& importer) { return importer.RunAll(helper); });
    EXPECT_EQ(counts.imported, 1U);
    EXPECT_THAT(m_oFailures.Lines(), ElementsAre(L"Wrong section ID. (370)"));
}

TEST_F(ImportDictionary, SurvivesEveryTruncation)
{
    const Bytes whole = Dictionary({Shade("a", 1), Shade("b", 2)});
    for (std::size_t length = 0; length < whole.size(); ++length) {
        m_oFiles.Put(kFile, Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)));
        CTXDHelper helper(m_oDatabase.Plugins(), m_oFailures, m_oFiles);
        EXPECT_THROW(helper.OpenDictionary(kFile), RW::CException) << length;
        CScriptedPrompt prompt;
        CDictionaryImporter importer(*m_oDatabase, m_oDatabase.Plugins(), m_oDatabase.Settings(), prompt,
                                     m_oProgress, {.clash = ClashAnswer::Replace});
        const auto counts = importer.RunAll(helper);
        EXPECT_LE(counts.imported + counts.failed, 2U) << length;
    }
    EXPECT_THAT(Names(), ElementsAre(L"a", L"b"));
    EXPECT_EQ(ShadeOf(1), 2);
}

TEST(ImportDictionaryOnAFullDisk, EndsAndLosesAtMostTheTextureThatItWasReplacing)
{
    CMemoryFileSystem dictionaries;
    CRecordingFailures failures;
    CMemorySettings settings;
    const CPluginTable plugins;
    const std::array caches = {CacheIndex::Dxt, CacheIndex::Unc};
    bool succeeded = false;
    for (std::uint32_t writes = 0; !succeeded && writes < 300; ++writes) {
        CTemporaryFolder folder;
        CFaultyFileSystem disk(100000);
        CScriptedPrompt prompt;
        std::size_t imported = 0;
        CRecordingProgress progress;
        CTXDHelper helper(plugins, failures, dictionaries);
        std::optional<ImportCounts> counts;
        {
            CTextureDatabase database(StreamMode::Raw, disk, prompt);
            ASSERT_TRUE(database.Create(folder / "list.txt", caches));
            CDictionaryImporter importer(
                database, plugins, settings, prompt, progress,
                {.clash = ClashAnswer::Replace, .afterImport = [&imported] { ++imported; }});
            dictionaries.Put(kFile, Dictionary({Shade("a", 1), Shade("b", 2), Shade("c", 3)}));
            helper.OpenDictionary(kFile);
            ASSERT_EQ(importer.RunAll(helper).imported, 3U);
            dictionaries.Put(kFile, Dictionary({Shade("a", 4), Shade("b", 5), Shade("c", 6)}));
            helper.OpenDictionary(kFile);
            progress.Clear();
            imported = 0;
            disk.Allow(writes);
            try {
                counts = importer.RunAll(helper);
            } catch (const CError&) {
                counts.reset();
            }
        }
        succeeded = counts && counts->imported == 3 && !disk.HasFailed();
        EXPECT_LE(progress.Reports().size(), imported + 1) << writes << ": nothing after a failed write";
        CTextureDatabase reopened(StreamMode::Raw, DiskFileSystem(), prompt);
        reopened.Open(folder / "list.txt");
        EXPECT_GE(CountReadable(reopened, caches), succeeded ? 3U : 2U) << writes;
    }
    EXPECT_TRUE(succeeded);
}
