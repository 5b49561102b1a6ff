// What the DXT library exports: the plugin interface as a thin layer over Dxt.h.

#include <new>

#include "plugins/common/InstructionSet.h"
#include "plugins/common/PluginInfo.h"
#include "plugins/dxt/Dxt.h"

const Plugin::Texts& Plugin::TextsOfThisPlugin()
{
    static const Texts kTexts{
        kQualityNames, kDitheringNames, u"DXT codec",
        u"Encodes and decodes S3 texture compression: DXT1, DXT1 with one-bit alpha, DXT3 and DXT5.",
        NameOf(PreferredInstructionSet())};
    return kTexts;
}

extern "C" {

MAVREL_PLUGIN_EXPORT std::uint32_t DXTCompress(const void* source, void* destination, std::uint32_t width,
                                               std::uint32_t height, std::uint32_t /*mode*/,
                                               std::uint32_t flags)
{
    const auto variant = Dxt::VariantOf(flags);
    if (!variant)
        return 0;
    try {
        return Dxt::Compress(source, destination, width, height,
                             {*variant, Plugin::QualityOf(flags), Plugin::DitheringOf(flags)});
    } catch (const std::bad_alloc&) {
        return 0;
    }
}

MAVREL_PLUGIN_EXPORT std::uint32_t DXTDecompress(const void* source, void* destination, std::uint32_t width,
                                                 std::uint32_t height, std::uint32_t /*mode*/,
                                                 std::uint32_t flags)
{
    const auto variant = Dxt::VariantOf(flags);
    return variant ? Dxt::Decompress(source, destination, width, height, *variant) : 0;
}

}  // extern "C"
