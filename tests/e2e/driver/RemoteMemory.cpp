#include "tests/e2e/driver/RemoteMemory.h"

#include "tests/e2e/driver/Wait.h"

CRemoteMemory::CRemoteMemory(HWND window, std::size_t bytes)
{
    DWORD process = 0;
    ::GetWindowThreadProcessId(window, &process);
    m_hProcess = ::OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE, FALSE, process);
    if (!m_hProcess)
        throw CDriveError("the window's process is gone or closed to us");
    m_pMemory = ::VirtualAllocEx(m_hProcess, nullptr, bytes, MEM_COMMIT, PAGE_READWRITE);
    if (!m_pMemory) {
        ::CloseHandle(m_hProcess);
        throw CDriveError("no memory in the window's process");
    }
}

CRemoteMemory::~CRemoteMemory()
{
    if (!m_bStays)
        ::VirtualFreeEx(m_hProcess, m_pMemory, 0, MEM_RELEASE);
    ::CloseHandle(m_hProcess);
}

LPARAM CRemoteMemory::AsParameter(std::size_t offset) const
{
    return reinterpret_cast<LPARAM>(At(offset));  // NOLINT: how messages carry addresses
}

void CRemoteMemory::Write(std::size_t offset, const void* from, std::size_t bytes) const
{
    if (!::WriteProcessMemory(m_hProcess, At(offset), from, bytes, nullptr))
        throw CDriveError("cannot write into the window's process");
}

void CRemoteMemory::Read(std::size_t offset, void* to, std::size_t bytes) const
{
    if (!::ReadProcessMemory(m_hProcess, At(offset), to, bytes, nullptr))
        throw CDriveError("cannot read from the window's process");
}

std::wstring CRemoteMemory::GetText(std::size_t offset, std::size_t longest) const
{
    std::wstring text(longest, L'\0');
    Read(offset, text.data(), longest * sizeof(wchar_t));
    return text.c_str();  // up to the first NUL
}
