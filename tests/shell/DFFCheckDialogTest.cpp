#include <gmock/gmock.h>

#include "dialogs/DlgDFFCheck.h"
#include "tests/codec/TestDatabase.h"
#include "tests/shell/MainWindowFixture.h"
#include "tests/support/MemoryFileSystem.h"
#include "tests/support/RecordingFailures.h"
#include "tests/support/RenderWareFiles.h"
#include "ui/Dpi.h"

namespace {

using RwFile::Bytes;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* kFile = "house.dff";

/// Two geometries: "road" in both, "Wall" in the first and "wall" in the second.
Bytes House()
{
    const Bytes road = RwFile::Material({.textures = {"road"}});
    const Bytes upper = RwFile::Material({.textures = {"Wall"}});
    const Bytes lower = RwFile::Material({.textures = {"wall"}});
    return RwFile::Clump({RwFile::Geometry(RwFile::MaterialList({road, upper})),
                          RwFile::Geometry(RwFile::MaterialList({lower, road}))});
}

class CDFFCheckDialog : public testing::Test {
protected:
    CDFFCheckDialog() : m_oResources(::GetModuleHandleW(nullptr)), m_oDatabase({CacheIndex::Unc})
    {
        m_oDatabase.Add(L"ROAD", {});
    }

    /// Opens the dialog without waiting for its end; false when it closed at once.
    bool Open(const std::filesystem::path& file, const CTextureDatabase* database)
    {
        return OpenWith(m_oPrompt, file, database);
    }
    bool OpenWith(IPrompt& prompt, const std::filesystem::path& file, const CTextureDatabase* database)
    {
        m_pDialog.reset();
        m_pDialog = std::make_unique<CDlgDFFCheck>(
            DFFCheckParts{m_oResources, prompt, m_oDialogs, m_oFailures, m_oFiles}, file, database);
        if (!m_pDialog->Create(m_oResources.Current(), nullptr) || !m_pDialog->Exists())
            return false;
        m_pDialog->Show(true);
        m_oList.Attach(m_pDialog->Child(IDC_DFF_LIST).Handle());
        m_oTree.Attach(m_pDialog->Child(IDC_DFF_TREE).Handle());
        return true;
    }
    bool OpenModel(const Bytes& model)
    {
        m_oFiles.Put(kFile, model);
        return Open(kFile, &*m_oDatabase);
    }
    void Press(int button) const { m_pDialog->Send(WM_COMMAND, static_cast<WPARAM>(button)); }
    /// Edits a row as the person does who presses F2, types and presses Enter.
    void Rename(int row, const std::wstring& name) const
    {
        m_oList.Focus();
        m_oList.EditLabel(row);
        const CWindow editor = m_oList.LabelEditor();
        ASSERT_TRUE(editor.Exists());
        editor.SetText(name);
        editor.Send(WM_KEYDOWN, VK_RETURN);
        ServePosted();
    }
    void GiveUpRename(int row, const std::wstring& typed) const
    {
        m_oList.Focus();
        m_oList.EditLabel(row);
        const CWindow editor = m_oList.LabelEditor();
        ASSERT_TRUE(editor.Exists());
        editor.SetText(typed);
        editor.Send(WM_KEYDOWN, VK_ESCAPE);
        ServePosted();
    }
    static void ServePosted()
    {
        MSG message{};
        while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
            ::DispatchMessageW(&message);
    }
    std::vector<std::wstring> Rows() const
    {
        std::vector<std::wstring> rows;
        for (int row = 0; row < m_oList.Count(); ++row)
            rows.push_back(m_oList.ItemText(row, 0) + L": " + m_oList.ItemText(row, 1) + L" " +
                           std::to_wstring(m_oList.Data(row)));
        return rows;
    }
    std::wstring Plain(int control) const
    {
        std::wstring text = m_pDialog->Child(control).Text();
        std::erase(text, L'&');
        return text;
    }
    bool CanPress(int button) const { return m_pDialog->Child(button).IsEnabled(); }

    CResources m_oResources;
    CTestDatabase m_oDatabase;
    CMemoryFileSystem m_oFiles;
    CRecordingFailures m_oFailures;
    CScriptedPrompt m_oPrompt;
    CScriptedDialogs m_oDialogs;
    std::unique_ptr<CDlgDFFCheck> m_pDialog;
    CListView m_oList;
    CTreeView m_oTree;
};

// ---- Opening ----

TEST_F(CDFFCheckDialog, ListsEveryNameOnceAndWhetherTheDatabaseHasIt)
{
    ASSERT_TRUE(OpenModel(House())) << "a display is needed";
    EXPECT_EQ(m_pDialog->Text(), L"DFF Checking - 'house.dff'");
    EXPECT_THAT(Rows(), ElementsAre(L"road: OK 0", L"Wall: Not Found -1", L"wall: Not Found -1"));
    EXPECT_EQ(m_pDialog->Child(IDC_DFF_VERSION).Text(), L"RW Version: 0x1803FFFF");
    EXPECT_TRUE(CanPress(IDC_DFF_SAVE_AS));
    EXPECT_TRUE(CanPress(IDC_DFF_SAVE_TEXT));
    EXPECT_THAT(m_oFailures.Lines(), IsEmpty());
}

TEST_F(CDFFCheckDialog, CarriesTheTextsOfItsControls)
{
    ASSERT_TRUE(OpenModel(House()));
    EXPECT_EQ(Plain(IDC_DFF_LIST_LABEL), L"Textures:");
    EXPECT_EQ(Plain(IDC_DFF_TREE_LABEL), L"RW Stream structure:");
    EXPECT_EQ(Plain(IDC_DFF_SHOW_TREE), L"Show RW Stream");
    EXPECT_EQ(Plain(IDC_DFF_SAVE_TEXT), L"Save as Plain Text");
    EXPECT_EQ(Plain(IDC_DFF_SAVE_AS), L"Save As...");
    EXPECT_EQ(Plain(IDCANCEL), L"Cancel");
    const int dpi = DpiOf(m_pDialog->Handle());
    EXPECT_EQ(m_oList.ColumnText(0), L"Texture");
    EXPECT_EQ(m_oList.ColumnText(1), L"State");
    EXPECT_EQ(::MulDiv(m_oList.ColumnWidth(0), USER_DEFAULT_SCREEN_DPI, dpi), 240);
    EXPECT_EQ(::MulDiv(m_oList.ColumnWidth(1), USER_DEFAULT_SCREEN_DPI, dpi), 100);
}

TEST_F(CDFFCheckDialog, SaysThatNoCacheIsLoaded)
{
    m_oFiles.Put(kFile, House());
    ASSERT_TRUE(Open(kFile, nullptr));
    EXPECT_THAT(Rows(), ElementsAre(L"road: Cache not loaded -1", L"Wall: Cache not loaded -1",
                                    L"wall: Cache not loaded -1"));
}

TEST_F(CDFFCheckDialog, ListsTheNameInALargeExtension)
{
    const Bytes large = RwFile::EffectExtension("chrome", 89);
    const Bytes small = RwFile::EffectExtension("gloss", 88);
    ASSERT_TRUE(OpenModel(RwFile::Model(
        {{.textures = {"road"}, .extension = large}, {.textures = {"road"}, .extension = small}})));
    EXPECT_THAT(Rows(), ElementsAre(L"road: OK 0", L"chrome: Not Found -1"));
}

TEST_F(CDFFCheckDialog, ShowsTheSectionsOfTheModel)
{
    ASSERT_TRUE(OpenModel(House()));
    const HTREEITEM root = m_oTree.Root();
    EXPECT_THAT(m_oTree.ItemText(root), testing::StartsWith(L"Clump (0xC, "));
    EXPECT_TRUE(m_oTree.HasState(root, TVIS_EXPANDED));
    EXPECT_FALSE(m_oTree.IsVisible());
    const RECT before = m_pDialog->WindowRect();
    Press(IDC_DFF_SHOW_TREE);
    EXPECT_TRUE(m_oTree.IsVisible());
    const RECT after = m_pDialog->WindowRect();
    EXPECT_EQ((after.right - after.left) - (before.right - before.left),
              CScale(DpiOf(m_pDialog->Handle()))(350));
}

TEST_F(CDFFCheckDialog, ShowsADictionaryWithoutItsTextures)
{
    ASSERT_TRUE(OpenModel(RwFile::Dictionary({RwFile::PCNative({.name = "road"})})));
    EXPECT_THAT(Rows(), IsEmpty());
    EXPECT_THAT(m_oTree.ItemText(m_oTree.Root()), testing::StartsWith(L"Texture Dictionary (0xC, "));
    EXPECT_FALSE(CanPress(IDC_DFF_SAVE_AS));
    EXPECT_FALSE(CanPress(IDC_DFF_SAVE_TEXT));
}

TEST_F(CDFFCheckDialog, ShowsOnlyTheSectionsOfAnyOtherFile)
{
    ASSERT_TRUE(OpenModel(RwFile::Section(0x2B, RwFile::Counting(8))));
    EXPECT_THAT(Rows(), IsEmpty());
    EXPECT_FALSE(CanPress(IDC_DFF_SAVE_AS));
}

TEST_F(CDFFCheckDialog, SaysWhatIsWrongWithAFileAndCloses)
{
    EXPECT_FALSE(Open("missing.dff", nullptr));
    EXPECT_FALSE(OpenModel(RwFile::Dictionary({RwFile::PS2Native({})}))) << "a dictionary of the PC is read";
    ASSERT_THAT(m_oPrompt.Shown(), SizeIs(2));
    EXPECT_EQ(m_oPrompt.Shown()[0].caption, L"Error");
    EXPECT_FALSE(m_oPrompt.Shown()[1].text.empty());
}

TEST_F(CDFFCheckDialog, OpensOrRefusesEveryTruncation)
{
    const Bytes whole = House();
    for (std::size_t length = 0; length < whole.size(); length += 7) {
        const std::size_t boxes = m_oPrompt.Shown().size();
        const bool opened = OpenModel({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)});
        EXPECT_NE(opened, m_oPrompt.Shown().size() == boxes + 1) << length;
    }
}

// ---- Renaming ----

TEST_F(CDFFCheckDialog, RenamesATextureInEveryMaterialThatStoresExactlyThatName)
{
    ASSERT_TRUE(OpenModel(House()));
    Rename(1, L"road");
    EXPECT_THAT(Rows(), ElementsAre(L"road: OK 0", L"road: OK 0", L"wall: Not Found -1"));
    Rename(0, L"gravel_12");
    EXPECT_EQ(Rows()[0], L"gravel_12: Not Found -1");
    EXPECT_THAT(m_oPrompt.Shown(), IsEmpty());
}

TEST_F(CDFFCheckDialog, RefusesAnEmptyName)
{
    ASSERT_TRUE(OpenModel(House()));
    Rename(0, L"");
    ASSERT_THAT(m_oPrompt.Shown(), SizeIs(1));
    EXPECT_EQ(m_oPrompt.Shown()[0].text, L"Name should not be empty.");
    EXPECT_EQ(m_oPrompt.Shown()[0].caption, L"Error");
    EXPECT_EQ(m_oPrompt.Shown()[0].icon, PromptIcon::Error);
    EXPECT_EQ(Rows()[0], L"road: OK 0");
}

TEST_F(CDFFCheckDialog, LeavesEverythingAsItIsWhenTheNameIsTheSameOrTheEditIsGivenUp)
{
    ASSERT_TRUE(OpenModel(House()));
    Rename(0, L"road");
    GiveUpRename(0, L"other");
    GiveUpRename(0, L"");
    EXPECT_THAT(m_oPrompt.Shown(), IsEmpty());
    EXPECT_EQ(Rows()[0], L"road: OK 0");
    m_oDialogs.file = "saved.dff";
    Press(IDC_DFF_SAVE_AS);
    const Bytes whole = House();
    const Bytes* const saved = m_oFiles.Find("saved.dff");
    ASSERT_NE(saved, nullptr);
    ASSERT_EQ(saved->size(), whole.size() + 12);
    EXPECT_TRUE(std::equal(whole.begin(), whole.end(), saved->begin()));
}

TEST_F(CDFFCheckDialog, AsksBeforeItClosesWithUnsavedNames)
{
    CScriptedPrompt prompt({PromptAnswer::No, PromptAnswer::Yes});
    m_oFiles.Put(kFile, House());
    ASSERT_TRUE(OpenWith(prompt, kFile, nullptr));
    Rename(0, L"gravel");
    Press(IDCANCEL);
    ASSERT_TRUE(m_pDialog->Exists());
    ASSERT_THAT(prompt.Shown(), SizeIs(1));
    EXPECT_EQ(prompt.Shown()[0].text, L"The new texture names have not been saved. Close anyway?");
    EXPECT_EQ(prompt.Shown()[0].caption, L"Mavrel");
    EXPECT_EQ(prompt.Shown()[0].icon, PromptIcon::Warning);
    EXPECT_EQ(prompt.Shown()[0].proposed, PromptAnswer::No);
    Press(IDCANCEL);
    EXPECT_FALSE(m_pDialog->Exists());
    EXPECT_TRUE(prompt.ScriptIsFinished());
}

TEST_F(CDFFCheckDialog, ClosesAtOnceWhenTheNamesAreSaved)
{
    ASSERT_TRUE(OpenModel(House()));
    Rename(0, L"gravel");
    m_oDialogs.file = "saved.dff";
    Press(IDC_DFF_SAVE_AS);
    Press(IDCANCEL);
    EXPECT_FALSE(m_pDialog->Exists());
    EXPECT_THAT(m_oPrompt.Shown(), IsEmpty());
}

TEST_F(CDFFCheckDialog, StartsARenameOnF2)
{
    ASSERT_TRUE(OpenModel(House()));
    m_oList.Focus();
    m_oList.Send(WM_KEYDOWN, VK_F2);
    EXPECT_NE(m_oList.Send(LVM_GETEDITCONTROL), 0);
}

// ---- Saving ----

TEST_F(CDFFCheckDialog, SavesTheModelUnderANewName)
{
    ASSERT_TRUE(OpenModel(RwFile::Model({{.textures = {"tree"}}, {.textures = {"tree"}}})));
    Rename(0, L"oak");
    m_oDialogs.file = "saved.dff";
    Press(IDC_DFF_SAVE_AS);
    ASSERT_THAT(m_oDialogs.files, SizeIs(1));
    EXPECT_EQ(m_oDialogs.files[0].defaultExtension, L"dff");
    EXPECT_EQ(m_oDialogs.files[0].filter, L"RenderWare Model File (*.dff)|*.dff|All files (*.*)|*.*|");
    EXPECT_EQ(m_oDialogs.files[0].proposedName, L"house.dff");
    EXPECT_TRUE(m_oDialogs.files[0].asksToReplace);
    EXPECT_THAT(m_oPrompt.Shown(), IsEmpty());
    ASSERT_TRUE(Open("saved.dff", nullptr));
    EXPECT_THAT(Rows(), ElementsAre(L"o: Cache not loaded -1")) << "three characters are stored as one byte";
}

TEST_F(CDFFCheckDialog, SavesOverItsOwnFileAndStaysUsable)
{
    ASSERT_TRUE(OpenModel(House()));
    m_oDialogs.file = kFile;
    Press(IDC_DFF_SAVE_AS);
    EXPECT_EQ(m_oFiles.Find(kFile)->size(), House().size() + 12);
    Rename(2, L"roof");
    Press(IDC_DFF_SAVE_AS);
    EXPECT_THAT(m_oPrompt.Shown(), IsEmpty());
}

TEST_F(CDFFCheckDialog, SaysWhyTheModelCouldNotBeSaved)
{
    const CTemporaryFolder folder;
    ASSERT_TRUE(OpenModel(House()));
    m_pDialog.reset();
    WriteFiles(folder.Path(), {{"house.dff", House()}});
    CDlgDFFCheck dialog({m_oResources, m_oPrompt, m_oDialogs, m_oFailures, DiskFileSystem()},
                        folder / "house.dff", nullptr);
    ASSERT_TRUE(dialog.Create(m_oResources.Current(), nullptr));
    m_oDialogs.file = folder / "nowhere" / "house.dff";
    dialog.Send(WM_COMMAND, IDC_DFF_SAVE_AS);
    dialog.Send(WM_COMMAND, IDC_DFF_SAVE_TEXT);
    ASSERT_THAT(m_oPrompt.Shown(), SizeIs(2));
    EXPECT_EQ(m_oPrompt.Shown()[0].text, L"Can't open output file.");
    EXPECT_EQ(m_oPrompt.Shown()[0].caption, L"Error");
    EXPECT_EQ(m_oPrompt.Shown()[1].text, L"Unknown error");
    EXPECT_EQ(m_oPrompt.Shown()[1].caption, L"Error");
}

TEST_F(CDFFCheckDialog, SavesTheNamesOfTheFirstGeometryAsText)
{
    ASSERT_TRUE(OpenModel(House()));
    m_oDialogs.file = "names.txt";
    Press(IDC_DFF_SAVE_TEXT);
    ASSERT_THAT(m_oDialogs.files, SizeIs(1));
    EXPECT_EQ(m_oDialogs.files[0].defaultExtension, L"txt");
    EXPECT_EQ(m_oDialogs.files[0].filter, L"Text File (*.txt)|*.txt|All Files (*.*)|*.*|");
    EXPECT_EQ(m_oDialogs.files[0].proposedName, L"house");
    ASSERT_NE(m_oFiles.Find("names.txt"), nullptr);
    EXPECT_EQ(TextOf(*m_oFiles.Find("names.txt")), "road\nWall\n");
}

TEST_F(CDFFCheckDialog, SavesNothingWhenTheFileDialogIsCancelled)
{
    ASSERT_TRUE(OpenModel(House()));
    Press(IDC_DFF_SAVE_AS);
    Press(IDC_DFF_SAVE_TEXT);
    EXPECT_THAT(m_oDialogs.files, SizeIs(2));
    EXPECT_THAT(m_oPrompt.Shown(), IsEmpty());
    Press(IDCANCEL);
    EXPECT_FALSE(m_pDialog->Exists());
}

// ---- From the main window ----

class CCheckDFFCommand : public CMainWindowTest {};

TEST_F(CCheckDFFCommand, WorksWithAndWithoutADatabase)
{
    Start();
    EXPECT_TRUE(Menu().IsEnabled(ID_CHECK_DFF));
    m_oDialogs.file = m_oFolder / "house.dff";
    Command(ID_CHECK_DFF);
    OpenDatabase(SmallDatabase());
    Command(ID_CHECK_DFF);
    ASSERT_THAT(m_oDialogs.files, SizeIs(2));
    EXPECT_EQ(m_oDialogs.files[0].filter, L"RenderWare Model File (*.dff)|*.dff|All files (*.*)|*.*|");
    EXPECT_THAT(m_oDialogs.models,
                ElementsAre(std::pair(*m_oDialogs.file, false), std::pair(*m_oDialogs.file, true)));
    m_oDialogs.file.reset();
    Command(ID_CHECK_DFF);
    EXPECT_THAT(m_oDialogs.models, SizeIs(2)) << "cancelled";
}

}  // namespace
