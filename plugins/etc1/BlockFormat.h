#pragma once

// The layout of ETC1 blocks. A block is a big-endian 64-bit number; its two halves are 2x4 pixels side by
// side, or 4x2 pixels one above the other when the flip bit is set. Shared by decoder and encoder.
//
//   bit     individual mode (diff 0)         differential mode (diff 1)
//   63..56  red 4 bits, red of half 2        red 5 bits, 3 bits signed difference of half 2
//   55..48  green, the same way
//   47..40  blue, the same way
//   39..37  modifier table of half 1         36..34  modifier table of half 2
//   33      diff                             32      flip
//   31..16  high bit of each pixel's modifier: bit 16 + 4x + y
//   15..0   low bit of each pixel's modifier: bit 4x + y

#include <array>
#include <cstddef>
#include <cstdint>

namespace Etc1 {

inline constexpr std::size_t kBlockBytes = 8;
inline constexpr std::size_t kTables = 8;

inline constexpr std::uint32_t kDiffBit = 1U << 1;
inline constexpr std::uint32_t kFlipBit = 1U << 0;

/// The small and the large modifier of each table. A pixel's two bits say: low, the large one; high, subtract
/// it.
inline constexpr std::array<std::array<int, 2>, kTables> kModifiers{
    {{2, 8}, {5, 17}, {9, 29}, {13, 42}, {18, 60}, {24, 80}, {33, 106}, {47, 183}}};

constexpr int ModifierOf(std::size_t table, int code)
{
    const int size = kModifiers[table][static_cast<std::size_t>(code & 1)];
    return (code & 2) != 0 ? -size : size;
}

constexpr int Expand4(int level)
{
    return level << 4 | level;
}

constexpr int Expand5(int level)
{
    return level << 3 | level >> 2;
}

constexpr int Clamp255(int value)
{
    return value < 0 ? 0 : value > 255 ? 255 : value;
}

}  // namespace Etc1
