#pragma once

// A tree view control.

#include "base/Windows.h"

#include <commctrl.h>
#include <span>
#include <string>

#include "ui/Window.h"

class CTreeView : public CWindow {
public:
    /// Adds an item as the last child of `parent` (TVI_ROOT for the top). `image` is I_IMAGENONE for none.
    HTREEITEM Append(HTREEITEM parent, const std::wstring& text, LPARAM data, int image = I_IMAGENONE) const;
    void DeleteAll() const;

    HTREEITEM Root() const { return Next(nullptr, TVGN_ROOT); }
    HTREEITEM Caret() const { return Next(nullptr, TVGN_CARET); }
    HTREEITEM FirstChild(HTREEITEM item) const { return Next(item, TVGN_CHILD); }
    HTREEITEM NextSibling(HTREEITEM item) const { return Next(item, TVGN_NEXT); }
    HTREEITEM Parent(HTREEITEM item) const { return Next(item, TVGN_PARENT); }
    HTREEITEM NextVisible(HTREEITEM item) const { return Next(item, TVGN_NEXTVISIBLE); }
    HTREEITEM PreviousVisible(HTREEITEM item) const { return Next(item, TVGN_PREVIOUSVISIBLE); }
    HTREEITEM LastVisible() const { return Next(nullptr, TVGN_LASTVISIBLE); }
    /// The item under a point of the control, on its text or picture.
    HTREEITEM ItemAt(POINT place) const;

    LPARAM Data(HTREEITEM item) const;
    std::wstring ItemText(HTREEITEM item) const;
    bool HasState(HTREEITEM item, UINT state) const;
    void SetState(HTREEITEM item, UINT state, bool on) const;
    /// The same for many items, drawn once.
    void SetStates(std::span<const HTREEITEM> items, UINT state, bool on) const;
    void Select(HTREEITEM item) const
    {
        Send(TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(item));
    }  // NOLINT
    void EnsureVisible(HTREEITEM item) const
    {
        Send(TVM_ENSUREVISIBLE, 0, reinterpret_cast<LPARAM>(item));
    }  // NOLINT
    void Expand(HTREEITEM item, UINT how) const
    {
        Send(TVM_EXPAND, how, reinterpret_cast<LPARAM>(item));
    }  // NOLINT
    RECT ItemRect(HTREEITEM item) const;
    /// Lets the person edit the item's text; the control must have the focus.
    void EditLabel(HTREEITEM item) const
    {
        Send(TVM_EDITLABELW, 0, reinterpret_cast<LPARAM>(item));
    }  // NOLINT
    /// The edit control while a label is edited, else null.
    HWND LabelEditor() const;

private:
    HTREEITEM Next(HTREEITEM item, UINT which) const;
};
