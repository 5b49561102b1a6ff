#pragma once

// The search for one half of a block: which base colours are worth trying, and how well each does with its
// best modifier table. Integers only, so that every machine and every compiler finds the same block.

#include <array>
#include <cstddef>
#include <cstdint>

#include "plugins/common/PluginInfo.h"
#include "plugins/etc1/BlockFormat.h"

namespace Etc1 {

inline constexpr std::size_t kHalfPixels = 8;

struct HalfPixels {
    std::array<int, kHalfPixels> red;
    std::array<int, kHalfPixels> green;
    std::array<int, kHalfPixels> blue;
};

/// A base colour that was tried, in levels of its depth, with its best table.
struct Candidate {
    std::array<int, 3> levels;
    std::size_t table;
    /// Summed squared difference, as the decoder will show the pixels.
    int error;
};

/// Every base colour that a search tried, each once; in the order of the tries until Sort.
class CCandidates {
public:
    static constexpr std::size_t kCapacity = 160;

    std::size_t Count() const { return m_nCount; }
    const Candidate& operator[](std::size_t i) const { return m_aEntries[i]; }
    bool Contains(const std::array<int, 3>& levels) const;
    bool Full() const { return m_nCount == kCapacity; }
    void Add(const Candidate& candidate);
    /// The smallest error first.
    void Sort();

private:
    std::array<Candidate, kCapacity> m_aEntries;
    std::size_t m_nCount = 0;
};

/// Tries base colours of 4 or 5 bits a channel around the mean: at Fast the mean alone, above that also the
/// colours that the chosen modifiers ask for and more and more neighbours. The result is sorted and never
/// empty.
void FindBases(const HalfPixels& pixels, int bits, Plugin::Quality quality, int limit,
               CCandidates& candidates);

/// The two-bit code of each pixel that comes nearest with this base colour and table.
std::array<int, kHalfPixels> CodesOf(const HalfPixels& pixels, const std::array<int, 3>& base,
                                     std::size_t table);

/// The 8-bit colour of levels of 4 or 5 bits.
std::array<int, 3> ExpandLevels(const std::array<int, 3>& levels, int bits);

}  // namespace Etc1
