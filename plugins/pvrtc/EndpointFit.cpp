#include "plugins/pvrtc/EndpointFit.h"

#include "plugins/pvrtc/EndpointLattice.h"

namespace Pvrtc {
namespace {
constexpr int kReachY = 3;

// Calls visit(pixel, share of the block's endpoints) for every pixel that the endpoints of a block reach.
template <typename Visit>
void ForWindow(const BlockGrid& grid, std::uint32_t column, std::uint32_t row, Visit visit)
{
    const std::size_t width = grid.PaddedWidth();
    const std::size_t height = grid.PaddedHeight();
    const int blockWidth = static_cast<int>(grid.blockWidth);
    const std::size_t middleX = std::size_t{column} * grid.blockWidth + grid.blockWidth / 2;
    const std::size_t middleY = std::size_t{row} * kBlockHeight + kBlockHeight / 2;
    const float unit = 1.0F / static_cast<float>(blockWidth * 4);
    for (int dy = -kReachY; dy <= kReachY; ++dy) {
        const int shareY = 4 - (dy < 0 ? -dy : dy);
        const std::size_t line = ((middleY + static_cast<std::size_t>(dy)) & (height - 1)) * width;
        for (int dx = 1 - blockWidth; dx < blockWidth; ++dx) {
            const int share = shareY * (blockWidth - (dx < 0 ? -dx : dx));
            visit(line + ((middleX + static_cast<std::size_t>(dx)) & (width - 1)),
                  static_cast<float>(share) * unit);
        }
    }
}

constexpr float kShareOfB[9] = {0, 0.125F, 0.25F, 0.375F, 0.5F, 0.625F, 0.75F, 0.875F, 1};

struct BlockChoice {
    EndpointPair pair;
    float error;
};

ChannelProblem ProblemOf(const FitSums& sums, const EndpointPair& current, std::size_t channel)
{
    const float step = kChannelStep[channel];
    const float square = step * step;
    return {sums.uu[channel] * square, sums.uv[channel] * square, sums.vv[channel] * square,
            sums.ur[channel] * step,   sums.vr[channel] * step,   current[channel],
            current[channel + 4]};
}

BlockChoice SolveForms(const FitSums& sums, const EndpointPair& current, EndpointForm formA,
                       EndpointForm formB, std::size_t breadth)
{
    BlockChoice choice{};
    for (std::size_t c = 0; c < 4; ++c) {
        const ChannelChoice channel =
            SolveChannel(ProblemOf(sums, current, c), LatticeOf(formA, c), LatticeOf(formB, c + 4), breadth);
        choice.pair[c] = channel.a;
        choice.pair[c + 4] = channel.b;
        choice.error += channel.error;
    }
    return choice;
}

EndpointPair SolveBlock(const FitSums& sums, const EndpointPair& current, bool hasAlpha, std::size_t breadth)
{
    using enum EndpointForm;
    BlockChoice best = SolveForms(sums, current, Opaque, Opaque, breadth);
    if (!hasAlpha)
        return best.pair;
    constexpr EndpointForm kOtherForms[3][2] = {
        {Opaque, Translucent}, {Translucent, Opaque}, {Translucent, Translucent}};
    for (const auto& forms : kOtherForms) {
        const BlockChoice choice = SolveForms(sums, current, forms[0], forms[1], breadth);
        if (choice.error < best.error)
            best = choice;
    }
    return best.pair;
}

void MoveResidual(EncodeState& state, std::uint32_t column, std::uint32_t row, const EndpointPair& from,
                  const EndpointPair& to)
{
    std::array<float, 8> change{};
    for (std::size_t c = 0; c < change.size(); ++c)
        change[c] = static_cast<float>(to[c] - from[c]) * kChannelStep[c & 3];
    ForWindow(state.grid, column, row, [&](std::size_t pixel, float share) {
        const float ofB = share * kShareOfB[state.modulation.weights[pixel] & kWeightMask];
        const float ofA = share - ofB;
        float* const residual = state.residual.data() + pixel * 4;
        for (std::size_t c = 0; c < 4; ++c)
            residual[c] -= ofA * change[c] + ofB * change[c + 4];
    });
}
}  // namespace

void SumWindow_Portable(const EncodeState& state, std::uint32_t column, std::uint32_t row, FitSums& sums)
{
    FitSums total{};
    ForWindow(state.grid, column, row, [&](std::size_t pixel, float share) {
        const std::uint8_t modulation = state.modulation.weights[pixel];
        // A punched-through pixel has alpha 0 whatever the endpoints are.
        const std::uint8_t punched = (modulation & kPunched) != 0 ? kAlphaCounts : 0;
        const float* const importance = kImportance[state.importance[pixel] & ~punched];
        const float* const residual = state.residual.data() + pixel * 4;
        const float v = share * kShareOfB[modulation & kWeightMask];
        const float u = share - v;
        for (std::size_t c = 0; c < 4; ++c) {
            const float weightedU = importance[c] * u;
            const float weightedV = importance[c] * v;
            total.uu[c] += weightedU * u;
            total.uv[c] += weightedU * v;
            total.vv[c] += weightedV * v;
            total.ur[c] += weightedU * residual[c];
            total.vr[c] += weightedV * residual[c];
        }
    });
    sums = total;
}

SumWindowFn SumWindow()
{
    return SumWindow_Portable;
}

void SweepEndpoints(EncodeState& state, std::size_t breadth)
{
    const SumWindowFn sumWindow = SumWindow();
    for (std::uint32_t row = 0; row < state.grid.rows; ++row) {
        for (std::uint32_t column = 0; column < state.grid.columns; ++column) {
            FitSums sums;
            sumWindow(state, column, row, sums);
            EndpointPair& current = state.endpoints[std::size_t{row} * state.grid.columns + column];
            const EndpointPair solved = SolveBlock(sums, current, state.hasAlpha, breadth);
            if (solved == current)
                continue;
            MoveResidual(state, column, row, current, solved);
            current = solved;
        }
    }
}

}  // namespace Pvrtc
