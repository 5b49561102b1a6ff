#include "ui/ImageList.h"

#include <algorithm>

#include "ui/Handles.h"

namespace {

// Rows from the top, 32 bits a pixel.
BITMAPINFO TopDown(const CBitmap& bitmap)
{
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = static_cast<LONG>(bitmap.Width());
    info.bmiHeader.biHeight = -static_cast<LONG>(bitmap.Height());
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    return info;
}

}  // namespace

CImageList::CImageList(int side) : m_hList(::ImageList_Create(side, side, ILC_COLOR32, 0, 64)), m_nSide(side)
{
}

int CImageList::Add(const CBitmap& bitmap) const
{
    const BITMAPINFO info = TopDown(bitmap);
    void* bits = nullptr;
    const CBitmapHandle section(::CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    if (section == nullptr || bits == nullptr)
        return -1;
    const auto pixels = bitmap.Pixels();
    std::copy(pixels.begin(), pixels.end(), static_cast<std::uint8_t*>(bits));
    return ::ImageList_Add(m_hList.get(), section.get(), nullptr);
}
