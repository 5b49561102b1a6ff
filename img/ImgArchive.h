#pragma once

// An IMG archive, read only: its directory, and the bytes of its entries. It owns the open files and the
// directory. The dictionary and model readers borrow the archive file and read entries in place, so whoever
// lends it keeps the archive open meanwhile. docs/formats/img.md describes both versions.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/File.h"

/// Positions and sizes of entries are whole sectors.
inline constexpr std::uint32_t kImgSectorBytes = 2048;

class CImgArchive {
public:
    /// `files` is borrowed and must outlive the archive.
    explicit CImgArchive(IFileSystem& files = DiskFileSystem()) : m_rFiles(files) {}

    /// Opens an archive and reads its directory; what was open before is closed. False when the archive, or
    /// the ".dir" of version 1, cannot be opened. Without a ".dir" the archive file is held until Close, and
    /// there are no entries.
    bool Open(const std::filesystem::path& path);
    /// Closes both files and forgets everything. True when nothing failed, also when nothing was open.
    bool Close();
    /// Reads the directory anew; returns the number of entries. What the file is too short for is zero.
    std::uint32_t ReadDirectory();

    bool IsVersion2() const;
    /// The first four bytes of the archive file.
    std::uint32_t Magic() const { return m_nMagic; }
    const std::filesystem::path& Path() const { return m_sPath; }
    /// The archive file, to be lent to readers; null when none is open.
    const IFile* File() const { return m_pArchive.get(); }

    std::uint32_t EntryCount() const;
    // Of an entry that does not exist, position and size are 0 and the name is empty.
    /// Bytes, as the directory claims.
    std::uint64_t EntrySize(std::uint32_t index) const;
    /// In bytes from the start of the archive file.
    std::uint64_t EntryOffset(std::uint32_t index) const;
    std::wstring EntryName(std::uint32_t index) const;
    /// Whether the part of the name behind its last dot (all of it without one) is `extension`, given in
    /// lower case and without a dot; A-Z match a-z.
    bool HasExtension(std::uint32_t index, std::string_view extension) const;
    /// False for an entry that ends at 4 GiB or beyond, and for one that does not exist.
    bool IsReachable(std::uint32_t index) const;
    /// The entry's bytes, fewer when the file ends before; nothing when the entry is not reachable or no
    /// archive is open.
    std::optional<std::vector<std::byte>> ReadEntry(std::uint32_t index) const;

private:
    static constexpr std::size_t kEntryBytes = 32;

    /// The bytes of a directory entry; none when there is no such entry.
    std::span<const char> EntryAt(std::uint32_t index) const;
    std::string_view RawName(std::uint32_t index) const;
    std::uint64_t CountOfDirectory() const;

    IFileSystem& m_rFiles;
    std::unique_ptr<IFile> m_pArchive;
    std::unique_ptr<IFile> m_pDirectory;  // version 1
    std::uint32_t m_nMagic = 0;
    std::uint32_t m_nHeaderCount = 0;
    std::filesystem::path m_sPath;
    std::vector<char> m_aDirectory;
};
