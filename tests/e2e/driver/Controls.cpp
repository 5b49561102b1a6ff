#include "tests/e2e/driver/Controls.h"

#include <algorithm>

#include "tests/e2e/driver/Input.h"
#include "tests/e2e/driver/RemoteMemory.h"
#include "tests/e2e/driver/Wait.h"
#include "tests/e2e/driver/WindowLookup.h"

namespace {

constexpr std::size_t kLongestText = 512;
// The structure comes first in the shared memory, the text behind it.
constexpr std::size_t kTextOffset = 256;
constexpr std::size_t kBlockSize = kTextOffset + kLongestText * sizeof(wchar_t);

wchar_t* TextBuffer(const CRemoteMemory& memory)
{
    return static_cast<wchar_t*>(memory.At(kTextOffset));
}

POINT MiddleOf(const RECT& area)
{
    return {(area.left + area.right) / 2, (area.top + area.bottom) / 2};
}

const TreeItem& ItemNamed(const std::vector<TreeItem>& items, std::wstring_view text)
{
    const auto found =
        std::find_if(items.begin(), items.end(), [&](const TreeItem& item) { return item.text == text; });
    if (found == items.end())
        throw CDriveError("no such item in the tree");
    return *found;
}

}  // namespace

HTREEITEM CTree::Next(WPARAM relation, HTREEITEM item) const
{
    const auto parameter = reinterpret_cast<LPARAM>(item);                                      // NOLINT
    return reinterpret_cast<HTREEITEM>(Ask(m_hControl, TVM_GETNEXTITEM, relation, parameter));  // NOLINT
}

TreeItem CTree::Read(HTREEITEM item, int level) const
{
    const CRemoteMemory memory(m_hControl, kBlockSize);
    TVITEMW wanted{};
    wanted.mask = TVIF_TEXT | TVIF_PARAM | TVIF_STATE | TVIF_HANDLE;
    wanted.hItem = item;
    wanted.stateMask = TVIS_SELECTED;
    wanted.pszText = TextBuffer(memory);
    wanted.cchTextMax = static_cast<int>(kLongestText);
    memory.Put(0, wanted);
    Ask(m_hControl, TVM_GETITEMW, 0, memory.AsParameter());
    const auto got = memory.Get<TVITEMW>(0);
    return {item, level, memory.GetText(kTextOffset, kLongestText), static_cast<std::uint32_t>(got.lParam),
            (got.state & TVIS_SELECTED) != 0};
}

void CTree::Collect(HTREEITEM first, int level, std::vector<TreeItem>& items) const
{
    for (HTREEITEM item = first; item; item = Next(TVGN_NEXT, item)) {
        items.push_back(Read(item, level));
        Collect(Next(TVGN_CHILD, item), level + 1, items);
    }
}

std::vector<TreeItem> CTree::Items() const
{
    std::vector<TreeItem> items;
    Collect(Next(TVGN_ROOT, nullptr), 0, items);
    return items;
}

std::vector<std::wstring> CTree::Texts() const
{
    std::vector<std::wstring> texts;
    for (const TreeItem& item : Items())
        texts.push_back(std::wstring(static_cast<std::size_t>(item.level) * 2, L' ') + item.text);
    return texts;
}

std::vector<std::wstring> CTree::SelectedTexts() const
{
    std::vector<std::wstring> texts;
    for (const TreeItem& item : Items())
        if (item.isSelected)
            texts.push_back(item.text);
    return texts;
}

std::optional<std::wstring> CTree::FocusedText() const
{
    const HTREEITEM item = Next(TVGN_CARET, nullptr);
    if (!item)
        return std::nullopt;
    return Read(item, 0).text;
}

void CTree::SetSelected(HTREEITEM item, bool selected) const
{
    const CRemoteMemory memory(m_hControl, sizeof(TVITEMW));
    TVITEMW change{};
    change.mask = TVIF_STATE | TVIF_HANDLE;
    change.hItem = item;
    change.stateMask = TVIS_SELECTED;
    change.state = selected ? TVIS_SELECTED : 0;
    memory.Put(0, change);
    Ask(m_hControl, TVM_SETITEMW, 0, memory.AsParameter());
}

void CTree::Select(std::initializer_list<std::wstring_view> texts) const
{
    const auto items = Items();
    std::vector<HTREEITEM> chosen;
    for (const std::wstring_view text : texts)
        chosen.push_back(ItemNamed(items, text).handle);
    for (const TreeItem& item : items)
        if (item.isSelected && item.handle != chosen.front())
            SetSelected(item.handle, false);
    const auto first = reinterpret_cast<LPARAM>(chosen.front());  // NOLINT: how the message is defined
    Ask(m_hControl, TVM_SELECTITEM, TVGN_CARET, first);
    for (const HTREEITEM item : chosen)
        SetSelected(item, true);
}

POINT CTree::PlaceOf(std::wstring_view text) const
{
    const auto items = Items();
    const TreeItem& item = ItemNamed(items, text);
    Ask(m_hControl, TVM_ENSUREVISIBLE, 0, reinterpret_cast<LPARAM>(item.handle));  // NOLINT
    const CRemoteMemory memory(m_hControl, sizeof(RECT));
    // The message finds the item's handle where it puts the rectangle; TRUE asks for the text alone.
    memory.Put(0, item.handle);
    if (!Ask(m_hControl, TVM_GETITEMRECT, TRUE, memory.AsParameter()))
        throw CDriveError("the item is not to be seen");
    return MiddleOf(memory.Get<RECT>(0));
}

void CTree::Click(std::wstring_view text, std::initializer_list<WORD> heldKeys) const
{
    ClickAt(m_hControl, PlaceOf(text), heldKeys);
}

void CTree::TypeLabel(const std::wstring& text) const
{
    const HWND field = WaitFor("a label to be edited", [this] {
        const auto editor = reinterpret_cast<HWND>(Ask(m_hControl, TVM_GETEDITCONTROL));  // NOLINT
        return editor ? std::optional(editor) : std::nullopt;
    });
    Ask(field, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));  // NOLINT: Windows translates this one
    ::PostMessageW(field, WM_KEYDOWN, VK_RETURN, 0);
    WaitUntil("the label to be taken", [field] { return !::IsWindow(field); });
}

std::vector<std::wstring> CTabs::Texts() const
{
    std::vector<std::wstring> texts;
    const auto count = static_cast<WPARAM>(Ask(m_hControl, TCM_GETITEMCOUNT));
    for (WPARAM index = 0; index < count; ++index) {
        const CRemoteMemory memory(m_hControl, kBlockSize);
        TCITEMW wanted{};
        wanted.mask = TCIF_TEXT;
        wanted.pszText = TextBuffer(memory);
        wanted.cchTextMax = static_cast<int>(kLongestText);
        memory.Put(0, wanted);
        Ask(m_hControl, TCM_GETITEMW, index, memory.AsParameter());
        texts.push_back(memory.GetText(kTextOffset, kLongestText));
    }
    return texts;
}

int CTabs::Selected() const
{
    return static_cast<int>(Ask(m_hControl, TCM_GETCURSEL));
}

void CTabs::Click(int index) const
{
    const CRemoteMemory memory(m_hControl, sizeof(RECT));
    if (!Ask(m_hControl, TCM_GETITEMRECT, static_cast<WPARAM>(index), memory.AsParameter()))
        throw CDriveError("no tab " + std::to_string(index));
    ClickAt(m_hControl, MiddleOf(memory.Get<RECT>(0)));
}

std::size_t CStatusPanes::Count() const
{
    return static_cast<std::size_t>(Ask(m_hControl, SB_GETPARTS));
}

std::wstring CStatusPanes::Text(std::size_t pane) const
{
    const CRemoteMemory memory(m_hControl, kBlockSize);
    memory.Put(kTextOffset, L'\0');
    Ask(m_hControl, SB_GETTEXTW, pane, memory.AsParameter(kTextOffset));
    return memory.GetText(kTextOffset, kLongestText);
}
