#pragma once

// The main window. It owns the one open database and shows it: the tree, the preview with one tab a cache,
// the status bar and the menus through which every operation starts. The work itself is done in tools/ and
// below; the window asks for what it needs, calls, and shows the result. What it borrows outlives it.

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "app/EditorMessages.h"
#include "app/Languages.h"
#include "app/PluginMenu.h"
#include "app/Preview.h"
#include "app/ProgressPane.h"
#include "app/PropertiesPanel.h"
#include "app/RecentFiles.h"
#include "app/Resources.h"
#include "app/TextureTree.h"
#include "app/TranslatingPrompt.h"
#include "app/TreePictures.h"
#include "app/UserDialogs.h"
#include "base/File.h"
#include "base/Prompt.h"
#include "base/Settings.h"
#include "codec/PluginTable.h"
#include "database/TextureDatabase.h"
#include "tools/EditorHost.h"
#include "tools/ImportRules.h"
#include "tools/TextureRelations.h"
#include "ui/BitmapDrawing.h"
#include "ui/ComboBox.h"
#include "ui/Dialog.h"
#include "ui/DroppedFiles.h"
#include "ui/StatusBar.h"
#include "ui/TabControl.h"

/// What the window borrows.
struct MainWindowParts {
    CResources& resources;
    CLanguages& languages;
    const CMessageTranslator& messages;
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
    /// Opens a list, or the list of a cache file, and selects its first texture.
    void OpenAndSelect(const std::filesystem::path& chosen);
    /// The menu of a right click for what is selected; null when there is none.
    CMenuHandle ContextMenu();

private:
    bool OnInit() override;
    bool PreTranslate(MSG& message) override;
    void OnException() override;
    bool AcceptsCommands() const override;

    // DlgMain.cpp: the window itself.
    void BindMessages();
    void BindTree();
    void BindFileCommands();
    void BindViewCommands();
    void BindOptionCommands();
    void BindEditCommands();
    void OnReturnKey();
    void Exit();
    void Enable(UINT command, bool enabled) const { Menu().Enable(command, enabled); }
    CMenu Menu() const { return CMenu(m_hMenu.get()); }
    std::wstring String(UINT id) const { return m_oParts.resources.Text(id); }
    /// A text of the core in the interface language.
    std::wstring Translated(std::wstring_view text) const { return m_oParts.messages.Translate(text); }
    /// Runs a step of a longer operation; what it throws is reported, and the operation goes on.
    void Attempt(const std::function<void()>& step);
    void Status(const std::wstring& text) const { m_oStatus.SetPane(0, text); }

    // DlgMainLayout.cpp: the controls and their places.
    void CreateControls();
    void FillGameList();
    void CreateProperties();
    void ApplyPreviewSettings();
    void Layout();
    void LayoutColumn(const RECT& column);
    void OnMinMaxInfo(MINMAXINFO& info) const;
    void OnDpiChanged(const RECT& place);
    void OnTreeDrawsItem(TVITEMW& item);

    // DlgMainMenus.cpp: the menus and their states, the languages.
    void LoadMenu();
    void ShowMenuState();
    void EnableLoadedCommands(bool loaded);
    void ShowEmptyTitle();
    void ChooseLanguage(UINT command);
    void ShowLanguage(LanguageChange change);
    void OnContextMenu(HWND from, POINT place);
    void FillTextureMenu(const CMenu& menu, std::uint32_t index, bool several);

    // DlgMainCache.cpp: opening, creating and closing.
    void AskAndOpen();
    void AskAndCreate();
    /// The database goes, and nothing of it stays in the controls that are edited in.
    void LetGoOfDatabase();
    void Close();
    void CloseByCommand();
    void Reload();
    void FixNameHashes();
    void OpenByPath(const std::filesystem::path& chosen);
    void ShowOpened(std::chrono::steady_clock::time_point since);
    void OpenRecent(UINT command);
    void RememberRecent(const std::filesystem::path& list);
    /// Shows the database anew, with nothing selected.
    void FillTree();
    /// The same, with the same texture or category selected.
    void RefillTree();
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
    void ShowProperties();
    void ShowFacts(std::uint32_t index);
    void ClearFacts();
    void ToggleThumbnails();
    void ChooseRenderer(UINT command);
    void ApplyRenderer();
    void ShowBackground();
    void ToggleStretch();
    void ChooseBackground(UINT command);
    void ChooseBackgroundColor();
    void Find();
    void FindNext();
    void ShowStatistics();
    RecordKind ShownKind() const { return m_bThumbnails ? RecordKind::Thumbnail : RecordKind::Raster; }

    // DlgMainEdit.cpp: categories, aliases, names, deletion, properties.
    bool AskAndAddCategory(bool fromMainMenu);
    void AddCategory();
    void AddCategoryForFocused();
    void MoveSelectionToCategory(UINT command);
    void ChangeCategoryProperty(UINT command);
    void DeleteFocusedCategory();
    void AskAndCreateAlias();
    void GoToOriginal();
    void ShowRelations(RelationKind kind);
    void StartRename();
    bool MayEditLabel() const;
    void OnLabelEdited(const TVITEMW& item);
    void ApplyLabel();
    void Rename(std::uint32_t index, const std::wstring& name);
    void RenameCategory(std::uint32_t category, const std::wstring& name);
    void DeleteSelected();
    void DeleteSelectedTextures();
    bool ConfirmDeletion(std::size_t textures, std::size_t aliases);
    void SetSelectionDetail(UINT command);
    void ChangeSelectionProperty(UINT command);
    void ChangeProperty(std::span<const std::uint32_t> textures, Property property, std::uint32_t value);

    // DlgMainImport.cpp: image files into textures.
    void BindImportCommands();
    std::uint32_t CategoryForImport() const;
    void AskAndImport(ImportRequest request);
    void ImportFiles(const std::vector<std::filesystem::path>& files, const ImportRequest& request);
    void OnDropFiles(WPARAM wParam);
    void ImportDropped(const std::vector<std::filesystem::path>& pictures, POINT place);
    void ImportDroppedTXD(const DroppedFiles& dropped);
    void SelectDropTarget(POINT place);

    // DlgMainTools.cpp: the dialogs of the tools.
    void BindToolCommands();
    void AskAndImportTXD();
    void ImportTXD(const std::filesystem::path& dictionary);
    void AskAndCheckDFF();
    /// `archive` is opened at once unless it is empty.
    void ShowIMGTool(const std::filesystem::path& archive);
    void ImportIMG();
    void SyncIMG();
    void OptimizeCache();
    void ConvertCache();
    void EditRadarMap();

    // DlgMainHost.cpp: what the tools ask for.
    void BindHostMessages();
    CHostOperations HostOperations();
    void ImportForTool(const CBitmap* picture, ImportRecord& record);
    void ShowForTool(const wchar_t* name, const CBitmap* picture);
    std::unique_ptr<CBitmap> DecodeForTool(WPARAM index, LPARAM cache);

    // DlgMainExport.cpp: textures into image files.
    void ExportSelection();
    void ExportOne(std::uint32_t index);
    void ExportAll(std::optional<std::uint32_t> category, const std::wstring& caption);
    void ExportFocusedCategory();
    void ExportToFolder(const std::vector<std::uint32_t>& entries, const std::filesystem::path& folder);
    std::optional<std::filesystem::path> AskExportFolder();

    static constexpr UINT kApplyLabelMessage = WM_APP + 1;

    /// A label that was edited and waits to become a name.
    struct NewLabel {
        std::wstring text;
        std::optional<std::uint32_t> texture;
        std::optional<std::uint32_t> category;
    };

    MainWindowParts m_oParts;
    CGdiPlusSession m_oGdiPlus;
    CPluginMenu m_oPluginMenu;
    CRecentFiles m_oRecentFiles;
    CMenuHandle m_hMenu;
    CAcceleratorHandle m_hAccelerators;
    CIconHandle m_hIcon;
    CIconHandle m_hSmallIcon;
    CFontHandle m_hFont;      // once the window has moved to a screen of another resolution
    int m_nFixedOptions = 0;  // items of the options menu that do not come from plugins

    CComboBox m_oGameList;
    CTextureTree m_oTree;
    CTreePictures m_oTreePictures;
    CPropertiesPanel m_oProperties;
    CTabControl m_oTabs;
    CPreview m_oPreview;
    CStatusBar m_oStatus;
    CProgressPane m_oProgress;

    std::unique_ptr<CTextureDatabase> m_pDatabase;
    CacheIndex m_eCache = CacheIndex::Dxt;
    bool m_bThumbnails = false;
    bool m_bHasSearched = false;
    std::wstring m_sSearch;
    NewLabel m_oNewLabel;
};
