#pragma once

// The disk, read only, with a count of the bytes that are read.

#include "base/File.h"

namespace Bench {

/// Counts the bytes that are read.
class CCountingFileSystem final : public IFileSystem {
public:
    std::unique_ptr<IFile> Open(const std::filesystem::path& file, OpenMode mode) override
    {
        auto opened = DiskFileSystem().Open(file, mode);
        return opened ? std::make_unique<CCountingFile>(std::move(opened), m_nBytes) : nullptr;
    }
    bool Exists(const std::filesystem::path& file) const override { return DiskFileSystem().Exists(file); }
    bool Replace(const std::filesystem::path& /*from*/, const std::filesystem::path& /*to*/) override
    {
        return false;
    }
    bool Copy(const std::filesystem::path& /*from*/, const std::filesystem::path& /*to*/) override
    {
        return false;
    }
    bool Remove(const std::filesystem::path& /*file*/) override { return false; }
    std::uint64_t Bytes() const { return m_nBytes; }

private:
    class CCountingFile final : public IFile {
    public:
        CCountingFile(std::unique_ptr<IFile> file, std::uint64_t& bytes)
            : m_pFile(std::move(file)), m_rBytes(bytes)
        {
        }
        std::uint64_t Size() const override { return m_pFile->Size(); }
        std::size_t ReadAt(std::uint64_t position, std::span<std::byte> out) const override
        {
            const std::size_t count = m_pFile->ReadAt(position, out);
            m_rBytes += count;
            return count;
        }
        bool WriteAt(std::uint64_t /*position*/, std::span<const std::byte> /*bytes*/) override
        {
            return false;
        }
        bool Resize(std::uint64_t /*size*/) override { return false; }
        bool Flush() override { return true; }
        bool Sync() override { return true; }

    private:
        std::unique_ptr<IFile> m_pFile;
        std::uint64_t& m_rBytes;
    };

    std::uint64_t m_nBytes = 0;
};

}  // namespace Bench
