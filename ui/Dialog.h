#pragma once

// The base of every dialog, the main window included. A derived class binds its commands in the constructor
// and fills its controls in OnInit. The object outlives its window and is used for one run.

#include "ui/MessageMap.h"
#include "ui/Window.h"

class CDialog : public CWindow {
public:
    CDialog(const CDialog&) = delete;
    CDialog& operator=(const CDialog&) = delete;
    virtual ~CDialog();

    /// Shows the dialog and waits until End; returns its value. The template comes from `module`, or from the
    /// program when the module has none; the windows are always the program's.
    INT_PTR DoModal(HINSTANCE module, HWND owner);
    /// Creates the window without waiting; false when Windows refuses.
    bool Create(HINSTANCE module, HWND owner);
    /// Serves messages until End. Accelerators come before the keyboard of the dialog.
    INT_PTR RunLoop();

protected:
    explicit CDialog(int templateId) : m_nTemplate(templateId) {}

    /// Fills the controls; returns whether Windows may choose the control that gets the focus.
    virtual bool OnInit() { return true; }
    /// A message before Windows looks at it; true when it was dealt with.
    virtual bool PreTranslate(MSG&) { return false; }
    /// Whether WM_COMMAND and WM_CLOSE are served now; otherwise they are dropped.
    virtual bool AcceptsCommands() const { return true; }
    /// Called inside a catch: no exception may pass through Windows. The default ends the program, because a
    /// dialog that expects exceptions says what to do with them.
    virtual void OnException() { std::terminate(); }

    CMessageMap& Messages() { return m_oMessages; }
    void End(INT_PTR result);

private:
    static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    INT_PTR HandleMessage(UINT message, WPARAM wParam, LPARAM lParam);
    bool IsForDialog(MSG& message);

    CMessageMap m_oMessages;
    int m_nTemplate;
    bool m_bModal = false;
    bool m_bEnded = false;
    INT_PTR m_nResult = 0;
};
