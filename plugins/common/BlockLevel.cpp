#include "plugins/common/BlockLevel.h"

#include <algorithm>
#include <cstring>

namespace Plugin {
namespace {
constexpr std::size_t kBlockStride = kBlockSide * kPixelBytes;

// Decodes into a block of our own and copies the part of it that lies inside the picture.
void DecodePartialBlock(const std::uint8_t* block, DecodeRowFn decodeRow, std::uint8_t* out,
                        std::size_t stride, std::size_t columns, std::size_t rows)
{
    BlockPixels pixels;
    decodeRow(block, 1, pixels.data(), kBlockStride);
    for (std::size_t y = 0; y < rows; ++y)
        std::memcpy(out + y * stride, pixels.data() + y * kBlockStride, columns * kPixelBytes);
}
}  // namespace

std::uint32_t PixelBytes(std::uint32_t width, std::uint32_t height)
{
    const std::uint64_t pixels = std::uint64_t{width} * height;
    return pixels > UINT32_MAX / kPixelBytes ? 0 : static_cast<std::uint32_t>(pixels * kPixelBytes);
}

std::uint32_t LevelBytes(std::uint32_t width, std::uint32_t height, std::size_t blockBytes)
{
    if (PixelBytes(width, height) == 0)
        return 0;
    const std::uint64_t across = (std::uint64_t{width} + kBlockSide - 1) / kBlockSide;
    const std::uint64_t down = (std::uint64_t{height} + kBlockSide - 1) / kBlockSide;
    const std::uint64_t bytes = across * down * blockBytes;
    return bytes > UINT32_MAX ? 0 : static_cast<std::uint32_t>(bytes);
}

std::uint32_t DecodeBlockLevel(const std::uint8_t* source, std::uint8_t* destination, std::uint32_t width,
                               std::uint32_t height, std::size_t blockBytes, DecodeRowFn decodeRow)
{
    const std::uint32_t total = PixelBytes(width, height);
    if (total == 0)
        return 0;
    const std::size_t stride = std::size_t{width} * kPixelBytes;
    const std::size_t wholeBlocks = width / kBlockSide;
    const std::size_t blocksAcross = (std::size_t{width} + kBlockSide - 1) / kBlockSide;
    for (std::size_t top = 0; top < height; top += kBlockSide) {
        const std::size_t rows = std::min(kBlockSide, height - top);
        const bool allRows = rows == kBlockSide;
        if (allRows)
            decodeRow(source, wholeBlocks, destination, stride);
        for (std::size_t block = allRows ? wholeBlocks : 0; block < blocksAcross; ++block) {
            const std::size_t left = block * kBlockSide;
            DecodePartialBlock(source + block * blockBytes, decodeRow, destination + left * kPixelBytes,
                               stride, std::min(kBlockSide, width - left), rows);
        }
        source += blocksAcross * blockBytes;
        destination += rows * stride;
    }
    return total;
}

}  // namespace Plugin
