#pragma once

// Small pictures that are drawn the same everywhere, and how far a decoded picture is from its source. For
// the tests of the block codecs.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

namespace PluginTest {

struct Picture {
    std::uint32_t width;
    std::uint32_t height;
    std::vector<std::uint8_t> pixels;
};

/// The next number of a fixed sequence.
inline std::uint32_t NextNumber(std::uint32_t& state)
{
    state = state * 1664525U + 1013904223U;
    return state >> 16;
}

inline Picture Noise(std::uint32_t width, std::uint32_t height)
{
    Picture picture{width, height, std::vector<std::uint8_t>(std::size_t{width} * height * 4)};
    std::uint32_t state = 12345;
    for (std::uint8_t& byte : picture.pixels)
        byte = static_cast<std::uint8_t>(NextNumber(state));
    return picture;
}

/// Smooth in all four channels, each in another direction.
inline Picture Gradient(std::uint32_t width, std::uint32_t height)
{
    Picture picture{width, height, {}};
    for (std::uint32_t y = 0; y < height; ++y)
        for (std::uint32_t x = 0; x < width; ++x) {
            picture.pixels.push_back(static_cast<std::uint8_t>(x * 255 / width));
            picture.pixels.push_back(static_cast<std::uint8_t>(y * 255 / height));
            picture.pixels.push_back(static_cast<std::uint8_t>(255 - (x + y) * 255 / (width + height)));
            picture.pixels.push_back(static_cast<std::uint8_t>((x * 2 + y) * 255 / (width * 2 + height)));
        }
    return picture;
}

/// Like a texture: a wall of bricks with joints, shading and grain; alpha fades from row to row.
inline Picture Bricks(std::uint32_t width, std::uint32_t height)
{
    Picture picture{width, height, {}};
    std::uint32_t state = 99;
    for (std::uint32_t y = 0; y < height; ++y)
        for (std::uint32_t x = 0; x < width; ++x) {
            const bool joint = y % 12 < 2 || (x + y / 12 % 2 * 10) % 20 < 2;
            const int grain = static_cast<int>(NextNumber(state) % 24);
            const int shade = static_cast<int>(x * 40 / width) + grain;
            picture.pixels.push_back(static_cast<std::uint8_t>((joint ? 150 : 130) + shade));
            picture.pixels.push_back(static_cast<std::uint8_t>((joint ? 145 : 60) + shade));
            picture.pixels.push_back(static_cast<std::uint8_t>((joint ? 135 : 40) + shade));
            picture.pixels.push_back(static_cast<std::uint8_t>(joint ? 255 : y * 255 / height));
        }
    return picture;
}

inline Picture Solid(std::uint32_t width, std::uint32_t height, int red, int green, int blue, int alpha)
{
    Picture picture{width, height, {}};
    for (std::size_t i = 0; i < std::size_t{width} * height; ++i)
        for (const int value : {red, green, blue, alpha})
            picture.pixels.push_back(static_cast<std::uint8_t>(value));
    return picture;
}

/// Peak signal-to-noise ratio in decibels over the first `channels` channels; infinite for equal pictures.
inline double Psnr(const std::vector<std::uint8_t>& wanted, const std::vector<std::uint8_t>& got,
                   std::size_t channels)
{
    double sum = 0;
    double count = 0;
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        if (i % 4 >= channels)
            continue;
        const double difference = static_cast<double>(wanted[i]) - static_cast<double>(got[i]);
        sum += difference * difference;
        ++count;
    }
    return sum > 0 ? 10 * std::log10(255.0 * 255.0 * count / sum) : std::numeric_limits<double>::infinity();
}

/// A copy in an allocation of exactly this size, so that the sanitizer sees an access one byte too far.
inline std::unique_ptr<std::uint8_t[]> ExactCopy(const std::vector<std::uint8_t>& bytes)
{
    auto copy = std::make_unique<std::uint8_t[]>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), copy.get());
    return copy;
}

}  // namespace PluginTest
