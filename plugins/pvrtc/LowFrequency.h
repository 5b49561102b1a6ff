#pragma once

// The two low-resolution images of PVRTC1, enlarged: colour A and colour B at every pixel of a block, from
// the endpoints of the block and its eight neighbours. The kernel is the format's definition in integers; a
// faster one must give the same numbers.

#include <array>
#include <cstddef>
#include <cstdint>

#include "plugins/pvrtc/PvrtcBlock.h"

namespace Pvrtc {

/// Endpoints of three by three blocks, the block itself in the middle.
using Neighbourhood = std::array<const EndpointPair*, 9>;

/// R G B A of colour A, then of colour B, 8 bits a channel, for each pixel of a block in rows.
using BlockColors = std::array<std::array<std::int16_t, 8>, kMaxBlockPixels>;

/// The neighbourhood of a block in a row-major array of endpoints; it wraps at the edges of the level.
Neighbourhood NeighboursOf(const EndpointPair* endpoints, const BlockGrid& grid, std::uint32_t column,
                           std::uint32_t row);

/// Fills the first blockWidth * 4 pixels of `out`. `blockWidth` is 4 or 8.
using EnlargeBlockFn = void (*)(const Neighbourhood& neighbours, std::uint32_t blockWidth, BlockColors& out);

void EnlargeBlock_Portable(const Neighbourhood& neighbours, std::uint32_t blockWidth, BlockColors& out);

/// The fastest kernel here.
EnlargeBlockFn EnlargeBlock();

}  // namespace Pvrtc
