#pragma once

// A row of tabs.

#include "base/Windows.h"

#include <commctrl.h>
#include <string>

#include "ui/Window.h"

class CTabControl : public CWindow {
public:
    void Append(const std::wstring& text) const
    {
        TCITEMW item{};
        item.mask = TCIF_TEXT;
        item.pszText = const_cast<wchar_t*>(text.c_str());  // NOLINT: only read by the control
        SendPointer(TCM_INSERTITEMW, static_cast<WPARAM>(Send(TCM_GETITEMCOUNT)), &item);
    }
    int Current() const { return static_cast<int>(Send(TCM_GETCURSEL)); }
    /// Without a notification.
    void SetCurrent(int tab) const { Send(TCM_SETCURSEL, static_cast<WPARAM>(tab)); }
    /// The area inside the frame, in coordinates of the parent.
    RECT DisplayArea(RECT place) const
    {
        SendPointer(TCM_ADJUSTRECT, FALSE, &place);
        return place;
    }
};
