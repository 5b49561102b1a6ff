#pragma once

// Memory with inaccessible pages around it, so that the system itself stops a program that touches one byte
// before or behind a buffer, vector instructions included. Owned by the object, which cannot be copied.

#include <cstddef>
#include <cstdint>

/// Where the buffer lies in its pages: at the beginning, directly behind an inaccessible page, or at the end,
/// directly before one.
enum class GuardSide { Before, Behind };

class CGuardedBytes {
public:
    /// Room for at least `count` bytes. Throws std::bad_alloc.
    explicit CGuardedBytes(std::size_t count);
    ~CGuardedBytes();
    CGuardedBytes(const CGuardedBytes&) = delete;
    CGuardedBytes& operator=(const CGuardedBytes&) = delete;

    /// The first of `count` bytes that lie directly at the inaccessible page of that side. The same memory
    /// serves any count up to the one of the constructor.
    std::uint8_t* At(GuardSide side, std::size_t count) const;

private:
    std::size_t m_nPage;
    std::size_t m_nUsable;
    void* m_pPages;
};
