#include <fstream>
#include <gtest/gtest.h>

#include "tests/cli/CommandRunner.h"
#include "tests/support/TemporaryFolder.h"

namespace {

class CheckCommand : public testing::Test {
protected:
    CheckCommand()
    {
        EXPECT_EQ(RunCommand({L"new", List(), L"--caches", L"dxt,unc"}).code, ExitCode::Done);
        std::filesystem::create_directory(m_oPictures.Path() / "in");
        std::vector<std::wstring> words = {L"--game", L"sa", L"import", List()};
        for (const char* name : {"one.png", "two.png", "three.png"}) {
            SavePicture(m_oPictures / name, Gradient(static_cast<std::uint32_t>(4 << words.size() % 3), 8));
            words.push_back((m_oPictures / name).wstring());
        }
        EXPECT_EQ(RunCommand(words).code, ExitCode::Done);
    }

    std::wstring List() const { return (m_oFolder / "t.txt").wstring(); }

    CTemporaryFolder m_oFolder;
    CTemporaryFolder m_oPictures;
};

}  // namespace

TEST_F(CheckCommand, ASoundDatabasePasses)
{
    const auto result = RunCommand({L"check", List()});
    EXPECT_EQ(result.code, ExitCode::Done) << result.out << result.err;
    EXPECT_EQ(result.out, "No damage found.\n");
}

TEST_F(CheckCommand, ATableThatIsTooLongIsFoundAndMended)
{
    const auto before = FilesOf(m_oFolder.Path());
    std::ofstream(m_oFolder / "t.dxt.toc", std::ios::binary | std::ios::app) << "more";
    const auto found = RunCommand({L"check", List()});
    EXPECT_EQ(found.code, ExitCode::DamageFound);
    EXPECT_EQ(found.out, "DXT.TOC file is corrupted.\n");
    EXPECT_EQ(RunCommand({L"check", L"--fix", List()}).code, ExitCode::Done);
    auto after = FilesOf(m_oFolder.Path());
    std::erase_if(after, [](const auto& file) { return file.first.ends_with(".bak"); });
    EXPECT_EQ(after, before);
}

TEST_F(CheckCommand, MissingThumbnailsAreFoundAndMended)
{
    std::filesystem::remove(m_oFolder / "t.unc.tmb");
    EXPECT_EQ(RunCommand({L"--json", L"check", List()}).out,
              "{\"bad_tocs\": [], \"bad_thumbnails\": [\"unc\"], \"name_hashes_valid\": true}\n");
    EXPECT_EQ(RunCommand({L"check", List(), L"--fix"}).code, ExitCode::Done);
    // Three framed records: header, frame size, marker word and one pixel.
    EXPECT_EQ(std::filesystem::file_size(m_oFolder / "t.unc.tmb"), 60U);
}

TEST_F(CheckCommand, ALostListIsRecovered)
{
    std::filesystem::remove(m_oFolder / "t.txt");
    EXPECT_EQ(RunCommand({L"list", List()}).code, ExitCode::Failed);
    EXPECT_EQ(RunCommand({L"recover", List()}).code, ExitCode::Done);
    const std::string text = RunCommand({L"list", List()}).out;
    EXPECT_NE(text.find("#0 \"_0x00000000\""), std::string::npos) << text;
    // The records still carry the hashes of the names that were lost.
    EXPECT_EQ(RunCommand({L"--json", L"check", List()}).out,
              "{\"bad_tocs\": [], \"bad_thumbnails\": [], \"name_hashes_valid\": false}\n");
    EXPECT_EQ(RunCommand({L"check", L"--fix", List()}).code, ExitCode::Done);
}

TEST_F(CheckCommand, RecoverAsksBeforeItReplacesAList)
{
    const auto before = FilesOf(m_oFolder.Path());
    EXPECT_EQ(RunCommand({L"recover", List()}).code, ExitCode::QuestionUnanswered);
    EXPECT_EQ(FilesOf(m_oFolder.Path()), before);
}

TEST_F(CheckCommand, RebuildingASoundTableChangesNothing)
{
    const auto before = FilesOf(m_oFolder.Path());
    EXPECT_EQ(RunCommand({L"rebuild-toc", List(), L"dxt"}).code, ExitCode::Done);
    auto after = FilesOf(m_oFolder.Path());
    std::erase_if(after, [](const auto& file) { return file.first.ends_with(".bak"); });
    EXPECT_EQ(after, before);
}

TEST_F(CheckCommand, FixHashesMendsWhatWasWrong)
{
    {
        std::fstream dat(m_oFolder / "t.unc.dat", std::ios::binary | std::ios::in | std::ios::out);
        dat << "\x01\x02";
    }
    const auto damaged = FilesOf(m_oFolder.Path());
    EXPECT_EQ(RunCommand({L"fix-hashes", List()}).code, ExitCode::Done);
    EXPECT_NE(FilesOf(m_oFolder.Path()), damaged);
    // The first 16 bits of the cache are those of NameHash("one").
    std::ifstream dat(m_oFolder / "t.unc.dat", std::ios::binary);
    char low = 0;
    dat.get(low);
    const std::string hash = RunCommand({L"hash", L"one"}).out;
    EXPECT_EQ(static_cast<unsigned char>(low), std::stoul(hash, nullptr, 16) & 0xFFU);
}

TEST_F(CheckCommand, AListThatLostLinesIsMendedOnlyWhenToldTwice)
{
    std::ofstream(m_oFolder / "t.txt", std::ios::binary | std::ios::app) << "# remark\r\n";
    std::ofstream(m_oFolder / "t.dxt.toc", std::ios::binary | std::ios::app) << "more";
    const auto before = FilesOf(m_oFolder.Path());
    EXPECT_EQ(RunCommand({L"check", L"--fix", List()}).code, ExitCode::DamageFound);
    EXPECT_EQ(FilesOf(m_oFolder.Path()), before);
    EXPECT_EQ(RunCommand({L"--yes", L"check", L"--fix", List()}).code, ExitCode::Done);
}
