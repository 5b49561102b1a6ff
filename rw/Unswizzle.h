#pragma once

// PlayStation 2 rasters of 4 and 8 bits a pixel are stored in an order that suits its video memory. These
// bring the palette indices into rows. Pure functions; what they would read beyond the source counts as 0.

#include <cstddef>
#include <cstdint>
#include <span>

namespace RW {

/// One byte a pixel; `target` takes width * height bytes.
void UnswizzlePal8(std::span<const std::byte> source, std::span<std::byte> target, std::uint32_t width,
                   std::uint32_t height);
/// Two pixels a byte, the low half first. Deliberate: a width of 16 is taken for 32, so `target` takes
/// max(width, 32) * height / 2 bytes then.
void UnswizzlePal4(std::span<const std::byte> source, std::span<std::byte> target, std::uint32_t width,
                   std::uint32_t height);

}  // namespace RW
