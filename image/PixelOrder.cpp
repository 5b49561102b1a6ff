#include "image/PixelOrder.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace {

// Bytes of a pixel that is handled as one number, whatever the byte order is.
constexpr auto kBlueAndRed = std::bit_cast<std::uint32_t>(std::array<std::uint8_t, 4>{0xFF, 0, 0xFF, 0});
constexpr auto kAlpha = std::bit_cast<std::uint32_t>(std::array<std::uint8_t, 4>{0, 0, 0, 0xFF});

}  // namespace

void SwapBlueAndRed(std::span<const std::byte> from, std::span<std::byte> to, AlphaBytes alpha)
{
    const std::uint32_t opaque = alpha == AlphaBytes::Opaque ? kAlpha : 0;
    const std::byte* const source = from.data();
    std::byte* const target = to.data();
    for (std::size_t at = 0; at + sizeof(std::uint32_t) <= from.size(); at += sizeof(std::uint32_t)) {
        std::uint32_t pixel = 0;
        std::memcpy(&pixel, source + at, sizeof(pixel));
        pixel = (pixel & ~kBlueAndRed) | std::rotl(pixel & kBlueAndRed, 16) | opaque;
        std::memcpy(target + at, &pixel, sizeof(pixel));
    }
}
