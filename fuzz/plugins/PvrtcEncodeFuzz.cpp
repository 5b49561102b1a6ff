// Encodes arbitrary pixels of every size up to 32 x 32 with every option and instruction set. Whatever the
// picture is, the level has the promised length, is the same as the portable one, and decodes, and an opaque
// picture stays opaque.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "plugins/pvrtc/PvrtcDecode.h"
#include "plugins/pvrtc/PvrtcEncode.h"

namespace {
using Bytes = std::vector<std::uint8_t>;
constexpr std::uint32_t kSides[8] = {1, 2, 4, 8, 8, 16, 16, 32};

void Require(bool holds)
{
    if (!holds)
        std::abort();
}

Plugin::Dithering DitheringOf(unsigned bits)
{
    return Plugin::kEveryDithering[bits % 3];
}
}  // namespace

// Byte 0: width in bits 0 to 2, height in bits 4 to 6, a second thread in bit 7. Byte 1: bits per pixel in
// bit 0, alpha in bit 1, dithering in bits 2 and 3, level in bits 4 and 5, instruction set in bits 6 and 7.
// Then the pixels; missing ones are 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2)
        return 0;
    const std::uint32_t width = kSides[data[0] & 7];
    const std::uint32_t height = kSides[data[0] >> 4 & 7];
    Pvrtc::EncodeOptions options;
    options.bitsPerPixel = (data[1] & 1) != 0 ? 2 : 4;
    options.alpha = (data[1] & 2) != 0;
    options.dithering = DitheringOf(data[1] >> 2 & 3);
    options.instructionSet = Plugin::kEveryInstructionSet[(data[1] >> 6) % 3];
    options.threads = 1 + (data[0] >> 7);
    options.quality = static_cast<Plugin::Quality>(data[1] >> 4 & 3);
    Bytes pixels(std::size_t{width} * height * 4);
    std::copy_n(data + 2, std::min(size - 2, pixels.size()), pixels.begin());
    Bytes level(Pvrtc::PvrtcLevelBytes(width, height, options.bitsPerPixel));
    Require(Pvrtc::PvrtcEncode(pixels.data(), level.data(), width, height, options) == level.size());
    Bytes shown(pixels.size());
    Require(Pvrtc::PvrtcDecode(level.data(), shown.data(), width, height, options.bitsPerPixel,
                               options.instructionSet) == shown.size());
    for (std::size_t i = 3; !options.alpha && i < shown.size(); i += 4)
        Require(shown[i] == 255);
    options.instructionSet = Plugin::InstructionSet::Portable;
    options.threads = 1;
    Bytes portable(level.size());
    Require(Pvrtc::PvrtcEncode(pixels.data(), portable.data(), width, height, options) == level.size());
    Require(level == portable);
    return 0;
}
