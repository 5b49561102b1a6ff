#include "plugins/dxt/Dxt.h"

#include "plugins/common/BlockLevel.h"
#include "plugins/common/LevelEncode.h"
#include "plugins/common/RowTeam.h"
#include "plugins/dxt/EncodeKernels.h"
#include "plugins/dxt/RowDecode.h"

namespace Dxt {
namespace {
// Pixels for which a thread of its own takes about half a millisecond off the call, many times what starting
// it costs; by quality level, in the order of Plugin::Quality.
constexpr std::uint64_t kPixelsPerThread[] = {1U << 18, 1U << 20, 1U << 15, 1U << 13};

Plugin::EncodeRowFn EncodeRowFor(const EncodeOptions& options, Plugin::InstructionSet set)
{
    const EncodeKernels& kernels = EncodeKernelsFor(set);
    const auto level = static_cast<std::size_t>(options.quality);
    switch (options.variant) {
        case Variant::Dxt1:
            return kernels.dxt1[level];
        case Variant::Dxt1Alpha:
            return kernels.dxt1Alpha[level];
        case Variant::Dxt3:
            return kernels.dxt3[level];
        case Variant::Dxt5:
            break;
    }
    return kernels.dxt5[level];
}

// Alpha of eight bits needs no dithering: interpolated alpha has steps that nobody sees.
int AlphaBits(Variant variant)
{
    switch (variant) {
        case Variant::Dxt1Alpha:
            return 1;
        case Variant::Dxt3:
            return 4;
        case Variant::Dxt1:
        case Variant::Dxt5:
            break;
    }
    return 8;
}
}  // namespace

std::optional<Variant> VariantOf(std::uint32_t flags)
{
    const bool alpha = (flags & MavrelAlpha) != 0;
    if ((flags & MavrelDxt1) != 0)
        return alpha ? Variant::Dxt1Alpha : Variant::Dxt1;
    if ((flags & MavrelInterpolatedAlpha) != 0)
        return Variant::Dxt5;
    if (alpha)
        return Variant::Dxt3;
    return std::nullopt;
}

std::size_t BlockBytes(Variant variant)
{
    return variant == Variant::Dxt1 || variant == Variant::Dxt1Alpha ? 8 : 16;
}

std::uint32_t Decompress(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                         Variant variant, std::optional<Plugin::InstructionSet> set)
{
    return Plugin::DecodeBlockLevel(
        static_cast<const std::uint8_t*>(source), static_cast<std::uint8_t*>(destination), width, height,
        BlockBytes(variant), DecodeRowFor(variant, set.value_or(Plugin::PreferredInstructionSet())));
}

std::uint32_t Compress(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                       const EncodeOptions& options)
{
    const auto set = options.instructionSet.value_or(Plugin::PreferredInstructionSet());
    Plugin::LevelEncoder encoder{EncodeRowFor(options, set),
                                 BlockBytes(options.variant),
                                 {options.dithering, DecodeRowFor(options.variant, set),
                                  AlphaBits(options.variant), options.variant != Variant::Dxt1},
                                 options.threads};
    if (encoder.threads == 0)
        encoder.threads = Plugin::TeamSizeFor(std::uint64_t{width} * height,
                                              kPixelsPerThread[static_cast<std::size_t>(options.quality)]);
    return Plugin::EncodeLevel(static_cast<const std::uint8_t*>(source),
                               static_cast<std::uint8_t*>(destination), width, height, encoder);
}

}  // namespace Dxt
