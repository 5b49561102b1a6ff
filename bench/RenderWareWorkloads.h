#pragma once

// RenderWare files: listing and decoding a large dictionary, listing the textures of many models.

#include <string>

#include "bench/Report.h"

namespace Bench {

/// Workloads whose names begin with `only` (all when it is empty).
void MeasureRenderWare(const std::string& only, CReport& report);

}  // namespace Bench
