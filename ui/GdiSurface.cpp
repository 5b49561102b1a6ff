#include "ui/GdiSurface.h"

#include <algorithm>

CGdiSurface::~CGdiSurface()
{
    // A bitmap cannot be deleted while it is selected.
    if (m_hOriginal != nullptr)
        ::SelectObject(m_hDc.get(), m_hOriginal);
}

bool CGdiSurface::Resize(HDC screen, int width, int height)
{
    if (m_hDc && width <= m_nWidth && height <= m_nHeight)
        return true;
    const int newWidth = std::max(width, m_nWidth);
    const int newHeight = std::max(height, m_nHeight);
    CBitmapHandle bitmap(::CreateCompatibleBitmap(screen, newWidth, newHeight));
    if (!m_hDc)
        m_hDc.reset(::CreateCompatibleDC(screen));
    if (!bitmap || !m_hDc)
        return false;
    const HGDIOBJ previous = ::SelectObject(m_hDc.get(), bitmap.get());
    if (m_hOriginal == nullptr)
        m_hOriginal = previous;
    m_hBitmap = std::move(bitmap);
    m_nWidth = newWidth;
    m_nHeight = newHeight;
    return true;
}

void CGdiSurface::Show(HDC target, const RECT& part) const
{
    ::BitBlt(target, part.left, part.top, part.right - part.left, part.bottom - part.top, m_hDc.get(),
             part.left, part.top, SRCCOPY);
}
