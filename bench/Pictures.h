#pragma once

// The pictures that encoders are measured on, and how far a decoded picture is from its original.

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "bench/Codecs.h"

namespace Bench {

/// R G B A pixels, rows top to bottom.
struct PixelPicture {
    std::string name;
    Size size;
    std::vector<std::uint8_t> pixels;
    bool hasAlpha = false;  ///< some pixel is not opaque
};

/// Every PNG file of a folder, in the order of their names. Throws std::runtime_error when there is none, or
/// one cannot be read.
std::vector<PixelPicture> LoadPictures(const std::filesystem::path& folder);
/// A selection of the demo's pictures, of every kind and of 128 pixels a side and more.
std::vector<PixelPicture> DemoPictures();

enum class Channels {
    Rgb,      ///< alpha is not looked at
    Rgba,     ///< alpha counts like a colour
    Visible,  ///< the same without the colours of pixels whose alpha is 0 in the original
};
/// Peak signal-to-noise ratio of two pictures of one size, in decibels; 99 when they are equal.
double Psnr(const std::vector<std::uint8_t>& original, const std::vector<std::uint8_t>& decoded,
            Channels channels);

}  // namespace Bench
