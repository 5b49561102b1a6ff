#pragma once

// Pictures of one colour, which small levels of a mip chain often are: all blocks alike, chosen by trying.

#include "plugins/pvrtc/EncodeState.h"

namespace Pvrtc {

/// When everything that counts has one value, sets endpoints and modulation to the same nearest reachable
/// value at every pixel and returns true; else changes nothing.
bool FitSolid(EncodeState& state);

}  // namespace Pvrtc
