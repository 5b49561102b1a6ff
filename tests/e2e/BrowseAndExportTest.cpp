// A person opens a database, looks at its textures and exports them: the real program, driven from outside.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>

#include "app/resource.h"
#include "image/ImageFile.h"
#include "tests/e2e/Mavrel.h"
#include "tests/e2e/SampleDatabase.h"
#include "tests/e2e/driver/Input.h"
#include "tests/e2e/driver/Wait.h"
#include "tests/e2e/driver/WindowLookup.h"

namespace {

using testing::ElementsAre;

constexpr int kDxtTab = 0;
constexpr int kEtcTab = 1;
constexpr int kUncTab = 3;

/// The program on the sample database, with texture 0 drawn.
class BrowseAndExport : public testing::Test {
protected:
    void SetUp() override { m_oMavrel.WaitUntilDrawn(L"brick"); }

    std::set<std::string> FilesIn(const std::filesystem::path& folder) const
    {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            names.insert(entry.path().filename().string());
        return names;
    }
    void ChooseExportFolder() const
    {
        const auto dialog = WaitForFolderDialog(m_oMavrel.Id());
        EXPECT_THAT(dialog.Labels(), testing::Contains(L"Select folder for export textures to:"));
        ChooseFolder(dialog, m_oExports.Path());
        m_oMavrel.WaitForPane(0, L"Done!");
    }

    CInstallation m_oInstallation;
    CSampleDatabase m_oDatabase;
    CTemporaryFolder m_oExports;
    CMavrel m_oMavrel{m_oInstallation, m_oDatabase.AsArgument()};
};

// A picture of this size, every pixel within what the formats of the caches lose of the colour, 0xRRGGBB.
void ExpectPicture(const std::filesystem::path& file, std::uint32_t width, std::uint32_t height,
                   std::uint32_t color)
{
    constexpr int kMostLost = 4;
    const auto bitmap = LoadImageFile(file);
    ASSERT_TRUE(bitmap) << file;
    EXPECT_EQ(bitmap->Width(), width) << file;
    EXPECT_EQ(bitmap->Height(), height) << file;
    const auto pixels = bitmap->Pixels();
    for (std::size_t at = 0; at < pixels.size(); ++at) {
        const std::size_t channel = at % 4;
        const int wanted = channel == 3 ? 255 : static_cast<int>(color >> (channel * 8) & 0xFFU);
        ASSERT_NEAR(pixels[at], wanted, kMostLost) << file << ", byte " << at;
    }
}

TEST_F(BrowseAndExport, ShowsTheDatabaseOfTheCommandLine)
{
    EXPECT_EQ(m_oMavrel.Title(), L"textures.txt - Mavrel 0.7b x64");
    EXPECT_EQ(m_oMavrel.Panes().Count(), 7U);
    EXPECT_THAT(m_oMavrel.Tree().Texts(), ElementsAre(L"Default", L"  brick", L"  brick_old", L"  leaf",
                                                      L"  wall", L"Signs", L"  sign"));
    EXPECT_THAT(m_oMavrel.Tree().SelectedTexts(), ElementsAre(L"brick"));
    EXPECT_THAT(m_oMavrel.Tabs().Texts(),
                ElementsAre(L"DXT       ", L"ETC       ", L"PVR       ", L"UNC       "));
    EXPECT_EQ(m_oMavrel.Tabs().Selected(), kDxtTab);
}

TEST_F(BrowseAndExport, TellsTheFactsOfTheSelectedTexture)
{
    m_oMavrel.ShowTexture(L"brick");
    EXPECT_THAT(m_oMavrel.Facts(),
                ElementsAre(L"ID: 00, Offset: 0x0", L"2.680 KB", L"64 x 64", L"GTA SA", L"DXT1"));
    m_oMavrel.ShowTexture(L"wall");
    EXPECT_THAT(m_oMavrel.Facts(),
                ElementsAre(L"ID: 02, Offset: 0x3E", L"5.352 KB", L"128 x 64", L"GTA SA", L"DXT1"));
}

TEST_F(BrowseAndExport, ShowsTheTextureInAnotherCache)
{
    m_oMavrel.Tabs().Click(kUncTab);
    m_oMavrel.WaitForPane(6, L"RGBA 565");
    EXPECT_EQ(m_oMavrel.Tabs().Selected(), kUncTab);
    EXPECT_THAT(m_oMavrel.Facts(),
                ElementsAre(L"ID: 00, Offset: 0x0", L"10.666 KB", L"64 x 64", L"GTA SA", L"RGBA 565"));
}

TEST_F(BrowseAndExport, GoesBackFromATabThatHasNoCache)
{
    m_oMavrel.Tabs().Click(kUncTab);
    m_oMavrel.WaitForPane(6, L"RGBA 565");
    m_oMavrel.Tabs().Click(kEtcTab);
    WaitUntil("the tab to snap back", [this] { return m_oMavrel.Tabs().Selected() == kUncTab; });
    // A click that comes through tells that the refused one has been handled.
    m_oMavrel.ShowTexture(L"leaf");
    EXPECT_EQ(m_oMavrel.Tabs().Selected(), kUncTab);
}

TEST_F(BrowseAndExport, StepsToTheDefaultCacheWhenTheNextHasNone)
{
    m_oMavrel.Tabs().Click(kUncTab);
    m_oMavrel.WaitForPane(6, L"RGBA 565");
    m_oMavrel.Run(ID_NEXT_TAB);
    EXPECT_EQ(m_oMavrel.Tabs().Selected(), kDxtTab) << "the one after the last";
    m_oMavrel.Run(ID_PREVIOUS_TAB);
    EXPECT_EQ(m_oMavrel.Tabs().Selected(), kUncTab) << "the one before the first";
    m_oMavrel.Run(ID_PREVIOUS_TAB);
    EXPECT_EQ(m_oMavrel.Tabs().Selected(), kDxtTab) << "PVR is not there";
}

TEST_F(BrowseAndExport, NamesTheSelectedCategory)
{
    m_oMavrel.Tree().Click(L"Signs");
    EXPECT_NO_THROW(m_oMavrel.WaitForPane(0, L"Category 'Signs' selected."));
}

TEST_F(BrowseAndExport, CountsSeveralSelectedTextures)
{
    // A range begins where the mouse was last.
    m_oMavrel.Tree().Click(L"brick_old");
    m_oMavrel.WaitUntilDrawn(L"brick_old");
    m_oMavrel.Tree().Click(L"wall", {VK_SHIFT});
    EXPECT_NO_THROW(m_oMavrel.WaitForPane(0, L"3 items selected"));
    m_oMavrel.Tree().Click(L"leaf", {VK_CONTROL});
    EXPECT_NO_THROW(m_oMavrel.WaitForPane(0, L"2 items selected"));
    EXPECT_THAT(m_oMavrel.Tree().SelectedTexts(), ElementsAre(L"brick_old", L"wall"));
}

TEST_F(BrowseAndExport, ShowsThumbnailsAfterF6)
{
    BringToFront(m_oMavrel.Window());
    PressKey(VK_F6);
    EXPECT_NO_THROW(m_oMavrel.WaitForPane(4, L"8 x 8"));
    m_oMavrel.ShowTexture(L"wall");
    EXPECT_EQ(m_oMavrel.Pane(4), L"8 x 8");
    m_oMavrel.Command(ID_THUMBNAILS);
    EXPECT_NO_THROW(m_oMavrel.WaitForPane(4, L"128 x 64"));
}

TEST_F(BrowseAndExport, FindsTexturesAndStartsAgainFromTheTop)
{
    m_oMavrel.Command(ID_FIND);
    const auto dialog = WaitForDialog(m_oMavrel.Id(), L"Find texture");
    EXPECT_THAT(dialog.Labels(), ElementsAre(L"Find what:"));
    dialog.Type(L"BRICK");
    dialog.Press(IDOK);
    // Texture 0 is selected, so the search begins behind it.
    m_oMavrel.WaitUntilDrawn(L"brick_old");

    BringToFront(m_oMavrel.Window());
    PressKey(VK_F3);
    const auto question = WaitForMessageBox(m_oMavrel.Id());
    EXPECT_EQ(question.Caption(), L"Find");
    EXPECT_EQ(question.Text(), L"No textures found. Do you want to try search from beginning?");
    EXPECT_THAT(question.Buttons(), ElementsAre(L"Yes", L"No"));
    EXPECT_EQ(question.Icon(), BoxIcon::Question);
    question.Press(IDYES);
    m_oMavrel.WaitUntilDrawn(L"brick");
    EXPECT_THAT(m_oMavrel.Tree().SelectedTexts(), ElementsAre(L"brick"));
}

TEST_F(BrowseAndExport, ExportsOneTextureByTheSaveDialog)
{
    m_oMavrel.Tabs().Click(kUncTab);
    m_oMavrel.WaitForPane(6, L"RGBA 565");
    m_oMavrel.ShowTexture(L"leaf");
    m_oMavrel.Command(ID_EXPORT_SELECTION);
    const auto dialog = WaitForFileDialog(m_oMavrel.Id());
    EXPECT_EQ(std::filesystem::path(ProposedName(dialog)).stem(), L"leaf");
    ChooseFiles(dialog, {m_oExports / "chosen name.png"});
    m_oMavrel.WaitForPane(0, L"Done!");

    ExpectPicture(m_oExports / "chosen name.png", 32, 32, 0x28A038);
    EXPECT_EQ(std::filesystem::path(m_oInstallation.Setting(L"paths", L"last_export_dir")).lexically_normal(),
              m_oExports.Path().lexically_normal());
}

TEST_F(BrowseAndExport, AddsTheExtensionToATypedName)
{
    m_oMavrel.Command(ID_EXPORT_SELECTION);
    ChooseFiles(WaitForFileDialog(m_oMavrel.Id()), {m_oExports / "plain"});
    m_oMavrel.WaitForPane(0, L"Done!");
    EXPECT_THAT(FilesIn(m_oExports.Path()), ElementsAre("plain.png"));
}

TEST_F(BrowseAndExport, WritesNothingWhenTheSaveDialogIsCancelled)
{
    m_oMavrel.Command(ID_EXPORT_SELECTION);
    WaitForFileDialog(m_oMavrel.Id()).Press(IDCANCEL);
    m_oMavrel.ShowTexture(L"leaf");
    EXPECT_EQ(m_oInstallation.Setting(L"paths", L"last_export_dir"), L"");
}

TEST_F(BrowseAndExport, ExportsASelectionIntoAFolder)
{
    m_oMavrel.Select({L"leaf", L"sign"});
    m_oMavrel.Command(ID_EXPORT_SELECTION);
    ChooseExportFolder();

    EXPECT_THAT(FilesIn(m_oExports.Path()), ElementsAre("leaf.png", "sign.png"));
    ExpectPicture(m_oExports / "leaf.png", 32, 32, 0x28A038);
    ExpectPicture(m_oExports / "sign.png", 16, 16, 0x1828C8);
}

TEST_F(BrowseAndExport, ExportsAllWithoutAliasesWhenAnsweredNo)
{
    m_oMavrel.Command(ID_EXPORT_ALL);
    const auto question = WaitForMessageBox(m_oMavrel.Id());
    EXPECT_EQ(question.Caption(), L"Export all");
    EXPECT_EQ(question.Text(), L"Do you want to export aliases too?");
    EXPECT_THAT(question.Buttons(), ElementsAre(L"Yes", L"No", L"Cancel"));
    EXPECT_EQ(question.Icon(), BoxIcon::Question);
    question.Press(IDNO);
    ChooseExportFolder();
    EXPECT_THAT(FilesIn(m_oExports.Path()), ElementsAre("brick.png", "leaf.png", "sign.png", "wall.png"));
}

TEST_F(BrowseAndExport, ExportsAllWithAliasesWhenAnsweredYes)
{
    m_oMavrel.Command(ID_EXPORT_ALL);
    WaitForMessageBox(m_oMavrel.Id()).Press(IDYES);
    ChooseExportFolder();
    EXPECT_THAT(FilesIn(m_oExports.Path()),
                ElementsAre("brick.png", "brick_old.png", "leaf.png", "sign.png", "wall.png"));
    ExpectPicture(m_oExports / "brick_old.png", 64, 64, 0xC85028);
}

TEST_F(BrowseAndExport, ExportsNothingWhenAnsweredCancel)
{
    m_oMavrel.Command(ID_EXPORT_ALL);
    WaitForMessageBox(m_oMavrel.Id()).Press(IDCANCEL);
    m_oMavrel.ShowTexture(L"leaf");
    EXPECT_THAT(FilesIn(m_oExports.Path()), ElementsAre());
}

TEST_F(BrowseAndExport, ExportsTheFocusedCategory)
{
    m_oMavrel.Tree().Click(L"Signs");
    m_oMavrel.WaitForPane(0, L"Category 'Signs' selected.");
    m_oMavrel.Command(ID_EXPORT_CATEGORY);
    const auto question = WaitForMessageBox(m_oMavrel.Id());
    EXPECT_EQ(question.Caption(), L"Export 'Signs' category");
    question.Press(IDYES);
    ChooseExportFolder();
    EXPECT_THAT(FilesIn(m_oExports.Path()), ElementsAre("sign.png"));
}

TEST_F(BrowseAndExport, ClosesTheDatabaseAndThenTheProgram)
{
    m_oMavrel.Command(ID_CLOSE);
    m_oMavrel.WaitForPane(0, L"Cache unloaded.");
    EXPECT_EQ(m_oMavrel.Title(), L"Mavrel 0.7b x64 build #415");
    EXPECT_THAT(m_oMavrel.Tree().Texts(), ElementsAre());
    m_oMavrel.Command(ID_EXPORT_ALL);
    const auto box = WaitForMessageBox(m_oMavrel.Id());
    EXPECT_EQ(box.Text(), L"Load the cache first!");
    EXPECT_EQ(box.Icon(), BoxIcon::Error);
    box.Press(IDOK);
    m_oMavrel.Command(ID_EXIT);
    EXPECT_EQ(m_oMavrel.WaitForExit(), 0U);
    EXPECT_NE(m_oInstallation.Setting(L"position", L"right"), L"");
}

TEST_F(BrowseAndExport, LeavesEveryFileAsItWas)
{
    const std::set<std::string> before = FilesIn(m_oDatabase.List().parent_path());
    std::vector<std::string> bytes;
    for (const auto& name : before)
        bytes.push_back(ReadFile(m_oDatabase.File(name)));
    m_oMavrel.ShowTexture(L"wall");
    m_oMavrel.Tabs().Click(kUncTab);
    m_oMavrel.WaitForPane(6, L"RGBA 565");
    m_oMavrel.Command(ID_EXIT);
    ASSERT_EQ(m_oMavrel.WaitForExit(), 0U);

    EXPECT_EQ(FilesIn(m_oDatabase.List().parent_path()), before);
    std::size_t at = 0;
    for (const auto& name : before)
        EXPECT_EQ(ReadFile(m_oDatabase.File(name)), bytes[at++]) << name;
}

// Without a database, with an empty one, and with damaged ones.

TEST(Opening, WithoutAListIsReady)
{
    const CInstallation installation;
    const CMavrel mavrel(installation, {});
    EXPECT_NO_THROW(mavrel.WaitForPane(0, L"Mavrel is ready to fuck you up."));
    EXPECT_EQ(mavrel.Title(), L"Mavrel 0.7b x64 build #415");
}

TEST(Opening, AnEmptyDatabaseTellsHowLongItTook)
{
    const CInstallation installation;
    const CTemporaryFolder folder;
    MakeEmptyDatabase(folder / "empty.txt");
    const CMavrel mavrel(installation, {(folder / "empty.txt").wstring()});
    WaitUntil("the time of loading", [&] { return mavrel.Pane(0).starts_with(L"Cache loaded within "); });
    EXPECT_THAT(mavrel.Pane(0).substr(20), testing::EndsWith(L" seconds."));
    EXPECT_THAT(mavrel.Tree().Texts(), ElementsAre(L"Default"));
}

TEST(Opening, AListWithoutCachesIsRefused)
{
    const CInstallation installation;
    const CTemporaryFolder folder;
    const CMavrel mavrel(installation, {(folder / "nothing.txt").wstring()});
    const auto box = WaitForMessageBox(mavrel.Id());
    EXPECT_EQ(box.Caption(), L"Error");
    EXPECT_EQ(box.Text(),
              L"No caches found to load, lol.\n\nCheck .DAT, .TMB and .TOC files, all of them sholuld be "
              L"located in "
              L"the same folder as TXT.");
    EXPECT_EQ(box.Icon(), BoxIcon::Error);
    EXPECT_THAT(box.Buttons(), ElementsAre(L"OK"));
    box.Press(IDOK);
    EXPECT_NO_THROW(mavrel.WaitForPane(0, L"Cache unloaded."));
    EXPECT_FALSE(std::filesystem::exists(folder / "nothing.txt"));
}

/// A database whose list of offsets for DXT has lost its last entry.
class DamagedToc : public testing::Test {
protected:
    void SetUp() override
    {
        std::filesystem::resize_file(m_oDatabase.File("textures.dxt.toc"),
                                     std::filesystem::file_size(m_oDatabase.File("textures.dxt.toc")) - 4);
        m_sBefore = ReadFile(m_oDatabase.File("textures.dxt.toc"));
    }

    CInstallation m_oInstallation;
    CSampleDatabase m_oDatabase;
    std::string m_sBefore;
};

TEST_F(DamagedToc, IsLeftAloneWhenAnsweredNo)
{
    const CMavrel mavrel(m_oInstallation, m_oDatabase.AsArgument());
    const auto question = WaitForMessageBox(mavrel.Id());
    EXPECT_EQ(question.Text(), L"DXT.TOC file is corrupted.\r\n\r\nDo you want to fix it?");
    EXPECT_THAT(question.Buttons(), ElementsAre(L"Yes", L"No"));
    EXPECT_EQ(question.Icon(), BoxIcon::Warning);
    question.Press(IDNO);
    WaitUntil("the tree to be filled", [&] { return mavrel.Tree().Items().size() == 7; });
    mavrel.Command(ID_EXIT);
    EXPECT_EQ(mavrel.WaitForExit(), 0U);
    EXPECT_EQ(ReadFile(m_oDatabase.File("textures.dxt.toc")), m_sBefore);
}

TEST_F(DamagedToc, IsMendedWhenAnsweredYes)
{
    const CMavrel mavrel(m_oInstallation, m_oDatabase.AsArgument());
    WaitForMessageBox(mavrel.Id()).Press(IDYES);
    mavrel.WaitUntilDrawn(L"brick");
    mavrel.Command(ID_EXIT);
    EXPECT_EQ(mavrel.WaitForExit(), 0U);
    EXPECT_EQ(ReadFile(m_oDatabase.File("textures.dxt.toc")).size(), m_sBefore.size() + 4);
    EXPECT_NO_THROW(RunCommandLine({L"check", m_oDatabase.List().wstring()}));
}

}  // namespace
