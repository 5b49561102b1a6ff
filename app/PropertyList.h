#pragma once

// The list of the properties panel: a label and a value in each row, flags as check boxes. It holds the rows
// that it shows and turns clicks and keys into wishes; what becomes of a wish is its owner's business.

#include <functional>
#include <string>
#include <vector>

#include "tools/PropertyRows.h"
#include "ui/ListView.h"
#include "ui/Subclass.h"

class CPropertyList final : public CSubclass<CListView> {
public:
    /// The columns have no titles yet. They are not drawn, but screen readers say them.
    bool Create(HWND parent, int id);
    /// `handler` is called for a row whose value the person wants to change. It must not throw.
    void OnChangeWanted(std::function<void(const PropertyRow& row)> handler)
    {
        m_fnChange = std::move(handler);
    }

    /// Only what differs from the rows shown before is touched.
    void ShowRows(std::vector<PropertyRow> rows);
    /// Adapts to the control's size and font; `rowHeight` in pixels.
    void Layout(int rowHeight);
    /// Where the value of a row stands; the row is scrolled into view.
    RECT ValuePlace(const PropertyRow& row) const;

    // To be called with the list's notifications.
    LRESULT HandleCustomDraw(NMLVCUSTOMDRAW& draw) const;
    void HandleClick(const NMITEMACTIVATE& click, bool isDouble);
    void HandleKey(WORD key);

private:
    std::optional<LRESULT> Filter(UINT message, WPARAM wParam, LPARAM lParam) override;
    const PropertyRow* RowOf(int row) const;
    bool UpdateRow(int row, const PropertyRow& shown);
    void LayoutColumns();
    int RoomForColumns() const;
    void WantChange(int row);
    bool IsOnCheckBox(POINT place, int row) const;
    /// Whether the row is shown in the colours of a selection that has the keyboard.
    bool IsLit(int row) const;
    int TextColorOf(int row) const;
    void DrawFlag(HDC target, int row) const;

    std::function<void(const PropertyRow&)> m_fnChange;
    std::vector<PropertyRow> m_aRows;
    int m_nRowHeight = 0;
    int m_nWidestLabel = 0;
    int m_nRowBeforeClick = -1;  // the row under the mouse, if it had the focus before the button went down
};
