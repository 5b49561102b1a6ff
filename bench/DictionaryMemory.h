#pragma once

// The memory that an import of a texture dictionary takes.

#include "bench/Report.h"

namespace Bench {

void MeasureDictionaryMemory(CReport& report);

}  // namespace Bench
