#pragma once

// The main window. It owns the one open database and shows it: the tree, the preview with one tab a cache,
// the status bar and the menus through which every operation starts. The work itself is done in tools/ and
// below; the window asks for what it needs, calls, and shows the result. What it borrows outlives it.

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "app/PluginMenu.h"
#include "app/Preview.h"
#include "app/ProgressPane.h"
#include "app/Resources.h"
#include "app/TextureTree.h"
#include "app/TreePictures.h"
#include "app/UserDialogs.h"
#include "base/File.h"
#include "base/Prompt.h"
#include "base/Settings.h"
#include "codec/PluginTable.h"
#include "database/TextureDatabase.h"
#include "ui/BitmapDrawing.h"
#include "ui/ComboBox.h"
#include "ui/Dialog.h"
#include "ui/StatusBar.h"
#include "ui/TabControl.h"

/// What the window borrows.
struct MainWindowParts {
    const CResources& resources;
    ISettings& settings;
    CPluginTable& plugins;
    IFileSystem& files;
    IPrompt& prompt;
    IUserDialogs& dialogs;
};

class CDlgMain final : public CDialog {
public:
    explicit CDlgMain(const MainWindowParts& parts);

    /// Creates the window and shows it.
    bool Open();
    /// The list that the command line names.
    void OpenFromCommandLine(const std::filesystem::path& list);

private:
    bool OnInit() override;
    bool PreTranslate(MSG& message) override;
    void OnException() override;
    bool AcceptsCommands() const override;

    // DlgMain.cpp: the window itself.
    void BindMessages();
    void BindFileCommands();
    void BindViewCommands();
    void BindOptionCommands();
    void CreateMenu();
    void CreateControls();
    void ApplyPreviewSettings();
    void Layout();
    void OnMinMaxInfo(MINMAXINFO& info) const;
    void OnDpiChanged(const RECT& place);
    void OnTreeDrawsItem(TVITEMW& item);
    void OnContextMenu(HWND from, POINT place);
    void OnReturnKey();
    void Exit();
    void Enable(UINT command, bool enabled) const { Menu().Enable(command, enabled); }
    CMenu Menu() const { return CMenu(m_hMenu.get()); }
    std::wstring String(UINT id) const { return m_oParts.resources.Text(id); }
    /// Runs a step of a longer operation; what it throws is reported, and the operation goes on.
    void Attempt(const std::function<void()>& step);
    void Status(const std::wstring& text) const { m_oStatus.SetPane(0, text); }

    // DlgMainCache.cpp: opening, creating and closing.
    void AskAndOpen();
    void AskAndCreate();
    void Close();
    void CloseByCommand();
    void Reload();
    void FixNameHashes();
    void OpenByPath(const std::filesystem::path& chosen);
    void ShowOpened(std::chrono::steady_clock::time_point since);
    void EnableLoadedCommands(bool loaded);
    void FillTree();
    void SelectFirstTexture();
    void SetGame(int game);
    void ShowGame(int game);
    bool HasDatabaseOrSaysSo();

    // DlgMainView.cpp: what is selected and how it is shown.
    void OnSelectionChanged();
    void OnTabChanged();
    void StepTab(int step);
    void SelectTab(CacheIndex cache);
    bool CanShow(CacheIndex cache) const;
    void DrawSelected();
    void ShowFacts(std::uint32_t index);
    void ClearFacts();
    void ToggleThumbnails();
    void ChooseRenderer(UINT command);
    void ApplyRenderer();
    void ToggleStretch();
    void ChooseBackground(UINT command);
    void ChooseBackgroundColor();
    void Find();
    void FindNext();
    void ShowStatistics();
    RecordKind ShownKind() const { return m_bThumbnails ? RecordKind::Thumbnail : RecordKind::Raster; }

    // DlgMainExport.cpp: textures into image files.
    void ExportSelection();
    void ExportOne(std::uint32_t index);
    void ExportAll(std::optional<std::uint32_t> category, const std::wstring& caption);
    void ExportFocusedCategory();
    void ExportToFolder(const std::vector<std::uint32_t>& entries, const std::filesystem::path& folder);
    std::optional<std::filesystem::path> AskExportFolder();

    MainWindowParts m_oParts;
    CGdiPlusSession m_oGdiPlus;
    CPluginMenu m_oPluginMenu;
    CMenuHandle m_hMenu;
    CAcceleratorHandle m_hAccelerators;
    CIconHandle m_hIcon;
    CIconHandle m_hSmallIcon;
    CFontHandle m_hFont;      // once the window has moved to a screen of another resolution
    int m_nFixedOptions = 0;  // items of the options menu that do not come from plugins

    CComboBox m_oGameList;
    CTextureTree m_oTree;
    CTreePictures m_oTreePictures;
    CTabControl m_oTabs;
    CPreview m_oPreview;
    CStatusBar m_oStatus;
    CProgressPane m_oProgress;

    std::unique_ptr<CTextureDatabase> m_pDatabase;
    CacheIndex m_eCache = CacheIndex::Dxt;
    bool m_bThumbnails = false;
    std::wstring m_sSearch;
};
