#pragma once

// A list with columns and check boxes in the driven program. The object borrows the control and is as
// short-lived as the expression that uses it.

#include "base/Windows.h"

#include <string>
#include <vector>

class CListControl {
public:
    explicit CListControl(HWND control) : m_hControl(control) {}

    int Count() const;
    /// The texts of each row with "|" between them, and "x " before a checked row.
    std::vector<std::wstring> Rows(int columns) const;
    void Select(int row) const;
    void SetChecked(int row, bool checked) const;

private:
    std::wstring CellText(int row, int column) const;
    bool IsChecked(int row) const;
    void SetState(int row, UINT state, UINT mask) const;

    HWND m_hControl;
};
