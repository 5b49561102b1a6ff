#pragma once

// The disk, with somebody who is told before every change of a file: to look at the files as a crash at that
// moment would leave them, or to count the changes.

#include <functional>
#include <memory>
#include <utility>

#include "base/File.h"

class CWatchedFileSystem final : public IFileSystem {
public:
    void Watch(std::function<void()> beforeChange) { *m_pWatcher = std::move(beforeChange); }
    /// How often a file was put in another one's place.
    unsigned Replacements() const { return m_nReplacements; }

    std::unique_ptr<IFile> Open(const std::filesystem::path& file, OpenMode mode) override
    {
        if (mode == OpenMode::Truncate)
            Tell(*m_pWatcher);
        auto opened = DiskFileSystem().Open(file, mode);
        return opened ? std::make_unique<CWatchedFile>(std::move(opened), m_pWatcher) : nullptr;
    }
    bool Exists(const std::filesystem::path& file) const override { return DiskFileSystem().Exists(file); }
    bool Replace(const std::filesystem::path& from, const std::filesystem::path& to) override
    {
        Tell(*m_pWatcher);
        ++m_nReplacements;
        return DiskFileSystem().Replace(from, to);
    }
    bool Copy(const std::filesystem::path& from, const std::filesystem::path& to) override
    {
        Tell(*m_pWatcher);
        return DiskFileSystem().Copy(from, to);
    }
    bool Remove(const std::filesystem::path& file) override
    {
        Tell(*m_pWatcher);
        return DiskFileSystem().Remove(file);
    }

private:
    using Watcher = std::function<void()>;
    static void Tell(const Watcher& watcher)
    {
        if (watcher)
            watcher();
    }

    class CWatchedFile final : public IFile {
    public:
        CWatchedFile(std::unique_ptr<IFile> file, std::shared_ptr<Watcher> watcher)
            : m_pFile(std::move(file)), m_pWatcher(std::move(watcher))
        {
        }
        std::uint64_t Size() const override { return m_pFile->Size(); }
        std::size_t ReadAt(std::uint64_t position, std::span<std::byte> out) const override
        {
            return m_pFile->ReadAt(position, out);
        }
        bool WriteAt(std::uint64_t position, std::span<const std::byte> bytes) override
        {
            Tell(*m_pWatcher);
            return m_pFile->WriteAt(position, bytes);
        }
        bool Resize(std::uint64_t size) override
        {
            Tell(*m_pWatcher);
            return m_pFile->Resize(size);
        }
        bool Flush() override { return m_pFile->Flush(); }
        bool Sync() override { return m_pFile->Sync(); }

    private:
        std::unique_ptr<IFile> m_pFile;
        std::shared_ptr<Watcher> m_pWatcher;
    };

    std::shared_ptr<Watcher> m_pWatcher = std::make_shared<Watcher>();
    unsigned m_nReplacements = 0;
};
