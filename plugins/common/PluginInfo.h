#pragma once

// The texts that a codec plugin offers to the options menu, and the quality levels and dithering modes behind
// them. Pure
// constants and functions; every plugin's exports answer GetPluginInfo with them.

#include <cstdint>

#include "plugins/plugin.h"

namespace Plugin {

/// Deliberate: the default of every cache is index 0, so the level meant for everyday work comes first in the
/// list.
enum class Quality : std::uint32_t { Normal = 0, Fast = 1, High = 2, Best = 3 };

/// In the order of the list. Error diffusion is the finer one; ordered dithering treats every place of the
/// picture on its own, so it can share the work among threads.
enum class Dithering : std::uint32_t { None = 0, ErrorDiffusion = 1, Ordered = 2 };
inline constexpr Dithering kEveryDithering[] = {Dithering::None, Dithering::ErrorDiffusion,
                                                Dithering::Ordered};

/// Lists in the form of GetPluginInfo: each name ended by NUL, an empty name (the literal's own NUL) after
/// the last.
inline constexpr char16_t kQualityNames[] = u"Normal\0Fast\0High\0Best\0";
inline constexpr char16_t kDitheringNames[] = u"None\0Error diffusion\0Ordered\0";

/// The level that the flag word asks for; an index behind the list (a setting of another plugin) means
/// Normal.
constexpr Quality QualityOf(std::uint32_t flags)
{
    const std::uint32_t index = flags & MavrelQualityMask;
    return index <= static_cast<std::uint32_t>(Quality::Best) ? static_cast<Quality>(index) : Quality::Normal;
}

/// The mode that the flag word asks for. The bit for dithering alone, and an index behind the list, mean
/// error diffusion.
constexpr Dithering DitheringOf(std::uint32_t flags)
{
    if ((flags & MavrelDithering) == 0)
        return Dithering::None;
    const std::uint32_t index = (flags & MavrelDitheringMask) >> MAVREL_DITHERING_SHIFT;
    return index == static_cast<std::uint32_t>(Dithering::Ordered) ? Dithering::Ordered
                                                                   : Dithering::ErrorDiffusion;
}

struct Texts {
    const char16_t* qualityNames;
    const char16_t* ditheringNames;
    const char16_t* displayName;
    const char16_t* description;
    const char16_t* instructionSet = nullptr;
};

/// The texts of the library that this is built into; each plugin's own exports define it.
const Texts& TextsOfThisPlugin();

/// The answer to GetPluginInfo(what); null for a number that is not in MavrelPluginInfo.
constexpr const char16_t* TextFor(const Texts& texts, std::uint32_t what)
{
    switch (what) {
        case MavrelQualityNames:
            return texts.qualityNames;
        case MavrelDitheringNames:
            return texts.ditheringNames;
        case MavrelDisplayName:
            return texts.displayName;
        case MavrelDescription:
            return texts.description;
        case MavrelInstructionSet:
            return texts.instructionSet;
        case MavrelDitheringBits:
            return MAVREL_DITHERING_BITS;
        default:
            return nullptr;
    }
}

}  // namespace Plugin
