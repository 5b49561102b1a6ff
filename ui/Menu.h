#pragma once

// A menu as the program sees it: items by command id, wherever in the tree of popups they are.

#include <optional>
#include <string>

#include "ui/Handles.h"

/// A text that a menu shows as it is: its "&" is no mnemonic, and nothing counts as an accelerator.
std::wstring PlainMenuText(const std::wstring& text);

/// Borrows the menu.
class CMenu {
public:
    CMenu() = default;
    explicit CMenu(HMENU menu) : m_hMenu(menu) {}
    HMENU Handle() const { return m_hMenu; }

    void Enable(UINT id, bool enabled) const;
    void Check(UINT id, bool checked) const;
    /// Marks `chosen` with the radio mark, and no other item from `first` to `last`.
    void CheckRadio(UINT first, UINT last, UINT chosen) const;
    bool IsEnabled(UINT id) const;
    bool IsChecked(UINT id) const;
    std::wstring Text(UINT id) const;

    int Count() const { return ::GetMenuItemCount(m_hMenu); }
    CMenu Popup(int position) const { return CMenu(::GetSubMenu(m_hMenu, position)); }
    /// The popup that holds the item itself.
    std::optional<CMenu> PopupWith(UINT id) const;

    void Append(UINT id, const std::wstring& text) const;
    void AppendSeparator() const;
    /// The new popup belongs to this menu.
    CMenu AppendPopup(const std::wstring& text, bool enabled = true) const;
    void Clear() const;
    /// Deletes every item from `position` on.
    void CutFrom(int position) const;

    /// Shows the menu at a point of the screen; the choice arrives at `owner` as a command.
    void Track(HWND owner, POINT place) const;

private:
    HMENU m_hMenu = nullptr;
};
