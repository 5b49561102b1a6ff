#pragma once

// The decoding kernels: one row of whole blocks into four rows of pixels. The portable kernels here are the
// definition; a faster one must give the same bytes for every input.

#include "plugins/common/BlockLevel.h"
#include "plugins/dxt/Dxt.h"

namespace Dxt {

/// The kernel that decodes rows of blocks of this variant.
Plugin::DecodeRowFn DecodeRowFor(Variant variant);

}  // namespace Dxt
