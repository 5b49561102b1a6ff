#include "plugins/common/Lanes_Portable.h"

#define MAVREL_DXT_KERNELS kEncodeKernels_Portable
#include "plugins/dxt/EncodeKernels_Body.h"
