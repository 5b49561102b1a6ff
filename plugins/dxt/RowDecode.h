#pragma once

// The decoding kernels: one row of whole blocks into four rows of pixels. The portable kernels are the
// definition; the others give the same bytes for every input. Functions only; nothing is owned.

#include "plugins/common/BlockLevel.h"
#include "plugins/common/InstructionSet.h"
#include "plugins/dxt/Dxt.h"

namespace Dxt {

struct DecodeKernels {
    Plugin::DecodeRowFn dxt1;
    Plugin::DecodeRowFn dxt1Alpha;
    Plugin::DecodeRowFn dxt3;
    Plugin::DecodeRowFn dxt5;
};

/// The kernel that decodes rows of blocks of this variant, of an instruction set that IsSupported() allows.
Plugin::DecodeRowFn DecodeRowFor(Variant variant, Plugin::InstructionSet set);

extern const DecodeKernels kDecodeKernels_Portable;
extern const DecodeKernels kDecodeKernels_Sse41;
extern const DecodeKernels kDecodeKernels_Avx2;

}  // namespace Dxt
