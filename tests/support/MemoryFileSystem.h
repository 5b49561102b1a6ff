#pragma once

// A file system in memory, for tests and fuzz targets that open many small databases. Paths are compared as
// text; every name may be opened any number of times.

#include <map>
#include <string>

#include "base/File.h"

class CMemoryFileSystem final : public IFileSystem {
public:
    using Bytes = std::vector<std::byte>;

    std::unique_ptr<IFile> Open(const std::filesystem::path& file, OpenMode mode) override;
    bool Exists(const std::filesystem::path& file) const override;
    bool Replace(const std::filesystem::path& from, const std::filesystem::path& to) override;
    bool Copy(const std::filesystem::path& from, const std::filesystem::path& to) override;
    bool Remove(const std::filesystem::path& file) override;

    void Put(const std::filesystem::path& file, Bytes bytes);
    /// Null when there is no such file.
    const Bytes* Find(const std::filesystem::path& file) const;

private:
    std::map<std::string, std::shared_ptr<Bytes>> m_aFiles;
};
