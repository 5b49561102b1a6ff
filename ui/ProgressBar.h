#pragma once

// A progress bar, hidden until it has something to show.

#include "base/Windows.h"

#include <commctrl.h>
#include <cstdint>

#include "ui/Window.h"

class CProgressBar : public CWindow {
public:
    bool Create(HWND parent, int id)
    {
        const auto menu =
            reinterpret_cast<HMENU>(static_cast<INT_PTR>(id));  // NOLINT: how a child gets its id
        Attach(::CreateWindowExW(0, PROGRESS_CLASSW, L"", WS_CHILD | PBS_SMOOTH, 0, 0, 0, 0, parent, menu,
                                 nullptr, nullptr));
        return Handle() != nullptr;
    }
    void Set(std::uint32_t current, std::uint32_t total) const
    {
        Send(PBM_SETRANGE32, 0, static_cast<LPARAM>(total));
        Send(PBM_SETPOS, current);
    }
};
