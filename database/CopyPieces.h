#pragma once

// Copies what a deletion leaves of a file, closed up, in few large reads and writes.

#include <span>

#include "base/File.h"
#include "database/DeletionPlan.h"

/// Writes the pieces of `source`, one behind the other, to `target` from `at` on. Both may be the same file
/// when every piece moves down. False on failure.
bool CopyPieces(const IFile& source, std::span<const MovedPiece> pieces, IFile& target, std::uint64_t at);
