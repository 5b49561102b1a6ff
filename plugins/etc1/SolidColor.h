#pragma once

// The best block of one colour. Every choice of mode, table and code is one signed modifier on base levels
// that each channel chooses for itself; tables know for each 8-bit value the level that comes nearest.

#include <cstdint>

namespace Etc1 {

/// Writes the 8 bytes of a block of one colour, red in the lowest byte of `pixel`. No block whose pixels are
/// all alike comes nearer.
void StoreSolidBlock(std::uint32_t pixel, std::uint8_t* out);

}  // namespace Etc1
