#pragma once

// A folder of its own for one test, removed with everything in it at the end.

#include <filesystem>
#include <string>

class CTemporaryFolder {
public:
    CTemporaryFolder();
    ~CTemporaryFolder();
    CTemporaryFolder(const CTemporaryFolder&) = delete;
    CTemporaryFolder& operator=(const CTemporaryFolder&) = delete;

    const std::filesystem::path& Path() const { return m_sPath; }
    std::filesystem::path operator/(const std::filesystem::path& name) const { return m_sPath / name; }

private:
    std::filesystem::path m_sPath;
};
