#pragma once

// Small pictures drawn from integers, so that they are the same everywhere, and what tests of the PVRTC
// encoder measure on them.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <vector>

#include "plugins/pvrtc/PvrtcDecode.h"
#include "plugins/pvrtc/PvrtcEncode.h"

namespace PvrtcPictures {
using Plugin::Quality;
using Pvrtc::EncodeOptions;
using Pvrtc::PvrtcDecode;
using Pvrtc::PvrtcEncode;
using Pvrtc::PvrtcLevelBytes;

inline constexpr Quality kEveryQuality[] = {Quality::Fast, Quality::Normal, Quality::High, Quality::Best};

struct Picture {
    std::uint32_t width;
    std::uint32_t height;
    std::vector<std::uint8_t> pixels;
};

template <typename PixelAt>
inline Picture Draw(std::uint32_t width, std::uint32_t height, PixelAt pixelAt)
{
    Picture picture{width, height, {}};
    for (std::uint32_t y = 0; y < height; ++y)
        for (std::uint32_t x = 0; x < width; ++x)
            for (const int value : pixelAt(static_cast<int>(x), static_cast<int>(y)))
                picture.pixels.push_back(static_cast<std::uint8_t>(value));
    return picture;
}

using Rgba = std::array<int, 4>;

// A triangle wave from 0 to 255, continuous where the picture wraps.
inline int Wave(int position, int period)
{
    const int phase = position % period;
    return (phase < period / 2 ? phase : period - phase) * 255 / (period / 2);
}

inline Picture Ramps(std::uint32_t side)
{
    const int period = static_cast<int>(side);
    return Draw(side, side, [period](int x, int y) {
        return Rgba{Wave(x, period), Wave(y, period), Wave(x + y, period), 255};
    });
}

// Bricks with mortar and a little noise: edges, flat parts and texture, all from integers.
inline Picture Bricks(std::uint32_t side)
{
    return Draw(side, side, [](int x, int y) {
        const int row = y / 8;
        const int along = (x + (row % 2) * 8) % 16;
        const bool mortar = y % 8 == 0 || along == 0;
        const int noise = (x * 37 + y * 91 + x * y * 13) % 23 - 11;
        if (mortar)
            return Rgba{150 + noise, 145 + noise, 140 + noise, 255};
        return Rgba{170 + noise, 75 + noise + row % 3 * 6, 55 + noise, 255};
    });
}

// A disc with soft shading; outside it everything is transparent.
inline Picture Disc(std::uint32_t side, Rgba outside)
{
    const int middle = static_cast<int>(side) / 2;
    return Draw(side, side, [middle, outside](int x, int y) {
        const int distance = (x - middle) * (x - middle) + (y - middle) * (y - middle);
        if (distance > middle * middle * 3 / 4)
            return outside;
        return Rgba{60 + x * 2, 200 - y, 90, 255};
    });
}

inline std::vector<std::uint8_t> Encoded(const Picture& picture, const EncodeOptions& options)
{
    std::vector<std::uint8_t> level(PvrtcLevelBytes(picture.width, picture.height, options.bitsPerPixel));
    EXPECT_EQ(PvrtcEncode(picture.pixels.data(), level.data(), picture.width, picture.height, options),
              level.size());
    return level;
}

inline Picture RoundTrip(const Picture& picture, const EncodeOptions& options)
{
    const std::vector<std::uint8_t> level = Encoded(picture, options);
    Picture decoded{picture.width, picture.height, std::vector<std::uint8_t>(picture.pixels.size())};
    EXPECT_EQ(
        PvrtcDecode(level.data(), decoded.pixels.data(), picture.width, picture.height, options.bitsPerPixel),
        decoded.pixels.size());
    return decoded;
}

// Mean squared error over R, G and B of the pixels that can be seen.
inline double ColorError(const Picture& wanted, const Picture& got)
{
    double sum = 0;
    double count = 0;
    for (std::size_t i = 0; i < wanted.pixels.size(); ++i) {
        if ((i & 3) == 3 || wanted.pixels[i | 3] == 0)
            continue;
        const double off = wanted.pixels[i] - got.pixels[i];
        sum += off * off;
        ++count;
    }
    return sum / count;
}

inline double ColorPsnr(const Picture& wanted, const Picture& got)
{
    return 10 * std::log10(255.0 * 255.0 / ColorError(wanted, got));
}

inline int LargestError(const Picture& wanted, const Picture& got)
{
    int largest = 0;
    for (std::size_t i = 0; i < wanted.pixels.size(); ++i)
        largest = std::max(largest, std::abs(wanted.pixels[i] - got.pixels[i]));
    return largest;
}

inline Picture Solid(std::uint32_t side, Rgba color)
{
    return Draw(side, side, [color](int, int) { return color; });
}

inline EncodeOptions Options(std::uint32_t bitsPerPixel, bool alpha = false,
                             Quality quality = Quality::Normal)
{
    EncodeOptions options;
    options.bitsPerPixel = bitsPerPixel;
    options.alpha = alpha;
    options.quality = quality;
    return options;
}
// A picture that uses every path: cut out, with soft alpha and noise.
inline Picture Mixed(std::uint32_t width, std::uint32_t height)
{
    std::uint32_t state = 12345;
    return Draw(width, height, [&state](int x, int y) {
        state = state * 1664525u + 1013904223u;
        const int noise = static_cast<int>(state >> 24) / 4;
        const int alpha = (x / 8 + y / 8) % 3 == 0 ? 0 : (x * 5 + y * 3) % 8 == 0 ? 120 : 255;
        return Rgba{(x * 7 + noise) % 256, (y * 5 + noise) % 256, (x + y) * 3 % 256, alpha};
    });
}

}  // namespace PvrtcPictures
