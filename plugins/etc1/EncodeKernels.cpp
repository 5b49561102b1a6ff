#include "plugins/etc1/EncodeKernels.h"

namespace Etc1 {

const EncodeKernels& EncodeKernelsFor(Plugin::InstructionSet set)
{
#ifdef MAVREL_VECTOR_KERNELS
    switch (set) {
        case Plugin::InstructionSet::Portable:
            break;
        case Plugin::InstructionSet::Sse41:
            return kEncodeKernels_Sse41;
        case Plugin::InstructionSet::Avx2:
            return kEncodeKernels_Avx2;
    }
#else
    static_cast<void>(set);
#endif
    return kEncodeKernels_Portable;
}

}  // namespace Etc1
