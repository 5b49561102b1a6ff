#pragma once

// Timing: the shortest of several runs, because everything that disturbs a run makes it longer.

#include <algorithm>
#include <chrono>
#include <cstdint>

namespace Bench {

/// Seconds of the shortest of `runs` calls.
template <typename Work>
double ShortestRun(int runs, Work work)
{
    double shortest = 1e30;
    for (int i = 0; i < runs; ++i) {
        const auto start = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        shortest = std::min(shortest, taken.count());
    }
    return shortest;
}

/// As above, with the work repeated within a run often enough to take about 20 milliseconds. Seconds of one
/// call.
template <typename Work>
double ShortestCall(Work work)
{
    const double once = std::max(ShortestRun(2, work), 1e-7);
    const int repeats = static_cast<int>(std::clamp(0.02 / once, 1.0, 10000.0));
    return ShortestRun(5,
                       [&] {
                           for (int i = 0; i < repeats; ++i)
                               work();
                       }) /
           repeats;
}

/// Makes the compiler believe that the bytes at `data` are read, so that it computes them.
inline void KeepAlive(const void* data)
{
    asm volatile("" : : "g"(data) : "memory");
}

}  // namespace Bench
