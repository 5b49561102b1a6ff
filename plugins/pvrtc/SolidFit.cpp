#include "plugins/pvrtc/SolidFit.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "plugins/pvrtc/EndpointLattice.h"
#include "plugins/pvrtc/Modulation.h"

namespace Pvrtc {
namespace {
using Color = std::array<int, 4>;

// The one colour of the picture; a channel that counts nowhere is 0.
std::optional<Color> SolidColor(const std::uint8_t* pixels, std::size_t count, bool hasAlpha)
{
    Color color{0, 0, 0, hasAlpha ? pixels[3] : 255};
    bool seen = false;
    for (std::size_t pixel = 0; pixel < count; ++pixel) {
        const std::uint8_t* const value = pixels + pixel * kPixelBytes;
        if (hasAlpha && value[3] != color[3])
            return std::nullopt;
        if (color[3] == 0)
            continue;
        const Color here{value[0], value[1], value[2], color[3]};
        if (seen && here != color)
            return std::nullopt;
        color = here;
        seen = true;
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

// A code that gives every pixel of a block the same weight.
struct Uniform {
    std::uint32_t code;
    std::uint8_t weight;
    std::uint32_t mode;
};

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

std::optional<BlockWord> SolidBlock(const std::uint8_t* pixels, std::size_t count, std::uint32_t bitsPerPixel,
                                    bool hasAlpha)
{
    const auto color = SolidColor(pixels, count, hasAlpha);
    if (!color)
        return std::nullopt;
    using enum EndpointForm;
    // The same two bits for every pixel; 0 and 3 are also the two single bits.
    constexpr Uniform kUniforms[] = {{0, 0, 0}, {1, 3, 0}, {2, 5, 0}, {3, 8, 0}, {1, 4, 1}};
    Solid best{{}, 0, std::numeric_limits<int>::max()};
    BlockWord word{};
    for (const Uniform& uniform : kUniforms) {
        // With 2 bits per pixel only the ends can be had at every pixel of a block.
        if (bitsPerPixel != 4 && uniform.weight != 0 && uniform.weight != kWeightScale)
            continue;
        for (const EndpointForm formA : {Opaque, Translucent}) {
            for (const EndpointForm formB : {Opaque, Translucent}) {
                if (!hasAlpha && (formA != Opaque || formB != Opaque))
                    continue;
                const Solid solid = SolidWith(*color, formA, formB, uniform.weight, hasAlpha);
                if (solid.error >= best.error)
                    continue;
                best = solid;
                word = {uniform.code * 0x55555555U, PackEndpoints(best.pair) | uniform.mode};
            }
        }
    }
    return word;
}

}  // namespace Pvrtc
