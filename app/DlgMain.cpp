#include "app/DlgMain.h"

#include <algorithm>
#include <array>
#include <windowsx.h>

#include "app/ErrorBox.h"
#include "app/SettingToggles.h"
#include "app/Splash.h"
#include "app/WindowPlacement.h"
#include "app/resource.h"
#include "base/Text.h"

namespace {

constexpr int kDefaultSplashTime = 700;

// Its keys edit the text: Ctrl+X cuts and Del deletes a character.
bool IsTextField(HWND window)
{
    std::array<wchar_t, 8> name{};
    ::GetClassNameW(window, name.data(), static_cast<int>(name.size()));
    return ::lstrcmpiW(name.data(), L"Edit") == 0;
}

}  // namespace

CDlgMain::CDlgMain(const MainWindowParts& parts)
    : CDialog(IDD_MAIN),
      m_oParts(parts),
      m_oPluginMenu(parts.plugins, parts.settings, parts.resources, parts.prompt),
      m_oRecentFiles(parts.settings)
{
    const int splashTime = parts.settings.ReadInt(L"global", L"show_loading_screen", kDefaultSplashTime);
    if (splashTime > 0)
        ShowSplash(parts.resources.Program(), splashTime);
    BindMessages();
    BindTree();
    BindFileCommands();
    BindImportCommands();
    BindEditCommands();
    BindViewCommands();
    BindOptionCommands();
    BindHostMessages();
    BindToolCommands();
}

void CDlgMain::BindMessages()
{
    CMessageMap& messages = Messages();
    messages.OnMessage(WM_SIZE, [this](WPARAM, LPARAM) {
        Layout();
        return 0;
    });
    messages.OnMessage(WM_GETMINMAXINFO, [this](WPARAM, LPARAM lParam) {
        OnMinMaxInfo(*reinterpret_cast<MINMAXINFO*>(lParam));  // NOLINT: the message carries a pointer
        return 0;
    });
    messages.OnMessage(WM_DPICHANGED, [this](WPARAM, LPARAM lParam) {
        OnDpiChanged(*reinterpret_cast<const RECT*>(lParam));  // NOLINT: as above
        return 0;
    });
    messages.OnMessage(WM_CONTEXTMENU, [this](WPARAM wParam, LPARAM lParam) {
        OnContextMenu(reinterpret_cast<HWND>(wParam),
                      {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});  // NOLINT
        return 0;
    });
    messages.OnMessage(WM_CLOSE, [this](WPARAM, LPARAM) {
        Exit();
        return 0;
    });
    messages.OnCommand(IDOK, [this] { OnReturnKey(); });
    // Esc closes dialogs, and this is one; the main window stays.
    messages.OnCommand(IDCANCEL, [] {});
    messages.OnMessage(WM_DROPFILES, [this](WPARAM wParam, LPARAM) {
        OnDropFiles(wParam);
        return 0;
    });
    messages.OnControl(IDC_GAME, CBN_SELCHANGE, [this] { SetGame(m_oGameList.Current()); });
    messages.OnNotify(IDC_TABS, static_cast<UINT>(TCN_SELCHANGE), [this](NMHDR&) {
        OnTabChanged();
        return 0;
    });
}

void CDlgMain::BindTree()
{
    CMessageMap& messages = Messages();
    messages.OnNotify(IDC_TREE, TVN_SELCHANGEDW, [this](NMHDR&) {
        m_oTree.Control().HandleSelChanged();
        return 0;
    });
    messages.OnNotify(IDC_TREE, TVN_GETDISPINFOW, [this](NMHDR& header) {
        OnTreeDrawsItem(reinterpret_cast<NMTVDISPINFOW&>(header).item);  // NOLINT: what the code carries
        return 0;
    });
    messages.OnNotify(IDC_TREE, TVN_KEYDOWN, [this](NMHDR& header) {
        if (reinterpret_cast<NMTVKEYDOWN&>(header).wVKey == VK_F2)  // NOLINT: what the code carries
            StartRename();
        return 0;
    });
    messages.OnNotify(IDC_TREE, TVN_BEGINLABELEDITW, [this](NMHDR&) { return MayEditLabel() ? 0 : 1; });
    messages.OnNotify(IDC_TREE, TVN_ENDLABELEDITW, [this](NMHDR& header) {
        OnLabelEdited(reinterpret_cast<NMTVDISPINFOW&>(header).item);  // NOLINT: as above
        return 0;
    });
    messages.OnMessage(kApplyLabelMessage, [this](WPARAM, LPARAM) {
        ApplyLabel();
        return 0;
    });
}

void CDlgMain::BindFileCommands()
{
    CMessageMap& messages = Messages();
    messages.OnCommand(ID_NEW, [this] { AskAndCreate(); });
    messages.OnCommand(ID_OPEN, [this] { AskAndOpen(); });
    messages.OnCommand(ID_CLOSE, [this] { CloseByCommand(); });
    messages.OnCommand(ID_RELOAD, [this] { Reload(); });
    messages.OnCommandRange(ID_RECENT_FIRST, ID_RECENT_LAST, [this](UINT id) { OpenRecent(id); });
    messages.OnCommand(ID_EXIT, [this] { Exit(); });
    messages.OnCommand(ID_FIND, [this] { Find(); });
    messages.OnCommand(ID_FIND_NEXT, [this] { FindNext(); });
    for (const UINT id : {ID_EXPORT_SELECTION, ID_EXPORT_SELECTION_CONTEXT})
        messages.OnCommand(id, [this] { ExportSelection(); });
    messages.OnCommand(ID_EXPORT_ALL, [this] { ExportAll(std::nullopt, String(IDS_EXPORT_ALL)); });
    messages.OnCommand(ID_EXPORT_CATEGORY, [this] { ExportFocusedCategory(); });
    messages.OnCommand(ID_FIX_NAME_HASHES, [this] { FixNameHashes(); });
    messages.OnCommand(ID_STATISTICS, [this] { ShowStatistics(); });
    messages.OnCommand(ID_ABOUT, [this] { m_oParts.dialogs.ShowAbout(); });
}

void CDlgMain::BindEditCommands()
{
    CMessageMap& messages = Messages();
    messages.OnCommand(ID_NEW_CATEGORY, [this] { AddCategory(); });
    messages.OnCommand(ID_NEW_CATEGORY_HERE, [this] { AddCategoryForFocused(); });
    messages.OnCommandRange(ID_CATEGORY_FIRST, ID_CATEGORY_LAST,
                            [this](UINT id) { MoveSelectionToCategory(id); });
    messages.OnCommandRange(ID_CATEGORY_PROPERTY, ID_CATEGORY_PROPERTY_LAST,
                            [this](UINT id) { ChangeCategoryProperty(id); });
    for (const UINT id : {ID_RENAME_TEXTURE, ID_RENAME_CATEGORY})
        messages.OnCommand(id, [this] { StartRename(); });
    messages.OnCommand(ID_CREATE_ALIAS, [this] { AskAndCreateAlias(); });
    messages.OnCommand(ID_SHOW_ALIASES, [this] { ShowRelations(RelationKind::Aliases); });
    messages.OnCommand(ID_SHOW_SIBLINGS, [this] { ShowRelations(RelationKind::Siblings); });
    messages.OnCommand(ID_GO_TO_ORIGINAL, [this] { GoToOriginal(); });
    messages.OnCommand(ID_DELETE_TEXTURE, [this] { DeleteSelectedTextures(); });
    messages.OnCommand(ID_DELETE_CATEGORY, [this] { DeleteFocusedCategory(); });
    messages.OnCommand(ID_DELETE_SELECTED, [this] { DeleteSelected(); });
    messages.OnCommandRange(ID_DETAIL_NONE, ID_DETAIL_LAST, [this](UINT id) { SetSelectionDetail(id); });
    messages.OnCommandRange(ID_TEXTURE_PROPERTY, ID_TEXTURE_PROPERTY_LAST,
                            [this](UINT id) { ChangeSelectionProperty(id); });
}

void CDlgMain::BindViewCommands()
{
    CMessageMap& messages = Messages();
    messages.OnCommandRange(ID_RENDERER_STATIC, ID_RENDERER_DIRECT, [this](UINT id) { ChooseRenderer(id); });
    messages.OnCommandRange(ID_BACKGROUND_NONE, ID_BACKGROUND_COLOR,
                            [this](UINT id) { ChooseBackground(id); });
    messages.OnCommand(ID_SET_BACKGROUND_COLOR, [this] { ChooseBackgroundColor(); });
    messages.OnCommand(ID_STRETCH, [this] { ToggleStretch(); });
    messages.OnCommand(ID_THUMBNAILS, [this] { ToggleThumbnails(); });
    messages.OnCommand(ID_NEXT_TAB, [this] { StepTab(1); });
    messages.OnCommand(ID_PREVIOUS_TAB, [this] { StepTab(-1); });
    messages.OnCommandRange(ID_LANGUAGE_ENGLISH, ID_LANGUAGE_LAST, [this](UINT id) { ChooseLanguage(id); });
}

void CDlgMain::BindOptionCommands()
{
    CMessageMap& messages = Messages();
    messages.OnCommandRange(ID_GAME_AUTO, ID_GAME_SAN_ANDREAS,
                            [this](UINT id) { SetGame(static_cast<int>(id - ID_GAME_AUTO)); });
    for (const SettingToggle& toggle : SettingToggles())
        messages.OnCommand(toggle.command,
                           [this, &toggle] { FlipToggle(toggle, Menu(), m_oParts.settings); });
    messages.OnCommandRange(ID_PLUGIN_NONE, ID_PLUGIN_LAST, [this](UINT id) {
        if (m_oPluginMenu.Execute(id))
            m_oPluginMenu.Rebuild(*Menu().PopupWith(ID_DISABLE_LOGO), m_nFixedOptions);
    });
}

bool CDlgMain::Open()
{
    CPreview::Register(m_oParts.resources.Program(), CPreview::kClassName);
    CPropertiesPanel::Register(m_oParts.resources.Program(), CPropertiesPanel::kClassName);
    if (!Create(m_oParts.resources.Current(), nullptr))
        return false;
    ::ShowWindow(Handle(), SW_SHOWDEFAULT);
    ::UpdateWindow(Handle());
    return true;
}

bool CDlgMain::OnInit()
{
    CreateControls();
    LoadMenu();
    m_hIcon = m_oParts.resources.Icon(IDI_MAVREL, false);
    m_hSmallIcon = m_oParts.resources.Icon(IDI_MAVREL, true);
    Send(WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(m_hIcon.get()));  // NOLINT: as the message is defined
    Send(WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(m_hSmallIcon.get()));  // NOLINT: as above

    // Deliberate: every run starts with GDI+, whatever was chosen in the last one.
    m_oParts.settings.WriteInt(L"render", L"type", ID_RENDERER_GDIPLUS - ID_RENDERER_STATIC);
    ApplyPreviewSettings();
    RestoreWindowPlace(*this, m_oParts.settings);
    if (const auto change = m_oParts.languages.LoadFromSettings())
        ShowLanguage(*change);
    Close();
    Status(String(IDS_READY));
    Layout();
    m_oTree.Control().Focus();
    return false;
}

bool CDlgMain::PreTranslate(MSG& message)
{
    // While a label is edited its keys are text: Enter and Esc end the editing, Del deletes a character.
    if (message.hwnd != nullptr && message.hwnd == m_oTree.Control().LabelEditor()) {
        ::TranslateMessage(&message);
        ::DispatchMessageW(&message);
        return true;
    }
    const bool isOurs = message.hwnd == Handle() || ::IsChild(Handle(), message.hwnd) != FALSE;
    // Del deletes what the tree has selected, which is not what a person means who is in the panel.
    const bool isDelOfPanel =
        message.message == WM_KEYDOWN && message.wParam == VK_DELETE && m_oProperties.HasFocus();
    return isOurs && !isDelOfPanel && !IsTextField(message.hwnd) &&
           ::TranslateAcceleratorW(Handle(), m_hAccelerators.get(), &message) != 0;
}

void CDlgMain::Attempt(const std::function<void()>& step)
{
    try {
        step();
    } catch (...) {
        OnException();
    }
}

bool CDlgMain::AcceptsCommands() const
{
    // A disabled window has a box above it, and a running bar means work that uses the database. Only another
    // program can send a command then; it must not pull the database away.
    return IsEnabled() && !m_oProgress.IsRunning();
}

void CDlgMain::OnException()
{
    m_oProgress.Hide();
    ShowCurrentException(m_oParts.prompt);
}

void CDlgMain::OnReturnKey()
{
    const CTreeCtrlEx& tree = m_oTree.Control();
    if (::GetFocus() == tree.Handle() && tree.Caret() != nullptr)
        tree.Expand(tree.Caret(), TVE_TOGGLE);
}

void CDlgMain::Exit()
{
    SaveWindowPlace(*this, m_oParts.settings);
    End(0);
}
