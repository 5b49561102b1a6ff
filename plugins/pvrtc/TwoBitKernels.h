#pragma once

// Kernels for the weights of 2 bits per pixel. A block either has one bit for every pixel, or stores every
// second weight and interpolates the rest from its own and its neighbours' stored weights, so weights cannot
// be chosen pixel by pixel: 16 blocks of a line, which do not touch each other, try all modes at a time.
// Included once by the kernels of every instruction set, after its lanes.

#include "plugins/pvrtc/FitKernels.h"
#include "plugins/pvrtc/PixelKernels.h"

namespace {
using Pvrtc::TwoBitMode;

// The weight that a pixel would like best is kept in quarters, a little beyond both ends.
constexpr int kWantedUnit = 4;
constexpr float kLeastWanted = -32;
constexpr float kMostWanted = 64;

inline CShorts NearestOfFour(CShorts wanted)
{
    return ((wanted > CShorts::All(6)) & CShorts::All(3)) + ((wanted > CShorts::All(16)) & CShorts::All(2)) +
           ((wanted > CShorts::All(26)) & CShorts::All(3));
}

inline CShorts NearestOfTwo(CShorts wanted)
{
    return (wanted > CShorts::All(16)) & CShorts::All(8);
}

template <typename Element>
inline void WrapPixelLine(Element* line, std::size_t pairs)
{
    line[pairs] = line[0];
    line[-1] = line[pairs - 1];
}

template <int Channels, bool Masked>
inline void WantTile(const LevelView& view, const TileAt& at, bool fresh)
{
    const std::size_t tile = view.Tile(at.row, at.parity, at.tile);
    const auto want = [&](std::size_t pixel, int x, int y, const PixelColors<Channels>& colors) {
        const PixelMasks masks = MasksOf<8, Channels, Masked>(view, tile, pixel);
        CShorts off[4] = {CShorts::All(0), CShorts::All(0), CShorts::All(0), CShorts::All(0)};
        CShorts difference[4] = {off[0], off[0], off[0], off[0]};
        for (int c = 0; c < Channels; ++c) {
            off[c] = ForChoice<Channels, Masked>(masks, c, colors.target[c] - colors.a[c]);
            difference[c] = ForChoice<Channels, Masked>(masks, c, colors.difference[c]);
        }
        const CInts along = Products(off[0], difference[0], off[1], difference[1]) +
                            Products(off[2], difference[2], off[3], difference[3]);
        const CInts length = Products(difference[0], difference[0], difference[1], difference[1]) +
                             Products(difference[2], difference[2], difference[3], difference[3]);
        const CShorts wanted = Ratio(along, length, kWantedUnit * 8, kLeastWanted, kMostWanted);
        const std::size_t row = (at.row * 4 + 2 + static_cast<std::size_t>(y)) & (view.rows * 4 - 1);
        const std::size_t phase = at.parity * 8 + 4 + static_cast<std::size_t>(x);
        const std::size_t to = view.PixelLine(row, phase % 16) + kLinePad + at.tile * kLanes + phase / 16;
        wanted.Store(view.wanted + to);
        Narrow(ShiftRight<5>(length)).Store(view.lengths + to);
        if (fresh)
            NearestOfFour(wanted).Store(view.weights + to);
    };
    ForTilePixels<8, Channels>(view, at, want);
}

// Phases 0 to 3 come from odd cells, shifted by one: their first element is found behind the last.
inline void FinishWantedRows(const LevelView& view, std::size_t row, bool fresh)
{
    for (std::size_t y = 0; y < 4; ++y) {
        for (std::size_t phase = 0; phase < 16; ++phase) {
            const std::size_t line =
                view.PixelLine((row * 4 + 2 + y) & (view.rows * 4 - 1), phase) + kLinePad;
            std::int16_t* const lines[3] = {view.wanted + line, view.lengths + line, view.weights + line};
            for (int i = 0; i < (fresh ? 3 : 2); ++i) {
                if (phase < 4)
                    lines[i][0] = lines[i][view.pairs];
                WrapPixelLine(lines[i], view.pairs);
            }
        }
    }
}

template <int Channels, bool Masked>
inline void WantRowsAs(const LevelView& view, std::uint32_t first, std::uint32_t end, bool fresh)
{
    for (std::uint32_t row = first; row < end; ++row) {
        for (std::size_t parity = 0; parity < 2; ++parity)
            for (std::size_t tile = 0; tile < view.tiles; ++tile)
                WantTile<Channels, Masked>(view, {row, parity, tile}, fresh);
        FinishWantedRows(view, row, fresh);
    }
}

void WantRows(const LevelView& view, std::uint32_t first, std::uint32_t end, Begin begin)
{
    const bool fresh = begin == Begin::Fresh;
    if (view.channels == 4)
        WantRowsAs<4, true>(view, first, end, fresh);
    else if (view.masked)
        WantRowsAs<3, true>(view, first, end, fresh);
    else
        WantRowsAs<3, false>(view, first, end, fresh);
}

constexpr int kViewWidth = 12;
constexpr int kCurveWidth = 10;

constexpr int WeightIndex(int x, int y)
{
    return (y + 2) * kViewWidth + x + 2;
}
constexpr int CurveIndex(int x, int y)
{
    return (y + 1) * kCurveWidth + x + 1;
}
constexpr bool IsStoredAt(int x, int y)
{
    return ((x ^ y) & 1) == 0;
}
constexpr bool IsOneBitAt(int mode, int x, int y)
{
    return (x == 0 && y == 0) || (mode != int{TwoBitMode::kBoth} && x == 4 && y == 2);
}

// 16 blocks and the pixels around them.
struct BlockSurroundings {
    CShorts weights[kViewWidth * 8];
    CShorts wanted[kCurveWidth * 6];
    CShorts lengths[kCurveWidth * 6];
    CShorts interpolated[4];  // of the blocks to the left, right, above and below: any interpolating mode
    CShorts fromAll[4];       // mode kBoth
    CShorts fromSides[4];     // mode kHorizontal
    CShorts fromEnds[4];      // mode kVertical
};

inline std::ptrdiff_t PixelLineAt(const LevelView& view, const TileAt& at, int x, int y)
{
    const std::size_t row = (at.row * 4 + static_cast<std::size_t>(y + 4) - 4) & (view.rows * 4 - 1);
    const int phase = static_cast<int>(at.parity) * 8 + x;
    const auto line = static_cast<std::ptrdiff_t>(view.PixelLine(row, static_cast<std::size_t>(phase & 15)));
    return line + static_cast<std::ptrdiff_t>(kLinePad + at.tile * kLanes) + (phase >> 4);
}

inline void LoadModes(const LevelView& view, const TileAt& at, BlockSurroundings& out)
{
    const std::size_t above = (at.row + view.rows - 1) & (view.rows - 1);
    const std::size_t below = (at.row + 1) & (view.rows - 1);
    const std::size_t other = 1 - at.parity;
    const std::size_t element = kLinePad + at.tile * kLanes;
    const std::int16_t* const lines[4] = {
        view.modes + view.Line(at.row, other) * view.stride + element - other,
        view.modes + view.Line(at.row, other) * view.stride + element + at.parity,
        view.modes + view.Line(above, at.parity) * view.stride + element,
        view.modes + view.Line(below, at.parity) * view.stride + element};
    for (int i = 0; i < 4; ++i) {
        const CShorts mode = CShorts::Load(lines[i]);
        out.interpolated[i] = mode > CShorts::All(TwoBitMode::kPlain);
        out.fromEnds[i] = mode > CShorts::All(TwoBitMode::kHorizontal);
        out.fromSides[i] = (mode > CShorts::All(TwoBitMode::kBoth)) - out.fromEnds[i];
        out.fromAll[i] = out.interpolated[i] - (mode > CShorts::All(TwoBitMode::kBoth));
    }
}

inline void LoadSurroundings(const LevelView& view, const TileAt& at, BlockSurroundings& out)
{
    for (int y = -2; y < 6; ++y)
        for (int x = -2; x < 10; ++x)
            out.weights[WeightIndex(x, y)] = CShorts::Load(view.weights + PixelLineAt(view, at, x, y));
    for (int y = -1; y < 5; ++y) {
        for (int x = -1; x < 9; ++x) {
            out.wanted[CurveIndex(x, y)] = CShorts::Load(view.wanted + PixelLineAt(view, at, x, y));
            out.lengths[CurveIndex(x, y)] = CShorts::Load(view.lengths + PixelLineAt(view, at, x, y));
        }
    }
    LoadModes(view, at, out);
}

inline CShorts SquareOff(CShorts weight, CShorts wanted)
{
    const CShorts off = ShiftLeft<2>(weight) - wanted;
    return off * off;
}

// The weight between stored ones.
template <int Mode>
inline CShorts Between(const CShorts* at)
{
    const CShorts beside = at[-1] + at[1];
    const CShorts ends = at[-kViewWidth] + at[kViewWidth];
    if constexpr (Mode == TwoBitMode::kHorizontal)
        return ShiftRight<1>(beside + CShorts::All(1));
    if constexpr (Mode == TwoBitMode::kVertical)
        return ShiftRight<1>(ends + CShorts::All(1));
    return ShiftRight<2>(beside + ends + CShorts::All(2));
}

// The same for a pixel of a neighbouring block, whose mode differs from lane to lane.
inline CShorts BetweenOf(const BlockSurroundings& blocks, int neighbour, const CShorts* at)
{
    const CShorts sides = Between<TwoBitMode::kHorizontal>(at);
    const CShorts ends = Between<TwoBitMode::kVertical>(at);
    const CShorts all = Between<TwoBitMode::kBoth>(at);
    return Select(blocks.fromAll[neighbour], all, Select(blocks.fromSides[neighbour], sides, ends));
}

// A pixel that takes part of a stored weight: its length, and the square of what it is off.
struct Reached {
    CShorts length;
    CShorts square;
};

constexpr int kStepX[4] = {-1, 1, 0, 0};
constexpr int kStepY[4] = {0, 0, -1, 1};

template <int Mode>
inline Reached ReachedBy(const BlockSurroundings& blocks, int x, int y, int direction)
{
    const int toX = x + kStepX[direction];
    const int toY = y + kStepY[direction];
    const CShorts* const at = blocks.weights + WeightIndex(toX, toY);
    const CShorts wanted = blocks.wanted[CurveIndex(toX, toY)];
    const CShorts length = blocks.lengths[CurveIndex(toX, toY)];
    if (toX < 0 || toX > 7 || toY < 0 || toY > 3) {
        const CShorts along = direction < 2 ? blocks.fromSides[direction] : blocks.fromEnds[direction];
        return {length & (along | blocks.fromAll[direction]),
                SquareOff(BetweenOf(blocks, direction, at), wanted)};
    }
    constexpr bool kSides = Mode == TwoBitMode::kBoth || Mode == TwoBitMode::kHorizontal;
    constexpr bool kEnds = Mode == TwoBitMode::kBoth || Mode == TwoBitMode::kVertical;
    if (direction < 2 ? !kSides : !kEnds)
        return {CShorts::All(0), CShorts::All(0)};
    return {length, SquareOff(Between<Mode>(at), wanted)};
}

// Gives a stored pixel the weight with the least error at itself and the pixels that take part of it.
template <int Mode>
inline void TakeBestWeight(BlockSurroundings& blocks, int x, int y)
{
    constexpr int kCandidates[4] = {0, 3, 5, 8};
    CShorts& weight = blocks.weights[WeightIndex(x, y)];
    const CShorts wanted = blocks.wanted[CurveIndex(x, y)];
    const CShorts length = blocks.lengths[CurveIndex(x, y)];
    const int step = IsOneBitAt(Mode, x, y) ? 3 : 1;
    CShorts best = CShorts::All(0);
    CInts least = CInts::All(0);
    for (int i = 0; i < 4; i += step) {
        const CShorts candidate = CShorts::All(kCandidates[i]);
        weight = candidate;
        const Reached left = ReachedBy<Mode>(blocks, x, y, 0);
        const Reached right = ReachedBy<Mode>(blocks, x, y, 1);
        const Reached up = ReachedBy<Mode>(blocks, x, y, 2);
        const Reached down = ReachedBy<Mode>(blocks, x, y, 3);
        const CInts error = Products(left.length, left.square, right.length, right.square) +
                            Products(up.length, up.square, down.length, down.square) +
                            Products(length, SquareOff(candidate, wanted), length, CShorts::All(0));
        if (i == 0) {
            least = error;
            continue;
        }
        best = Select(Greater(least, error), candidate, best);
        least = Smaller(least, error);
    }
    weight = best;
}

// Error of the pixels of neighbouring blocks that depend on the stored weights of these.
inline CInts ErrorAround(const BlockSurroundings& blocks)
{
    CInts error = CInts::All(0);
    const CShorts none = CShorts::All(0);
    for (int direction = 0; direction < 4; ++direction) {
        const bool beside = direction < 2;
        const int fixed = direction == 0 || direction == 2 ? -1 : beside ? 8 : 4;
        for (int i = 0; i < (beside ? 4 : 8); ++i) {
            const int x = beside ? fixed : i;
            const int y = beside ? i : fixed;
            if (IsStoredAt(x, y))
                continue;
            const CShorts value = BetweenOf(blocks, direction, blocks.weights + WeightIndex(x, y));
            const CShorts square = SquareOff(value, blocks.wanted[CurveIndex(x, y)]);
            error = error + Products(blocks.lengths[CurveIndex(x, y)] & blocks.interpolated[direction],
                                     square, none, none);
        }
    }
    return error;
}

// Chooses all weights of the blocks for a mode; returns their error.
template <int Mode>
inline CInts TryMode(BlockSurroundings& blocks, CShorts modeBefore)
{
    // Weights of the same kind of block are a better start than each pixel's own wish.
    const CShorts keep = (modeBefore > CShorts::All(Mode - 1)) & (CShorts::All(Mode + 1) > modeBefore);
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 8; ++x) {
            CShorts& weight = blocks.weights[WeightIndex(x, y)];
            const CShorts wanted = blocks.wanted[CurveIndex(x, y)];
            if constexpr (Mode == TwoBitMode::kPlain)
                weight = NearestOfTwo(wanted);
            else if (IsStoredAt(x, y))
                weight = Select(keep, weight,
                                IsOneBitAt(Mode, x, y) ? NearestOfTwo(wanted) : NearestOfFour(wanted));
        }
    }
    CInts error = CInts::All(0);
    if constexpr (Mode != TwoBitMode::kPlain)
        for (int y = 0; y < 4; ++y)
            for (int x = y & 1; x < 8; x += 2)
                TakeBestWeight<Mode>(blocks, x, y);
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 8; x += 2) {
            CShorts square[2];
            for (int i = 0; i < 2; ++i) {
                const CShorts* const at = blocks.weights + WeightIndex(x + i, y);
                CShorts value = *at;
                if (Mode != TwoBitMode::kPlain && !IsStoredAt(x + i, y))
                    value = Between<Mode>(at);
                square[i] = SquareOff(value, blocks.wanted[CurveIndex(x + i, y)]);
            }
            error = error + Products(blocks.lengths[CurveIndex(x, y)], square[0],
                                     blocks.lengths[CurveIndex(x + 1, y)], square[1]);
        }
    }
    return error + ErrorAround(blocks);
}

struct BestBlocks {
    CShorts weights[32];
    CShorts mode;
    CInts error;
};

inline void KeepBetter(const BlockSurroundings& blocks, int mode, CInts error, BestBlocks& best)
{
    const CShorts better = Greater(best.error, error);
    best.error = Smaller(best.error, error);
    best.mode = Select(better, CShorts::All(mode), best.mode);
    for (int i = 0; i < 32; ++i)
        best.weights[i] = Select(better, blocks.weights[WeightIndex(i % 8, i / 8)], best.weights[i]);
}

template <int Mode>
inline void TryAnother(const BlockSurroundings& start, CShorts modeBefore, BestBlocks& best)
{
    BlockSurroundings blocks = start;
    const CInts error = TryMode<Mode>(blocks, modeBefore);
    KeepBetter(blocks, Mode, error, best);
}

void ChooseRow(const LevelView& view, std::uint32_t row)
{
    for (std::size_t parity = 0; parity < 2; ++parity) {
        std::int16_t* const modes = view.modes + view.Line(row, parity) * view.stride + kLinePad;
        for (std::size_t tile = 0; tile < view.tiles; ++tile) {
            const TileAt at{row, parity, tile};
            BlockSurroundings start;
            LoadSurroundings(view, at, start);
            const CShorts before = CShorts::Load(modes + tile * kLanes);
            BestBlocks best;
            best.mode = before;
            best.error = CInts::All(0x7FFFFFFF);
            for (CShorts& weight : best.weights)
                weight = CShorts::All(0);
            TryAnother<TwoBitMode::kPlain>(start, before, best);
            TryAnother<TwoBitMode::kBoth>(start, before, best);
            TryAnother<TwoBitMode::kHorizontal>(start, before, best);
            TryAnother<TwoBitMode::kVertical>(start, before, best);
            best.mode.Store(modes + tile * kLanes);
            for (int i = 0; i < 32; ++i)
                best.weights[i].Store(view.weights + PixelLineAt(view, at, i % 8, i / 8));
        }
        WrapPixelLine(modes, view.pairs);
        for (std::size_t y = 0; y < 4; ++y)
            for (std::size_t x = 0; x < 8; ++x)
                WrapPixelLine(view.weights + view.PixelLine(row * 4 + y, parity * 8 + x) + kLinePad,
                              view.pairs);
    }
}

// Computes the weights that interpolating blocks do not store.
void FillRows(const LevelView& view, std::uint32_t first, std::uint32_t end)
{
    for (std::uint32_t row = first; row < end; ++row) {
        for (std::size_t parity = 0; parity < 2; ++parity) {
            for (std::size_t tile = 0; tile < view.tiles; ++tile) {
                const TileAt at{row, parity, tile};
                const CShorts mode = CShorts::Load(view.modes + view.Line(row, parity) * view.stride +
                                                   kLinePad + tile * kLanes);
                const CShorts interpolated = mode > CShorts::All(TwoBitMode::kPlain);
                const CShorts vertical = mode > CShorts::All(TwoBitMode::kHorizontal);
                const CShorts oneWay = mode > CShorts::All(TwoBitMode::kBoth);
                for (int y = 0; y < 4; ++y) {
                    for (int x = 1 - (y & 1); x < 8; x += 2) {
                        const auto weightAt = [&](int atX, int atY) {
                            return CShorts::Load(view.weights + PixelLineAt(view, at, atX, atY));
                        };
                        const CShorts sides = weightAt(x - 1, y) + weightAt(x + 1, y);
                        const CShorts ends = weightAt(x, y - 1) + weightAt(x, y + 1);
                        const CShorts one = ShiftRight<1>(Select(vertical, ends, sides) + CShorts::All(1));
                        const CShorts all = ShiftRight<2>(sides + ends + CShorts::All(2));
                        const CShorts value = Select(interpolated, Select(oneWay, one, all), weightAt(x, y));
                        value.Store(view.weights + PixelLineAt(view, at, x, y));
                    }
                }
            }
        }
        // Of the stored weights not even the repeated ones are written: other rows are reading them.
        for (std::size_t y = 0; y < 4; ++y)
            for (std::size_t phase = 1 - (y & 1); phase < 16; phase += 2)
                WrapPixelLine(view.weights + view.PixelLine(row * 4 + y, phase) + kLinePad, view.pairs);
    }
}

}  // namespace
