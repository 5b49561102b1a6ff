#pragma once

// The block encoders at every level beside those of others, each against the speed of one of them in the same
// run: how quick, and how near the original.

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "bench/Pictures.h"
#include "bench/Report.h"

namespace Bench {

/// The workloads encode-FORMAT-ENCODER whose names begin with `only`. Formats without alpha take the opaque
/// pictures, the others those with alpha; pictures whose sides do not suit a format are left out. `table`,
/// when given, gets every row with all its figures as comma separated values. Throws std::runtime_error when
/// that file cannot be written.
void MeasureEncoding(const std::vector<PixelPicture>& pictures, const std::string& only,
                     const std::optional<std::filesystem::path>& table, CReport& report);

}  // namespace Bench
