#include <gtest/gtest.h>

#include "tests/cli/CommandRunner.h"
#include "tests/support/TemporaryFolder.h"

namespace {

class ConvertCommand : public testing::Test {
protected:
    ConvertCommand()
    {
        std::filesystem::create_directory(m_oFolder / "db");
        SavePicture(m_oFolder / "wall.png", Gradient(16, 8));
        SavePicture(m_oFolder / "leaf.png", Gradient(8, 8));
        EXPECT_EQ(RunCommand({L"new", List(), L"--caches", L"dxt"}).code, ExitCode::Done);
        EXPECT_EQ(RunCommand({L"--game", L"sa", L"import", List(), Picture("wall.png"), L"--no-alpha"}).code,
                  ExitCode::Done);
        EXPECT_EQ(RunCommand({L"import", List(), Picture("leaf.png")}).code, ExitCode::Done);
        EXPECT_EQ(RunCommand({L"alias", List(), L"wall", L"old_wall"}).code, ExitCode::Done);
    }

    std::wstring List() const { return (m_oFolder / "db" / "textures.txt").wstring(); }
    std::wstring Picture(const char* name) const { return (m_oFolder / name).wstring(); }
    FileBytes Files() const { return FilesOf(m_oFolder / "db"); }
    CommandResult Convert(const wchar_t* from, const wchar_t* to,
                          std::vector<std::wstring> options = {}) const
    {
        std::vector<std::wstring> words = {L"convert", List(), L"--from", from, L"--to", to};
        words.insert(words.end(), options.begin(), options.end());
        return RunCommand(words);
    }

    CTemporaryFolder m_oFolder;
};

}  // namespace

TEST_F(ConvertCommand, MakesACacheThatPassesEveryCheck)
{
    const CommandResult result = Convert(L"dxt", L"pvr");
    EXPECT_EQ(result.code, ExitCode::Done) << result.err;
    EXPECT_EQ(result.out, "2 converted, 1 aliased, 0 failed\n");
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(RunCommand({L"check", List()}).code, ExitCode::Done);
    const CommandResult list = RunCommand({L"--json", L"list", List()});
    EXPECT_NE(list.out.find("PVRTC2"), std::string::npos) << list.out;
    EXPECT_NE(list.out.find("PVRTC4"), std::string::npos);
}

TEST_F(ConvertCommand, WritesItsCountsAsJson)
{
    EXPECT_EQ(Convert(L"dxt", L"etc", {L"--json"}).out,
              "{\"converted\": 2, \"aliased\": 1, \"failed\": 0}\n");
}

TEST_F(ConvertCommand, WritesTheSameFilesWithAnyNumberOfThreads)
{
    Convert(L"dxt", L"unc", {L"--jobs", L"1"});
    const FileBytes alone = Files();
    EXPECT_EQ(Convert(L"dxt", L"unc", {L"--jobs", L"3", L"--yes"}).code, ExitCode::Done);
    EXPECT_EQ(Files(), alone);
}

TEST_F(ConvertCommand, AsksBeforeItReplacesACache)
{
    Convert(L"dxt", L"etc");
    const FileBytes before = Files();
    const CommandResult unanswered = Convert(L"etc", L"dxt");
    EXPECT_EQ(unanswered.code, ExitCode::QuestionUnanswered);
    EXPECT_NE(unanswered.err.find("Target cache already exists!"), std::string::npos) << unanswered.err;
    EXPECT_EQ(Convert(L"etc", L"dxt", {L"--no"}).code, ExitCode::Failed);
    EXPECT_EQ(Files(), before);
    EXPECT_EQ(Convert(L"etc", L"dxt", {L"--yes"}).code, ExitCode::Done);
    EXPECT_NE(Files().at("textures.dxt.dat"), before.at("textures.dxt.dat"));
    EXPECT_EQ(RunCommand({L"check", List()}).code, ExitCode::Done);
}

TEST_F(ConvertCommand, RefusesWhatCannotBeConverted)
{
    const FileBytes before = Files();
    const CommandResult same = Convert(L"dxt", L"dxt");
    EXPECT_EQ(same.code, ExitCode::Failed);
    EXPECT_NE(same.err.find("You cant build cache from itself!"), std::string::npos) << same.err;
    EXPECT_EQ(Convert(L"unc", L"etc").code, ExitCode::Failed) << "the source is not there";
    EXPECT_EQ(Convert(L"dxt", L"atc").code, ExitCode::Usage);
    EXPECT_EQ(RunCommand({L"convert", List(), L"--from", L"dxt"}).code, ExitCode::Usage);
    EXPECT_EQ(RunCommand({L"convert", List()}).code, ExitCode::Usage);
    const CommandResult withoutPlugins = Convert(L"dxt", L"etc", {L"--plugins", m_oFolder.Path().wstring()});
    EXPECT_EQ(withoutPlugins.code, ExitCode::Failed);
    EXPECT_NE(withoutPlugins.err.find("DXT plugin is not loaded"), std::string::npos) << withoutPlugins.err;
    EXPECT_EQ(Files(), before);
}

TEST_F(ConvertCommand, TellsAboutTexturesThatFailedAndLeavesTheOthers)
{
    SavePicture(m_oFolder / "sign.png", Gradient(8, 16));
    EXPECT_EQ(RunCommand({L"import", List(), Picture("sign.png"), L"--rgba8888"}).code, ExitCode::Done);
    // Its record gets a format that nobody knows.
    FileBytes files = Files();
    const auto& table = files.at("textures.dxt.toc");
    const auto record =
        std::to_integer<std::size_t>(table.at(16)) | std::to_integer<std::size_t>(table.at(17)) << 8;
    files.at("textures.dxt.dat").at(record + 2) = std::byte{0x12};
    WriteFiles(m_oFolder / "db", files);
    const CommandResult result = Convert(L"dxt", L"etc");
    EXPECT_EQ(result.code, ExitCode::Failed);
    EXPECT_EQ(result.out, "2 converted, 1 aliased, 1 failed\n");
    EXPECT_NE(result.err.find("1 textures could not be converted."), std::string::npos) << result.err;
    EXPECT_EQ(Files().at("textures.etc.toc").size(), 4U * 5);
}
