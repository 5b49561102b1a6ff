#pragma once

// With 4 bits per pixel: endpoints are moved to neighbouring values where that lowers the exact error of the
// pixels they reach, all of whose weights are chosen anew for every value tried. Blocks of one line reach no
// pixel in common, so 16 are tried at a time. Included once by the kernels of every instruction set, after
// its lanes.

#include "plugins/pvrtc/FitKernels.h"
#include "plugins/pvrtc/PixelKernels.h"

namespace {
constexpr int kReach = 3;  // pixels to each side of the middle
constexpr int kReachSide = 2 * kReach + 1;
constexpr int kReached = kReachSide * kReachSide;
// Squares of hidden colours count as in the sums.
constexpr int kHiddenPolishShift = kHiddenShift / 2;

// What 16 blocks reach. Sums are those of the interpolation, in sixteenths of an endpoint's step.
template <int Channels>
struct Reach {
    CShorts endpoints[8];
    CShorts sums[8][kReached];
    CShorts target[Channels][kReached];
    CShorts squares[Channels][4][kReached];  // of what each code is off
    CShorts others[4][kReached];             // the same for all channels but the one that is moved
    PixelMasks masks[kReached];
};

constexpr int ReachShare(int pixel)
{
    const int x = pixel % kReachSide - kReach;
    const int y = pixel / kReachSide - kReach;
    return (4 - (x < 0 ? -x : x)) * (4 - (y < 0 ? -y : y));
}

// A line of blocks one column to the left (-1), the same, or one to the right (1).
struct LineBeside {
    std::size_t line;
    std::size_t element;
};

inline LineBeside BlocksBeside(const LevelView& view, const TileAt& at, int columns, int rows)
{
    const std::size_t row = (at.row + view.rows + static_cast<std::size_t>(rows + 1) - 1) & (view.rows - 1);
    const std::size_t element = kLinePad + at.tile * kLanes;
    if (columns == 0)
        return {view.Line(row, at.parity), element};
    // The block to the left of an even one is the odd one before.
    if (columns < 0)
        return {view.Line(row, 1 - at.parity), element - (1 - at.parity)};
    return {view.Line(row, 1 - at.parity), element + at.parity};
}

// Bytes of one pixel of 16 cells from planes that lie as [tile][plane][lane], for the cells at the blocks or
// to their left.
inline CShorts CellBytes(const LevelView& view, const TileAt& at, const std::uint8_t* planes,
                         std::size_t planesOfTile, std::size_t plane, bool left)
{
    const std::size_t parity = left ? 1 - at.parity : at.parity;
    const auto find = [&](std::size_t tile) {
        return planes + (view.Tile(at.row, parity, tile) * planesOfTile + plane) * kLanes;
    };
    const CShorts here = CShorts::LoadBytes(find(at.tile));
    if (!left || at.parity == 1)
        return here;
    const std::size_t before = at.tile == 0 ? view.pairs - 1 : at.tile * kLanes - 1;
    std::uint8_t bytes[kLanes + 1];
    here.StoreBytes(bytes + 1);
    bytes[0] = find(before / kLanes)[before % kLanes];
    return CShorts::LoadBytes(bytes);
}

template <int Channels>
inline void LoadReachSums(const LevelView& view, const TileAt& at, Reach<Channels>& reach)
{
    CShorts around[3][3];
    for (std::size_t e = 0; e < 8; ++e) {
        if ((e & 3) >= Channels)
            continue;
        for (int row = 0; row < 3; ++row) {
            for (int column = 0; column < 3; ++column) {
                const LineBeside beside = BlocksBeside(view, at, column - 1, row - 1);
                around[row][column] =
                    CShorts::Load(view.endpoints + (beside.line * 8 + e) * view.stride + beside.element);
            }
        }
        reach.endpoints[e] = around[1][1];
        for (int y = 0; y < kReachSide; ++y) {
            const int toBottom = (y + 1) % 4;
            const CShorts* const top = around[y < kReach ? 0 : 1];
            const CShorts* const bottom = around[y < kReach ? 1 : 2];
            CShorts across[3];
            for (int i = 0; i < 3; ++i)
                across[i] = top[i] * CShorts::All(4 - toBottom) + bottom[i] * CShorts::All(toBottom);
            for (int x = 0; x < kReachSide; ++x) {
                const int toRight = (x + 1) % 4;
                const int first = x < kReach ? 0 : 1;
                reach.sums[e][y * kReachSide + x] =
                    across[first] * CShorts::All(4 - toRight) + across[first + 1] * CShorts::All(toRight);
            }
        }
    }
}

// Where the punched flags of the block stand that owns a pixel: blocks reach from -2 to 1.
constexpr int OwnerOf(int position)
{
    return position < 1 ? -1 : position > 4 ? 1 : 0;
}

template <int Channels, bool Masked>
inline void LoadReachPixels(const LevelView& view, const TileAt& at, Reach<Channels>& reach)
{
    const std::size_t above = (at.row + view.rows - 1) & (view.rows - 1);
    for (int pixel = 0; pixel < kReached; ++pixel) {
        const int x = pixel % kReachSide;
        const int y = pixel / kReachSide;
        const TileAt cell{y < kReach ? above : at.row, at.parity, at.tile};
        const bool left = x < kReach;
        const auto plane = static_cast<std::size_t>((y + 1) % 4 * 4 + (x + 1) % 4);
        for (std::size_t c = 0; c < Channels; ++c)
            reach.target[c][pixel] = CellBytes(view, cell, view.target, 16 * Channels, c * 16 + plane, left);
        if constexpr (Masked) {
            PixelMasks& masks = reach.masks[pixel];
            const CShorts counts = CellBytes(view, cell, view.colorCounts, 16, plane, left);
            masks.visible = counts > CShorts::All(Pvrtc::kHidden);
            masks.counted = counts > CShorts::All(0);
            if constexpr (Channels == 4) {
                masks.alpha = CellBytes(view, cell, view.alphaCounts, 16, plane, left) > CShorts::All(0);
                const LineBeside owner = BlocksBeside(view, at, OwnerOf(x), OwnerOf(y));
                masks.punched = CShorts::Load(view.punched + owner.line * view.stride + owner.element);
            }
        }
    }
}

struct SquaresOfCodes {
    CShorts code[4];
};

// What one channel of a pixel is off with each code, when its endpoints' sums are these.
template <int Channels, bool Masked, bool Alpha>
[[gnu::always_inline]] inline SquaresOfCodes SquaresFor(const Reach<Channels>& reach, int channel, int pixel,
                                                        CShorts sumA, CShorts sumB)
{
    const CShorts a = EightBits<4, Alpha>(sumA);
    const CShorts difference = EightBits<4, Alpha>(sumB) - a;
    const CShorts eighths = ShiftLeft<3>(a);
    CShorts values[4] = {a, ShiftRight<3>(eighths + difference * CShorts::All(3)),
                         ShiftRight<3>(eighths + difference * CShorts::All(5)), a + difference};
    if constexpr (Channels == 4) {
        const CShorts half = ShiftRight<3>(eighths + ShiftLeft<2>(difference));
        const CShorts punched = reach.masks[pixel].punched;
        values[1] = Select(punched, half, values[1]);
        values[2] = Select(punched, Alpha ? CShorts::All(0) : half, values[2]);
    }
    SquaresOfCodes squares;
    for (int code = 0; code < 4; ++code) {
        CShorts off = reach.target[channel][pixel] - values[code];
        if constexpr (Masked && Alpha)
            off = off & reach.masks[pixel].alpha;
        else if constexpr (Masked)
            off = Lessened<kHiddenPolishShift>(reach.masks[pixel], off);
        squares.code[code] = off * off;
    }
    return squares;
}

template <int Channels, bool Masked, bool Alpha>
inline void StoreSquaresOf(Reach<Channels>& reach, int channel)
{
    for (int pixel = 0; pixel < kReached; ++pixel) {
        const SquaresOfCodes squares = SquaresFor<Channels, Masked, Alpha>(
            reach, channel, pixel, reach.sums[channel][pixel], reach.sums[channel + 4][pixel]);
        for (int code = 0; code < 4; ++code)
            reach.squares[channel][code][pixel] = squares.code[code];
    }
}

template <int Channels>
inline void SumOthers(Reach<Channels>& reach, int channel)
{
    for (int code = 0; code < 4; ++code) {
        for (int pixel = 0; pixel < kReached; ++pixel) {
            CShorts sum = CShorts::All(0);
            for (int c = 0; c < Channels; ++c)
                if (c != channel)
                    sum = AddSaturated(sum, reach.squares[c][code][pixel]);
            reach.others[code][pixel] = sum;
        }
    }
}

// The error of all pixels when a channel's endpoints move so far.
template <int Channels, bool Masked, bool Alpha>
inline CInts ErrorOfMove(const Reach<Channels>& reach, int channel, CShorts moveA, CShorts moveB)
{
    CInts error = CInts::All(0);
    for (int pixel = 0; pixel < kReached; ++pixel) {
        const CShorts share = CShorts::All(ReachShare(pixel));
        const SquaresOfCodes squares = SquaresFor<Channels, Masked, Alpha>(
            reach, channel, pixel, reach.sums[channel][pixel] + moveA * share,
            reach.sums[channel + 4][pixel] + moveB * share);
        CShorts least = AddSaturated(squares.code[0], reach.others[0][pixel]);
        for (int code = 1; code < 4; ++code)
            least = SmallerUnsigned(least, AddSaturated(squares.code[code], reach.others[code][pixel]));
        error = AddUnsigned(error, least);
    }
    return error;
}

inline CShorts Within(CShorts value, int last)
{
    const CShorts notNegative = value & (value > CShorts::All(-1));
    return Select(notNegative > CShorts::All(last), CShorts::All(last), notNegative);
}

// The next value that can be stored, or the same at the end of the range.
template <int Channels>
inline CShorts NextValue(const Reach<Channels>& reach, int endpoint, int step)
{
    const CShorts value = reach.endpoints[endpoint];
    const CShorts by = CShorts::All(step);
    const int channel = endpoint & 3;
    const bool blueOfA = endpoint == 2;
    const CShorts index = Within(ShiftRight<1>(value) + by, 15);
    const CShorts four = ShiftLeft<1>(index) + ((index > CShorts::All(7)) & CShorts::All(1));
    const CShorts fine = blueOfA ? four : Within(value + by, 31);
    if constexpr (Channels == 3)
        return fine;
    const CShorts alpha = reach.endpoints[endpoint | 3];
    const CShorts opaque = alpha > CShorts::All(14);
    if (channel == 3)
        return Select(opaque, value, Within(value + ShiftLeft<1>(by), 14));
    const CShorts third = Within(ShiftRight<2>(value) + by, 7);
    const CShorts three = ShiftLeft<2>(third) + ShiftRight<1>(third);
    return Select(opaque, fine, blueOfA ? three : four);
}

// Moves one channel of both endpoints to the best of the neighbouring pairs of values.
template <int Channels, bool Masked, bool Alpha>
inline void PolishChannel(Reach<Channels>& reach, int channel)
{
    constexpr int kSteps[8][2] = {{1, 0}, {-1, 0}, {0, 1}, {0, -1}, {1, -1}, {-1, 1}, {1, 1}, {-1, -1}};
    const CShorts zero = CShorts::All(0);
    SumOthers(reach, channel);
    const CShorts startA = reach.endpoints[channel];
    const CShorts startB = reach.endpoints[channel + 4];
    CShorts bestA = zero;
    CShorts bestB = zero;
    CInts least = ErrorOfMove<Channels, Masked, Alpha>(reach, channel, zero, zero);
    for (const int(&step)[2] : kSteps) {
        const CShorts moveA = step[0] == 0 ? zero : NextValue(reach, channel, step[0]) - startA;
        const CShorts moveB = step[1] == 0 ? zero : NextValue(reach, channel + 4, step[1]) - startB;
        const CInts error = ErrorOfMove<Channels, Masked, Alpha>(reach, channel, moveA, moveB);
        const CShorts better = Greater(least, error);
        least = Smaller(least, error);
        bestA = Select(better, moveA, bestA);
        bestB = Select(better, moveB, bestB);
    }
    reach.endpoints[channel] = startA + bestA;
    reach.endpoints[channel + 4] = startB + bestB;
    for (int pixel = 0; pixel < kReached; ++pixel) {
        const CShorts share = CShorts::All(ReachShare(pixel));
        reach.sums[channel][pixel] = reach.sums[channel][pixel] + bestA * share;
        reach.sums[channel + 4][pixel] = reach.sums[channel + 4][pixel] + bestB * share;
    }
    StoreSquaresOf<Channels, Masked, Alpha>(reach, channel);
}

template <int Channels, bool Masked>
inline void PolishTile(const LevelView& view, const TileAt& at)
{
    Reach<Channels> reach;
    LoadReachSums<Channels>(view, at, reach);
    LoadReachPixels<Channels, Masked>(view, at, reach);
    for (int c = 0; c < 3; ++c)
        StoreSquaresOf<Channels, Masked, false>(reach, c);
    if constexpr (Channels == 4)
        StoreSquaresOf<Channels, Masked, true>(reach, 3);
    for (int c = 0; c < 3; ++c)
        PolishChannel<Channels, Masked, false>(reach, c);
    if constexpr (Channels == 4)
        PolishChannel<Channels, Masked, true>(reach, 3);
    const std::size_t start = view.Line(at.row, at.parity) * 8 * view.stride + kLinePad + at.tile * kLanes;
    for (std::size_t e = 0; e < 8; ++e)
        if ((e & 3) < Channels)
            reach.endpoints[e].Store(view.endpoints + start + e * view.stride);
}

template <int Channels, bool Masked>
inline void PolishRowAs(const LevelView& view, std::uint32_t row)
{
    for (std::size_t parity = 0; parity < 2; ++parity) {
        for (std::size_t tile = 0; tile < view.tiles; ++tile)
            PolishTile<Channels, Masked>(view, {row, parity, tile});
        for (std::size_t e = 0; e < 8; ++e) {
            std::int16_t* const line =
                view.endpoints + (view.Line(row, parity) * 8 + e) * view.stride + kLinePad;
            line[view.pairs] = line[0];
            line[-1] = line[view.pairs - 1];
        }
    }
}

void PolishRow(const LevelView& view, std::uint32_t row)
{
    if (view.channels == 4)
        PolishRowAs<4, true>(view, row);
    else if (view.masked)
        PolishRowAs<3, true>(view, row);
    else
        PolishRowAs<3, false>(view, row);
}

}  // namespace
