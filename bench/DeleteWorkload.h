#pragma once

// Deleting many textures of a large database in one batch, against rewriting each of its files once.

#include <filesystem>

#include "bench/Report.h"

namespace Bench {

/// `list` is that of WriteBigDatabase; it is copied, not changed.
void MeasureDeleting(const std::filesystem::path& list, CReport& report);

}  // namespace Bench
