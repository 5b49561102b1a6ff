#pragma once

// Decoding of one PVRTC1 level. Works on the caller's buffers, which it borrows for the call; reentrant.

#include <cstddef>
#include <cstdint>
#include <optional>

#include "plugins/common/InstructionSet.h"

namespace Pvrtc {

/// Bytes of one stored level: whole blocks, at least two in each direction. 0 for a size that the format
/// cannot hold: a side that is not a power of two from 1 to 32768, 32768 x 32768 (its pixels do not fit 32
/// bits of bytes), or bitsPerPixel other than 2 and 4. For square levels this is max(32, width * height *
/// bitsPerPixel / 8); for flat ones such as 64 x 2 it is more.
std::uint64_t PvrtcLevelBytes(std::uint32_t width, std::uint32_t height, std::uint32_t bitsPerPixel);

/// Decodes a level to width * height R G B A pixels, rows top to bottom. Reads exactly PvrtcLevelBytes bytes
/// of `source`. An instruction set that is not supported stands for the portable one, none for the preferred
/// one; all give the same. Returns the bytes written; 0, with nothing written, when PvrtcLevelBytes is 0.
/// Throws std::bad_alloc.
std::uint32_t PvrtcDecode(const std::uint8_t* source, std::uint8_t* destination, std::uint32_t width,
                          std::uint32_t height, std::uint32_t bitsPerPixel,
                          std::optional<Plugin::InstructionSet> instructionSet = std::nullopt);

}  // namespace Pvrtc
