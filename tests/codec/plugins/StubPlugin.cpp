// The plugin of the tests. One source, built with different definitions into libraries that fit, do not fit,
// or lack something. STUB_MARK is what the entry points return, so that a test sees which library it called.

#include "plugins/plugin.h"

#ifndef STUB_TYPE
#define STUB_TYPE MAVREL_PLUGIN_TYPE
#endif
#ifndef STUB_MARK
#define STUB_MARK 1
#endif

extern "C" {

#ifdef STUB_BUILD
MAVREL_PLUGIN_EXPORT uint32_t GetDLLBuildID(void)
{
    return STUB_BUILD;
}
#endif

#ifndef STUB_WITHOUT_TYPE
MAVREL_PLUGIN_EXPORT uint32_t GetDLLType(void)
{
    return STUB_TYPE;
}
#endif

#ifdef STUB_THREADING
MAVREL_PLUGIN_EXPORT uint32_t GetPluginThreading(void)
{
    return STUB_THREADING;
}
#endif

#ifdef STUB_TEXTS
MAVREL_PLUGIN_EXPORT const char16_t* GetPluginInfo(uint32_t what)
{
    switch (what) {
        case MavrelQualityNames:
            return u"Draft\0Fast\0Normal\0Good\0Best\0Insane\0Absurd\0";
        case MavrelDitheringNames:
            return u"None\0Diffusion\0";
        case MavrelDisplayName:
            return u"Stub \u041A\U0001F3A8";
        case MavrelDescription:
            return u"Does nothing, slowly.";
#ifdef STUB_DITHERING_BITS
        case MavrelDitheringBits:
            return STUB_DITHERING_BITS;
#endif
        default:
            return nullptr;
    }
}
#endif

#define STUB_ENTRY(name)                                                                           \
    MAVREL_PLUGIN_EXPORT uint32_t name(const void*, void*, uint32_t, uint32_t, uint32_t, uint32_t) \
    {                                                                                              \
        return STUB_MARK;                                                                          \
    }

#ifdef STUB_DXT
STUB_ENTRY(DXTCompress)
STUB_ENTRY(DXTDecompress)
#endif
#ifdef STUB_ETC1
STUB_ENTRY(ETC1Compress)
STUB_ENTRY(ETC1Decompress)
#endif
#ifdef STUB_DXT_COMPRESS_ONLY
STUB_ENTRY(DXTCompress)
#endif

}  // extern "C"
