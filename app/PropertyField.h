#pragma once

// The edit field that opens over a value of the properties panel. One window serves all values: it is hidden
// until Open and after Close. A label that is not shown names it for screen readers.

#include <functional>
#include <string>

#include "ui/Subclass.h"

class CPropertyField final : public CSubclass<CWindow> {
public:
    /// To be created before the control that it lies over, which then lies below it.
    bool Create(HWND parent, int labelId, int id);
    /// The control that gets the focus when the field is closed.
    void SetHome(const CWindow& home) { m_oHome = home; }
    /// `handler` is called when the person is done: with Enter, Tab or another focus, or, to leave everything
    /// as it was, with Esc. It must close the field, and must not throw.
    void OnDone(std::function<void(bool keep)> handler) { m_fnDone = std::move(handler); }

    void Open(const std::wstring& name, const std::wstring& text, const RECT& place);
    void Close();
    bool IsOpen() const { return m_bOpen; }

private:
    std::optional<LRESULT> Filter(UINT message, WPARAM wParam, LPARAM lParam) override;
    bool OnKey(WPARAM key);
    void Done(bool keep);

    CWindow m_oLabel;
    CWindow m_oHome;
    std::function<void(bool)> m_fnDone;
    bool m_bOpen = false;
};
