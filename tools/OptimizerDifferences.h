#pragma once

// Which textures are alike but for a few bytes. Every pair of one size is a question; nearly all of them are
// answered by sketches of the two, and the rest by comparing until the answer is known. Each texture is
// decoded once when all that may have a like fit into the memory that is allowed. It borrows what it is
// given.

#include <cstdint>
#include <span>
#include <vector>

#include "tools/Optimizer.h"
#include "tools/OptimizerSketch.h"
#include "tools/OptimizerStore.h"

class CDifferencePass {
public:
    CDifferencePass(CTextureDatabase& database, IEditorHost& host, IProgress& progress,
                    const OptimizeOptions& options);

    /// Reads or decodes everything that has a texture of the same size beside it. False when stopped.
    bool Prepare();
    /// A number for each entry; textures that are certainly not alike have different ones.
    std::span<const std::uint32_t> Keys() const { return m_aKeys; }
    std::uint32_t NotCompared() const { return m_nNotCompared; }
    /// Whether two entries of the same key differ by less than the limit.
    bool Match(std::uint32_t a, std::uint32_t b);

private:
    void GroupBySize();
    void SplitGroups();
    std::uint64_t SizeKey(std::uint32_t index);
    void Sketch(std::uint32_t index);

    CTextureDatabase& m_rDatabase;
    IProgress& m_rProgress;
    CacheIndex m_eCache;
    bool m_bDecoded;
    DifferenceMeasure m_eMeasure;
    std::uint64_t m_nLimit;
    COptimizerStore m_oStore;
    std::vector<std::uint32_t> m_aKeys;
    std::vector<std::vector<std::uint32_t>> m_aSketches;
    std::uint32_t m_nNotCompared = 0;
};
