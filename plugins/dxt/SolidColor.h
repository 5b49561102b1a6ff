#pragma once

// The best endpoints for a block of one colour. Per channel a table, built at compile time, knows for each
// 8-bit value the pair of endpoint levels whose mixed colour comes nearest.

#include <cstdint>

#include "plugins/dxt/BlockFormat.h"

namespace Dxt {

struct SolidEndpoints {
    std::uint16_t color0;
    std::uint16_t color1;
    /// Summed squared difference of one pixel.
    int error;
};

/// The endpoints whose index 2 of this mode is nearest to the colour; no other pair is nearer in any channel.
SolidEndpoints SolidEndpointsFor(const Rgb& color, PaletteMode mode);

/// Writes the 8 bytes of a block of one colour, red in the lowest byte of `pixel`. `fourOnly` is for DXT3 and
/// DXT5; else the palette that comes nearer is taken.
void StoreSolidBlock(std::uint32_t pixel, bool fourOnly, std::uint8_t* out);

/// The same for DXT1 with one-bit alpha: pixels whose two bits are set in `clear`, the first pixel's lowest,
/// become transparent.
void StoreSolidBlockWithHoles(std::uint32_t pixel, std::uint32_t clear, std::uint8_t* out);

}  // namespace Dxt
