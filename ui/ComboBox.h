#pragma once

// A drop-down list.

#include <string>

#include "ui/Window.h"

class CComboBox : public CWindow {
public:
    void Append(const std::wstring& text) const { SendPointer(CB_ADDSTRING, 0, text.c_str()); }
    void Clear() const { Send(CB_RESETCONTENT); }
    int Current() const { return static_cast<int>(Send(CB_GETCURSEL)); }
    /// Without a notification.
    void SetCurrent(int item) const { Send(CB_SETCURSEL, static_cast<WPARAM>(item)); }
};
