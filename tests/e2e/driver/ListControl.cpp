#include "tests/e2e/driver/ListControl.h"

#include <commctrl.h>

#include "tests/e2e/driver/RemoteMemory.h"
#include "tests/e2e/driver/WindowLookup.h"

namespace {

constexpr std::size_t kLongestText = 512;
// The structure comes first in the shared memory, the text behind it.
constexpr std::size_t kTextOffset = 256;
constexpr std::size_t kBlockSize = kTextOffset + kLongestText * sizeof(wchar_t);

}  // namespace

int CListControl::Count() const
{
    return static_cast<int>(Ask(m_hControl, LVM_GETITEMCOUNT));
}

std::wstring CListControl::CellText(int row, int column) const
{
    const CRemoteMemory memory(m_hControl, kBlockSize);
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = static_cast<wchar_t*>(memory.At(kTextOffset));
    item.cchTextMax = static_cast<int>(kLongestText);
    memory.Put(0, item);
    Ask(m_hControl, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), memory.AsParameter());
    return memory.GetText(kTextOffset, kLongestText);
}

bool CListControl::IsChecked(int row) const
{
    const LRESULT state = Ask(m_hControl, LVM_GETITEMSTATE, static_cast<WPARAM>(row), LVIS_STATEIMAGEMASK);
    return (state & LVIS_STATEIMAGEMASK) == INDEXTOSTATEIMAGEMASK(2);
}

std::vector<std::wstring> CListControl::Rows(int columns) const
{
    std::vector<std::wstring> rows;
    for (int row = 0; row < Count(); ++row) {
        std::wstring text = IsChecked(row) ? L"x " : L"";
        for (int column = 0; column < columns; ++column)
            text += (column == 0 ? L"" : L"|") + CellText(row, column);
        rows.push_back(text);
    }
    return rows;
}

void CListControl::SetState(int row, UINT state, UINT mask) const
{
    const CRemoteMemory memory(m_hControl, sizeof(LVITEMW));
    LVITEMW item{};
    item.state = state;
    item.stateMask = mask;
    memory.Put(0, item);
    Ask(m_hControl, LVM_SETITEMSTATE, static_cast<WPARAM>(row), memory.AsParameter());
}

void CListControl::Select(int row) const
{
    SetState(row, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
}

void CListControl::SetChecked(int row, bool checked) const
{
    SetState(row, INDEXTOSTATEIMAGEMASK(checked ? 2U : 1U), LVIS_STATEIMAGEMASK);
}
