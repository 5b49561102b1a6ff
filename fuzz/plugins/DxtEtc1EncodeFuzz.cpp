// Encodes arbitrary pixels with both block encoders and checks what must hold for any picture: the size of
// the level, the same bytes with the chosen instruction set as with the portable one, a level that decodes,
// one-bit alpha that comes back as it was, and black and white that stay exact. Links codec_DXT and
// codec_ETC1.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "plugins/dxt/Dxt.h"
#include "plugins/etc1/Etc1.h"

namespace {
using Bytes = std::vector<std::uint8_t>;

struct Input {
    Bytes pixels;
    std::uint32_t width;
    std::uint32_t height;
    Plugin::Quality quality;
    Plugin::Dithering dithering;
    Plugin::InstructionSet set;
    unsigned threads;
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

// Whether every pixel has this value in red, green and blue.
bool IsAll(const Bytes& pixels, std::uint8_t value)
{
    for (std::size_t i = 0; i < pixels.size(); ++i)
        if (i % 4 != 3 && pixels[i] != value)
            return false;
    return true;
}

void RequireExtremes(const Input& input, const Bytes& shown)
{
    for (const std::uint8_t value : {std::uint8_t{0}, std::uint8_t{255}})
        Require(!IsAll(input.pixels, value) || IsAll(shown, value));
}

void FuzzDxt(const Input& input, Dxt::Variant variant)
{
    Bytes chosen(Blocks(input) * Dxt::BlockBytes(variant));
    Bytes portable(chosen.size());
    Dxt::EncodeOptions options{variant, input.quality, input.dithering, input.threads, input.set};
    Require(Dxt::Compress(input.pixels.data(), chosen.data(), input.width, input.height, options) ==
            chosen.size());
    options.instructionSet = Plugin::InstructionSet::Portable;
    options.threads = 1;
    Require(Dxt::Compress(input.pixels.data(), portable.data(), input.width, input.height, options) ==
            portable.size());
    Require(chosen == portable);
    Bytes shown(input.pixels.size());
    Require(Dxt::Decompress(chosen.data(), shown.data(), input.width, input.height, variant, input.set) ==
            shown.size());
    if (variant != Dxt::Variant::Dxt1Alpha) {
        RequireExtremes(input, shown);
        return;
    }
    for (std::size_t i = 3; i < shown.size(); i += 4) {
        const std::uint8_t alpha = input.pixels[i];
        // Dithering spreads what is neither fully transparent nor fully opaque.
        if (input.dithering == Plugin::Dithering::None || alpha == 0 || alpha == 255)
            Require(shown[i] == (alpha < 128 ? 0 : 255));
    }
}

void FuzzEtc1(const Input& input)
{
    Bytes chosen(Blocks(input) * 8);
    Bytes portable(chosen.size());
    Etc1::EncodeOptions options{input.quality, input.dithering, input.threads, input.set};
    Require(Etc1::Compress(input.pixels.data(), chosen.data(), input.width, input.height, options) ==
            chosen.size());
    options.instructionSet = Plugin::InstructionSet::Portable;
    options.threads = 1;
    Require(Etc1::Compress(input.pixels.data(), portable.data(), input.width, input.height, options) ==
            portable.size());
    Require(chosen == portable);
    Bytes shown(input.pixels.size());
    Require(Etc1::Decompress(chosen.data(), shown.data(), input.width, input.height, input.set) ==
            shown.size());
    for (std::size_t i = 3; i < shown.size(); i += 4)
        Require(shown[i] == 255);
    RequireExtremes(input, shown);
}
}  // namespace

// Byte 0: codec in bits 0 to 2 (four variants of DXT, else ETC1), level in bits 3 and 4, dithering in bit 5,
// instruction set in bits 6 and 7. Byte 1: width - 1 in the low four bits, a second thread in bit 4, the
// other dithering in bit 5. Byte 2: height - 1 in the low four bits. Then the pixels; missing ones are 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t kHead = 3;
    if (size < kHead)
        return 0;
    const Plugin::InstructionSet wanted = Plugin::kEveryInstructionSet[(data[0] >> 6) % 3];
    Input input{{},
                data[1] % 16U + 1,
                data[2] % 16U + 1,
                static_cast<Plugin::Quality>(data[0] >> 3 & 3),
                Plugin::Dithering::None,
                Plugin::IsSupported(wanted) ? wanted : Plugin::InstructionSet::Portable,
                1U + (data[1] >> 4 & 1)};
    if ((data[0] & 32) != 0)
        input.dithering =
            (data[1] & 32) != 0 ? Plugin::Dithering::Ordered : Plugin::Dithering::ErrorDiffusion;
    input.pixels.resize(std::size_t{input.width} * input.height * 4);
    std::copy_n(data + kHead, std::min(size - kHead, input.pixels.size()), input.pixels.begin());
    const unsigned codec = data[0] & 7;
    if (codec < 4)
        FuzzDxt(input, static_cast<Dxt::Variant>(codec));
    else
        FuzzEtc1(input);
    return 0;
}
