#pragma once

// How long the tree takes to show a large database.

#include "bench/Report.h"

namespace Bench {

/// Throws std::runtime_error when no window can be made.
void MeasureTree(CReport& report);

}  // namespace Bench
