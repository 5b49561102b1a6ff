#include <condition_variable>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <mutex>

#include "base/Format.h"
#include "dialogs/DlgRadarEditor.h"
#include "image/ImageFile.h"
#include "tests/codec/MemorySettings.h"
#include "tests/database/DatabaseFixture.h"
#include "tests/shell/MainWindowFixture.h"
#include "tools/DirectHost.h"
#include "ui/Dpi.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::SizeIs;

constexpr ULONGLONG kPatience = 20000;

/// Notes what it is asked, and can be held in the middle of decoding.
class CHeldHost final : public CDirectHost {
public:
    using CDirectHost::CDirectHost;
    void Select(std::uint32_t index) override { selected.push_back(index); }
    void Refresh() override { ++refreshed; }
    void Show(const std::wstring& name, const CBitmap* picture) override
    {
        shown.push_back(Format(L"%s %d x %d", name, picture->Width(), picture->Height()));
    }
    std::unique_ptr<CBitmap> Decode(std::uint32_t index, CacheIndex cache) override
    {
        std::unique_lock lock(m_oMutex);
        m_bDecoding = true;
        m_oChange.notify_all();
        m_oChange.wait(lock, [this] { return !m_bHeld; });
        return CDirectHost::Decode(index, cache);
    }

    void Hold()
    {
        const std::lock_guard lock(m_oMutex);
        m_bHeld = true;
        m_bDecoding = false;
    }
    bool IsDecoding()
    {
        const std::lock_guard lock(m_oMutex);
        return m_bDecoding;
    }
    void LetGo()
    {
        const std::lock_guard lock(m_oMutex);
        m_bHeld = false;
        m_oChange.notify_all();
    }

    std::vector<std::uint32_t> selected;
    std::vector<std::wstring> shown;
    int refreshed = 0;

private:
    std::mutex m_oMutex;
    std::condition_variable m_oChange;
    bool m_bHeld = false;
    bool m_bDecoding = false;
};

CDatabaseBuilder Tiles()
{
    CDatabaseBuilder builder;
    builder.Category("cat=0 name=Default");
    builder.Texture("wall").Picture("dxt", 0x11);
    builder.Texture("radar00").Picture("dxt", 0x22);
    builder.Texture("radar01").Picture("dxt", 0x33, 8, 8);
    builder.Alias("radar02", "radar00");
    builder.Texture("radar03").Picture("dxt", 0x44);
    return builder;
}

CDatabaseBuilder NoTiles()
{
    CDatabaseBuilder builder;
    builder.Category("cat=0 name=Default");
    builder.Texture("wall").Picture("dxt", 0x11);
    return builder;
}

class CRadarDialogTest : public testing::Test {
protected:
    CRadarDialogTest() : m_oResources(::GetModuleHandleW(nullptr)) {}

    /// Opens the dialog without waiting for its end; its boxes get these answers.
    void Open(const CDatabaseBuilder& builder, std::deque<PromptAnswer> answers = {})
    {
        m_pDatabase = std::make_unique<CDatabaseFixture>(builder, StreamMode::Raw);
        m_pPrompt = std::make_unique<CScriptedPrompt>(std::move(answers));
        m_pHost =
            std::make_unique<CHeldHost>(CHostOperations(**m_pDatabase, m_oPlugins, m_oSettings, *m_pPrompt));
        m_pEditor.reset(new ToolEditor{**m_pDatabase, m_oPlugins, m_oSettings, *m_pHost});
        Show(m_pEditor.get());
        Serve();
    }
    void Show(const ToolEditor* editor)
    {
        m_pDialog = std::make_unique<CDlgRadarEditor>(
            RadarEditorParts{m_oResources, editor, CacheIndex::Dxt, *m_pPrompt, m_oDialogs});
        ASSERT_TRUE(m_pDialog->Create(m_oResources.Current(), nullptr)) << "a display is needed";
        m_pDialog->CWindow::Show(true);
        m_oList.Attach(m_pDialog->Child(IDC_RADAR_TILES).Handle());
    }
    static void Serve()
    {
        MSG message{};
        while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            ::TranslateMessage(&message);
            ::DispatchMessageW(&message);
        }
    }
    template <class Condition>
    static bool ServeUntil(Condition condition)
    {
        const ULONGLONG end = ::GetTickCount64() + kPatience;
        while (!condition() && ::GetTickCount64() < end) {
            ::MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
            Serve();
        }
        return condition();
    }
    void Press(int id) const { m_pDialog->Send(WM_COMMAND, static_cast<WPARAM>(id)); }
    bool IsOn(int id) const { return m_pDialog->Child(id).IsEnabled(); }
    std::wstring Status() const { return m_pDialog->Child(IDC_RADAR_STATUS).Text(); }
    std::vector<std::wstring> Rows() const
    {
        std::vector<std::wstring> rows;
        for (int row = 0; row < m_oList.Count(); ++row)
            rows.push_back(Format(L"%d %s|%s|%s", static_cast<int>(m_oList.Data(row)),
                                  m_oList.ItemText(row, 0), m_oList.ItemText(row, 1),
                                  m_oList.ItemText(row, 2)));
        return rows;
    }
    std::vector<std::wstring> Boxes() const
    {
        std::vector<std::wstring> texts;
        for (const PromptBox& box : m_pPrompt->Shown())
            texts.push_back(box.text);
        return texts;
    }
    std::filesystem::path Picture(std::uint32_t width, std::uint32_t height)
    {
        auto picture = CBitmap::Create(width, height);
        for (std::size_t at = 0; at < picture->Pixels().size(); ++at)
            picture->Pixels()[at] = static_cast<std::uint8_t>(at / 4 % width / 16 * 32 + at / 4 / width / 16);
        const auto file = m_oFolder / "map.png";
        EXPECT_TRUE(SaveImageFile(file, *picture, ImageFormat::Png));
        return file;
    }

    CTemporaryFolder m_oFolder;
    CResources m_oResources;
    CPluginTable m_oPlugins;
    CMemorySettings m_oSettings;
    CScriptedDialogs m_oDialogs;
    std::unique_ptr<CDatabaseFixture> m_pDatabase;
    std::unique_ptr<CScriptedPrompt> m_pPrompt;
    std::unique_ptr<CHeldHost> m_pHost;
    std::unique_ptr<ToolEditor> m_pEditor;
    std::unique_ptr<CDlgRadarEditor> m_pDialog;
    CListView m_oList;
};

}  // namespace

TEST_F(CRadarDialogTest, ListsTheTiles)
{
    Open(Tiles());
    EXPECT_EQ(m_pDialog->Text(), L"Radar Map Editor");
    const int dpi = DpiOf(m_pDialog->Handle());
    std::vector<std::wstring> columns;
    for (int column = 0; column < m_oList.ColumnCount(); ++column)
        columns.push_back(Format(L"%s %d", m_oList.ColumnText(column),
                                 ::MulDiv(m_oList.ColumnWidth(column), USER_DEFAULT_SCREEN_DPI, dpi)));
    EXPECT_THAT(columns, ElementsAre(L"Radar 100", L"Info 150", L"Alias of 100"));
    EXPECT_THAT(Rows(), ElementsAre(L"1 radar00|4 x 4, RGBA 8888|", L"2 radar01|8 x 8, RGBA 8888|",
                                    L"3 radar02|4 x 4, RGBA 8888|radar00", L"4 radar03|4 x 4, RGBA 8888|"));
    EXPECT_EQ(Status(), L"radar00");
    for (const int id : {IDC_RADAR_EXPORT, IDC_RADAR_IMPORT, IDC_RADAR_SHOW, IDC_RADAR_OPTIMIZE})
        EXPECT_TRUE(IsOn(id)) << id;
    EXPECT_THAT(Boxes(), IsEmpty());
    EXPECT_THAT(m_pHost->selected, IsEmpty());
}

TEST_F(CRadarDialogTest, StartsWithTheStatusZero)
{
    Open(Tiles());
    Show(m_pEditor.get());
    EXPECT_EQ(Status(), L"0");
    EXPECT_EQ(m_oList.Count(), 0) << "the list is filled once the dialog is in sight";
    Serve();
    EXPECT_EQ(m_oList.Count(), 4);
}

TEST_F(CRadarDialogTest, SaysThatThereIsNoMap)
{
    Open(NoTiles());
    EXPECT_EQ(Status(), L"Error");
    ASSERT_THAT(Boxes(), ElementsAre(L"Radar map not found."));
    EXPECT_EQ(m_pPrompt->Shown()[0].icon, PromptIcon::Information);
    EXPECT_FALSE(IsOn(IDC_RADAR_EXPORT));
    EXPECT_FALSE(IsOn(IDC_RADAR_SHOW));
    EXPECT_TRUE(IsOn(IDC_RADAR_IMPORT)) << "a map can be made";
    Press(IDC_RADAR_OPTIMIZE);
    EXPECT_THAT(Boxes(), ElementsAre(L"Radar map not found.", L"Radar map not found."));
}

TEST_F(CRadarDialogTest, OpensWithoutADatabase)
{
    Open(NoTiles());
    Show(nullptr);
    Serve();
    Press(IDC_RADAR_IMPORT);
    Press(IDC_RADAR_OPTIMIZE);
    EXPECT_THAT(Boxes(), ElementsAre(L"Radar map not found.", L"Radar map not found.",
                                     L"Load the cache first!", L"Radar map not found."));
    EXPECT_THAT(m_oDialogs.files, IsEmpty());
    Press(IDCANCEL);
    EXPECT_FALSE(m_pDialog->Exists());
}

TEST_F(CRadarDialogTest, SelectsInTheMainWindowWhatIsSelectedHere)
{
    Open(Tiles());
    m_oList.Select(1);
    EXPECT_EQ(m_pHost->selected.back(), 2U);
    m_oList.Select(3);
    EXPECT_EQ(m_pHost->selected.back(), 4U);
    m_oList.Send(WM_KEYDOWN, VK_UP, 1);
    EXPECT_EQ(m_pHost->selected.back(), 3U) << "an alias is selected itself";
}

TEST_F(CRadarDialogTest, ExportsTheMap)
{
    Open(Tiles());
    m_oDialogs.file = m_oFolder / "map.png";
    Press(IDC_RADAR_EXPORT);
    ASSERT_THAT(m_oDialogs.files, SizeIs(1));
    EXPECT_EQ(m_oDialogs.files[0].proposedName, L"radar_DXT");
    EXPECT_EQ(m_oDialogs.files[0].defaultExtension, L"png");
    EXPECT_EQ(m_oDialogs.files[0].filter.find(L"Portable Network Graphics (*.png)|*.png|Windows Bitmap"), 0U);
    const auto map = LoadImageFile(m_oFolder / "map.png");
    ASSERT_TRUE(map);
    EXPECT_EQ(map->Width(), 8U);
    EXPECT_EQ(map->Height(), 8U);
    EXPECT_EQ(map->Pixels()[0], 0x22);
    EXPECT_EQ(map->Row(7)[0], 0x22) << "the alias shows its original";
    EXPECT_EQ(Status(), L"Done!");
    EXPECT_TRUE(IsOn(IDC_RADAR_EXPORT));
    EXPECT_THAT(Boxes(), IsEmpty());
}

TEST_F(CRadarDialogTest, SaysWhenAMapCannotBeExported)
{
    Open(Tiles());
    Press(IDC_RADAR_EXPORT);
    EXPECT_THAT(Boxes(), IsEmpty()) << "the file dialog was cancelled";
    m_oDialogs.file = m_oFolder / "map.dds";
    Press(IDC_RADAR_EXPORT);
    m_oDialogs.file = m_oFolder / "nowhere" / "map.png";
    Press(IDC_RADAR_EXPORT);
    EXPECT_THAT(Boxes(), ElementsAre(L"This format is unsupported", L"Unable to save the radar map."));
}

TEST_F(CRadarDialogTest, ShowsTheWholeMapInThePreview)
{
    Open(Tiles());
    Press(IDC_RADAR_SHOW);
    EXPECT_TRUE(ServeUntil([this] { return Status() == L"Done!"; }));
    EXPECT_THAT(m_pHost->shown, ElementsAre(L"radar_fuck 8 x 8"));
    EXPECT_THAT(Boxes(), IsEmpty());
}

TEST_F(CRadarDialogTest, RefusesEverythingWhileItIsBusy)
{
    Open(Tiles());
    m_pHost->Hold();
    Press(IDC_RADAR_SHOW);
    // The thread reports to the window before it decodes.
    ASSERT_TRUE(ServeUntil([this] { return m_pHost->IsDecoding(); }));
    for (const int id : {IDC_RADAR_IMPORT, IDC_RADAR_EXPORT, IDC_RADAR_SHOW, IDC_RADAR_OPTIMIZE, IDCANCEL})
        Press(id);
    m_pDialog->Send(WM_CLOSE);
    Serve();  // the system turns it into the Cancel button
    EXPECT_TRUE(m_pDialog->Exists());
    EXPECT_THAT(Boxes(),
                ElementsAreArray(std::vector<std::wstring>(6, L"Please wait until operation ended")));
    EXPECT_THAT(m_oDialogs.files, IsEmpty());
    m_pHost->LetGo();
    EXPECT_TRUE(ServeUntil([this] { return Status() == L"Done!"; }));
    Press(IDCANCEL);
    EXPECT_FALSE(m_pDialog->Exists());
}

TEST_F(CRadarDialogTest, WaitsForItsThreadWhenItIsTornDown)
{
    Open(Tiles());
    m_pHost->Hold();
    Press(IDC_RADAR_SHOW);
    // The thread reports to the window before it decodes.
    ASSERT_TRUE(ServeUntil([this] { return m_pHost->IsDecoding(); }));
    m_pHost->LetGo();
    m_pDialog.reset();
    EXPECT_THAT(Boxes(), IsEmpty());
}

TEST_F(CRadarDialogTest, ImportsAPicture)
{
    Open(Tiles(), {PromptAnswer::Yes});
    m_oDialogs.file = Picture(128, 128);
    Press(IDC_RADAR_IMPORT);
    EXPECT_FALSE(IsOn(IDC_RADAR_IMPORT));
    EXPECT_FALSE(IsOn(IDC_RADAR_EXPORT));
    ASSERT_TRUE(ServeUntil([this] { return IsOn(IDC_RADAR_IMPORT); }));
    ASSERT_THAT(m_oDialogs.files, SizeIs(1));
    EXPECT_EQ(m_oDialogs.files[0].proposedName, L"radar_DXT");
    EXPECT_EQ(m_oDialogs.files[0].filter.find(L"All Supported Formats|"), 0U);
    EXPECT_THAT(Boxes(), ElementsAre(L"Use alpha?"));
    EXPECT_TRUE(IsOn(IDC_RADAR_EXPORT));
    EXPECT_EQ(m_pHost->refreshed, 1);
    ASSERT_THAT(Rows(), SizeIs(64));
    EXPECT_EQ(Rows()[0], L"1 radar00|16 x 16, RGBA 4444|");
    EXPECT_EQ(Rows()[63], L"64 radar63|16 x 16, RGBA 4444|");
    EXPECT_EQ((*m_pDatabase)->EntryCount(), 65U);
    EXPECT_EQ(Status(), L"radar00");
}

TEST_F(CRadarDialogTest, MakesAMapWhereThereWasNone)
{
    Open(NoTiles(), {PromptAnswer::No});
    m_oDialogs.file = Picture(128, 128);
    Press(IDC_RADAR_IMPORT);
    ASSERT_TRUE(ServeUntil([this] { return IsOn(IDC_RADAR_IMPORT); }));
    ASSERT_THAT(Rows(), SizeIs(64));
    EXPECT_TRUE(IsOn(IDC_RADAR_EXPORT));
    EXPECT_TRUE(IsOn(IDC_RADAR_SHOW));
}

TEST_F(CRadarDialogTest, LeavesTheMapAloneWhenAPictureIsRefused)
{
    Open(Tiles());
    const auto before = m_pDatabase->Files();
    const auto rows = Rows();
    for (const SIZE size : {SIZE{256, 128}, SIZE{127, 127}}) {
        m_oDialogs.file = Picture(static_cast<std::uint32_t>(size.cx), static_cast<std::uint32_t>(size.cy));
        Press(IDC_RADAR_IMPORT);
        ASSERT_TRUE(ServeUntil([this] { return IsOn(IDC_RADAR_IMPORT); }));
    }
    ASSERT_THAT(Boxes(), ElementsAre(L"Image must be square.", L"Image is too small."));
    EXPECT_EQ(m_pPrompt->Shown()[0].caption, L"Error");
    EXPECT_EQ(Rows(), rows);
    EXPECT_EQ(m_pDatabase->Files(), before);
    EXPECT_EQ(m_pHost->refreshed, 0);
}

TEST_F(CRadarDialogTest, SaysNothingAboutAFileThatIsNoPicture)
{
    Open(Tiles());
    Press(IDC_RADAR_IMPORT);
    m_oDialogs.file = m_pDatabase->List();
    Press(IDC_RADAR_IMPORT);
    ASSERT_TRUE(ServeUntil([this] { return IsOn(IDC_RADAR_IMPORT); }));
    EXPECT_THAT(Boxes(), IsEmpty());
    EXPECT_TRUE(IsOn(IDC_RADAR_EXPORT));
}

TEST_F(CRadarDialogTest, OptimizesTheMap)
{
    CDatabaseBuilder twins;
    twins.Category("cat=0 name=Default");
    for (const char* name : {"radar00", "radar01", "radar02"})
        twins.Texture(name).Picture("dxt", name[6] == '1' ? 0x55 : 0x22);
    Open(twins);
    Press(IDC_RADAR_OPTIMIZE);
    EXPECT_THAT(Rows(), ElementsAre(L"2 radar00|4 x 4, RGBA 8888|radar02", L"0 radar01|4 x 4, RGBA 8888|",
                                    L"1 radar02|4 x 4, RGBA 8888|"));
    EXPECT_EQ(m_pHost->refreshed, 1);
    EXPECT_EQ(Status(), L"radar00");
    EXPECT_TRUE(IsOn(IDC_RADAR_OPTIMIZE));
}

TEST_F(CRadarDialogTest, GrowsWithItsWindow)
{
    Open(Tiles());
    const RECT before = m_oList.WindowRect();
    const RECT window = m_pDialog->WindowRect();
    m_pDialog->Move({window.left, window.top, window.right + 100, window.bottom + 50});
    const RECT after = m_oList.WindowRect();
    EXPECT_EQ(after.right - after.left, before.right - before.left + 100);
    EXPECT_EQ(after.bottom - after.top, before.bottom - before.top + 50);
    int columns = 0;
    for (int column = 0; column < m_oList.ColumnCount(); ++column)
        columns += m_oList.ColumnWidth(column);
    EXPECT_GE(before.right - before.left, columns) << "every column is in sight from the start";
}

TEST_F(CMainWindowTest, TheRadarMapEditorOpensWithAndWithoutADatabase)
{
    Start();
    EXPECT_TRUE(Menu().IsEnabled(ID_RADAR_EDITOR));
    Command(ID_RADAR_EDITOR);
    OpenDatabase(SmallDatabase());
    Command(ID_RADAR_EDITOR);
    ClickTab(3);
    Command(ID_RADAR_EDITOR);
    using Opened = std::pair<CacheIndex, bool>;
    EXPECT_THAT(m_oDialogs.radarMaps,
                ElementsAre(Opened{CacheIndex::Dxt, false}, Opened{CacheIndex::Dxt, true},
                            Opened{CacheIndex::Unc, true}));
    Command(ID_CLOSE);
    EXPECT_TRUE(Menu().IsEnabled(ID_RADAR_EDITOR)) << "it is never disabled";
}
