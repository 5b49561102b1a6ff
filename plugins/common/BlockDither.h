#pragma once

// Dithering for formats of 4x4 blocks. Their encoders fit every block alone, so what shows as bands and
// patches is the mean colour of whole blocks being off. That error is measured after the fact, by decoding
// what was encoded, and given to blocks nearby that are still to be encoded. So the mean over a small area is
// right although no single block is, a colour that the format has exactly stays as it is, and no pixel gets
// more noise than the format cannot avoid. Nothing is owned; buffers may have any alignment.

#include <cstddef>
#include <cstdint>

#include "plugins/common/LevelEncode.h"

namespace Plugin {

/// Encodes a level whose size was checked, by the encoder's dithering, which is not None. Error diffusion
/// goes from row to row, on the calling thread. Ordered dithering takes the blocks in four rounds, those of a
/// round in any order, so it uses the encoder's threads; their number does not change the bytes. Throws
/// std::bad_alloc.
void EncodeDithered(const std::uint8_t* source, std::uint8_t* destination, std::size_t width,
                    std::size_t height, const LevelEncoder& encoder);

}  // namespace Plugin
