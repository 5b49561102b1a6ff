#include "dialogs/FittedColumns.h"

#include <algorithm>

#include "ui/Dpi.h"

namespace {

// Lengths in 1/96 inch.
constexpr int kRowHeight = 18;
constexpr int kAroundText = 14;
constexpr int kCheckBox = 22;
constexpr int kWidestColumn = 320;

}  // namespace

void CFittedColumns::Attach(const CWindow& dialog, const CListView& list, bool hasCheckBoxes)
{
    m_oDialog = dialog;
    m_oList = list;
    m_bHasCheckBoxes = hasCheckBoxes;
    m_nDpi = DpiOf(dialog.Handle());
    m_oList.SetRowHeight(CScale(m_nDpi)(kRowHeight));
}

void CFittedColumns::Add(const std::wstring& title, int width) const
{
    m_oList.AddColumn(title, CScale(m_nDpi)(width));
}

int CFittedColumns::NeededWidth(int column) const
{
    int widest = m_oList.TextWidth(m_oList.ColumnText(column));
    for (int row = 0; row < m_oList.Count(); ++row)
        widest = std::max(widest, m_oList.TextWidth(m_oList.ItemText(row, column)));
    const CScale scale(m_nDpi);
    const int checkBox = column == 0 && m_bHasCheckBoxes ? scale(kCheckBox) : 0;
    return std::min(widest + scale(kAroundText) + checkBox, scale(kWidestColumn));
}

void CFittedColumns::Fit() const
{
    int all = ::GetSystemMetricsForDpi(SM_CXVSCROLL, static_cast<UINT>(m_nDpi));
    for (int column = 0; column < m_oList.ColumnCount(); ++column) {
        const int width = std::max(m_oList.ColumnWidth(column), NeededWidth(column));
        m_oList.SetColumnWidth(column, width);
        all += width;
    }
    const LONG missing = all - m_oList.ClientRect().right;
    if (missing <= 0)
        return;
    RECT place = m_oDialog.WindowRect();
    const RECT work = m_oDialog.WorkArea();
    const LONG width = std::min(place.right - place.left + missing, work.right - work.left);
    place.left = std::clamp(place.left - missing / 2, work.left, std::max(work.left, work.right - width));
    place.right = place.left + width;
    m_oDialog.Move(place);
}

void CFittedColumns::Rescale()
{
    const int dpi = DpiOf(m_oDialog.Handle());
    if (dpi == m_nDpi)
        return;
    for (int column = 0; column < m_oList.ColumnCount(); ++column)
        m_oList.SetColumnWidth(column, ::MulDiv(m_oList.ColumnWidth(column), dpi, m_nDpi));
    m_nDpi = dpi;
    m_oList.SetRowHeight(CScale(dpi)(kRowHeight));
}
