#pragma once

// The dice of the demo pictures: a hash for "what is at this place" and a sequence for "what comes next".
// Integers throughout, so that the same pictures come out on every machine.

#include <cstdint>

namespace Demo {

/// Spreads the bits of a number over all 32.
constexpr std::uint32_t Scramble(std::uint32_t value)
{
    value ^= value >> 16;
    value *= 0x7FEB352DU;
    value ^= value >> 15;
    value *= 0x846CA68BU;
    value ^= value >> 16;
    return value;
}

/// A number in [0, 1) that belongs to the place and the seed.
constexpr double ChanceAt(int x, int y, std::uint32_t seed)
{
    const std::uint32_t mixed = Scramble(static_cast<std::uint32_t>(x) * 0x9E3779B9U ^
                                         Scramble(static_cast<std::uint32_t>(y) + seed * 0x85EBCA6BU));
    return (mixed >> 8) / 16777216.0;
}

/// At most one call in the arguments of a function: compilers differ in the order in which they evaluate
/// them.
class CRandom {
public:
    explicit CRandom(std::uint32_t seed) : m_nState(Scramble(seed + 1)) {}

    /// In [0, 1).
    double Next()
    {
        m_nState += 0x9E3779B9U;
        return (Scramble(m_nState) >> 8) / 16777216.0;
    }
    double Between(double low, double high) { return low + (high - low) * Next(); }
    /// 0 to count - 1.
    int Below(int count) { return static_cast<int>(Next() * count); }

private:
    std::uint32_t m_nState;
};

}  // namespace Demo
