#pragma once

// The textures of a database that no model in a set of IMG archives uses: collecting the names that the
// models use, finding the textures that are not among them, and deleting those. Whatever cannot be read can
// only make fewer textures unused, and a question comes before the first change.

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <unordered_set>
#include <vector>

#include "base/File.h"
#include "base/Progress.h"
#include "base/Prompt.h"
#include "database/TextureDatabase.h"

/// What the models of some archives use. Names are compared exactly.
struct UsedTextures {
    std::unordered_set<std::wstring> names;
    std::uint32_t modelsRead = 0;
    /// Models of which something could not be read; the names that could count as used.
    std::uint32_t modelsSkipped = 0;
    std::uint32_t archivesNotOpened = 0;
    /// The person asked to stop, so that names are missing.
    bool wasStopped = false;

    /// False when nothing is known about use: no texture counts as unused then.
    bool IsKnown() const { return modelsRead != 0 && !wasStopped; }
};

/// Adds the names that the models of an archive use. Reads headers and names only. Reports model entries as
/// (index, count, name).
void CollectUsedTextures(const std::filesystem::path& archive, UsedTextures& used, IProgress& progress,
                         IFileSystem& files = DiskFileSystem());
/// The same for several, in the order given, until the person asks to stop.
UsedTextures CollectUsedTextures(std::span<const std::filesystem::path> archives, IProgress& progress,
                                 IFileSystem& files = DiskFileSystem());

struct UnusedTextures {
    /// Entry indices in order.
    std::vector<std::uint32_t> entries;
    /// Their records in every open cache.
    std::uint64_t bytes = 0;
};
/// The entries whose names are not used. Reports (index, count, name) and stops when asked to, with nothing.
UnusedTextures FindUnusedTextures(CTextureDatabase& database, const UsedTextures& used, IProgress& progress);
/// "3 to delete (1.50 MB)"; "Cache N/A" when nothing is to be gained.
std::wstring UnusedStatusText(const UnusedTextures& unused);

/// A row whose texture is to go: its entry when the list was made. One that was renamed or moved since is
/// found by its name.
struct CheckedTexture {
    std::uint32_t index = 0;
    std::wstring name;
};
/// All entries of `entries` as rows.
std::vector<CheckedTexture> CheckedRows(const CTextureDatabase& database,
                                        std::span<const std::uint32_t> entries);

/// The question before deleting; No is the default.
PromptBox DeletionQuestion(std::size_t textures, const UsedTextures& used);

struct SyncDeletion {
    std::uint32_t deleted = 0;
    /// Textures that stay because an alias of theirs stays.
    std::uint32_t kept = 0;
    /// The person asked to stop before anything was changed.
    bool wasStopped = false;
};
/// Deletes in two passes, aliases first, which report against twice the number of rows; the files are
/// rewritten once. Throws CError as CTextureDatabase::DeleteEntries does.
SyncDeletion DeleteUnusedTextures(CTextureDatabase& database, std::span<const CheckedTexture> rows,
                                  IProgress& progress);
/// What a deletion ends with: "3 deleted", and how many were kept when there are any.
std::wstring DeletionStatusText(const SyncDeletion& deletion);
