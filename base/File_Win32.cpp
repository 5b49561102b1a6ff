#include "base/File.h"

#include "base/Windows.h"

#include <algorithm>
#include <limits>
#include <string>

namespace {

constexpr std::size_t kLongestTransfer = std::size_t{1} << 30;

// Paths beyond 260 characters need the \\?\ form, which takes absolute paths with backslashes only.
std::wstring SystemPath(const std::filesystem::path& file)
{
    constexpr std::size_t kShortEnough = 240;
    if (file.native().size() < kShortEnough)
        return file.native();
    std::error_code error;
    const std::wstring full = std::filesystem::absolute(file, error).make_preferred().native();
    if (error || full.starts_with(L"\\\\?\\"))
        return file.native();
    if (full.starts_with(L"\\\\"))
        return L"\\\\?\\UNC\\" + full.substr(2);
    return L"\\\\?\\" + full;
}

OVERLAPPED PlaceOf(std::uint64_t position)
{
    OVERLAPPED place = {};
    place.Offset = static_cast<DWORD>(position);
    place.OffsetHigh = static_cast<DWORD>(position >> 32);
    return place;
}

class CWin32File final : public IFile {
public:
    explicit CWin32File(HANDLE file) : m_hFile(file) {}
    ~CWin32File() override { ::CloseHandle(m_hFile); }

    std::uint64_t Size() const override
    {
        LARGE_INTEGER size = {};
        return ::GetFileSizeEx(m_hFile, &size) != FALSE ? static_cast<std::uint64_t>(size.QuadPart) : 0;
    }

    std::size_t ReadAt(std::uint64_t position, std::span<std::byte> out) const override
    {
        std::size_t done = 0;
        while (done < out.size()) {
            OVERLAPPED place = PlaceOf(position + done);
            const auto wanted = static_cast<DWORD>(std::min(out.size() - done, kLongestTransfer));
            DWORD count = 0;
            if (::ReadFile(m_hFile, out.data() + done, wanted, &count, &place) == FALSE || count == 0)
                break;
            done += count;
        }
        return done;
    }

    bool WriteAt(std::uint64_t position, std::span<const std::byte> bytes) override
    {
        std::size_t done = 0;
        while (done < bytes.size()) {
            OVERLAPPED place = PlaceOf(position + done);
            const auto wanted = static_cast<DWORD>(std::min(bytes.size() - done, kLongestTransfer));
            DWORD count = 0;
            if (::WriteFile(m_hFile, bytes.data() + done, wanted, &count, &place) == FALSE || count == 0)
                return false;
            done += count;
        }
        return true;
    }

    bool Resize(std::uint64_t size) override
    {
        LARGE_INTEGER end = {};
        end.QuadPart = static_cast<LONGLONG>(size);
        return ::SetFilePointerEx(m_hFile, end, nullptr, FILE_BEGIN) != FALSE &&
               ::SetEndOfFile(m_hFile) != FALSE;
    }

    // Writes go to the system at once; there is no buffer of ours to hand over.
    bool Flush() override { return true; }
    bool Sync() override { return ::FlushFileBuffers(m_hFile) != FALSE; }

private:
    HANDLE m_hFile;
};

DWORD ShareOf(OpenMode mode)
{
    switch (mode) {
        case OpenMode::Read:
            return FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
        case OpenMode::ReadWrite:
        case OpenMode::Truncate:
            return FILE_SHARE_READ;
        case OpenMode::Exclusive:
            return 0;
    }
    return 0;
}

class CWin32FileSystem final : public IFileSystem {
public:
    std::unique_ptr<IFile> Open(const std::filesystem::path& file, OpenMode mode) override
    {
        const bool reading = mode == OpenMode::Read;
        const DWORD access = reading ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE;
        const DWORD disposition = mode == OpenMode::Truncate ? CREATE_ALWAYS : OPEN_EXISTING;
        const auto open = [&](DWORD wanted) {
            return ::CreateFileW(SystemPath(file).c_str(), wanted, ShareOf(mode), nullptr, disposition,
                                 FILE_ATTRIBUTE_NORMAL, nullptr);
        };
        HANDLE handle = open(access);
        if (handle == INVALID_HANDLE_VALUE && mode == OpenMode::Exclusive &&
            ::GetLastError() == ERROR_ACCESS_DENIED)
            handle = open(GENERIC_READ);
        if (handle == INVALID_HANDLE_VALUE)
            return nullptr;
        auto opened = std::make_unique<CWin32File>(handle);
        if (::GetFileType(handle) != FILE_TYPE_DISK)
            return nullptr;
        return opened;
    }

    bool Exists(const std::filesystem::path& file) const override
    {
        return ::GetFileAttributesW(SystemPath(file).c_str()) != INVALID_FILE_ATTRIBUTES;
    }

    bool Replace(const std::filesystem::path& from, const std::filesystem::path& to) override
    {
        return ::MoveFileExW(SystemPath(from).c_str(), SystemPath(to).c_str(),
                             MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != FALSE;
    }

    bool Copy(const std::filesystem::path& from, const std::filesystem::path& to) override
    {
        return ::CopyFileW(SystemPath(from).c_str(), SystemPath(to).c_str(), TRUE) != FALSE;
    }

    bool Remove(const std::filesystem::path& file) override
    {
        return ::DeleteFileW(SystemPath(file).c_str()) != FALSE;
    }
};

}  // namespace

std::uint32_t LastSystemError()
{
    return ::GetLastError();
}

IFileSystem& DiskFileSystem()
{
    static CWin32FileSystem files;
    return files;
}
