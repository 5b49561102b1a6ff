#pragma once

// The files of one cache, written anew: records are collected in three files beside the old ones, which are
// replaced only when all are complete. Until then the database works with the old files. It borrows the
// database, which may not be edited meanwhile; an object that is destroyed unfinished leaves no trace.

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <vector>

#include "base/File.h"
#include "database/TextureDatabase.h"

class CCacheRebuild {
public:
    /// Creates the new files. Throws CError (not shown) when that fails, when the list is not open, or when
    /// an old file is held by somebody else and could not be replaced in the end.
    CCacheRebuild(CTextureDatabase& database, CacheIndex cache);
    ~CCacheRebuild();
    CCacheRebuild(const CCacheRebuild&) = delete;
    CCacheRebuild& operator=(const CCacheRebuild&) = delete;

    /// The next entry of the list: its raster and its thumbnail. Without a raster its word of the table says
    /// so, as that of every alias. Throws CError (not shown) when a record cannot be written; the rebuild can
    /// only be given up then.
    void Append(std::span<const PreparedRecord> records);

    /// Puts the new files in place of the old ones, opens them and reads them in. There must have been a call
    /// for every entry. Throws CError (not shown): the old files are in place then, or, once the rasters are
    /// replaced, the new ones with the old thumbnails.
    void Finish();

private:
    struct NewFile {
        std::filesystem::path path;
        std::unique_ptr<IFile> file;
        std::uint64_t bytes = 0;
    };

    void Create(NewFile& created, const std::filesystem::path& replaced) const;
    void Discard(NewFile& created) const;
    void CompleteFiles();
    bool ReplaceRastersAndTable();
    void Reopen();

    CTextureDatabase& m_rDatabase;
    CacheIndex m_eCache;
    NewFile m_oTable;
    NewFile m_oRasters;
    NewFile m_oThumbnails;
    std::vector<std::uint32_t> m_aOffsets;
};
