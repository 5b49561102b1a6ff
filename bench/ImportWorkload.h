#pragma once

// Importing many pictures with two threads, against the same calls of the encoders alone on two threads.

#include "bench/Report.h"

namespace Bench {

void MeasureImport(CReport& report);

}  // namespace Bench
