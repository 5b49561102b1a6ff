#include "plugins/etc1/RowDecode.h"

namespace Etc1 {

Plugin::DecodeRowFn DecodeRowFor(Plugin::InstructionSet set)
{
#ifdef MAVREL_VECTOR_KERNELS
    switch (set) {
        case Plugin::InstructionSet::Portable:
            break;
        case Plugin::InstructionSet::Sse41:
            return DecodeRow_Sse41;
        case Plugin::InstructionSet::Avx2:
            return DecodeRow_Avx2;
    }
#else
    static_cast<void>(set);
#endif
    return DecodeRow_Portable;
}

}  // namespace Etc1
