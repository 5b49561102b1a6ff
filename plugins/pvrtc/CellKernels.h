#pragma once

// Kernels over the pixels of cells: colours between the endpoints, the choice of weights, and the sums that
// become the normal equations. Included once by the kernels of every instruction set, after its lanes.

#include "plugins/pvrtc/FitKernels.h"

namespace {
using Pvrtc::Begin;
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

template <int Channels>
struct Chosen {
    CShorts weight;
    CShorts code;
};

// The weight whose colour is nearest on the line from A to B.
template <int Channels>
inline Chosen<Channels> ChooseByProjection(const PixelColors<Channels>& colors)
{
    const CShorts zero = CShorts::All(0);
    const CShorts off0 = colors.target[0] - colors.a[0];
    const CShorts off1 = colors.target[1] - colors.a[1];
    const CShorts off2 = colors.target[2] - colors.a[2];
    const CInts along = Products(off0, colors.difference[0], off1, colors.difference[1]) +
                        Products(off2, colors.difference[2], zero, zero);
    const CInts length =
        Products(colors.difference[0], colors.difference[0], colors.difference[1], colors.difference[1]) +
        Products(colors.difference[2], colors.difference[2], zero, zero);
    const CInts sixteen = ShiftLeft<4>(along);
    const CInts three = length + ShiftLeft<1>(length);
    const CShorts beyondFirst = Greater(sixteen, three);
    const CShorts beyondMiddle = Greater(ShiftLeft<1>(along), length);
    const CShorts beyondLast = Greater(sixteen, ShiftLeft<4>(length) - three);
    const CShorts weight =
        (beyondFirst & CShorts::All(3)) + (beyondMiddle & CShorts::All(2)) + (beyondLast & CShorts::All(3));
    return {weight, zero - beyondFirst - beyondMiddle - beyondLast};
}

struct PixelMasks {
    CShorts color;
    CShorts alpha;
    CShorts punched;  // of the block's mode
};

inline CShorts Blend(CShorts a, CShorts difference, CShorts weight)
{
    return ShiftRight<3>(ShiftLeft<3>(a) + difference * weight);
}

// The code whose decoded colour is nearest, by trying all four.
template <int Channels>
inline Chosen<Channels> ChooseByTrying(const PixelColors<Channels>& colors, const PixelMasks& masks,
                                       CInts& least)
{
    const CShorts zero = CShorts::All(0);
    const CShorts four = CShorts::All(4);
    const CShorts weights[4] = {zero, Select(masks.punched, four, CShorts::All(3)),
                                Select(masks.punched, four, CShorts::All(5)), CShorts::All(8)};
    Chosen<Channels> best{zero, zero};
    for (int code = 0; code < 4; ++code) {
        CShorts off[4] = {zero, zero, zero, zero};
        for (int c = 0; c < Channels; ++c) {
            CShorts value = Blend(colors.a[c], colors.difference[c], weights[code]);
            if (c == 3 && code == 2)
                value = Select(masks.punched, zero, value);
            off[c] = (colors.target[c] - value) & (c == 3 ? masks.alpha : masks.color);
        }
        const CInts error =
            Products(off[0], off[0], off[1], off[1]) + Products(off[2], off[2], off[3], off[3]);
        if (code == 0) {
            least = error;
            continue;
        }
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

// What a tile's pixels are worth to the sums.
template <int Channels, int Pixels>
struct TileResult {
    CShorts weight[Pixels];
    CShorts code[Pixels];
    CShorts residual[Channels][Pixels];
    CShorts colorMask[Pixels];
    CShorts alphaMask[Pixels];
};

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

enum class Choosing { ByProjection, ByTrying, Given };

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
    PixelMasks masks{CShorts::All(-1), CShorts::All(-1), CShorts::All(0)};
    if constexpr (Masked)
        masks.color = MaskOf(view.colorCounts + (tile * kPixels + pixel) * kLanes);
    if constexpr (Channels == 4)
        masks.alpha = MaskOf(view.alphaCounts + (tile * kPixels + pixel) * kLanes);
    return masks;
}

template <int Width, int Channels, bool Masked, Choosing How>
inline void TakeTile(const LevelView& view, const TileAt& at, TileResult<Channels, Width * 4>& out)
{
    const std::size_t tile = view.Tile(at.row, at.parity, at.tile);
    const auto take = [&](std::size_t pixel, int x, int y, const PixelColors<Channels>& colors) {
        PixelMasks masks = MasksOf<Width, Channels, Masked>(view, tile, pixel);
        if constexpr (Channels == 4)
            masks.punched = PunchedAt(view, at, x, y);
        Chosen<Channels> chosen;
        if constexpr (How == Choosing::ByProjection) {
            chosen = ChooseByProjection<Channels>(colors);
        } else if constexpr (How == Choosing::ByTrying) {
            CInts least = CInts::All(0);
            chosen = ChooseByTrying<Channels>(colors, masks, least);
        } else {
            chosen.weight = WeightAt(view, at, x, y);
            chosen.code = CShorts::All(0);
        }
        out.weight[pixel] = chosen.weight;
        out.code[pixel] = chosen.code;
        if constexpr (Masked)
            out.colorMask[pixel] = masks.color;
        if constexpr (Channels == 4) {
            // A punched-through pixel has alpha 0 whatever the endpoints are.
            const CShorts cut =
                (chosen.code > CShorts::All(1)) & (CShorts::All(3) > chosen.code) & masks.punched;
            out.alphaMask[pixel] = Select(cut, CShorts::All(0), masks.alpha);
        }
        for (int c = 0; c < Channels; ++c) {
            CShorts residual = colors.target[c] - Blend(colors.a[c], colors.difference[c], chosen.weight);
            if constexpr (Masked)
                residual = residual & (c == 3 ? out.alphaMask[pixel] : masks.color);
            out.residual[c][pixel] = residual;
        }
    };
    ForTilePixels<Width, Channels>(view, at, take);
}

// Sums of rows weighted by their nearness to the top, and to the bottom.
inline CInts TowardsTop(const CShorts* rows)
{
    return Products(rows[0], CShorts::All(4), rows[1], CShorts::All(3)) +
           Products(rows[2], CShorts::All(2), rows[3], CShorts::All(1));
}

inline CInts TowardsBottom(const CShorts* rows)
{
    return Products(rows[2], CShorts::All(2), rows[3], CShorts::All(3)) +
           Products(rows[1], CShorts::All(1), rows[1], CShorts::All(0));
}

struct CornerSums {
    CInts corner[4];  // top left, top right, bottom left, bottom right
};

// What is weighted may be -2040 to 2040.
template <int Width>
inline CornerSums TowardsCorners(const CShorts* values)
{
    constexpr int kHalves = Width / 4;
    CShorts plain[kHalves][4];
    CShorts falling[kHalves][4];  // weights 4, 3, 2, 1
    for (int half = 0; half < kHalves; ++half) {
        for (int y = 0; y < 4; ++y) {
            const CShorts* const row = values + y * Width + half * 4;
            CShorts sum = row[0];
            CShorts weighted = row[0];
            for (int x = 1; x < 4; ++x) {
                sum = sum + row[x];
                weighted = weighted + sum;
            }
            plain[half][y] = sum;
            falling[half][y] = weighted;
        }
    }
    CornerSums sums;
    if constexpr (Width == 4) {
        CShorts rising[4];
        for (int y = 0; y < 4; ++y)
            rising[y] = ShiftLeft<2>(plain[0][y]) - falling[0][y];
        sums.corner[0] = TowardsTop(falling[0]);
        sums.corner[1] = TowardsTop(rising);
        sums.corner[2] = TowardsBottom(falling[0]);
        sums.corner[3] = TowardsBottom(rising);
    } else {
        const CInts topPlain = TowardsTop(plain[0]);
        const CInts bottomPlain = TowardsBottom(plain[0]);
        sums.corner[0] = TowardsTop(falling[0]) + ShiftLeft<2>(topPlain) + TowardsTop(falling[1]);
        sums.corner[1] = ShiftLeft<3>(topPlain + TowardsTop(plain[1])) - sums.corner[0];
        sums.corner[2] = TowardsBottom(falling[0]) + ShiftLeft<2>(bottomPlain) + TowardsBottom(falling[1]);
        sums.corner[3] = ShiftLeft<3>(bottomPlain + TowardsBottom(plain[1])) - sums.corner[2];
    }
    return sums;
}

// Products of two shares: left with left, left with right, right with right; each top with top, top with
// bottom, bottom with bottom.
struct SquareSums {
    CInts term[9];
};

// What is weighted may be 0 to 64.
template <int Width>
inline SquareSums OverSquares(const CShorts* values)
{
    CShorts across[3][4];
    for (int y = 0; y < 4; ++y) {
        CShorts sum = values[y * Width];
        CShorts first = CShorts::All(0);
        CShorts second = CShorts::All(0);
        for (int x = 1; x < Width; ++x) {
            const CShorts value = values[y * Width + x];
            sum = sum + value;
            first = first + value * CShorts::All(x);
            second = second + value * CShorts::All(x * x);
        }
        across[0][y] = sum * CShorts::All(Width * Width) - first * CShorts::All(2 * Width) + second;
        across[1][y] = first * CShorts::All(Width) - second;
        across[2][y] = second;
    }
    SquareSums sums;
    for (int i = 0; i < 3; ++i) {
        const CShorts* const rows = across[i];
        sums.term[i * 3] = Products(rows[0], CShorts::All(16), rows[1], CShorts::All(9)) +
                           Products(rows[2], CShorts::All(4), rows[3], CShorts::All(1));
        sums.term[i * 3 + 1] = Products(rows[1], CShorts::All(3), rows[2], CShorts::All(4)) +
                               Products(rows[3], CShorts::All(3), rows[3], CShorts::All(0));
        sums.term[i * 3 + 2] = Products(rows[1], CShorts::All(1), rows[2], CShorts::All(4)) +
                               Products(rows[3], CShorts::All(9), rows[3], CShorts::All(0));
    }
    return sums;
}

// Where the sums of a line of cells are kept until their blocks are complete: for each channel the corners
// of the residual and of the residual times the weight, then the squares of the weight's powers 1, 2 and, if
// masked, 0, for the colours and for alpha.
template <int Channels, bool Masked>
struct SumLayout {
    static constexpr int kSquares = Channels * 8;
    static constexpr int kPowers = Masked ? 3 : 2;
    static constexpr int kAlphaSquares = kSquares + kPowers * 9;
    static constexpr int kQuantities = kAlphaSquares + (Channels == 4 ? kPowers * 9 : 0);
};

// Lines of scratch memory: [quantity][parity][element]
struct SumLines {
    std::int32_t* data;
    std::size_t stride;

    std::int32_t* At(int quantity, std::size_t parity) const
    {
        return data + (static_cast<std::size_t>(quantity) * 2 + parity) * stride + kLinePad;
    }
};

template <int Width, bool Masked>
inline void StoreSquares(const CShorts* weights, const CShorts* masks, int quantity, const SumLines& lines,
                         std::size_t parity, std::size_t element)
{
    constexpr int kPixels = Width * 4;
    CShorts power[kPixels];
    for (int i = 0; i < kPixels; ++i)
        power[i] = Masked ? weights[i] & masks[i] : weights[i];
    const SquareSums first = OverSquares<Width>(power);
    for (int i = 0; i < kPixels; ++i)
        power[i] = power[i] * power[i];
    const SquareSums second = OverSquares<Width>(power);
    for (int i = 0; i < 9; ++i) {
        first.term[i].Store(lines.At(quantity + i, parity) + element);
        second.term[i].Store(lines.At(quantity + 9 + i, parity) + element);
    }
    if constexpr (Masked) {
        for (int i = 0; i < kPixels; ++i)
            power[i] = masks[i] & CShorts::All(1);
        const SquareSums none = OverSquares<Width>(power);
        for (int i = 0; i < 9; ++i)
            none.term[i].Store(lines.At(quantity + 18 + i, parity) + element);
    }
}

// The last element of the odd cells is also the one before the first.
inline void WrapSums(const LevelView& view, const SumLines& lines, int quantities)
{
    for (int i = 0; i < quantities; ++i) {
        std::int32_t* const odd = lines.At(i, 1);
        odd[-1] = odd[view.pairs - 1];
    }
}

template <int Width, int Channels, bool Masked, Choosing How>
inline void SumCellRow(const LevelView& view, std::size_t row, const SumLines& lines)
{
    using Layout = SumLayout<Channels, Masked>;
    constexpr int kPixels = Width * 4;
    TileResult<Channels, kPixels> result;
    CShorts weighted[kPixels];
    for (std::size_t parity = 0; parity < 2; ++parity) {
        for (std::size_t tile = 0; tile < view.tiles; ++tile) {
            const std::size_t element = tile * kLanes;
            TakeTile<Width, Channels, Masked, How>(view, {row, parity, tile}, result);
            for (int c = 0; c < Channels; ++c) {
                const CornerSums plain = TowardsCorners<Width>(result.residual[c]);
                for (int i = 0; i < kPixels; ++i)
                    weighted[i] = result.residual[c][i] * result.weight[i];
                const CornerSums ofB = TowardsCorners<Width>(weighted);
                for (int i = 0; i < 4; ++i) {
                    plain.corner[i].Store(lines.At(c * 8 + i, parity) + element);
                    ofB.corner[i].Store(lines.At(c * 8 + 4 + i, parity) + element);
                }
            }
            StoreSquares<Width, Masked>(result.weight, result.colorMask, Layout::kSquares, lines, parity,
                                        element);
            if constexpr (Channels == 4)
                StoreSquares<Width, Masked>(result.weight, result.alphaMask, Layout::kAlphaSquares, lines,
                                            parity, element);
        }
    }
    WrapSums(view, lines, Layout::kQuantities);
}

// Elements of the cells whose corner a block is: the cell of the same number, and the one to its left.
struct OwnAndLeft {
    std::size_t parity;
    std::size_t own;
    std::size_t leftParity;
    std::ptrdiff_t left;
};

inline OwnAndLeft CellsOf(std::size_t parity, std::size_t element)
{
    // The cell to the left of an even one is the odd one before.
    return {parity, element, 1 - parity,
            static_cast<std::ptrdiff_t>(element) - (parity == 0 ? std::ptrdiff_t{1} : std::ptrdiff_t{0})};
}

// A quantity of the cells to the right, and of those to the left.
inline CFloats OwnSum(const SumLines& lines, int quantity, const OwnAndLeft& cells)
{
    return CFloats::LoadInts(lines.At(quantity, cells.parity) + cells.own);
}
inline CFloats LeftSum(const SumLines& lines, int quantity, const OwnAndLeft& cells)
{
    return CFloats::LoadInts(lines.At(quantity, cells.leftParity) + cells.left);
}

// One power of the weight in the matrix: itself, to the right, below, diagonal.
struct MatrixSums {
    CFloats term[4];
};

inline MatrixSums GatherSquares(const SumLines& above, const SumLines& here, int quantity,
                                const OwnAndLeft& cells)
{
    MatrixSums sums;
    sums.term[0] = OwnSum(here, quantity, cells) + LeftSum(here, quantity + 6, cells) +
                   OwnSum(above, quantity + 2, cells) + LeftSum(above, quantity + 8, cells);
    sums.term[1] = OwnSum(here, quantity + 3, cells) + OwnSum(above, quantity + 5, cells);
    sums.term[2] = OwnSum(here, quantity + 1, cells) + LeftSum(here, quantity + 7, cells);
    sums.term[3] = OwnSum(here, quantity + 4, cells);
    return sums;
}

// Without a mask, every pixel counts: the same sums for the weight's power 0.
template <int Width>
inline MatrixSums AllSquares()
{
    constexpr float kOwn = Width == 4 ? 44 : 344;
    constexpr float kNext = Width == 4 ? 10 : 84;
    return {CFloats::All(kOwn * 44), CFloats::All(kNext * 44), CFloats::All(kOwn * 10),
            CFloats::All(kNext * 10)};
}

// 8-bit values for a step of a colour channel and of alpha.
constexpr float kColorStep = 255.0F / 31;
constexpr float kAlphaStep = 17;

template <int Width, bool Masked>
inline void StoreMatrix(const SumLines& above, const SumLines& here, int quantity, const OwnAndLeft& cells,
                        float step, std::size_t stride, float* out)
{
    constexpr float kUnit = 1.0F / (Width * 4 * 8);
    const CFloats scale = CFloats::All(step * step * kUnit * kUnit);
    const MatrixSums first = GatherSquares(above, here, quantity, cells);
    const MatrixSums second = GatherSquares(above, here, quantity + 9, cells);
    MatrixSums none;
    if constexpr (Masked)
        none = GatherSquares(above, here, quantity + 18, cells);
    else
        none = AllSquares<Width>();
    for (std::size_t i = 0; i < 4; ++i) {
        const CFloats aa =
            none.term[i] * CFloats::All(64) - first.term[i] * CFloats::All(16) + second.term[i];
        const CFloats ab = first.term[i] * CFloats::All(8) - second.term[i];
        (aa * scale).Store(out + (i * 3) * stride);
        (ab * scale).Store(out + (i * 3 + 1) * stride);
        (second.term[i] * scale).Store(out + (i * 3 + 2) * stride);
    }
}

// The normal equations of a row of blocks, from the cells above and below its middles.
template <int Width, int Channels, bool Masked>
inline void FinishBlockRow(const LevelView& view, std::size_t row, const SumLines& above,
                           const SumLines& here)
{
    using Layout = SumLayout<Channels, Masked>;
    constexpr float kUnit = 1.0F / (Width * 4 * 8);
    const std::size_t stride = view.stride;
    for (std::size_t parity = 0; parity < 2; ++parity) {
        const std::size_t line = view.Line(row, parity);
        float* const missing = view.missing + line * 8 * stride + kLinePad;
        float* const matrix = view.matrix + line * kMatrixTerms * stride + kLinePad;
        for (std::size_t element = 0; element < view.pairs; element += 8) {
            const OwnAndLeft cells = CellsOf(parity, element);
            for (int c = 0; c < Channels; ++c) {
                const CFloats scale = CFloats::All((c == 3 ? kAlphaStep : kColorStep) * kUnit);
                const auto corners = [&](int quantity) {
                    return OwnSum(here, quantity, cells) + LeftSum(here, quantity + 1, cells) +
                           OwnSum(above, quantity + 2, cells) + LeftSum(above, quantity + 3, cells);
                };
                const CFloats plain = corners(c * 8);
                const CFloats ofB = corners(c * 8 + 4);
                const std::size_t channel = static_cast<std::size_t>(c);
                ((plain * CFloats::All(8) - ofB) * scale).Store(missing + channel * stride + element);
                (ofB * scale).Store(missing + (channel + 4) * stride + element);
            }
            StoreMatrix<Width, Masked>(above, here, Layout::kSquares, cells, kColorStep, stride,
                                       matrix + element);
            if constexpr (Channels == 4)
                StoreMatrix<Width, Masked>(
                    above, here, Layout::kAlphaSquares, cells, kAlphaStep, stride,
                    view.alphaMatrix + line * kMatrixTerms * stride + kLinePad + element);
        }
        for (std::size_t term = 0; term < kMatrixTerms; ++term) {
            matrix[term * stride - 1] = matrix[term * stride + view.pairs - 1];
            if constexpr (Channels == 4) {
                float* const alpha = view.alphaMatrix + (line * kMatrixTerms + term) * stride + kLinePad;
                alpha[-1] = alpha[view.pairs - 1];
            }
        }
    }
}

template <int Width, int Channels, bool Masked, Choosing How>
inline void SumRowsAs(const LevelView& view, std::uint32_t first, std::uint32_t end, std::int32_t* scratch,
                      Begin begin)
{
    constexpr std::size_t kQuantities = SumLayout<Channels, Masked>::kQuantities;
    const std::size_t size = kQuantities * 2 * view.stride;
    // The sums of a row of cells stay in the half of the scratch memory that its number chooses.
    const SumLines halves[2] = {{scratch, view.stride}, {scratch + size, view.stride}};
    if (begin == Begin::Fresh)
        SumCellRow<Width, Channels, Masked, How>(view, (first + view.rows - 1) & (view.rows - 1),
                                                 halves[(first + 1) & 1]);
    for (std::uint32_t row = first; row < end; ++row) {
        SumCellRow<Width, Channels, Masked, How>(view, row, halves[row & 1]);
        FinishBlockRow<Width, Channels, Masked>(view, row, halves[(row + 1) & 1], halves[row & 1]);
    }
}

// How much less error punching through would make in the quarters of the cells.
inline void CompareTile(const LevelView& view, const TileAt& at, const SumLines& lines)
{
    const std::size_t tile = view.Tile(at.row, at.parity, at.tile);
    CInts gain[4] = {CInts::All(0), CInts::All(0), CInts::All(0), CInts::All(0)};
    const auto compare = [&](std::size_t pixel, int x, int y, const PixelColors<4>& colors) {
        PixelMasks masks = MasksOf<4, 4, true>(view, tile, pixel);
        CInts plain = CInts::All(0);
        CInts punched = CInts::All(0);
        ChooseByTrying<4>(colors, masks, plain);
        masks.punched = CShorts::All(-1);
        ChooseByTrying<4>(colors, masks, punched);
        const int corner = y / 2 * 2 + x / 2;
        gain[corner] = gain[corner] + (plain - punched);
    };
    ForTilePixels<4, 4>(view, at, compare);
    for (int corner = 0; corner < 4; ++corner)
        gain[corner].Store(lines.At(corner, at.parity) + at.tile * kLanes);
}

inline void CompareCellRow(const LevelView& view, std::size_t row, const SumLines& lines)
{
    for (std::size_t parity = 0; parity < 2; ++parity)
        for (std::size_t tile = 0; tile < view.tiles; ++tile)
            CompareTile(view, {row, parity, tile}, lines);
    WrapSums(view, lines, 4);
}

void PunchRows(const LevelView& view, std::uint32_t first, std::uint32_t end, std::int32_t* scratch)
{
    SumLines above{scratch, view.stride};
    SumLines here{scratch + std::size_t{8} * view.stride, view.stride};
    CompareCellRow(view, (first + view.rows - 1) & (view.rows - 1), above);
    for (std::uint32_t row = first; row < end; ++row) {
        CompareCellRow(view, row, here);
        for (std::size_t parity = 0; parity < 2; ++parity) {
            std::int16_t* const punched = view.punched + view.Line(row, parity) * view.stride + kLinePad;
            for (std::size_t element = 0; element < view.pairs; element += 8) {
                const OwnAndLeft cells = CellsOf(parity, element);
                const CFloats gain = OwnSum(here, 0, cells) + LeftSum(here, 1, cells) +
                                     OwnSum(above, 2, cells) + LeftSum(above, 3, cells);
                SelectLess(CFloats::All(0), gain, CFloats::All(-1), CFloats::All(0))
                    .StoreShorts(punched + element);
            }
            punched[view.pairs] = punched[0];
        }
        const SumLines swapped = above;
        above = here;
        here = swapped;
    }
}

inline std::size_t ScratchElements(const LevelView& view)
{
    return SumLayout<4, true>::kQuantities * 2 * 2 * view.stride;
}

void SumRows(const LevelView& view, std::uint32_t first, std::uint32_t end, std::int32_t* scratch,
             Begin begin)
{
    if (view.blockWidth == 4) {
        if (view.channels == 4)
            SumRowsAs<4, 4, true, Choosing::ByTrying>(view, first, end, scratch, begin);
        else if (view.masked)
            SumRowsAs<4, 3, true, Choosing::ByProjection>(view, first, end, scratch, begin);
        else
            SumRowsAs<4, 3, false, Choosing::ByProjection>(view, first, end, scratch, begin);
    } else {
        if (view.channels == 4)
            SumRowsAs<8, 4, true, Choosing::Given>(view, first, end, scratch, begin);
        else if (view.masked)
            SumRowsAs<8, 3, true, Choosing::Given>(view, first, end, scratch, begin);
        else
            SumRowsAs<8, 3, false, Choosing::Given>(view, first, end, scratch, begin);
    }
}

// Cuts a line of pixels, R G B A, into the cells of one line: `pixels` starts with the first pixel of the
// first cell and is as long as all tiles together. `y` is the row within the cells.
template <int Width>
inline void SpreadLineAs(const LevelView& view, const std::uint8_t* pixels, std::size_t row, std::size_t y)
{
    constexpr std::size_t kPixels = Width * 4;
    const std::size_t channels = view.channels;
    for (std::size_t tile = 0; tile < view.tiles; ++tile) {
        for (std::size_t parity = 0; parity < 2; ++parity) {
            std::uint8_t* const target =
                view.target + view.Tile(row, parity, tile) * channels * kPixels * kLanes;
            for (std::size_t x = 0; x < Width; x += 4) {
                const std::uint8_t* const from = pixels + ((tile * kLanes * 2 + parity) * Width + x) * 4;
                std::uint8_t unused[kLanes];
                std::uint8_t* out[16];
                for (std::size_t i = 0; i < 16; ++i) {
                    const std::size_t c = i & 3;
                    out[i] = c < channels ? target + (c * kPixels + y * Width + x + i / 4) * kLanes : unused;
                }
                TransposeBytes(from, std::size_t{Width} * 8, out);
            }
        }
    }
}

void SpreadLine(const LevelView& view, const std::uint8_t* pixels, std::uint32_t row, std::uint32_t y)
{
    if (view.blockWidth == 4)
        SpreadLineAs<4>(view, pixels, row, y);
    else
        SpreadLineAs<8>(view, pixels, row, y);
}

template <int Channels, bool Masked, Choosing How>
inline void CodeRowsAs(const LevelView& view, std::uint32_t first, std::uint32_t end)
{
    TileResult<Channels, 16> result;
    for (std::uint32_t row = first; row < end; ++row) {
        for (std::size_t parity = 0; parity < 2; ++parity) {
            for (std::size_t tile = 0; tile < view.tiles; ++tile) {
                TakeTile<4, Channels, Masked, How>(view, {row, parity, tile}, result);
                std::uint8_t* const codes = view.codes + view.Tile(row, parity, tile) * 4 * kLanes;
                for (std::size_t y = 0; y < 4; ++y) {
                    const CShorts* const code = result.code + y * 4;
                    (code[0] + ShiftLeft<2>(code[1]) + ShiftLeft<4>(code[2]) + ShiftLeft<6>(code[3]))
                        .StoreBytes(codes + y * kLanes);
                }
            }
        }
    }
}

void CodeRows(const LevelView& view, std::uint32_t first, std::uint32_t end)
{
    if (view.channels == 4)
        CodeRowsAs<4, true, Choosing::ByTrying>(view, first, end);
    else if (view.masked)
        CodeRowsAs<3, true, Choosing::ByTrying>(view, first, end);
    else
        CodeRowsAs<3, false, Choosing::ByTrying>(view, first, end);
}

}  // namespace
