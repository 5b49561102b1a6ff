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
        this->Attach(window);
        ::SetWindowSubclass(window, Procedure, 1,
                            reinterpret_cast<DWORD_PTR>(this));  // NOLINT: read in Procedure
    }

protected:
    /// The answer to a message, or nothing to let the control answer.
    virtual std::optional<LRESULT> Filter(UINT message, WPARAM wParam, LPARAM lParam) = 0;
    /// What the control itself would do.
    LRESULT PassOn(UINT message, WPARAM wParam, LPARAM lParam) const
    {
        return ::DefSubclassProc(this->Handle(), message, wParam, lParam);
    }

private:
    void Release()
    {
        if (this->Exists())
            ::RemoveWindowSubclass(this->Handle(), Procedure, 1);
        this->Attach(nullptr);
    }

    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                      DWORD_PTR reference)
    {
        auto* self = reinterpret_cast<CSubclass*>(reference);  // NOLINT: stored by TakeOver
        if (message == WM_NCDESTROY) {
            self->Release();
            return ::DefSubclassProc(window, message, wParam, lParam);
        }
        if (const auto result = self->Filter(message, wParam, lParam))
            return *result;
        return ::DefSubclassProc(window, message, wParam, lParam);
    }
};
