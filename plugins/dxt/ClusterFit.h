#pragma once

// The exhaustive search of the highest quality level: the pixels are put in order along the block's main
// axis, and every way to cut that order into the palette's runs is solved for its least-squares endpoints.

#include <array>

#include "plugins/dxt/EndpointFit.h"

namespace Dxt {

/// The best fit whose clusters are runs of the pixels ordered along `axis`; `fit` is returned when none is
/// better. Only the line of the mode is searched: a black index 3 is used afterwards where it is nearer.
ColorFit ClusterFit(const ColorPixels& pixels, const std::array<int, 3>& axis, const ColorFit& fit);

}  // namespace Dxt
