// What the ETC1 library exports: the plugin interface as a thin layer over Etc1.h.

#include <new>

#include "plugins/etc1/Etc1.h"

namespace {
constexpr Plugin::Texts kTexts{Plugin::kQualityNames, Plugin::kDitheringNames, u"ETC1 codec",
                               u"Encodes and decodes Ericsson texture compression 1. Alpha is not stored."};
}  // namespace

extern "C" {

MAVREL_PLUGIN_EXPORT std::uint32_t GetDLLBuildID()
{
    return MAVREL_PLUGIN_BUILD;
}

MAVREL_PLUGIN_EXPORT std::uint32_t GetDLLType()
{
    return MAVREL_PLUGIN_TYPE;
}

MAVREL_PLUGIN_EXPORT const char16_t* GetPluginInfo(std::uint32_t what)
{
    return Plugin::TextFor(kTexts, what);
}

MAVREL_PLUGIN_EXPORT std::uint32_t GetPluginThreading()
{
    return 1;
}

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
