#include "plugins/pvrtc/EndpointPolish.h"

#include <algorithm>
#include <array>

#include "plugins/pvrtc/EndpointLattice.h"

namespace Pvrtc {
namespace {
constexpr int kReach = 3;
constexpr std::size_t kWindowPixels = 49;
constexpr std::size_t kCodes = 4;

using Errors = std::array<int, kCodes>;

struct WindowPixel {
    std::array<int, 8> sums;  ///< of A and B in sixteenths, before the bits are replicated
    int share;                ///< sixteenths of this block's endpoints
    const std::uint8_t* target;
    bool punchThrough;
    std::array<bool, 4> counts;
    std::array<Errors, 4> errors;  ///< of each channel with each code
    Errors total;                  ///< over the channels
    int least;                     ///< of the total
};

/// The pixels that the endpoints of one block reach.
class CPolishWindow {
public:
    CPolishWindow(const EncodeState& state, std::uint32_t column, std::uint32_t row)
    {
        const Neighbourhood blocks = NeighboursOf(state.endpoints.data(), state.grid, column, row);
        const std::size_t width = state.grid.PaddedWidth();
        const std::size_t height = state.grid.PaddedHeight();
        std::size_t i = 0;
        for (int dy = -kReach; dy <= kReach; ++dy) {
            for (int dx = -kReach; dx <= kReach; ++dx) {
                const std::size_t y =
                    (std::size_t{row} * 4 + 2 + static_cast<std::size_t>(dy)) & (height - 1);
                const std::size_t x =
                    (std::size_t{column} * 4 + 2 + static_cast<std::size_t>(dx)) & (width - 1);
                const ModulationMode mode = state.modulation.modes[y / 4 * state.grid.columns + x / 4];
                const std::size_t pixel = y * width + x;
                const std::uint8_t importance = state.importance[pixel];
                const bool color = (importance & kColorCounts) != 0;
                WindowPixel& out = m_aPixels[i++];
                out.target = state.Target(pixel);
                out.punchThrough = mode == ModulationMode::PunchThrough;
                out.counts = {color, color, color, (importance & kAlphaCounts) != 0};
                Place(blocks, dx, dy, out);
                Evaluate(out);
            }
        }
    }

    /// Moves channel c of A by `a` and of B by `b` when that lowers the error; tells whether it did.
    bool Move(std::size_t c, int a, int b)
    {
        std::array<Errors, kWindowPixels> moved;
        int gain = 0;
        for (std::size_t i = 0; i < kWindowPixels; ++i) {
            const WindowPixel& pixel = m_aPixels[i];
            moved[i] =
                ErrorsOf(pixel, c, pixel.sums[c] + a * pixel.share, pixel.sums[c + 4] + b * pixel.share);
            int least = pixel.total[0] - pixel.errors[c][0] + moved[i][0];
            for (std::size_t code = 1; code < kCodes; ++code)
                least = std::min(least, pixel.total[code] - pixel.errors[c][code] + moved[i][code]);
            gain += pixel.least - least;
        }
        if (gain <= 0)
            return false;
        for (std::size_t i = 0; i < kWindowPixels; ++i) {
            WindowPixel& pixel = m_aPixels[i];
            pixel.sums[c] += a * pixel.share;
            pixel.sums[c + 4] += b * pixel.share;
            for (std::size_t code = 0; code < kCodes; ++code)
                pixel.total[code] += moved[i][code] - pixel.errors[c][code];
            pixel.errors[c] = moved[i];
            pixel.least = *std::min_element(pixel.total.begin(), pixel.total.end());
        }
        return true;
    }

private:
    static void Place(const Neighbourhood& blocks, int dx, int dy, WindowPixel& out)
    {
        const int farX = dx < 0 ? -dx : dx;
        const int farY = dy < 0 ? -dy : dy;
        const std::size_t besideX = dx < 0 ? 0 : 2;
        const std::size_t besideY = dy < 0 ? 0 : 6;
        for (std::size_t c = 0; c < 8; ++c) {
            const int own = (*blocks[4])[c] * (4 - farY) + (*blocks[besideY + 1])[c] * farY;
            const int beside =
                (*blocks[3 + besideX])[c] * (4 - farY) + (*blocks[besideY + besideX])[c] * farY;
            out.sums[c] = own * (4 - farX) + beside * farX;
        }
        out.share = (4 - farX) * (4 - farY);
    }

    static Errors ErrorsOf(const WindowPixel& pixel, std::size_t c, int sumA, int sumB)
    {
        Errors errors{};
        if (!pixel.counts[c])
            return errors;
        const int a = c == 3 ? sumA + (sumA >> 4) : (sumA >> 1) + (sumA >> 6);
        const int b = c == 3 ? sumB + (sumB >> 4) : (sumB >> 1) + (sumB >> 6);
        const int target = pixel.target[c];
        const int lower = pixel.punchThrough ? 4 : 3;
        const int upper = pixel.punchThrough ? 4 : 5;
        const std::array<int, kCodes> values{a, (a * (8 - lower) + b * lower) / kWeightScale,
                                             (a * (8 - upper) + b * upper) / kWeightScale, b};
        for (std::size_t code = 0; code < kCodes; ++code)
            errors[code] = (values[code] - target) * (values[code] - target);
        if (c == 3 && pixel.punchThrough)
            errors[2] = target * target;
        return errors;
    }

    static void Evaluate(WindowPixel& pixel)
    {
        pixel.total = {};
        for (std::size_t c = 0; c < 4; ++c) {
            pixel.errors[c] = ErrorsOf(pixel, c, pixel.sums[c], pixel.sums[c + 4]);
            for (std::size_t code = 0; code < kCodes; ++code)
                pixel.total[code] += pixel.errors[c][code];
        }
        pixel.least = *std::min_element(pixel.total.begin(), pixel.total.end());
    }

    std::array<WindowPixel, kWindowPixels> m_aPixels;
};

EndpointForm FormOf(std::int16_t alpha)
{
    return alpha == 15 ? EndpointForm::Opaque : EndpointForm::Translucent;
}

// The neighbouring value on the lattice, or the same at its end.
std::int16_t Stepped(Lattice lattice, std::int16_t value, int direction)
{
    const auto at = std::lower_bound(lattice.begin(), lattice.end(), value);
    if (direction < 0)
        return at == lattice.begin() ? value : *(at - 1);
    if (direction > 0)
        return at + 1 >= lattice.end() ? value : *(at + 1);
    return value;
}

struct Direction {
    int a;
    int b;
};

constexpr Direction kDirections[] = {{1, 0}, {-1, 0}, {0, 1}, {0, -1}, {1, 1}, {-1, -1}, {1, -1}, {-1, 1}};

void PolishBlock(EncodeState& state, std::uint32_t column, std::uint32_t row)
{
    CPolishWindow window(state, column, row);
    EndpointPair& pair = state.endpoints[std::size_t{row} * state.grid.columns + column];
    const std::size_t channels = state.hasAlpha ? 4 : 3;
    for (std::size_t c = 0; c < channels; ++c) {
        const Lattice latticeA = LatticeOf(FormOf(pair[3]), c);
        const Lattice latticeB = LatticeOf(FormOf(pair[7]), c + 4);
        for (const Direction& direction : kDirections) {
            const std::int16_t a = Stepped(latticeA, pair[c], direction.a);
            const std::int16_t b = Stepped(latticeB, pair[c + 4], direction.b);
            if (a == pair[c] && b == pair[c + 4])
                continue;
            if (window.Move(c, a - pair[c], b - pair[c + 4])) {
                pair[c] = a;
                pair[c + 4] = b;
            }
        }
    }
}
}  // namespace

void PolishEndpoints(EncodeState& state)
{
    for (std::uint32_t row = 0; row < state.grid.rows; ++row)
        for (std::uint32_t column = 0; column < state.grid.columns; ++column)
            PolishBlock(state, column, row);
}

}  // namespace Pvrtc
