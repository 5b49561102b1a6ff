#pragma once

// Builds IMG archives of both versions byte by byte, from the layout in docs/formats/img.md and not through
// the code under test. Entries get sectors of their own in the order in which they are added.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

using ImgBytes = std::vector<std::byte>;

/// One directory entry; what is not given follows from the contents.
struct ImgEntry {
    std::string name;  // cut to 24 bytes, filled up with NUL
    ImgBytes contents = {};
    std::optional<std::uint32_t> offset = std::nullopt;         // in sectors
    std::optional<std::uint32_t> size = std::nullopt;           // in sectors; 16 bits in version 2
    std::optional<std::uint16_t> sizeInArchive = std::nullopt;  // version 2
};

struct ImgFileOptions {
    /// The word behind "VER2" when it is not the number of entries.
    std::optional<std::uint32_t> count = std::nullopt;
};

/// A whole version 2 archive.
ImgBytes Version2Archive(const std::vector<ImgEntry>& entries, const ImgFileOptions& options = {});

/// The two files of a version 1 archive.
struct Version1Files {
    ImgBytes img;
    ImgBytes dir;
};
Version1Files Version1Archive(const std::vector<ImgEntry>& entries);

/// Writes them to disk; the ".dir" goes beside the archive.
void WriteVersion2Archive(const std::filesystem::path& file, const std::vector<ImgEntry>& entries,
                          const ImgFileOptions& options = {});
void WriteVersion1Archive(const std::filesystem::path& file, const std::vector<ImgEntry>& entries);
