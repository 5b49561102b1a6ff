// What the UNC library exports: the plugin interface as a thin layer over Unc.h.

#include <new>

#include "plugins/common/PluginInfo.h"
#include "plugins/unc/Unc.h"

namespace {
// Packing has nothing to search, so there is one level.
constexpr Plugin::Texts kTexts{
    u"Normal\0", Plugin::kDitheringNames, u"16-bit converter",
    u"Packs pictures to RGBA 565 or RGBA 4444 and hands 16-bit rasters on unchanged."};
}  // namespace

const Plugin::Texts& Plugin::TextsOfThisPlugin()
{
    return kTexts;
}

extern "C" {

MAVREL_PLUGIN_EXPORT std::uint32_t UNCCompress(const void* source, void* destination, std::uint32_t width,
                                               std::uint32_t height, std::uint32_t /*mode*/,
                                               std::uint32_t flags)
{
    try {
        return Unc::Compress(source, destination, width, height, (flags & MavrelAlpha) != 0,
                             Plugin::DitheringOf(flags));
    } catch (const std::bad_alloc&) {
        return 0;
    }
}

MAVREL_PLUGIN_EXPORT std::uint32_t UNCDecompress(const void* source, void* destination, std::uint32_t width,
                                                 std::uint32_t height, std::uint32_t /*mode*/,
                                                 std::uint32_t /*flags*/)
{
    return Unc::Decompress(source, destination, width, height);
}

}  // extern "C"
