// Encodes arbitrary pixels with both block encoders and checks what must hold for any picture: the size of
// the level, the same bytes every time and with every instruction set, and one-bit alpha that comes back as
// it was. Links codec_DXT and codec_ETC1.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "plugins/dxt/Dxt.h"
#include "plugins/etc1/Etc1.h"

namespace {
using Buffer = std::unique_ptr<std::uint8_t[]>;

struct Input {
    const std::uint8_t* pixels;
    std::uint32_t width;
    std::uint32_t height;
    Plugin::Quality quality;
    bool dithering;
    Plugin::InstructionSet instructionSet;
};

std::size_t Blocks(const Input& input)
{
    return std::size_t{(input.width + 3) / 4} * ((input.height + 3) / 4);
}

void Require(bool holds)
{
    if (!holds)
        std::abort();
}

void FuzzDxt(const Input& input, Dxt::Variant variant)
{
    const std::size_t size = Blocks(input) * Dxt::BlockBytes(variant);
    const auto once = std::make_unique<std::uint8_t[]>(size);
    const auto again = std::make_unique<std::uint8_t[]>(size);
    Dxt::EncodeOptions options{variant, input.quality, input.dithering, 1, input.instructionSet};
    Require(Dxt::Compress(input.pixels, once.get(), input.width, input.height, options) == size);
    options.instructionSet = Plugin::InstructionSet::Portable;
    Require(Dxt::Compress(input.pixels, again.get(), input.width, input.height, options) == size);
    Require(std::memcmp(once.get(), again.get(), size) == 0);
    if (variant != Dxt::Variant::Dxt1Alpha || input.dithering)
        return;
    const std::size_t pixelBytes = std::size_t{input.width} * input.height * 4;
    const auto decoded = std::make_unique<std::uint8_t[]>(pixelBytes);
    Require(Dxt::Decompress(once.get(), decoded.get(), input.width, input.height, variant) == pixelBytes);
    for (std::size_t i = 3; i < pixelBytes; i += 4)
        Require(decoded[i] == (input.pixels[i] < 128 ? 0 : 255));
}

void FuzzEtc1(const Input& input)
{
    const std::size_t size = Blocks(input) * 8;
    const auto once = std::make_unique<std::uint8_t[]>(size);
    const auto again = std::make_unique<std::uint8_t[]>(size);
    const Etc1::EncodeOptions options{input.quality, input.dithering};
    Require(Etc1::Compress(input.pixels, once.get(), input.width, input.height, options) == size);
    Require(Etc1::Compress(input.pixels, again.get(), input.width, input.height, options) == size);
    Require(std::memcmp(once.get(), again.get(), size) == 0);
}
}  // namespace

// Byte 0: codec in bits 0 to 2, level in bits 3 and 4, dithering in bit 5, the
// instruction set of DXT in bits 6 and 7. Bytes 1 and 2: width and height, 1
// to 16. Then the pixels.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t kHead = 3;
    if (size < kHead)
        return 0;
    const std::uint32_t width = data[1] % 16U + 1;
    const std::uint32_t height = data[2] % 16U + 1;
    const std::size_t needed = std::size_t{width} * height * 4;
    if (size - kHead < needed)
        return 0;
    const Buffer pixels = std::make_unique<std::uint8_t[]>(needed);
    std::memcpy(pixels.get(), data + kHead, needed);
    constexpr Plugin::InstructionSet kSets[4] = {Plugin::InstructionSet::Avx2, Plugin::InstructionSet::Sse41,
                                                 Plugin::InstructionSet::Portable,
                                                 Plugin::InstructionSet::Avx2};
    const Plugin::InstructionSet wanted = kSets[data[0] >> 6];
    const Input input{pixels.get(),
                      width,
                      height,
                      static_cast<Plugin::Quality>(data[0] >> 3 & 3),
                      (data[0] & 32) != 0,
                      Plugin::IsSupported(wanted) ? wanted : Plugin::InstructionSet::Portable};
    const unsigned codec = data[0] & 7;
    if (codec < 4)
        FuzzDxt(input, static_cast<Dxt::Variant>(codec));
    else
        FuzzEtc1(input);
    return 0;
}
