#pragma once

// The encoding kernels: one row of whole blocks at a time, several blocks at once. They exist for every
// instruction set and give the same bytes with each. Functions only; nothing is owned.

#include "plugins/common/InstructionSet.h"
#include "plugins/common/LevelEncode.h"

namespace Etc1 {

/// By quality level, in the order of Plugin::Quality.
struct EncodeKernels {
    Plugin::EncodeRowFn encode[4];
};

/// The kernels of an instruction set that IsSupported() allows.
const EncodeKernels& EncodeKernelsFor(Plugin::InstructionSet set);

extern const EncodeKernels kEncodeKernels_Portable;
extern const EncodeKernels kEncodeKernels_Sse41;
extern const EncodeKernels kEncodeKernels_Avx2;

}  // namespace Etc1
