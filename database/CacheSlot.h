#pragma once

// The three files of one cache, held open, and its table of contents in memory. The functions here know
// nothing of entries; they write words, tables and records and say whether that worked.

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "base/File.h"
#include "database/CacheIndex.h"

struct CacheSlot {
    std::filesystem::path tocPath;
    std::filesystem::path datPath;
    std::filesystem::path tmbPath;
    std::unique_ptr<IFile> toc;  // null: the cache lacks that file
    std::unique_ptr<IFile> dat;
    std::unique_ptr<IFile> tmb;
    std::vector<std::uint32_t> offsets;  // the table of contents: a place in the `.dat` for each entry
    bool hasThumbnails = false;          // every raster has a thumbnail
    bool isBlocked = false;              // a file is there but could not be opened
};

CacheSlot OpenSlot(IFileSystem& files, const std::filesystem::path& list, CacheIndex cache);

/// A table of contents for a `.dat` of `datBytes` bytes.
std::vector<std::byte> TableBytes(std::uint64_t datBytes, std::span<const std::uint32_t> offsets);
/// Makes the `.toc` hold this table; creates it when the cache has none.
bool WriteTable(IFileSystem& files, CacheSlot& slot, std::span<const std::byte> table);
/// Writes the word of one entry.
bool WriteTableWord(CacheSlot& slot, std::size_t entry, std::uint32_t offset);
/// Writes the words of `count` entries from `first` on, as the offset list has them.
bool WriteTableWords(CacheSlot& slot, std::size_t first, std::size_t count);
/// Stores the length of the `.dat` in the `.toc`, when both are open.
bool WriteLengthWord(CacheSlot& slot);

/// Appends a record to the `.dat` or `.tmb` and gives its place. On failure the file is as long as before.
/// Refuses a record that would not end below 0xFFFFFFFF.
std::optional<std::uint32_t> AppendBytes(IFile& file, std::span<const std::byte> record);

/// Replaces an open file by another one and opens it again, whether or not the replacement worked.
bool ReplaceOpenFile(IFileSystem& files, const std::filesystem::path& from, const std::filesystem::path& to,
                     std::unique_ptr<IFile>& file);
