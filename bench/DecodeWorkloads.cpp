#include "bench/DecodeWorkloads.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <span>
#include <string_view>
#include <vector>

#include "bench/Codecs.h"
#include "bench/Pictures.h"
#include "bench/Stopwatch.h"
#include "demo/Radar.h"
#include "image/RasterToBitmap.h"

namespace Bench {
namespace {
// 512 x 512 pixels of four bytes: 1 MiB of output.
constexpr Size kDecodedSize{512, 512};
constexpr std::size_t kDecodedBytes = std::size_t{1} << 20;
// What even the coarsest format keeps of the island map.
constexpr double kWorstPsnr = 20;

bool IsWanted(const std::string& workload, const std::string& only)
{
    return std::string_view(workload).substr(0, only.size()) == only;
}

PixelPicture MapPicture()
{
    const CBitmap bitmap = Demo::DrawIslandMap().ToBitmap();
    PixelPicture picture{"map", kDecodedSize, {bitmap.Pixels().begin(), bitmap.Pixels().end()}, false};
    for (std::size_t i = 0; i < picture.pixels.size(); i += 4)
        std::swap(picture.pixels[i], picture.pixels[i + 2]);
    return picture;
}

double MeasureCopy()
{
    const std::vector<std::uint8_t> from(kDecodedBytes, 7);
    std::vector<std::uint8_t> to(kDecodedBytes);
    return ShortestCall([&] {
        std::memcpy(to.data(), from.data(), to.size());
        KeepAlive(to.data());
    });
}

Line DecodeLine(const std::string& workload, double decoding, double copying, bool isCorrect)
{
    char measured[64];
    std::snprintf(measured, sizeof measured, "%s, %.0f Mpixel/s", TimeText(decoding).c_str(),
                  static_cast<double>(kDecodedBytes) / 4 / decoding / 1e6);
    return {.workload = workload,
            .measured = measured,
            .baseline = TimeText(copying) + " memcpy of 1 MiB",
            .ratio = decoding / copying,
            .limit = {},
            .isCorrect = isCorrect};
}

void MeasureBlockDecoding(const Codec& codec, const PixelPicture& map, double copying, CReport& report)
{
    std::vector<std::uint8_t> level(codec.levelBytes(map.size));
    codec.encode(map.pixels.data(), level.data(), map.size, Plugin::Quality::Fast, 1);
    std::vector<std::uint8_t> pixels(kDecodedBytes);
    std::uint32_t written = 0;
    const double decoding = ShortestCall([&] {
        written = codec.decode(level.data(), pixels.data(), map.size);
        KeepAlive(pixels.data());
    });
    const double psnr = Psnr(map.pixels, pixels, Channels::Rgb);
    report.Add(
        DecodeLine("decode-" + codec.name, decoding, copying, written == kDecodedBytes && psnr > kWorstPsnr));
}

struct PlainLayout {
    const char* name;
    std::uint32_t depth;
    std::uint32_t layout;
    std::uint32_t paletteEntries;
};

constexpr std::array kPlainLayouts = {
    PlainLayout{"RGBA8888", 32, 0x8888, 0}, PlainLayout{"RGB888", 24, 0x888, 0},
    PlainLayout{"RGBA4444", 16, 0x4444, 0}, PlainLayout{"RGBA5551", 16, 0x5551, 0},
    PlainLayout{"RGB565", 16, 0x565, 0},    PlainLayout{"LUM16", 16, 0x88, 0},
    PlainLayout{"LUM8", 8, 0x8, 0},         PlainLayout{"PAL8", 8, 0x8888, 256},
    PlainLayout{"PAL4", 4, 0x8888, 16},
};

// Every byte takes every value, so that no table stays in a corner of the cache.
std::vector<std::byte> AllBytes(std::size_t count)
{
    std::vector<std::byte> bytes(count);
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<std::byte>((i * 167 + (i >> 8) * 13) & 0xFFU);
    return bytes;
}

bool IsVaried(std::span<const std::uint8_t> pixels)
{
    const auto differs = [&](std::uint8_t byte) { return byte != pixels.front(); };
    return std::ranges::any_of(pixels, differs);
}

void MeasurePlainDecoding(const PlainLayout& layout, double copying, CReport& report)
{
    const auto pixels = AllBytes(kDecodedBytes / 4 * layout.depth / 8);
    const auto palette = AllBytes(std::size_t{layout.paletteEntries} * 4);
    const RasterLayout raster{.width = kDecodedSize.width,
                              .height = kDecodedSize.height,
                              .depth = layout.depth,
                              .layout = layout.layout};
    std::size_t written = 0;
    bool hasContents = false;
    const double decoding = ShortestCall([&] {
        const auto bitmap = RasterToBitmap(pixels, raster, palette);
        written = bitmap ? bitmap->Pixels().size() : 0;
        hasContents = bitmap && IsVaried(bitmap->Pixels());
        KeepAlive(bitmap ? bitmap->Pixels().data() : nullptr);
    });
    report.Add(DecodeLine(std::string("decode-") + layout.name, decoding, copying,
                          written == kDecodedBytes && hasContents));
}
}  // namespace

void MeasureDecoding(const std::string& only, CReport& report)
{
    const PixelPicture map = MapPicture();
    const double copying = MeasureCopy();
    for (const Codec& codec : BlockCodecs())
        if (IsWanted("decode-" + codec.name, only))
            MeasureBlockDecoding(codec, map, copying, report);
    for (const PlainLayout& layout : kPlainLayouts)
        if (IsWanted(std::string("decode-") + layout.name, only))
            MeasurePlainDecoding(layout, copying, report);
}

}  // namespace Bench
