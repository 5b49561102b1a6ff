#pragma once

// Finds ordinary entries by name without walking them all. Built when it is first asked; whoever adds,
// removes or renames entries calls Forget. The answer is always the one that a search from the first entry on
// would give.

#include <compare>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "database/TextureEntry.h"

class CNameIndex {
public:
    void Forget() { m_bBuilt = false; }
    /// The first entry that is no alias and has exactly this name.
    std::optional<std::uint32_t> FindOrdinary(std::span<TextureEntry> entries, std::wstring_view name);

private:
    struct Place {
        std::uint32_t hash = 0;
        std::uint32_t index = 0;
        auto operator<=>(const Place&) const = default;
    };
    void Build(std::span<TextureEntry> entries);

    std::vector<Place> m_aPlaces;  // sorted by hash, then by index
    bool m_bBuilt = false;
};
