#pragma once

// How much the program's own allocations take at most: operator new and delete of the benchmark program
// count.

#include <cstddef>

namespace Bench {

/// Bytes that are allocated now.
std::size_t HeapBytes();
/// The most since the last reset.
std::size_t HeapPeak();
void ResetHeapPeak();

}  // namespace Bench
