#include "plugins/dxt/RowDecode.h"

namespace Dxt {
namespace {
const DecodeKernels& KernelsFor(Plugin::InstructionSet set)
{
#ifdef MAVREL_VECTOR_KERNELS
    switch (set) {
        case Plugin::InstructionSet::Portable:
            break;
        case Plugin::InstructionSet::Sse41:
            return kDecodeKernels_Sse41;
        case Plugin::InstructionSet::Avx2:
            return kDecodeKernels_Avx2;
    }
#else
    static_cast<void>(set);
#endif
    return kDecodeKernels_Portable;
}
}  // namespace

Plugin::DecodeRowFn DecodeRowFor(Variant variant, Plugin::InstructionSet set)
{
    const DecodeKernels& kernels = KernelsFor(set);
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
