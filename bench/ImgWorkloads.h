#pragma once

// IMG archives: listing a large one, looking through its models, importing its dictionaries.

#include <string>

#include "bench/Report.h"

namespace Bench {

/// img-list, img-sync, img-import, img-work and img-memory; those whose names begin with `only`.
void MeasureArchives(const std::string& only, CReport& report);

}  // namespace Bench
