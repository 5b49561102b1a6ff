#include <gmock/gmock.h>

#include "dialogs/DlgImportIMG.h"
#include "tests/shell/ArchiveDialogFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

class ImportIMGDialog : public CArchiveDialogTest {
protected:
    explicit ImportIMGDialog(std::deque<PromptAnswer> answers = {}) : CArchiveDialogTest(std::move(answers))
    {
        OpenDatabase(EmptyDatabase());
    }
    void Show(CacheIndex target = CacheIndex::Unc)
    {
        CArchiveDialogTest::Show(std::make_unique<CDlgImportIMG>(Parts(), target), IDC_IMG_LIST);
    }
    void Open(const std::vector<ImgEntry>& entries)
    {
        const auto file = m_oFolder / "models.img";
        m_oDialogs.file = m_oFolder / "missing.img";
        WriteVersion2Archive(file, entries);
        m_oDialogs.file = file;
        Press(IDC_IMG_OPEN);
    }
    static std::vector<ImgEntry> SmallArchive()
    {
        return {{.name = "road.txd", .contents = Dictionary({"road", "kerb"})},
                {.name = "house.dff", .contents = Model({"road"})},
                {.name = "TREE.TXD", .contents = Dictionary({"leaf", "bark"}, 0x40)}};
    }
};

/// Whatever is asked is answered with No.
class ImportIMGDialogWithNo : public ImportIMGDialog {
protected:
    ImportIMGDialogWithNo() : ImportIMGDialog({PromptAnswer::No, PromptAnswer::No}) {}
};

}  // namespace

TEST_F(ImportIMGDialog, HasItsButtonsTheListAndTheStatusLine)
{
    Show();
    EXPECT_EQ(m_pDialog->Text(), L"Import IMG");
    EXPECT_EQ(TextOf(IDC_IMG_OPEN), L"&Open IMGs");
    EXPECT_EQ(TextOf(IDC_IMG_IMPORT_SELECTED), L"Import &Selected");
    EXPECT_EQ(TextOf(IDC_IMG_IMPORT_CHECKED), L"Import C&hecked");
    EXPECT_EQ(TextOf(IDC_IMG_CHECK_ALL), L"Check &All");
    EXPECT_EQ(TextOf(IDC_IMG_LIST_LABEL), L"Found TXDs:");
    EXPECT_TRUE(Control(IDC_IMG_LIST_LABEL).IsVisible());
    EXPECT_EQ(TextOf(IDC_IMG_STATUS), L"Click 'Open IMGs' to begin");
    EXPECT_THAT(Columns(), ElementsAre(L"File 220", L"Size 90", L"Offset 90"));
    EXPECT_THAT(SystemCommands(), ElementsAre(L"-", L"Export current file"));
    EXPECT_FALSE(Control(IDC_IMG_ADD).Exists());
    EXPECT_FALSE(Control(IDC_IMG_DELETE).Exists());
}

TEST_F(ImportIMGDialog, CanImportOnceAnArchiveIsOpen)
{
    Show();
    for (const int id : {IDC_IMG_IMPORT_SELECTED, IDC_IMG_IMPORT_CHECKED})
        EXPECT_FALSE(Control(id).IsEnabled());
    Press(IDC_IMG_OPEN);
    EXPECT_FALSE(Control(IDC_IMG_IMPORT_SELECTED).IsEnabled()) << "the question was cancelled";
    Open(SmallArchive());
    for (const int id : {IDC_IMG_IMPORT_SELECTED, IDC_IMG_IMPORT_CHECKED})
        EXPECT_TRUE(Control(id).IsEnabled());
}

TEST_F(ImportIMGDialog, AsksForOneArchive)
{
    Show();
    Press(IDC_IMG_OPEN);
    ASSERT_THAT(m_oDialogs.files, SizeIs(1));
    EXPECT_EQ(m_oDialogs.files[0].filter, L"GTA3 Archive (*.img)|*.img|All Files (*.*)|*.*|");
    EXPECT_FALSE(m_oDialogs.files[0].several);
}

TEST_F(ImportIMGDialog, ListsDictionariesWhateverTheCaseOfTheirExtension)
{
    Show();
    auto entries = SmallArchive();
    entries.push_back({.name = "txd", .contents = ImgBytes(8)});
    entries.push_back({.name = "a.txd.bak", .contents = ImgBytes(8)});
    Open(entries);
    // A name without a dot is all extension.
    EXPECT_THAT(Rows(), ElementsAre(L"road.txd|2.00 KB|0x00000800|", L"TREE.TXD|2.00 KB|0x00001800|",
                                    L"txd|2.00 KB|0x00002000|"));
    EXPECT_EQ(TextOf(IDC_IMG_STATUS), L"OK");
}

TEST_F(ImportIMGDialog, SaysThatThereAreNoDictionaries)
{
    Show();
    Open({{.name = "house.dff", .contents = Model({"road"})}});
    ASSERT_THAT(m_oPrompt.Shown(), SizeIs(1));
    EXPECT_EQ(m_oPrompt.Shown()[0].text, L"No TXDs found, bitch!");
    EXPECT_EQ(m_oPrompt.Shown()[0].caption, L"Error");
    EXPECT_EQ(m_oPrompt.Shown()[0].icon, PromptIcon::Warning);
    EXPECT_THAT(Rows(), IsEmpty());
    EXPECT_EQ(TextOf(IDC_IMG_STATUS), L"OK");
    EXPECT_TRUE(Control(IDC_IMG_IMPORT_CHECKED).IsEnabled());
}

TEST_F(ImportIMGDialog, SaysItAlsoOfAnArchiveThatCannotBeOpened)
{
    Show();
    m_oDialogs.file = m_oFolder / "missing.img";
    Press(IDC_IMG_OPEN);
    ASSERT_THAT(m_oPrompt.Shown(), SizeIs(1));
    EXPECT_EQ(m_oPrompt.Shown()[0].text, L"No TXDs found, bitch!");
}

TEST_F(ImportIMGDialog, ChecksEveryRowUnlessEveryRowIsChecked)
{
    Show();
    Open(SmallArchive());
    m_oList.SetChecked(0, true);
    Press(IDC_IMG_CHECK_ALL);
    EXPECT_THAT(Rows(), ElementsAre(StartsWith(L"x road.txd"), StartsWith(L"x TREE.TXD")));
    Press(IDC_IMG_CHECK_ALL);
    EXPECT_THAT(Rows(), ElementsAre(StartsWith(L"road.txd"), StartsWith(L"TREE.TXD")));
}

TEST_F(ImportIMGDialog, ImportsTheSelectedDictionaryAndEnablesItsButtonAgain)
{
    Show();
    Open(SmallArchive());
    Press(IDC_IMG_IMPORT_SELECTED);
    EXPECT_THAT(m_oDialogs.sources, IsEmpty());
    m_oList.Select(1);
    Press(IDC_IMG_IMPORT_SELECTED);
    ASSERT_THAT(m_oDialogs.sources, SizeIs(1));
    EXPECT_EQ(m_oDialogs.sources[0].title, L"TREE.TXD");
    EXPECT_EQ(m_oDialogs.sources[0].offset, 0x1800U);
    EXPECT_TRUE(Control(IDC_IMG_IMPORT_SELECTED).IsEnabled());
}

TEST_F(ImportIMGDialog, ImportsTheCheckedDictionariesInTheOrderOfTheList)
{
    Show();
    Open(SmallArchive());
    Press(IDC_IMG_IMPORT_CHECKED);
    EXPECT_THAT(Names(), IsEmpty()) << "no row is checked";
    Press(IDC_IMG_CHECK_ALL);
    Press(IDC_IMG_IMPORT_CHECKED);
    EXPECT_THAT(Names(), ElementsAre(L"road", L"kerb", L"leaf", L"bark"));
    EXPECT_EQ(m_pHost->refreshes, 1);
    EXPECT_EQ(TextOf(IDC_IMG_STATUS), L"Imported: 4, skipped: 0, failed: 0");
    EXPECT_THAT(m_oPrompt.Shown(), IsEmpty());
    EXPECT_THAT(Rows(), ElementsAre(StartsWith(L"x road.txd"), StartsWith(L"x TREE.TXD")));
}

TEST_F(ImportIMGDialog, TellsTheEditorWhichCacheIsShown)
{
    Show(CacheIndex::Pvrtc);
    Open(SmallArchive());
    m_oList.SetChecked(1, true);
    Press(IDC_IMG_IMPORT_CHECKED);
    ASSERT_THAT(m_pHost->records, SizeIs(2));
    const ImportRecord& record = m_pHost->records[0];
    EXPECT_EQ(record.targetCache, static_cast<std::int32_t>(CacheIndex::Pvrtc));
    EXPECT_EQ(record.cacheGiven, 0U) << "it goes into every open cache";
    EXPECT_EQ(record.noRefresh, 1U);
    EXPECT_EQ(record.format, ImportRecord::kFormatByRules);
    EXPECT_EQ(record.storeRgba8888, 1U);
    EXPECT_EQ(record.category, 0U);
}

TEST_F(ImportIMGDialog, AddsNothingTheSecondTime)
{
    Show();
    Open(SmallArchive());
    Press(IDC_IMG_CHECK_ALL);
    Press(IDC_IMG_IMPORT_CHECKED);
    const auto files = DatabaseFiles();
    Press(IDC_IMG_IMPORT_CHECKED);
    EXPECT_EQ(DatabaseFiles(), files);
    EXPECT_EQ(TextOf(IDC_IMG_STATUS), L"Imported: 0, skipped: 4, failed: 0");
    EXPECT_THAT(m_oPrompt.Shown(), IsEmpty()) << "existing names are skipped silently";
}

// Damaged archives.

TEST_F(ImportIMGDialogWithNo, GoesOnBehindABrokenDictionaryWhateverTheAnswer)
{
    Show();
    Open({{.name = "noise.txd", .contents = RwFile::Dictionary({RwFile::PCNative({.platform = 99})})},
          {.name = "tree.txd", .contents = Dictionary({"leaf"})}});
    Press(IDC_IMG_CHECK_ALL);
    Press(IDC_IMG_IMPORT_CHECKED);
    ASSERT_THAT(m_oPrompt.Shown(), SizeIs(1));
    const PromptBox& box = m_oPrompt.Shown()[0];
    EXPECT_EQ(box.text, L"This is not a valid PC texture.\n\nDo you want to continue?");
    EXPECT_EQ(box.caption, L"noise.txd");
    EXPECT_EQ(box.icon, PromptIcon::Error);
    EXPECT_EQ(box.buttons, PromptButtons::YesNo);
    EXPECT_THAT(Names(), ElementsAre(L"leaf"));
    EXPECT_EQ(TextOf(IDC_IMG_STATUS), L"Imported: 1, skipped: 0, failed: 1");
}

TEST_F(ImportIMGDialogWithNo, ImportsWhatWasReadOfABrokenDictionary)
{
    Show();
    Open({{.name = "half.txd", .contents = BrokenDictionary("good")},
          {.name = "tree.txd", .contents = Dictionary({"leaf"})}});
    Press(IDC_IMG_CHECK_ALL);
    Press(IDC_IMG_IMPORT_CHECKED);
    EXPECT_THAT(Names(), ElementsAre(L"good", L"leaf"));
    EXPECT_TRUE(m_pDialog->Exists());
}

TEST_F(ImportIMGDialogWithNo, SaysThatADictionaryLiesBehindTheEndOfTheArchive)
{
    Show();
    Open({{.name = "gone.txd", .offset = 0x1000, .size = 4},
          {.name = "tree.txd", .contents = Dictionary({"leaf"})}});
    Press(IDC_IMG_CHECK_ALL);
    Press(IDC_IMG_IMPORT_CHECKED);
    ASSERT_THAT(m_oPrompt.Shown(), SizeIs(1));
    EXPECT_EQ(m_oPrompt.Shown()[0].caption, L"gone.txd");
    EXPECT_THAT(Names(), ElementsAre(L"leaf"));
}

// Stopping.

TEST_F(ImportIMGDialog, IsBusyWhileItImports)
{
    Show();
    Open(SmallArchive());
    Press(IDC_IMG_CHECK_ALL);
    std::vector<std::wstring> seen;
    m_pHost->beforeImport = [this, &seen] {
        for (const int id :
             {IDC_IMG_OPEN, IDC_IMG_IMPORT_SELECTED, IDC_IMG_IMPORT_CHECKED, IDC_IMG_CHECK_ALL, IDC_IMG_LIST})
            EXPECT_FALSE(Control(id).IsEnabled()) << id;
        EXPECT_TRUE(Control(IDCANCEL).IsEnabled());
        EXPECT_EQ(TextOf(IDCANCEL), L"S&top");
        seen.push_back(TextOf(IDC_IMG_STATUS));
        // A second import within the first one must not start.
        Press(IDC_IMG_IMPORT_CHECKED);
    };
    Press(IDC_IMG_IMPORT_CHECKED);
    ASSERT_THAT(seen, SizeIs(4));
    EXPECT_THAT(seen[0], StartsWith(L"road.txd"));
    for (const int id :
         {IDC_IMG_OPEN, IDC_IMG_IMPORT_SELECTED, IDC_IMG_IMPORT_CHECKED, IDC_IMG_CHECK_ALL, IDC_IMG_LIST})
        EXPECT_TRUE(Control(id).IsEnabled()) << id;
    EXPECT_EQ(TextOf(IDCANCEL), L"&Close");
    EXPECT_EQ(Control(IDC_IMG_PROGRESS).Send(PBM_GETRANGE, FALSE), 2) << "two dictionaries";
}

TEST_F(ImportIMGDialog, StopsBetweenTwoTexturesAndStaysOpen)
{
    Show();
    Open(SmallArchive());
    Press(IDC_IMG_CHECK_ALL);
    m_pHost->beforeImport = [this] { Press(IDCANCEL); };
    Press(IDC_IMG_IMPORT_CHECKED);
    EXPECT_THAT(Names(), ElementsAre(L"road"));
    EXPECT_TRUE(m_pDialog->Exists());
    EXPECT_EQ(TextOf(IDC_IMG_STATUS), L"Imported: 1, skipped: 0, failed: 0");
    EXPECT_EQ(m_pHost->refreshes, 1) << "the editor shows what was imported";
    // The database is whole: the next run adds the rest.
    m_pHost->beforeImport = {};
    Press(IDC_IMG_IMPORT_CHECKED);
    EXPECT_THAT(Names(), ElementsAre(L"road", L"kerb", L"leaf", L"bark"));
    EXPECT_TRUE(m_pDatabase->IsTocValid(CacheIndex::Unc));
}

TEST_F(ImportIMGDialog, StopsAndClosesWithItsCross)
{
    Show();
    Open(SmallArchive());
    Press(IDC_IMG_CHECK_ALL);
    m_pHost->beforeImport = [this] { m_pDialog->Send(WM_CLOSE); };
    Press(IDC_IMG_IMPORT_CHECKED);
    EXPECT_THAT(Names(), ElementsAre(L"road"));
    ServePosted();
    EXPECT_FALSE(m_pDialog->Exists());
}

TEST_F(ImportIMGDialog, ImportsNothingWhenItIsStoppedAtOnce)
{
    Show();
    Open(SmallArchive());
    Press(IDC_IMG_CHECK_ALL);
    const auto files = DatabaseFiles();
    PressDuringTheNextWork(IDCANCEL);
    Press(IDC_IMG_IMPORT_CHECKED);
    EXPECT_THAT(Names(), IsEmpty());
    EXPECT_EQ(DatabaseFiles(), files);
}

TEST_F(ImportIMGDialog, ExportsTheSelectedDictionary)
{
    Show();
    Open(SmallArchive());
    m_oList.Select(1);
    m_oDialogs.file = m_oFolder / "tree.txd";
    ChooseSystemCommand(ID_IMG_EXPORT_CURRENT);
    EXPECT_EQ(m_oDialogs.files.back().proposedName, L"TREE.TXD");
    EXPECT_EQ(std::filesystem::file_size(m_oFolder / "tree.txd"), 2048U);
}

// The main window's command.

namespace {

class ImportIMGCommand : public CMainWindowTest {};

}  // namespace

TEST_F(ImportIMGCommand, OpensForTheCacheThatIsShown)
{
    Start();
    EXPECT_FALSE(Menu().IsEnabled(ID_IMPORT_IMG));
    OpenDatabase(SmallDatabase());
    EXPECT_TRUE(Menu().IsEnabled(ID_IMPORT_IMG));
    Command(ID_IMPORT_IMG);
    ClickTab(3);
    Command(ID_IMPORT_IMG);
    EXPECT_THAT(m_oDialogs.archiveImports, ElementsAre(CacheIndex::Dxt, CacheIndex::Unc));
    Command(ID_CLOSE);
    EXPECT_FALSE(Menu().IsEnabled(ID_IMPORT_IMG));
    Command(ID_IMPORT_IMG);
    EXPECT_THAT(m_oDialogs.archiveImports, SizeIs(2));
    EXPECT_EQ(Prompt().Shown().back().text, L"Load the cache first!");
}
