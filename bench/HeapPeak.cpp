#include "bench/HeapPeak.h"

#include <atomic>
#include <cstdlib>
#include <malloc.h>
#include <new>

namespace Bench {
namespace {

std::atomic<std::size_t> bytesNow = 0;
std::atomic<std::size_t> bytesMost = 0;

}  // namespace

std::size_t HeapBytes()
{
    return bytesNow;
}

std::size_t HeapPeak()
{
    return bytesMost;
}

void ResetHeapPeak()
{
    bytesMost = bytesNow.load();
}

}  // namespace Bench

// NOLINTBEGIN(cppcoreguidelines-owning-memory, cppcoreguidelines-no-malloc, misc-new-delete-overloads): these
// are the functions that own memory

void* operator new(std::size_t size)
{
    void* const block = std::malloc(size == 0 ? 1 : size);
    if (block == nullptr)
        throw std::bad_alloc();
    const std::size_t now = Bench::bytesNow += ::malloc_usable_size(block);
    for (std::size_t most = Bench::bytesMost;
         now > most && !Bench::bytesMost.compare_exchange_weak(most, now);) {
    }
    return block;
}

void operator delete(void* block) noexcept
{
    if (block == nullptr)
        return;
    Bench::bytesNow -= ::malloc_usable_size(block);
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    operator delete(block);
}

// NOLINTEND(cppcoreguidelines-owning-memory, cppcoreguidelines-no-malloc, misc-new-delete-overloads)
