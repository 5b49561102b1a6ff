#pragma once

// Which values the channels of an endpoint can have, and the best pair of such values for one channel of a
// block.

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace Pvrtc {

/// The values that one channel can have, ascending.
using Lattice = std::span<const std::int16_t>;

/// Whether an endpoint is stored with full colour or with alpha and less colour.
enum class EndpointForm { Opaque, Translucent };

/// The values of channel 0 to 3 of colour A, 4 to 7 of colour B.
Lattice LatticeOf(EndpointForm form, std::size_t channel);

/// The value nearest to `wanted`.
std::int16_t Nearest(Lattice lattice, float wanted);

/// Squared error of one channel as a function of changes a and b of the two endpoints:
///   aa * a * a + 2 * ab * a * b + bb * b * b - 2 * (ra * a + rb * b)
struct ChannelProblem {
    float aa;
    float ab;
    float bb;
    float ra;
    float rb;
    std::int16_t currentA;
    std::int16_t currentB;
};

struct ChannelChoice {
    std::int16_t a;
    std::int16_t b;
    float error;  ///< relative to staying at the current values
};

/// The best pair of values among those near the continuous optimum; `breadth` values to each side are looked
/// at.
ChannelChoice SolveChannel(const ChannelProblem& problem, Lattice latticeA, Lattice latticeB,
                           std::size_t breadth);

}  // namespace Pvrtc
