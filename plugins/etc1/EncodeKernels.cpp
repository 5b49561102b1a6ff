#include "plugins/etc1/EncodeKernels.h"

namespace Etc1 {

const EncodeKernels& EncodeKernelsFor(Plugin::InstructionSet set)
{
    static constexpr const EncodeKernels* kKernels[] = {
        &kEncodeKernels_Portable,
#ifdef MAVREL_VECTOR_KERNELS
        &kEncodeKernels_Sse41,
        &kEncodeKernels_Avx2,
#endif
    };
    return *Plugin::KernelOf(set, kKernels);
}

}  // namespace Etc1
