#pragma once

// The files of a database while the program has it open, and afterwards.

#include "base/Windows.h"

#include <filesystem>
#include <functional>

#include "tests/support/DatabaseBuilder.h"

/// Does the steps and waits until the list has been written anew, without opening it: an open file cannot be
/// replaced. Every edit writes the list, and the program does nothing else until the edit is complete.
void WaitForRewrite(const std::filesystem::path& list, const std::function<void()>& steps);

/// Expects the same names and bytes.
void ExpectSameFiles(const FileBytes& files, const FileBytes& wanted);

/// A file that this process, as any other program might, has open meanwhile.
class CHeldFile {
public:
    /// `share`: what others may do to it, for example FILE_SHARE_READ.
    CHeldFile(const std::filesystem::path& file, DWORD share);
    ~CHeldFile();
    CHeldFile(const CHeldFile&) = delete;
    CHeldFile& operator=(const CHeldFile&) = delete;

private:
    HANDLE m_hFile;
};
