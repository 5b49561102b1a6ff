#pragma once

// The converter for the uncompressed 16-bit formats as C++ functions: what the plugin's exports call, and
// what tests link. Everything is reentrant and works on the caller's buffers alone; buffers may have any
// alignment.

#include <cstdint>

#include "plugins/common/PluginInfo.h"

namespace Unc {

/// Packs R G B A pixels into little-endian 16-bit values: 5-6-5 bits without alpha, 4-4-4-4 bits with alpha,
/// red highest. Without dithering low bits are cut off; with it, the mean over a small area stays what it
/// was. Returns width * height * 2, or 0 when a side is 0 or that would not fit 32 bits. Throws
/// std::bad_alloc only with dithering.
std::uint32_t Compress(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                       bool alpha, Plugin::Dithering dithering = Plugin::Dithering::None);

/// Copies width * height 16-bit pixels unchanged: the program shows these formats itself.
/// Returns the bytes copied, or 0 when a side is 0 or they would not fit 32 bits.
std::uint32_t Decompress(const void* source, void* destination, std::uint32_t width, std::uint32_t height);

}  // namespace Unc
