#include "app/DlgMain.h"

#include <algorithm>
#include <array>
#include <windowsx.h>

#include "app/ErrorBox.h"
#include "app/SettingToggles.h"
#include "app/Splash.h"
#include "app/WindowPlacement.h"
#include "app/resource.h"
#include "base/Format.h"
#include "base/Text.h"
#include "tools/EditProperties.h"
#include "tools/TextureFacts.h"
#include "ui/Dpi.h"
#include "ui/DroppedFiles.h"
#include "ui/Theme.h"

namespace {

constexpr int kDefaultSplashTime = 700;
constexpr int kDefaultBackgroundColor = 0x808080;

// Lengths in 1/96 inch.
constexpr SIZE kSmallestWindow = {640, 480};
constexpr int kGap = 5;
constexpr int kTreeGap = 2;  // above the status bar
constexpr int kTabsLeft = 240;
constexpr int kTabsTop = 30;
constexpr int kTabsRightAndLeft = 245;  // what the tabs leave free of the width
constexpr int kTabsTopAndBottom = 52;   // and of the height
constexpr int kGameLabelWidth = 45;
constexpr int kGameTop = 4;
constexpr int kTextHeight = 14;
constexpr int kGameDropHeight = 120;
constexpr int kTreePictureSide = 16;
constexpr std::array kPaneWidths = {130, 150, 60, 100, 60, 60};

// Its keys edit the text: Ctrl+X cuts and Del deletes a character.
bool IsTextField(HWND window)
{
    std::array<wchar_t, 8> name{};
    ::GetClassNameW(window, name.data(), static_cast<int>(name.size()));
    return ::lstrcmpiW(name.data(), L"Edit") == 0;
}

RECT Place(LONG left, LONG top, LONG width, LONG height)
{
    return {left, top, left + std::max(width, 0L), top + std::max(height, 0L)};
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

void CDlgMain::CreateControls()
{
    m_oGameList.Attach(Child(IDC_GAME).Handle());
    FillGameList();

    CTreeCtrlEx& tree = m_oTree.Control();
    tree.TakeOver(Child(IDC_TREE).Handle());
    // The tree calls from inside its window procedure, which nothing may be thrown through.
    tree.OnSelectionChanged([this] { Attempt([this] { OnSelectionChanged(); }); });
    if (m_oParts.settings.IsOn(L"global", L"show_pluses", false)) {
        const LONG_PTR style = ::GetWindowLongPtrW(tree.Handle(), GWL_STYLE);
        ::SetWindowLongPtrW(tree.Handle(), GWL_STYLE,
                            style | TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT);
    }
    UseExplorerTheme(tree);
    if (m_oParts.settings.IsOn(L"global", L"show_thumbs", false))
        m_oTreePictures.Attach(tree, CScale(DpiOf(Handle()))(kTreePictureSide));

    CreateProperties();

    m_oTabs.Attach(Child(IDC_TABS).Handle());
    for (const CacheIndex cache : kAllCaches)
        m_oTabs.Append(ToUpperAscii(CacheInfix(cache)) + L"       ");
    m_oPreview.TakeOver(Child(IDC_PREVIEW).Handle());
    ::SetWindowPos(m_oPreview.Handle(), HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);

    m_oStatus.Create(Handle(), IDC_STATUS);
    m_oProgress.Create(m_oStatus, IDC_PROGRESS);
    m_oProgress.SetText(String(IDS_PROGRESS));
    AcceptDroppedFiles(Handle());
}

void CDlgMain::FillGameList()
{
    m_oGameList.Clear();
    for (const StreamMode game : {StreamMode::Auto, StreamMode::Raw, StreamMode::Framed})
        m_oGameList.Append(Translated(GameName(game)));
}

void CDlgMain::CreateProperties()
{
    m_oProperties.Create(Handle(), IDC_PROPERTIES, m_oParts.resources, m_oTree.Control().Handle());
    // Called from inside window procedures, which nothing may be thrown through.
    m_oProperties.OnTextureEdit([this](std::uint32_t index, Property property, std::uint32_t value) {
        Attempt([&] { ChangeProperty({{index}}, property, value); });
        ShowProperties();
    });
    m_oProperties.OnCategoryEdit(
        [this](std::uint32_t category, CategoryProperty property, std::int32_t value) {
            Attempt([&] { ::ChangeCategoryProperty(*m_pDatabase, category, property, value); });
            ShowProperties();
        });
    m_oProperties.OnFoldChanged([this] {
        Layout();
        ShowProperties();
    });
}

void CDlgMain::ApplyPreviewSettings()
{
    PreviewOptions options = m_oPreview.Options();
    options.color = static_cast<COLORREF>(
                        m_oParts.settings.ReadInt(L"render", L"background_color", kDefaultBackgroundColor)) &
                    0xFFFFFF;
    m_oPreview.SetOptions(options);
    ShowBackground();
}

void CDlgMain::Layout()
{
    if (m_oStatus.Handle() == nullptr)
        return;
    const CScale scale(DpiOf(Handle()));
    m_oStatus.Follow();
    std::array<int, kPaneWidths.size()> panes{};
    std::transform(kPaneWidths.begin(), kPaneWidths.end(), panes.begin(), scale);
    m_oStatus.SetPanes(panes);
    m_oProgress.Follow();

    const RECT client = ClientRect();
    const LONG gap = scale(kGap);
    const LONG columnRight = scale(kTabsLeft) - gap;
    const LONG labelRight = gap + scale(kGameLabelWidth);
    const RECT list = m_oGameList.WindowRect();
    const LONG listHeight = list.bottom - list.top;
    const LONG labelHeight = std::min<LONG>(listHeight, scale(kTextHeight));
    const LONG listTop = scale(kGameTop);
    Child(IDC_GAME_LABEL)
        .Move(Place(gap, listTop + (listHeight - labelHeight) / 2, labelRight - gap, labelHeight));
    m_oGameList.Move(Place(labelRight, listTop, columnRight - labelRight, scale(kGameDropHeight)));

    const RECT bar = m_oStatus.ClientRect();
    const LONG treeTop = std::max<LONG>(scale(kTabsTop), listTop + listHeight + gap);
    const LONG columnHeight = client.bottom - bar.bottom - scale(kTreeGap) - treeTop;
    LayoutColumn(Place(gap, treeTop, columnRight - gap, columnHeight));

    const RECT tabs = Place(scale(kTabsLeft), scale(kTabsTop), client.right - scale(kTabsRightAndLeft),
                            client.bottom - scale(kTabsTopAndBottom));
    m_oTabs.Move(tabs);
    m_oPreview.Move(m_oTabs.DisplayArea(tabs));
}

void CDlgMain::LayoutColumn(const RECT& column)
{
    const LONG width = column.right - column.left;
    const LONG height = column.bottom - column.top;
    const LONG properties = m_oProperties.PreferredHeight(height);
    const LONG tree = height - properties - CScale(DpiOf(Handle()))(kTreeGap);
    m_oTree.Control().Move(Place(column.left, column.top, width, tree));
    m_oProperties.Move(Place(column.left, column.bottom - properties, width, properties));
    // The status bar has moved across the column before, and a control takes what it sees along when it
    // moves.
    for (const HWND control : {m_oTree.Control().Handle(), m_oProperties.Handle()})
        ::RedrawWindow(control, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

void CDlgMain::OnTreeDrawsItem(TVITEMW& item)
{
    if (!m_pDatabase || item.lParam == CTreeCtrlEx::kSingleItem)
        return;
    item.iImage =
        m_oTreePictures.PictureOf(static_cast<std::uint32_t>(item.lParam), *m_pDatabase, m_oParts.plugins);
    item.iSelectedImage = item.iImage;
}

void CDlgMain::OnMinMaxInfo(MINMAXINFO& info) const
{
    const CScale scale(DpiOf(Handle()));
    info.ptMinTrackSize = {scale(kSmallestWindow.cx), scale(kSmallestWindow.cy)};
}

void CDlgMain::OnDpiChanged(const RECT& place)
{
    CFontHandle font = MessageFont(DpiOf(Handle()));
    for (const int id : {IDC_GAME_LABEL, IDC_GAME, IDC_TREE, IDC_PROPERTIES, IDC_TABS, IDC_STATUS})
        Child(id).Send(WM_SETFONT, reinterpret_cast<WPARAM>(font.get()), TRUE);  // NOLINT: the message's form
    m_hFont = std::move(font);
    Move(place);
    Layout();
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
    // The Del key is meant for the tree.
    const bool isLost =
        message.message == WM_KEYDOWN && message.wParam == VK_DELETE && m_oProperties.HasFocus();
    return isOurs && !isLost && !IsTextField(message.hwnd) &&
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
