#include "tools/ImportPictures.h"

#include <deque>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "image/Hash.h"
#include "image/ImageFile.h"
#include "tests/codec/FakeCodecs.h"
#include "tests/codec/TestDatabase.h"
#include "tests/support/FaultyFileSystem.h"

namespace {

using testing::ElementsAre;

class CRecordingProgress final : public IProgress {
public:
    void Report(std::uint32_t current, std::uint32_t total, const std::wstring& text) override
    {
        m_aReports.push_back(std::to_wstring(current) + L"/" + std::to_wstring(total) + L" " + text);
    }
    bool Cancelled() const override { return m_aReports.size() >= m_nStopAt; }

    void StopAt(std::size_t reports) { m_nStopAt = reports; }
    const std::vector<std::wstring>& Reports() const { return m_aReports; }

private:
    std::vector<std::wstring> m_aReports;
    std::size_t m_nStopAt = SIZE_MAX;
};

class ImportPictures : public testing::Test {
protected:
    ImportPictures() : m_oDatabase({CacheIndex::Dxt, CacheIndex::Unc})
    {
        m_oDatabase.Settings().WriteInt(L"global", L"enable_mipmaps", 0);
    }

    std::filesystem::path Picture(const std::string& fileName, std::uint8_t shade, std::uint32_t side = 4)
    {
        const auto file = m_oDatabase.Folder() / fileName;
        const auto format = fileName.ends_with(".bmp") ? ImageFormat::Bmp : ImageFormat::Png;
        EXPECT_TRUE(SaveImageFile(file, SolidPicture(side, side, shade, shade, shade, 255), format));
        return file;
    }
    ImportCounts Run(const std::vector<std::filesystem::path>& files, std::deque<PromptAnswer> answers = {},
                     const ImportRequest& request = {}, ClashAnswer clash = ClashAnswer::Ask)
    {
        CScriptedPrompt prompt(std::move(answers));
        CPictureImporter importer(*m_oDatabase, m_oDatabase.Plugins(), m_oDatabase.Settings(), prompt,
                                  m_oProgress);
        const ImportCounts counts = importer.Run(files, request, clash);
        EXPECT_TRUE(prompt.ScriptIsFinished());
        m_aShown = prompt.Shown();
        return counts;
    }
    std::vector<std::string> Lines()
    {
        std::vector<std::string> lines;
        for (std::uint32_t index = 0; index < m_oDatabase->EntryCount(); ++index) {
            TextureEntry entry = m_oDatabase->Entry(index);
            std::string line = EntryLine(entry);
            line.erase(line.find_last_not_of("\r\n") + 1);
            lines.push_back(line);
        }
        return lines;
    }
    std::string ListText() const
    {
        std::ifstream in(m_oDatabase.ListPath(), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
    std::uint8_t ShadeOf(std::uint32_t index)
    {
        return std::to_integer<std::uint8_t>(
            m_oDatabase->ReadRaster(index, CacheIndex::Dxt, RecordKind::Raster).value().at(0));
    }

    CTestDatabase m_oDatabase;
    CRecordingProgress m_oProgress;
    std::vector<PromptBox> m_aShown;
};

constexpr ImportRequest kFull = {.hasAlpha = true, .storeRgba8888 = true};

}  // namespace

TEST_F(ImportPictures, NamesTexturesAsTheirFilesWithoutTheExtension)
{
    const auto counts = Run({Picture("wall.png", 1), Picture("my.door.png", 2)});
    EXPECT_EQ(counts.imported, 2U);
    EXPECT_EQ(m_oDatabase->Entry(0).name, L"wall");
    EXPECT_EQ(m_oDatabase->Entry(1).name, L"my.door");
    EXPECT_THAT(m_oProgress.Reports(), ElementsAre(L"0/2 wall.png", L"1/2 my.door.png", L"2/2 "));
}

TEST_F(ImportPictures, PutsTheCategoryAtTheEndOfTheLineAndSaves)
{
    Run({Picture("wall.png", 1)}, {}, {.hasAlpha = true, .category = 3});
    const std::uint32_t hash = m_oDatabase->Entry(0).Value(Property::Img);
    const std::string line =
        "\"wall\" alphamode=2 height=4 width=4 " + PropertyPair(Property::Img, hash) + " cat=3";
    EXPECT_THAT(Lines(), ElementsAre(line));
    EXPECT_NE(ListText().find(line + "\r\n"), std::string::npos);
}

TEST_F(ImportPictures, WritesTheHashOfTheFileBeforeTheCategory)
{
    m_oDatabase.Settings().WriteInt(L"global", L"hash_png", 1);
    const auto file = Picture("wall.png", 1);
    Run({file}, {}, {.hasAlpha = true, .category = 3});
    const std::string pairs = PropertyPair(Property::Png, HashFile(file)) + " cat=3\r\n";
    EXPECT_NE(ListText().find(pairs), std::string::npos);
    EXPECT_NE(m_oDatabase->Entry(0).Value(Property::Png), 0U);
}

TEST_F(ImportPictures, GivesADuplicateTheCategoryAndCountsIt)
{
    const auto counts =
        Run({Picture("wall.png", 1), Picture("again.png", 1)}, {}, {.hasAlpha = true, .category = 3});
    EXPECT_EQ(counts.imported, 1U);
    EXPECT_EQ(counts.aliased, 1U);
    EXPECT_EQ(Lines().at(1), "\"again\" \"affiliate=wall\" cat=3");
}

TEST_F(ImportPictures, AsksForTheGameOfANewCacheOnce)
{
    m_oDatabase->SetForcedMode(StreamMode::Auto);
    const auto counts = Run({Picture("wall.png", 1), Picture("door.png", 2)}, {PromptAnswer::Yes}, kFull);
    EXPECT_EQ(counts.imported, 2U);
    EXPECT_EQ(m_oDatabase->DetectStreamMode(0, CacheIndex::Dxt, RecordKind::Raster), StreamMode::Framed);
}

TEST_F(ImportPictures, EndsWhenTheGameQuestionIsCancelled)
{
    m_oDatabase->SetForcedMode(StreamMode::Auto);
    const auto counts = Run({Picture("wall.png", 1), Picture("door.png", 2)}, {PromptAnswer::Cancel});
    EXPECT_TRUE(counts.wasStopped);
    EXPECT_EQ(m_oDatabase->EntryCount(), 0U);
}

TEST_F(ImportPictures, StopsBetweenTwoFilesWhenAskedTo)
{
    m_oProgress.StopAt(2);
    const auto counts = Run({Picture("wall.png", 1), Picture("door.png", 2), Picture("roof.png", 3)});
    EXPECT_TRUE(counts.wasStopped);
    EXPECT_EQ(counts.imported, 1U);
}

// Clashes.

TEST_F(ImportPictures, AsksWhenTwoFilesOfOneRunHaveTheSameName)
{
    const auto counts = Run({Picture("a.png", 1), Picture("A.bmp", 2)}, {PromptAnswer::No});
    EXPECT_EQ(counts.imported, 1U);
    EXPECT_EQ(counts.skipped, 1U);
    ASSERT_EQ(m_aShown.size(), 1U);
    EXPECT_EQ(m_aShown[0].text, L"Texture 'A' already exists. Would you like to replace it?");
    EXPECT_EQ(m_aShown[0].caption, L"Error");
    EXPECT_EQ(m_aShown[0].icon, PromptIcon::Warning);
    EXPECT_EQ(m_aShown[0].buttons, PromptButtons::YesNoCancel);
}

TEST_F(ImportPictures, ReplacesOneTextureAndAsksAgainForTheNext)
{
    Run({Picture("a.png", 1), Picture("b.png", 2)}, {}, kFull);
    const auto counts = Run({Picture("a.png", 3), Picture("b.png", 4)},
                            {PromptAnswer::Yes, PromptAnswer::No, PromptAnswer::No}, kFull);
    EXPECT_EQ(counts.imported, 1U);
    EXPECT_EQ(counts.skipped, 1U);
    EXPECT_EQ(m_aShown[1].text, L"Yes for all?\n\nChoose 'No' if you want decide ");
    EXPECT_EQ(m_aShown[1].icon, PromptIcon::Question);
    EXPECT_EQ(m_aShown[1].buttons, PromptButtons::YesNo);
    EXPECT_EQ(m_oDatabase->Entry(0).name, L"b");
    EXPECT_EQ(m_oDatabase->Entry(1).name, L"a");
    EXPECT_EQ(ShadeOf(1), 3);
}

TEST_F(ImportPictures, ReplacesAllLaterClashesOnYesForAll)
{
    Run({Picture("a.png", 1), Picture("b.png", 2), Picture("c.png", 3)}, {}, kFull);
    const auto counts = Run({Picture("a.png", 4), Picture("b.png", 5), Picture("c.png", 6)},
                            {PromptAnswer::Yes, PromptAnswer::Yes}, kFull);
    EXPECT_EQ(counts.imported, 3U);
    EXPECT_EQ(m_oDatabase->EntryCount(), 3U);
    EXPECT_EQ(ShadeOf(2), 6);
}

TEST_F(ImportPictures, EndsTheWholeImportOnCancelAndKeepsWhatIsDone)
{
    Run({Picture("b.png", 2)}, {}, kFull);
    const auto counts =
        Run({Picture("a.png", 1), Picture("b.png", 3), Picture("c.png", 4)}, {PromptAnswer::Cancel}, kFull);
    EXPECT_TRUE(counts.wasStopped);
    EXPECT_EQ(counts.imported, 1U);
    EXPECT_EQ(m_oDatabase->EntryCount(), 2U);
    EXPECT_EQ(ShadeOf(0), 2);
}

TEST_F(ImportPictures, AsksNothingWhenTheAnswerIsGiven)
{
    Run({Picture("a.png", 1)}, {}, kFull);
    EXPECT_EQ(Run({Picture("a.png", 2)}, {}, kFull, ClashAnswer::Skip).skipped, 1U);
    EXPECT_EQ(ShadeOf(0), 1);
    EXPECT_EQ(Run({Picture("a.png", 2)}, {}, kFull, ClashAnswer::Replace).imported, 1U);
    EXPECT_EQ(ShadeOf(0), 2);
}

TEST_F(ImportPictures, LeavesTheListAloneWhenEverythingWasSkipped)
{
    Run({Picture("a.png", 1)}, {}, kFull);
    const auto time = std::filesystem::last_write_time(m_oDatabase.ListPath());
    Run({Picture("a.png", 2)}, {}, kFull, ClashAnswer::Skip);
    EXPECT_EQ(std::filesystem::last_write_time(m_oDatabase.ListPath()), time);
}

// Replacing a texture that has aliases.

TEST_F(ImportPictures, KeepsTheAliasesOfAReplacedTexture)
{
    Run({Picture("door.png", 1), Picture("wall.png", 2)}, {}, kFull);
    m_oDatabase->AddAlias(L"copy", L"door");
    Run({Picture("door.png", 2)}, {}, kFull, ClashAnswer::Replace);
    ASSERT_EQ(m_oDatabase->EntryCount(), 3U);
    EXPECT_EQ(m_oDatabase->Entry(1).affiliate, L"door");
    EXPECT_EQ(m_oDatabase->AliasTarget(1), 2U);
    EXPECT_FALSE(m_oDatabase->IsAlias(2)) << "the same pixels as 'wall', and yet no alias";
    m_oDatabase->Reload();
    EXPECT_EQ(m_oDatabase->AliasTarget(1), 2U);
}

TEST_F(ImportPictures, KeepsTheSpellingThatAliasesKnow)
{
    Run({Picture("door.png", 1)}, {}, kFull);
    m_oDatabase->AddAlias(L"copy", L"door");
    Run({Picture("DOOR.png", 2)}, {}, kFull, ClashAnswer::Replace);
    EXPECT_EQ(m_oDatabase->Entry(1).name, L"door");
    EXPECT_EQ(m_oDatabase->AliasTarget(0), 1U);
}

TEST_F(ImportPictures, TakesTheNewSpellingWithoutAliases)
{
    Run({Picture("door.png", 1)}, {}, kFull);
    Run({Picture("DOOR.png", 2)}, {}, kFull, ClashAnswer::Replace);
    EXPECT_EQ(m_oDatabase->Entry(0).name, L"DOOR");
}

// Errors.

TEST_F(ImportPictures, ReportsAFailedFileAndGoesOnWithTheNext)
{
    const auto counts = Run({Picture("a.png", 1, 100), Picture("b.png", 2)}, {PromptAnswer::Yes});
    EXPECT_EQ(counts.failed, 1U);
    EXPECT_EQ(counts.imported, 1U);
    ASSERT_EQ(m_aShown.size(), 1U);
    EXPECT_EQ(m_aShown[0].text, L"Wrong texture dimensions given.\nContinue?");
    EXPECT_EQ(m_aShown[0].caption, L"Error");
    EXPECT_EQ(m_aShown[0].icon, PromptIcon::Warning);
    EXPECT_EQ(m_aShown[0].buttons, PromptButtons::YesNo);
}

TEST_F(ImportPictures, EndsAfterAFailedFileOnNo)
{
    const auto counts = Run({Picture("a.png", 1, 100), Picture("b.png", 2)}, {PromptAnswer::No});
    EXPECT_TRUE(counts.wasStopped);
    EXPECT_EQ(m_oDatabase->EntryCount(), 0U);
}

TEST_F(ImportPictures, ReportsAFileThatIsNoPicture)
{
    const auto file = m_oDatabase.Folder() / "text.png";
    std::ofstream(file) << "not a picture";
    EXPECT_EQ(Run({file}, {PromptAnswer::Yes}).failed, 1U);
    EXPECT_EQ(m_aShown[0].text, L"Unknown import error\nContinue?");
}

TEST_F(ImportPictures, ReportsNamesThatATextureCannotHave)
{
    Run({Picture(".png", 1)}, {PromptAnswer::Yes});
    EXPECT_EQ(m_aShown[0].text, L"Name should not be empty.\nContinue?");
    Run({Picture(std::string(64, 'a') + ".png", 1)}, {PromptAnswer::Yes});
    EXPECT_EQ(m_aShown[0].text, L"Wrong texture name given.\nContinue?");
    EXPECT_EQ(m_oDatabase->EntryCount(), 0U);
}

TEST_F(ImportPictures, KeepsTheOldTextureWhenTheNewOneCannotBeImported)
{
    Run({Picture("a.png", 1)}, {}, kFull);
    const std::string list = ListText();
    Run({Picture("a.png", 2, 100)}, {PromptAnswer::Yes}, kFull, ClashAnswer::Replace);
    const auto broken = m_oDatabase.Folder() / "a.png";
    std::ofstream(broken) << "not a picture";
    Run({broken}, {PromptAnswer::Yes}, kFull, ClashAnswer::Replace);
    EXPECT_EQ(m_oDatabase->EntryCount(), 1U);
    EXPECT_EQ(ShadeOf(0), 1);
    EXPECT_EQ(ListText(), list);
}

TEST_F(ImportPictures, KeepsTheOldTextureWhenTheNewLineWouldBeTooLong)
{
    const std::string name(60, 'a');
    m_oDatabase.Settings().WriteInt(L"global", L"hash_png", 1);
    Run({Picture(name + ".png", 1)}, {}, kFull);
    ImportRequest request = kFull;
    request.category = 1000000000;
    Run({Picture(name + ".png", 2)}, {PromptAnswer::Yes}, request, ClashAnswer::Replace);
    EXPECT_EQ(m_aShown[0].text, L"Texture line is too long.\nContinue?");
    EXPECT_EQ(m_oDatabase->EntryCount(), 1U);
    EXPECT_EQ(ShadeOf(0), 1);
}

TEST(ImportPicturesOnAFullDisk, LosesNothingInALongRunOnSeveralThreads)
{
    CTemporaryFolder pictures;
    std::vector<std::filesystem::path> files;
    for (std::uint8_t shade = 1; shade <= 4; ++shade) {
        files.push_back(pictures / ("shade" + std::to_string(shade) + ".png"));
        ASSERT_TRUE(
            SaveImageFile(files.back(), SolidPicture(8, 8, shade, shade, shade, 255), ImageFormat::Png));
    }
    const std::span others = std::span(files).subspan(1);
    bool succeeded = false;
    for (std::uint32_t writes = 0; !succeeded && writes < 300; ++writes) {
        CTemporaryFolder folder;
        CFaultyFileSystem disk(100000);
        CScriptedPrompt prompt({PromptAnswer::Yes, PromptAnswer::Yes, PromptAnswer::Yes});
        CNoProgress progress;
        CMemorySettings settings;
        CPluginTable plugins;
        const std::array caches = {CacheIndex::Dxt, CacheIndex::Unc};
        {
            CTextureDatabase database(StreamMode::Framed, disk, prompt);
            ASSERT_TRUE(database.Create(folder / "list.txt", caches));
            CPictureImporter importer(database, plugins, settings, prompt, progress, {.jobs = 3});
            ASSERT_EQ(importer.Run({files.front()}, {}).imported, 1U);
            disk.Allow(writes);
            try {
                succeeded =
                    importer.Run({others.begin(), others.end()}, {}).imported == 3 && !disk.HasFailed();
            } catch (const CError&) {
                succeeded = false;
            }
        }
        CTextureDatabase reopened(StreamMode::Framed, DiskFileSystem(), prompt);
        reopened.Open(folder / "list.txt");
        ASSERT_GE(reopened.EntryCount(), succeeded ? 4U : 1U) << writes;
        EXPECT_EQ(reopened.Entry(0).name, L"shade1");
        for (const CacheIndex cache : caches) {
            if (!reopened.IsTocValid(cache))
                reopened.RebuildToc(cache);
            EXPECT_TRUE(reopened.ReadRaster(0, cache, RecordKind::Raster)) << writes;
        }
    }
    EXPECT_TRUE(succeeded);
}

TEST(ImportPicturesOnAFullDisk, LosesNothingThatWasThereBefore)
{
    bool succeeded = false;
    for (std::uint32_t writes = 0; !succeeded && writes < 200; ++writes) {
        CTemporaryFolder folder;
        CFaultyFileSystem disk(100000);
        CScriptedPrompt prompt({PromptAnswer::No});
        CNoProgress progress;
        CMemorySettings settings;
        CPluginTable plugins;
        const std::array caches = {CacheIndex::Dxt, CacheIndex::Unc};
        const auto first = folder / "first.png";
        const auto second = folder / "second.png";
        ASSERT_TRUE(SaveImageFile(first, SolidPicture(4, 4, 1, 1, 1, 255), ImageFormat::Png));
        ASSERT_TRUE(SaveImageFile(second, SolidPicture(4, 4, 2, 2, 2, 255), ImageFormat::Png));
        {
            CTextureDatabase database(StreamMode::Raw, disk, prompt);
            ASSERT_TRUE(database.Create(folder / "list.txt", caches));
            CPictureImporter importer(database, plugins, settings, prompt, progress);
            ASSERT_EQ(importer.Run({first}, {}).imported, 1U);
            disk.Allow(writes);
            try {
                succeeded = importer.Run({second}, {}).imported == 1 && !disk.HasFailed();
            } catch (const CError&) {
                succeeded = false;
            }
        }
        CTextureDatabase reopened(StreamMode::Raw, DiskFileSystem(), prompt);
        reopened.Open(folder / "list.txt");
        ASSERT_GE(reopened.EntryCount(), 1U) << writes;
        EXPECT_EQ(reopened.Entry(0).name, L"first");
        EXPECT_TRUE(reopened.ReadRaster(0, CacheIndex::Dxt, RecordKind::Raster)) << writes;
        EXPECT_TRUE(reopened.ReadRaster(0, CacheIndex::Unc, RecordKind::Raster)) << writes;
    }
    EXPECT_TRUE(succeeded);
}
