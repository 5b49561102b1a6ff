#include "plugins/dxt/ColorFit.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "plugins/dxt/ClusterFit.h"
#include "plugins/dxt/SolidColor.h"

namespace Dxt {
namespace {
using Plugin::Quality;
using Axis = std::array<int, 3>;

constexpr int kNormalRounds = 3;
constexpr int kSearchRounds = 8;
constexpr int kPowerSteps = 6;
// The axis is kept below this, so that products with a covariance stay far from overflow.
constexpr std::int64_t kAxisLimit = 1 << 14;

std::array<int, 3> ColorOf(const ColorPixels& pixels, std::size_t i)
{
    return {pixels.red[i], pixels.green[i], pixels.blue[i]};
}

// Symmetric: red-red, red-green, red-blue, green-green, green-blue, blue-blue, all times the squared pixel
// count.
std::array<std::int64_t, 6> Covariance(const ColorPixels& pixels)
{
    int count = 0;
    std::array<int, 3> sum{};
    std::array<int, 6> products{};
    for (std::size_t i = 0; i < kBlockPixelCount; ++i) {
        const int counts = pixels.counts[i];
        const int red = pixels.red[i] * counts;
        const int green = pixels.green[i] * counts;
        const int blue = pixels.blue[i] * counts;
        count += counts;
        sum[0] += red;
        sum[1] += green;
        sum[2] += blue;
        products[0] += red * red;
        products[1] += red * green;
        products[2] += red * blue;
        products[3] += green * green;
        products[4] += green * blue;
        products[5] += blue * blue;
    }
    return {count * products[0] - sum[0] * sum[0], count * products[1] - sum[0] * sum[1],
            count * products[2] - sum[0] * sum[2], count * products[3] - sum[1] * sum[1],
            count * products[4] - sum[1] * sum[2], count * products[5] - sum[2] * sum[2]};
}

// The direction in which the colours spread most, by power iteration from the widest channel's row.
Axis MainAxis(const ColorPixels& pixels)
{
    const auto c = Covariance(pixels);
    std::array<std::int64_t, 3> v{c[0], c[1], c[2]};
    if (c[3] > c[0] && c[3] >= c[5])
        v = {c[1], c[3], c[4]};
    else if (c[5] > c[0])
        v = {c[2], c[4], c[5]};
    for (int step = 0; step < kPowerSteps; ++step) {
        while (std::max({std::abs(v[0]), std::abs(v[1]), std::abs(v[2])}) >= kAxisLimit)
            for (std::int64_t& part : v)
                part /= 2;
        v = {c[0] * v[0] + c[1] * v[1] + c[2] * v[2], c[1] * v[0] + c[3] * v[1] + c[4] * v[2],
             c[2] * v[0] + c[4] * v[1] + c[5] * v[2]};
    }
    while (std::max({std::abs(v[0]), std::abs(v[1]), std::abs(v[2])}) >= kAxisLimit)
        for (std::int64_t& part : v)
            part /= 2;
    return {static_cast<int>(v[0]), static_cast<int>(v[1]), static_cast<int>(v[2])};
}

std::uint16_t RoundColor(const std::array<int, 3>& color)
{
    return PackColor((color[0] * 31 + 127) / 255, (color[1] * 63 + 127) / 255, (color[2] * 31 + 127) / 255);
}

// The two pixels farthest apart along the axis.
EndpointPair ExtremesAlong(const ColorPixels& pixels, const Axis& axis)
{
    std::int64_t lowest = INT64_MAX;
    std::int64_t highest = INT64_MIN;
    EndpointPair ends{};
    for (std::size_t i = 0; i < kBlockPixelCount; ++i) {
        if (pixels.counts[i] == 0)
            continue;
        const auto color = ColorOf(pixels, i);
        const std::int64_t place = std::int64_t{axis[0]} * color[0] + std::int64_t{axis[1]} * color[1] +
                                   std::int64_t{axis[2]} * color[2];
        if (place > highest) {
            highest = place;
            ends.color0 = RoundColor(color);
        }
        if (place < lowest) {
            lowest = place;
            ends.color1 = RoundColor(color);
        }
    }
    return ends;
}

// The same two colours with one of their six levels a step up or down; false when that leaves its range.
bool Nudge(EndpointPair& ends, int which)
{
    constexpr std::array<int, 3> kShift{11, 5, 0};
    constexpr std::array<int, 3> kTop{31, 63, 31};
    std::uint16_t& color = which < 6 ? ends.color0 : ends.color1;
    const auto channel = static_cast<std::size_t>(which % 3);
    const int direction = which / 3 % 2 == 0 ? 1 : -1;
    const int level = (color >> kShift[channel] & kTop[channel]) + direction;
    if (level < 0 || level > kTop[channel])
        return false;
    color = static_cast<std::uint16_t>(color + direction * (1 << kShift[channel]));
    return true;
}

// Walks to a local minimum over single steps of one level.
ColorFit SearchNeighbours(const ColorPixels& pixels, ColorFit fit)
{
    constexpr int kNeighbours = 12;
    for (int round = 0; round < kSearchRounds && fit.error != 0; ++round) {
        const int before = fit.error;
        for (int which = 0; which < kNeighbours; ++which) {
            EndpointPair ends{fit.color0, fit.color1};
            if (!Nudge(ends, which))
                continue;
            const ColorFit next = MeasureEndpoints(pixels, ends.color0, ends.color1, fit.mode);
            if (next.error < fit.error)
                fit = next;
        }
        if (fit.error == before)
            break;
    }
    return fit;
}

ColorFit Better(const ColorFit& fit, const ColorFit& other)
{
    return other.error < fit.error ? other : fit;
}

// Nearly equal colours round to one endpoint; colours mixed around their mean can come nearer than any
// endpoint.
ColorFit FitMean(const ColorPixels& pixels, FitMode mode)
{
    std::array<int, 3> sum{};
    int count = 0;
    for (std::size_t i = 0; i < kBlockPixelCount; ++i) {
        count += pixels.counts[i];
        sum[0] += pixels.red[i] * pixels.counts[i];
        sum[1] += pixels.green[i] * pixels.counts[i];
        sum[2] += pixels.blue[i] * pixels.counts[i];
    }
    const Rgb mean{(sum[0] + count / 2) / count, (sum[1] + count / 2) / count, (sum[2] + count / 2) / count};
    const SolidEndpoints ends =
        SolidEndpointsFor(mean, mode == FitMode::Four ? PaletteMode::FourColors : PaletteMode::ThreeColors);
    return MeasureEndpoints(pixels, ends.color0, ends.color1, mode);
}

// All levels of one mode: extremes, refinement, neighbours, and clusters at the highest.
ColorFit FitWithMode(const ColorPixels& pixels, const Axis& axis, FitMode mode, Quality quality)
{
    const EndpointPair ends = ExtremesAlong(pixels, axis);
    ColorFit fit = MeasureEndpoints(pixels, ends.color0, ends.color1, mode);
    if (quality == Quality::Fast)
        return fit;
    if (ends.color0 == ends.color1)
        fit = Better(fit, FitMean(pixels, mode));
    fit = RefineFit(pixels, fit, kNormalRounds);
    if (quality == Quality::Normal)
        return fit;
    fit = SearchNeighbours(pixels, RefineFit(pixels, fit, kSearchRounds));
    if (quality == Quality::High)
        return fit;
    const ColorFit clustered = ClusterFit(pixels, axis, fit);
    return SearchNeighbours(pixels, RefineFit(pixels, clustered, kSearchRounds));
}

ColorFit FitSolid(const ColorPixels& pixels, const Rgb& color, Palettes palettes)
{
    const SolidEndpoints four = SolidEndpointsFor(color, PaletteMode::FourColors);
    const SolidEndpoints three = SolidEndpointsFor(color, PaletteMode::ThreeColors);
    const bool useThree =
        palettes == Palettes::ThreeOnly || (palettes != Palettes::FourOnly && three.error < four.error);
    const SolidEndpoints& best = useThree ? three : four;
    return MeasureEndpoints(pixels, best.color0, best.color1, useThree ? FitMode::Three : FitMode::Four);
}

ColorFit FitVaried(const ColorPixels& pixels, Palettes palettes, Quality quality)
{
    const Axis axis = MainAxis(pixels);
    if (palettes == Palettes::ThreeOnly)
        return FitWithMode(pixels, axis, FitMode::Three, quality);
    ColorFit fit = FitWithMode(pixels, axis, FitMode::Four, quality);
    if (palettes == Palettes::FourOnly || quality == Quality::Fast || quality == Quality::Normal)
        return fit;
    const FitMode other = palettes == Palettes::FourThreeOrBlack ? FitMode::ThreeAndBlack : FitMode::Three;
    return Better(fit, FitWithMode(pixels, axis, other, quality));
}

// The mode of a block is told by the order of its colours.
void OrderColors(ColorFit& fit)
{
    const bool four = fit.mode == FitMode::Four;
    if (fit.color0 == fit.color1) {
        // A decoder takes equal colours for the three-colour mode, where index 3 is black.
        if (four)
            fit.indices.fill(0);
        return;
    }
    if ((fit.color0 > fit.color1) == four)
        return;
    std::swap(fit.color0, fit.color1);
    for (std::uint8_t& index : fit.indices)
        if (four || index < 2)
            index ^= 1;
}

// Whether all pixels that count have the colour of the first of them.
bool IsSolid(const ColorPixels& pixels, std::size_t first)
{
    for (std::size_t i = first; i < kBlockPixelCount; ++i)
        if (pixels.counts[i] != 0 && ColorOf(pixels, i) != ColorOf(pixels, first))
            return false;
    return true;
}
}  // namespace

ColorFit FitColors(const ColorPixels& pixels, Palettes palettes, Plugin::Quality quality)
{
    std::size_t first = 0;
    while (first < kBlockPixelCount && pixels.counts[first] == 0)
        ++first;
    ColorFit fit;
    if (first < kBlockPixelCount) {
        if (IsSolid(pixels, first))
            fit = FitSolid(pixels, {pixels.red[first], pixels.green[first], pixels.blue[first]}, palettes);
        else
            fit = FitVaried(pixels, palettes, quality);
        OrderColors(fit);
    }
    for (std::size_t i = 0; i < kBlockPixelCount; ++i)
        if (pixels.counts[i] == 0)
            fit.indices[i] = 3;
    return fit;
}

}  // namespace Dxt
