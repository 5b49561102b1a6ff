#include "tests/support/MemoryFileSystem.h"

#include <algorithm>
#include <utility>

namespace {

class CMemoryFile final : public IFile {
public:
    CMemoryFile(std::shared_ptr<CMemoryFileSystem::Bytes> bytes, bool writable)
        : m_pBytes(std::move(bytes)), m_bWritable(writable)
    {
    }

    std::uint64_t Size() const override { return m_pBytes->size(); }

    std::size_t ReadAt(std::uint64_t position, std::span<std::byte> out) const override
    {
        if (position >= m_pBytes->size())
            return 0;
        const auto start = static_cast<std::size_t>(position);
        const std::size_t count = std::min(out.size(), m_pBytes->size() - start);
        std::copy_n(m_pBytes->begin() + static_cast<std::ptrdiff_t>(start), count, out.begin());
        return count;
    }

    bool WriteAt(std::uint64_t position, std::span<const std::byte> bytes) override
    {
        if (!m_bWritable || position > kLargest || bytes.size() > kLargest)
            return false;
        const auto start = static_cast<std::size_t>(position);
        if (m_pBytes->size() < start + bytes.size())
            m_pBytes->resize(start + bytes.size());
        std::copy(bytes.begin(), bytes.end(), m_pBytes->begin() + static_cast<std::ptrdiff_t>(start));
        return true;
    }

    bool Resize(std::uint64_t size) override
    {
        if (!m_bWritable || size > kLargest)
            return false;
        m_pBytes->resize(static_cast<std::size_t>(size));
        return true;
    }

    bool Flush() override { return true; }
    bool Sync() override { return true; }

private:
    static constexpr std::size_t kLargest = std::size_t{1} << 28;

    std::shared_ptr<CMemoryFileSystem::Bytes> m_pBytes;
    bool m_bWritable;
};

}  // namespace

std::unique_ptr<IFile> CMemoryFileSystem::Open(const std::filesystem::path& file, OpenMode mode)
{
    auto& slot = m_aFiles[file.string()];
    if (!slot && mode != OpenMode::Truncate) {
        m_aFiles.erase(file.string());
        return nullptr;
    }
    if (!slot)
        slot = std::make_shared<Bytes>();
    if (mode == OpenMode::Truncate)
        slot->clear();
    return std::make_unique<CMemoryFile>(slot, mode != OpenMode::Read);
}

bool CMemoryFileSystem::Exists(const std::filesystem::path& file) const
{
    return m_aFiles.contains(file.string());
}

bool CMemoryFileSystem::Replace(const std::filesystem::path& from, const std::filesystem::path& to)
{
    const auto found = m_aFiles.find(from.string());
    if (found == m_aFiles.end())
        return false;
    m_aFiles[to.string()] = found->second;
    m_aFiles.erase(from.string());
    return true;
}

bool CMemoryFileSystem::Copy(const std::filesystem::path& from, const std::filesystem::path& to)
{
    const Bytes* const bytes = Find(from);
    if (bytes == nullptr || Exists(to))
        return false;
    Put(to, *bytes);
    return true;
}

bool CMemoryFileSystem::Remove(const std::filesystem::path& file)
{
    return m_aFiles.erase(file.string()) != 0;
}

void CMemoryFileSystem::Put(const std::filesystem::path& file, Bytes bytes)
{
    m_aFiles[file.string()] = std::make_shared<Bytes>(std::move(bytes));
}

const CMemoryFileSystem::Bytes* CMemoryFileSystem::Find(const std::filesystem::path& file) const
{
    const auto found = m_aFiles.find(file.string());
    return found != m_aFiles.end() ? found->second.get() : nullptr;
}
