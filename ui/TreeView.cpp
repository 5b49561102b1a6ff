#include "ui/TreeView.h"

#include <array>

#include "ui/Theme.h"

HTREEITEM CTreeView::Append(HTREEITEM parent, const std::wstring& text, LPARAM data, int image) const
{
    TVINSERTSTRUCTW insert{};
    insert.hParent = parent;
    insert.hInsertAfter = TVI_LAST;
    insert.item.mask = TVIF_TEXT | TVIF_PARAM;
    insert.item.pszText = const_cast<wchar_t*>(text.c_str());  // NOLINT: only read by the control
    insert.item.lParam = data;
    if (image != I_IMAGENONE) {
        insert.item.mask |= TVIF_IMAGE | TVIF_SELECTEDIMAGE;
        insert.item.iImage = image;
        insert.item.iSelectedImage = image;
    }
    return reinterpret_cast<HTREEITEM>(
        SendPointer(TVM_INSERTITEMW, 0, &insert));  // NOLINT: the message's result
}

void CTreeView::DeleteAll() const
{
    Send(TVM_DELETEITEM, 0, reinterpret_cast<LPARAM>(TVI_ROOT));  // NOLINT: how the message is defined
}

HTREEITEM CTreeView::Next(HTREEITEM item, UINT which) const
{
    const auto from = reinterpret_cast<LPARAM>(item);  // NOLINT: how the message is defined
    return reinterpret_cast<HTREEITEM>(Send(TVM_GETNEXTITEM, which, from));  // NOLINT: as above
}

HTREEITEM CTreeView::ItemAt(POINT place) const
{
    TVHITTESTINFO hit{};
    hit.pt = place;
    SendPointer(TVM_HITTEST, 0, &hit);
    return (hit.flags & TVHT_ONITEM) != 0 ? hit.hItem : nullptr;
}

LPARAM CTreeView::Data(HTREEITEM item) const
{
    TVITEMW info{};
    info.mask = TVIF_PARAM | TVIF_HANDLE;
    info.hItem = item;
    SendPointer(TVM_GETITEMW, 0, &info);
    return info.lParam;
}

std::wstring CTreeView::ItemText(HTREEITEM item) const
{
    std::array<wchar_t, 256> buffer{};
    TVITEMW info{};
    info.mask = TVIF_TEXT | TVIF_HANDLE;
    info.hItem = item;
    info.pszText = buffer.data();
    info.cchTextMax = static_cast<int>(buffer.size());
    SendPointer(TVM_GETITEMW, 0, &info);
    return buffer.data();
}

bool CTreeView::HasState(HTREEITEM item, UINT state) const
{
    const auto which = reinterpret_cast<WPARAM>(item);  // NOLINT: how the message is defined
    return (static_cast<UINT>(Send(TVM_GETITEMSTATE, which, static_cast<LPARAM>(state))) & state) != 0;
}

void CTreeView::SetState(HTREEITEM item, UINT state, bool on) const
{
    TVITEMW info{};
    info.mask = TVIF_STATE | TVIF_HANDLE;
    info.hItem = item;
    info.stateMask = state;
    info.state = on ? state : 0;
    SendPointer(TVM_SETITEMW, 0, &info);
}

void CTreeView::SetStates(std::span<const HTREEITEM> items, UINT state, bool on) const
{
    constexpr std::size_t kFew = 16;
    if (items.size() <= kFew) {
        for (const HTREEITEM item : items)
            SetState(item, state, on);
        return;
    }
    const CNoRedraw quiet(*this);
    // Wine measures every visible item for its scroll bars at every change, unless there are none to measure
    // for.
    const LONG_PTR style = ::GetWindowLongPtrW(Handle(), GWL_STYLE);
    const bool stopsMeasuring = IsWine();
    if (stopsMeasuring)
        ::SetWindowLongPtrW(Handle(), GWL_STYLE, style | TVS_NOSCROLL);
    for (const HTREEITEM item : items)
        SetState(item, state, on);
    if (stopsMeasuring)
        ::SetWindowLongPtrW(Handle(), GWL_STYLE, style);
}

RECT CTreeView::ItemRect(HTREEITEM item) const
{
    RECT rect{};
    TreeView_GetItemRect(Handle(), item, &rect, TRUE);
    return rect;
}

HWND CTreeView::LabelEditor() const
{
    return reinterpret_cast<HWND>(Send(TVM_GETEDITCONTROL));  // NOLINT: the message's result
}
