// Decodes arbitrary blocks as every DXT variant, at every small size and with every instruction set, which
// must show the same. Links codec_DXT.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "plugins/dxt/Dxt.h"

// Byte 0: variant in the low two bits, instruction set in the two above. Bytes 1 and 2: width and height, 1
// to 64. Then the blocks.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t kHead = 3;
    if (size < kHead)
        return 0;
    const auto variant = static_cast<Dxt::Variant>(data[0] & 3);
    const std::uint32_t width = data[1] % 64U + 1;
    const std::uint32_t height = data[2] % 64U + 1;
    const std::size_t needed = std::size_t{(width + 3) / 4} * ((height + 3) / 4) * Dxt::BlockBytes(variant);
    if (size - kHead < needed)
        return 0;
    // Both buffers have exactly the size that the call may touch.
    const auto blocks = std::make_unique<std::uint8_t[]>(needed);
    for (std::size_t i = 0; i < needed; ++i)
        blocks[i] = data[kHead + i];
    const std::size_t pixelBytes = std::size_t{width} * height * 4;
    const auto pixels = std::make_unique<std::uint8_t[]>(pixelBytes);
    const Plugin::InstructionSet wanted = Plugin::kEveryInstructionSet[(data[0] >> 2 & 3) % 3];
    const auto set = Plugin::IsSupported(wanted) ? wanted : Plugin::InstructionSet::Portable;
    if (Dxt::Decompress(blocks.get(), pixels.get(), width, height, variant, set) != pixelBytes)
        std::abort();
    const auto portable = std::make_unique<std::uint8_t[]>(pixelBytes);
    Dxt::Decompress(blocks.get(), portable.get(), width, height, variant, Plugin::InstructionSet::Portable);
    if (std::memcmp(pixels.get(), portable.get(), pixelBytes) != 0)
        std::abort();
    return 0;
}
