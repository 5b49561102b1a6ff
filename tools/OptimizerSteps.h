#pragma once

// The steps by which the optimizer goes through the list: the first of equal textures stays, the later ones
// become its aliases or are deleted. Pure but for the list that they work on and the progress that they
// report.

#include <cstdint>
#include <functional>

#include "base/Progress.h"
#include "tools/OptimizerList.h"

/// What a walk over the list asks of its owner.
struct OptimizerWalk {
    /// Called for each place before it is looked at; false stops the walk.
    std::function<bool(std::uint32_t place, std::uint32_t count)> at;
    /// Whether two places of one key are duplicates; all are where it is empty.
    std::function<bool(std::uint32_t kept, std::uint32_t duplicate)> isSame = {};
};

/// Makes later textures aliases of earlier ones with the same key. False when stopped.
bool MakeAliasesOfEqual(COptimizerList& list, const OptimizerWalk& walk);

/// Deletes later textures with the key of an earlier one. False when stopped.
bool DeleteEqual(COptimizerList& list, const OptimizerWalk& walk);
