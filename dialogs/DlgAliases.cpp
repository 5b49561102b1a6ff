#include "dialogs/DlgAliases.h"

#include <algorithm>

#include "app/ErrorBox.h"
#include "app/resource.h"
#include "base/Format.h"
#include "ui/Dpi.h"

namespace {

struct Column {
    UINT title;
    int width;
};

// Lengths in 1/96 inch.
constexpr Column kAliasColumns[] = {
    {IDS_COLUMN_ID, 50}, {IDS_COLUMN_TEXTURE, 230}, {IDS_COLUMN_HAS_SIBLING, 100}};
constexpr Column kSiblingColumns[] = {{IDS_COLUMN_ID, 50},
                                      {IDS_COLUMN_TEXTURE, 200},
                                      {IDS_COLUMN_TXD, 130},
                                      {IDS_COLUMN_HAS_SIBLING, 70},
                                      {IDS_COLUMN_ALIAS_OF, 130}};
constexpr int kRowHeight = 18;
constexpr int kMargin = 10;
constexpr int kGap = 6;
constexpr int kHeight = 380;
constexpr SIZE kSmallest = {320, 220};

SIZE SizeOf(const RECT& rect)
{
    return {rect.right - rect.left, rect.bottom - rect.top};
}

}  // namespace

CDlgAliases::CDlgAliases(const RelationListParts& parts, RelationKind kind,
                         std::optional<std::uint32_t> index)
    : CDialog(IDD_ALIASES),
      m_oParts(parts),
      m_eKind(kind),
      m_nIndex(index),
      m_aRows(RelatedTextures(parts.database, kind, index))
{
    CMessageMap& messages = Messages();
    for (const UINT id : {IDOK, IDCANCEL})
        messages.OnCommand(id, [this, id] { End(static_cast<INT_PTR>(id)); });
    messages.OnMessage(WM_SIZE, [this](WPARAM, LPARAM) {
        Layout();
        return 0;
    });
    messages.OnMessage(WM_GETMINMAXINFO, [this](WPARAM, LPARAM lParam) {
        OnMinMaxInfo(*reinterpret_cast<MINMAXINFO*>(lParam));  // NOLINT: the message carries a pointer
        return 0;
    });
    messages.OnNotify(IDC_ALIASES, LVN_ITEMCHANGED, [this](NMHDR& header) {
        OnItemChanged(reinterpret_cast<const NMLISTVIEW&>(header));  // NOLINT: what the code carries
        return 0;
    });
}

void CDlgAliases::Run(HWND owner)
{
    if (!m_aRows)
        return;
    if (m_aRows->empty()) {
        m_oParts.prompt.Show({.text = m_oParts.resources.Text(IDS_NO_ALIASES),
                              .caption = m_oParts.resources.Text(IDS_PROGRAM),
                              .icon = PromptIcon::Information});
        return;
    }
    DoModal(m_oParts.resources.Current(), owner);
}

bool CDlgAliases::OnInit()
{
    // The title of the alias list is the dialog's own caption.
    const std::wstring title = IsSiblingList() ? m_oParts.resources.Text(IDS_SIBLINGS_TITLE) : Text();
    if (m_nIndex)
        SetText(Format(title, m_oParts.database.Entry(*m_nIndex).name));
    m_nDpi = DpiOf(Handle());
    m_oList.Attach(Child(IDC_ALIASES).Handle());
    m_oList.UseRows();
    m_oList.SetRowHeight(CScale(m_nDpi)(kRowHeight));
    AddColumns();
    AddRows();
    PlaceWindow();
    Layout();
    m_oList.Focus();
    return false;
}

void CDlgAliases::OnException()
{
    ShowCurrentException(m_oParts.prompt);
}

void CDlgAliases::AddColumns()
{
    const CScale scale(m_nDpi);
    const auto add = [this, &scale](std::span<const Column> columns) {
        for (const Column& column : columns)
            m_oList.AddColumn(m_oParts.resources.Text(column.title), scale(column.width));
    };
    if (IsSiblingList())
        add(kSiblingColumns);
    else
        add(kAliasColumns);
}

void CDlgAliases::AddRows()
{
    const std::wstring yes = m_oParts.resources.Text(IDS_YES);
    const std::wstring no = m_oParts.resources.Text(IDS_NO);
    const CNoRedraw quiet(m_oList);
    m_oList.Reserve(static_cast<int>(m_aRows->size()));
    for (const RelatedTexture& related : *m_aRows) {
        const int row = m_oList.Append(related.id, static_cast<LPARAM>(related.index));
        m_oList.SetItemText(row, 1, related.name);
        const std::wstring& hasSibling = related.hasSibling ? yes : no;
        if (IsSiblingList()) {
            m_oList.SetItemText(row, 2, related.txd);
            m_oList.SetItemText(row, 3, hasSibling);
            m_oList.SetItemText(row, 4, related.aliasOf);
        } else {
            m_oList.SetItemText(row, 2, hasSibling);
        }
    }
    // The keyboard starts at the texture itself, without selecting it: that would be a request already.
    const auto own = std::ranges::find(*m_aRows, m_nIndex, &RelatedTexture::index);
    m_oList.SetFocused(own == m_aRows->end() ? 0 : static_cast<int>(own - m_aRows->begin()));
}

void CDlgAliases::PlaceWindow()
{
    const CScale scale(m_nDpi);
    const auto dpi = static_cast<UINT>(m_nDpi);
    LONG width = 2 * scale(kMargin) + ::GetSystemMetricsForDpi(SM_CXVSCROLL, dpi) +
                 2 * ::GetSystemMetricsForDpi(SM_CXBORDER, dpi);
    for (int column = 0; column < m_oList.ColumnCount(); ++column)
        width += m_oList.ColumnWidth(column);
    RECT frame = {0, 0, width, scale(kHeight)};
    ::AdjustWindowRectExForDpi(&frame, static_cast<DWORD>(::GetWindowLongPtrW(Handle(), GWL_STYLE)), FALSE,
                               static_cast<DWORD>(::GetWindowLongPtrW(Handle(), GWL_EXSTYLE)), dpi);

    const CWindow owner(::GetWindow(Handle(), GW_OWNER));
    const RECT work = owner.Exists() ? owner.WorkArea() : WorkArea();
    const RECT around = owner.Exists() ? owner.WindowRect() : work;
    const SIZE size = {std::min(SizeOf(frame).cx, SizeOf(work).cx),
                       std::min(SizeOf(frame).cy, SizeOf(work).cy)};
    const LONG left = std::clamp((around.left + around.right - size.cx) / 2, work.left, work.right - size.cx);
    const LONG top = std::clamp((around.top + around.bottom - size.cy) / 2, work.top, work.bottom - size.cy);
    Move({left, top, left + size.cx, top + size.cy});
}

void CDlgAliases::Layout()
{
    if (m_oList.Handle() == nullptr)
        return;
    if (const int dpi = DpiOf(Handle()); dpi != m_nDpi) {
        for (int column = 0; column < m_oList.ColumnCount(); ++column)
            m_oList.SetColumnWidth(column, ::MulDiv(m_oList.ColumnWidth(column), dpi, m_nDpi));
        m_nDpi = dpi;
        m_oList.SetRowHeight(CScale(dpi)(kRowHeight));
    }
    const CScale scale(m_nDpi);
    const RECT client = ClientRect();
    const SIZE button = SizeOf(Child(IDOK).WindowRect());
    const LONG bottom = client.bottom - scale(kMargin);
    const LONG right = client.right - scale(kMargin);
    const LONG cancelLeft = right - button.cx;
    const LONG okRight = cancelLeft - scale(kGap);
    Child(IDCANCEL).Move({cancelLeft, bottom - button.cy, right, bottom});
    Child(IDOK).Move({okRight - button.cx, bottom - button.cy, okRight, bottom});
    m_oList.Move({scale(kMargin), scale(kMargin), right, bottom - button.cy - scale(kMargin)});
}

void CDlgAliases::OnMinMaxInfo(MINMAXINFO& info) const
{
    const CScale scale(DpiOf(Handle()));
    info.ptMinTrackSize = {scale(kSmallest.cx), scale(kSmallest.cy)};
}

void CDlgAliases::OnItemChanged(const NMLISTVIEW& change)
{
    const UINT turned = change.uOldState ^ change.uNewState;
    if ((change.uChanged & LVIF_STATE) == 0 || (turned & LVIS_SELECTED) == 0)
        return;
    const int row = m_oList.FirstSelected();
    if (row >= 0)
        m_oParts.host.Select(static_cast<std::uint32_t>(m_oList.Data(row)));
}
