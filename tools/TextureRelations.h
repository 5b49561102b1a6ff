#pragma once

// How a texture relates to others: its aliases, and its siblings - entries named as a base name, "_" and a
// suffix that names the dictionary a copy is for.

#include <cstdint>
#include <optional>
#include <string>
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

/// A row of the alias list or the sibling list.
struct RelatedTexture {
    std::uint32_t index = 0;
    std::wstring id;  // "%02d"
    std::wstring name;
    bool hasSibling = false;
    std::wstring txd = {};      // of siblings only: the suffix
    std::wstring aliasOf = {};  // of siblings only: what the texture is an alias of, else empty
};
enum class RelationKind { Aliases, Siblings };
/// The rows of a list about a texture, in index order. Nothing in place of rows: there is no list to show, as
/// for an alias of nothing and for the siblings of no texture. No texture has no aliases.
std::optional<std::vector<RelatedTexture>> RelatedTextures(CTextureDatabase& database, RelationKind kind,
                                                           std::optional<std::uint32_t> index);
