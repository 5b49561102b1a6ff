#include "rw/Unswizzle.h"

namespace RW {
namespace {

constexpr std::uint32_t kNarrowWidth = 16;
constexpr std::uint32_t kWidthOfNarrow = 32;

/// Where in the stored order the pixel of column x and row y lies, for rows of `width` pixels.
std::uint64_t StoredIndex(std::uint64_t x, std::uint64_t y, std::uint64_t width)
{
    const std::uint64_t block = (y & ~std::uint64_t{15}) * width + (x & ~std::uint64_t{15}) * 2;
    const std::uint64_t swap = (y + 2) & ~std::uint64_t{3};
    const std::uint64_t row = ((y >> 1) & 6) | (y & 1);
    const std::uint64_t column = ((x + swap) & 7) * 4 + row * 2 * width;
    const std::uint64_t byte = ((y >> 1) & 1) + ((x >> 2) & 2);
    return block + column + byte;
}

}  // namespace

void UnswizzlePal8(std::span<const std::byte> source, std::span<std::byte> target, std::uint32_t width,
                   std::uint32_t height)
{
    std::size_t at = 0;
    for (std::uint32_t y = 0; y < height; ++y) {
        for (std::uint32_t x = 0; x < width; ++x) {
            if (at == target.size())
                return;
            const std::uint64_t index = StoredIndex(x, y, width);
            target[at++] = index < source.size() ? source[static_cast<std::size_t>(index)] : std::byte{0};
        }
    }
}

void UnswizzlePal4(std::span<const std::byte> source, std::span<std::byte> target, std::uint32_t width,
                   std::uint32_t height)
{
    const std::uint32_t rowWidth = width == kNarrowWidth ? kWidthOfNarrow : width;
    std::size_t at = 0;
    for (std::uint32_t y = 0; y < height; ++y) {
        for (std::uint32_t x = 0; x < rowWidth; ++x) {
            if (at / 2 == target.size())
                return;
            const std::uint64_t index = StoredIndex(x, y, rowWidth);
            const std::byte two =
                index / 2 < source.size() ? source[static_cast<std::size_t>(index / 2)] : std::byte{0};
            const std::byte nibble = index % 2 == 0 ? two & std::byte{15} : two >> 4;
            std::byte& out = target[at / 2];
            out = at % 2 == 0 ? nibble : out | nibble << 4;
            ++at;
        }
    }
}

}  // namespace RW
