#pragma once

// A small database for tests of the window, made by the command-line program as a script would make it.

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/TemporaryFolder.h"

/// "textures.txt" with the caches DXT and UNC:
///
///     category Default   brick 64x64 (entry 0), leaf 32x32 (1), wall 128x64 (2), alias brick_old of brick
///     (4) category Signs     sign 16x16 (3)
class CSampleDatabase {
public:
    CSampleDatabase();

    std::filesystem::path List() const { return m_oFolder / "textures.txt"; }
    /// A file of the database, such as "textures.dxt.toc".
    std::filesystem::path File(const std::string& name) const { return m_oFolder / name; }
    /// Its path as an argument.
    std::vector<std::wstring> AsArgument() const { return {List().wstring()}; }

private:
    CTemporaryFolder m_oFolder;
};

/// Runs the command-line program; throws CDriveError with what it printed when it fails.
void RunCommandLine(const std::vector<std::wstring>& arguments);
/// A database without textures, with the same caches.
void MakeEmptyDatabase(const std::filesystem::path& list);
std::string ReadFile(const std::filesystem::path& file);
