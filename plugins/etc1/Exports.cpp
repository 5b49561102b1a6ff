// What the ETC1 library exports: the plugin interface as a thin layer over Etc1.h.

#include <new>

#include "plugins/common/InstructionSet.h"
#include "plugins/common/PluginInfo.h"
#include "plugins/etc1/Etc1.h"

const Plugin::Texts& Plugin::TextsOfThisPlugin()
{
    static const Texts kTexts{kQualityNames, kDitheringNames, u"ETC1 codec",
                              u"Encodes and decodes Ericsson texture compression 1. Alpha is not stored.",
                              NameOf(PreferredInstructionSet())};
    return kTexts;
}

extern "C" {

MAVREL_PLUGIN_EXPORT std::uint32_t ETC1Compress(const void* source, void* destination, std::uint32_t width,
                                                std::uint32_t height, std::uint32_t /*mode*/,
                                                std::uint32_t flags)
{
    try {
        return Etc1::Compress(source, destination, width, height,
                              {Plugin::QualityOf(flags), Plugin::DitheringOf(flags)});
    } catch (const std::bad_alloc&) {
        return 0;
    }
}

MAVREL_PLUGIN_EXPORT std::uint32_t ETC1Decompress(const void* source, void* destination, std::uint32_t width,
                                                  std::uint32_t height, std::uint32_t /*mode*/,
                                                  std::uint32_t /*flags*/)
{
    return Etc1::Decompress(source, destination, width, height);
}

}  // extern "C"
