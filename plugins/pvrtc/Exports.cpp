// What the PVRTC library exports: the plugin interface as a thin layer over PvrtcDecode.h and PvrtcEncode.h.

#include <new>

#include "plugins/common/InstructionSet.h"
#include "plugins/common/PluginInfo.h"
#include "plugins/pvrtc/PvrtcDecode.h"
#include "plugins/pvrtc/PvrtcEncode.h"

const Plugin::Texts& Plugin::TextsOfThisPlugin()
{
    static const Texts kTexts{kQualityNames, kDitheringNames, u"PVRTC codec",
                              u"Encodes and decodes PVRTC1 with 2 and 4 bits per pixel.",
                              NameOf(PreferredInstructionSet())};
    return kTexts;
}

extern "C" {

MAVREL_PLUGIN_EXPORT std::uint32_t PVRTCCompress(const void* source, void* destination, std::uint32_t width,
                                                 std::uint32_t height, std::uint32_t mode,
                                                 std::uint32_t flags)
{
    Pvrtc::EncodeOptions options;
    // The mode is 4 or 2, and so are the bits per pixel.
    options.bitsPerPixel = mode;
    options.alpha = (flags & MavrelAlpha) != 0;
    options.dithering = Plugin::DitheringOf(flags);
    options.quality = Plugin::QualityOf(flags);
    try {
        return Pvrtc::PvrtcEncode(static_cast<const std::uint8_t*>(source),
                                  static_cast<std::uint8_t*>(destination), width, height, options);
    } catch (const std::bad_alloc&) {
        return 0;
    }
}

MAVREL_PLUGIN_EXPORT std::uint32_t PVRTCDecompress(const void* source, void* destination, std::uint32_t width,
                                                   std::uint32_t height, std::uint32_t mode,
                                                   std::uint32_t /*flags*/)
{
    try {
        return Pvrtc::PvrtcDecode(static_cast<const std::uint8_t*>(source),
                                  static_cast<std::uint8_t*>(destination), width, height, mode);
    } catch (const std::bad_alloc&) {
        return 0;
    }
}

}  // extern "C"
