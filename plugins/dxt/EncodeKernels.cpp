#include "plugins/dxt/EncodeKernels.h"

namespace Dxt {

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

}  // namespace Dxt
