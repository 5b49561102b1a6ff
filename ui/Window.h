#pragma once

// A window handle with the few calls that everybody needs. It does not own the window: windows belong to
// their parent and to Windows. The wrappers of controls derive from it.

#include "base/Windows.h"

#include <string>

class CWindow {
public:
    CWindow() = default;
    explicit CWindow(HWND window) : m_hWindow(window) {}

    HWND Handle() const { return m_hWindow; }
    void Attach(HWND window) { m_hWindow = window; }
    bool Exists() const { return m_hWindow != nullptr && ::IsWindow(m_hWindow) != FALSE; }

    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const
    {
        return ::SendMessageW(m_hWindow, message, wParam, lParam);
    }
    /// For messages that carry a pointer.
    template <class T>
    LRESULT SendPointer(UINT message, WPARAM wParam, T* pointer) const
    {
        return Send(message, wParam,
                    reinterpret_cast<LPARAM>(pointer));  // NOLINT: how the message is defined
    }

    void SetText(const std::wstring& text) const { ::SetWindowTextW(m_hWindow, text.c_str()); }
    std::wstring Text() const;
    void Enable(bool enabled) const { ::EnableWindow(m_hWindow, enabled ? TRUE : FALSE); }
    bool IsEnabled() const { return ::IsWindowEnabled(m_hWindow) != FALSE; }
    void Show(bool visible) const { ::ShowWindow(m_hWindow, visible ? SW_SHOW : SW_HIDE); }
    bool IsVisible() const { return ::IsWindowVisible(m_hWindow) != FALSE; }
    void Focus() const { ::SetFocus(m_hWindow); }
    void Move(const RECT& place) const;
    RECT ClientRect() const;
    /// Its rectangle on the screen.
    RECT WindowRect() const;
    /// What the task bar leaves of the screen that shows most of the window.
    RECT WorkArea() const;
    void Redraw() const { ::InvalidateRect(m_hWindow, nullptr, FALSE); }
    CWindow Child(int id) const { return CWindow(::GetDlgItem(m_hWindow, id)); }
    /// The dialog that stands in front of this window, or this window: what owns the next box, because a box
    /// lets its owner be used again when it closes.
    CWindow TopPopup() const { return CWindow(::GetLastActivePopup(m_hWindow)); }

private:
    HWND m_hWindow = nullptr;
};

/// Stops a control from drawing while it is filled, and draws it once afterwards.
class CNoRedraw {
public:
    explicit CNoRedraw(const CWindow& window);
    ~CNoRedraw();
    CNoRedraw(const CNoRedraw&) = delete;
    CNoRedraw& operator=(const CNoRedraw&) = delete;

private:
    CWindow m_oWindow;
};
