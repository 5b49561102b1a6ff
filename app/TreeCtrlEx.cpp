#include "app/TreeCtrlEx.h"

#include <algorithm>
#include <utility>
#include <windowsx.h>

namespace {

bool IsKeyDown(int key)
{
    return ::GetKeyState(key) < 0;
}

bool MovesTheCaret(WPARAM key)
{
    switch (key) {
        case VK_UP:
        case VK_DOWN:
        case VK_HOME:
        case VK_END:
        case VK_PRIOR:
        case VK_NEXT:
        case VK_LEFT:
        case VK_RIGHT:
            return true;
        default:
            return false;
    }
}

}  // namespace

void CTreeCtrlEx::NotifyChanged() const
{
    if (m_fnChanged)
        m_fnChanged();
}

void CTreeCtrlEx::HandleSelChanged()
{
    // A change of several items notifies once, at its end.
    if (!m_bChanging)
        NotifyChanged();
}

void CTreeCtrlEx::Remember(const TVITEMW& change)
{
    if ((change.mask & TVIF_STATE) != 0 && (change.stateMask & change.state & TVIS_SELECTED) != 0)
        m_aCandidates.insert(change.hItem);
}

std::vector<HTREEITEM> CTreeCtrlEx::SelectedItems() const
{
    std::vector<HTREEITEM> selected;
    const auto add = [&](HTREEITEM item) {
        if (HasState(item, TVIS_SELECTED))
            selected.push_back(item);
    };
    std::for_each(m_aCandidates.begin(), m_aCandidates.end(), add);
    // The control selects the item with the caret by itself.
    if (const HTREEITEM caret = Caret(); caret != nullptr && !m_aCandidates.contains(caret))
        add(caret);
    return selected;
}

void CTreeCtrlEx::ClearSelection()
{
    SetStates(SelectedItems(), TVIS_SELECTED, false);
    m_aCandidates.clear();
}

void CTreeCtrlEx::RemoveAll()
{
    // While items go the control moves the selection on to others that go next.
    m_bChanging = true;
    DeleteAll();
    m_aCandidates.clear();
    m_hAnchor = nullptr;
    m_bChanging = false;
}

void CTreeCtrlEx::SelectNoneBut(HTREEITEM kept)
{
    auto others = SelectedItems();
    std::erase(others, kept);
    SetStates(others, TVIS_SELECTED, false);
    for (const HTREEITEM item : others)
        m_aCandidates.erase(item);
}

void CTreeCtrlEx::SetCaret(HTREEITEM item)
{
    // The control unselects the item that had the caret, so what was selected is put back.
    const auto selected = SelectedItems();
    Select(item);
    SetStates(selected, TVIS_SELECTED, true);
}

void CTreeCtrlEx::SelectOnly(HTREEITEM item)
{
    m_bChanging = true;
    ClearSelection();
    Select(item);
    // When it has the caret already the control does nothing.
    SetState(item, TVIS_SELECTED, true);
    EnsureVisible(item);
    m_hAnchor = item;
    m_bChanging = false;
    NotifyChanged();
}

void CTreeCtrlEx::Toggle(HTREEITEM item)
{
    const bool wasSelected = HasState(item, TVIS_SELECTED);
    if (HTREEITEM caret = Caret(); caret != nullptr && !IsMultiple(caret))
        SetState(caret, TVIS_SELECTED, false);
    m_bChanging = true;
    SetCaret(item);
    SetState(item, TVIS_SELECTED, !wasSelected);
    m_hAnchor = item;
    m_bChanging = false;
    NotifyChanged();
}

void CTreeCtrlEx::SelectRange(HTREEITEM last)
{
    // A range begins at an item that can be seen.
    const HTREEITEM group = m_hAnchor != nullptr ? Parent(m_hAnchor) : nullptr;
    const bool isInSight = m_hAnchor != nullptr && (group == nullptr || HasState(group, TVIS_EXPANDED));
    HTREEITEM anchor = isInSight ? m_hAnchor : Caret();
    if (anchor == nullptr || !IsMultiple(last)) {
        SelectOnly(last);
        return;
    }
    // Which of the two stands higher on the screen.
    std::vector<HTREEITEM> range;
    for (HTREEITEM item = anchor; item != nullptr; item = NextVisible(item)) {
        range.push_back(item);
        if (item == last)
            break;
    }
    if (range.back() != last) {
        range.clear();
        for (HTREEITEM item = last; item != nullptr; item = NextVisible(item)) {
            range.push_back(item);
            if (item == anchor)
                break;
        }
    }
    m_bChanging = true;
    ClearSelection();
    Select(last);
    std::erase_if(range, [this](HTREEITEM item) { return !IsMultiple(item); });
    SetStates(range, TVIS_SELECTED, true);
    m_hAnchor = anchor;
    m_bChanging = false;
    NotifyChanged();
}

void CTreeCtrlEx::SelectSiblings()
{
    const HTREEITEM caret = Caret();
    if (!IsMultiple(caret))
        return;
    m_bChanging = true;
    std::vector<HTREEITEM> siblings;
    for (HTREEITEM item = FirstChild(Parent(caret)); item != nullptr; item = NextSibling(item))
        siblings.push_back(item);
    SetStates(siblings, TVIS_SELECTED, true);
    m_bChanging = false;
    NotifyChanged();
}

std::optional<LRESULT> CTreeCtrlEx::OnLeftButton(POINT place)
{
    const HTREEITEM item = ItemAt(place);
    if (item == nullptr)
        return std::nullopt;
    const bool control = IsKeyDown(VK_CONTROL);
    if (!control && !IsKeyDown(VK_SHIFT)) {
        // The control goes on by itself: it selects the item, or edits the label of one that is selected
        // alone.
        m_hAnchor = item;
        m_bChanging = true;
        SelectNoneBut(item);
        m_bChanging = false;
        const bool isCaret = item == Caret();
        const LRESULT result = PassOn(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(place.x, place.y));
        if (isCaret) {
            SetState(item, TVIS_SELECTED, true);
            NotifyChanged();
        }
        return result;
    }
    Focus();
    if (control && IsMultiple(item))
        Toggle(item);
    else
        SelectRange(item);
    return 0;
}

std::optional<LRESULT> CTreeCtrlEx::OnRightButton(POINT place)
{
    const HTREEITEM item = ItemAt(place);
    Focus();
    if (item == nullptr)
        return std::nullopt;
    if (!HasState(item, TVIS_SELECTED)) {
        SelectOnly(item);
    } else if (item != Caret()) {
        m_bChanging = true;
        SetCaret(item);
        m_bChanging = false;
        NotifyChanged();
    }
    ::ClientToScreen(Handle(), &place);
    // The control would draw a drop highlight and wait for a drag; here a right click only asks for the menu.
    ::SendMessageW(::GetParent(Handle()), WM_CONTEXTMENU,
                   reinterpret_cast<WPARAM>(Handle()),  // NOLINT: as defined
                   MAKELPARAM(place.x, place.y));
    return 0;
}

HTREEITEM CTreeCtrlEx::KeyTarget(WPARAM key) const
{
    const HTREEITEM caret = Caret();
    switch (key) {
        case VK_UP:
            return PreviousVisible(caret);
        case VK_DOWN:
            return NextVisible(caret);
        case VK_HOME:
            return Root();
        case VK_END:
            return LastVisible();
        default:
            break;
    }
    HTREEITEM item = caret;
    for (auto steps = Send(TVM_GETVISIBLECOUNT) - 1; steps > 0; --steps) {
        const HTREEITEM next = key == VK_PRIOR ? PreviousVisible(item) : NextVisible(item);
        if (next == nullptr)
            break;
        item = next;
    }
    return item;
}

std::optional<LRESULT> CTreeCtrlEx::OnKey(WPARAM key)
{
    if (key == 'A' && IsKeyDown(VK_CONTROL)) {
        SelectSiblings();
        return 0;
    }
    const HTREEITEM caret = Caret();
    if (caret == nullptr)
        return std::nullopt;
    if (key == VK_SPACE && IsKeyDown(VK_CONTROL) && IsMultiple(caret)) {
        Toggle(caret);
        return 0;
    }
    if (!MovesTheCaret(key) || IsKeyDown(VK_CONTROL))
        return std::nullopt;
    if (IsKeyDown(VK_SHIFT) && key != VK_LEFT && key != VK_RIGHT) {
        // Past categories: single steps go on in their direction, long ones come back a little.
        const bool upwards = key == VK_UP || key == VK_END || key == VK_NEXT;
        HTREEITEM target = KeyTarget(key);
        while (target != nullptr && !IsMultiple(target))
            target = upwards ? PreviousVisible(target) : NextVisible(target);
        if (target == nullptr)
            return 0;
        SelectRange(target);
        EnsureVisible(target);
        return 0;
    }
    // Without Shift the selection becomes the one item that the control moves to.
    m_bChanging = true;
    SelectNoneBut(caret);
    // Even a state that does not change may cost the control a look at all its items.
    if (!HasState(caret, TVIS_SELECTED))
        SetState(caret, TVIS_SELECTED, true);
    m_bChanging = false;
    const LRESULT result = PassOn(WM_KEYDOWN, key, 0);
    m_hAnchor = Caret();
    return result;
}

std::optional<LRESULT> CTreeCtrlEx::Filter(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
        case WM_LBUTTONDOWN:
            return OnLeftButton({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
        case WM_RBUTTONDOWN:
            return 0;
        case WM_RBUTTONUP:
            return OnRightButton({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
        case WM_KEYDOWN:
            return OnKey(wParam);
        case WM_CHAR:
            // What Ctrl+A and Ctrl+Space send would start a search for a name.
            return IsKeyDown(VK_CONTROL) ? std::optional<LRESULT>(0) : std::nullopt;
        case TVM_SETITEMA:
        case TVM_SETITEMW:
            Remember(
                *reinterpret_cast<const TVITEMW*>(lParam));  // NOLINT: both forms differ in their texts only
            return std::nullopt;
        case TVM_DELETEITEM:
            m_hAnchor = nullptr;
            m_aCandidates.clear();
            return std::nullopt;
        default:
            return std::nullopt;
    }
}
