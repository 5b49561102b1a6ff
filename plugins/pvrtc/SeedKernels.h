#pragma once

// The first guess of the endpoints: the colours of a block are taken as a line, and the endpoints are put on
// it, one to each side of the mean. Included once by the kernels of every instruction set, after its lanes.

#include "plugins/pvrtc/FitKernels.h"
#include "plugins/pvrtc/SolveKernels.h"
#include "plugins/pvrtc/SumKernels.h"

namespace {

// Endpoints this many standard deviations from the mean. Deliberately less than the colours spread: least
// squares moves endpoints apart more easily than it corrects directions in which neighbours disagree. Found
// by trying.
constexpr float kSpread = 0.5F;
// Even a flat region gets two different endpoints, so that the weights between them give finer values than
// the endpoints alone.
constexpr float kLeastSpread = 5.0F;
// From here on the opaque form, alpha 255, is nearer than the largest translucent alpha, 238.
constexpr float kOpaqueFrom = 246.5F;
constexpr int kAxisSteps = 3;
// What a visible colour counts where others count less.
constexpr int kColorCount = 16;

// Sums over the quarter of a block that lies in one cell: each channel, each product of two, and how many
// pixels count.
template <int Channels>
struct SeedLayout {
    static constexpr int kProducts = Channels;
    static constexpr int kCounts = Channels + Channels * (Channels + 1) / 2;
    static constexpr int kPerCorner = kCounts + 2;
    static constexpr int kQuantities = kPerCorner * 4;
};

// Pixels of a quarter in pairs: pixel number of the first one of each.
template <int Width>
inline int PairStart(int corner, int pair)
{
    constexpr int kPairsAcross = Width / 4;
    const int x = (corner & 1) * (Width / 2) + pair % kPairsAcross * 2;
    const int y = (corner >> 1) * 2 + pair / kPairsAcross;
    return y * Width + x;
}

template <int Width, int Channels, bool Masked>
inline void SeedTile(const LevelView& view, const TileAt& at, const SumLines& lines)
{
    using Layout = SeedLayout<Channels>;
    constexpr std::size_t kPixels = Width * 4;
    const std::size_t tile = view.Tile(at.row, at.parity, at.tile);
    const std::uint8_t* const target = view.target + tile * Channels * kPixels * kLanes;
    const CShorts one = CShorts::All(1);
    for (int corner = 0; corner < 4; ++corner) {
        CInts sums[Layout::kPerCorner];
        for (CInts& sum : sums)
            sum = CInts::All(0);
        for (int pair = 0; pair < Width / 2; ++pair) {
            const auto pixel = static_cast<std::size_t>(PairStart<Width>(corner, pair));
            CShorts values[4][2];
            CShorts counted[4][2];
            CShorts counts[2][2] = {{one, one}, {one, one}};
            for (std::size_t i = 0; i < 2; ++i) {
                if constexpr (Masked) {
                    const PixelMasks masks = MasksOf<Width, Channels, Masked>(view, tile, pixel + i);
                    counts[0][i] = Lessened<kHiddenShift>(masks, CShorts::All(kColorCount));
                    counts[1][i] = masks.alpha & one;
                }
                for (std::size_t c = 0; c < Channels; ++c) {
                    values[c][i] = CShorts::LoadBytes(target + (c * kPixels + pixel + i) * kLanes);
                    counted[c][i] = Masked ? values[c][i] * counts[c == 3 ? 1 : 0][i] : values[c][i];
                }
            }
            int product = Layout::kProducts;
            for (int c = 0; c < Channels; ++c) {
                sums[c] = sums[c] + Products(counted[c][0], one, counted[c][1], one);
                for (int d = c; d < Channels; ++d, ++product)
                    sums[product] =
                        sums[product] + Products(counted[c][0], values[d][0], counted[c][1], values[d][1]);
            }
            sums[Layout::kCounts] = sums[Layout::kCounts] + Products(counts[0][0], one, counts[0][1], one);
            sums[Layout::kCounts + 1] =
                sums[Layout::kCounts + 1] + Products(counts[1][0], one, counts[1][1], one);
        }
        for (int i = 0; i < Layout::kPerCorner; ++i)
            sums[i].Store(lines.At(corner * Layout::kPerCorner + i, at.parity) + at.tile * kLanes);
    }
}

template <int Channels>
struct Statistics {
    CFloats mean[4];
    CFloats covariance[4][4];
};

template <int Width, int Channels, bool Masked>
inline Statistics<Channels> StatisticsOf(const SumLines& above, const SumLines& here, const OwnAndLeft& cells)
{
    using Layout = SeedLayout<Channels>;
    constexpr int kPer = Layout::kPerCorner;
    const auto sum = [&](int i) {
        return OwnSum(here, i, cells) + LeftSum(here, kPer + i, cells) + OwnSum(above, 2 * kPer + i, cells) +
               LeftSum(above, 3 * kPer + i, cells);
    };
    const CFloats one = CFloats::All(1);
    // Colours are summed kColorCount times where some count less.
    const CFloats unit = CFloats::All(Masked ? 1.0F / kColorCount : 1.0F);
    const CFloats colors = one / Larger(sum(Layout::kCounts) * unit, unit);
    const CFloats alphas = one / Larger(sum(Layout::kCounts + 1), one);
    const CFloats overAll = CFloats::All(1.0F / (Width * 4));
    Statistics<Channels> result;
    CFloats sums[4];
    for (int c = 0; c < Channels; ++c) {
        sums[c] = c == 3 ? sum(c) : sum(c) * unit;
        result.mean[c] = sums[c] * (c == 3 ? alphas : colors);
    }
    int product = Layout::kProducts;
    for (int c = 0; c < Channels; ++c) {
        for (int d = c; d < Channels; ++d, ++product) {
            // Where a colour counts less its alpha is 0, so the sum over all alphas is that over those whose
            // colours count in full.
            const CFloats together = c == 3 ? sum(product) : sum(product) * unit;
            const CFloats covariance = (together - result.mean[c] * sums[d]) * overAll;
            result.covariance[c][d] = covariance;
            result.covariance[d][c] = covariance;
        }
    }
    return result;
}

template <int Channels>
inline void TimesCovariance(const Statistics<Channels>& statistics, const CFloats* from, CFloats* to)
{
    for (int r = 0; r < Channels; ++r) {
        to[r] = statistics.covariance[r][0] * from[0] + statistics.covariance[r][1] * from[1] +
                statistics.covariance[r][2] * from[2];
        if constexpr (Channels == 4)
            to[r] = to[r] + statistics.covariance[r][3] * from[3];
    }
}

template <int Channels>
inline CFloats Dot(const CFloats* a, const CFloats* b)
{
    CFloats sum = a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
    if constexpr (Channels == 4)
        sum = sum + a[3] * b[3];
    return sum;
}

// The vector from the mean to endpoint B: the principal axis, pointing to the brighter or more opaque side so
// that neighbouring blocks agree which of their endpoints is B.
template <int Channels>
inline void AxisOf(const Statistics<Channels>& statistics, CFloats* axis)
{
    CFloats largest = statistics.covariance[0][0];
    CFloats trace = largest;
    for (int c = 0; c < Channels; ++c)
        axis[c] = statistics.covariance[0][c];
    for (int r = 1; r < Channels; ++r) {
        const CFloats variance = statistics.covariance[r][r];
        for (int c = 0; c < Channels; ++c)
            axis[c] = SelectLess(largest, variance, statistics.covariance[r][c], axis[c]);
        largest = Larger(largest, variance);
        trace = trace + variance;
    }
    const CFloats scale = CFloats::All(1) / Larger(trace, CFloats::All(1e-3F));
    CFloats next[4];
    for (int step = 0; step < kAxisSteps; ++step) {
        TimesCovariance<Channels>(statistics, axis, next);
        for (int c = 0; c < Channels; ++c)
            axis[c] = next[c] * scale;
    }
    TimesCovariance<Channels>(statistics, axis, next);
    const CFloats zero = CFloats::All(0);
    const CFloats square = Dot<Channels>(axis, axis);
    const CFloats carried = Larger(Dot<Channels>(axis, next), zero);
    CFloats reach = CFloats::All(kSpread) * Root(carried) / Larger(square, CFloats::All(1e-9F));
    CFloats brightness = axis[0] + axis[1] + axis[1] + axis[2];
    if constexpr (Channels == 4)
        brightness = brightness + axis[3];
    reach = SelectLess(brightness, zero, zero - reach, reach);
    for (int c = 0; c < Channels; ++c)
        axis[c] = axis[c] * reach;
}

inline CFloats Magnitude(CFloats value)
{
    return Larger(value, CFloats::All(0) - value);
}

// Flat blocks: a grey step instead of none.
template <int Channels>
inline void SpreadAtLeast(CFloats* axis)
{
    CFloats reach = Larger(Larger(Magnitude(axis[0]), Magnitude(axis[1])), Magnitude(axis[2]));
    if constexpr (Channels == 4)
        reach = Larger(reach, Magnitude(axis[3]));
    const CFloats least = CFloats::All(kLeastSpread);
    for (int c = 0; c < 3; ++c)
        axis[c] = SelectLess(reach, least, least, axis[c]);
}

// Either endpoint, to the nearest value that can be stored with its alpha.
template <bool IsA, int Channels>
inline void StoreSeed(const CFloats* color, std::int16_t* out, std::size_t stride)
{
    const CFloats overColor = CFloats::All(31.0F / 255);
    for (std::size_t c = 0; c < 3; ++c) {
        const CFloats wanted = color[c] * overColor;
        CFloats value =
            IsA && c == 2 ? NearestValue<Values::Four>(wanted) : NearestValue<Values::Five>(wanted);
        if constexpr (Channels == 4) {
            const CFloats translucent =
                IsA && c == 2 ? NearestValue<Values::Three>(wanted) : NearestValue<Values::Four>(wanted);
            value = SelectLess(color[3], CFloats::All(kOpaqueFrom), translucent, value);
        }
        value.StoreShorts(out + c * stride);
    }
    CFloats alpha = CFloats::All(15);
    if constexpr (Channels == 4)
        alpha = SelectLess(color[3], CFloats::All(kOpaqueFrom),
                           NearestValue<Values::Alpha>(color[3] * CFloats::All(15.0F / 255)), alpha);
    alpha.StoreShorts(out + 3 * stride);
}

template <int Width, int Channels, bool Masked>
inline void SeedBlockRow(const LevelView& view, std::size_t row, const SumLines& above, const SumLines& here)
{
    for (std::size_t parity = 0; parity < 2; ++parity) {
        const std::size_t start = view.Line(row, parity) * 8 * view.stride + kLinePad;
        for (std::size_t element = 0; element < view.pairs; element += 8) {
            const Statistics<Channels> statistics =
                StatisticsOf<Width, Channels, Masked>(above, here, CellsOf(parity, element));
            CFloats axis[4];
            AxisOf<Channels>(statistics, axis);
            SpreadAtLeast<Channels>(axis);
            CFloats a[4];
            CFloats b[4];
            for (int c = 0; c < Channels; ++c) {
                a[c] = statistics.mean[c] - axis[c];
                b[c] = statistics.mean[c] + axis[c];
            }
            StoreSeed<true, Channels>(a, view.endpoints + start + element, view.stride);
            StoreSeed<false, Channels>(b, view.endpoints + start + 4 * view.stride + element, view.stride);
        }
        for (std::size_t e = 0; e < 8; ++e)
            WrapLine(view.endpoints + start + e * view.stride, view.pairs);
    }
}

template <int Width, int Channels, bool Masked>
inline void SeedCellRow(const LevelView& view, std::size_t row, const SumLines& lines)
{
    for (std::size_t parity = 0; parity < 2; ++parity)
        for (std::size_t tile = 0; tile < view.tiles; ++tile)
            SeedTile<Width, Channels, Masked>(view, {row, parity, tile}, lines);
    WrapSums(view, lines, SeedLayout<Channels>::kQuantities);
}

template <int Width, int Channels, bool Masked>
inline void SeedRowsAs(const LevelView& view, std::uint32_t first, std::uint32_t end, std::int32_t* scratch)
{
    const std::size_t size = SeedLayout<Channels>::kQuantities * 2 * view.stride;
    SumLines above{scratch, view.stride};
    SumLines here{scratch + size, view.stride};
    SeedCellRow<Width, Channels, Masked>(view, (first + view.rows - 1) & (view.rows - 1), above);
    for (std::uint32_t row = first; row < end; ++row) {
        SeedCellRow<Width, Channels, Masked>(view, row, here);
        SeedBlockRow<Width, Channels, Masked>(view, row, above, here);
        const SumLines swapped = above;
        above = here;
        here = swapped;
    }
}

void SeedRows(const LevelView& view, std::uint32_t first, std::uint32_t end, std::int32_t* scratch)
{
    if (view.blockWidth == 4) {
        if (view.channels == 4)
            SeedRowsAs<4, 4, true>(view, first, end, scratch);
        else if (view.masked)
            SeedRowsAs<4, 3, true>(view, first, end, scratch);
        else
            SeedRowsAs<4, 3, false>(view, first, end, scratch);
    } else {
        if (view.channels == 4)
            SeedRowsAs<8, 4, true>(view, first, end, scratch);
        else if (view.masked)
            SeedRowsAs<8, 3, true>(view, first, end, scratch);
        else
            SeedRowsAs<8, 3, false>(view, first, end, scratch);
    }
}

}  // namespace
