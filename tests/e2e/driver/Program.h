#pragma once

// A program that the test starts and owns: it is ended with the object, if it has not ended by itself.

#include "base/Windows.h"

#include <filesystem>
#include <string>
#include <vector>

class CProgram {
public:
    /// Starts `program` with `arguments`, each quoted as the C run-time library reads it. Its standard output
    /// and error go to the file `output`, when one is given. Throws CDriveError when it does not start.
    CProgram(const std::filesystem::path& program, const std::vector<std::wstring>& arguments,
             const std::filesystem::path& output = {});
    ~CProgram();
    CProgram(const CProgram&) = delete;
    CProgram& operator=(const CProgram&) = delete;

    DWORD Id() const { return m_nId; }
    bool IsRunning() const;
    /// Waits for its end and gives its exit code. Throws CDriveError when it does not end.
    DWORD WaitForExit() const;

private:
    HANDLE m_hProcess = nullptr;
    DWORD m_nId = 0;
};

/// The folder of the running test program.
std::filesystem::path FolderOfThisProgram();
