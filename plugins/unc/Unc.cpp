#include "plugins/unc/Unc.h"

#include <cstddef>
#include <cstring>
#include <vector>

#include "plugins/common/PixelDither.h"

namespace Unc {
namespace {
constexpr std::size_t kPixelBytes = 4;
constexpr std::size_t kPackedBytes = 2;

std::uint32_t PackedBytes(std::uint32_t width, std::uint32_t height)
{
    const std::uint64_t pixels = std::uint64_t{width} * height;
    return pixels > UINT32_MAX / kPackedBytes ? 0 : static_cast<std::uint32_t>(pixels * kPackedBytes);
}

std::uint32_t Pack565(const std::uint8_t* pixel)
{
    return (pixel[0] & 0xF8U) << 8 | (pixel[1] & 0xFCU) << 3 | pixel[2] >> 3;
}

std::uint32_t Pack4444(const std::uint8_t* pixel)
{
    return (pixel[0] & 0xF0U) << 8 | (pixel[1] & 0xF0U) << 4 | (pixel[2] & 0xF0U) | pixel[3] >> 4;
}

void PackPixels(const std::uint8_t* pixel, std::uint8_t* out, std::size_t count, bool alpha)
{
    for (; count != 0; --count, pixel += kPixelBytes, out += kPackedBytes) {
        const std::uint32_t packed = alpha ? Pack4444(pixel) : Pack565(pixel);
        out[0] = static_cast<std::uint8_t>(packed);
        out[1] = static_cast<std::uint8_t>(packed >> 8);
    }
}
}  // namespace

std::uint32_t Compress(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                       bool alpha, Plugin::Dithering dithering)
{
    const std::uint32_t total = PackedBytes(width, height);
    const auto* const pixels = static_cast<const std::uint8_t*>(source);
    auto* const out = static_cast<std::uint8_t*>(destination);
    if (total == 0 || dithering == Plugin::Dithering::None) {
        PackPixels(pixels, out, total / kPackedBytes, alpha);
        return total;
    }
    constexpr Plugin::ChannelBits k4444{4, 4, 4, 4};
    constexpr Plugin::ChannelBits k565{5, 6, 5, 8};
    Plugin::CPixelDither rows(dithering, width, alpha ? k4444 : k565, alpha);
    std::vector<std::uint8_t> row(std::size_t{width} * kPixelBytes);
    for (std::size_t y = 0; y < height; ++y) {
        rows.NextRow(pixels + y * row.size(), row.data());
        PackPixels(row.data(), out + y * width * kPackedBytes, width, alpha);
    }
    return total;
}

std::uint32_t Decompress(const void* source, void* destination, std::uint32_t width, std::uint32_t height)
{
    const std::uint32_t total = PackedBytes(width, height);
    if (total != 0)
        std::memcpy(destination, source, total);
    return total;
}

}  // namespace Unc
