#include "plugins/dxt/EndpointFit.h"

#include <algorithm>

namespace Dxt {
namespace {
// Weight of colour 0 per index, in steps; index 3 of the three-colour modes is not on the line.
constexpr std::array<int, 4> kWeightsOfFour{3, 0, 2, 1};
constexpr std::array<int, 4> kWeightsOfThree{2, 0, 1, 0};

// With 16 pixels and three steps the largest number on the way stays below 2^30, so 32 bits are enough.
int RoundToLevels(int numerator, int denominator, int levels)
{
    if (numerator <= 0)
        return 0;
    const int whole = denominator * 255;
    return std::min((2 * numerator * levels + whole) / (2 * whole), levels);
}

EndpointSums SumLabels(const ColorPixels& pixels, const ColorFit& fit)
{
    const int steps = StepsOf(fit.mode);
    const auto& weights = fit.mode == FitMode::Four ? kWeightsOfFour : kWeightsOfThree;
    EndpointSums sums;
    for (std::size_t i = 0; i < kBlockPixelCount; ++i) {
        if (pixels.counts[i] == 0 || (fit.mode != FitMode::Four && fit.indices[i] == 3))
            continue;
        const int weight0 = weights[fit.indices[i]];
        const int weight1 = steps - weight0;
        sums.both00 += weight0 * weight0;
        sums.both01 += weight0 * weight1;
        sums.both11 += weight1 * weight1;
        const std::array<int, 3> color{pixels.red[i], pixels.green[i], pixels.blue[i]};
        for (std::size_t channel = 0; channel < 3; ++channel) {
            sums.color0[channel] += weight0 * color[channel];
            sums.color1[channel] += weight1 * color[channel];
        }
    }
    return sums;
}
}  // namespace

int StepsOf(FitMode mode)
{
    return mode == FitMode::Four ? 3 : 2;
}

ColorFit MeasureEndpoints(const ColorPixels& pixels, std::uint16_t color0, std::uint16_t color1, FitMode mode)
{
    const auto palette = MakePalette(
        color0, color1, mode == FitMode::Four ? PaletteMode::FourColors : PaletteMode::ThreeColors);
    const std::size_t usable = mode == FitMode::Three ? 3 : 4;
    std::array<int, kBlockPixelCount> errors;
    std::array<int, kBlockPixelCount> indices{};
    errors.fill(INT32_MAX);
    for (std::size_t k = 0; k < usable; ++k)
        for (std::size_t i = 0; i < kBlockPixelCount; ++i) {
            const int red = pixels.red[i] - palette[k].red;
            const int green = pixels.green[i] - palette[k].green;
            const int blue = pixels.blue[i] - palette[k].blue;
            const int error = red * red + green * green + blue * blue;
            indices[i] = error < errors[i] ? static_cast<int>(k) : indices[i];
            errors[i] = std::min(errors[i], error);
        }
    ColorFit fit{color0, color1, mode, {}, 0};
    for (std::size_t i = 0; i < kBlockPixelCount; ++i) {
        fit.indices[i] = static_cast<std::uint8_t>(indices[i]);
        fit.error += errors[i] * pixels.counts[i];
    }
    return fit;
}

bool SolveEndpoints(const EndpointSums& sums, int steps, EndpointPair& endpoints)
{
    const int determinant = sums.both00 * sums.both11 - sums.both01 * sums.both01;
    if (determinant == 0)
        return false;
    constexpr std::array<int, 3> kLevels{31, 63, 31};
    std::array<int, 3> levels0{};
    std::array<int, 3> levels1{};
    for (std::size_t channel = 0; channel < 3; ++channel) {
        const int sum0 = sums.color0[channel];
        const int sum1 = sums.color1[channel];
        levels0[channel] =
            RoundToLevels(steps * (sum0 * sums.both11 - sum1 * sums.both01), determinant, kLevels[channel]);
        levels1[channel] =
            RoundToLevels(steps * (sum1 * sums.both00 - sum0 * sums.both01), determinant, kLevels[channel]);
    }
    endpoints = {PackColor(levels0[0], levels0[1], levels0[2]),
                 PackColor(levels1[0], levels1[1], levels1[2])};
    return true;
}

ColorFit RefineFit(const ColorPixels& pixels, ColorFit fit, int rounds)
{
    for (; rounds > 0 && fit.error != 0; --rounds) {
        EndpointPair solved{};
        if (!SolveEndpoints(SumLabels(pixels, fit), StepsOf(fit.mode), solved))
            break;
        if (solved.color0 == fit.color0 && solved.color1 == fit.color1)
            break;
        const ColorFit next = MeasureEndpoints(pixels, solved.color0, solved.color1, fit.mode);
        if (next.error >= fit.error)
            break;
        fit = next;
    }
    return fit;
}

}  // namespace Dxt
