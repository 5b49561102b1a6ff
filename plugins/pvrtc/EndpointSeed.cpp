#include "plugins/pvrtc/EndpointSeed.h"

#include <algorithm>
#include <cmath>

#include "plugins/pvrtc/EndpointLattice.h"

namespace Pvrtc {
namespace {
using Color = std::array<float, 4>;

constexpr int kAxisSteps = 6;
// Endpoints this many standard deviations from the mean. Deliberately less than the colours spread: least
// squares moves endpoints apart more easily than it corrects directions in which neighbours disagree. Found
// by trying.
constexpr float kSpread = 0.5F;
// Even a flat region gets two different endpoints, so that the weights between them give finer values than
// the endpoints alone.
constexpr float kLeastSpread = 5.0F;
// From here on the opaque form, alpha 255, is nearer than the largest translucent alpha, 238.
constexpr float kOpaqueAlpha = 246.5F;

struct Window {
    std::array<std::size_t, kMaxBlockPixels> pixels;
    std::size_t count;
};

// The pixels of the block alone: the wider window that its endpoints reach blurs what is here.
Window WindowOf(const BlockGrid& grid, std::uint32_t column, std::uint32_t row)
{
    const std::size_t start =
        std::size_t{row} * kBlockHeight * grid.PaddedWidth() + std::size_t{column} * grid.blockWidth;
    Window window{};
    for (std::size_t y = 0; y < kBlockHeight; ++y)
        for (std::size_t x = 0; x < grid.blockWidth; ++x)
            window.pixels[window.count++] = start + y * grid.PaddedWidth() + x;
    return window;
}

Color MeanOf(const EncodeState& state, const Window& window)
{
    Color sum{};
    Color counted{};
    for (std::size_t i = 0; i < window.count; ++i) {
        const std::uint8_t* const target = state.Target(window.pixels[i]);
        const float* const importance = kImportance[state.importance[window.pixels[i]]];
        for (std::size_t c = 0; c < 4; ++c) {
            sum[c] += importance[c] * static_cast<float>(target[c]);
            counted[c] += importance[c];
        }
    }
    for (std::size_t c = 0; c < 4; ++c)
        sum[c] = counted[c] > 0 ? sum[c] / counted[c] : 0;
    if (!state.hasAlpha)
        sum[3] = 255;
    return sum;
}

using Covariance = std::array<Color, 4>;

Covariance CovarianceOf(const EncodeState& state, const Window& window, const Color& mean)
{
    Covariance covariance{};
    for (std::size_t i = 0; i < window.count; ++i) {
        const std::uint8_t* const target = state.Target(window.pixels[i]);
        const float* const importance = kImportance[state.importance[window.pixels[i]]];
        Color off{};
        for (std::size_t c = 0; c < 4; ++c)
            off[c] = importance[c] * (static_cast<float>(target[c]) - mean[c]);
        for (std::size_t r = 0; r < 4; ++r)
            for (std::size_t c = 0; c < 4; ++c)
                covariance[r][c] += off[r] * off[c];
    }
    const float scale = 1.0F / static_cast<float>(window.count);
    for (Color& line : covariance)
        for (float& value : line)
            value *= scale;
    return covariance;
}

// The vector from the mean to endpoint B: the principal axis, pointing to the brighter or more opaque side so
// that neighbouring blocks agree which of their endpoints is B.
Color AxisOf(const Covariance& covariance)
{
    std::size_t largest = 0;
    for (std::size_t c = 1; c < 4; ++c)
        if (covariance[c][c] > covariance[largest][largest])
            largest = c;
    Color axis = covariance[largest];
    float length = 0;
    for (int step = 0; step < kAxisSteps; ++step) {
        Color next{};
        for (std::size_t r = 0; r < 4; ++r)
            next[r] = covariance[r][0] * axis[0] + covariance[r][1] * axis[1] + covariance[r][2] * axis[2] +
                      covariance[r][3] * axis[3];
        length = std::sqrt(next[0] * next[0] + next[1] * next[1] + next[2] * next[2] + next[3] * next[3]);
        if (length < 1e-6F)
            return {};
        for (std::size_t c = 0; c < 4; ++c)
            axis[c] = next[c] / length;
    }
    // The axis has length 1, so the last length is the variance along it.
    const bool darker = axis[0] + 2 * axis[1] + axis[2] + axis[3] < 0;
    const float reach = (darker ? -kSpread : kSpread) * std::sqrt(length);
    for (float& value : axis)
        value *= reach;
    return axis;
}

void StoreEndpoint(const Color& color, std::size_t first, EndpointPair& pair)
{
    const EndpointForm form = color[3] >= kOpaqueAlpha ? EndpointForm::Opaque : EndpointForm::Translucent;
    for (std::size_t c = 0; c < 4; ++c)
        pair[first + c] = Nearest(LatticeOf(form, first + c), color[c] / kChannelStep[c]);
}

EndpointPair SeedOf(const EncodeState& state, const Window& window)
{
    const Color mean = MeanOf(state, window);
    Color axis = AxisOf(CovarianceOf(state, window, mean));
    const float reach = std::max(std::max(std::abs(axis[0]), std::abs(axis[1])), std::abs(axis[2]));
    if (reach < kLeastSpread && std::abs(axis[3]) < kLeastSpread)
        for (std::size_t c = 0; c < 3; ++c)
            axis[c] = kLeastSpread;
    Color a{};
    Color b{};
    for (std::size_t c = 0; c < 4; ++c) {
        a[c] = std::clamp(mean[c] - axis[c], 0.0F, 255.0F);
        b[c] = std::clamp(mean[c] + axis[c], 0.0F, 255.0F);
    }
    EndpointPair pair{};
    StoreEndpoint(a, 0, pair);
    StoreEndpoint(b, 4, pair);
    return pair;
}
}  // namespace

void SeedEndpoints(EncodeState& state)
{
    for (std::uint32_t row = 0; row < state.grid.rows; ++row)
        for (std::uint32_t column = 0; column < state.grid.columns; ++column)
            state.endpoints[std::size_t{row} * state.grid.columns + column] =
                SeedOf(state, WindowOf(state.grid, column, row));
}

}  // namespace Pvrtc
