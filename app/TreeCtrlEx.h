#pragma once

// A tree with multiple selection as people know it from file lists: Ctrl toggles, Shift selects a range, a
// right click keeps the selection it lands in. Only items whose data is not -1 are ever selected together;
// the others stand alone. The selection is the items' own state, so whatever sets that state selects.

#include <functional>
#include <optional>
#include <unordered_set>
#include <vector>

#include "ui/Subclass.h"
#include "ui/TreeView.h"

class CTreeCtrlEx final : public CSubclass<CTreeView> {
public:
    /// Item data of items that are never selected together with others.
    static constexpr LPARAM kSingleItem = -1;

    /// `handler` is called whenever the selection has changed.
    void OnSelectionChanged(std::function<void()> handler) { m_fnChanged = std::move(handler); }
    /// To be called on TVN_SELCHANGED.
    void HandleSelChanged();

    /// In no particular order, collapsed branches included.
    std::vector<HTREEITEM> SelectedItems() const;
    /// Selects the item alone and shows it.
    void SelectOnly(HTREEITEM item);
    void ClearSelection();
    /// Removes every item without a notification.
    void RemoveAll();

private:
    std::optional<LRESULT> Filter(UINT message, WPARAM wParam, LPARAM lParam) override;
    std::optional<LRESULT> OnLeftButton(POINT place);
    std::optional<LRESULT> OnRightButton(POINT place);
    std::optional<LRESULT> OnKey(WPARAM key);

    bool IsMultiple(HTREEITEM item) const { return item != nullptr && Data(item) != kSingleItem; }
    void SelectNoneBut(HTREEITEM kept);
    void SetCaret(HTREEITEM item);
    void Toggle(HTREEITEM item);
    void SelectRange(HTREEITEM last);
    void SelectSiblings();
    HTREEITEM KeyTarget(WPARAM key) const;
    void Remember(const TVITEMW& change);
    void NotifyChanged() const;

    std::function<void()> m_fnChanged;
    // Every item that was ever told to be selected. Asking all items of a large tree takes too long: the
    // control may search its whole list for each answer.
    std::unordered_set<HTREEITEM> m_aCandidates;
    HTREEITEM m_hAnchor = nullptr;
    bool m_bChanging = false;
};
