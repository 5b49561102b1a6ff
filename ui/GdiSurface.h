#pragma once

// An off-screen picture of the screen's kind that is drawn on and then shown in one step, so that nothing
// flickers.

#include "ui/Handles.h"

class CGdiSurface {
public:
    CGdiSurface() = default;
    CGdiSurface(const CGdiSurface&) = delete;
    CGdiSurface& operator=(const CGdiSurface&) = delete;
    ~CGdiSurface();

    /// Makes the surface at least as large as asked; false when memory is short.
    bool Resize(HDC screen, int width, int height);
    HDC Dc() const { return m_hDc.get(); }
    /// Shows the pixels of `part` where they are.
    void Show(HDC target, const RECT& part) const;

private:
    CMemoryDc m_hDc;
    CBitmapHandle m_hBitmap;
    HGDIOBJ m_hOriginal = nullptr;
    int m_nWidth = 0;
    int m_nHeight = 0;
};
