#pragma once

// First guess of the endpoints: around every block the colours are taken as a line, and the endpoints are put
// on it, one to each side of the mean.

#include "plugins/pvrtc/EncodeState.h"

namespace Pvrtc {

/// Sets all endpoints to values that can be stored.
void SeedEndpoints(EncodeState& state);

}  // namespace Pvrtc
