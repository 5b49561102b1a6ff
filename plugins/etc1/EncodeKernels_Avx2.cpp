// Compiled for its instruction set: nothing is to be included here that other files share, because the linker
// may keep this file's copy of a shared inline function for the whole program.
#ifdef MAVREL_VECTOR_KERNELS
#include "plugins/common/Lanes_Avx2.h"

#define MAVREL_ETC1_KERNELS kEncodeKernels_Avx2
#include "plugins/etc1/EncodeKernels_Body.h"
#endif
