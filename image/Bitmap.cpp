#include "image/Bitmap.h"

#include <new>

namespace {
constexpr std::uint32_t kLargestSide = 65535;
// What the platform's picture objects can hold, too.
constexpr std::uint64_t kMostBytes = 0x7FFFFFFF;
}  // namespace

std::optional<CBitmap> CBitmap::Create(std::uint32_t width, std::uint32_t height)
{
    if (width == 0 || height == 0 || width > kLargestSide || height > kLargestSide)
        return std::nullopt;
    const std::uint64_t bytes = std::uint64_t{width} * height * 4;
    if (bytes > kMostBytes)
        return std::nullopt;
    CBitmap bitmap;
    try {
        bitmap.m_aPixels.resize(static_cast<std::size_t>(bytes));
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
    bitmap.m_nWidth = width;
    bitmap.m_nHeight = height;
    return bitmap;
}
