// What the ETC1 library exports: the plugin interface as a thin layer over Etc1.h.

#include <new>

#include "plugins/common/PluginInfo.h"
#include "plugins/etc1/Etc1.h"

namespace {
constexpr Plugin::Texts kTexts{Plugin::kQualityNames, Plugin::kDitheringNames, u"ETC1 codec",
                               u"Encodes and decodes Ericsson texture compression 1. Alpha is not stored."};
}  // namespace

const Plugin::Texts& Plugin::TextsOfThisPlugin()
{
    return kTexts;
}

extern "C" {

MAVREL_PLUGIN_EXPORT std::uint32_t ETC1Compress(const void* source, void* destination, std::uint32_t width,
                                                std::uint32_t height, std::uint32_t /*mode*/,
                                                std::uint32_t flags)
{
    try {
        return Etc1::Compress(source, destination, width, height,
                              {Plugin::QualityOf(flags), (flags & MavrelDithering) != 0});
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
