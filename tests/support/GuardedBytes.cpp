#include "tests/support/GuardedBytes.h"

#include <new>

#ifdef _WIN32
#include "base/Windows.h"
#else
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace {
#ifdef _WIN32
std::size_t PageBytes()
{
    SYSTEM_INFO info{};
    GetSystemInfo(&info);
    return info.dwPageSize;
}

void* ReservePages(std::size_t bytes)
{
    return VirtualAlloc(nullptr, bytes, MEM_RESERVE, PAGE_NOACCESS);
}

bool AllowPages(void* first, std::size_t bytes)
{
    return VirtualAlloc(first, bytes, MEM_COMMIT, PAGE_READWRITE) != nullptr;
}

void FreePages(void* first, std::size_t /*bytes*/)
{
    VirtualFree(first, 0, MEM_RELEASE);
}
#else
std::size_t PageBytes()
{
    return static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

void* ReservePages(std::size_t bytes)
{
    void* const pages = mmap(nullptr, bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return pages == MAP_FAILED ? nullptr : pages;
}

bool AllowPages(void* first, std::size_t bytes)
{
    return mprotect(first, bytes, PROT_READ | PROT_WRITE) == 0;
}

void FreePages(void* first, std::size_t bytes)
{
    munmap(first, bytes);
}
#endif
}  // namespace

CGuardedBytes::CGuardedBytes(std::size_t count)
    : m_nPage(PageBytes()),
      m_nUsable((count + m_nPage - 1) / m_nPage * m_nPage),
      m_pPages(ReservePages(m_nUsable + 2 * m_nPage))
{
    if (m_pPages == nullptr)
        throw std::bad_alloc();
    if (m_nUsable != 0 && !AllowPages(static_cast<std::uint8_t*>(m_pPages) + m_nPage, m_nUsable)) {
        FreePages(m_pPages, m_nUsable + 2 * m_nPage);
        throw std::bad_alloc();
    }
}

CGuardedBytes::~CGuardedBytes()
{
    FreePages(m_pPages, m_nUsable + 2 * m_nPage);
}

std::uint8_t* CGuardedBytes::At(GuardSide side, std::size_t count) const
{
    std::uint8_t* const first = static_cast<std::uint8_t*>(m_pPages) + m_nPage;
    return side == GuardSide::Before ? first : first + (m_nUsable - count);
}
