#pragma once

// Owners of the handles that Windows gives out. Each frees its handle when it goes; all are movable and not
// copyable.

#include "base/Windows.h"

#include <memory>
#include <type_traits>

namespace Detail {
struct DestroyMenuHandle {
    void operator()(HMENU menu) const { ::DestroyMenu(menu); }
};
struct DestroyAcceleratorHandle {
    void operator()(HACCEL table) const { ::DestroyAcceleratorTable(table); }
};
struct DestroyIconHandle {
    void operator()(HICON icon) const { ::DestroyIcon(icon); }
};
struct DeleteGdiObject {
    void operator()(HGDIOBJ object) const { ::DeleteObject(object); }
};
struct DeleteMemoryDc {
    void operator()(HDC dc) const { ::DeleteDC(dc); }
};
}  // namespace Detail

using CMenuHandle = std::unique_ptr<std::remove_pointer_t<HMENU>, Detail::DestroyMenuHandle>;
using CAcceleratorHandle = std::unique_ptr<std::remove_pointer_t<HACCEL>, Detail::DestroyAcceleratorHandle>;
using CIconHandle = std::unique_ptr<std::remove_pointer_t<HICON>, Detail::DestroyIconHandle>;
using CFontHandle = std::unique_ptr<std::remove_pointer_t<HFONT>, Detail::DeleteGdiObject>;
using CBrushHandle = std::unique_ptr<std::remove_pointer_t<HBRUSH>, Detail::DeleteGdiObject>;
using CBitmapHandle = std::unique_ptr<std::remove_pointer_t<HBITMAP>, Detail::DeleteGdiObject>;
using CMemoryDc = std::unique_ptr<std::remove_pointer_t<HDC>, Detail::DeleteMemoryDc>;
