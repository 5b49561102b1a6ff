#pragma once

// The encoders of the variants that the program reads but hardly ever writes, DXT1 with one-bit alpha and
// DXT3: block by block, without vectors. Pure: the same pixels always give the same bytes.

#include "plugins/dxt/Dxt.h"
#include "plugins/dxt/EncodeKernels.h"

namespace Dxt {

/// For Variant::Dxt1Alpha and Variant::Dxt3.
Plugin::EncodeRowFn BlockEncodeRowFor(Variant variant, Plugin::Quality quality);

}  // namespace Dxt
