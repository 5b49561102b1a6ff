// Decodes arbitrary ETC1 blocks at every small size, with two instruction sets that must agree. Links
// codec_ETC1.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "plugins/etc1/Etc1.h"

// Bytes 0 and 1: width and height, 1 to 64, and in bit 6 of byte 0 the instruction set. Then the blocks.
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
    if (Etc1::Decompress(blocks.get(), pixels.get(), width, height, Plugin::InstructionSet::Portable) !=
        pixelBytes)
        std::abort();
    const Plugin::InstructionSet set = Plugin::kEveryInstructionSet[1 + data[0] / 64 % 2];
    if (!Plugin::IsSupported(set))
        return 0;
    const auto again = std::make_unique<std::uint8_t[]>(pixelBytes);
    if (Etc1::Decompress(blocks.get(), again.get(), width, height, set) != pixelBytes ||
        std::memcmp(pixels.get(), again.get(), pixelBytes) != 0)
        std::abort();
    return 0;
}
