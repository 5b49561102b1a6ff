// Encodes arbitrary pixels of every size up to 32 x 32 with every option and instruction set. Whatever the
// picture is, the level has the promised length and decodes, and an opaque picture stays opaque.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "plugins/pvrtc/PvrtcDecode.h"
#include "plugins/pvrtc/PvrtcEncode.h"

namespace {
constexpr std::uint32_t kSides[8] = {1, 2, 4, 8, 8, 16, 16, 32};
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2)
        return 0;
    const std::uint32_t width = kSides[data[0] & 7];
    const std::uint32_t height = kSides[data[0] >> 4 & 7];
    Pvrtc::EncodeOptions options;
    options.bitsPerPixel = (data[1] & 1) != 0 ? 2 : 4;
    options.alpha = (data[1] & 2) != 0;
    options.dithering = (data[1] & 4) != 0;
    options.instructionSet = Plugin::kEveryInstructionSet[(data[0] >> 3 & 1) + (data[1] >> 3 & 1)];
    options.threads = 1 + (data[0] >> 7);
    options.quality = static_cast<Plugin::Quality>(data[1] >> 4 & 3);
    std::vector<std::uint8_t> pixels(std::size_t{width} * height * 4);
    std::copy_n(data + 2, std::min(size - 2, pixels.size()), pixels.begin());
    std::vector<std::uint8_t> level(Pvrtc::PvrtcLevelBytes(width, height, options.bitsPerPixel));
    if (Pvrtc::PvrtcEncode(pixels.data(), level.data(), width, height, options) != level.size())
        std::abort();
    if (Pvrtc::PvrtcDecode(level.data(), pixels.data(), width, height, options.bitsPerPixel) != pixels.size())
        std::abort();
    for (std::size_t i = 3; !options.alpha && i < pixels.size(); i += 4)
        if (pixels[i] != 255)
            std::abort();
    return 0;
}
