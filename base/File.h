#pragma once

// Binary files with 64-bit positions, and the file system that opens them. Both are interfaces so that a test
// can let the n-th write fail and watch that nothing is lost; DiskFileSystem() is the real one.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <vector>

/// An open file. It has no current position: every call names the place. Closing is destruction.
class IFile {
public:
    IFile() = default;
    IFile(const IFile&) = delete;
    IFile& operator=(const IFile&) = delete;
    virtual ~IFile() = default;

    /// Length in bytes; 0 when the system cannot tell.
    virtual std::uint64_t Size() const = 0;
    /// Fills `out` from `position`. Returns the bytes read: fewer only at the end of the file or on an error.
    virtual std::size_t ReadAt(std::uint64_t position, std::span<std::byte> out) const = 0;
    /// False when not everything was written; what was written before the failure stays.
    virtual bool WriteAt(std::uint64_t position, std::span<const std::byte> bytes) = 0;
    /// Cuts the file, or extends it with zero bytes, to `size` bytes.
    virtual bool Resize(std::uint64_t size) = 0;
    /// Hands what was written to the system.
    virtual bool Flush() = 0;
    /// As Flush, and waits until the device holds it.
    virtual bool Sync() = 0;
};

enum class OpenMode {
    Read,       ///< an existing file
    ReadWrite,  ///< an existing file; nobody else may write to it while it is open
    Truncate,  ///< created, or emptied; for reading and writing, nobody else may write to it while it is open
    Exclusive,  ///< an existing file, for reading and, where it is allowed, writing; nobody else may open it
                ///< so, or to write to it, while it is open
};

class IFileSystem {
public:
    IFileSystem() = default;
    IFileSystem(const IFileSystem&) = delete;
    IFileSystem& operator=(const IFileSystem&) = delete;
    virtual ~IFileSystem() = default;

    /// Null when the file cannot be opened so; only regular files are.
    virtual std::unique_ptr<IFile> Open(const std::filesystem::path& file, OpenMode mode) = 0;
    /// True for anything of that name: a file, a folder, a device.
    virtual bool Exists(const std::filesystem::path& file) const = 0;
    /// Moves `from` over `to` in one step; on failure both stay as they were. Neither may be open.
    virtual bool Replace(const std::filesystem::path& from, const std::filesystem::path& to) = 0;
    /// Copies a file. Fails when `to` exists.
    virtual bool Copy(const std::filesystem::path& from, const std::filesystem::path& to) = 0;
    virtual bool Remove(const std::filesystem::path& file) = 0;
};

/// The files of this machine. It has no state. Long Windows paths work.
IFileSystem& DiskFileSystem();

/// What the system says about the last failure of a file operation on this thread, in its own numbers.
std::uint32_t LastSystemError();

/// A name beside `file` that nothing has yet, for new contents that are to replace it.
std::filesystem::path UnusedSibling(const IFileSystem& files, const std::filesystem::path& file);

/// The whole of a file, or nothing when it cannot be opened or read, or is longer than `limit` bytes.
std::optional<std::vector<std::byte>> ReadWholeFile(IFileSystem& files, const std::filesystem::path& file,
                                                    std::uint64_t limit);

/// Makes `file` hold exactly `bytes`: written to a sibling that then replaces it in one step, so that a
/// failure leaves the old contents. False on failure.
bool WriteWholeFile(IFileSystem& files, const std::filesystem::path& file, std::span<const std::byte> bytes);
