// 2 bits per pixel: a block either has one bit for every pixel, or stores every second weight and
// interpolates the rest from its own and its neighbours' stored weights.

#include <algorithm>
#include <limits>

#include "plugins/pvrtc/ModulationChoice.h"

namespace Pvrtc {
namespace {
constexpr std::size_t kBlockWidth = 8;
// A stored weight reaches pixels one away, and those take part from pixels two away.
constexpr std::size_t kMargin = 2;
constexpr std::size_t kStride = kBlockWidth + 2 * kMargin;
constexpr std::size_t kViewHeight = kBlockHeight + 2 * kMargin;

/// Error of one pixel as a function of its weight, but for a constant.
struct Curve {
    float bend;
    float slope;

    float At(int weight) const
    {
        const auto w = static_cast<float>(weight);
        return (bend * w + slope) * w;
    }
};

/// A block and its surroundings.
struct View {
    std::array<int, kStride * kViewHeight> weights;
    std::array<Curve, kStride * kViewHeight> curves;
    std::array<ModulationMode, kStride * kViewHeight> modes;
};

constexpr std::size_t ViewIndex(std::size_t x, std::size_t y)
{
    return (y + kMargin) * kStride + x + kMargin;
}

int InterpolatedWeight(const View& view, std::size_t at, ModulationMode mode)
{
    const auto& weights = view.weights;
    if (mode == ModulationMode::InterpolateHorizontal)
        return (weights[at - 1] + weights[at + 1] + 1) / 2;
    if (mode == ModulationMode::InterpolateVertical)
        return (weights[at - kStride] + weights[at + kStride] + 1) / 2;
    return (weights[at - 1] + weights[at + 1] + weights[at - kStride] + weights[at + kStride] + 2) / 4;
}

// Error of the pixel itself and of the interpolated pixels that take part of its weight.
float ErrorAround(const View& view, std::size_t at)
{
    float error = view.curves[at].At(view.weights[at]);
    for (const std::size_t next : {at - 1, at + 1, at - kStride, at + kStride})
        if (IsInterpolated(view.modes[next]))
            error += view.curves[next].At(InterpolatedWeight(view, next, view.modes[next]));
    return error;
}

void TakeBestWeight(View& view, std::size_t at, bool oneBit)
{
    float least = std::numeric_limits<float>::max();
    int best = 0;
    for (const int weight : kWeights) {
        if (oneBit && weight != 0 && weight != kWeightScale)
            continue;
        view.weights[at] = weight;
        const float error = ErrorAround(view, at);
        if (error < least) {
            least = error;
            best = weight;
        }
    }
    view.weights[at] = best;
}

int NearestWeight(const Curve& curve, bool oneBit)
{
    int best = 0;
    for (const int weight : kWeights)
        if ((!oneBit || weight == kWeightScale) && curve.At(weight) < curve.At(best))
            best = weight;
    return best;
}

void SetMode(View& view, ModulationMode mode)
{
    for (std::size_t y = 0; y < kBlockHeight; ++y)
        std::fill_n(view.modes.begin() + static_cast<std::ptrdiff_t>(ViewIndex(0, y)), kBlockWidth, mode);
}

// Error of the block and of the neighbours' pixels that depend on it.
float ErrorOf(const View& view)
{
    float error = 0;
    for (std::size_t y = 0; y < kBlockHeight + 2; ++y) {
        for (std::size_t x = 0; x < kBlockWidth + 2; ++x) {
            const std::size_t at = (y + 1) * kStride + x + 1;
            const bool inside = x > 0 && x <= kBlockWidth && y > 0 && y <= kBlockHeight;
            const bool corner = (x == 0 || x > kBlockWidth) && (y == 0 || y > kBlockHeight);
            if (!IsStored(x, y) && IsInterpolated(view.modes[at]) && !corner)
                error += view.curves[at].At(InterpolatedWeight(view, at, view.modes[at]));
            else if (inside)
                error += view.curves[at].At(view.weights[at]);
        }
    }
    return error;
}

// Chooses the weights of the block for a given mode; returns their error.
float TryMode(View& view, ModulationMode mode, ModulationMode modeBefore)
{
    SetMode(view, mode);
    const bool interpolated = IsInterpolated(mode);
    // Weights of the same kind of block are a better start than each pixel's own wish.
    const bool keepStart = interpolated && modeBefore == mode;
    for (std::size_t y = 0; y < kBlockHeight; ++y) {
        for (std::size_t x = 0; x < kBlockWidth; ++x) {
            const std::size_t at = ViewIndex(x, y);
            const bool oneBit = !interpolated || IsOneBit(mode, x, y);
            if (IsStored(x, y) ? !keepStart : !interpolated)
                view.weights[at] = NearestWeight(view.curves[at], oneBit);
        }
    }
    for (std::size_t y = 0; y < kBlockHeight; ++y)
        for (std::size_t x = y & 1; x < kBlockWidth; x += 2)
            TakeBestWeight(view, ViewIndex(x, y), !interpolated || IsOneBit(mode, x, y));
    return ErrorOf(view);
}

class CTwoBitChoice {
public:
    explicit CTwoBitChoice(EncodeState& state)
        : m_rState(state), m_aCurves(state.grid.PaddedWidth() * state.grid.PaddedHeight())
    {
        BlockColors colors;
        const BlockGrid& grid = state.grid;
        const EnlargeBlockFn enlarge = EnlargeBlock();
        for (std::uint32_t row = 0; row < grid.rows; ++row) {
            for (std::uint32_t column = 0; column < grid.columns; ++column) {
                enlarge(NeighboursOf(state.endpoints.data(), grid, column, row), grid.blockWidth, colors);
                for (std::size_t i = 0; i < kMaxBlockPixels; ++i) {
                    const std::size_t pixel =
                        (std::size_t{row} * kBlockHeight + i / kBlockWidth) * grid.PaddedWidth() +
                        column * kBlockWidth + i % kBlockWidth;
                    m_aCurves[pixel] = CurveOf(pixel, colors[i]);
                }
            }
        }
    }

    // Every block interpolates, every pixel has the weight that it would like best.
    void StartFresh()
    {
        std::fill(m_rState.modulation.modes.begin(), m_rState.modulation.modes.end(),
                  ModulationMode::InterpolateBoth);
        for (std::size_t pixel = 0; pixel < m_aCurves.size(); ++pixel)
            m_rState.modulation.weights[pixel] =
                static_cast<std::uint8_t>(NearestWeight(m_aCurves[pixel], false));
    }

    void ChooseBlock(std::size_t column, std::size_t row)
    {
        const View start = ViewOf(column, row);
        const ModulationMode before = start.modes[ViewIndex(0, 0)];
        View best = start;
        float least = std::numeric_limits<float>::max();
        for (const ModulationMode mode :
             {ModulationMode::Plain, ModulationMode::InterpolateBoth, ModulationMode::InterpolateHorizontal,
              ModulationMode::InterpolateVertical}) {
            View view = start;
            const float error = TryMode(view, mode, before);
            if (error < least) {
                least = error;
                best = view;
            }
        }
        Store(best, column, row);
    }

private:
    Curve CurveOf(std::size_t pixel, const std::array<std::int16_t, 8>& colors) const
    {
        // The decoder rounds down: on average by this much for weights between the ends.
        constexpr float kRoundedDown = 0.4375F;
        const std::uint8_t* const target = m_rState.Target(pixel);
        const float* const importance = kImportance[m_rState.importance[pixel]];
        Curve curve{};
        for (std::size_t c = 0; c < 4; ++c) {
            const float step = static_cast<float>(colors[c + 4] - colors[c]) / kWeightScale;
            const float off = static_cast<float>(target[c] - colors[c]) + kRoundedDown;
            curve.bend += importance[c] * step * step;
            curve.slope -= 2 * importance[c] * step * off;
        }
        return curve;
    }

    View ViewOf(std::size_t column, std::size_t row) const
    {
        const BlockGrid& grid = m_rState.grid;
        View view;
        for (std::size_t y = 0; y < kViewHeight; ++y) {
            const std::size_t line = (row * kBlockHeight + y - kMargin) & (grid.PaddedHeight() - 1);
            for (std::size_t x = 0; x < kStride; ++x) {
                const std::size_t across = (column * kBlockWidth + x - kMargin) & (grid.PaddedWidth() - 1);
                const std::size_t pixel = line * grid.PaddedWidth() + across;
                const std::size_t at = y * kStride + x;
                view.weights[at] = m_rState.modulation.weights[pixel];
                view.curves[at] = m_aCurves[pixel];
                view.modes[at] =
                    m_rState.modulation.modes[line / kBlockHeight * grid.columns + across / kBlockWidth];
            }
        }
        return view;
    }

    void Store(const View& view, std::size_t column, std::size_t row)
    {
        const BlockGrid& grid = m_rState.grid;
        for (std::size_t y = 0; y < kBlockHeight; ++y)
            for (std::size_t x = 0; x < kBlockWidth; ++x)
                m_rState.modulation
                    .weights[(row * kBlockHeight + y) * grid.PaddedWidth() + column * kBlockWidth + x] =
                    static_cast<std::uint8_t>(view.weights[ViewIndex(x, y)]);
        m_rState.modulation.modes[row * grid.columns + column] = view.modes[ViewIndex(0, 0)];
    }

    EncodeState& m_rState;
    std::vector<Curve> m_aCurves;
};
}  // namespace

void ChooseTwoBits(EncodeState& state, ModulationStart start)
{
    CTwoBitChoice choice(state);
    if (start == ModulationStart::Fresh)
        choice.StartFresh();
    for (std::size_t row = 0; row < state.grid.rows; ++row)
        for (std::size_t column = 0; column < state.grid.columns; ++column)
            choice.ChooseBlock(column, row);
    FillInterpolated(state.modulation);
}

}  // namespace Pvrtc
