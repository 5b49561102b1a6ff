#pragma once

// Exporting a cache to PNG files, against a plain loop that writes the same pictures by libpng as it comes.

#include "bench/Report.h"

namespace Bench {

void MeasureExporting(CReport& report);

}  // namespace Bench
