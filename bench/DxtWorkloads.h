#pragma once

// The DXT encoders at every level beside those of others, each against the speed of one of them in the same
// run.

#include <string>
#include <vector>

#include "bench/Pictures.h"
#include "bench/Report.h"

namespace Bench {

/// Adds the workloads whose names begin with `only`: dxt1-NAME over the opaque pictures, dxt5-NAME over those
/// with alpha. Pictures with sides that are no multiples of four are left out.
void MeasureDxt(const std::vector<PixelPicture>& pictures, const std::string& only, CReport& report);

}  // namespace Bench
