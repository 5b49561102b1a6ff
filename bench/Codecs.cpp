#include "bench/Codecs.h"

#include "plugins/dxt/Dxt.h"
#include "plugins/etc1/Etc1.h"
#include "plugins/pvrtc/PvrtcDecode.h"
#include "plugins/pvrtc/PvrtcEncode.h"

namespace Bench {
namespace {
std::uint64_t Blocks(Size size)
{
    return std::uint64_t{(size.width + 3) / 4} * ((size.height + 3) / 4);
}

Codec DxtCodec(const char* name, Dxt::Variant variant)
{
    return {.name = name,
            .hasAlpha = variant != Dxt::Variant::Dxt1,
            .levelBytes = [=](Size size) { return Blocks(size) * Dxt::BlockBytes(variant); },
            .encode =
                [=](const std::uint8_t* pixels, std::uint8_t* level, Size size, Plugin::Quality quality,
                    unsigned threads) {
                    return Dxt::Compress(pixels, level, size.width, size.height,
                                         {.variant = variant, .quality = quality, .threads = threads});
                },
            .decode =
                [=](const std::uint8_t* level, std::uint8_t* pixels, Size size) {
                    return Dxt::Decompress(level, pixels, size.width, size.height, variant);
                }};
}

Codec Etc1Codec()
{
    return {.name = "ETC1",
            .levelBytes = [](Size size) { return Blocks(size) * 8; },
            .encode =
                [](const std::uint8_t* pixels, std::uint8_t* level, Size size, Plugin::Quality quality,
                   unsigned threads) {
                    return Etc1::Compress(pixels, level, size.width, size.height,
                                          {.quality = quality, .threads = threads});
                },
            .decode = [](const std::uint8_t* level, std::uint8_t* pixels,
                         Size size) { return Etc1::Decompress(level, pixels, size.width, size.height); }};
}

Codec PvrtcCodec(const char* name, std::uint32_t bits, bool hasAlpha)
{
    return {.name = name,
            .hasAlpha = hasAlpha,
            .onlyPowersOfTwo = true,
            .levelBytes = [=](Size size) { return Pvrtc::PvrtcLevelBytes(size.width, size.height, bits); },
            .encode =
                [=](const std::uint8_t* pixels, std::uint8_t* level, Size size, Plugin::Quality quality,
                    unsigned threads) {
                    return Pvrtc::PvrtcEncode(
                        pixels, level, size.width, size.height,
                        {.bitsPerPixel = bits, .alpha = hasAlpha, .quality = quality, .threads = threads});
                },
            .decode =
                [=](const std::uint8_t* level, std::uint8_t* pixels, Size size) {
                    return Pvrtc::PvrtcDecode(level, pixels, size.width, size.height, bits);
                }};
}
}  // namespace

std::vector<Codec> BlockCodecs()
{
    return {DxtCodec("DXT1", Dxt::Variant::Dxt1),
            DxtCodec("DXT1-A", Dxt::Variant::Dxt1Alpha),
            DxtCodec("DXT3", Dxt::Variant::Dxt3),
            DxtCodec("DXT5", Dxt::Variant::Dxt5),
            Etc1Codec(),
            PvrtcCodec("PVRTC2", 2, false),
            PvrtcCodec("PVRTC4", 4, true),
            PvrtcCodec("PVRTC4-RGB", 4, false)};
}

std::string QualityText(Plugin::Quality quality)
{
    switch (quality) {
        case Plugin::Quality::Normal:
            return "normal";
        case Plugin::Quality::Fast:
            return "fast";
        case Plugin::Quality::High:
            return "high";
        case Plugin::Quality::Best:
            return "best";
    }
    return "";
}

}  // namespace Bench
