#pragma once

// The two orders of the channels: bitmaps have blue first, rasters and codecs red.

#include <cstddef>
#include <span>

enum class AlphaBytes { Kept, Opaque };

/// Copies pixels of four bytes and exchanges the first and the third of each. `to` is as long as `from` and
/// does not overlap it.
void SwapBlueAndRed(std::span<const std::byte> from, std::span<std::byte> to,
                    AlphaBytes alpha = AlphaBytes::Kept);
