#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/resource.h"
#include "base/Text.h"
#include "codec/PluginTable.h"
#include "dialogs/DlgOptimize.h"
#include "tests/codec/MemorySettings.h"
#include "tests/database/DatabaseFixture.h"
#include "tests/shell/MainWindowFixture.h"
#include "tools/DirectHost.h"

namespace {

using testing::ElementsAre;

/// Decodes, counts the requests to refresh, and does something at each picture.
class CActingHost final : public CDirectHost {
public:
    using CDirectHost::CDirectHost;
    void Refresh() override { ++refreshed; }
    std::unique_ptr<CBitmap> Decode(std::uint32_t index, CacheIndex cache) override
    {
        if (onDecode)
            onDecode();
        return CDirectHost::Decode(index, cache);
    }
    int refreshed = 0;
    std::function<void()> onDecode;
};

CDatabaseBuilder Roads(int count = 1)
{
    CDatabaseBuilder builder;
    builder.Texture("Road").Picture("etc", 1).Picture("unc", 2);
    builder.Texture("road").Picture("etc", 3).Picture("unc", 4);
    for (int i = 0; i < count; ++i)
        builder.Texture("copy" + std::to_string(i)).Picture("etc", 1).Picture("unc", 9);
    return builder;
}

class OptimizeDialog : public testing::Test {
protected:
    void Open(const CDatabaseBuilder& builder)
    {
        m_pDatabase = std::make_unique<CDatabaseFixture>(builder, StreamMode::Raw);
        m_pHost =
            std::make_unique<CActingHost>(CHostOperations(**m_pDatabase, m_oPlugins, m_oSettings, m_oPrompt));
        m_pEditor =
            std::make_unique<ToolEditor>(ToolEditor{**m_pDatabase, m_oPlugins, m_oSettings, *m_pHost});
        Show();
    }
    void Show()
    {
        m_pDialog = std::make_unique<CDlgOptimize>(OptimizeParts{m_oResources, m_pEditor.get(), m_oPrompt});
        ASSERT_TRUE(m_pDialog->Create(m_oResources.Current(), nullptr)) << "a display is needed";
        m_pDialog->Show(true);
    }
    CWindow Control(int id) const { return m_pDialog->Child(id); }
    std::wstring Status() const { return Control(IDC_OPTIMIZE_STATUS).Text(); }
    std::vector<std::wstring> Items(int id) const
    {
        std::vector<std::wstring> items;
        for (LRESULT item = 0; item < Control(id).Send(CB_GETCOUNT); ++item) {
            std::wstring text(
                static_cast<std::size_t>(Control(id).Send(CB_GETLBTEXTLEN, static_cast<WPARAM>(item))), L' ');
            Control(id).SendPointer(CB_GETLBTEXT, static_cast<WPARAM>(item), text.data());
            items.push_back(text);
        }
        return items;
    }
    void Check(int id) const
    {
        ::CheckRadioButton(m_pDialog->Handle(), IDC_OPTIMIZE_ALIAS_NAMES, IDC_OPTIMIZE_ALIAS_RASTERS, id);
    }
    void CompareRasters(int cache, int algorithm, const std::wstring& value = L"5") const
    {
        Check(IDC_OPTIMIZE_ALIAS_RASTERS);
        Control(IDC_OPTIMIZE_CACHE).Send(CB_SETCURSEL, static_cast<WPARAM>(cache));
        Control(IDC_OPTIMIZE_ALGORITHM).Send(CB_SETCURSEL, static_cast<WPARAM>(algorithm));
        Control(IDC_OPTIMIZE_VALUE).SetText(value);
        Press(IDOK);
    }
    void Press(int id) const { m_pDialog->Send(WM_COMMAND, static_cast<WPARAM>(id)); }
    std::wstring Entries() const
    {
        std::wstring text;
        for (std::uint32_t i = 0; i < (*m_pDatabase)->EntryCount(); ++i) {
            const TextureEntry& entry = (*m_pDatabase)->Entry(i);
            text += (i == 0 ? L"" : L" ") + entry.name + (entry.IsAlias() ? L"=" + entry.affiliate : L"");
        }
        return text;
    }

    CResources m_oResources{::GetModuleHandleW(nullptr)};
    CPluginTable m_oPlugins;
    CMemorySettings m_oSettings;
    CScriptedPrompt m_oPrompt;
    std::unique_ptr<CDatabaseFixture> m_pDatabase;
    std::unique_ptr<CActingHost> m_pHost;
    std::unique_ptr<ToolEditor> m_pEditor;
    std::unique_ptr<CDlgOptimize> m_pDialog;
};

class OptimizeCommandInWindow : public CMainWindowTest {};

}  // namespace

TEST_F(OptimizeDialog, OpensWithTheSafestChoices)
{
    Open(Roads());
    EXPECT_EQ(m_pDialog->Text(), L"Optimize Cache");
    EXPECT_EQ(Control(IDC_OPTIMIZE_ALIAS_NAMES).Send(BM_GETCHECK), BST_CHECKED);
    EXPECT_EQ(Control(IDC_OPTIMIZE_DELETE_NAMES).Send(BM_GETCHECK), BST_UNCHECKED);
    EXPECT_EQ(Control(IDC_OPTIMIZE_ALIAS_RASTERS).Send(BM_GETCHECK), BST_UNCHECKED);
    EXPECT_THAT(Items(IDC_OPTIMIZE_CACHE), ElementsAre(L"ETC", L"UNC"));
    EXPECT_EQ(Control(IDC_OPTIMIZE_CACHE).Send(CB_GETITEMDATA, 0), 1);
    EXPECT_EQ(Control(IDC_OPTIMIZE_CACHE).Send(CB_GETITEMDATA, 1), 3);
    EXPECT_EQ(Control(IDC_OPTIMIZE_CACHE).Send(CB_GETCURSEL), 0);
    EXPECT_THAT(Items(IDC_OPTIMIZE_ALGORITHM),
                ElementsAre(L"MD5-based (fastest)", L"MD5-based decompressed (fast)", L"Pixel-diff (slow)",
                            L"Pixel-diff decompressed (very slow)"));
    EXPECT_EQ(Control(IDC_OPTIMIZE_ALGORITHM).Send(CB_GETCURSEL), 0);
    EXPECT_EQ(Control(IDC_OPTIMIZE_VALUE).Text(), L"5");
    EXPECT_EQ(Status(), L"Nothing to do.");
    EXPECT_EQ(Control(IDC_OPTIMIZE_NOTE).Text(),
              L"Note! \r\n Double check you know what are you doing right now.\r\nOperation can take very "
              L"fuckin' long time.");
    EXPECT_TRUE(Control(IDOK).IsEnabled());
}

TEST_F(OptimizeDialog, OffersNothingWithoutADatabase)
{
    Show();
    EXPECT_FALSE(Control(IDC_OPTIMIZE_CACHE).IsEnabled());
    EXPECT_FALSE(Control(IDOK).IsEnabled());
    EXPECT_TRUE(Items(IDC_OPTIMIZE_CACHE).empty());
    Press(IDOK);
    EXPECT_EQ(Status(), L"Nothing to do.");
    Press(IDCANCEL);
    EXPECT_FALSE(m_pDialog->Exists());
}

TEST_F(OptimizeDialog, MakesAliasesOfNamesAndRefreshesOnce)
{
    Open(Roads());
    Press(IDOK);
    EXPECT_EQ(Entries(), L"Road copy0 road=Road");
    EXPECT_EQ(Status(), L"Done!");
    EXPECT_EQ(m_pHost->refreshed, 1);
    EXPECT_TRUE(Control(IDOK).IsEnabled());
}

TEST_F(OptimizeDialog, DeletesNames)
{
    Open(Roads());
    Check(IDC_OPTIMIZE_DELETE_NAMES);
    Press(IDOK);
    EXPECT_EQ(Entries(), L"Road copy0");
    EXPECT_EQ(Status(), L"Done!");
}

TEST_F(OptimizeDialog, ComparesRastersOfTheChosenCache)
{
    Open(Roads());
    CompareRasters(1, 0);
    EXPECT_EQ(Entries(), L"Road road copy0");
    EXPECT_EQ(Status(), L"Done!");
    CompareRasters(0, 1);
    EXPECT_EQ(Entries(), L"Road road copy0=Road");
    EXPECT_EQ(Status(), L"Done!");
}

TEST_F(OptimizeDialog, SaysHowManyDuplicatesDifferLittle)
{
    Open(Roads());
    CompareRasters(0, 2, L"abc");
    EXPECT_EQ(Status(), L"0 duplicates");
    CompareRasters(0, 3, L"5");
    EXPECT_EQ(Status(), L"1 duplicates");
    EXPECT_EQ(Entries(), L"Road road copy0=Road");
    EXPECT_EQ(m_pHost->refreshed, 2);
}

TEST_F(OptimizeDialog, StopsByCloseAndChangesNothing)
{
    Open(Roads(20));
    const std::wstring before = Entries();
    bool isRunDisabled = false;
    bool isCloseEnabled = false;
    m_pHost->onDecode = [&] {
        isRunDisabled = !Control(IDOK).IsEnabled() && !Control(IDC_OPTIMIZE_CACHE).IsEnabled();
        isCloseEnabled = Control(IDCANCEL).IsEnabled();
        Press(IDOK);  // a second run does not begin
        Press(IDCANCEL);
    };
    CompareRasters(0, 1);
    EXPECT_TRUE(isRunDisabled);
    EXPECT_TRUE(isCloseEnabled);
    EXPECT_EQ(Entries(), before);
    EXPECT_EQ(Status(), L"Stopped. Nothing was changed.");
    EXPECT_TRUE(m_pDialog->Exists());
    EXPECT_TRUE(Control(IDOK).IsEnabled());
    EXPECT_EQ(m_pHost->refreshed, 1);
}

TEST_F(OptimizeDialog, ShowsAnErrorAndCanBeUsedAgain)
{
    CDatabaseBuilder builder;
    for (const char* name : {"a", "A", "b"})
        builder.Texture(name).Raster("unc", {.pixels = std::vector<std::byte>(4)});
    FileBytes files = builder.Files("textures");
    files.erase("textures.unc.tmb");
    // The words of A and b change places.
    std::vector<std::byte>& toc = files["textures.unc.toc"];
    std::swap_ranges(toc.begin() + 8, toc.begin() + 12, toc.begin() + 12);
    m_pDatabase = std::make_unique<CDatabaseFixture>(files, DiskFileSystem(), StreamMode::Raw);
    m_pHost =
        std::make_unique<CActingHost>(CHostOperations(**m_pDatabase, m_oPlugins, m_oSettings, m_oPrompt));
    m_pEditor = std::make_unique<ToolEditor>(ToolEditor{**m_pDatabase, m_oPlugins, m_oSettings, *m_pHost});
    Show();
    Press(IDOK);
    ASSERT_EQ(m_oPrompt.Shown().size(), 1U);
    EXPECT_EQ(m_oPrompt.Shown().front().text, L"Wrong texture size given [value].");
    EXPECT_EQ(m_pHost->refreshed, 1);
    EXPECT_TRUE(Control(IDOK).IsEnabled());
}

TEST_F(OptimizeCommandInWindow, OpensTheDialogWithAndWithoutADatabase)
{
    Start();
    Command(ID_CACHE_OPTIMIZER);
    OpenDatabase(SmallDatabase());
    Command(ID_CACHE_OPTIMIZER);
    EXPECT_THAT(m_oDialogs.optimizations, ElementsAre(false, true));
}
