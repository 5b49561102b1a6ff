#include "bench/OpenEncoders.h"

#include <cstddef>
#include <cstring>

#ifdef MAVREL_HAS_STB_DXT
#define STB_DXT_IMPLEMENTATION
#include <stb/stb_dxt.h>
#endif
#ifdef MAVREL_HAS_SQUISH
#include <squish.h>
#endif

namespace Bench {
namespace {
#ifdef MAVREL_HAS_STB_DXT
void EncodeByStb(const std::uint8_t* pixels, std::uint8_t* out, Size size, bool hasAlpha, int mode)
{
    constexpr std::size_t kRowBytes = 16;
    const std::size_t stride = std::size_t{size.width} * 4;
    for (std::size_t y = 0; y < size.height; y += 4)
        for (std::size_t x = 0; x < size.width; x += 4) {
            std::uint8_t block[4 * kRowBytes];
            for (std::size_t row = 0; row < 4; ++row)
                std::memcpy(block + row * kRowBytes, pixels + (y + row) * stride + x * 4, kRowBytes);
            stb_compress_dxt_block(out, block, hasAlpha ? 1 : 0, mode);
            out += hasAlpha ? 16 : 8;
        }
}

OpenEncoder Stb(const char* name, int mode, bool isUnit)
{
    return {.name = name,
            .dxt1 = [=](const std::uint8_t* from, std::uint8_t* to,
                        Size size) { EncodeByStb(from, to, size, false, mode); },
            .dxt5 = [=](const std::uint8_t* from, std::uint8_t* to,
                        Size size) { EncodeByStb(from, to, size, true, mode); },
            .isUnit = isUnit};
}
#endif

#ifdef MAVREL_HAS_SQUISH
void EncodeBySquish(const std::uint8_t* pixels, std::uint8_t* out, Size size, int flags)
{
    squish::CompressImage(pixels, static_cast<int>(size.width), static_cast<int>(size.height), out, flags);
}

OpenEncoder Squish(const char* name, int fit)
{
    return {.name = name,
            .dxt1 = [=](const std::uint8_t* from, std::uint8_t* to,
                        Size size) { EncodeBySquish(from, to, size, squish::kDxt1 | fit); },
            .dxt5 = [=](const std::uint8_t* from, std::uint8_t* to,
                        Size size) { EncodeBySquish(from, to, size, squish::kDxt5 | fit); },
            .runs = 1};
}
#endif
}  // namespace

std::vector<OpenEncoder> OpenEncoders()
{
    std::vector<OpenEncoder> encoders;
#ifdef MAVREL_HAS_STB_DXT
    encoders.push_back(Stb("stb", STB_DXT_NORMAL, true));
    encoders.push_back(Stb("stb-high", STB_DXT_HIGHQUAL, false));
#endif
#ifdef MAVREL_HAS_SQUISH
    encoders.push_back(Squish("squish-range", squish::kColourRangeFit));
    encoders.push_back(Squish("squish-cluster", squish::kColourClusterFit));
#endif
    return encoders;
}

}  // namespace Bench
