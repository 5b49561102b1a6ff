#pragma once

// How a texture relates to others: its aliases, and its siblings - entries named as a base name, "_" and a
// suffix that names the dictionary a copy is for.

#include <cstdint>
#include <vector>

#include "database/TextureDatabase.h"

/// Every alias of the entry, in index order.
std::vector<std::uint32_t> AliasesOf(const CTextureDatabase& database, std::uint32_t index);

struct SiblingFamily {
    /// The entry with the shortest existing "_"-prefix of the name.
    std::uint32_t base = 0;
    /// The base and every entry whose name begins with the base's name and "_", in index order.
    std::vector<std::uint32_t> members;
};
SiblingFamily SiblingsOf(const CTextureDatabase& database, std::uint32_t index);

/// What the list shows as the dictionary of a member: the name after the prefix, "N/A" for the base.
std::wstring SiblingSuffix(const CTextureDatabase& database, const SiblingFamily& family,
                           std::uint32_t member);
