#pragma once

// Decoding every format, against a copy of the same output bytes; encoding every format at every quality
// level.

#include <string>
#include <vector>

#include "bench/Pictures.h"
#include "bench/Report.h"

namespace Bench {

/// Formats whose workload name begins with `only` (all when it is empty).
void MeasureDecoding(const std::string& only, CReport& report);
void MeasureEncoding(const std::vector<PixelPicture>& pictures, const std::string& only, CReport& report);

}  // namespace Bench
