#include "plugins/pvrtc/FitKernels.h"

namespace Pvrtc {

const FitKernels* FitKernelsFor(Plugin::InstructionSet set)
{
    if (!Plugin::IsSupported(set))
        return nullptr;
    switch (set) {
        case Plugin::InstructionSet::Portable:
            return FitKernels_Portable();
        case Plugin::InstructionSet::Sse41:
            return FitKernels_Sse41();
        case Plugin::InstructionSet::Avx2:
            return FitKernels_Avx2();
    }
    return nullptr;
}

}  // namespace Pvrtc
