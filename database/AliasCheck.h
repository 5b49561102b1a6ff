#pragma once

// Tells before anything is changed whether a texture can become an alias of another one: the list reads no
// line beyond its length, so a texture whose alias, or whose own aliases, would get such a line has to stay.
// Looks at the database once, when it is built, and borrows it; any edit makes it stale.

#include <cstdint>
#include <span>
#include <vector>

#include "database/TextureDatabase.h"

class CAliasCheck {
public:
    explicit CAliasCheck(CTextureDatabase& database);

    /// The aliases that stand for an ordinary texture, by index.
    std::span<const std::uint32_t> AliasesOf(std::uint32_t index) const;
    /// True when MakeAliases can make this pair.
    bool Fits(const AliasPair& pair) const;

private:
    const CTextureDatabase& m_rDatabase;
    std::vector<std::uint32_t> m_aFirst;    // of the aliases of each texture, one more for the end
    std::vector<std::uint32_t> m_aAliases;  // by texture
};
