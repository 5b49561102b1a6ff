#pragma once

// The best modulation for endpoints that are held still.

#include "plugins/pvrtc/EncodeState.h"

namespace Pvrtc {

enum class ModulationStart {
    Fresh,    ///< nothing was chosen before
    Current,  ///< start from the modulation of the state
};

/// Chooses mode and weights of every block. With 4 bits per pixel the choice is the best there is, wherever
/// it starts. With 2 bits per pixel blocks share weights with their neighbours; each is chosen against what
/// its neighbours have at the moment, in rows, so further calls refine. The residual is exact afterwards.
void ChooseModulation(EncodeState& state, ModulationStart start);

/// The two halves of ChooseModulation, without the residual.
void ChooseFourBits(EncodeState& state);
void ChooseTwoBits(EncodeState& state, ModulationStart start);

}  // namespace Pvrtc
