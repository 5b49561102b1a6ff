#include <gtest/gtest.h>

#include "base/File.h"
#include "tests/cli/CommandRunner.h"
#include "tests/support/RenderWareFiles.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using RwFile::Bytes;

/// A 4x4 texture of 32 bits, every byte of it `shade`.
Bytes Shade(const std::string& name, std::uint8_t shade, std::uint16_t side = 4)
{
    return RwFile::PCNative({.name = name,
                             .rasterFormat = 0x500,
                             .width = side,
                             .height = side,
                             .depth = 32,
                             .pixels = RwFile::Filled(std::size_t{side} * side * 4, shade)});
}

Bytes Damaged()
{
    return RwFile::Section(0x15,
                           RwFile::Joined({RwFile::Struct(RwFile::Words({8, 0})), RwFile::EmptyExtension()}));
}

class ImportDictionaryCommand : public testing::Test {
protected:
    ImportDictionaryCommand()
    {
        std::filesystem::create_directory(m_oFolder / "db");
        EXPECT_EQ(RunCommand({L"new", List()}).code, ExitCode::Done);
    }

    std::wstring List() const { return (m_oFolder / "db" / "textures.txt").wstring(); }
    std::wstring Write(const Bytes& bytes)
    {
        EXPECT_TRUE(WriteWholeFile(DiskFileSystem(), m_oFolder / "a.txd", bytes));
        return (m_oFolder / "a.txd").wstring();
    }
    CommandResult Import(const std::vector<Bytes>& natives, std::vector<std::wstring> options = {})
    {
        return ImportFile(Write(RwFile::Dictionary(natives)), std::move(options));
    }
    CommandResult ImportFile(const std::wstring& file, std::vector<std::wstring> options = {})
    {
        std::vector<std::wstring> words = {L"--game", L"sa", L"txd", L"import", List(), file};
        words.insert(words.end(), options.begin(), options.end());
        return RunCommand(words);
    }
    /// The first byte of a texture's raster.
    int ShadeOf(const std::wstring& texture) const
    {
        return static_cast<unsigned char>(
            RunCommand({L"raw", List(), texture, L"--cache", L"unc"}).out.at(0));
    }
    std::string ListOut() const { return RunCommand({L"list", List()}).out; }

    CTemporaryFolder m_oFolder;
};

}  // namespace

TEST_F(ImportDictionaryCommand, ImportsEveryTextureIntoEveryCache)
{
    const auto result = Import({Shade("wall", 10), Shade("door", 20), Shade("again", 10)}, {L"--json"});
    EXPECT_EQ(result.code, ExitCode::Done) << result.err;
    EXPECT_EQ(result.out, "{\"imported\": 2, \"aliased\": 1, \"skipped\": 0, \"failed\": 0}\n");
    EXPECT_EQ(ShadeOf(L"door"), 20);
    for (const wchar_t* cache : {L"dxt", L"etc", L"pvr", L"unc"}) {
        const auto raw = RunCommand({L"raw", List(), L"wall", L"--cache", cache});
        // 4x4, 2x2 and 1x1 pixels of four bytes.
        EXPECT_EQ(raw.out.size(), 84U) << raw.err;
    }
    EXPECT_EQ(RunCommand({L"check", List()}).code, ExitCode::Done);
}

TEST_F(ImportDictionaryCommand, PutsTexturesIntoTheCategory)
{
    ASSERT_EQ(RunCommand({L"category", List(), L"add", L"walls"}).code, ExitCode::Done);
    const auto result = Import({Shade("wall", 10)}, {L"--category", L"walls"});
    EXPECT_EQ(result.out, "1 imported, 0 aliased, 0 skipped, 0 failed\n") << result.err;
    EXPECT_NE(ListOut().find(" cat=1"), std::string::npos) << ListOut();
}

TEST_F(ImportDictionaryCommand, ACategoryThatIsNotThereChangesNothing)
{
    const auto before = FilesOf(m_oFolder / "db");
    EXPECT_EQ(Import({Shade("wall", 10)}, {L"--category", L"walls"}).code, ExitCode::Failed);
    EXPECT_EQ(FilesOf(m_oFolder / "db"), before);
}

TEST_F(ImportDictionaryCommand, ANameThatExistsIsAQuestionThatEndsTheRun)
{
    ASSERT_EQ(Import({Shade("wall", 10)}).code, ExitCode::Done);
    const auto before = FilesOf(m_oFolder / "db");
    const auto result = Import({Shade("WALL", 20), Shade("door", 30)}, {L"--json"});
    EXPECT_EQ(result.code, ExitCode::QuestionUnanswered);
    EXPECT_EQ(result.err, "Texture 'WALL' already exists. Would you like to replace it?\n");
    EXPECT_EQ(result.out, "{\"imported\": 0, \"aliased\": 0, \"skipped\": 0, \"failed\": 0}\n");
    EXPECT_EQ(FilesOf(m_oFolder / "db"), before);
}

TEST_F(ImportDictionaryCommand, SkipAndReplaceAnswerTheQuestion)
{
    ASSERT_EQ(Import({Shade("wall", 10)}).code, ExitCode::Done);
    const auto skipped = Import({Shade("wall", 20), Shade("door", 30)}, {L"--skip", L"--json"});
    EXPECT_EQ(skipped.code, ExitCode::Done) << skipped.err;
    EXPECT_EQ(skipped.out, "{\"imported\": 1, \"aliased\": 0, \"skipped\": 1, \"failed\": 0}\n");
    EXPECT_EQ(ShadeOf(L"wall"), 10);
    const auto replaced = Import({Shade("wall", 20)}, {L"--replace", L"--json"});
    EXPECT_EQ(replaced.code, ExitCode::Done) << replaced.err;
    EXPECT_EQ(replaced.out, "{\"imported\": 1, \"aliased\": 0, \"skipped\": 0, \"failed\": 0}\n");
    EXPECT_EQ(ShadeOf(L"wall"), 20);
}

TEST_F(ImportDictionaryCommand, YesReplacesAndNoSkips)
{
    ASSERT_EQ(Import({Shade("wall", 10)}).code, ExitCode::Done);
    EXPECT_EQ(Import({Shade("wall", 20)}, {L"--no"}).out, "0 imported, 0 aliased, 1 skipped, 0 failed\n");
    EXPECT_EQ(ShadeOf(L"wall"), 10);
    EXPECT_EQ(Import({Shade("wall", 20)}, {L"--yes"}).out, "1 imported, 0 aliased, 0 skipped, 0 failed\n");
    EXPECT_EQ(ShadeOf(L"wall"), 20);
}

TEST_F(ImportDictionaryCommand, KeepsTheAliasesOfAReplacedTexture)
{
    ASSERT_EQ(Import({Shade("wall", 10)}).code, ExitCode::Done);
    ASSERT_EQ(RunCommand({L"alias", List(), L"wall", L"copy"}).code, ExitCode::Done);
    EXPECT_EQ(Import({Shade("wall", 20)}, {L"--replace"}).code, ExitCode::Done);
    EXPECT_EQ(ShadeOf(L"copy"), 20);
}

TEST_F(ImportDictionaryCommand, TheGameOfAnEmptyDatabaseIsAQuestion)
{
    const std::wstring file = Write(RwFile::Dictionary({Shade("wall", 10)}));
    EXPECT_EQ(RunCommand({L"txd", L"import", List(), file}).code, ExitCode::QuestionUnanswered);
    EXPECT_EQ(RunCommand({L"txd", L"import", List(), file, L"--yes"}).code, ExitCode::Done);
}

// Failures.

TEST_F(ImportDictionaryCommand, ADamagedTextureFailsAndTheOthersAreImported)
{
    const auto result =
        Import({Shade("wall", 10), Damaged(), Shade("odd", 20, 3), Shade("door", 30)}, {L"--json"});
    EXPECT_EQ(result.code, ExitCode::Failed);
    EXPECT_EQ(result.out, "{\"imported\": 2, \"aliased\": 0, \"skipped\": 0, \"failed\": 2}\n");
    EXPECT_NE(result.err.find("Section data reading failed."), std::string::npos);
    EXPECT_NE(result.err.find("Wrong texture dimensions given.\n"), std::string::npos);
    EXPECT_EQ(ShadeOf(L"door"), 30);
    EXPECT_EQ(RunCommand({L"check", List()}).code, ExitCode::Done);
}

TEST_F(ImportDictionaryCommand, ATextureThatIsCountedButNotThereIsAFailure)
{
    const auto result = ImportFile(Write(RwFile::Dictionary({Shade("wall", 10)}, 200)), {L"--json"});
    EXPECT_EQ(result.code, ExitCode::Failed);
    EXPECT_EQ(result.out, "{\"imported\": 1, \"aliased\": 0, \"skipped\": 0, \"failed\": 0}\n");
}

TEST_F(ImportDictionaryCommand, ADamagedOrMissingDictionaryChangesNothing)
{
    const auto before = FilesOf(m_oFolder / "db");
    Bytes cut = RwFile::Dictionary({Shade("wall", 10), Shade("door", 20)});
    cut.resize(cut.size() - 30);
    const auto damaged = ImportFile(Write(cut));
    EXPECT_EQ(damaged.code, ExitCode::Failed);
    EXPECT_EQ(damaged.err, "Stream reading error.\n");
    EXPECT_EQ(damaged.out, "");
    const auto missing = ImportFile((m_oFolder / "no.txd").wstring());
    EXPECT_EQ(missing.code, ExitCode::Failed);
    EXPECT_EQ(missing.err, "This is not a valid RW texture dictionary.\n");
    EXPECT_EQ(FilesOf(m_oFolder / "db"), before);
}

TEST_F(ImportDictionaryCommand, AMissingDatabaseIsAFailure)
{
    const auto result = RunCommand({L"txd", L"import", (m_oFolder / "no.txt").wstring(),
                                    Write(RwFile::Dictionary({Shade("wall", 10)}))});
    EXPECT_EQ(result.code, ExitCode::Failed);
}

TEST_F(ImportDictionaryCommand, WrongWordsAreUsage)
{
    EXPECT_EQ(RunCommand({L"txd", L"import", List()}).code, ExitCode::Usage);
    EXPECT_EQ(Import({}, {L"b.txd"}).code, ExitCode::Usage);
    EXPECT_EQ(Import({}, {L"--replace", L"--skip"}).code, ExitCode::Usage);
    EXPECT_EQ(RunCommand({L"txd", L"list", L"a.txd", L"b.txd"}).code, ExitCode::Usage);
}
