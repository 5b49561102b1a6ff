#include "plugins/pvrtc/FitKernels.h"

#ifdef MAVREL_VECTOR_KERNELS
#include "plugins/pvrtc/Lanes_Avx2.h"
// The kernels are written in terms of the lanes.
#include "plugins/pvrtc/CellKernels.h"
#include "plugins/pvrtc/DecodeKernels.h"
#include "plugins/pvrtc/SolveKernels.h"
#include "plugins/pvrtc/TwoBitKernels.h"
// The seeds are solved like changes.
#include "plugins/pvrtc/SeedKernels.h"

namespace Pvrtc {

const FitKernels* FitKernels_Avx2()
{
    static constexpr FitKernels kKernels{ScratchElements, SpreadLine, SeedRows,  PunchRows,
                                         SumRows,         SolveRow,   ApplyRows, WantRows,
                                         ChooseRow,       FillRows,   CodeRows,  DecodeRow};
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
