#include "plugins/common/Lanes_Portable.h"

#define MAVREL_ETC1_KERNELS kEncodeKernels_Portable
#include "plugins/etc1/EncodeKernels_Body.h"
