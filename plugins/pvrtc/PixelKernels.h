#pragma once

// Kernels over the pixels of cells: the colours between the endpoints, which pixels count, and the choice of
// weights. Included once by the kernels of every instruction set, after its lanes.

#include "plugins/pvrtc/FitKernels.h"

namespace {
using Pvrtc::Begin;
using Pvrtc::Choosing;
using Pvrtc::kLanes;
using Pvrtc::kLinePad;
using Pvrtc::kMatrixTerms;
using Pvrtc::LevelView;

constexpr int kMostPixels = 32;

template <int Width, bool Alpha>
inline CShorts EightBits(CShorts sum)
{
    constexpr int kExtra = Width == 8 ? 1 : 0;
    if constexpr (Alpha)
        return ShiftRight<kExtra>(sum) + ShiftRight<4 + kExtra>(sum);
    else
        return ShiftRight<1 + kExtra>(sum) + ShiftRight<6 + kExtra>(sum);
}

struct EndpointLines {
    const std::int16_t* topLeft;
    const std::int16_t* topRight;
    const std::int16_t* bottomLeft;
    const std::int16_t* bottomRight;
};

// The four blocks around the cells of a tile, channel 0.
inline EndpointLines LinesAround(const LevelView& view, std::size_t row, std::size_t parity, std::size_t tile)
{
    const std::size_t below = (row + 1) & (view.rows - 1);
    const std::size_t at = kLinePad + tile * kLanes;
    // The block to the right of an odd one is the next even one.
    const std::size_t right = at + parity;
    const std::size_t line = 8 * view.stride;
    return {view.endpoints + view.Line(row, parity) * line + at,
            view.endpoints + view.Line(row, 1 - parity) * line + right,
            view.endpoints + view.Line(below, parity) * line + at,
            view.endpoints + view.Line(below, 1 - parity) * line + right};
}

// One endpoint channel down the left and right side of the cells.
struct Sides {
    CShorts left;
    CShorts right;
    CShorts leftStep;
    CShorts rightStep;
};

template <int Channels>
inline void StartSides(const LevelView& view, const EndpointLines& lines, Sides* sides)
{
    for (std::size_t e = 0; e < 8; ++e) {
        if ((e & 3) >= Channels)
            continue;
        const std::size_t offset = e * view.stride;
        const CShorts topLeft = CShorts::Load(lines.topLeft + offset);
        const CShorts topRight = CShorts::Load(lines.topRight + offset);
        sides[e] = {ShiftLeft<2>(topLeft), ShiftLeft<2>(topRight),
                    CShorts::Load(lines.bottomLeft + offset) - topLeft,
                    CShorts::Load(lines.bottomRight + offset) - topRight};
    }
}

inline void NextRow(Sides& side)
{
    side.left = side.left + side.leftStep;
    side.right = side.right + side.rightStep;
}

// The colours of one pixel of every cell.
template <int Channels>
struct PixelColors {
    CShorts a[Channels];
    CShorts difference[Channels];  // B minus A
    CShorts target[Channels];
};

// Which of the pixels count. Colours that nobody sees count too, but little: where they compete with visible
// ones for an endpoint they give way, everywhere else they are kept.
struct PixelMasks {
    CShorts visible;  // the colour counts in full
    CShorts counted;  // the colour counts at all
    CShorts alpha;
    CShorts punched;  // of the block's mode
};

// Squares of hidden colours count a sixteenth in the endpoints, which visible pixels share, and a quarter in
// the choice of the pixel's own weight, where they compete with its alpha only.
constexpr int kHiddenShift = 4;
constexpr int kHiddenChoiceShift = 1;  // of the value that is squared

template <int Shift>
inline CShorts Lessened(const PixelMasks& masks, CShorts value)
{
    return Select(masks.visible, value, ShiftRight<Shift>(value) & masks.counted);
}

// A difference of a channel, as it counts when weights are chosen.
template <int Channels, bool Masked>
inline CShorts ForChoice(const PixelMasks& masks, int channel, CShorts value)
{
    if constexpr (!Masked)
        return value;
    if constexpr (Channels == 3)
        return value & masks.visible;
    return channel == 3 ? value & masks.alpha : Lessened<kHiddenChoiceShift>(masks, value);
}

struct Chosen {
    CShorts weight;
    CShorts code;
};

// The weight whose colour is nearest on the line from A to B.
template <int Channels, bool Masked>
[[gnu::always_inline]] inline Chosen ChooseByProjection(const PixelColors<Channels>& colors,
                                                        const PixelMasks& masks)
{
    const CShorts zero = CShorts::All(0);
    CShorts off[4] = {zero, zero, zero, zero};
    CShorts difference[4] = {zero, zero, zero, zero};
    for (int c = 0; c < Channels; ++c) {
        off[c] = ForChoice<Channels, Masked>(masks, c, colors.target[c] - colors.a[c]);
        difference[c] = ForChoice<Channels, Masked>(masks, c, colors.difference[c]);
    }
    const CInts along = Products(off[0], difference[0], off[1], difference[1]) +
                        Products(off[2], difference[2], off[3], difference[3]);
    const CInts length = Products(difference[0], difference[0], difference[1], difference[1]) +
                         Products(difference[2], difference[2], difference[3], difference[3]);
    const CInts sixteen = ShiftLeft<4>(along);
    const CInts three = length + ShiftLeft<1>(length);
    const CShorts beyondFirst = Greater(sixteen, three);
    const CShorts beyondMiddle = Greater(ShiftLeft<1>(along), length);
    const CShorts beyondLast = Greater(sixteen, ShiftLeft<4>(length) - three);
    const CShorts weight =
        (beyondFirst & CShorts::All(3)) + (beyondMiddle & CShorts::All(2)) + (beyondLast & CShorts::All(3));
    return {weight, zero - beyondFirst - beyondMiddle - beyondLast};
}

inline CShorts Blend(CShorts a, CShorts difference, CShorts weight)
{
    return ShiftRight<3>(ShiftLeft<3>(a) + difference * weight);
}

// Of the colour for a weight; `clear` lanes have alpha 0 whatever the endpoints are.
template <int Channels, bool Masked>
[[gnu::always_inline]] inline CInts ErrorWith(const PixelColors<Channels>& colors, const PixelMasks& masks,
                                              CShorts weight, CShorts clear)
{
    CShorts off[4] = {CShorts::All(0), CShorts::All(0), CShorts::All(0), CShorts::All(0)};
    for (int c = 0; c < Channels; ++c) {
        CShorts value = Blend(colors.a[c], colors.difference[c], weight);
        if (c == 3)
            value = Select(clear, CShorts::All(0), value);
        off[c] = ForChoice<Channels, Masked>(masks, c, colors.target[c] - value);
    }
    return Products(off[0], off[0], off[1], off[1]) + Products(off[2], off[2], off[3], off[3]);
}

// The code whose decoded colour is nearest, by trying all four.
template <int Channels, bool Masked>
inline Chosen ChooseByTrying(const PixelColors<Channels>& colors, const PixelMasks& masks)
{
    const CShorts zero = CShorts::All(0);
    CShorts weights[4] = {zero, CShorts::All(3), CShorts::All(5), CShorts::All(8)};
    if constexpr (Channels == 4) {
        weights[1] = weights[1] + (masks.punched & CShorts::All(1));
        weights[2] = weights[2] + masks.punched;
    }
    CInts least = ErrorWith<Channels, Masked>(colors, masks, weights[0], zero);
    Chosen best{zero, zero};
    for (int code = 1; code < 4; ++code) {
        const CShorts clear = code == 2 && Channels == 4 ? masks.punched : zero;
        const CInts error = ErrorWith<Channels, Masked>(colors, masks, weights[code], clear);
        const CShorts better = Greater(least, error);
        least = Smaller(least, error);
        best.weight = Select(better, weights[code], best.weight);
        best.code = Select(better, CShorts::All(code), best.code);
    }
    return best;
}

inline CShorts MaskOf(const std::uint8_t* bytes)
{
    return CShorts::LoadBytes(bytes) > CShorts::All(0);
}

struct TileAt {
    std::size_t row;
    std::size_t parity;
    std::size_t tile;
};

// With 2 bits per pixel weights stand in lines of their own, so that blocks and cells find them alike.
inline CShorts WeightAt(const LevelView& view, const TileAt& at, int x, int y)
{
    const std::size_t row = (at.row * 4 + 2 + static_cast<std::size_t>(y)) & (view.rows * 4 - 1);
    const std::size_t phase = at.parity * 8 + 4 + static_cast<std::size_t>(x);
    const std::size_t element = kLinePad + at.tile * kLanes + phase / 16;
    return CShorts::Load(view.weights + view.PixelLine(row, phase % 16) + element);
}

// Which of the four blocks around a cell owns a pixel.
inline CShorts PunchedAt(const LevelView& view, const TileAt& at, int x, int y)
{
    const std::size_t row = y < 2 ? at.row : (at.row + 1) & (view.rows - 1);
    const bool right = x >= static_cast<int>(view.blockWidth) / 2;
    const std::size_t parity = right ? 1 - at.parity : at.parity;
    const std::size_t element = kLinePad + at.tile * kLanes + (right ? at.parity : 0);
    return CShorts::Load(view.punched + view.Line(row, parity) * view.stride + element);
}

// Calls visit(pixel, x, y, colors) for the pixels of 16 cells.
template <int Width, int Channels, typename Visit>
inline void ForTilePixels(const LevelView& view, const TileAt& at, Visit visit)
{
    constexpr std::size_t kPixels = Width * 4;
    const std::uint8_t* const target =
        view.target + view.Tile(at.row, at.parity, at.tile) * Channels * kPixels * kLanes;
    Sides sides[8];
    StartSides<Channels>(view, LinesAround(view, at.row, at.parity, at.tile), sides);
    for (int y = 0; y < 4; ++y) {
        CShorts sums[8];
        CShorts steps[8];
        for (int c = 0; c < Channels; ++c) {
            for (int e = c; e < 8; e += 4) {
                steps[e] = sides[e].right - sides[e].left;
                sums[e] = ShiftLeft < Width == 8 ? 3 : 2 > (sides[e].left);
                NextRow(sides[e]);
            }
        }
        for (int x = 0; x < Width; ++x) {
            const std::size_t pixel = static_cast<std::size_t>(y * Width + x);
            PixelColors<Channels> colors;
            for (int c = 0; c < Channels; ++c) {
                const CShorts a = c == 3 ? EightBits<Width, true>(sums[c]) : EightBits<Width, false>(sums[c]);
                const CShorts b =
                    c == 3 ? EightBits<Width, true>(sums[c + 4]) : EightBits<Width, false>(sums[c + 4]);
                colors.a[c] = a;
                colors.difference[c] = b - a;
                colors.target[c] =
                    CShorts::LoadBytes(target + (static_cast<std::size_t>(c) * kPixels + pixel) * kLanes);
                sums[c] = sums[c] + steps[c];
                sums[c + 4] = sums[c + 4] + steps[c + 4];
            }
            visit(pixel, x, y, colors);
        }
    }
}

template <int Width, int Channels, bool Masked>
inline PixelMasks MasksOf(const LevelView& view, std::size_t tile, std::size_t pixel)
{
    constexpr std::size_t kPixels = Width * 4;
    PixelMasks masks{CShorts::All(-1), CShorts::All(-1), CShorts::All(-1), CShorts::All(0)};
    if constexpr (Masked) {
        const CShorts counts = CShorts::LoadBytes(view.colorCounts + (tile * kPixels + pixel) * kLanes);
        masks.visible = counts > CShorts::All(Pvrtc::kHidden);
        masks.counted = counts > CShorts::All(0);
    }
    if constexpr (Channels == 4)
        masks.alpha = MaskOf(view.alphaCounts + (tile * kPixels + pixel) * kLanes);
    return masks;
}

}  // namespace
