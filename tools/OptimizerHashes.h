#pragma once

// The digests by which the optimizer finds equal textures: of the rasters as they are stored, or of the
// pictures that they decode to.

#include <cstdint>
#include <optional>
#include <vector>

#include "tools/Optimizer.h"

struct TextureHashes {
    /// A number for each entry; equal digests have the same. COptimizerList::kNoKey for aliases and for
    /// textures without data.
    std::vector<std::uint32_t> keys;
    std::uint32_t notCompared = 0;
};

/// Nothing when stopped. The digests are computed on several threads; reading and decoding happen on this
/// one.
std::optional<TextureHashes> HashTextures(CTextureDatabase& database, IEditorHost& host, IProgress& progress,
                                          const OptimizeOptions& options);
