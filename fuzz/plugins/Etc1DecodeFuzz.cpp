// Decodes arbitrary ETC1 blocks at every small size. Links codec_ETC1.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "plugins/etc1/Etc1.h"

// Bytes 0 and 1: width and height, 1 to 64. Then the blocks.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t kHead = 2;
    if (size < kHead)
        return 0;
    const std::uint32_t width = data[0] % 64U + 1;
    const std::uint32_t height = data[1] % 64U + 1;
    const std::size_t needed = std::size_t{(width + 3) / 4} * ((height + 3) / 4) * 8;
    if (size - kHead < needed)
        return 0;
    // Both buffers have exactly the size that the call may touch.
    const auto blocks = std::make_unique<std::uint8_t[]>(needed);
    for (std::size_t i = 0; i < needed; ++i)
        blocks[i] = data[kHead + i];
    const std::size_t pixelBytes = std::size_t{width} * height * 4;
    const auto pixels = std::make_unique<std::uint8_t[]>(pixelBytes);
    if (Etc1::Decompress(blocks.get(), pixels.get(), width, height) != pixelBytes)
        std::abort();
    return 0;
}
