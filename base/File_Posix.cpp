#include "base/File.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace {

class CPosixFile final : public IFile {
public:
    explicit CPosixFile(int descriptor) : m_hFile(descriptor) {}
    ~CPosixFile() override { ::close(m_hFile); }

    std::uint64_t Size() const override
    {
        struct stat facts = {};
        return ::fstat(m_hFile, &facts) == 0 ? static_cast<std::uint64_t>(facts.st_size) : 0;
    }

    std::size_t ReadAt(std::uint64_t position, std::span<std::byte> out) const override
    {
        std::size_t done = 0;
        while (done < out.size()) {
            const ssize_t count =
                ::pread(m_hFile, out.data() + done, out.size() - done, static_cast<off_t>(position + done));
            if (count < 0 && errno == EINTR)
                continue;
            if (count <= 0)
                break;
            done += static_cast<std::size_t>(count);
        }
        return done;
    }

    bool WriteAt(std::uint64_t position, std::span<const std::byte> bytes) override
    {
        std::size_t done = 0;
        while (done < bytes.size()) {
            const ssize_t count = ::pwrite(m_hFile, bytes.data() + done, bytes.size() - done,
                                           static_cast<off_t>(position + done));
            if (count < 0 && errno == EINTR)
                continue;
            if (count <= 0)
                return false;
            done += static_cast<std::size_t>(count);
        }
        return true;
    }

    bool Resize(std::uint64_t size) override { return ::ftruncate(m_hFile, static_cast<off_t>(size)) == 0; }
    // Writes go to the system at once; there is no buffer of ours to hand over.
    bool Flush() override { return true; }
    bool Sync() override { return ::fsync(m_hFile) == 0; }

private:
    int m_hFile;
};

class CPosixFileSystem final : public IFileSystem {
public:
    std::unique_ptr<IFile> Open(const std::filesystem::path& file, OpenMode mode) override
    {
        // Without O_NONBLOCK opening a pipe would wait for its other end.
        int flags = O_CLOEXEC | O_NONBLOCK | (mode == OpenMode::Read ? O_RDONLY : O_RDWR);
        if (mode == OpenMode::Truncate)
            flags |= O_CREAT;
        int descriptor = ::open(file.c_str(), flags, 0666);
        if (descriptor < 0 && mode == OpenMode::Exclusive &&
            (errno == EACCES || errno == EPERM || errno == EROFS))
            descriptor = ::open(file.c_str(), O_CLOEXEC | O_NONBLOCK | O_RDONLY);
        if (descriptor < 0)
            return nullptr;
        auto opened = std::make_unique<CPosixFile>(descriptor);
        struct stat facts = {};
        if (::fstat(descriptor, &facts) != 0 || !S_ISREG(facts.st_mode))
            return nullptr;
        if (mode != OpenMode::Read && ::flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
            return nullptr;
        // Only after the lock: a file that somebody else has open must not be emptied.
        if (mode == OpenMode::Truncate && !opened->Resize(0))
            return nullptr;
        return opened;
    }

    bool Exists(const std::filesystem::path& file) const override
    {
        std::error_code ignored;
        return std::filesystem::exists(std::filesystem::symlink_status(file, ignored));
    }

    bool Replace(const std::filesystem::path& from, const std::filesystem::path& to) override
    {
        std::error_code error;
        std::filesystem::rename(from, to, error);
        return !error;
    }

    bool Copy(const std::filesystem::path& from, const std::filesystem::path& to) override
    {
        std::error_code error;
        return std::filesystem::copy_file(from, to, error) && !error;
    }

    bool Remove(const std::filesystem::path& file) override
    {
        std::error_code error;
        return std::filesystem::remove(file, error) && !error;
    }
};

}  // namespace

std::uint32_t LastSystemError()
{
    return static_cast<std::uint32_t>(errno);
}

IFileSystem& DiskFileSystem()
{
    static CPosixFileSystem files;
    return files;
}
