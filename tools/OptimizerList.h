#pragma once

// The list of textures as the steps of the optimizer number it while they delete textures and append aliases.
// The steps work on this list; what they would do to the database is noted here and done there afterwards, in
// one pass over each file. It borrows the database, which must not change meanwhile.

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "database/AliasCheck.h"

class COptimizerList {
public:
    /// The key of what takes no part: aliases, and textures that cannot be compared.
    static constexpr std::uint32_t kNoKey = 0xFFFFFFFF;

    /// A key for each entry of the database; equal keys are what may be duplicates. Aliases lose theirs.
    COptimizerList(CTextureDatabase& database, std::span<const std::uint32_t> keys);

    std::uint32_t Count() const { return static_cast<std::uint32_t>(m_aItems.size()); }
    std::uint32_t Key(std::uint32_t place) const { return m_aItems[place].key; }
    /// The index of the texture before anything was changed; kNone for an alias that was made.
    std::uint32_t Original(std::uint32_t place) const { return m_aItems[place].original; }
    const std::wstring& Name(std::uint32_t place) const;
    /// False when no other texture here has the key of this one.
    bool HasEquals(std::uint32_t place) const;

    /// `duplicate` goes and comes back at the end as an alias of `kept`. False, and nothing has changed, when
    /// a line of the list would grow too long.
    bool MakeAlias(std::uint32_t kept, std::uint32_t duplicate);
    /// The texture goes, and with it the aliases that stand for it.
    void Delete(std::uint32_t place);

    /// What was done, in order, by the indices before.
    const std::vector<AliasPair>& Pairs() const { return m_aPairs; }
    const std::vector<std::uint32_t>& Deleted() const { return m_aDeleted; }
    /// Pairs that were left alone.
    std::uint32_t LeftAlone() const { return m_nLeftAlone; }

private:
    struct Item {
        std::uint32_t key = kNoKey;
        std::uint32_t original = kNone;
        std::uint32_t named = kNone;  // whose name it has, by the index before
    };
    void Erase(std::uint32_t place);

    CTextureDatabase& m_rDatabase;
    CAliasCheck m_oCheck;
    std::vector<Item> m_aItems;
    std::vector<std::uint32_t> m_aCounts;  // of the textures that are left, by key
    std::vector<AliasPair> m_aPairs;
    std::vector<std::uint32_t> m_aDeleted;
    std::uint32_t m_nLeftAlone = 0;
};
