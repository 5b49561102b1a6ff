// Files dropped on the window: pictures are imported where they fall, a list opens.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/resource.h"
#include "tests/e2e/DatabaseFiles.h"
#include "tests/e2e/Mavrel.h"
#include "tests/e2e/Pictures.h"
#include "tests/e2e/SampleDatabase.h"
#include "tests/e2e/driver/Drop.h"
#include "tests/e2e/driver/Wait.h"

namespace {

using testing::ElementsAre;

class DropJourney : public testing::Test {
protected:
    void DropOn(const CMavrel& mavrel, const std::wstring& item, const std::vector<std::string>& names) const
    {
        POINT place = mavrel.Tree().PlaceOf(item);
        ::MapWindowPoints(mavrel.Tree().Handle(), mavrel.Window(), &place, 1);
        DropFiles(mavrel.Window(), m_oPictures.Files(names), place);
    }

    CInstallation m_oInstallation;
    CSampleDatabase m_oDatabase;
    CPictureFolder m_oPictures;
};

TEST_F(DropJourney, PicturesAreImportedAsByTheCommandLine)
{
    const CSampleDatabase byCommands;
    const CMavrel mavrel(m_oInstallation, m_oDatabase.AsArgument());
    mavrel.WaitUntilDrawn(L"brick");
    DropOn(mavrel, L"Signs", {"glass.png", "notes.txt", "lamp.png"});
    const auto question = WaitForMessageBox(mavrel.Id());
    EXPECT_EQ(question.Caption(), L"Import");
    EXPECT_EQ(question.Text(), L"Pictures to import: 2\n\nDo you want to keep their alpha channel?");
    EXPECT_EQ(question.Icon(), BoxIcon::Question);
    EXPECT_THAT(question.Buttons(), ElementsAre(L"Yes", L"No", L"Cancel"));
    question.Press(IDYES);
    mavrel.WaitUntilDrawn(L"lamp");
    DropOn(mavrel, L"leaf", {"road.bmp"});
    mavrel.Answer(L"Pictures to import: 1\n\nDo you want to keep their alpha channel?", IDNO);
    mavrel.WaitUntilDrawn(L"road");
    DropOn(mavrel, L"leaf", {"sky.tif"});
    mavrel.Answer(L"Pictures to import: 1\n\nDo you want to keep their alpha channel?", IDCANCEL);
    EXPECT_THAT(mavrel.Tree().Texts(),
                ElementsAre(L"Default", L"  brick", L"  brick_old", L"  leaf", L"  road", L"  wall", L"Signs",
                            L"  glass", L"  lamp", L"  sign"));
    mavrel.Run(ID_CLOSE);

    const std::wstring list = byCommands.List().wstring();
    const auto files = m_oPictures.Files({"glass.png", "lamp.png", "road.bmp"});
    RunCommandLine({L"import", list, files[0].wstring(), files[1].wstring(), L"--category", L"Signs"});
    RunCommandLine({L"import", list, files[2].wstring(), L"--no-alpha"});
    ExpectSameFiles(FilesOf(m_oDatabase.List().parent_path()), FilesOf(byCommands.List().parent_path()));
}

TEST_F(DropJourney, AListAndACacheFileOpenTheirDatabase)
{
    const CMavrel mavrel(m_oInstallation, {});
    for (const char* name : {"textures.txt", "textures.unc.dat"}) {
        DropFiles(mavrel.Window(), {m_oDatabase.File(name)}, {10, 10});
        mavrel.WaitUntilDrawn(L"brick");
        EXPECT_EQ(mavrel.Title(), L"textures.txt - Mavrel 0.7b x64");
        mavrel.Run(ID_CLOSE);
    }
}

TEST_F(DropJourney, PicturesNeedADatabase)
{
    const CMavrel mavrel(m_oInstallation, {});
    DropFiles(mavrel.Window(), m_oPictures.Files({"glass.png"}), {10, 10});
    mavrel.AcceptError(L"Load the cache first!");
}

TEST_F(DropJourney, OtherFilesAreRefused)
{
    const CMavrel mavrel(m_oInstallation, {});
    DropFiles(mavrel.Window(), {m_oPictures.Path() / "music.wav"}, {10, 10});
    mavrel.AcceptError(L"This format is unsupported");
}

}  // namespace
