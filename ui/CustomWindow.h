#pragma once

// The base of a control of our own. Its class is registered once under a name that dialog templates use; the
// object takes over the window that the template created.

#include "ui/MessageMap.h"
#include "ui/Window.h"

class CCustomWindow : public CWindow {
public:
    CCustomWindow(const CCustomWindow&) = delete;
    CCustomWindow& operator=(const CCustomWindow&) = delete;
    virtual ~CCustomWindow();

    /// Makes `className` known to dialog templates. Safe to call again.
    static void Register(HINSTANCE module, const wchar_t* className);
    /// From now on the window's messages come to this object.
    void TakeOver(HWND window);

protected:
    CCustomWindow() = default;
    CMessageMap& Messages() { return m_oMessages; }

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    CMessageMap m_oMessages;
};
