#include "plugins/dxt/AlphaFit.h"

#include <algorithm>

namespace Dxt {
namespace {
using Plugin::Quality;

constexpr int kRefineRounds = 2;
constexpr int kReachHigh = 2;
constexpr int kReachBest = 6;

// The order of the two alphas chooses between eight and six values.
AlphaFit MeasureAlphas(const AlphaPixels& pixels, int alpha0, int alpha1)
{
    const auto values = MakeAlphas(alpha0, alpha1);
    AlphaFit fit{alpha0, alpha1, {}, 0};
    for (std::size_t i = 0; i < kBlockPixelCount; ++i) {
        int best = INT32_MAX;
        for (std::size_t k = 0; k < values.size(); ++k) {
            const int difference = pixels[i] - values[k];
            if (difference * difference < best) {
                best = difference * difference;
                fit.indices[i] = static_cast<std::uint8_t>(k);
            }
        }
        fit.error += best;
    }
    return fit;
}

bool IsEightValued(const AlphaFit& fit)
{
    return fit.alpha0 > fit.alpha1;
}

// Measures a pair in the mode that is wanted, whatever the order of the pair; equal values always mean six.
AlphaFit MeasureInMode(const AlphaPixels& pixels, int first, int second, bool eight)
{
    const auto [low, high] = std::minmax(first, second);
    return eight ? MeasureAlphas(pixels, high, low) : MeasureAlphas(pixels, low, high);
}

// The same indices with the least-squares alphas; indices of the fixed 0 and 255 do not take part.
bool SolveAlphas(const AlphaPixels& pixels, const AlphaFit& fit, int& alpha0, int& alpha1)
{
    const int steps = IsEightValued(fit) ? 7 : 5;
    int both00 = 0;
    int both01 = 0;
    int both11 = 0;
    int sum0 = 0;
    int sum1 = 0;
    for (std::size_t i = 0; i < kBlockPixelCount; ++i) {
        const int index = fit.indices[i];
        if (steps == 5 && index >= 6)
            continue;
        const int weight1 = index == 0 ? 0 : index == 1 ? steps : index - 1;
        const int weight0 = steps - weight1;
        both00 += weight0 * weight0;
        both01 += weight0 * weight1;
        both11 += weight1 * weight1;
        sum0 += weight0 * pixels[i];
        sum1 += weight1 * pixels[i];
    }
    const int determinant = both00 * both11 - both01 * both01;
    if (determinant == 0)
        return false;
    const auto solved = [&](int numerator) {
        return std::min((2 * steps * std::max(numerator, 0) + determinant) / (2 * determinant), 255);
    };
    alpha0 = solved(sum0 * both11 - sum1 * both01);
    alpha1 = solved(sum1 * both00 - sum0 * both01);
    return true;
}

AlphaFit RefineAlphas(const AlphaPixels& pixels, AlphaFit fit)
{
    const bool eight = IsEightValued(fit);
    for (int round = 0; round < kRefineRounds && fit.error != 0; ++round) {
        int alpha0 = 0;
        int alpha1 = 0;
        if (!SolveAlphas(pixels, fit, alpha0, alpha1))
            break;
        const AlphaFit next = MeasureInMode(pixels, alpha0, alpha1, eight);
        if (next.error >= fit.error)
            break;
        fit = next;
    }
    return fit;
}

AlphaFit SearchAround(const AlphaPixels& pixels, const AlphaFit& start, int reach)
{
    const bool eight = IsEightValued(start);
    AlphaFit best = start;
    for (int alpha0 = std::max(start.alpha0 - reach, 0); alpha0 <= std::min(start.alpha0 + reach, 255);
         ++alpha0)
        for (int alpha1 = std::max(start.alpha1 - reach, 0); alpha1 <= std::min(start.alpha1 + reach, 255);
             ++alpha1) {
            if (best.error == 0)
                return best;
            const AlphaFit next = MeasureInMode(pixels, alpha0, alpha1, eight);
            if (next.error < best.error)
                best = next;
        }
    return best;
}

// Six values have 0 and 255 for themselves, so their range is that of the values between.
AlphaFit StartSixValued(const AlphaPixels& pixels)
{
    int lowest = 255;
    int highest = 0;
    for (const int alpha : pixels)
        if (alpha != 0 && alpha != 255) {
            lowest = std::min(lowest, alpha);
            highest = std::max(highest, alpha);
        }
    if (lowest > highest)
        return MeasureAlphas(pixels, 0, 255);
    return MeasureAlphas(pixels, lowest, highest);
}
}  // namespace

AlphaFit FitAlphas(const AlphaPixels& alphas, Plugin::Quality quality)
{
    const auto [lowest, highest] = std::minmax_element(alphas.begin(), alphas.end());
    AlphaFit eight = MeasureAlphas(alphas, *highest, *lowest);
    if (quality == Quality::Fast || eight.error == 0)
        return eight;
    eight = RefineAlphas(alphas, eight);
    AlphaFit six = RefineAlphas(alphas, StartSixValued(alphas));
    if (quality != Quality::Normal) {
        const int reach = quality == Quality::High ? kReachHigh : kReachBest;
        eight = SearchAround(alphas, eight, reach);
        six = SearchAround(alphas, six, reach);
    }
    return six.error < eight.error ? six : eight;
}

}  // namespace Dxt
