#pragma once

// How long the main window takes to show the next texture.

#include "bench/Report.h"

namespace Bench {

/// Starts the whole program with a database of its own and ends it again. Throws std::runtime_error when that
/// does not work.
void MeasureSelecting(CReport& report);

}  // namespace Bench
