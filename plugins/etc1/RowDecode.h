#pragma once

// The decoding kernel: one row of whole blocks into four rows of pixels. The portable kernel here is the
// definition; a faster one must give the same bytes for every input.

#include "plugins/common/BlockLevel.h"

namespace Etc1 {

/// The kernel that decodes rows of blocks.
Plugin::DecodeRowFn DecodeRow();

}  // namespace Etc1
