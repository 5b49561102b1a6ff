#pragma once

// Small pictures beside the names of the tree, made of the stored thumbnails. Each is made when its item is
// first drawn, so that a large database opens as fast with them as without.

#include <cstdint>
#include <memory>
#include <vector>

#include "codec/PluginTable.h"
#include "database/TextureDatabase.h"
#include "ui/ImageList.h"
#include "ui/TreeView.h"

class CTreePictures {
public:
    /// From now on the tree asks for pictures of `side` pixels.
    void Attach(const CTreeView& tree, int side);
    bool IsOn() const { return m_pList != nullptr; }
    /// Forgets every picture; the database has `entries` entries now.
    void Reset(std::uint32_t entries);
    /// The picture of a texture in the primary cache; the blank one where there is no thumbnail.
    int PictureOf(std::uint32_t index, CTextureDatabase& database, const CPluginTable& plugins);

private:
    static constexpr int kBlank = 0;

    std::unique_ptr<CImageList> m_pList;
    std::vector<int> m_aNumbers;  // by entry index; -1: not made yet
};
