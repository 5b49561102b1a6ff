#include "plugins/pvrtc/SolidFit.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <optional>

#include "plugins/pvrtc/EndpointLattice.h"

namespace Pvrtc {
namespace {
using Color = std::array<int, 4>;

// The one colour of the picture; a channel that counts nowhere is 0.
std::optional<Color> SolidColor(const EncodeState& state)
{
    Color color{};
    std::array<bool, 4> seen{};
    for (std::size_t pixel = 0; pixel < state.importance.size(); ++pixel) {
        for (std::size_t c = 0; c < 4; ++c) {
            const std::uint8_t counts = c == 3 ? kAlphaCounts : kColorCounts;
            if ((state.importance[pixel] & counts) == 0)
                continue;
            const int value = state.Target(pixel)[c];
            if (seen[c] && color[c] != value)
                return std::nullopt;
            color[c] = value;
            seen[c] = true;
        }
    }
    return color;
}

// What the decoder makes of an endpoint that all blocks share.
int Expanded(std::int16_t value, std::size_t channel)
{
    return channel == 3 ? value << 4 | value : value << 3 | value >> 2;
}

struct ChannelPair {
    std::int16_t a;
    std::int16_t b;
    int squaredError;
};

// Of equally good pairs the closest one, which suffers least when the texture is filtered.
ChannelPair BestPair(int wanted, std::size_t channel, Lattice latticeA, Lattice latticeB, int weight)
{
    ChannelPair best{};
    int least = std::numeric_limits<int>::max();
    for (const std::int16_t a : latticeA) {
        for (const std::int16_t b : latticeB) {
            const int value =
                (Expanded(a, channel) * (kWeightScale - weight) + Expanded(b, channel) * weight) /
                kWeightScale;
            const int error = (value - wanted) * (value - wanted);
            const int cost = error * 32 + std::abs(a - b);
            if (cost < least) {
                least = cost;
                best = {a, b, error};
            }
        }
    }
    return best;
}

struct Solid {
    EndpointPair pair;
    std::uint8_t weight;
    int error;
};

Solid SolidWith(const Color& color, EndpointForm formA, EndpointForm formB, std::uint8_t weight,
                bool hasAlpha)
{
    Solid solid{{}, weight, 0};
    for (std::size_t c = 0; c < 4; ++c) {
        const ChannelPair pair = BestPair(color[c], c, LatticeOf(formA, c), LatticeOf(formB, c + 4), weight);
        solid.pair[c] = pair.a;
        solid.pair[c + 4] = pair.b;
        if (c < 3 || hasAlpha)
            solid.error += pair.squaredError;
    }
    return solid;
}
}  // namespace

bool FitSolid(EncodeState& state)
{
    const auto color = SolidColor(state);
    if (!color)
        return false;
    using enum EndpointForm;
    Solid best{{}, 0, std::numeric_limits<int>::max()};
    for (const std::uint8_t weight : kWeights) {
        // With 2 bits per pixel only the ends can be had at every pixel of a block.
        if (state.grid.blockWidth != 4 && weight != 0 && weight != kWeightScale)
            continue;
        for (const EndpointForm formA : {Opaque, Translucent}) {
            for (const EndpointForm formB : {Opaque, Translucent}) {
                if (!state.hasAlpha && (formA != Opaque || formB != Opaque))
                    continue;
                const Solid solid = SolidWith(*color, formA, formB, weight, state.hasAlpha);
                if (solid.error < best.error)
                    best = solid;
            }
        }
    }
    std::fill(state.endpoints.begin(), state.endpoints.end(), best.pair);
    std::fill(state.modulation.weights.begin(), state.modulation.weights.end(), best.weight);
    std::fill(state.modulation.modes.begin(), state.modulation.modes.end(), ModulationMode::Plain);
    return true;
}

}  // namespace Pvrtc
