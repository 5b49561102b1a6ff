// Compiled for its instruction set: nothing is to be included here that other files share, because the linker
// may keep this file's copy of a shared inline function for the whole program.
#ifdef MAVREL_VECTOR_KERNELS
#include "plugins/common/Lanes_Sse41.h"

#define MAVREL_DXT_DECODE_KERNELS kDecodeKernels_Sse41
#include "plugins/dxt/RowDecode_Body.h"
#endif
