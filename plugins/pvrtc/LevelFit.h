#pragma once

// The encoder's loop: weights are chosen for the endpoints, endpoints are solved for the weights, in turn. It
// borrows the level, the kernels and the threads.

#include <cstdint>
#include <vector>

#include "plugins/common/RowTeam.h"
#include "plugins/pvrtc/FitLevel.h"

namespace Pvrtc {

/// How much is done.
struct FitEffort {
    int rounds;  ///< of weights and endpoints in turn, at least 1
    int sweeps;  ///< over the endpoints in each round, at least 1
    /// With 2 bits per pixel: the first round takes each pixel's own best weight, whether it can be stored or
    /// not.
    bool roughStart = false;
};

class CLevelFit {
public:
    /// Throws std::bad_alloc.
    CLevelFit(CFitLevel& level, const FitKernels& kernels, Plugin::CRowTeam& team);

    /// From the first guess to the final weights. Gives the same with any number of threads.
    void Run(const FitEffort& effort);

private:
    void ChooseWeights(Begin begin);
    void WantTwoBitWeights(Begin begin);
    void ChooseTwoBitWeights(Begin begin);
    void EveryOtherRow(void (*kernel)(const LevelView& view, std::uint32_t row));
    void SumAndSweep();
    void Sweep();

    const LevelView& m_rView;
    const FitKernels& m_rKernels;
    Plugin::CRowTeam& m_rTeam;
    std::vector<std::vector<std::int32_t>> m_aScratch;  // one a member
};

}  // namespace Pvrtc
