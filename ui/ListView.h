#pragma once

// A list with columns. Rows are counted from 0 and stay in the order in which they were added.

#include "base/Windows.h"

#include <commctrl.h>
#include <string>
#include <vector>

#include "ui/Window.h"

/// A cell of a list; a row of -1 is none.
struct ListCell {
    int row = -1;
    int column = 0;
};

class CListView : public CWindow {
public:
    /// Selects whole rows, draws without flicker and, where the system does it well, like a file window.
    /// `more` are further LVS_EX_ styles, such as LVS_EX_CHECKBOXES.
    void UseRows(DWORD more = 0) const;
    /// In pixels. A list with pictures of its own gets its height from them instead.
    void SetRowHeight(int height) const;

    /// Adds a column on the right; `width` in pixels.
    void AddColumn(const std::wstring& text, int width) const;
    int ColumnWidth(int column) const { return static_cast<int>(Send(LVM_GETCOLUMNWIDTH, Number(column))); }
    void SetColumnWidth(int column, int width) const { Send(LVM_SETCOLUMNWIDTH, Number(column), width); }
    std::wstring ColumnText(int column) const;
    void SetColumnText(int column, const std::wstring& text) const;
    int ColumnCount() const;

    /// Adds a row at the end and returns its number.
    int Append(const std::wstring& text, LPARAM data = 0) const;
    /// Adds rows whose texts, one a column, are asked for with LVN_GETDISPINFO when they are shown.
    void AppendOnDemand(int rows) const;
    /// Announces how many rows are coming.
    void Reserve(int rows) const { Send(LVM_SETITEMCOUNT, Number(rows)); }
    int Count() const { return static_cast<int>(Send(LVM_GETITEMCOUNT)); }
    void Delete(int row) const { Send(LVM_DELETEITEM, Number(row)); }
    void DeleteAll() const { Send(LVM_DELETEALLITEMS); }
    void SetItemText(int row, int column, const std::wstring& text) const;
    std::wstring ItemText(int row, int column) const;
    LPARAM Data(int row) const;
    void SetData(int row, LPARAM data) const;

    /// The first selected row after `row`, -1 when there is none.
    int NextSelected(int row) const { return Next(row, LVNI_SELECTED); }
    int FirstSelected() const { return NextSelected(-1); }
    std::vector<int> SelectedRows() const;
    bool IsSelected(int row) const;
    /// The row that has the focus, -1 when none has.
    int Focused() const { return Next(-1, LVNI_FOCUSED); }
    /// Gives the row the focus and shows it, without selecting it.
    void SetFocused(int row) const;
    /// Selects the row alone, gives it the focus and shows it.
    void Select(int row) const;
    void SelectAll() const { SetState(-1, LVIS_SELECTED, LVIS_SELECTED); }
    void ClearSelection() const { SetState(-1, 0, LVIS_SELECTED); }
    void EnsureVisible(int row) const { Send(LVM_ENSUREVISIBLE, Number(row), FALSE); }

    /// The check boxes of LVS_EX_CHECKBOXES.
    bool IsChecked(int row) const;
    /// A row of -1 stands for all of them.
    void SetChecked(int row, bool checked) const;

    /// The cell under a point of the control, also beside its text.
    ListCell CellAt(POINT place) const;
    /// The place of a cell in the control.
    RECT CellRect(int row, int column) const;
    /// How wide the text is in the control's font, without the room around it.
    int TextWidth(const std::wstring& text) const;
    /// Lets the person edit the row's first text; the control must have the focus.
    void EditLabel(int row) const { Send(LVM_EDITLABELW, Number(row)); }
    /// The field in which the text is edited; only while it is.
    CWindow LabelEditor() const
    {
        return CWindow(reinterpret_cast<HWND>(Send(LVM_GETEDITCONTROL)));  // NOLINT: the message's result
    }
    void RedrawRow(int row) const { Send(LVM_REDRAWITEMS, Number(row), row); }

private:
    // The messages carry row numbers unsigned, -1 for all rows included.
    static WPARAM Number(int value) { return static_cast<WPARAM>(value); }
    int Next(int row, UINT which) const
    {
        return static_cast<int>(Send(LVM_GETNEXTITEM, Number(row), MAKELPARAM(which, 0)));
    }
    void SetState(int row, UINT state, UINT mask) const;
};
