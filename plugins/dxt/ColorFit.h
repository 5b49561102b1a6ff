#pragma once

// The search for a block's two colours and sixteen indices, from quick to thorough by quality level. Each
// level starts from what the level below found and only ever improves it.

#include "plugins/common/PluginInfo.h"
#include "plugins/dxt/EndpointFit.h"

namespace Dxt {

/// The palettes that the format and the block's alpha allow.
enum class Palettes {
    FourOnly,          ///< DXT3, DXT5
    FourOrThree,       ///< DXT1 with one-bit alpha, a block without transparent pixels
    ThreeOnly,         ///< the same with transparent pixels: index 3 is theirs
    FourThreeOrBlack,  ///< DXT1: index 3 of three colours is opaque black
};

/// Fits the pixels that count; the others get index 3. The endpoints are in the order that their mode
/// requires.
ColorFit FitColors(const ColorPixels& pixels, Palettes palettes, Plugin::Quality quality);

}  // namespace Dxt
