#include <algorithm>
#include <array>

#include "app/DlgMain.h"
#include "app/resource.h"
#include "base/Text.h"
#include "tools/EditProperties.h"
#include "tools/TextureFacts.h"
#include "ui/Dpi.h"
#include "ui/DroppedFiles.h"
#include "ui/Theme.h"

namespace {

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

RECT Place(LONG left, LONG top, LONG width, LONG height)
{
    return {left, top, left + std::max(width, 0L), top + std::max(height, 0L)};
}

}  // namespace

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
