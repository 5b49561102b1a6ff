#include "tests/support/FaultyFileSystem.h"

#include <utility>

namespace {

bool Spend(std::uint32_t& left)
{
    if (left == 0)
        return false;
    --left;
    return true;
}

class CFaultyFile final : public IFile {
public:
    CFaultyFile(std::unique_ptr<IFile> file, std::shared_ptr<std::uint32_t> left)
        : m_pFile(std::move(file)), m_pLeft(std::move(left))
    {
    }

    std::uint64_t Size() const override { return m_pFile->Size(); }
    std::size_t ReadAt(std::uint64_t position, std::span<std::byte> out) const override
    {
        return m_pFile->ReadAt(position, out);
    }
    bool WriteAt(std::uint64_t position, std::span<const std::byte> bytes) override
    {
        // A full disk takes a part of what it is given.
        if (!Spend(*m_pLeft)) {
            m_pFile->WriteAt(position, bytes.first(bytes.size() / 2));
            return false;
        }
        return m_pFile->WriteAt(position, bytes);
    }
    // Making a file shorter works on a full disk.
    bool Resize(std::uint64_t size) override
    {
        return (size <= m_pFile->Size() || Spend(*m_pLeft)) && m_pFile->Resize(size);
    }
    bool Flush() override { return m_pFile->Flush(); }
    bool Sync() override { return m_pFile->Sync(); }

private:
    std::unique_ptr<IFile> m_pFile;
    std::shared_ptr<std::uint32_t> m_pLeft;
};

}  // namespace

std::unique_ptr<IFile> CFaultyFileSystem::Open(const std::filesystem::path& file, OpenMode mode)
{
    if (mode == OpenMode::Truncate && !Spend(*m_pLeft))
        return nullptr;
    auto opened = DiskFileSystem().Open(file, mode);
    if (!opened)
        return nullptr;
    return std::make_unique<CFaultyFile>(std::move(opened), m_pLeft);
}

bool CFaultyFileSystem::Exists(const std::filesystem::path& file) const
{
    return DiskFileSystem().Exists(file);
}

bool CFaultyFileSystem::Replace(const std::filesystem::path& from, const std::filesystem::path& to)
{
    return Spend(*m_pLeft) && DiskFileSystem().Replace(from, to);
}

bool CFaultyFileSystem::Copy(const std::filesystem::path& from, const std::filesystem::path& to)
{
    return Spend(*m_pLeft) && DiskFileSystem().Copy(from, to);
}

bool CFaultyFileSystem::Remove(const std::filesystem::path& file)
{
    return DiskFileSystem().Remove(file);
}
