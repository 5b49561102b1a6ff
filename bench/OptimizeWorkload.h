#pragma once

// Finding duplicate textures and making aliases of them: by digests against reading, hashing and writing
// once, and by differences against comparing every pair.

#include <string>

#include "bench/Report.h"

namespace Bench {

/// Runs those of the workloads "optimize-md5", "optimize-diff" and "optimize-diff-decoded" whose names begin
/// with `only`, or with which `only` begins.
void MeasureOptimizing(const std::string& only, CReport& report);

}  // namespace Bench
