#include "plugins/common/LevelEncode.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "plugins/common/BlockDither.h"
#include "plugins/common/RowTeam.h"

namespace Plugin {
namespace {
constexpr std::size_t kBlockRowBytes = kBlockSide * kPixelBytes;
// Blocks that stick out are filled so many at a time.
constexpr std::size_t kFilledBlocks = 16;

// The rows of pixels, at most four, under one row of blocks.
struct Strip {
    const std::uint8_t* pixels;
    std::size_t width;
    std::size_t rows;

    std::size_t Stride() const { return width * kPixelBytes; }
    std::size_t Blocks() const { return (width + kBlockSide - 1) / kBlockSide; }
};

// Encodes `count` blocks from block `first` on, of which some may stick out to the right or below.
void EncodeFilled(const Strip& strip, std::size_t first, std::size_t count, EncodeRowFn encodeRow,
                  std::uint8_t* out)
{
    std::array<std::uint8_t, kBlockSide * kFilledBlocks * kBlockRowBytes> filled{};
    const std::size_t filledStride = count * kBlockRowBytes;
    const std::size_t left = first * kBlockSide;
    const std::size_t inside = std::min(count * kBlockSide, strip.width - left);
    for (std::size_t y = 0; y < kBlockSide; ++y) {
        const std::size_t fromRow = std::min(y, strip.rows - 1);
        const std::uint8_t* const from = strip.pixels + fromRow * strip.Stride() + left * kPixelBytes;
        std::uint8_t* const to = filled.data() + y * filledStride;
        std::memcpy(to, from, inside * kPixelBytes);
        for (std::size_t x = inside; x < count * kBlockSide; ++x)
            std::memcpy(to + x * kPixelBytes, from + (inside - 1) * kPixelBytes, kPixelBytes);
    }
    encodeRow(filled.data(), filledStride, count, out);
}

void EncodeStrip(const Strip& strip, const LevelEncoder& encoder, std::uint8_t* out)
{
    const std::size_t whole = strip.rows == kBlockSide ? strip.width / kBlockSide : 0;
    if (whole != 0)
        encoder.encodeRow(strip.pixels, strip.Stride(), whole, out);
    for (std::size_t block = whole; block < strip.Blocks(); block += kFilledBlocks)
        EncodeFilled(strip, block, std::min(kFilledBlocks, strip.Blocks() - block), encoder.encodeRow,
                     out + block * encoder.blockBytes);
}
}  // namespace

std::uint32_t EncodeLevel(const std::uint8_t* source, std::uint8_t* destination, std::uint32_t width,
                          std::uint32_t height, const LevelEncoder& encoder)
{
    const std::uint32_t total = LevelBytes(width, height, encoder.blockBytes);
    if (total == 0)
        return 0;
    if (encoder.dithering.mode != Dithering::None) {
        EncodeDithered(source, destination, width, height, encoder);
        return total;
    }
    const auto encodeRows = [&](std::uint32_t first, std::uint32_t end, unsigned /*member*/) {
        for (std::size_t row = first; row < end; ++row) {
            const std::size_t top = row * kBlockSide;
            const Strip strip{source + top * width * kPixelBytes, width,
                              std::min<std::size_t>(kBlockSide, height - top)};
            EncodeStrip(strip, encoder, destination + row * strip.Blocks() * encoder.blockBytes);
        }
    };
    const auto rows = static_cast<std::uint32_t>((std::uint64_t{height} + kBlockSide - 1) / kBlockSide);
    if (encoder.threads > 1)
        CRowTeam(encoder.threads).Run(rows, encodeRows);
    else
        encodeRows(0, rows, 0);
    return total;
}

}  // namespace Plugin
