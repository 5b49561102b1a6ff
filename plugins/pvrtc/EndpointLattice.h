#pragma once

// Which values the channels of an endpoint can have.

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

}  // namespace Pvrtc
