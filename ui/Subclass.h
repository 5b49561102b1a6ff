#pragma once

// Looks at the messages of a control that somebody else implements. The object must outlive the control or be
// destroyed before it; either way the control goes on alone afterwards.

#include <optional>

#include "ui/TreeView.h"

template <class Control>
class CSubclass : public Control {
public:
    CSubclass() = default;
    CSubclass(const CSubclass&) = delete;
    CSubclass& operator=(const CSubclass&) = delete;
    virtual ~CSubclass() { Release(); }

    void TakeOver(HWND window)
    {
        // Not with SetWindowSubclass, which looks its own data up by name at every message: under Wine that
        // takes longer than most messages do.
        this->Attach(window);
        ::SetWindowLongPtrW(window, GWLP_USERDATA,
                            reinterpret_cast<LONG_PTR>(this));  // NOLINT: read in Procedure
        m_fnOriginal = reinterpret_cast<WNDPROC>(               // NOLINT: how the function is defined
            ::SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Procedure)));  // NOLINT
    }

protected:
    /// The answer to a message, or nothing to let the control answer.
    virtual std::optional<LRESULT> Filter(UINT message, WPARAM wParam, LPARAM lParam) = 0;
    /// What the control itself would do.
    LRESULT PassOn(UINT message, WPARAM wParam, LPARAM lParam) const
    {
        return ::CallWindowProcW(m_fnOriginal, this->Handle(), message, wParam, lParam);
    }

private:
    void Release()
    {
        if (this->Exists()) {
            ::SetWindowLongPtrW(this->Handle(), GWLP_WNDPROC,
                                reinterpret_cast<LONG_PTR>(m_fnOriginal));  // NOLINT: as in TakeOver
            ::SetWindowLongPtrW(this->Handle(), GWLP_USERDATA, 0);
        }
        this->Attach(nullptr);
    }

    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        auto* self = reinterpret_cast<CSubclass*>(::GetWindowLongPtrW(window, GWLP_USERDATA));  // NOLINT
        // Kept here, because the filter may end the object.
        const WNDPROC original = self->m_fnOriginal;
        if (message == WM_NCDESTROY)
            self->Release();
        else if (const auto result = self->Filter(message, wParam, lParam))
            return *result;
        return ::CallWindowProcW(original, window, message, wParam, lParam);
    }

    WNDPROC m_fnOriginal = nullptr;
};
