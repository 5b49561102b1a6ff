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
    /// With 4 bits per pixel: passes over the endpoints that try neighbouring values with all weights chosen
    /// anew.
    int polishes = 0;
    /// The final weights are chosen as in the rounds, not by trying.
    bool quickCodes = false;
};

class CLevelFit {
public:
    /// Throws std::bad_alloc.
    CLevelFit(CFitLevel& level, const FitKernels& kernels, Plugin::CRowTeam& team);

    /// From the pixels to the words at `destination`. Gives the same with any number of threads.
    void Run(const FitEffort& effort, std::uint8_t* destination);

private:
    void Seed();
    void RunFourBits(const FitEffort& effort);
    void RunTwoBits(const FitEffort& effort);
    void PunchThrough();
    void ChooseTwoBitWeights(Begin begin);
    void SolveRound(Choosing how);
    void EveryOtherRow(void (*kernel)(const LevelView& view, std::uint32_t row));
    void SumAndSweep(Choosing how);
    void Sweep();

    CFitLevel& m_rLevel;
    const LevelView& m_rView;
    const FitKernels& m_rKernels;
    Plugin::CRowTeam& m_rTeam;
    std::vector<std::vector<std::int32_t>> m_aScratch;  // one a member
};

}  // namespace Pvrtc
