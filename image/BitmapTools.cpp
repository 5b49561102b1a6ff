#include "image/BitmapTools.h"

#include <cstdlib>

std::int32_t ImageDifference(const CBitmap& a, const CBitmap& b)
{
    if (a.Width() != b.Width() || a.Height() != b.Height())
        return -1;
    if (&a == &b)
        return 0;
    const auto left = a.Pixels();
    const auto right = b.Pixels();
    std::uint32_t sum = 0;
    for (std::size_t i = 0; i < left.size(); ++i)
        sum += static_cast<std::uint32_t>(std::abs(left[i] - right[i]));
    return static_cast<std::int32_t>(sum);
}

std::optional<CBitmap> MakeThumbnail(const CBitmap& source, std::uint32_t width, std::uint32_t height)
{
    return ScaleBitmap(source, width, height);
}
