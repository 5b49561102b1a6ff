/* The interface of a Mavrel codec plugin.
 *
 * A plugin is a dynamic library in the "plugins" folder beside the program: a .dll on Windows, a .so for the
 * native command line. It serves one or more of the four caches, whose names are DXT, ETC1, PVRTC and UNC,
 * and exports plain C functions under the names below. Text is UTF-16 (char16_t, the layout of wide text on
 * Windows).
 *
 *   GetDLLBuildID, GetDLLType    required; the program refuses the library without them or with other values
 *   GetPluginInfo                the texts of the options menu
 *   <Cache>Compress              required for every cache that the plugin serves, for example DXTCompress
 *   <Cache>Decompress
 *   GetPluginThreading           optional; without it the program never calls the plugin from two threads at
 * once
 */
#ifndef MAVREL_PLUGIN_H /* NOLINTBEGIN: plain C, which the checks for C++ do not know */
#define MAVREL_PLUGIN_H

#include <stdint.h>
#ifndef __cplusplus
#include <uchar.h>
#endif

#if defined(_WIN32)
#define MAVREL_PLUGIN_EXPORT __declspec(dllexport)
#else
#define MAVREL_PLUGIN_EXPORT __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* What GetDLLBuildID returns; the program accepts 396 up to its own build number. */
#define MAVREL_PLUGIN_BUILD 415u
/* The bit of GetDLLType that marks a codec plugin. */
#define MAVREL_PLUGIN_TYPE 32u

/* The flag word of both calls. */
enum MavrelCodecFlags {
    MavrelQualityMask = 15,        /* compress only: index into the list of quality levels */
    MavrelDithering = 16,          /* compress only: a dithering mode other than the first is chosen */
    MavrelAlpha = 32,              /* the raster has an alpha channel */
    MavrelDxt1 = 64,               /* DXT only: the DXT1 family, without full alpha */
    MavrelInterpolatedAlpha = 256, /* DXT only: DXT5 */
    /* Compress only, and only for a plugin that asks for them by MavrelDitheringBits: the index of the chosen
     * dithering mode when it is 2 or more. Otherwise these bits are 0. */
    MavrelDitheringMask = 0xF000
};
/* How far the index of the dithering mode is shifted in the flag word. */
#define MAVREL_DITHERING_SHIFT 12

/* Encodes one level of width x height pixels.
 *   source       width * height * 4 bytes, R G B A, rows top to bottom
 *   destination  room for the encoded level
 *   mode         4 when the picture has alpha, 2 when it has none
 *   flags        MavrelCodecFlags
 * Returns the number of bytes written, 0 when the size is not one that the format can hold. A level is as
 * large as the format says: whole 4x4 blocks for DXT and ETC1, at least 32 bytes for PVRTC. PVRTC levels are
 * passed square. */
typedef uint32_t (*MavrelCompressFn)(const void* source, void* destination, uint32_t width, uint32_t height,
                                     uint32_t mode, uint32_t flags);

/* Decodes one level of width x height pixels to R G B A, rows top to bottom, width * height * 4 bytes.
 *   mode   DXT and ETC1: 0. PVRTC: bits per pixel, 2 or 4. UNC: bits per pixel, 16.
 *   flags  MavrelAlpha, MavrelDxt1 and MavrelInterpolatedAlpha select the DXT variant:
 *          MavrelDxt1                            DXT1
 *          MavrelAlpha | MavrelDxt1              DXT1 with one-bit alpha
 *          MavrelAlpha                           DXT3
 *          MavrelAlpha | MavrelInterpolatedAlpha DXT5
 * Returns the number of bytes written to destination, 0 when the level cannot be decoded. */
typedef uint32_t (*MavrelDecompressFn)(const void* source, void* destination, uint32_t width, uint32_t height,
                                       uint32_t mode, uint32_t flags);

/* What GetPluginInfo is asked for. */
enum MavrelPluginInfo {
    MavrelQualityNames = 1, /* names of the quality levels, each ended by NUL, an empty name after the last */
    MavrelDitheringNames = 2, /* names of the dithering modes, in the same form */
    MavrelDisplayName = 3,
    MavrelDescription = 4,
    MavrelInstructionSet = 5, /* the vector instructions in use, for example "AVX2"; rarely of interest */
    /* MAVREL_DITHERING_BITS from a plugin that has more than one dithering mode besides "none" and takes the
     * chosen one from MavrelDitheringMask; anything else means that MavrelDithering is all it is told. */
    MavrelDitheringBits = 6
};
#define MAVREL_DITHERING_BITS u"bits 12-15"

typedef uint32_t (*MavrelGetDllBuildIdFn)(void);
typedef uint32_t (*MavrelGetDllTypeFn)(void);
/* Returns text that lives as long as the library, or null when there is none for this number. At most the
 * first five names of a list can be chosen by the user. */
typedef const char16_t* (*MavrelGetPluginInfoFn)(uint32_t what);
/* Non-zero when the compress and decompress functions may run on several threads at once. */
typedef uint32_t (*MavrelGetPluginThreadingFn)(void);

#ifdef __cplusplus
}
#endif

#endif /* NOLINTEND */
