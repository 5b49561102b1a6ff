#pragma once

// The disk with a fault: from the n-th write on, every write, resize and replacement fails, as on a full
// disk. Counting n up until the operation succeeds shows every place where it can break off.

#include <memory>

#include "base/File.h"

class CFaultyFileSystem final : public IFileSystem {
public:
    /// The first `goodWrites` changes succeed.
    explicit CFaultyFileSystem(std::uint32_t goodWrites)
        : m_pLeft(std::make_shared<std::uint32_t>(goodWrites))
    {
    }

    std::unique_ptr<IFile> Open(const std::filesystem::path& file, OpenMode mode) override;
    bool Exists(const std::filesystem::path& file) const override;
    bool Replace(const std::filesystem::path& from, const std::filesystem::path& to) override;
    bool Copy(const std::filesystem::path& from, const std::filesystem::path& to) override;
    bool Remove(const std::filesystem::path& file) override;

    /// From now on `goodWrites` changes succeed.
    void Allow(std::uint32_t goodWrites) { *m_pLeft = goodWrites; }
    bool HasFailed() const { return *m_pLeft == 0; }

private:
    std::shared_ptr<std::uint32_t> m_pLeft;
};
