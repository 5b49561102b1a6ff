#pragma once

// The last step of the careful quality levels: small moves of one block's endpoints, each judged with the
// best modulation that the moved endpoints would get. That finds improvements which neither least squares
// with the modulation held still nor the modulation alone can see.

#include "plugins/pvrtc/EncodeState.h"

namespace Pvrtc {

/// Tries the moves at every block once, in rows, and keeps those that lower the error as a decoder would see
/// it. Block modes stay. For 4 bits per pixel only: with 2, weights are shared between blocks. The weights
/// and the residual are stale afterwards; ChooseModulation renews them.
void PolishEndpoints(EncodeState& state);

}  // namespace Pvrtc
