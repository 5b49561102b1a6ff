#include "plugins/dxt/RowDecode.h"

#include <cstring>

#include "plugins/dxt/BlockFormat.h"

namespace Dxt {
namespace {
using Plugin::kBlockSide;
using Plugin::kPixelBytes;

// A pixel in the order of its bytes in memory, lowest byte first, so that the arithmetic reads the same
// everywhere.
constexpr std::uint32_t kOpaque = 0xFF000000U;

std::uint32_t LoadU16(const std::uint8_t* from)
{
    return static_cast<std::uint32_t>(from[0] | from[1] << 8);
}

std::uint32_t LoadU32(const std::uint8_t* from)
{
    return LoadU16(from) | LoadU16(from + 2) << 16;
}

// A compiler turns this into one store on a little-endian machine.
void StorePixel(std::uint8_t* to, std::uint32_t pixel)
{
    const std::uint8_t bytes[kPixelBytes] = {
        static_cast<std::uint8_t>(pixel), static_cast<std::uint8_t>(pixel >> 8),
        static_cast<std::uint8_t>(pixel >> 16), static_cast<std::uint8_t>(pixel >> 24)};
    std::memcpy(to, bytes, kPixelBytes);
}

// Three channels side by side in one number, 20 bits for each, so that one operation mixes all of them.
constexpr int kGreenLane = 20;
constexpr int kBlueLane = 40;

std::uint64_t SpreadColor(std::uint32_t packed)
{
    const std::uint32_t red = packed >> 11;
    const std::uint32_t green = packed >> 5 & 63;
    const std::uint32_t blue = packed & 31;
    return (red << 3 | red >> 2) | std::uint64_t{green << 2 | green >> 4} << kGreenLane |
           std::uint64_t{blue << 3 | blue >> 2} << kBlueLane;
}

// The low 8 bits of each lane.
std::uint32_t GatherLanes(std::uint64_t lanes)
{
    return static_cast<std::uint32_t>((lanes & 0xFF) | (lanes >> (kGreenLane - 8) & 0xFF00) |
                                      (lanes >> (kBlueLane - 16) & 0xFF0000));
}

// A third of the way, rounded down: times 683 and shifted by 11 is a division by 3 for every sum up to 765,
// and the product keeps within its lane.
std::uint32_t ThirdOfWay(std::uint64_t closer, std::uint64_t farther)
{
    return GatherLanes((2 * closer + farther) * 683 >> 11);
}

// The four pixels of a colour block; `fourth` is the pixel of index 3 in three-colour mode.
void LoadPalette(const std::uint8_t* block, bool alwaysFour, std::uint32_t alpha, std::uint32_t fourth,
                 std::uint32_t (&palette)[4])
{
    const std::uint32_t color0 = LoadU16(block);
    const std::uint32_t color1 = LoadU16(block + 2);
    const std::uint64_t first = SpreadColor(color0);
    const std::uint64_t second = SpreadColor(color1);
    palette[0] = GatherLanes(first) | alpha;
    palette[1] = GatherLanes(second) | alpha;
    if (alwaysFour || color0 > color1) {
        palette[2] = ThirdOfWay(first, second) | alpha;
        palette[3] = ThirdOfWay(second, first) | alpha;
    } else {
        palette[2] = GatherLanes((first + second) >> 1) | alpha;
        palette[3] = fourth;
    }
}

template <std::uint32_t Fourth>
void DecodeDxt1Row(const std::uint8_t* blocks, std::size_t count, std::uint8_t* out, std::size_t stride)
{
    for (; count != 0; --count, blocks += kColorBytes, out += kBlockSide * kPixelBytes) {
        std::uint32_t palette[4];
        LoadPalette(blocks, false, kOpaque, Fourth, palette);
        std::uint32_t indices = LoadU32(blocks + 4);
        std::uint8_t* row = out;
        for (std::size_t y = 0; y < kBlockSide; ++y, row += stride, indices >>= 8) {
            StorePixel(row, palette[indices & 3]);
            StorePixel(row + 4, palette[indices >> 2 & 3]);
            StorePixel(row + 8, palette[indices >> 4 & 3]);
            StorePixel(row + 12, palette[indices >> 6 & 3]);
        }
    }
}

void DecodeDxt3Row(const std::uint8_t* blocks, std::size_t count, std::uint8_t* out, std::size_t stride)
{
    for (; count != 0; --count, blocks += kAlphaBytes + kColorBytes, out += kBlockSide * kPixelBytes) {
        std::uint32_t palette[4];
        LoadPalette(blocks + kAlphaBytes, true, 0, 0, palette);
        std::uint32_t indices = LoadU32(blocks + kAlphaBytes + 4);
        for (std::size_t y = 0; y < kBlockSide; ++y) {
            std::uint32_t alphas = LoadU16(blocks + y * 2);
            for (std::size_t x = 0; x < kBlockSide; ++x, indices >>= 2, alphas >>= 4) {
                // Times 17 repeats the four bits.
                const std::uint32_t alpha = (alphas & 15) * 17;
                StorePixel(out + y * stride + x * kPixelBytes, palette[indices & 3] | alpha << 24);
            }
        }
    }
}

void DecodeDxt5Row(const std::uint8_t* blocks, std::size_t count, std::uint8_t* out, std::size_t stride)
{
    for (; count != 0; --count, blocks += kAlphaBytes + kColorBytes, out += kBlockSide * kPixelBytes) {
        std::uint32_t palette[4];
        LoadPalette(blocks + kAlphaBytes, true, 0, 0, palette);
        std::uint32_t indices = LoadU32(blocks + kAlphaBytes + 4);
        std::uint32_t alphas[8];
        const auto values = MakeAlphas(blocks[0], blocks[1]);
        for (std::size_t i = 0; i < values.size(); ++i)
            alphas[i] = static_cast<std::uint32_t>(values[i]) << 24;
        std::uint64_t codes = LoadU16(blocks + 2) | std::uint64_t{LoadU32(blocks + 4)} << 16;
        std::uint8_t* row = out;
        for (std::size_t y = 0; y < kBlockSide; ++y, row += stride, indices >>= 8, codes >>= 12) {
            StorePixel(row, palette[indices & 3] | alphas[codes & 7]);
            StorePixel(row + 4, palette[indices >> 2 & 3] | alphas[codes >> 3 & 7]);
            StorePixel(row + 8, palette[indices >> 4 & 3] | alphas[codes >> 6 & 7]);
            StorePixel(row + 12, palette[indices >> 6 & 3] | alphas[codes >> 9 & 7]);
        }
    }
}
}  // namespace

const DecodeKernels kDecodeKernels_Portable{DecodeDxt1Row<kOpaque>, DecodeDxt1Row<0>, DecodeDxt3Row,
                                            DecodeDxt5Row};

}  // namespace Dxt
