#include "plugins/pvrtc/FitKernels.h"

#ifdef MAVREL_VECTOR_KERNELS
#include "plugins/pvrtc/Lanes_Avx2.h"
// The kernels are written in terms of the lanes.
#include "plugins/pvrtc/DecodeKernels.h"
#include "plugins/pvrtc/PackKernels.h"
#include "plugins/pvrtc/PolishKernels.h"
#include "plugins/pvrtc/SeedKernels.h"
#include "plugins/pvrtc/SolveKernels.h"
#include "plugins/pvrtc/SpreadKernels.h"
#include "plugins/pvrtc/SumKernels.h"
#include "plugins/pvrtc/TwoBitKernels.h"

namespace Pvrtc {

const FitKernels* FitKernels_Avx2()
{
    static constexpr FitKernels kKernels{ScratchElements, SpreadLine, SeedRows, PunchRows, SumRows,
                                         SolveRow,        ApplyRows,  WantRows, ChooseRow, FillRows,
                                         CodeRows,        PolishRow,  PackRow,  DecodeRow};
    return &kKernels;
}

}  // namespace Pvrtc
#else
namespace Pvrtc {

const FitKernels* FitKernels_Avx2()
{
    return nullptr;
}

}  // namespace Pvrtc
#endif
