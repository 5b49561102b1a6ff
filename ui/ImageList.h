#pragma once

// A list of small pictures of one size, as tree controls draw them beside their items.

#include "base/Windows.h"

#include <commctrl.h>
#include <memory>
#include <type_traits>

#include "image/Bitmap.h"

class CImageList {
public:
    /// Empty, for pictures of `side` x `side` pixels with alpha.
    explicit CImageList(int side);

    HIMAGELIST Handle() const { return m_hList.get(); }
    int Side() const { return m_nSide; }
    /// `bitmap` must have the list's size. Returns the picture's number, -1 when it cannot be added.
    int Add(const CBitmap& bitmap) const;
    void Clear() const { ::ImageList_RemoveAll(m_hList.get()); }

private:
    struct Destroy {
        void operator()(HIMAGELIST list) const { ::ImageList_Destroy(list); }
    };

    std::unique_ptr<std::remove_pointer_t<HIMAGELIST>, Destroy> m_hList;
    int m_nSide;
};
