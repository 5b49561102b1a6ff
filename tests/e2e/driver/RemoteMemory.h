#pragma once

// Memory inside the process that owns a window. Messages of the common controls carry pointers that Windows
// does not translate from one process to another, so the structures and texts must lie over there.

#include "base/Windows.h"

#include <cstddef>
#include <string>

class CRemoteMemory {
public:
    /// Throws CDriveError when the process does not allow it.
    CRemoteMemory(HWND window, std::size_t bytes);
    ~CRemoteMemory();
    CRemoteMemory(const CRemoteMemory&) = delete;
    CRemoteMemory& operator=(const CRemoteMemory&) = delete;

    /// The address over there, `offset` bytes from the start.
    void* At(std::size_t offset = 0) const { return static_cast<std::byte*>(m_pMemory) + offset; }
    LPARAM AsParameter(std::size_t offset = 0) const;

    /// The memory stays over there when this object goes, for a receiver that reads it later.
    void Leave() { m_bStays = true; }

    void Write(std::size_t offset, const void* from, std::size_t bytes) const;
    void Read(std::size_t offset, void* to, std::size_t bytes) const;
    template <class T>
    void Put(std::size_t offset, const T& value) const
    {
        Write(offset, &value, sizeof value);
    }
    template <class T>
    T Get(std::size_t offset) const
    {
        T value{};
        Read(offset, &value, sizeof value);
        return value;
    }
    /// The text at `offset`, of at most `longest` characters.
    std::wstring GetText(std::size_t offset, std::size_t longest) const;

private:
    HANDLE m_hProcess = nullptr;
    void* m_pMemory = nullptr;
    bool m_bStays = false;
};
