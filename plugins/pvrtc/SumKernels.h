#pragma once

// What becomes the normal equations: residuals and weights summed over the pixels that an endpoint reaches.
// Included once by the kernels of every instruction set, after its lanes.

#include "plugins/pvrtc/FitKernels.h"
#include "plugins/pvrtc/PixelKernels.h"
#include "plugins/pvrtc/ShareSums.h"

namespace {
// What a tile's pixels are worth to the sums.
template <int Channels, int Pixels>
struct TileResult {
    CShorts weight[Pixels];
    CShorts residual[Channels][Pixels];
    PixelMasks masks[Pixels];
};

// Hidden colours as they count in the sums.
inline CShorts ForSums(const PixelMasks& masks, CShorts value)
{
    const CShorts lessened = ShiftRight<kHiddenShift>(value + CShorts::All(1 << (kHiddenShift - 1)));
    return Select(masks.visible, value, lessened & masks.counted);
}

template <int Width, int Channels, bool Masked, Choosing How>
inline Chosen Choose(const LevelView& view, const TileAt& at, int x, int y,
                     const PixelColors<Channels>& colors, const PixelMasks& masks)
{
    if constexpr (How == Choosing::ByProjection)
        return ChooseByProjection<Channels, Masked>(colors, masks);
    if constexpr (How == Choosing::ByTrying)
        return ChooseByTrying<Channels, Masked>(colors, masks);
    return {WeightAt(view, at, x, y), CShorts::All(0)};
}

template <int Width, int Channels, bool Masked, Choosing How>
inline void TakeTile(const LevelView& view, const TileAt& at, TileResult<Channels, Width * 4>& out)
{
    const std::size_t tile = view.Tile(at.row, at.parity, at.tile);
    const auto take = [&](std::size_t pixel, int x, int y, const PixelColors<Channels>& colors) {
        PixelMasks masks = MasksOf<Width, Channels, Masked>(view, tile, pixel);
        if constexpr (Channels == 4 && How == Choosing::ByTrying)
            masks.punched = PunchedAt(view, at, x, y);
        const Chosen chosen = Choose<Width, Channels, Masked, How>(view, at, x, y, colors, masks);
        out.weight[pixel] = chosen.weight;
        if constexpr (Channels == 4 && How == Choosing::ByTrying) {
            // A punched-through pixel has alpha 0 whatever the endpoints are.
            const CShorts second = (chosen.code > CShorts::All(1)) & (CShorts::All(3) > chosen.code);
            masks.alpha = Select(second & masks.punched, CShorts::All(0), masks.alpha);
        }
        if constexpr (Masked)
            out.masks[pixel] = masks;
        for (int c = 0; c < Channels; ++c) {
            CShorts residual = colors.target[c] - Blend(colors.a[c], colors.difference[c], chosen.weight);
            if constexpr (Masked)
                residual = c == 3 ? residual & masks.alpha : ForSums(masks, residual);
            out.residual[c][pixel] = residual;
        }
    };
    ForTilePixels<Width, Channels>(view, at, take);
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

// The weight's powers are all taken 64 times.
template <int Width, bool Masked, typename Count>
inline void StoreSquares(const CShorts* weights, int quantity, const SumLines& lines, std::size_t parity,
                         std::size_t element, Count count)
{
    constexpr int kPixels = Width * 4;
    const auto store = [&](const CShorts* power, int first) {
        const SquareSums sums = OverSquares<Width>(power);
        for (int i = 0; i < 9; ++i)
            sums.term[i].Store(lines.At(quantity + first + i, parity) + element);
    };
    CShorts power[kPixels];
    for (int i = 0; i < kPixels; ++i)
        power[i] = count(i, ShiftLeft<3>(weights[i]));
    store(power, 0);
    for (int i = 0; i < kPixels; ++i)
        power[i] = count(i, weights[i] * weights[i]);
    store(power, 9);
    if constexpr (Masked) {
        for (int i = 0; i < kPixels; ++i)
            power[i] = count(i, CShorts::All(64));
        store(power, 18);
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
            StoreSquares<Width, Masked>(
                result.weight, Layout::kSquares, lines, parity, element,
                [&](int i, CShorts value) { return Masked ? ForSums(result.masks[i], value) : value; });
            if constexpr (Channels == 4)
                StoreSquares<Width, Masked>(
                    result.weight, Layout::kAlphaSquares, lines, parity, element,
                    [&](int i, CShorts value) { return value & result.masks[i].alpha; });
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

[[gnu::always_inline]] inline MatrixSums GatherSquares(const SumLines& above, const SumLines& here,
                                                       int quantity, const OwnAndLeft& cells)
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
    return {CFloats::All(kOwn * 44 * 64), CFloats::All(kNext * 44 * 64), CFloats::All(kOwn * 10 * 64),
            CFloats::All(kNext * 10 * 64)};
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
        const CFloats aa = none.term[i] - first.term[i] - first.term[i] + second.term[i];
        const CFloats ab = first.term[i] - second.term[i];
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

inline std::size_t ScratchElements(const LevelView& view)
{
    return SumLayout<4, true>::kQuantities * 2 * 2 * view.stride;
}

template <Choosing How>
void SumRowsBy(const LevelView& view, std::uint32_t first, std::uint32_t end, std::int32_t* scratch,
               Begin begin)
{
    if (view.blockWidth == 4) {
        if (view.channels == 4)
            SumRowsAs<4, 4, true, How>(view, first, end, scratch, begin);
        else if (view.masked)
            SumRowsAs<4, 3, true, How>(view, first, end, scratch, begin);
        else
            SumRowsAs<4, 3, false, How>(view, first, end, scratch, begin);
    } else {
        if (view.channels == 4)
            SumRowsAs<8, 4, true, How>(view, first, end, scratch, begin);
        else if (view.masked)
            SumRowsAs<8, 3, true, How>(view, first, end, scratch, begin);
        else
            SumRowsAs<8, 3, false, How>(view, first, end, scratch, begin);
    }
}

void SumRows(const LevelView& view, std::uint32_t first, std::uint32_t end, std::int32_t* scratch,
             Begin begin, Choosing how)
{
    switch (how) {
        case Choosing::ByProjection:
            SumRowsBy<Choosing::ByProjection>(view, first, end, scratch, begin);
            return;
        case Choosing::ByTrying:
            SumRowsBy<Choosing::ByTrying>(view, first, end, scratch, begin);
            return;
        case Choosing::Stored:
            SumRowsBy<Choosing::Stored>(view, first, end, scratch, begin);
            return;
    }
}

}  // namespace
