#include "plugins/etc1/RowDecode.h"

#include <cstring>

#include "plugins/etc1/BlockFormat.h"

namespace Etc1 {
namespace {
using Plugin::kBlockSide;
using Plugin::kPixelBytes;

struct BaseColors {
    std::array<int, 3> first;
    std::array<int, 3> second;
};

std::uint32_t LoadBigEndian(const std::uint8_t* from)
{
    return std::uint32_t{from[0]} << 24 | std::uint32_t{from[1]} << 16 | std::uint32_t{from[2]} << 8 |
           from[3];
}

// A compiler turns this into one store on a little-endian machine.
void StorePixel(std::uint8_t* to, std::uint32_t pixel)
{
    const std::uint8_t bytes[kPixelBytes] = {
        static_cast<std::uint8_t>(pixel), static_cast<std::uint8_t>(pixel >> 8),
        static_cast<std::uint8_t>(pixel >> 16), static_cast<std::uint8_t>(pixel >> 24)};
    std::memcpy(to, bytes, kPixelBytes);
}

BaseColors LoadBases(const std::uint8_t* block)
{
    BaseColors bases{};
    const bool differential = (block[3] & kDiffBit) != 0;
    for (std::size_t channel = 0; channel < 3; ++channel) {
        const int byte = block[channel];
        if (!differential) {
            bases.first[channel] = Expand4(byte >> 4);
            bases.second[channel] = Expand4(byte & 15);
            continue;
        }
        const int level = byte >> 3;
        // Three bits of two's complement.
        const int difference = (byte & 7) - ((byte & 4) << 1);
        bases.first[channel] = Expand5(level);
        // Deliberate: the format leaves a sum outside five bits undefined; here it wraps around.
        // Etc1Decode.WrapsADifferenceThatLeavesFiveBits pins it.
        bases.second[channel] = Expand5((level + difference) & 31);
    }
    return bases;
}

std::uint32_t Shade(const std::array<int, 3>& base, int modifier)
{
    const auto red = static_cast<std::uint32_t>(Clamp255(base[0] + modifier));
    const auto green = static_cast<std::uint32_t>(Clamp255(base[1] + modifier));
    const auto blue = static_cast<std::uint32_t>(Clamp255(base[2] + modifier));
    return red | green << 8 | blue << 16 | 0xFF000000U;
}

void LoadPalette(const std::array<int, 3>& base, std::size_t table, std::uint32_t* palette)
{
    for (int code = 0; code < 4; ++code)
        palette[code] = Shade(base, ModifierOf(table, code));
}

}  // namespace

void DecodeRow_Portable(const std::uint8_t* blocks, std::size_t count, std::uint8_t* out, std::size_t stride)
{
    for (; count != 0; --count, blocks += kBlockBytes, out += kBlockSide * kPixelBytes) {
        const BaseColors bases = LoadBases(blocks);
        // Four colours of the first half, then four of the second.
        std::uint32_t palette[8];
        LoadPalette(bases.first, blocks[3] >> 5, palette);
        LoadPalette(bases.second, blocks[3] >> 2 & 7, palette + 4);
        const bool flip = (blocks[3] & kFlipBit) != 0;
        // The bits go down the columns: after a shift by y, pixel x has bits 4x and 16 + 4x.
        std::uint32_t bits = LoadBigEndian(blocks + 4);
        std::uint8_t* row = out;
        for (std::size_t y = 0; y < kBlockSide; ++y, row += stride, bits >>= 1) {
            const std::uint32_t* left = palette + (flip && y >= 2 ? 4 : 0);
            const std::uint32_t* right = palette + (flip ? (y >= 2 ? 4 : 0) : 4);
            StorePixel(row, left[(bits >> 15 & 2) | (bits & 1)]);
            StorePixel(row + 4, left[(bits >> 19 & 2) | (bits >> 4 & 1)]);
            StorePixel(row + 8, right[(bits >> 23 & 2) | (bits >> 8 & 1)]);
            StorePixel(row + 12, right[(bits >> 27 & 2) | (bits >> 12 & 1)]);
        }
    }
}

}  // namespace Etc1
