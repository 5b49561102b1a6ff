#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/File.h"
#include "base/Text.h"
#include "tests/cli/CommandRunner.h"
#include "tests/support/ImgFiles.h"
#include "tests/support/RenderWareFiles.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using RwFile::Bytes;
using testing::HasSubstr;

/// A 4x4 texture of 32 bits, every byte of it `shade`.
Bytes Shade(const std::string& name, std::uint8_t shade)
{
    return RwFile::PCNative({.name = name,
                             .rasterFormat = 0x500,
                             .width = 4,
                             .height = 4,
                             .depth = 32,
                             .pixels = RwFile::Filled(64, shade)});
}

class ImgCommands : public testing::Test {
protected:
    ImgCommands()
    {
        std::filesystem::create_directory(m_oFolder / "db");
        EXPECT_EQ(RunCommand({L"new", List()}).code, ExitCode::Done);
    }

    std::wstring List() const { return FromPath(m_oFolder / "db" / "textures.txt"); }
    std::wstring Archive(const char* name = "a.img") const { return FromPath(m_oFolder / name); }
    void Write(const std::vector<ImgEntry>& entries, const char* name = "a.img")
    {
        WriteVersion2Archive(m_oFolder / name, entries);
    }
    void WriteTwoDictionaries()
    {
        Write({{.name = "a.txd", .contents = RwFile::Dictionary({Shade("wall", 10), Shade("door", 20)})},
               {.name = "readme.txt", .contents = BytesOf("hello")},
               {.name = "B.TXD", .contents = RwFile::Dictionary({Shade("roof", 30), Shade("again", 10)})}});
    }
    CommandResult Import(std::vector<std::wstring> options = {})
    {
        std::vector<std::wstring> words = {L"--game", L"sa", L"img", L"import", List(), Archive()};
        words.insert(words.end(), options.begin(), options.end());
        return RunCommand(words);
    }
    /// wall and again, which is its alias, door, roof.
    void FillDatabase()
    {
        WriteTwoDictionaries();
        EXPECT_EQ(Import().code, ExitCode::Done);
    }
    CommandResult Sync(std::vector<std::wstring> options)
    {
        std::vector<std::wstring> words = {L"img", L"sync", List(), Archive("models.img")};
        words.insert(words.end(), options.begin(), options.end());
        return RunCommand(words);
    }
    void WriteModels(const std::vector<std::string>& textures)
    {
        Write({{.name = "a.dff", .contents = RwFile::Model({{.textures = textures}})}}, "models.img");
    }
    std::string ListOut() const { return RunCommand({L"list", List()}).out; }

    CTemporaryFolder m_oFolder;
};

}  // namespace

TEST_F(ImgCommands, ListsBothVersions)
{
    WriteTwoDictionaries();
    EXPECT_EQ(RunCommand({L"img", L"list", Archive()}).out,
              "#0 \"a.txd\" 0x00000800 2.00 KB\n#1 \"readme.txt\" 0x00001000 2.00 KB\n"
              "#2 \"B.TXD\" 0x00001800 2.00 KB\n");
    EXPECT_EQ(
        RunCommand({L"img", L"list", Archive(), L"--json"}).out,
        "{\"version\": 2, \"entries\": [{\"index\": 0, \"name\": \"a.txd\", \"offset\": 2048, \"size\": "
        "2048}, {\"index\": 1, \"name\": \"readme.txt\", \"offset\": 4096, \"size\": 2048}, {\"index\": "
        "2, \"name\": \"B.TXD\", \"offset\": 6144, \"size\": 2048}]}\n");
    WriteVersion1Archive(m_oFolder / "old.img", {{.name = "x.dff", .contents = BytesOf("x")}});
    EXPECT_EQ(RunCommand({L"--json", L"img", L"list", Archive("old.img")}).out,
              "{\"version\": 1, \"entries\": [{\"index\": 0, \"name\": \"x.dff\", \"offset\": 0, \"size\": "
              "2048}]}\n");
}

TEST_F(ImgCommands, TellsAboutAnArchiveThatCannotBeOpened)
{
    EXPECT_EQ(RunCommand({L"img", L"list", Archive("missing.img")}).code, ExitCode::Failed);
    ASSERT_TRUE(WriteWholeFile(DiskFileSystem(), m_oFolder / "a.img", BytesOf("no directory beside it")));
    const auto result = RunCommand({L"img", L"list", Archive()});
    EXPECT_EQ(result.code, ExitCode::Failed);
    EXPECT_THAT(result.err, HasSubstr("a.img cannot be opened."));
    EXPECT_EQ(RunCommand({L"img", L"import", List(), Archive()}).code, ExitCode::Failed);
    EXPECT_EQ(RunCommand({L"img", L"sync", List(), Archive()}).code, ExitCode::Failed);
}

TEST_F(ImgCommands, RefusesOtherWords)
{
    WriteTwoDictionaries();
    for (const std::vector<std::wstring>& words : {std::vector<std::wstring>{L"img", L"list"},
                                                   {L"img", L"list", Archive(), L"x"},
                                                   {L"img", L"extract", Archive()},
                                                   {L"img", L"extract", Archive(), L"a.txd"},
                                                   {L"img", L"import", List()},
                                                   {L"img", L"sync", List()},
                                                   {L"img", L"pack", Archive()}})
        EXPECT_EQ(RunCommand(words).code, ExitCode::Usage) << ToUtf8(words[1]);
    EXPECT_THAT(RunCommand({L"img", L"--help"}).out, HasSubstr("sync DB ARCHIVE... [--delete]"));
}

TEST_F(ImgCommands, ExtractsEntriesByNameAndNumber)
{
    WriteTwoDictionaries();
    const auto out = FromPath(m_oFolder / "out");
    const auto result = RunCommand({L"img", L"extract", Archive(), L"readme.txt", L"#2", L"--out", out});
    EXPECT_EQ(result.code, ExitCode::Done) << result.err;
    EXPECT_EQ(result.out, "2 extracted, 0 failed\n");
    EXPECT_EQ(std::filesystem::file_size(m_oFolder / "out" / "readme.txt"), 2048U);
    EXPECT_EQ(std::filesystem::file_size(m_oFolder / "out" / "B.TXD"), 2048U);
    // Case counts only where nothing else fits.
    EXPECT_EQ(RunCommand({L"img", L"extract", Archive(), L"A.TXD", L"--out", out}).code, ExitCode::Done);
    EXPECT_TRUE(std::filesystem::exists(m_oFolder / "out" / "a.txd"));
    EXPECT_THAT(RunCommand({L"img", L"extract", Archive(), L"none", L"--out", out}).err,
                HasSubstr("There is no entry 'none'."));
}

TEST_F(ImgCommands, ExtractsNothingOverAFileOutsideTheFolderOrInPart)
{
    Write({{.name = "..\\..\\a.txt", .contents = BytesOf("x")},
           {.name = "../b.txt", .contents = BytesOf("x")},
           {.name = "nul", .contents = BytesOf("x")},
           {.name = "half", .contents = BytesOf("x"), .size = 9},
           {.name = "there", .contents = BytesOf("new")}});
    std::filesystem::create_directory(m_oFolder / "out");
    ASSERT_TRUE(WriteWholeFile(DiskFileSystem(), m_oFolder / "out" / "there", BytesOf("old")));
    const auto result = RunCommand({L"--json", L"img", L"extract", Archive(), L"#0", L"#1", L"#2", L"#3",
                                    L"#4", L"--out", FromPath(m_oFolder / "out")});
    EXPECT_EQ(result.code, ExitCode::Failed);
    EXPECT_EQ(result.out, "{\"extracted\": 3, \"failed\": 2}\n");
    EXPECT_THAT(result.err, HasSubstr("half is not whole in the archive."));
    EXPECT_THAT(result.err, HasSubstr("there exists already."));
    const FileBytes files = FilesOf(m_oFolder / "out");
    EXPECT_EQ(files.size(), 4U);
    EXPECT_TRUE(files.contains("______a.txt") && files.contains("___b.txt") && files.contains("_nul"));
    EXPECT_EQ(TextOf(files.at("there")), "old");
    EXPECT_FALSE(std::filesystem::exists(m_oFolder / "b.txt"));
}

TEST_F(ImgCommands, ImportsEveryDictionary)
{
    WriteTwoDictionaries();
    const auto result = Import({L"--json"});
    EXPECT_EQ(result.code, ExitCode::Done) << result.err;
    EXPECT_EQ(result.out, "{\"imported\": 3, \"aliased\": 1, \"skipped\": 0, \"failed\": 0}\n");
    EXPECT_EQ(Import().out, "0 imported, 0 aliased, 4 skipped, 0 failed\n");
    EXPECT_EQ(RunCommand({L"check", List()}).code, ExitCode::Done);
    EXPECT_EQ(RunCommand({L"raw", List(), L"roof", L"--cache", L"pvr"}).out[0], 30);
}

TEST_F(ImgCommands, ImportsTheNamedEntriesInTheirOrder)
{
    WriteTwoDictionaries();
    const auto result = Import({L"--entry", L"b.txd", L"--entry", L"#0"});
    EXPECT_EQ(result.out, "3 imported, 1 aliased, 0 skipped, 0 failed\n") << result.err;
    const std::string list = ListOut();
    EXPECT_LT(list.find("roof"), list.find("door"));
    EXPECT_EQ(Import({L"--entry", L"none.txd"}).code, ExitCode::Failed);
}

TEST_F(ImgCommands, GivesTheSameFilesWithAnyNumberOfJobs)
{
    WriteTwoDictionaries();
    std::vector<FileBytes> outcomes;
    for (const wchar_t* jobs : {L"1", L"4"}) {
        std::filesystem::remove_all(m_oFolder / "db");
        std::filesystem::create_directory(m_oFolder / "db");
        EXPECT_EQ(RunCommand({L"new", List()}).code, ExitCode::Done);
        EXPECT_EQ(Import({L"--jobs", jobs}).code, ExitCode::Done);
        outcomes.push_back(FilesOf(m_oFolder / "db"));
    }
    EXPECT_TRUE(outcomes[0] == outcomes[1]);
}

TEST_F(ImgCommands, GoesOnBehindABrokenDictionary)
{
    Write({{.name = "broken.txd", .contents = RwFile::Dictionary({RwFile::PCNative({.platform = 99})})},
           {.name = "a.txd", .contents = RwFile::Dictionary({Shade("wall", 10)})}});
    const auto answered = Import({L"--yes"});
    EXPECT_EQ(answered.code, ExitCode::Failed);
    EXPECT_EQ(answered.out, "1 imported, 0 aliased, 0 skipped, 1 failed\n");
    EXPECT_THAT(answered.err, HasSubstr("This is not a valid PC texture.\n\nDo you want to continue?"));
    const auto unanswered = Import();
    EXPECT_EQ(unanswered.code, ExitCode::QuestionUnanswered);
    EXPECT_EQ(unanswered.out, "0 imported, 0 aliased, 1 skipped, 1 failed\n");
}

TEST_F(ImgCommands, SaysWhenThereIsNoDictionary)
{
    Write({{.name = "a.dff"}});
    const auto result = Import();
    EXPECT_EQ(result.code, ExitCode::Done);
    EXPECT_EQ(result.out, "0 imported, 0 aliased, 0 skipped, 0 failed\n");
    EXPECT_THAT(result.err, HasSubstr("No TXDs found, bitch!"));
}

TEST_F(ImgCommands, ShowsUnusedTexturesAndDeletesNothing)
{
    FillDatabase();
    WriteModels({"door", "Roof"});
    const FileBytes before = FilesOf(m_oFolder / "db");
    const auto result = Sync({});
    EXPECT_EQ(result.code, ExitCode::Done) << result.err;
    EXPECT_EQ(result.out, "#0 \"wall\"\n#2 \"roof\"\n#3 \"again\" Alias\n3 to delete (0.00 MB)\n");
    EXPECT_TRUE(FilesOf(m_oFolder / "db") == before);
}

TEST_F(ImgCommands, AsksBeforeItDeletesWhatASkippedModelMayUse)
{
    FillDatabase();
    WriteModels({"again", "roof"});
    Write({{.name = "broken.dff", .contents = BytesOf("no model")}}, "broken.img");
    const FileBytes before = FilesOf(m_oFolder / "db");
    const std::wstring broken = Archive("broken.img");
    const auto asked = Sync({broken, L"--delete"});
    EXPECT_EQ(asked.code, ExitCode::QuestionUnanswered);
    EXPECT_THAT(asked.err, HasSubstr("Delete 2 textures?\n\nModels read: 1\nModels skipped: 1"));
    EXPECT_EQ(Sync({broken, L"--delete", L"--no"}).code, ExitCode::Done);
    EXPECT_EQ(Sync({L"--delete", L"--no"}).code, ExitCode::Done);
    EXPECT_TRUE(FilesOf(m_oFolder / "db") == before);
    EXPECT_THAT(Sync({broken, L"--delete", L"--yes"}).out, HasSubstr("1 deleted, 1 kept"));
}

TEST_F(ImgCommands, DeletesUnusedTexturesOnRequest)
{
    FillDatabase();
    WriteModels({"again", "roof"});
    const auto deleted = Sync({L"--delete", L"--json"});
    EXPECT_EQ(deleted.code, ExitCode::Done) << deleted.err;
    // The used alias keeps its original.
    EXPECT_THAT(deleted.out,
                HasSubstr("{\"models_read\": 1, \"models_skipped\": 0, \"unused\": 2, \"bytes\": "));
    EXPECT_THAT(deleted.out, HasSubstr("\"deleted\": 1, \"kept\": 1, \"textures\": [\"wall\", \"door\"]}"));
    EXPECT_EQ(ListOut().find("door"), std::string::npos);
    EXPECT_NE(ListOut().find("wall"), std::string::npos);
    EXPECT_EQ(RunCommand({L"check", List()}).code, ExitCode::Done);
}

TEST_F(ImgCommands, DeletesNothingWithoutAModelOrWithAnArchiveMissing)
{
    FillDatabase();
    const FileBytes before = FilesOf(m_oFolder / "db");
    Write({{.name = "a.dff", .contents = BytesOf("no model")}}, "models.img");
    const auto none = Sync({L"--delete", L"--yes"});
    EXPECT_EQ(none.code, ExitCode::Failed);
    EXPECT_THAT(none.err, HasSubstr("1 models could not be read."));
    EXPECT_THAT(none.err, HasSubstr("No model could be read, so that no texture counts as unused."));
    WriteModels({"wall"});
    EXPECT_EQ(Sync({Archive("missing.img"), L"--delete", L"--yes"}).code, ExitCode::Failed);
    EXPECT_TRUE(FilesOf(m_oFolder / "db") == before);
}
