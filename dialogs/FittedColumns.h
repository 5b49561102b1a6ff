#pragma once

// The columns of a dialog's list: as wide as their content needs and as the screen allows, and in step with
// the resolution of the screen. Borrows dialog and list.

#include <string>

#include "ui/ListView.h"
#include "ui/Window.h"

class CFittedColumns {
public:
    /// `hasCheckBoxes` leaves room for them in the first column.
    void Attach(const CWindow& dialog, const CListView& list, bool hasCheckBoxes);
    /// `width` in 1/96 inch is the least; it holds until Fit.
    void Add(const std::wstring& title, int width) const;
    /// Once the rows are there: widens each column to its longest text, and the dialog until all columns are
    /// in sight, as far as the screen allows. The dialog stays in the middle of its owner.
    void Fit() const;
    /// For WM_SIZE: after a move to a screen of another resolution.
    void Rescale();

private:
    int NeededWidth(int column) const;

    CWindow m_oDialog;
    CListView m_oList;
    bool m_bHasCheckBoxes = false;
    int m_nDpi = USER_DEFAULT_SCREEN_DPI;
};
