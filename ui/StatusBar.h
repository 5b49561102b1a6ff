#pragma once

// A status bar with several panes; the first one stretches.

#include <span>
#include <string>

#include "ui/Window.h"

class CStatusBar : public CWindow {
public:
    /// Creates the bar at the bottom of `parent`.
    bool Create(HWND parent, int id);
    /// `widths` are those of pane 1 and up, in pixels.
    void SetPanes(std::span<const int> widths) const;
    void SetPane(int pane, const std::wstring& text) const;
    std::wstring PaneText(int pane) const;
    RECT PaneRect(int pane) const;
    /// Lets the bar follow its parent's size.
    void Follow() const { Send(WM_SIZE); }
};
