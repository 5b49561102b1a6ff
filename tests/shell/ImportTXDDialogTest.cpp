#include <algorithm>
#include <functional>
#include <gmock/gmock.h>

#include "base/Format.h"
#include "dialogs/DlgImportTXD.h"
#include "tests/codec/TestDatabase.h"
#include "tests/shell/MainWindowFixture.h"
#include "tests/support/MemoryFileSystem.h"
#include "tests/support/RecordingFailures.h"
#include "tests/support/RenderWareFiles.h"
#include "ui/Dpi.h"
#include "ui/Menu.h"

namespace {

using RwFile::Bytes;
using RwFile::Dictionary;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* kFile = "roads.txd";

/// A square of 32 bits a pixel, every byte of it `shade`, alpha too.
Bytes Shade(const std::string& name, std::uint8_t shade, std::uint16_t side = 4)
{
    return RwFile::PCNative({.name = name,
                             .rasterFormat = 0x500,
                             .width = side,
                             .height = side,
                             .depth = 32,
                             .pixels = RwFile::Filled(std::size_t{side} * side * 4, shade)});
}

/// Its pixels claim more bytes than there are.
Bytes CutShort(const std::string& name)
{
    return RwFile::PCNative({.name = name,
                             .rasterFormat = 0x500,
                             .width = 64,
                             .height = 64,
                             .depth = 32,
                             .pixels = RwFile::Filled(16, 0x10)});
}

/// Counts how often the database is shown anew; nothing else is asked of it.
class CRefreshedHost final : public IEditorHost {
public:
    void Import(const CBitmap*, ImportRecord&) override { ADD_FAILURE(); }
    void Show(const std::wstring&, const CBitmap*) override { ADD_FAILURE(); }
    void Select(std::uint32_t) override { ADD_FAILURE(); }
    void Refresh() override { ++refreshes; }
    std::unique_ptr<CBitmap> Decode(std::uint32_t, CacheIndex) override { return nullptr; }

    int refreshes = 0;
};

/// Lets a test look at the dialog while a box is open.
class CWatchedPrompt final : public IPrompt {
public:
    PromptAnswer Show(const PromptBox& box) override
    {
        shown.push_back(box);
        if (whileShown)
            whileShown();
        if (box.buttons == PromptButtons::Ok)
            return PromptAnswer::Ok;
        if (answers.empty()) {
            ADD_FAILURE() << "unexpected question: " << ToUtf8(box.text);
            return PromptAnswer::No;
        }
        const PromptAnswer answer = answers.front();
        answers.pop_front();
        return answer;
    }
    std::vector<std::wstring> Texts() const
    {
        std::vector<std::wstring> texts;
        for (const PromptBox& box : shown)
            texts.push_back(box.text);
        return texts;
    }

    std::vector<PromptBox> shown;
    std::deque<PromptAnswer> answers;
    std::function<void()> whileShown;
};

class CImportTXDDialog : public testing::Test {
protected:
    CImportTXDDialog() : m_oResources(::GetModuleHandleW(nullptr)), m_oDatabase({CacheIndex::Unc})
    {
        m_oDatabase.Settings().WriteInt(L"global", L"enable_mipmaps", 0);
        m_oDatabase.Settings().WriteInt(L"global", L"enable_img_hash", 0);
    }

    /// Opens the dialog without waiting for its end; false when it closed at once.
    bool Open(const DictionarySource& source, std::uint32_t category = 0)
    {
        m_pDialog.reset();
        m_pDialog = std::make_unique<CDlgImportTXD>(
            ImportTXDParts{m_oResources,
                           {*m_oDatabase, m_oDatabase.Plugins(), m_oDatabase.Settings(), m_oHost},
                           m_oPrompt,
                           m_oDialogs,
                           m_oFailures,
                           m_oFiles},
            source, category);
        if (!m_pDialog->Create(m_oResources.Current(), nullptr) || !m_pDialog->Exists())
            return false;
        m_pDialog->Show(true);
        m_oList.Attach(m_pDialog->Child(IDC_TXD_LIST).Handle());
        m_oTree.Attach(m_pDialog->Child(IDC_TXD_TREE).Handle());
        return true;
    }
    bool OpenFile(const Bytes& file)
    {
        m_oFiles.Put(kFile, file);
        return Open(DictionaryFile(kFile));
    }
    void OpenShades(const std::vector<Bytes>& natives)
    {
        ASSERT_TRUE(OpenFile(Dictionary(natives))) << "a display is needed";
    }
    void Press(int button) const { m_pDialog->Send(WM_COMMAND, static_cast<WPARAM>(button)); }
    bool IsOpen() const { return m_pDialog->Exists(); }
    std::wstring TextOf(int control) const { return m_pDialog->Child(control).Text(); }
    LRESULT BarPosition() const { return m_pDialog->Child(IDC_TXD_PROGRESS).Send(PBM_GETPOS); }

    std::vector<std::wstring> Rows() const
    {
        std::vector<std::wstring> rows;
        for (int row = 0; row < m_oList.Count(); ++row) {
            std::wstring text = m_oList.IsChecked(row) ? L"+" : L"-";
            for (int column = 0; column < m_oList.ColumnCount(); ++column)
                text += L"|" + m_oList.ItemText(row, column);
            rows.push_back(text);
        }
        return rows;
    }
    std::vector<std::wstring> Sections(HTREEITEM first, const std::wstring& indent = L"") const
    {
        std::vector<std::wstring> lines;
        for (HTREEITEM item = first; item != nullptr; item = m_oTree.NextSibling(item)) {
            lines.push_back(indent + m_oTree.ItemText(item));
            for (const std::wstring& line : Sections(m_oTree.FirstChild(item), indent + L" "))
                lines.push_back(line);
        }
        return lines;
    }
    std::vector<std::wstring> Names()
    {
        std::vector<std::wstring> names;
        for (std::uint32_t index = 0; index < m_oDatabase->EntryCount(); ++index)
            names.push_back(m_oDatabase->Entry(index).name);
        return names;
    }
    std::uint8_t ShadeOf(std::uint32_t index)
    {
        return std::to_integer<std::uint8_t>(
            m_oDatabase->ReadRaster(index, CacheIndex::Unc, RecordKind::Raster).value().at(0));
    }
    /// Puts textures into the database by the dialog itself.
    void Import(const std::vector<Bytes>& natives)
    {
        OpenShades(natives);
        Press(IDOK);
        ASSERT_FALSE(IsOpen());
        m_oPrompt.shown.clear();
        m_oHost.refreshes = 0;
    }

    CResources m_oResources;
    CTestDatabase m_oDatabase;
    CMemoryFileSystem m_oFiles;
    CRecordingFailures m_oFailures;
    CRefreshedHost m_oHost;
    CWatchedPrompt m_oPrompt;
    CScriptedDialogs m_oDialogs;
    std::unique_ptr<CDlgImportTXD> m_pDialog;
    CListView m_oList;
    CTreeView m_oTree;
};

// ---- Opening ----

TEST_F(CImportTXDDialog, ListsTheTexturesWithSizesAndFormats)
{
    OpenShades({Shade("road", 1), Shade("wall", 2, 16)});
    EXPECT_EQ(m_pDialog->Text(), L"Import TXD - 'roads.txd'");
    EXPECT_THAT(Rows(), ElementsAre(L"+|road|4 x 4|32 bpp", L"+|wall|16 x 16|32 bpp"));
    EXPECT_EQ(m_oList.ColumnText(0), L"Texture");
    EXPECT_EQ(m_oList.ColumnText(1), L"Dimensions");
    EXPECT_EQ(m_oList.ColumnText(2), L"Info");
    EXPECT_EQ(m_oList.Data(1), 1);
    EXPECT_EQ(TextOf(IDC_TXD_COUNTER), L"0 / 0");
    EXPECT_EQ(m_oHost.refreshes, 0);
}

TEST_F(CImportTXDDialog, CarriesTheTextsOfItsControls)
{
    OpenShades({});
    const auto plain = [this](int control) {
        std::wstring text = TextOf(control);
        std::erase(text, L'&');
        return text;
    };
    EXPECT_EQ(plain(IDOK), L"Import");
    EXPECT_EQ(plain(IDCANCEL), L"Cancel");
    EXPECT_EQ(plain(IDC_TXD_LIST_LABEL), L"Found textures:");
    EXPECT_EQ(plain(IDC_TXD_TREE_LABEL), L"RW Stream Structure:");
    EXPECT_EQ(plain(IDC_TXD_SHOW_TREE), L"Show RW Stream");
    EXPECT_EQ(plain(IDC_TXD_CHECK_ALL), L"Check All");
    const auto styles = static_cast<DWORD>(m_oList.Send(LVM_GETEXTENDEDLISTVIEWSTYLE));
    EXPECT_EQ(styles & (LVS_EX_CHECKBOXES | LVS_EX_GRIDLINES | LVS_EX_FULLROWSELECT),
              static_cast<DWORD>(LVS_EX_CHECKBOXES | LVS_EX_GRIDLINES | LVS_EX_FULLROWSELECT));
}

TEST_F(CImportTXDDialog, HasColumnsThatFitTheirContent)
{
    const auto width = [this](int column) {
        return ::MulDiv(m_oList.ColumnWidth(column), USER_DEFAULT_SCREEN_DPI, DpiOf(m_pDialog->Handle()));
    };
    OpenShades({});
    EXPECT_EQ(width(0), 160);
    EXPECT_EQ(width(1), 90);
    EXPECT_EQ(width(2), 90);
    OpenShades({Shade("a_name_of_thirty-one_characters", 1)});
    EXPECT_GT(m_oList.ColumnWidth(0), m_oList.TextWidth(L"a_name_of_thirty-one_characters"));
    int all = 0;
    for (int column = 0; column < 3; ++column)
        all += m_oList.ColumnWidth(column);
    EXPECT_LE(all, m_oList.ClientRect().right) << "every column is in sight";
}

TEST_F(CImportTXDDialog, ChecksWhatTheDatabaseLacksWhateverItsCase)
{
    Import({Shade("Wall", 1)});
    OpenShades({Shade("road", 1), Shade("wALL", 2), Shade("tree", 3)});
    EXPECT_TRUE(m_oList.IsChecked(0));
    EXPECT_FALSE(m_oList.IsChecked(1));
    EXPECT_TRUE(m_oList.IsChecked(2));
}

TEST_F(CImportTXDDialog, ClearsEveryBoxWhenAllTexturesExist)
{
    Import({Shade("road", 1), Shade("wall", 2)});
    OpenShades({Shade("wall", 3), Shade("road", 4)});
    EXPECT_THAT(Rows(), ElementsAre(L"-|wall|4 x 4|32 bpp", L"-|road|4 x 4|32 bpp"));
}

TEST_F(CImportTXDDialog, ShowsTheVersionOfTheRoot)
{
    OpenShades({Shade("road", 1)});
    EXPECT_EQ(TextOf(IDC_TXD_VERSION), L"RW Version: 0x1803FFFF");
}

TEST_F(CImportTXDDialog, ShowsEverySectionWithItsPlaceAndSize)
{
    ASSERT_TRUE(OpenFile(Dictionary({RwFile::PS2Native({.name = "road"})})));
    EXPECT_THAT(Sections(m_oTree.Root()),
                ElementsAre(L"Texture Dictionary (0xC, 272 bytes) ", L" Struct (0x18, 4 bytes) ",
                            L" Texture Native (0x28, 232 bytes) ", L"  Struct (0x34, 8 bytes) ",
                            L"  String (0x48, 8 bytes) \"road\"", L"  String (0x5C, 4 bytes) \"\"",
                            L"  Struct (0x6C, 152 bytes) ", L"   Struct (0x78, 64 bytes) ",
                            L"   Struct (0xC4, 64 bytes) ", L"  Extension (0x110, 0 bytes) ",
                            L" Extension (0x11C, 0 bytes) "));
    EXPECT_TRUE(m_oTree.HasState(m_oTree.Root(), TVIS_EXPANDED));
}

TEST_F(CImportTXDDialog, CutsASectionTreeThatNobodyCouldLookThrough)
{
    const Bytes empty = RwFile::EmptyExtension();
    Bytes many;
    for (int section = 0; section < 20'500; ++section)
        many.insert(many.end(), empty.begin(), empty.end());
    ASSERT_TRUE(OpenFile(RwFile::Section(
        0x16, RwFile::Joined({RwFile::Struct(RwFile::Words({0})), RwFile::Section(0x03, many)}))));
    EXPECT_EQ(m_oTree.Send(TVM_GETCOUNT), 20'001);
}

TEST_F(CImportTXDDialog, TakesItsTitleFromTheArchiveEntry)
{
    Bytes archive = RwFile::Filled(2048, 0x77);
    const Bytes dictionary = Dictionary({Shade("road", 1)});
    archive.insert(archive.end(), dictionary.begin(), dictionary.end());
    m_oFiles.Put("models.img", archive);
    const auto file = m_oFiles.Open("models.img", OpenMode::Read);
    ASSERT_TRUE(Open(DictionaryInArchive(*file, 2048, L"roads.txd")));
    EXPECT_EQ(m_pDialog->Text(), L"Import TXD - 'roads.txd'");
    EXPECT_THAT(Rows(), SizeIs(1));
    Press(IDOK);
    EXPECT_THAT(Names(), ElementsAre(L"road"));
    std::byte first{};
    EXPECT_EQ(file->ReadAt(0, {&first, 1}), 1U) << "the archive stays open";
}

TEST_F(CImportTXDDialog, ReadsTheDictionariesOfAllPlatforms)
{
    ASSERT_TRUE(OpenFile(Dictionary({RwFile::PCNative({.name = "pc", .rasterFormat = 0x500})})));
    EXPECT_EQ(m_oList.ItemText(0, 0), L"pc");
    ASSERT_TRUE(OpenFile(Dictionary({RwFile::PS2Native({.name = "console"})})));
    EXPECT_EQ(m_oList.ItemText(0, 0), L"console");
    ASSERT_TRUE(OpenFile(Dictionary({RwFile::MobileNative({.name = "phone"})})));
    EXPECT_EQ(m_oList.ItemText(0, 0), L"phone");
    EXPECT_THAT(m_oPrompt.shown, IsEmpty());
}

TEST_F(CImportTXDDialog, OpensAnEmptyDictionary)
{
    OpenShades({});
    EXPECT_EQ(m_oList.Count(), 0);
    EXPECT_EQ(TextOf(IDC_TXD_VERSION), L"RW Version: 0x1803FFFF");
    const CMenu menu(::GetSystemMenu(m_pDialog->Handle(), FALSE));
    EXPECT_FALSE(menu.IsEnabled(ID_TXD_EXPORT_ALL));
}

// ---- Files that cannot be read ----

TEST_F(CImportTXDDialog, SaysWhatIsWrongWithAFileAndCloses)
{
    EXPECT_FALSE(OpenFile(RwFile::Section(0x10, RwFile::EmptyExtension())));
    EXPECT_FALSE(Open(DictionaryFile("missing.txd")));
    ASSERT_THAT(m_oPrompt.shown, SizeIs(2));
    for (const PromptBox& box : m_oPrompt.shown) {
        EXPECT_EQ(box.caption, L"Error");
        EXPECT_EQ(box.icon, PromptIcon::Error);
        EXPECT_FALSE(box.text.empty());
    }
    EXPECT_FALSE(m_pDialog->Exists());
}

TEST_F(CImportTXDDialog, OpensOrRefusesEveryTruncation)
{
    const Bytes whole = Dictionary({Shade("road", 1), Shade("wall", 2)});
    for (std::size_t length = 0; length < whole.size(); length += 3) {
        m_oPrompt.shown.clear();
        const bool opened = OpenFile({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)});
        EXPECT_NE(opened, m_oPrompt.shown.size() == 1) << length;
    }
}

TEST_F(CImportTXDDialog, ShowsWhatIsThereOfADictionaryThatClaimsMore)
{
    ASSERT_TRUE(OpenFile(Dictionary({Shade("road", 1)}, 3)));
    EXPECT_THAT(Rows(), SizeIs(1));
    EXPECT_THAT(m_oFailures.Lines(), ElementsAre(L"Wrong section ID. (370)"));
}

// ---- The tree ----

TEST_F(CImportTXDDialog, BecomesWiderForTheTreeAndNarrowWithoutIt)
{
    OpenShades({Shade("road", 1)});
    const CWindow tree = m_oTree;
    const auto width = [this] {
        const RECT place = m_pDialog->WindowRect();
        return place.right - place.left;
    };
    const LONG narrow = width();
    const RECT list = m_oList.WindowRect();
    EXPECT_FALSE(tree.IsVisible());
    Press(IDC_TXD_SHOW_TREE);
    EXPECT_TRUE(tree.IsVisible());
    EXPECT_EQ(width(), narrow + CScale(DpiOf(m_pDialog->Handle()))(350));
    EXPECT_EQ(m_oList.WindowRect().right - m_oList.WindowRect().left, list.right - list.left);
    EXPECT_GT(tree.WindowRect().left, m_oList.WindowRect().right);
    EXPECT_LT(tree.WindowRect().right, m_pDialog->WindowRect().right);
    Press(IDC_TXD_SHOW_TREE);
    EXPECT_FALSE(tree.IsVisible());
    EXPECT_EQ(width(), narrow);
}

TEST_F(CImportTXDDialog, GrowsItsListWithTheWindow)
{
    OpenShades({Shade("road", 1)});
    const auto height = [this] { return m_oList.ClientRect().bottom; };
    const int before = height();
    RECT place = m_pDialog->WindowRect();
    place.bottom += 60;
    m_pDialog->Move(place);
    EXPECT_EQ(height(), before + 60);
    place.right -= 500;
    m_pDialog->Move(place);
    EXPECT_GE(m_pDialog->Child(IDC_TXD_CHECK_ALL).WindowRect().left, m_pDialog->WindowRect().left);
}

// ---- Importing ----

TEST_F(CImportTXDDialog, HasNothingToImportWithoutAChecked)
{
    Import({Shade("road", 1)});
    OpenShades({Shade("road", 2)});
    Press(IDOK);
    ASSERT_THAT(m_oPrompt.shown, SizeIs(1));
    EXPECT_EQ(m_oPrompt.shown[0].text, L"Nothing to import, lol");
    EXPECT_EQ(m_oPrompt.shown[0].icon, PromptIcon::Information);
    EXPECT_EQ(TextOf(IDC_TXD_COUNTER), L"0 / 0");
    EXPECT_TRUE(IsOpen());
    EXPECT_EQ(m_oHost.refreshes, 0);
}

TEST_F(CImportTXDDialog, ImportsWhatIsCheckedAndCloses)
{
    OpenShades({Shade("road", 1), Shade("wall", 2), Shade("tree", 3)});
    m_oList.SetChecked(1, false);
    m_oPrompt.whileShown = [this] {
        EXPECT_EQ(TextOf(IDC_TXD_COUNTER), L"2 / 2");
        EXPECT_EQ(BarPosition(), 2);
        EXPECT_EQ(m_oHost.refreshes, 1) << "the editor shows everything before the box";
        EXPECT_TRUE(m_oList.IsEnabled());
    };
    Press(IDOK);
    EXPECT_FALSE(IsOpen());
    EXPECT_THAT(m_oPrompt.Texts(), ElementsAre(L"All textures imported."));
    EXPECT_EQ(m_oPrompt.shown[0].icon, PromptIcon::Information);
    EXPECT_THAT(Names(), ElementsAre(L"road", L"tree"));
    EXPECT_EQ(ShadeOf(1), 3);
    EXPECT_EQ(m_oHost.refreshes, 1);
}

TEST_F(CImportTXDDialog, ImportsIntoTheCategoryOfItsCaller)
{
    m_oDatabase->AddCategory(L"Signs");
    m_oFiles.Put(kFile, Dictionary({Shade("road", 1)}));
    ASSERT_TRUE(Open(DictionaryFile(kFile), 1));
    Press(IDOK);
    EXPECT_EQ(m_oDatabase->Entry(0).Value(Property::Cat), 1U);
}

TEST_F(CImportTXDDialog, ReplacesATextureOnYes)
{
    Import({Shade("road", 1), Shade("wall", 2)});
    OpenShades({Shade("road", 9), Shade("tree", 3)});
    Press(IDC_TXD_CHECK_ALL);
    m_oPrompt.answers = {PromptAnswer::Yes};
    m_oPrompt.whileShown = [this] {
        if (m_oPrompt.shown.size() != 1)
            return;
        EXPECT_EQ(TextOf(IDC_TXD_COUNTER), L"1 / 2");
        EXPECT_EQ(BarPosition(), 0);
        EXPECT_THAT(Names(), ElementsAre(L"road", L"wall")) << "nothing has changed yet";
        EXPECT_FALSE(m_oList.IsEnabled());
        EXPECT_FALSE(m_pDialog->Child(IDOK).IsEnabled());
        EXPECT_TRUE(m_pDialog->Child(IDCANCEL).IsEnabled());
    };
    Press(IDOK);
    ASSERT_THAT(m_oPrompt.Texts(),
                ElementsAre(L"Texture 'road' already exists. Would you like to replace it?",
                            L"All textures imported."));
    EXPECT_EQ(m_oPrompt.shown[0].buttons, PromptButtons::YesNoCancel);
    EXPECT_EQ(m_oPrompt.shown[0].icon, PromptIcon::Question);
    EXPECT_THAT(Names(), ElementsAre(L"wall", L"road", L"tree"));
    EXPECT_EQ(ShadeOf(1), 9);
    EXPECT_FALSE(IsOpen());
}

TEST_F(CImportTXDDialog, SkipsATextureOnNoAndStaysOpen)
{
    Import({Shade("road", 1)});
    OpenShades({Shade("road", 9), Shade("tree", 3)});
    Press(IDC_TXD_CHECK_ALL);
    m_oPrompt.answers = {PromptAnswer::No};
    Press(IDOK);
    EXPECT_THAT(m_oPrompt.shown, SizeIs(1)) << "no box at the end";
    EXPECT_TRUE(IsOpen());
    EXPECT_THAT(Names(), ElementsAre(L"road", L"tree"));
    EXPECT_EQ(ShadeOf(0), 1);
    EXPECT_EQ(TextOf(IDC_TXD_COUNTER), L"2 / 2");
    EXPECT_EQ(BarPosition(), 1) << "the skipped texture does not move it";
    EXPECT_EQ(m_oHost.refreshes, 1);
}

TEST_F(CImportTXDDialog, ImportsBesideTheOldTextureOnCancel)
{
    Import({Shade("road", 1)});
    OpenShades({Shade("road", 9)});
    Press(IDC_TXD_CHECK_ALL);
    m_oPrompt.answers = {PromptAnswer::Cancel};
    Press(IDOK);
    EXPECT_THAT(Names(), ElementsAre(L"road", L"road"));
    EXPECT_EQ(ShadeOf(0), 1);
    EXPECT_EQ(ShadeOf(1), 9);
    EXPECT_EQ(m_oPrompt.shown.back().text, L"All textures imported.");
    EXPECT_FALSE(IsOpen());
}

TEST_F(CImportTXDDialog, AsksAboutASecondTextureOfOneNameInTheDictionary)
{
    OpenShades({Shade("road", 1), Shade("road", 2)});
    m_oPrompt.answers = {PromptAnswer::No};
    Press(IDOK);
    EXPECT_THAT(Names(), ElementsAre(L"road"));
    EXPECT_EQ(ShadeOf(0), 1);
}

TEST_F(CImportTXDDialog, TellsOfATextureThatFailsAndGoesOn)
{
    OpenShades({Shade("road", 1), CutShort("torn"), Shade("tree", 3)});
    Press(IDOK);
    EXPECT_THAT(m_oPrompt.Texts(), ElementsAre(L"Section data reading failed."));
    EXPECT_TRUE(IsOpen());
    EXPECT_THAT(Names(), ElementsAre(L"road", L"tree"));
    EXPECT_EQ(BarPosition(), 2);
}

TEST_F(CImportTXDDialog, KeepsTheOldTextureWhenTheNewOneCannotBeRead)
{
    Import({Shade("road", 1)});
    OpenShades({CutShort("road")});
    Press(IDC_TXD_CHECK_ALL);
    m_oPrompt.answers = {PromptAnswer::Yes};
    Press(IDOK);
    EXPECT_THAT(Names(), ElementsAre(L"road"));
    EXPECT_EQ(ShadeOf(0), 1);
    EXPECT_TRUE(IsOpen());
}

TEST_F(CImportTXDDialog, StopsBeforeTheFirstTextureWhenCancelWaits)
{
    OpenShades({Shade("road", 1), Shade("wall", 2)});
    ::PostMessageW(m_pDialog->Handle(), WM_COMMAND, IDCANCEL, 0);
    Press(IDOK);
    EXPECT_THAT(Names(), IsEmpty());
    EXPECT_TRUE(IsOpen()) << "Cancel ends the import, not the dialog";
    EXPECT_THAT(m_oPrompt.shown, IsEmpty());
    EXPECT_TRUE(m_pDialog->Child(IDOK).IsEnabled());
    Press(IDCANCEL);
    EXPECT_FALSE(IsOpen());
}

TEST_F(CImportTXDDialog, StopsBetweenTwoTexturesAndCanGoOn)
{
    Import({Shade("road", 1)});
    OpenShades({Shade("road", 9), Shade("wall", 2), Shade("tree", 3)});
    Press(IDC_TXD_CHECK_ALL);
    m_oPrompt.answers = {PromptAnswer::Yes};
    m_oPrompt.whileShown = [this] { ::PostMessageW(m_pDialog->Handle(), WM_CLOSE, 0, 0); };
    Press(IDOK);
    EXPECT_THAT(Names(), ElementsAre(L"road"));
    EXPECT_EQ(ShadeOf(0), 9) << "what was begun is finished";
    EXPECT_TRUE(IsOpen());
    EXPECT_EQ(m_oHost.refreshes, 1);
    m_oPrompt.whileShown = nullptr;
    m_oList.SetChecked(0, false);
    Press(IDOK);
    EXPECT_THAT(Names(), ElementsAre(L"road", L"wall", L"tree"));
    EXPECT_FALSE(IsOpen());
}

TEST_F(CImportTXDDialog, ImportsHundredsOfTextures)
{
    std::vector<Bytes> natives;
    for (int number = 0; number < 255; ++number)
        natives.push_back(Shade("road" + std::to_string(number), static_cast<std::uint8_t>(number), 1));
    OpenShades(natives);
    EXPECT_EQ(m_oList.Count(), 255);
    m_oPrompt.whileShown = [this] { EXPECT_EQ(TextOf(IDC_TXD_COUNTER), L"255 / 255"); };
    Press(IDOK);
    EXPECT_EQ(m_oDatabase->EntryCount(), 255U);
    EXPECT_EQ(ShadeOf(200), 200);
    EXPECT_THAT(m_oPrompt.Texts(), ElementsAre(L"All textures imported."));
}

TEST_F(CImportTXDDialog, ImportsFromThePlayStationWithItsAlpha)
{
    ASSERT_TRUE(
        OpenFile(Dictionary({RwFile::PS2Native({.name = "road", .data = RwFile::Filled(64, 0x80)})})));
    Press(IDOK);
    const auto raster = m_oDatabase->ReadRaster(0, CacheIndex::Unc, RecordKind::Raster).value();
    EXPECT_EQ(raster.at(0), std::byte{0x80});
    EXPECT_EQ(raster.at(3), std::byte{0xFF}) << "0x80 is opaque there";
}

TEST_F(CImportTXDDialog, DoesNothingTwiceWhileItImports)
{
    Import({Shade("road", 1)});
    OpenShades({Shade("road", 9), Shade("tree", 3)});
    Press(IDC_TXD_CHECK_ALL);
    m_oPrompt.answers = {PromptAnswer::Yes};
    m_oPrompt.whileShown = [this] {
        Press(IDOK);
        m_pDialog->Send(WM_SYSCOMMAND, ID_TXD_EXPORT_ALL);
        m_pDialog->Send(WM_SYSCOMMAND, ID_TXD_EXPORT_CURRENT);
        m_oPrompt.whileShown = nullptr;
    };
    Press(IDOK);
    EXPECT_THAT(Names(), ElementsAre(L"road", L"tree"));
    EXPECT_THAT(m_oDialogs.files, IsEmpty());
}

// ---- Exporting ----

TEST_F(CImportTXDDialog, OffersToExportInItsSystemMenu)
{
    OpenShades({Shade("road", 1)});
    const CMenu menu(::GetSystemMenu(m_pDialog->Handle(), FALSE));
    EXPECT_EQ(menu.Text(ID_TXD_EXPORT_CURRENT), L"Export current file");
    EXPECT_EQ(menu.Text(ID_TXD_EXPORT_ALL), L"Export all files");
    const int count = menu.Count();
    EXPECT_NE(::GetMenuState(menu.Handle(), static_cast<UINT>(count - 3), MF_BYPOSITION) & MF_SEPARATOR, 0U);
}

TEST_F(CImportTXDDialog, ExportsTheSelectedTexture)
{
    OpenShades({Shade("road", 1), Shade("wall", 2, 8)});
    m_oList.Select(1);
    m_oDialogs.file = m_oDatabase.Folder() / "wall.bmp";
    m_pDialog->Send(WM_SYSCOMMAND, ID_TXD_EXPORT_CURRENT);
    ASSERT_THAT(m_oDialogs.files, SizeIs(1));
    EXPECT_EQ(m_oDialogs.files[0].proposedName, L"wall");
    EXPECT_EQ(m_oDialogs.files[0].defaultExtension, L"png");
    const auto picture = LoadImageFile(*m_oDialogs.file);
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->Width(), 8U);
    EXPECT_EQ(m_oDatabase.Settings().ReadString(L"paths", L"last_export_dir"),
              m_oDialogs.file->parent_path().native());
}

TEST_F(CImportTXDDialog, ExportsNothingWhenTheFileDialogIsCancelled)
{
    OpenShades({Shade("road", 1)});
    m_pDialog->Send(WM_SYSCOMMAND, ID_TXD_EXPORT_CURRENT);
    m_pDialog->Send(WM_SYSCOMMAND, ID_TXD_EXPORT_ALL);
    EXPECT_THAT(m_oPrompt.shown, IsEmpty());
    EXPECT_TRUE(IsOpen());
}

TEST_F(CImportTXDDialog, ExportsToKnownFormatsOnly)
{
    OpenShades({Shade("road", 1)});
    m_oDialogs.file = m_oDatabase.Folder() / "road.tga";
    m_pDialog->Send(WM_SYSCOMMAND, ID_TXD_EXPORT_CURRENT);
    EXPECT_THAT(m_oPrompt.Texts(), ElementsAre(L"This format is unsupported"));
    EXPECT_FALSE(std::filesystem::exists(*m_oDialogs.file));
}

TEST_F(CImportTXDDialog, ExportsEveryTextureIntoAFolder)
{
    OpenShades({Shade("road", 1), Shade("a:b", 2), Shade("ROAD", 3)});
    const CTemporaryFolder folder;
    m_oDialogs.folder = folder.Path().native();
    m_pDialog->Send(WM_SYSCOMMAND, ID_TXD_EXPORT_ALL);
    std::vector<std::string> names;
    for (const auto& [name, bytes] : FilesOf(folder.Path()))
        names.push_back(name);
    EXPECT_THAT(names, testing::UnorderedElementsAre("road.png", "a_b.png", "ROAD_2.png"));
    EXPECT_THAT(m_oPrompt.shown, IsEmpty());
    EXPECT_EQ(BarPosition(), 3);
    EXPECT_TRUE(m_pDialog->Child(IDOK).IsEnabled());
}

TEST_F(CImportTXDDialog, TellsOnceOfTexturesThatCannotBeExported)
{
    OpenShades({CutShort("torn"), Shade("road", 1), CutShort("worn")});
    const CTemporaryFolder folder;
    m_oDialogs.folder = folder.Path().native();
    m_pDialog->Send(WM_SYSCOMMAND, ID_TXD_EXPORT_ALL);
    ASSERT_THAT(m_oPrompt.shown, SizeIs(1));
    EXPECT_THAT(m_oPrompt.shown[0].text, testing::HasSubstr(L"Section data reading failed."));
    EXPECT_THAT(FilesOf(folder.Path()), SizeIs(1));
}

// ---- From the main window ----

class CImportTXDCommand : public CMainWindowTest {};

TEST_F(CImportTXDCommand, NeedsADatabase)
{
    Start();
    EXPECT_FALSE(Menu().IsEnabled(ID_IMPORT_TXD));
    OpenDatabase(SmallDatabase());
    EXPECT_TRUE(Menu().IsEnabled(ID_IMPORT_TXD));
    Command(ID_CLOSE);
    EXPECT_FALSE(Menu().IsEnabled(ID_IMPORT_TXD));
    Command(ID_IMPORT_TXD);
    EXPECT_EQ(Prompt().Shown().back().text, L"Load the cache first!");
    EXPECT_THAT(m_oDialogs.files, IsEmpty());
}

TEST_F(CImportTXDCommand, OpensTheDialogForTheSelectedCategory)
{
    Start();
    OpenDatabase(SmallDatabase());
    Select(L"leaf");
    m_pSettings->WriteString(L"paths", L"last_txd", L"C:\\models");
    m_oDialogs.file = m_oFolder / "roads.txd";
    Command(ID_IMPORT_TXD);
    ASSERT_THAT(m_oDialogs.files, SizeIs(1));
    EXPECT_EQ(m_oDialogs.files[0].filter,
              L"RenderWare Texture Dictionary (*.txd)|*.txd|All Files (*.*)|*.*|");
    EXPECT_EQ(m_oDialogs.files[0].defaultExtension, L"txd");
    EXPECT_EQ(m_oDialogs.files[0].proposedName, L"C:\\models");
    EXPECT_EQ(m_pSettings->ReadString(L"paths", L"last_txd"), m_oFolder.Path().native());
    EXPECT_THAT(m_oDialogs.dictionaries, ElementsAre(std::pair(*m_oDialogs.file, 1U)));
}

TEST_F(CImportTXDCommand, ProposesNoNameAtTheRootOfADrive)
{
    Start();
    OpenDatabase(SmallDatabase());
    m_pSettings->WriteString(L"paths", L"last_txd", L"C:\\");
    Command(ID_IMPORT_TXD);
    EXPECT_EQ(m_oDialogs.files[0].proposedName, L"");
    EXPECT_EQ(m_oDialogs.files[0].folder, L"C:\\");
}

TEST_F(CImportTXDCommand, OpensNothingWhenTheFileDialogIsCancelled)
{
    Start();
    OpenDatabase(SmallDatabase());
    Command(ID_IMPORT_TXD);
    EXPECT_THAT(m_oDialogs.dictionaries, IsEmpty());
    EXPECT_EQ(m_pSettings->ReadString(L"paths", L"last_txd"), L"");
}

}  // namespace
