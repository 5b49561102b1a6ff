#include "plugins/dxt/RowDecode.h"

namespace Dxt {

Plugin::DecodeRowFn DecodeRowFor(Variant variant, Plugin::InstructionSet set)
{
    static constexpr const DecodeKernels* kKernels[] = {
        &kDecodeKernels_Portable,
#ifdef MAVREL_VECTOR_KERNELS
        &kDecodeKernels_Sse41,
        &kDecodeKernels_Avx2,
#endif
    };
    const DecodeKernels& kernels = *Plugin::KernelOf(set, kKernels);
    switch (variant) {
        case Variant::Dxt1:
            return kernels.dxt1;
        case Variant::Dxt1Alpha:
            return kernels.dxt1Alpha;
        case Variant::Dxt3:
            return kernels.dxt3;
        case Variant::Dxt5:
            break;
    }
    return kernels.dxt5;
}

}  // namespace Dxt
