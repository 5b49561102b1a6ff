#include "plugins/dxt/Dxt.h"

#include "plugins/common/BlockLevel.h"
#include "plugins/dxt/BlockEncode.h"
#include "plugins/dxt/RowDecode.h"

namespace Dxt {
namespace {
// The variant and the quality level travel to the block encoder in one word.
constexpr std::uint32_t kVariantShift = 8;

void EncodeOne(const Plugin::BlockPixels& pixels, std::uint32_t option, std::uint8_t* out)
{
    const auto quality = static_cast<Plugin::Quality>(option & ((1U << kVariantShift) - 1));
    EncodeBlock(pixels, static_cast<Variant>(option >> kVariantShift), quality, out);
}

Plugin::ChannelBits DitheringBits(Variant variant)
{
    switch (variant) {
        case Variant::Dxt1Alpha:
            return {5, 6, 5, 1};
        case Variant::Dxt3:
            return {5, 6, 5, 4};
        case Variant::Dxt1:
        case Variant::Dxt5:
            break;
    }
    return {5, 6, 5, 8};
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
                         Variant variant)
{
    return Plugin::DecodeBlockLevel(static_cast<const std::uint8_t*>(source),
                                    static_cast<std::uint8_t*>(destination), width, height,
                                    BlockBytes(variant), DecodeRowFor(variant));
}

std::uint32_t Compress(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                       const EncodeOptions& options)
{
    Plugin::BlockEncoder encoder{BlockBytes(options.variant), EncodeOne, 0, std::nullopt};
    encoder.option = static_cast<std::uint32_t>(options.variant) << kVariantShift |
                     static_cast<std::uint32_t>(options.quality);
    if (options.dithering)
        encoder.dithering = DitheringBits(options.variant);
    return Plugin::EncodeBlockLevel(static_cast<const std::uint8_t*>(source),
                                    static_cast<std::uint8_t*>(destination), width, height, encoder);
}

}  // namespace Dxt
