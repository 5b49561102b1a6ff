#pragma once

// The entries of an IMG archive as the tools show and save them: rows, their texts, and single entries as
// files.

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "base/File.h"
#include "base/Progress.h"
#include "img/ImgArchive.h"

/// What a list of an archive shows.
enum class ArchiveRows { Everything, Dictionaries };

/// Whether an entry is a texture dictionary, by its extension.
bool IsDictionaryEntry(const CImgArchive& archive, std::uint32_t index);
/// Whether an entry is a model.
bool IsModelEntry(const CImgArchive& archive, std::uint32_t index);

/// The directory indices of the rows, in order. Reports "OK" of 0 at the end. Texts are made when a row is
/// looked at, because a large archive has more rows than anybody reads.
std::vector<std::uint32_t> ListArchive(const CImgArchive& archive, ArchiveRows rows, IProgress& progress);

/// "512 b", "2.00 KB", "1.50 MB"; empty from 1 GiB.
std::wstring EntrySizeText(std::uint64_t bytes);
/// "0x00800000", with more digits where it takes them.
std::wstring EntryOffsetText(std::uint64_t offset);

/// The name under which an entry may be saved: no folders, no drive, no device.
std::wstring EntryFileName(std::wstring_view entryName);
/// What a save dialog offers for an entry: "TXD file|*.txd|All files|*.*|".
std::wstring EntryFileFilter(std::wstring_view entryName);

enum class EntryExport {
    Written,
    Exists,      ///< a file of that name is there and stays as it is
    Incomplete,  ///< the archive does not hold all of the entry; nothing was written
    NotSaved,    ///< the file cannot be written
};
/// Saves an entry as a new file.
EntryExport ExportEntry(const CImgArchive& archive, std::uint32_t index, const std::filesystem::path& file,
                        IFileSystem& files = DiskFileSystem());
