#include "plugins/unc/Unc.h"

#include <cstddef>
#include <cstring>

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
}  // namespace

std::uint32_t Compress(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                       bool alpha)
{
    const std::uint32_t total = PackedBytes(width, height);
    const auto* pixel = static_cast<const std::uint8_t*>(source);
    auto* out = static_cast<std::uint8_t*>(destination);
    for (std::uint32_t done = 0; done < total; done += kPackedBytes) {
        const std::uint32_t packed = alpha ? Pack4444(pixel) : Pack565(pixel);
        out[done] = static_cast<std::uint8_t>(packed);
        out[done + 1] = static_cast<std::uint8_t>(packed >> 8);
        pixel += kPixelBytes;
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
