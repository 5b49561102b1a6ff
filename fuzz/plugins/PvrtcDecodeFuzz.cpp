// Decodes arbitrary words as a level of every size up to 128 x 128. The first byte chooses the sides, the
// second the bits per pixel and the instruction set; the buffers are exactly as large as promised.
// Every set must show the same.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "plugins/pvrtc/PvrtcDecode.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2)
        return 0;
    const std::uint32_t width = 1u << (data[0] & 7);
    const std::uint32_t height = 1u << (data[0] >> 4 & 7);
    const std::uint32_t bitsPerPixel = (data[1] & 1) != 0 ? 2 : 4;
    std::vector<std::uint8_t> level(Pvrtc::PvrtcLevelBytes(width, height, bitsPerPixel));
    std::copy_n(data + 2, std::min(size - 2, level.size()), level.begin());
    std::vector<std::uint8_t> pixels(std::size_t{width} * height * 4);
    if (Pvrtc::PvrtcDecode(level.data(), pixels.data(), width, height, bitsPerPixel,
                           Plugin::kEveryInstructionSet[(data[1] >> 1 & 3) % 3]) != pixels.size())
        std::abort();
    std::vector<std::uint8_t> portable(pixels.size());
    Pvrtc::PvrtcDecode(level.data(), portable.data(), width, height, bitsPerPixel,
                       Plugin::InstructionSet::Portable);
    if (pixels != portable)
        std::abort();
    return 0;
}
