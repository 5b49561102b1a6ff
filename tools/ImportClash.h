#pragma once

// What every import does about a name that exists already: the question, and putting the new texture in the
// place of the old one without losing that or its aliases.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/Prompt.h"
#include "tools/ImportRules.h"

/// An import that failed without a text of its own.
inline constexpr std::wstring_view kUnknownImportError = L"Unknown import error";

/// What a run did.
struct ImportCounts {
    std::uint32_t imported = 0;
    std::uint32_t aliased = 0;
    std::uint32_t skipped = 0;
    std::uint32_t failed = 0;
    bool wasStopped = false;
};

/// How a name that exists already is treated.
enum class ClashAnswer { Ask, Replace, Skip };

/// What becomes of one texture whose name exists already.
enum class ClashChoice { Replace, Skip, KeepBoth, Stop };

/// The choice that needs no question; nothing when it is to be asked.
std::optional<ClashChoice> ChoiceWithoutAsking(ClashAnswer answer);
/// The question about a name: its text and buttons. Who asks adds caption and icon.
PromptBox ClashQuestion(const std::wstring& name);

/// The name of a texture that replaces entry `replaced`: aliases find their texture by its exact name, so
/// while there are any its spelling stays.
std::wstring NameInPlaceOf(const CTextureDatabase& database, std::uint32_t replaced,
                           const std::wstring& name);

/// The second half of an import: deletes the entry that the request replaces, whose aliases stay, and stores
/// the texture with the request's file hash and category. Throws CError.
StoreResult StoreImported(CTextureDatabase& database, PreparedTexture prepared, const ImportRequest& request);
/// Counts what StoreImported did.
void CountImported(ImportCounts& counts, StoreResult result);
