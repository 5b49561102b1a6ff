#pragma once

// Opening a large database and listing its headers, against plain reads of the same bytes.

#include <filesystem>

#include "bench/Report.h"

namespace Bench {

void MeasureOpening(const std::filesystem::path& list, CReport& report);
void MeasureHeaders(const std::filesystem::path& list, CReport& report);
/// How much memory this program takes with the database open, measured in a new process: `self` is this
/// program's path, started with the arguments that PrintResidentGrowth answers to.
void MeasureMemory(const std::filesystem::path& self, const std::filesystem::path& list, CReport& report);

/// The new process's part: prints by how many KiB its resident memory grows when it opens the database.
/// `emptyKib` is what it had at its start.
int PrintResidentGrowth(const std::filesystem::path& list, long emptyKib);
/// Resident memory of this process in KiB; 0 when the system does not tell.
long ResidentKib();

}  // namespace Bench
