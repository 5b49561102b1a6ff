#include "plugins/pvrtc/SolidFit.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <span>

#include "plugins/pvrtc/EndpointLattice.h"
#include "plugins/pvrtc/Modulation.h"

namespace Pvrtc {
namespace {
using Color = std::array<int, 4>;

// The one colour of the picture.
std::optional<Color> SolidColor(const std::uint8_t* pixels, std::size_t count, bool hasAlpha)
{
    const Color color{pixels[0], pixels[1], pixels[2], hasAlpha ? pixels[3] : 255};
    for (std::size_t pixel = 1; pixel < count; ++pixel) {
        const std::uint8_t* const value = pixels + pixel * kPixelBytes;
        if (color != Color{value[0], value[1], value[2], hasAlpha ? value[3] : 255})
            return std::nullopt;
    }
    return color;
}

// What the decoder makes of an endpoint that all blocks share.
int Expanded(std::int16_t value, std::size_t channel)
{
    return channel == 3 ? value << 4 | value : value << 3 | value >> 2;
}

// Modulation that repeats in every block: so many of 32 pixels have each weight.
struct Repeated {
    struct Share {
        int pixels;
        int weight;
    };
    std::array<Share, 3> shares;
    std::uint32_t modulation;
    std::uint32_t mode;
    bool clear = false;  // alpha is 0 whatever the endpoints are
};

constexpr Repeated Uniform(int weight, std::uint32_t code, std::uint32_t mode, bool clear = false)
{
    return {{{{32, weight}, {0, 0}, {0, 0}}}, code * 0x55555555U, mode, clear};
}

// The same two bits for every pixel.
constexpr Repeated kFourBits[] = {Uniform(0, 0, 0), Uniform(3, 1, 0), Uniform(5, 2, 0),
                                  Uniform(8, 3, 0), Uniform(4, 1, 1), Uniform(4, 2, 1, true)};
// The same bit for every pixel; or the mean of all stored neighbours, where the first pixel of a block has
// weight 0 or 8 and passes a quarter of that on to four others.
constexpr Repeated kTwoBits[] = {Uniform(0, 0, 0),
                                 Uniform(8, 3, 0),
                                 {{{{27, 3}, {1, 0}, {4, 2}}}, 0x55555554U, 1},
                                 {{{{27, 3}, {1, 8}, {4, 4}}}, 0x55555556U, 1},
                                 {{{{27, 5}, {1, 0}, {4, 4}}}, 0xAAAAAAA8U, 1},
                                 {{{{27, 5}, {1, 8}, {4, 6}}}, 0xAAAAAAAAU, 1}};

constexpr std::size_t kUniformTwoBits = 2;

int SquaredError(int wanted, int a, int b, const Repeated& repeated)
{
    int error = 0;
    for (const Repeated::Share& share : repeated.shares) {
        if (share.pixels == 0)
            break;
        const int off = (a * (kWeightScale - share.weight) + b * share.weight) / kWeightScale - wanted;
        error += share.pixels * off * off;
    }
    return error;
}

struct ChannelPair {
    std::int16_t a;
    std::int16_t b;
    int squaredError;  // of 32 pixels
};

// Of equally good pairs the closest one, which suffers least when the texture is filtered.
ChannelPair BestPair(int wanted, std::size_t channel, Lattice latticeA, Lattice latticeB,
                     const Repeated& repeated)
{
    ChannelPair best{};
    int least = std::numeric_limits<int>::max();
    for (const std::int16_t a : latticeA) {
        for (const std::int16_t b : latticeB) {
            const bool clear = channel == 3 && repeated.clear;
            const int error =
                clear ? 32 * wanted * wanted
                      : SquaredError(wanted, Expanded(a, channel), Expanded(b, channel), repeated);
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
    EndpointPair pair{};
    int error = 0;
};

Solid SolidWith(const Color& color, EndpointForm formA, EndpointForm formB, const Repeated& repeated,
                bool hasAlpha)
{
    Solid solid;
    for (std::size_t c = 0; c < 4; ++c) {
        const ChannelPair pair =
            BestPair(color[c], c, LatticeOf(formA, c), LatticeOf(formB, c + 4), repeated);
        solid.pair[c] = pair.a;
        solid.pair[c + 4] = pair.b;
        if (c < 3 || hasAlpha)
            solid.error += pair.squaredError;
    }
    return solid;
}
}  // namespace

std::optional<BlockWord> SolidBlock(const std::uint8_t* pixels, const BlockGrid& grid, bool hasAlpha)
{
    const auto color = SolidColor(pixels, std::size_t{grid.width} * grid.height, hasAlpha);
    if (!color)
        return std::nullopt;
    // Of less than a block, the few pixels with other weights would be too many.
    const bool wholeBlocks = grid.width >= grid.blockWidth && grid.height >= kBlockHeight;
    const std::span<const Repeated> ofTwoBits(kTwoBits);
    const std::span<const Repeated> choice = grid.blockWidth == 4 ? std::span<const Repeated>(kFourBits)
                                             : wholeBlocks        ? ofTwoBits
                                                                  : ofTwoBits.first(kUniformTwoBits);
    using enum EndpointForm;
    int least = std::numeric_limits<int>::max();
    BlockWord word{};
    for (const Repeated& repeated : choice) {
        for (const EndpointForm formA : {Opaque, Translucent}) {
            for (const EndpointForm formB : {Opaque, Translucent}) {
                if (!hasAlpha && (formA != Opaque || formB != Opaque || repeated.clear))
                    continue;
                const Solid solid = SolidWith(*color, formA, formB, repeated, hasAlpha);
                if (solid.error >= least)
                    continue;
                least = solid.error;
                word = {repeated.modulation, PackEndpoints(solid.pair) | repeated.mode};
            }
        }
    }
    return word;
}

}  // namespace Pvrtc
