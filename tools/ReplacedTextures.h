#pragma once

// Putting many new textures in the place of old ones without the risk of losing either: the new ones are
// stored first, then the old ones are deleted in one go. The files come out as if each had been replaced in
// turn, because a deletion closes its gaps.

#include <cstdint>
#include <memory>
#include <vector>

#include "base/Progress.h"
#include "database/TextureDatabase.h"

/// One run: whoever makes it stores the new textures and calls Complete. Without that, the new ones are
/// removed again when it ends. Lives on the database's thread and borrows the database.
class CReplacedTextures {
public:
    /// `leaving` are the entries that go at the end; their aliases stay, and find the new ones by name.
    CReplacedTextures(CTextureDatabase& database, std::vector<std::uint32_t> leaving);
    ~CReplacedTextures();
    CReplacedTextures(const CReplacedTextures&) = delete;
    CReplacedTextures& operator=(const CReplacedTextures&) = delete;

    /// For the import records of the run.
    const std::vector<std::uint32_t>& Leaving() const { return m_aLeaving; }

    /// Deletes the old textures and saves. Cannot be stopped. Throws CError when the files cannot be written:
    /// when nothing was deleted yet, all is as before the run; else old and new ones stay side by side.
    void Complete(IProgress& progress);

private:
    /// For each entry that leaves and each cache, whether it has a raster there.
    std::vector<bool> RastersOfLeaving() const;
    void RemoveNew();

    CTextureDatabase& m_rDatabase;
    std::vector<std::uint32_t> m_aLeaving;
    std::uint32_t m_nFirstNew;
    std::unique_ptr<CStoringMany> m_pStoring;
    bool m_bOpen = true;
};
