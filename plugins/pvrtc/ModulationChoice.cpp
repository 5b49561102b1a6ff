#include "plugins/pvrtc/ModulationChoice.h"

namespace Pvrtc {

void ChooseModulation(EncodeState& state, ModulationStart start)
{
    if (state.grid.blockWidth == 4)
        ChooseFourBits(state);
    else
        ChooseTwoBits(state, start);
    UpdateResidual(state);
}

}  // namespace Pvrtc
