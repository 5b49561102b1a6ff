#include "plugins/etc1/RowDecode.h"

namespace Etc1 {

Plugin::DecodeRowFn DecodeRowFor(Plugin::InstructionSet set)
{
    static constexpr Plugin::DecodeRowFn kKernels[] = {
        DecodeRow_Portable,
#ifdef MAVREL_VECTOR_KERNELS
        DecodeRow_Sse41,
        DecodeRow_Avx2,
#endif
    };
    return Plugin::KernelOf(set, kKernels);
}

}  // namespace Etc1
