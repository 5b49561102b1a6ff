#include <fstream>
#include <gtest/gtest.h>

#include "tests/cli/CommandRunner.h"
#include "tests/support/TemporaryFolder.h"

namespace {

class EditCommands : public testing::Test {
protected:
    EditCommands()
    {
        EXPECT_EQ(RunCommand({L"new", List(), L"--caches", L"unc"}).code, ExitCode::Done);
        std::vector<std::wstring> words = {L"--game", L"vc", L"import", List(), L"--rgba8888"};
        for (const char* name : {"road.png", "road_lae.png", "wall.png"}) {
            SavePicture(m_oPictures / name, Gradient(4, static_cast<std::uint32_t>(1U << words.size() % 4)));
            words.push_back((m_oPictures / name).wstring());
        }
        const auto result = RunCommand(words);
        EXPECT_EQ(result.code, ExitCode::Done) << result.err;
    }

    std::wstring List() const { return (m_oFolder / "t.txt").wstring(); }
    std::string Lines() const { return RunCommand({L"list", List()}).out; }
    bool HasLine(const std::string& part) const { return Lines().find(part) != std::string::npos; }

    CTemporaryFolder m_oFolder;
    CTemporaryFolder m_oPictures;
};

}  // namespace

TEST_F(EditCommands, SetChangesPropertiesInTheOrderGiven)
{
    ASSERT_EQ(RunCommand({L"set", List(), L"wall", L"decalz=3", L"png=BEEF", L"camnorm=-1"}).code,
              ExitCode::Done);
    EXPECT_TRUE(HasLine(" decalz=3 png=0000beef camnorm=-1\n")) << Lines();
}

TEST_F(EditCommands, SetRefusesWhatIsNoProperty)
{
    const auto before = FilesOf(m_oFolder.Path());
    EXPECT_EQ(RunCommand({L"set", List(), L"wall", L"decalz=3", L"colour=1"}).code, ExitCode::Usage);
    EXPECT_EQ(RunCommand({L"set", List(), L"wall", L"decalz=three"}).code, ExitCode::Usage);
    EXPECT_EQ(RunCommand({L"set", List(), L"wall", L"img=123456789"}).code, ExitCode::Usage);
    EXPECT_EQ(FilesOf(m_oFolder.Path()), before);
}

TEST_F(EditCommands, ALineThatWouldNotFitIsRefused)
{
    const auto before = FilesOf(m_oFolder.Path());
    const auto result =
        RunCommand({L"set", List(), L"wall", L"camnorm=1000000", L"decalz=1000000", L"forcez=1000000",
                    L"hassibling=1000000", L"isdetail=1000000", L"detailtile=1000000"});
    EXPECT_EQ(result.code, ExitCode::Failed);
    EXPECT_EQ(result.err, "Texture line is too long.\n");
    EXPECT_EQ(FilesOf(m_oFolder.Path()), before);
}

TEST_F(EditCommands, AnAliasIsInTheCategoryOfItsOriginal)
{
    ASSERT_EQ(RunCommand({L"category", List(), L"add", L"walls"}).code, ExitCode::Done);
    ASSERT_EQ(RunCommand({L"move", List(), L"walls", L"wall"}).code, ExitCode::Done);
    ASSERT_EQ(RunCommand({L"alias", List(), L"wall", L"wall2"}).code, ExitCode::Done);
    EXPECT_TRUE(HasLine("\"wall2\" \"affiliate=wall\" cat=1\n")) << Lines();
}

TEST_F(EditCommands, AnAliasOfAnAliasNamesTheOriginal)
{
    ASSERT_EQ(RunCommand({L"alias", List(), L"wall", L"wall2"}).code, ExitCode::Done);
    ASSERT_EQ(RunCommand({L"alias", List(), L"wall2", L"wall3"}).code, ExitCode::Done);
    EXPECT_TRUE(HasLine("\"wall3\" \"affiliate=wall\"\n")) << Lines();
}

TEST_F(EditCommands, ATakenNameIsRefused)
{
    const auto before = FilesOf(m_oFolder.Path());
    for (const auto& words : {std::vector<std::wstring>{L"alias", List(), L"wall", L"ROAD"},
                              std::vector<std::wstring>{L"rename", List(), L"wall", L"Road"}}) {
        const auto result = RunCommand(words);
        EXPECT_EQ(result.code, ExitCode::Failed);
        EXPECT_EQ(result.err, "Texture already exists\n");
    }
    EXPECT_EQ(FilesOf(m_oFolder.Path()), before);
}

TEST_F(EditCommands, WrongNamesAreRefused)
{
    const auto before = FilesOf(m_oFolder.Path());
    EXPECT_EQ(RunCommand({L"rename", List(), L"wall", L""}).err, "Name should not be empty.\n");
    EXPECT_EQ(RunCommand({L"rename", List(), L"wall", L"a\"b"}).err, "Wrong texture name given.\n");
    EXPECT_EQ(RunCommand({L"alias", List(), L"wall", L"\x0416"}).err, "Wrong texture name given.\n");
    EXPECT_EQ(RunCommand({L"alias", List(), L"wall", std::wstring(64, L'x')}).err,
              "Wrong texture name given.\n");
    EXPECT_EQ(RunCommand({L"category", List(), L"add", L"two words"}).err, "No spaces allowed\n");
    EXPECT_EQ(RunCommand({L"category", List(), L"add", L""}).err, "Empty category name given\n");
    EXPECT_EQ(FilesOf(m_oFolder.Path()), before);
}

TEST_F(EditCommands, DeletingATextureDeletesItsAliases)
{
    ASSERT_EQ(RunCommand({L"alias", List(), L"wall", L"wall2"}).code, ExitCode::Done);
    ASSERT_EQ(RunCommand({L"delete", List(), L"wall", L"road"}).code, ExitCode::Done);
    EXPECT_EQ(RunCommand({L"--json", L"info", List()}).out.find("{\"entries\": 1, \"aliases\": 0"), 0U);
    EXPECT_TRUE(HasLine("#0 \"road_lae\"")) << Lines();
    EXPECT_EQ(RunCommand({L"check", List()}).code, ExitCode::Done);
}

TEST_F(EditCommands, RetargetKeepsTheAliases)
{
    ASSERT_EQ(RunCommand({L"alias", List(), L"wall", L"wall2"}).code, ExitCode::Done);
    ASSERT_EQ(RunCommand({L"delete", List(), L"wall", L"--retarget", L"road"}).code, ExitCode::Done);
    EXPECT_TRUE(HasLine("\"wall2\" \"affiliate=wall\"")) << Lines();
}

TEST_F(EditCommands, CategoriesAreRenamedSetAndDeleted)
{
    ASSERT_EQ(RunCommand({L"category", List(), L"add", L"walls"}).code, ExitCode::Done);
    ASSERT_EQ(RunCommand({L"category", List(), L"rename", L"walls", L"bricks"}).code, ExitCode::Done);
    ASSERT_EQ(RunCommand({L"category", List(), L"set", L"bricks", L"fast=3", L"defaultformat=4"}).code,
              ExitCode::Done);
    EXPECT_NE(
        RunCommand({L"--json", L"list", List()})
            .out.find("\"name\": \"bricks\", \"onfoot\": 0, \"slow\": 0, \"fast\": 3, \"defaultformat\": 4"),
        std::string::npos);
    ASSERT_EQ(RunCommand({L"move", List(), L"bricks", L"wall"}).code, ExitCode::Done);
    ASSERT_EQ(RunCommand({L"category", List(), L"delete", L"#1"}).code, ExitCode::Done);
    EXPECT_FALSE(HasLine("cat=1")) << Lines();
}

TEST_F(EditCommands, SiblingsAreTheFamilyOfTheBase)
{
    EXPECT_EQ(RunCommand({L"--json", L"siblings", List(), L"road_lae"}).out,
              "{\"base\": 0, \"siblings\": [{\"index\": 0, \"name\": \"road\", \"has_sibling\": false, "
              "\"txd\": \"N/A\", "
              "\"alias_of\": \"\"}, {\"index\": 1, \"name\": \"road_lae\", \"has_sibling\": false, \"txd\": "
              "\"lae\", "
              "\"alias_of\": \"\"}]}\n");
}

TEST_F(EditCommands, AliasesOfATextureWithoutAnySaysSo)
{
    EXPECT_EQ(RunCommand({L"aliases", List(), L"wall"}).err, "No aliases found.\n");
    ASSERT_EQ(RunCommand({L"alias", List(), L"wall", L"wall2"}).code, ExitCode::Done);
    EXPECT_EQ(RunCommand({L"aliases", List(), L"wall"}).out, "03\twall2\tNo\n");
}

TEST_F(EditCommands, ATargetThatIsDeletedItselfIsRefused)
{
    const auto before = FilesOf(m_oFolder.Path());
    EXPECT_EQ(RunCommand({L"delete", List(), L"wall", L"road", L"--retarget", L"road"}).code,
              ExitCode::Failed);
    EXPECT_EQ(FilesOf(m_oFolder.Path()), before);
}
