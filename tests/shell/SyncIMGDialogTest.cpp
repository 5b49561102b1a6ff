#include <gmock/gmock.h>

#include "dialogs/DlgSyncIMG.h"
#include "tests/shell/ArchiveDialogFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class SyncIMGDialog : public CArchiveDialogTest {
protected:
    explicit SyncIMGDialog(std::deque<PromptAnswer> answers = {}) : CArchiveDialogTest(std::move(answers)) {}

    /// Four textures of 64 pixels and two aliases.
    static CDatabaseBuilder Textures()
    {
        CDatabaseBuilder builder(true);
        builder.Category("cat=0 name=Default");
        builder.Texture("road").Picture("unc", 0x11);
        builder.Texture("kerb").Picture("unc", 0x22);
        builder.Alias("lane", "road").Alias("edge", "kerb");
        builder.Texture("Leaf").Picture("unc", 0x33);
        builder.Texture("moss").Picture("unc", 0x44);
        return builder;
    }
    void Show() { CArchiveDialogTest::Show(std::make_unique<CDlgSyncIMG>(Parts()), IDC_SYNC_LIST); }
    std::filesystem::path Archive(const std::string& name, const std::vector<ImgEntry>& entries) const
    {
        WriteVersion2Archive(m_oFolder / name, entries);
        return m_oFolder / name;
    }
    void Scan(const std::vector<std::filesystem::path>& archives)
    {
        m_oDialogs.chosenFiles = archives;
        Press(IDC_SYNC_OPEN);
    }
    /// Uses "road" and "leaf", which is not "Leaf".
    std::filesystem::path SmallArchive() const
    {
        return Archive("models.img", {{.name = "house.DFF", .contents = Model({"road", "leaf"})},
                                      {.name = "moss.txd", .contents = Dictionary({"moss"})}});
    }
    std::wstring Status() const { return TextOf(IDC_SYNC_STATUS); }
};

class SyncIMGDialogWithYes : public SyncIMGDialog {
protected:
    SyncIMGDialogWithYes() : SyncIMGDialog({PromptAnswer::Yes, PromptAnswer::Yes}) {}
};

class SyncIMGDialogWithNo : public SyncIMGDialog {
protected:
    SyncIMGDialogWithNo() : SyncIMGDialog({PromptAnswer::No}) {}
};

}  // namespace

TEST_F(SyncIMGDialog, HasItsButtonsTheListAndTheStatusLine)
{
    OpenDatabase(Textures());
    Show();
    EXPECT_EQ(m_pDialog->Text(), L"Synchronize with IMG");
    EXPECT_EQ(TextOf(IDC_SYNC_OPEN), L"&Open IMGs");
    EXPECT_EQ(TextOf(IDC_SYNC_DELETE), L"&Delete unused");
    EXPECT_FALSE(Control(IDC_SYNC_DELETE).IsEnabled());
    EXPECT_EQ(Status(), L"Click 'Open IMGs' to begin.");
    EXPECT_THAT(Columns(), ElementsAre(L"Texture 250", L"Info 80"));
    constexpr LRESULT kStyles = LVS_EX_GRIDLINES | LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT;
    EXPECT_EQ(m_oList.Send(LVM_GETEXTENDEDLISTVIEWSTYLE) & kStyles, kStyles);
    EXPECT_THAT(Rows(), IsEmpty());
}

TEST_F(SyncIMGDialog, HasAnExportCommandWithoutEffect)
{
    OpenDatabase(Textures());
    Show();
    EXPECT_THAT(SystemCommands(), ElementsAre(L"-", L"Export current file"));
    Scan({SmallArchive()});
    m_oList.Select(0);
    const std::size_t asked = m_oDialogs.files.size();
    ChooseSystemCommand(ID_IMG_EXPORT_CURRENT);
    EXPECT_THAT(m_oDialogs.files, SizeIs(asked));
    EXPECT_THAT(m_oPrompt.Shown(), IsEmpty());
}

TEST_F(SyncIMGDialog, AsksForSeveralArchives)
{
    OpenDatabase(Textures());
    Show();
    Press(IDC_SYNC_OPEN);
    ASSERT_THAT(m_oDialogs.files, SizeIs(1));
    EXPECT_EQ(m_oDialogs.files[0].filter, L"GTA3 Archive (*.img)|*.img|All Files (*.*)|*.*|");
    EXPECT_EQ(m_oDialogs.files[0].defaultExtension, L"img");
    EXPECT_TRUE(m_oDialogs.files[0].several);
    EXPECT_EQ(Status(), L"Click 'Open IMGs' to begin.") << "the question was cancelled";
    EXPECT_FALSE(Control(IDC_SYNC_DELETE).IsEnabled());
}

TEST_F(SyncIMGDialog, ListsEveryTextureAndChecksTheUnusedOnes)
{
    OpenDatabase(Textures());
    Show();
    Scan({SmallArchive()});
    EXPECT_THAT(Rows(), ElementsAre(L"road||", L"x kerb||", L"x lane|Alias|", L"x edge|Alias|", L"x Leaf||",
                                    L"x moss||"))
        << "names are compared character by character";
    EXPECT_EQ(Status(), L"5 to delete (0.00 MB)");
    EXPECT_TRUE(Control(IDC_SYNC_DELETE).IsEnabled());
}

TEST_F(SyncIMGDialog, AddsTheModelsOfAllArchivesUp)
{
    OpenDatabase(Textures());
    Show();
    Scan({SmallArchive(), Archive("more.img", {{.name = "a.dff", .contents = Model({"kerb", "lane"})}})});
    EXPECT_THAT(Rows(), ElementsAre(L"road||", L"kerb||", L"lane|Alias|", L"x edge|Alias|", L"x Leaf||",
                                    L"x moss||"));
    // Another choice starts anew.
    Scan({m_oFolder / "more.img"});
    EXPECT_THAT(Rows(), ElementsAre(L"x road||", L"kerb||", L"lane|Alias|", L"x edge|Alias|", L"x Leaf||",
                                    L"x moss||"));
}

TEST_F(SyncIMGDialog, SaysHowManyMegabytesAreUnused)
{
    CDatabaseBuilder builder(true);
    builder.Texture("road").Picture("unc", 0x11);
    builder.Texture("wall", " width=512 height=512").Picture("unc", 0x22, 512, 512);
    OpenDatabase(builder);
    Show();
    Scan({SmallArchive()});
    EXPECT_EQ(Status(), L"1 to delete (1.00 MB)");
}

TEST_F(SyncIMGDialog, ChecksNothingWithoutAModel)
{
    OpenDatabase(Textures());
    Show();
    Scan({Archive("empty.img", {{.name = "a.txd", .contents = Dictionary({"road"})}})});
    EXPECT_THAT(Rows(),
                ElementsAre(L"road||", L"kerb||", L"lane|Alias|", L"edge|Alias|", L"Leaf||", L"moss||"));
    EXPECT_EQ(Status(), L"Cache N/A");
    Scan({m_oFolder / "missing.img"});
    EXPECT_THAT(Rows(), SizeIs(6));
    EXPECT_EQ(Status(), L"Cache N/A");
}

TEST_F(SyncIMGDialog, SaysThatNothingIsToBeGained)
{
    OpenDatabase(Textures());
    Show();
    Scan({Archive("all.img",
                  {{.name = "a.dff", .contents = Model({"road", "kerb", "lane", "edge", "Leaf", "moss"})}})});
    EXPECT_EQ(Status(), L"Cache N/A");
    Press(IDC_SYNC_DELETE);
    EXPECT_THAT(m_oPrompt.Shown(), IsEmpty()) << "no row is checked";
}

TEST_F(SyncIMGDialog, ListsNothingWithoutADatabase)
{
    Show();
    Scan({SmallArchive()});
    EXPECT_THAT(Rows(), IsEmpty());
    EXPECT_FALSE(Control(IDC_SYNC_DELETE).IsEnabled());
    Press(IDC_SYNC_DELETE);
    EXPECT_THAT(m_oPrompt.Shown(), IsEmpty());
}

TEST_F(SyncIMGDialogWithNo, AsksBeforeItDeletes)
{
    OpenDatabase(Textures());
    Show();
    Scan({SmallArchive(), m_oFolder / "missing.img",
          Archive("noise.img", {{.name = "noise.dff", .contents = RwFile::Filled(100, 0x5A)}})});
    const auto files = DatabaseFiles();
    Press(IDC_SYNC_DELETE);
    ASSERT_THAT(m_oPrompt.Shown(), SizeIs(1));
    const PromptBox& box = m_oPrompt.Shown()[0];
    EXPECT_EQ(box.text, L"Delete 5 textures?\n\nModels read: 1\nModels skipped: 1\nArchives not opened: 1");
    EXPECT_EQ(box.icon, PromptIcon::Question);
    EXPECT_EQ(box.buttons, PromptButtons::YesNo);
    EXPECT_EQ(box.proposed, PromptAnswer::No);
    EXPECT_EQ(DatabaseFiles(), files);
    EXPECT_THAT(Rows(), SizeIs(6));
    EXPECT_EQ(m_pHost->refreshes, 0);
}

TEST_F(SyncIMGDialogWithYes, DeletesTheCheckedTexturesAndShowsWhatIsLeft)
{
    OpenDatabase(Textures());
    Show();
    Scan({SmallArchive()});
    Press(IDC_SYNC_DELETE);
    EXPECT_THAT(Names(), ElementsAre(L"road"));
    EXPECT_THAT(Rows(), ElementsAre(L"road||"));
    EXPECT_EQ(Status(), L"5 deleted");
    EXPECT_EQ(m_pHost->refreshes, 1);
    // One record is left, as if nothing else had ever been there.
    CDatabaseBuilder wanted(true);
    wanted.Category("cat=0 name=Default");
    wanted.Texture("road").Picture("unc", 0x11);
    for (const auto& [name, bytes] : wanted.Files("textures"))
        if (name != "textures.txt") {
            EXPECT_EQ(DatabaseFiles().at(name), bytes) << name;
        }
}

TEST_F(SyncIMGDialogWithYes, LeavesWhatThePersonUnchecks)
{
    OpenDatabase(Textures());
    Show();
    Scan({SmallArchive()});
    m_oList.SetChecked(5, false);
    m_oList.SetChecked(0, true);
    Press(IDC_SYNC_DELETE);
    EXPECT_THAT(Names(), ElementsAre(L"moss"));
    EXPECT_EQ(Status(), L"5 deleted");
}

TEST_F(SyncIMGDialogWithYes, KeepsATextureWhoseAliasIsUsed)
{
    OpenDatabase(Textures());
    Show();
    Scan({Archive("models.img", {{.name = "a.dff", .contents = Model({"road", "edge", "Leaf", "moss"})}})});
    EXPECT_EQ(m_oList.IsChecked(1), true) << "kerb itself is not used";
    Press(IDC_SYNC_DELETE);
    EXPECT_THAT(Names(), ElementsAre(L"road", L"kerb", L"edge", L"Leaf", L"moss"));
    EXPECT_EQ(Status(), L"1 deleted, 1 kept because aliases of them stay");
    EXPECT_THAT(Rows(), ElementsAre(L"road||", L"x kerb||", L"edge|Alias|", L"Leaf||", L"moss||"));
}

TEST_F(SyncIMGDialogWithYes, SkipsADamagedModelAndKeepsTheNamesThatItCouldRead)
{
    OpenDatabase(Textures());
    Show();
    auto broken = Model({"kerb", "moss"});
    broken.resize(broken.size() - 60);
    Scan({Archive("models.img", {{.name = "broken.dff", .contents = broken},
                                 {.name = "house.dff", .contents = Model({"road"})}})});
    EXPECT_FALSE(m_oList.IsChecked(1)) << "kerb was read before the damage";
    EXPECT_FALSE(m_oList.IsChecked(0));
    Press(IDC_SYNC_DELETE);
    ASSERT_FALSE(m_oPrompt.Shown().empty());
    EXPECT_THAT(m_oPrompt.Shown()[0].text, testing::HasSubstr(L"Models read: 1\nModels skipped: 1\n"));
    EXPECT_THAT(Names(), testing::Contains(L"kerb"));
}

// Stopping.

TEST_F(SyncIMGDialog, ChecksNothingWhenTheScanIsStopped)
{
    OpenDatabase(Textures());
    Show();
    const auto archive = SmallArchive();
    m_oDialogs.chosenFiles = {archive};
    PressDuringTheNextWork(IDCANCEL);
    Press(IDC_SYNC_OPEN);
    EXPECT_TRUE(m_pDialog->Exists());
    for (int row = 0; row < m_oList.Count(); ++row)
        EXPECT_FALSE(m_oList.IsChecked(row)) << row;
    EXPECT_EQ(Status(), L"Cache N/A");
    EXPECT_EQ(TextOf(IDCANCEL), L"&Close");
    Scan({archive});
    EXPECT_EQ(Status(), L"5 to delete (0.00 MB)");
}

TEST_F(SyncIMGDialogWithYes, ChangesNothingWhenTheDeletionIsStoppedAtOnce)
{
    OpenDatabase(Textures());
    Show();
    Scan({SmallArchive()});
    const auto files = DatabaseFiles();
    const auto rows = Rows();
    PressDuringTheNextWork(IDCANCEL);
    Press(IDC_SYNC_DELETE);
    EXPECT_EQ(DatabaseFiles(), files);
    EXPECT_EQ(Rows(), rows) << "what was checked still is";
    EXPECT_EQ(Status(), L"0 deleted");
}

// The main window's command.

namespace {

class SyncIMGCommand : public CMainWindowTest {};

}  // namespace

TEST_F(SyncIMGCommand, NeedsADatabase)
{
    Start();
    EXPECT_FALSE(Menu().IsEnabled(ID_IMG_SYNCHRONIZER));
    Command(ID_IMG_SYNCHRONIZER);
    EXPECT_EQ(m_oDialogs.synchronizations, 0);
    EXPECT_EQ(Prompt().Shown().back().text, L"Load the cache first!");
    OpenDatabase(SmallDatabase());
    EXPECT_TRUE(Menu().IsEnabled(ID_IMG_SYNCHRONIZER));
    Command(ID_IMG_SYNCHRONIZER);
    EXPECT_EQ(m_oDialogs.synchronizations, 1);
}
