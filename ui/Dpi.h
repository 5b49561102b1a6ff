#pragma once

// Lengths for the resolution of the screen: everything is laid out in units of 1/96 inch and scaled here.

#include "ui/Handles.h"

/// Dots per inch of the screen that shows `window`.
int DpiOf(HWND window);

class CScale {
public:
    explicit CScale(int dpi) : m_nDpi(dpi) {}
    int operator()(int length) const { return ::MulDiv(length, m_nDpi, USER_DEFAULT_SCREEN_DPI); }

private:
    int m_nDpi;
};

/// The font that Windows uses for messages, in the size for `dpi`.
CFontHandle MessageFont(int dpi);
