#pragma once

// One deletion of any number of textures, step by step: plan, prepare, move, commit, finish. The plan is
// made, and a damaged layout refused, when the object is built; a failure before Commit leaves every texture
// that should stay readable, and after it only tables and lengths can be behind, which the next start finds.
// Borrows the database.

#include <array>
#include <filesystem>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "database/DeletionPlan.h"
#include "database/TextureDatabaseImpl.h"

enum class FailedDeletionStep { None, Thumbnails, Rasters, Table };

class CTextureDeletion {
public:
    /// `isGone` names the entries. Throws CError, and has changed nothing, when a record's place cannot be
    /// right.
    CTextureDeletion(CTextureDatabase::CImpl& state, std::vector<bool> isGone, IProgress& progress);
    ~CTextureDeletion();
    CTextureDeletion(const CTextureDeletion&) = delete;
    CTextureDeletion& operator=(const CTextureDeletion&) = delete;

    /// Aliases that the list gets at its end when the entries go. Called before Prepare.
    void Append(std::vector<TextureEntry> aliases) { m_aAppended = std::move(aliases); }
    /// Writes the new list and the new thumbnail files beside the old ones. What was there is not touched.
    void Prepare();
    /// Closes the gaps in the `.dat` files. When this fails, an entry that should go may have lost its
    /// raster.
    void MoveRecords();
    /// Puts the list into place and drops the entries. Aliases of a gone entry get `heir` as their target.
    void Commit(std::optional<std::uint32_t> heir);
    /// Tables, thumbnails and lengths; goes on after a failure and names the first.
    FailedDeletionStep Finish();
    /// Finish for a batch: shows the failure, and throws then.
    void FinishMany();

    /// True when deleting the entries one by one would leave the same files: no thumbnails are found or lost
    /// on the way, because every entry has both a raster and a thumbnail, or neither, wherever there are any.
    bool IsSameOneByOne() const;

private:
    DeletionPlan Plan(CacheIndex cache, const IFile& file, std::span<const PlacedRecord> records);
    void PrepareThumbnails(CacheIndex cache, const DeletionPlan& plan);
    void PrepareTable(CacheIndex cache);
    void MoveRecordsOf(CacheIndex cache, const DeletionPlan& plan);
    void MoveGroup(CacheIndex cache, const DeletionPlan& plan, const MovedGroup& group, std::uint64_t oldEnd);
    void PlaceOwners(CacheIndex cache, const DeletionPlan& plan, std::span<const MovedPiece> pieces,
                     std::uint64_t place);
    void Forget(CacheIndex cache, std::span<const RemovedRecord> records);
    void PlaceThumbnails();
    bool FinishThumbnails(CacheIndex cache);

    CTextureDatabase::CImpl& m_rState;
    std::vector<bool> m_aGone;
    std::vector<TextureEntry> m_aAppended;
    IProgress& m_rProgress;
    std::array<std::optional<DeletionPlan>, kCacheCount> m_aRasters;
    std::array<std::optional<DeletionPlan>, kCacheCount> m_aThumbnails;
    std::array<std::filesystem::path, kCacheCount> m_aPreparedThumbnails;
};
