#pragma once

// The texture dictionary that reading and importing are measured with.

#include <cstdint>

#include "tests/support/RenderWareFiles.h"

namespace Bench {

/// Pixels a side of every texture in it.
inline constexpr std::uint16_t kDictionarySide = 512;
/// Bytes of a texture's only level, DXT3.
inline constexpr std::size_t kDictionaryLevelBytes = std::size_t{kDictionarySide} * kDictionarySide;

/// So many textures, no two alike.
RwFile::Bytes MakeDxtDictionary(std::uint32_t textures);
/// The level of one of them.
RwFile::Bytes DictionaryLevel(std::uint32_t texture);

}  // namespace Bench
