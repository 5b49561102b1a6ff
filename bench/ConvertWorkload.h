#pragma once

// Converting a cache with two threads, against the same calls of decoder and encoder alone on two threads.

#include "bench/Report.h"

namespace Bench {

void MeasureConverting(CReport& report);

}  // namespace Bench
