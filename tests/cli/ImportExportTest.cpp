#include <fstream>
#include <gtest/gtest.h>

#include "image/BitmapTools.h"
#include "image/ImageFile.h"
#include "tests/cli/CommandRunner.h"
#include "tests/support/DatabaseBuilder.h"
#include "tests/support/TemporaryFolder.h"

namespace {

class ImportExport : public testing::Test {
protected:
    ImportExport()
    {
        std::filesystem::create_directory(m_oFolder / "db");
        const auto made = RunCommand({L"new", List()});
        EXPECT_EQ(made.code, ExitCode::Done) << made.err;
        SavePicture(m_oFolder / "wall.png", Gradient(16, 16));
        SavePicture(m_oFolder / "wide.png", Gradient(32, 8));
    }

    std::wstring List() const { return Path("db/textures.txt"); }
    std::wstring Path(const char* name) const { return (m_oFolder / name).wstring(); }

    CTemporaryFolder m_oFolder;
};

}  // namespace

TEST_F(ImportExport, UncompressedPicturesComeBackExactly)
{
    const auto imported =
        RunCommand({L"--game", L"sa", L"import", List(), Path("wall.png"), L"--rgba8888", L"--json"});
    EXPECT_EQ(imported.code, ExitCode::Done) << imported.err;
    EXPECT_EQ(imported.out, "{\"imported\": 1, \"aliased\": 0, \"skipped\": 0, \"failed\": 0}\n");
    for (const wchar_t* cache : {L"dxt", L"etc", L"pvr", L"unc"}) {
        ASSERT_EQ(RunCommand({L"export", List(), L"wall", L"--cache", cache, L"--out", Path("out")}).code,
                  ExitCode::Done);
        const auto loaded = LoadImageFile(m_oFolder / "out" / "wall.png");
        ASSERT_TRUE(loaded);
        EXPECT_EQ(ImageDifference(*loaded, Gradient(16, 16)), 0);
    }
}

TEST_F(ImportExport, EveryCacheStoresItsOwnFormat)
{
    ASSERT_EQ(RunCommand({L"--game", L"sa", L"import", List(), Path("wide.png"), L"--no-alpha"}).code,
              ExitCode::Done);
    const std::string json = RunCommand({L"--json", L"list", List()}).out;
    for (const char* part :
         {"\"format\": \"DXT1\", \"width\": 32, \"height\": 8", "\"format\": \"ETC1\", \"width\": 32",
          "\"format\": \"PVRTC2\", \"width\": 32, \"height\": 32",
          "\"format\": \"RGBA 565\", \"width\": 32, \"height\": 8"})
        EXPECT_NE(json.find(part), std::string::npos) << part << "\n" << json;
}

TEST_F(ImportExport, TheNumberOfJobsChangesNoFile)
{
    for (int i = 0; i < 6; ++i) {
        CBitmap picture = Gradient(32, 32);
        picture.Pixels()[static_cast<std::size_t>(i) * 4] ^= 0xFF;
        SavePicture(m_oFolder / ("p" + std::to_string(i) + ".png"), picture);
    }
    std::vector<FileBytes> results;
    for (const wchar_t* jobs : {L"1", L"2", L"7"}) {
        const std::string name = "jobs" + std::to_string(results.size());
        std::filesystem::create_directory(m_oFolder / name);
        const std::wstring list = (m_oFolder / name / "textures.txt").wstring();
        ASSERT_EQ(RunCommand({L"new", list}).code, ExitCode::Done);
        const auto imported =
            RunCommand({L"--game", L"sa", L"--jobs", jobs, L"--yes", L"import", list, Path("wall.png"),
                        Path("p0.png"), Path("p1.png"), Path("p2.png"), Path("missing.png"), Path("p3.png"),
                        Path("p0.png"), Path("p4.png"), Path("p5.png"), Path("wide.png")});
        EXPECT_EQ(imported.out, "9 imported, 0 aliased, 0 skipped, 1 failed\n") << imported.err;
        results.push_back(FilesOf(m_oFolder / name));
    }
    EXPECT_EQ(results[1], results[0]);
    EXPECT_EQ(results[2], results[0]);
}

TEST_F(ImportExport, TheNumberOfJobsChangesNoExportedFile)
{
    for (int i = 0; i < 6; ++i) {
        CBitmap picture = Gradient(32, 32);
        picture.Pixels()[static_cast<std::size_t>(i) * 4] ^= 0xFF;
        SavePicture(m_oFolder / ("p" + std::to_string(i) + ".png"), picture);
    }
    ASSERT_EQ(RunCommand({L"--game", L"sa", L"import", List(), Path("p0.png"), Path("p1.png"), Path("p2.png"),
                          Path("p3.png"), Path("p4.png"), Path("p5.png")})
                  .code,
              ExitCode::Done);
    std::vector<FileBytes> results;
    for (const wchar_t* jobs : {L"1", L"2", L"7"}) {
        const std::string name = "out" + std::to_string(results.size());
        const auto exported = RunCommand(
            {L"--jobs", jobs, L"export", List(), L"--all", L"--cache", L"dxt", L"--out", Path(name.c_str())});
        ASSERT_EQ(exported.code, ExitCode::Done) << exported.err;
        EXPECT_EQ(exported.out, "6 exported, 0 skipped, 0 failed\n");
        results.push_back(FilesOf(m_oFolder / name));
        EXPECT_EQ(results.back().size(), 6U);
        EXPECT_TRUE(results.back() == results.front()) << name;
    }
}

TEST_F(ImportExport, TheSamePictureAgainBecomesAnAlias)
{
    std::filesystem::copy_file(m_oFolder / "wall.png", m_oFolder / "copy.png");
    const auto result =
        RunCommand({L"--game", L"sa", L"import", List(), Path("wall.png"), Path("copy.png"), L"--json"});
    EXPECT_EQ(result.out, "{\"imported\": 1, \"aliased\": 1, \"skipped\": 0, \"failed\": 0}\n");
}

TEST_F(ImportExport, ANameThatExistsIsAQuestion)
{
    ASSERT_EQ(RunCommand({L"--game", L"sa", L"import", List(), Path("wall.png")}).code, ExitCode::Done);
    const auto before = FilesOf(m_oFolder / "db");
    const auto result = RunCommand({L"--game", L"sa", L"import", List(), Path("wall.png")});
    EXPECT_EQ(result.code, ExitCode::QuestionUnanswered);
    EXPECT_NE(result.err.find("Texture 'wall' already exists. Would you like to replace it?"),
              std::string::npos);
    EXPECT_EQ(FilesOf(m_oFolder / "db"), before);
}

TEST_F(ImportExport, SkipAndReplaceAnswerTheQuestion)
{
    ASSERT_EQ(RunCommand({L"--game", L"sa", L"import", List(), Path("wall.png")}).code, ExitCode::Done);
    EXPECT_EQ(RunCommand({L"--game", L"sa", L"--json", L"import", List(), Path("wall.png"), L"--skip"}).out,
              "{\"imported\": 0, \"aliased\": 0, \"skipped\": 1, \"failed\": 0}\n");
    SavePicture(m_oFolder / "wall.png", Gradient(8, 8));
    EXPECT_EQ(
        RunCommand({L"--game", L"sa", L"--json", L"import", List(), Path("wall.png"), L"--replace"}).out,
        "{\"imported\": 1, \"aliased\": 0, \"skipped\": 0, \"failed\": 0}\n");
    EXPECT_NE(RunCommand({L"list", List()}).out.find("#0 \"wall\" alphamode=2 height=8 width=8"),
              std::string::npos);
}

TEST_F(ImportExport, TheGameOfAnEmptyDatabaseIsAQuestion)
{
    const auto result = RunCommand({L"import", List(), Path("wall.png")});
    EXPECT_EQ(result.code, ExitCode::QuestionUnanswered);
    EXPECT_NE(result.err.find(
                  "Do you want to make this cache for San Andreas? \n\nIf you choose 'No' an Vice City cache "
                  "will be created."),
              std::string::npos);
}

TEST_F(ImportExport, AWrongSizeFailsAndTheRestIsKept)
{
    SavePicture(m_oFolder / "odd.png", Gradient(100, 100));
    const auto result = RunCommand({L"--game", L"sa", L"import", List(), Path("wall.png"), Path("odd.png")});
    EXPECT_EQ(result.code, ExitCode::Failed);
    EXPECT_NE(result.err.find("Wrong texture dimensions given."), std::string::npos);
    EXPECT_NE(RunCommand({L"list", List()}).out.find("#0 \"wall\""), std::string::npos);
    EXPECT_EQ(RunCommand({L"check", List()}).code, ExitCode::Done);
}

TEST_F(ImportExport, ADamagedPictureFailsAndChangesNothing)
{
    const auto before = FilesOf(m_oFolder / "db");
    std::ofstream(m_oFolder / "bad.png", std::ios::binary) << "\x89PNG\r\n\x1a\nnonsense";
    const auto result = RunCommand({L"--game", L"sa", L"import", List(), Path("bad.png")});
    EXPECT_EQ(result.code, ExitCode::Failed);
    EXPECT_EQ(FilesOf(m_oFolder / "db"), before);
}

TEST_F(ImportExport, ExportNeedsACacheThatIsThere)
{
    EXPECT_EQ(RunCommand({L"export", List(), L"--all", L"--out", Path("out")}).code, ExitCode::Usage);
    EXPECT_EQ(RunCommand({L"export", List(), L"--all", L"--cache", L"jpg", L"--out", Path("out")}).code,
              ExitCode::Usage);
    EXPECT_EQ(RunCommand({L"export", List(), L"nobody", L"--cache", L"dxt", L"--out", Path("out")}).code,
              ExitCode::Failed);
}

TEST_F(ImportExport, ExportWritesTheChosenPictureFormat)
{
    ASSERT_EQ(RunCommand({L"--game", L"vc", L"import", List(), Path("wall.png"), L"--rgba8888"}).code,
              ExitCode::Done);
    for (const wchar_t* format : {L"png", L"bmp", L"gif", L"jpg", L"tif"}) {
        const auto result = RunCommand(
            {L"export", List(), L"--all", L"--cache", L"unc", L"--out", Path("out"), L"--format", format});
        EXPECT_EQ(result.code, ExitCode::Done) << result.err;
        EXPECT_TRUE(LoadImageFile(m_oFolder / "out" / (std::wstring(L"wall.") + format)));
    }
}

TEST_F(ImportExport, RawGivesTheStoredBytes)
{
    ASSERT_EQ(RunCommand({L"--game", L"sa", L"import", List(), Path("wall.png"), L"--rgba8888"}).code,
              ExitCode::Done);
    const auto file = m_oFolder / "raw.bin";
    ASSERT_EQ(RunCommand({L"raw", List(), L"wall", L"--cache", L"unc", L"--out", file.wstring()}).code,
              ExitCode::Done);
    // 16x16, 8x8, 4x4, 2x2 and 1x1 pixels of four bytes.
    EXPECT_EQ(std::filesystem::file_size(file), 1364U);
    const auto thumbnail = RunCommand({L"raw", List(), L"#0", L"--cache", L"unc", L"--thumbnail"});
    EXPECT_EQ(thumbnail.out.size(), 256U);
}

TEST_F(ImportExport, NewAsksBeforeItReplacesADatabase)
{
    ASSERT_EQ(RunCommand({L"--game", L"sa", L"import", List(), Path("wall.png")}).code, ExitCode::Done);
    const auto before = FilesOf(m_oFolder / "db");
    EXPECT_EQ(RunCommand({L"new", List()}).code, ExitCode::QuestionUnanswered);
    EXPECT_EQ(RunCommand({L"new", List(), L"--no"}).code, ExitCode::Failed);
    EXPECT_EQ(FilesOf(m_oFolder / "db"), before);
    EXPECT_EQ(RunCommand({L"new", List(), L"--yes", L"--caches", L"dxt"}).code, ExitCode::Done);
    EXPECT_EQ(RunCommand({L"list", List()}).out, "category #0 Default\n");
    EXPECT_EQ(FilesOf(m_oFolder / "db").size(), 4U) << "nothing is left of the other caches";
    EXPECT_EQ(RunCommand({L"check", List()}).code, ExitCode::Done);
}

TEST_F(ImportExport, AnExportThatCannotBeWrittenFails)
{
    ASSERT_EQ(RunCommand({L"--game", L"sa", L"import", List(), Path("wall.png"), L"--rgba8888"}).code,
              ExitCode::Done);
    std::filesystem::create_directories(m_oFolder / "out" / "wall.png");
    const auto result = RunCommand({L"export", List(), L"wall", L"--cache", L"unc", L"--out", Path("out")});
    EXPECT_EQ(result.code, ExitCode::Failed);
    EXPECT_EQ(result.err, "1 files cannot be written.\n");
}
