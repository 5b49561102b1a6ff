// A damaged database is mended when it is opened, and edited afterwards; the command line mends and edits it
// to the same bytes.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/resource.h"
#include "tests/e2e/DatabaseFiles.h"
#include "tests/e2e/Mavrel.h"
#include "tests/e2e/SampleDatabase.h"

namespace {

class RepairJourney : public testing::Test {
protected:
    /// Does the same damage to both databases.
    void Damage(const std::function<void(const CSampleDatabase&)>& damage) const
    {
        damage(m_oByHand);
        damage(m_oByCommands);
    }
    /// Answers the question with Yes, edits, and opens the database again, which asks nothing any more.
    void MendAndEditByHand(const std::wstring& question) const
    {
        const CMavrel mavrel(m_oInstallation, m_oByHand.AsArgument());
        mavrel.Answer(question, IDYES);
        mavrel.WaitUntilDrawn(L"brick");
        mavrel.Select({L"leaf"});
        mavrel.TypeNewName(L"leaf_green");
        mavrel.WaitForItem(L"  leaf_green");
        mavrel.Select({L"sign"});
        mavrel.Command(ID_DELETE_TEXTURE);
        mavrel.Answer(
            L"Textures to delete: 1\nAliases that go with them: 0\n\nThis cannot be undone. Delete them?",
            IDYES);
        mavrel.WaitUntilDrawn(L"wall");
        mavrel.Run(ID_CLOSE);
        mavrel.Run(ID_RECENT_FIRST);
        EXPECT_THAT(mavrel.Tree().Texts(), testing::ElementsAre(L"Default", L"  brick", L"  brick_old",
                                                                L"  leaf_green", L"  wall", L"Signs"));
        mavrel.Command(ID_EXIT);
        EXPECT_EQ(mavrel.WaitForExit(), 0U);
    }
    void ExpectTheSameByCommands() const
    {
        const std::wstring list = m_oByCommands.List().wstring();
        RunCommandLine({L"check", list, L"--fix"});
        RunCommandLine({L"rename", list, L"leaf", L"leaf_green"});
        RunCommandLine({L"delete", list, L"sign"});
        ExpectSameFiles(FilesOf(m_oByHand.List().parent_path()), FilesOf(m_oByCommands.List().parent_path()));
        EXPECT_NO_THROW(RunCommandLine({L"check", m_oByHand.List().wstring()}));
    }

    CInstallation m_oInstallation;
    CSampleDatabase m_oByHand;
    CSampleDatabase m_oByCommands;
};

constexpr wchar_t kBadTable[] = L"DXT.TOC file is corrupted.\r\n\r\nDo you want to fix it?";

TEST_F(RepairJourney, MendsATableThatLostItsEnd)
{
    Damage([](const CSampleDatabase& database) {
        const auto table = database.File("textures.dxt.toc");
        std::filesystem::resize_file(table, std::filesystem::file_size(table) - 4);
    });
    MendAndEditByHand(kBadTable);
    ExpectTheSameByCommands();
}

TEST_F(RepairJourney, MendsATableWithAWrongLength)
{
    Damage([](const CSampleDatabase& database) {
        FileBytes table = FilesOf(database.List().parent_path());
        table.at("textures.dxt.toc").front() ^= std::byte{0x55};
        WriteFiles(database.List().parent_path(), {{"textures.dxt.toc", table.at("textures.dxt.toc")}});
    });
    MendAndEditByHand(kBadTable);
    ExpectTheSameByCommands();
}

TEST_F(RepairJourney, WritesThumbnailsThatAreLost)
{
    Damage([](const CSampleDatabase& database) {
        std::filesystem::resize_file(database.File("textures.unc.tmb"), 0);
    });
    MendAndEditByHand(
        L"UNC.TMB file is corrupted, it can hang game loading.\r\n\r\nDo you wanna apply fast fix?");
    ExpectTheSameByCommands();
}

}  // namespace
