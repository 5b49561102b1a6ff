#pragma once

// Decoding every format, against a copy of the same output bytes.

#include <string>

#include "bench/Report.h"

namespace Bench {

/// Formats whose workload name, decode-FORMAT, begins with `only` (all when it is empty).
void MeasureDecoding(const std::string& only, CReport& report);

}  // namespace Bench
