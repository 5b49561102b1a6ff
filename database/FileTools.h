#pragma once

// Small steps that every rewrite of a database file is made of: names that are free, whole writes, copies
// that are kept.

#include <cstddef>
#include <filesystem>
#include <memory>
#include <span>
#include <string_view>

#include "base/File.h"

/// `file` with `suffix` behind it, or with a number behind that, whichever is free first.
std::filesystem::path FreeSibling(const IFileSystem& files, const std::filesystem::path& file,
                                  std::string_view suffix);

/// Creates `file` with these bytes and waits until the device holds them. On failure no file is left.
bool WriteNewFile(IFileSystem& files, const std::filesystem::path& file, std::span<const std::byte> bytes);

/// Appends `length` bytes of `source` from `position` to `target` at `at`, a block at a time.
bool CopyBytes(const IFile& source, std::uint64_t position, std::uint64_t length, IFile& target,
               std::uint64_t at);

/// Copies an open file to a new one. On failure no file is left.
bool CopyToNewFile(IFileSystem& files, const IFile& source, const std::filesystem::path& copy);

/// Copies an open file to `<file>.bak`, or to a numbered name when that is taken: an older copy is never
/// overwritten.
bool KeepBackup(IFileSystem& files, const IFile& source, const std::filesystem::path& file);
