#include "tests/image/Pictures.h"

#include <algorithm>
#include <cstdlib>

CBitmap MakePicture(std::uint32_t width, std::span<const std::uint32_t> pixels)
{
    CBitmap bitmap = CBitmap::Create(width, static_cast<std::uint32_t>(pixels.size() / width)).value();
    for (std::size_t i = 0; i < pixels.size(); ++i)
        for (std::size_t channel = 0; channel < 4; ++channel)
            bitmap.Pixels()[i * 4 + channel] = static_cast<std::uint8_t>(pixels[i] >> (8 * channel) & 0xFF);
    return bitmap;
}

std::vector<std::uint32_t> PixelsOf(const CBitmap& bitmap)
{
    std::vector<std::uint32_t> pixels(bitmap.Pixels().size() / 4);
    for (std::size_t i = 0; i < bitmap.Pixels().size(); ++i)
        pixels[i / 4] |= std::uint32_t{bitmap.Pixels()[i]} << (8 * (i % 4));
    return pixels;
}

CBitmap MakeColourfulPicture(std::uint32_t width, std::uint32_t height)
{
    CBitmap bitmap = CBitmap::Create(width, height).value();
    std::uint32_t state = 12345;
    for (std::uint8_t& byte : bitmap.Pixels()) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<std::uint8_t>(state >> 24);
    }
    return bitmap;
}

CBitmap MakeOpaquePicture(std::uint32_t width, std::uint32_t height)
{
    CBitmap bitmap = MakeColourfulPicture(width, height);
    for (std::size_t i = 3; i < bitmap.Pixels().size(); i += 4)
        bitmap.Pixels()[i] = 255;
    return bitmap;
}

int LargestDifference(const CBitmap& a, const CBitmap& b)
{
    if (a.Width() != b.Width() || a.Height() != b.Height())
        return 256;
    int largest = 0;
    for (std::size_t i = 0; i < a.Pixels().size(); ++i)
        largest = std::max(largest, std::abs(a.Pixels()[i] - b.Pixels()[i]));
    return largest;
}

std::vector<std::byte> FromHex(std::string_view digits)
{
    std::vector<std::byte> bytes;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
        const auto value = [](char digit) { return digit <= '9' ? digit - '0' : digit - 'a' + 10; };
        bytes.push_back(static_cast<std::byte>(value(digits[i]) * 16 + value(digits[i + 1])));
    }
    return bytes;
}
