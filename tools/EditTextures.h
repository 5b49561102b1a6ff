#pragma once

// The edits of a database that window and command line share: categories, aliases and deletion, with the
// checks that come before the first change. Every function throws CError, and has then changed nothing.

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/Progress.h"
#include "database/TextureDatabase.h"

/// Category names are one word: "Empty category name given", "No spaces allowed" for blanks and control
/// characters, "Wrong category name given." beyond 63 characters or with characters that the file cannot
/// hold.
void CheckCategoryName(const std::wstring& name);

/// Adds a category at the end and saves.
void CreateCategory(CTextureDatabase& database, const std::wstring& name);

/// Adds an alias of the texture, or of its original when it is an alias itself, in the original's category;
/// saves. Returns the index of the new entry. "Texture already exists" when the name is taken in any case.
std::uint32_t CreateAlias(CTextureDatabase& database, std::uint32_t index, const std::wstring& name);

/// Renames a texture. "Texture already exists" when the name is taken in any case.
void RenameTexture(CTextureDatabase& database, std::uint32_t index, const std::wstring& name);

/// Moves the textures and all their aliases into a category and saves.
void MoveToCategory(CTextureDatabase& database, std::uint32_t category,
                    std::span<const std::uint32_t> indices);

/// The entries and every alias that stands for one of them, in index order without repetition: what deleting
/// the entries without a new target removes.
std::vector<std::uint32_t> WithTheirAliases(CTextureDatabase& database,
                                            std::span<const std::uint32_t> indices);

/// Deletes the entries and, unless they get a new target, their aliases. Indices are those before the
/// deletion.
void DeleteTextures(CTextureDatabase& database, std::span<const std::uint32_t> indices,
                    std::optional<std::uint32_t> newTarget, IProgress& progress);
