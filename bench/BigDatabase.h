#pragma once

// A database of many small textures, as large in entries as the largest ones in use: what opening and listing
// are measured on. The core writes it, so it is what the program itself would have written.

#include <cstdint>
#include <filesystem>

namespace Bench {

inline constexpr std::uint32_t kBigDatabaseEntries = 20000;

/// Writes list, caches, tables of contents and thumbnails into `folder`; one entry in ten is an alias.
/// Returns the path of the list. Throws std::runtime_error when something cannot be written.
std::filesystem::path WriteBigDatabase(const std::filesystem::path& folder);

/// A folder of its own below the system's temporary folder, removed at the end.
class CScratchFolder {
public:
    CScratchFolder();
    ~CScratchFolder();
    CScratchFolder(const CScratchFolder&) = delete;
    CScratchFolder& operator=(const CScratchFolder&) = delete;

    const std::filesystem::path& Path() const { return m_sPath; }

private:
    std::filesystem::path m_sPath;
};

}  // namespace Bench
