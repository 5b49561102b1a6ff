#include "plugins/dxt/ClusterFit.h"

#include <algorithm>
#include <cstdint>

namespace Dxt {
namespace {
// Sums of the first n pixels in order; cluster sums are differences of these.
struct PrefixSums {
    std::size_t count = 0;
    std::array<std::array<int, 3>, kBlockPixelCount + 1> color{};
};

PrefixSums SumInOrder(const ColorPixels& pixels, const std::array<int, 3>& axis)
{
    struct Placed {
        std::int64_t place;
        std::size_t pixel;
    };
    std::array<Placed, kBlockPixelCount> order{};
    PrefixSums sums;
    for (std::size_t i = 0; i < kBlockPixelCount; ++i) {
        if (pixels.counts[i] == 0)
            continue;
        const std::int64_t place = std::int64_t{axis[0]} * pixels.red[i] +
                                   std::int64_t{axis[1]} * pixels.green[i] +
                                   std::int64_t{axis[2]} * pixels.blue[i];
        order[sums.count++] = {place, i};
    }
    std::sort(order.begin(), order.begin() + static_cast<std::ptrdiff_t>(sums.count),
              [](const Placed& a, const Placed& b) {
                  return a.place != b.place ? a.place < b.place : a.pixel < b.pixel;
              });
    for (std::size_t i = 0; i < sums.count; ++i) {
        const std::size_t pixel = order[i].pixel;
        const std::array<int, 3> color{pixels.red[pixel], pixels.green[pixel], pixels.blue[pixel]};
        for (std::size_t channel = 0; channel < 3; ++channel)
            sums.color[i + 1][channel] = sums.color[i][channel] + color[channel];
    }
    return sums;
}

// The runs have `steps`, `steps` - 1, ... 0 parts of colour 0; a run ends where the next one's boundary is.
// Summing the prefixes at the boundaries weighs each pixel with the number of boundaries behind it.
EndpointSums SumsOfRuns(const PrefixSums& sums, const std::array<std::size_t, 3>& boundaries, int steps)
{
    EndpointSums result;
    std::size_t begin = 0;
    for (int run = 0; run <= steps; ++run) {
        const std::size_t end = run < steps ? boundaries[static_cast<std::size_t>(run)] : sums.count;
        const int members = static_cast<int>(end - begin);
        const int weight0 = steps - run;
        result.both00 += members * weight0 * weight0;
        result.both01 += members * weight0 * run;
        result.both11 += members * run * run;
        begin = end;
    }
    for (std::size_t channel = 0; channel < 3; ++channel) {
        for (std::size_t i = 0; i < static_cast<std::size_t>(steps); ++i)
            result.color0[channel] += sums.color[boundaries[i]][channel];
        result.color1[channel] = steps * sums.color[sums.count][channel] - result.color0[channel];
    }
    return result;
}

// The error of the labelling, in squared steps and less the part that no endpoint changes.
int RelativeError(const EndpointSums& sums, const EndpointPair& endpoints, int steps)
{
    const Rgb first = ExpandColor(endpoints.color0);
    const Rgb second = ExpandColor(endpoints.color1);
    const std::array<int, 3> a{first.red, first.green, first.blue};
    const std::array<int, 3> b{second.red, second.green, second.blue};
    int error = 0;
    for (std::size_t channel = 0; channel < 3; ++channel) {
        error += a[channel] * (a[channel] * sums.both00 - 2 * steps * sums.color0[channel]);
        error += b[channel] * (b[channel] * sums.both11 - 2 * steps * sums.color1[channel]);
        error += 2 * a[channel] * b[channel] * sums.both01;
    }
    return error;
}

struct BestRuns {
    bool found = false;
    int error = 0;
    EndpointPair endpoints{};
};

void TryRuns(const PrefixSums& prefix, const std::array<std::size_t, 3>& boundaries, int steps,
             BestRuns& best)
{
    const EndpointSums sums = SumsOfRuns(prefix, boundaries, steps);
    EndpointPair endpoints{};
    if (!SolveEndpoints(sums, steps, endpoints))
        return;
    const int error = RelativeError(sums, endpoints, steps);
    if (!best.found || error < best.error)
        best = {true, error, endpoints};
}
}  // namespace

ColorFit ClusterFit(const ColorPixels& pixels, const std::array<int, 3>& axis, const ColorFit& fit)
{
    const PrefixSums prefix = SumInOrder(pixels, axis);
    const int steps = StepsOf(fit.mode);
    BestRuns best;
    for (std::size_t first = 0; first <= prefix.count; ++first)
        for (std::size_t second = first; second <= prefix.count; ++second) {
            // Three colours have no third boundary: one pass with a value that is not looked at.
            const std::size_t last = steps == 3 ? prefix.count : second;
            for (std::size_t third = second; third <= last; ++third)
                TryRuns(prefix, {first, second, third}, steps, best);
        }
    if (!best.found)
        return fit;
    const ColorFit found = MeasureEndpoints(pixels, best.endpoints.color0, best.endpoints.color1, fit.mode);
    return found.error < fit.error ? found : fit;
}

}  // namespace Dxt
