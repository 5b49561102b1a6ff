#include "app/PropertyList.h"

#include <algorithm>
#include <array>
#include <windowsx.h>

#include "ui/CheckBoxPicture.h"
#include "ui/Dpi.h"
#include "ui/Theme.h"

namespace {

constexpr int kLabelColumn = 0;
constexpr int kValueColumn = 1;
// Lengths in 1/96 inch. The control itself leaves as much beside the text of a cell.
constexpr int kCellMargin = 6;
constexpr int kLabelRoom = 16;
constexpr int kNarrowestValue = 60;

}  // namespace

bool CPropertyList::Create(HWND parent, int id)
{
    const auto menu = reinterpret_cast<HMENU>(static_cast<INT_PTR>(id));  // NOLINT: how a child gets its id
    const HWND list =
        ::CreateWindowExW(0, WC_LISTVIEWW, L"",
                          WS_CHILD | WS_VISIBLE | WS_BORDER | WS_TABSTOP | WS_CLIPSIBLINGS | LVS_REPORT |
                              LVS_SINGLESEL | LVS_SHOWSELALWAYS | LVS_NOCOLUMNHEADER,
                          0, 0, 0, 0, parent, menu, nullptr, nullptr);
    if (list == nullptr)
        return false;
    TakeOver(list);
    UseRows();
    AddColumn(L"", 0);
    AddColumn(L"", 0);
    return true;
}

void CPropertyList::ShowRows(std::vector<PropertyRow> rows)
{
    const int shown = static_cast<int>(m_aRows.size());
    const int count = static_cast<int>(rows.size());
    bool labelsChanged = shown != count;
    // Every row that comes or goes would be drawn by itself, with the scroll bar.
    const std::optional<CNoRedraw> quiet =
        labelsChanged ? std::optional<CNoRedraw>(std::in_place, *this) : std::nullopt;
    std::swap(m_aRows, rows);
    for (int row = 0; row < std::min(shown, count); ++row)
        labelsChanged = UpdateRow(row, rows[static_cast<std::size_t>(row)]) || labelsChanged;
    for (int row = shown; row < count; ++row) {
        const PropertyRow& added = m_aRows[static_cast<std::size_t>(row)];
        Append(added.label);
        SetItemText(row, kValueColumn, added.text);
    }
    for (int row = shown; row > count; --row)
        Delete(row - 1);
    if (!labelsChanged)
        return;
    LayoutColumns();
    if (count > 0 && Focused() < 0)
        SetFocused(0);
}

bool CPropertyList::UpdateRow(int row, const PropertyRow& shown)
{
    const PropertyRow& next = m_aRows[static_cast<std::size_t>(row)];
    if (next == shown)
        return false;
    const bool labelChanged = next.label != shown.label;
    if (labelChanged)
        SetItemText(row, kLabelColumn, next.label);
    if (next.text != shown.text)
        SetItemText(row, kValueColumn, next.text);
    else
        RedrawRow(row);
    return labelChanged;
}

void CPropertyList::Layout(int rowHeight)
{
    m_nWidestLabel = 0;
    if (rowHeight != m_nRowHeight) {
        SetRowHeight(rowHeight);
        m_nRowHeight = rowHeight;
    }
    LayoutColumns();
}

void CPropertyList::LayoutColumns()
{
    // The column never becomes narrower again, so that the values of textures and categories stand in one
    // line.
    for (const PropertyRow& row : m_aRows)
        m_nWidestLabel = std::max(m_nWidestLabel, TextWidth(row.label));
    const CScale scale(DpiOf(Handle()));
    const int labels = m_nWidestLabel + scale(kLabelRoom);
    const int room = RoomForColumns() - labels;
    const std::array widths = {labels, std::max(room, scale(kNarrowestValue))};
    for (const int column : {kLabelColumn, kValueColumn}) {
        const int width = widths[static_cast<std::size_t>(column)];
        // Even the width that it has makes the control draw everything again.
        if (ColumnWidth(column) != width)
            SetColumnWidth(column, width);
    }
}

int CPropertyList::RoomForColumns() const
{
    // While drawing is stopped the scroll bar is still the one of the rows before.
    const RECT client = ClientRect();
    const int bar = ::GetSystemMetrics(SM_CXVSCROLL);
    const bool hasBar = (::GetWindowLongPtrW(Handle(), GWL_STYLE) & WS_VSCROLL) != 0;
    const bool needsBar = static_cast<int>(m_aRows.size()) * m_nRowHeight > client.bottom;
    return client.right + (hasBar ? bar : 0) - (needsBar ? bar : 0);
}

const PropertyRow* CPropertyList::RowOf(int row) const
{
    const auto at = static_cast<std::size_t>(row);
    return row >= 0 && at < m_aRows.size() ? &m_aRows[at] : nullptr;
}

RECT CPropertyList::ValuePlace(const PropertyRow& row) const
{
    const auto number = static_cast<int>(&row - m_aRows.data());
    EnsureVisible(number);
    return CellRect(number, kValueColumn);
}

LRESULT CPropertyList::HandleCustomDraw(NMLVCUSTOMDRAW& draw) const
{
    if (draw.nmcd.dwDrawStage == CDDS_PREPAINT)
        return CDRF_NOTIFYITEMDRAW;
    if (draw.nmcd.dwDrawStage == CDDS_ITEMPREPAINT)
        return CDRF_NOTIFYSUBITEMDRAW;
    const int row = static_cast<int>(draw.nmcd.dwItemSpec);
    const PropertyRow* const shown = RowOf(row);
    if (draw.nmcd.dwDrawStage != (CDDS_ITEMPREPAINT | CDDS_SUBITEM) || shown == nullptr)
        return CDRF_DODEFAULT;
    draw.clrText = ::GetSysColor(TextColorOf(row));
    if (draw.iSubItem != kValueColumn || shown->kind != PropertyRowKind::Flag)
        return CDRF_DODEFAULT;
    DrawFlag(draw.nmcd.hdc, row);
    return CDRF_SKIPDEFAULT;
}

bool CPropertyList::IsLit(int row) const
{
    return !HasExplorerTheme() && IsSelected(row) && ::GetFocus() == Handle();
}

int CPropertyList::TextColorOf(int row) const
{
    const PropertyRow& shown = *RowOf(row);
    if (IsLit(row))
        return COLOR_HIGHLIGHTTEXT;
    const bool isFact = shown.kind == PropertyRowKind::Fact;
    return shown.canChange || isFact ? COLOR_WINDOWTEXT : COLOR_GRAYTEXT;
}

void CPropertyList::DrawFlag(HDC target, int row) const
{
    const PropertyRow& shown = *RowOf(row);
    RECT cell = CellRect(row, kValueColumn);
    // The file windows' look has painted the whole row already.
    if (!HasExplorerTheme()) {
        const int unlit = IsSelected(row) ? COLOR_BTNFACE : COLOR_WINDOW;
        ::FillRect(target, &cell, ::GetSysColorBrush(IsLit(row) ? COLOR_HIGHLIGHT : unlit));
    }
    const CScale scale(DpiOf(Handle()));
    cell.left += scale(kCellMargin);
    DrawCheckBox(*this, target, cell, shown.value != 0, shown.canChange);
    // The list may hold more than on and off.
    if (shown.value <= 1)
        return;
    cell.left += CheckBoxSize(*this).cx + scale(kCellMargin);
    ::SetTextColor(target, ::GetSysColor(TextColorOf(row)));
    ::SetBkMode(target, TRANSPARENT);
    ::DrawTextW(target, shown.text.c_str(), -1, &cell, DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS);
}

std::optional<LRESULT> CPropertyList::Filter(UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_LBUTTONDOWN) {
        const int row = CellAt({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}).row;
        const bool hadFocus = ::GetFocus() == Handle() && row >= 0 && IsSelected(row);
        m_nRowBeforeClick = hadFocus ? row : -1;
    }
    if (message == WM_GETDLGCODE) {
        // Enter edits here; without this the main window would take it for its own.
        const auto* asked = reinterpret_cast<const MSG*>(lParam);  // NOLINT: what the message carries
        if (asked != nullptr && asked->wParam == VK_RETURN)
            return PassOn(message, wParam, lParam) | DLGC_WANTALLKEYS;
    }
    return std::nullopt;
}

bool CPropertyList::IsOnCheckBox(POINT place, int row) const
{
    const CScale scale(DpiOf(Handle()));
    RECT box = CellRect(row, kValueColumn);
    box.right = std::min(box.right, box.left + CheckBoxSize(*this).cx + 2 * scale(kCellMargin));
    return ::PtInRect(&box, place) != FALSE;
}

void CPropertyList::HandleClick(const NMITEMACTIVATE& click, bool isDouble)
{
    const ListCell cell = CellAt(click.ptAction);
    const PropertyRow* const row = RowOf(cell.row);
    if (row == nullptr)
        return;
    const bool isFlag = row->kind == PropertyRowKind::Flag;
    const bool isSecondClick = cell.column == kValueColumn && cell.row == m_nRowBeforeClick;
    // A click beside the box of a flag only selects: every change is written to the files at once.
    const bool changes = isFlag ? IsOnCheckBox(click.ptAction, cell.row) : isSecondClick;
    if (isDouble || changes)
        WantChange(cell.row);
}

void CPropertyList::HandleKey(WORD key)
{
    const PropertyRow* const row = RowOf(Focused());
    if (row == nullptr)
        return;
    const bool isFlag = row->kind == PropertyRowKind::Flag;
    if (key == VK_RETURN || key == VK_F2 || (key == VK_SPACE && isFlag))
        WantChange(Focused());
}

void CPropertyList::WantChange(int row)
{
    const PropertyRow* const wanted = RowOf(row);
    if (wanted != nullptr && wanted->canChange && m_fnChange)
        m_fnChange(*wanted);
}
