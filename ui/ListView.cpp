#include "ui/ListView.h"

#include <array>

#include "ui/Theme.h"

namespace {

constexpr std::size_t kLongestText = 1024;

}  // namespace

void CListView::UseRows(DWORD more) const
{
    UseExplorerTheme(*this);
    const DWORD styles = LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_LABELTIP | more;
    Send(LVM_SETEXTENDEDLISTVIEWSTYLE, styles, static_cast<LPARAM>(styles));
}

void CListView::SetRowHeight(int height) const
{
    // Rows are as high as the small pictures, of which this list has none. The control destroys its list.
    const HIMAGELIST pictures = ::ImageList_Create(1, height, ILC_COLOR32, 0, 0);
    const LRESULT old = SendPointer(LVM_SETIMAGELIST, LVSIL_SMALL, pictures);
    ::ImageList_Destroy(reinterpret_cast<HIMAGELIST>(old));  // NOLINT: the message's result
}

void CListView::AddColumn(const std::wstring& text, int width) const
{
    LVCOLUMNW column{};
    column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM;
    column.pszText = const_cast<wchar_t*>(text.c_str());  // NOLINT: only read by the control
    column.cx = width;
    column.iSubItem = ColumnCount();
    SendPointer(LVM_INSERTCOLUMNW, Number(column.iSubItem), &column);
}

std::wstring CListView::ColumnText(int column) const
{
    std::array<wchar_t, kLongestText> buffer{};
    LVCOLUMNW info{};
    info.mask = LVCF_TEXT;
    info.pszText = buffer.data();
    info.cchTextMax = static_cast<int>(buffer.size());
    SendPointer(LVM_GETCOLUMNW, Number(column), &info);
    return buffer.data();
}

void CListView::SetColumnText(int column, const std::wstring& text) const
{
    LVCOLUMNW info{};
    info.mask = LVCF_TEXT;
    info.pszText = const_cast<wchar_t*>(text.c_str());  // NOLINT: only read by the control
    SendPointer(LVM_SETCOLUMNW, Number(column), &info);
}

int CListView::ColumnCount() const
{
    const auto header = reinterpret_cast<HWND>(Send(LVM_GETHEADER));  // NOLINT: the message's result
    return static_cast<int>(::SendMessageW(header, HDM_GETITEMCOUNT, 0, 0));
}

int CListView::Append(const std::wstring& text, LPARAM data) const
{
    LVITEMW item{};
    item.mask = LVIF_TEXT | LVIF_PARAM;
    item.iItem = Count();
    item.pszText = const_cast<wchar_t*>(text.c_str());  // NOLINT: only read by the control
    item.lParam = data;
    return static_cast<int>(SendPointer(LVM_INSERTITEMW, 0, &item));
}

void CListView::AppendOnDemand(int rows) const
{
    // A message a row and column, and no more: a list may have many.
    const int first = Count();
    const int columns = ColumnCount();
    Reserve(first + rows);
    for (int row = first; row < first + rows; ++row) {
        LVITEMW item{};
        item.mask = LVIF_TEXT;
        item.iItem = row;
        item.pszText = LPSTR_TEXTCALLBACKW;  // NOLINT: the system's own constant
        SendPointer(LVM_INSERTITEMW, 0, &item);
        for (item.iSubItem = 1; item.iSubItem < columns; ++item.iSubItem)
            SendPointer(LVM_SETITEMTEXTW, Number(row), &item);
    }
}

void CListView::SetItemText(int row, int column, const std::wstring& text) const
{
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = const_cast<wchar_t*>(text.c_str());  // NOLINT: only read by the control
    SendPointer(LVM_SETITEMTEXTW, Number(row), &item);
}

std::wstring CListView::ItemText(int row, int column) const
{
    std::array<wchar_t, kLongestText> buffer{};
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = buffer.data();
    item.cchTextMax = static_cast<int>(buffer.size());
    SendPointer(LVM_GETITEMTEXTW, Number(row), &item);
    return buffer.data();
}

LPARAM CListView::Data(int row) const
{
    LVITEMW item{};
    item.mask = LVIF_PARAM;
    item.iItem = row;
    SendPointer(LVM_GETITEMW, 0, &item);
    return item.lParam;
}

void CListView::SetData(int row, LPARAM data) const
{
    LVITEMW item{};
    item.mask = LVIF_PARAM;
    item.iItem = row;
    item.lParam = data;
    SendPointer(LVM_SETITEMW, 0, &item);
}

std::vector<int> CListView::SelectedRows() const
{
    std::vector<int> rows;
    for (int row = FirstSelected(); row >= 0; row = NextSelected(row))
        rows.push_back(row);
    return rows;
}

bool CListView::IsSelected(int row) const
{
    return (Send(LVM_GETITEMSTATE, Number(row), LVIS_SELECTED) & LVIS_SELECTED) != 0;
}

void CListView::SetFocused(int row) const
{
    SetState(row, LVIS_FOCUSED, LVIS_FOCUSED);
    EnsureVisible(row);
}

void CListView::Select(int row) const
{
    for (const int selected : SelectedRows())
        if (selected != row)
            SetState(selected, 0, LVIS_SELECTED);
    SetState(row, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    EnsureVisible(row);
}

bool CListView::IsChecked(int row) const
{
    // The state images of a check box are 1 and 2.
    return (Send(LVM_GETITEMSTATE, Number(row), LVIS_STATEIMAGEMASK) & LVIS_STATEIMAGEMASK) ==
           INDEXTOSTATEIMAGEMASK(2);
}

void CListView::SetChecked(int row, bool checked) const
{
    SetState(row, INDEXTOSTATEIMAGEMASK(checked ? 2U : 1U), LVIS_STATEIMAGEMASK);
}

ListCell CListView::CellAt(POINT place) const
{
    LVHITTESTINFO hit{};
    hit.pt = place;
    SendPointer(LVM_SUBITEMHITTEST, 0, &hit);
    return hit.iItem < 0 ? ListCell{} : ListCell{hit.iItem, hit.iSubItem};
}

RECT CListView::CellRect(int row, int column) const
{
    // The first column's bounds would be those of the whole row.
    RECT rect{column == 0 ? LVIR_LABEL : LVIR_BOUNDS, column, 0, 0};
    SendPointer(LVM_GETSUBITEMRECT, Number(row), &rect);
    return rect;
}

int CListView::TextWidth(const std::wstring& text) const
{
    return static_cast<int>(SendPointer(LVM_GETSTRINGWIDTHW, 0, text.c_str()));
}

void CListView::SetState(int row, UINT state, UINT mask) const
{
    LVITEMW item{};
    item.state = state;
    item.stateMask = mask;
    SendPointer(LVM_SETITEMSTATE, Number(row), &item);
}
