#pragma once

// The controls of the driven window: tree, tabs and status bar, read and clicked from outside. Each object
// borrows a control and is as short-lived as the expression that uses it.

#include "base/Windows.h"

#include <commctrl.h>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct TreeItem {
    HTREEITEM handle = nullptr;
    int level = 0;  ///< 0 for an item at the root
    std::wstring text;
    std::uint32_t data = 0;  ///< the program's own number
    bool isSelected = false;
};

class CTree {
public:
    explicit CTree(HWND control) : m_hControl(control) {}

    HWND Handle() const { return m_hControl; }
    /// Every item, in the order of the screen, also below closed items.
    std::vector<TreeItem> Items() const;
    std::vector<std::wstring> Texts() const;
    std::vector<std::wstring> SelectedTexts() const;
    std::optional<std::wstring> FocusedText() const;
    /// Scrolls to the first item with that text and clicks it. Throws CDriveError when there is none.
    void Click(std::wstring_view text, std::initializer_list<WORD> heldKeys = {}) const;
    /// Selects the items with these texts and no others; the first gets the focus. Neither mouse nor keyboard
    /// takes part, so it works whatever the display does meanwhile. Throws CDriveError when one is missing.
    void Select(std::initializer_list<std::wstring_view> texts) const;
    /// The middle of the first item with that text, scrolled into sight, in coordinates of the tree.
    POINT PlaceOf(std::wstring_view text) const;
    /// Waits until a label is edited, replaces its text and presses Enter.
    void TypeLabel(const std::wstring& text) const;

private:
    HTREEITEM Next(WPARAM relation, HTREEITEM item) const;
    void SetSelected(HTREEITEM item, bool selected) const;
    TreeItem Read(HTREEITEM item, int level) const;
    void Collect(HTREEITEM first, int level, std::vector<TreeItem>& items) const;

    HWND m_hControl;
};

class CTabs {
public:
    explicit CTabs(HWND control) : m_hControl(control) {}

    std::vector<std::wstring> Texts() const;
    int Selected() const;
    void Click(int index) const;

private:
    HWND m_hControl;
};

class CStatusPanes {
public:
    explicit CStatusPanes(HWND control) : m_hControl(control) {}

    std::size_t Count() const;
    std::wstring Text(std::size_t pane) const;

private:
    HWND m_hControl;
};
