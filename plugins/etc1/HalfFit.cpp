#include "plugins/etc1/HalfFit.h"

#include <algorithm>
#include <climits>
#include <cstdlib>

namespace Etc1 {
namespace {
using Plugin::Quality;
using Levels = std::array<int, 3>;

// What the error of a base colour takes, as long as no modifier makes a channel leave 0 to 255.
struct Distances {
    // Of each pixel, the absolute sum of its three channel differences; in rising order.
    std::array<int, kHalfPixels> sums;
    // prefix[n] is the sum of the first n of them.
    std::array<int, kHalfPixels + 1> prefix;
    // The squared differences of all pixels and channels.
    int squares;
};

Distances MeasureDistances(const HalfPixels& pixels, const std::array<int, 3>& base)
{
    Distances distances{};
    for (std::size_t i = 0; i < kHalfPixels; ++i) {
        const int red = pixels.red[i] - base[0];
        const int green = pixels.green[i] - base[1];
        const int blue = pixels.blue[i] - base[2];
        distances.squares += red * red + green * green + blue * blue;
        const int sum = std::abs(red + green + blue);
        std::size_t place = i;
        for (; place > 0 && distances.sums[place - 1] > sum; --place)
            distances.sums[place] = distances.sums[place - 1];
        distances.sums[place] = sum;
    }
    for (std::size_t i = 0; i < kHalfPixels; ++i)
        distances.prefix[i + 1] = distances.prefix[i] + distances.sums[i];
    return distances;
}

bool NothingIsClamped(const std::array<int, 3>& base, int largest)
{
    const auto [low, high] = std::minmax({base[0], base[1], base[2]});
    return low >= largest && high + largest <= 255;
}

// Without clamping a modifier moves all channels alike, so a pixel's error is squares - 2 * modifier * sum +
// 3 * modifier^2, and the better sign is the sum's. Up to a certain sum the small modifier is better: the
// tables' limits rise, so `smallOnes` only ever grows from table to table.
int UnclampedError(const Distances& distances, std::size_t table, std::size_t& smallOnes)
{
    const int smaller = kModifiers[table][0];
    const int larger = kModifiers[table][1];
    while (smallOnes < kHalfPixels && 2 * distances.sums[smallOnes] <= 3 * (smaller + larger))
        ++smallOnes;
    const int count = static_cast<int>(smallOnes);
    const int largeOnes = static_cast<int>(kHalfPixels) - count;
    const int smallSum = distances.prefix[smallOnes];
    const int largeSum = distances.prefix[kHalfPixels] - smallSum;
    return distances.squares + smaller * (3 * smaller * count - 2 * smallSum) +
           larger * (3 * larger * largeOnes - 2 * largeSum);
}

using Palette = std::array<std::array<int, 3>, 4>;

Palette MakePalette(const std::array<int, 3>& base, std::size_t table)
{
    Palette palette;
    for (int code = 0; code < 4; ++code) {
        const int modifier = ModifierOf(table, code);
        palette[static_cast<std::size_t>(code)] = {Clamp255(base[0] + modifier), Clamp255(base[1] + modifier),
                                                   Clamp255(base[2] + modifier)};
    }
    return palette;
}

int PixelError(const HalfPixels& pixels, std::size_t i, const std::array<int, 3>& color)
{
    const int red = pixels.red[i] - color[0];
    const int green = pixels.green[i] - color[1];
    const int blue = pixels.blue[i] - color[2];
    return red * red + green * green + blue * blue;
}

// Gives up, with a value that is not below `limit`, as soon as the limit is reached.
int ClampedError(const HalfPixels& pixels, const std::array<int, 3>& base, std::size_t table, int limit)
{
    const Palette palette = MakePalette(base, table);
    int error = 0;
    for (std::size_t i = 0; i < kHalfPixels && error < limit; ++i)
        error += std::min({PixelError(pixels, i, palette[0]), PixelError(pixels, i, palette[1]),
                           PixelError(pixels, i, palette[2]), PixelError(pixels, i, palette[3])});
    return error;
}

Candidate MeasureBase(const HalfPixels& pixels, const Levels& levels, int bits, int limit)
{
    const auto base = ExpandLevels(levels, bits);
    const Distances distances = MeasureDistances(pixels, base);
    Candidate candidate{levels, 0, limit};
    std::size_t smallOnes = 0;
    const int farthest = distances.sums[kHalfPixels - 1];
    for (std::size_t table = 0; table < kTables; ++table) {
        // Once the small modifier reaches every pixel, larger tables only overshoot.
        if (table > 0 && 3 * kModifiers[table - 1][0] >= farthest)
            break;
        const int error = NothingIsClamped(base, kModifiers[table][1])
                              ? UnclampedError(distances, table, smallOnes)
                              : ClampedError(pixels, base, table, candidate.error);
        if (error < candidate.error) {
            candidate.error = error;
            candidate.table = table;
        }
    }
    return candidate;
}

// The nearest level of a colour that is given as a sum over the half's pixels.
int RoundLevel(int sum, int bits)
{
    const int top = (1 << bits) - 1;
    const int whole = static_cast<int>(kHalfPixels) * 255;
    return std::clamp((2 * sum * top + whole) / (2 * whole), 0, top);
}

Levels MeanLevels(const HalfPixels& pixels, int bits)
{
    Levels sums{};
    for (std::size_t i = 0; i < kHalfPixels; ++i) {
        sums[0] += pixels.red[i];
        sums[1] += pixels.green[i];
        sums[2] += pixels.blue[i];
    }
    return {RoundLevel(sums[0], bits), RoundLevel(sums[1], bits), RoundLevel(sums[2], bits)};
}

// The base colour that fits best when every pixel keeps the modifier it has now.
Levels SolveLevels(const HalfPixels& pixels, const Candidate& candidate, int bits)
{
    const auto codes = CodesOf(pixels, ExpandLevels(candidate.levels, bits), candidate.table);
    Levels sums{};
    for (std::size_t i = 0; i < kHalfPixels; ++i) {
        const int modifier = ModifierOf(candidate.table, codes[i]);
        sums[0] += pixels.red[i] - modifier;
        sums[1] += pixels.green[i] - modifier;
        sums[2] += pixels.blue[i] - modifier;
    }
    return {RoundLevel(std::max(sums[0], 0), bits), RoundLevel(std::max(sums[1], 0), bits),
            RoundLevel(std::max(sums[2], 0), bits)};
}

// One search: remembers what was tried and follows each try to the base colour that it asks for.
class CBaseSearch {
public:
    CBaseSearch(const HalfPixels& pixels, int bits, int limit, CCandidates& candidates)
        : m_rPixels(pixels), m_rCandidates(candidates), m_nBits(bits), m_nLimit(limit)
    {
    }

    void Try(Levels levels, int solveRounds)
    {
        for (;; --solveRounds) {
            if (m_rCandidates.Full() || m_rCandidates.Contains(levels))
                return;
            const Candidate candidate = MeasureBase(m_rPixels, levels, m_nBits, m_nLimit);
            m_rCandidates.Add(candidate);
            if (solveRounds == 0 || candidate.error == 0 || candidate.error == m_nLimit)
                return;
            levels = SolveLevels(m_rPixels, candidate, m_nBits);
        }
    }

    // All colours within `reach` levels in each channel.
    void TryAround(const Levels& middle, int reach, int solveRounds)
    {
        const int top = (1 << m_nBits) - 1;
        const auto from = [&](std::size_t channel) { return std::max(middle[channel] - reach, 0); };
        const auto to = [&](std::size_t channel) { return std::min(middle[channel] + reach, top); };
        for (int red = from(0); red <= to(0); ++red)
            for (int green = from(1); green <= to(1); ++green)
                for (int blue = from(2); blue <= to(2); ++blue)
                    Try({red, green, blue}, solveRounds);
    }

    // Lighter and darker colours of the same tint: what a modifier takes away, the base can give.
    void TryShades(const Levels& middle, int reach, int solveRounds)
    {
        const int top = (1 << m_nBits) - 1;
        for (int shade = 1; shade <= reach; ++shade)
            for (const int step : {-shade, shade})
                Try({std::clamp(middle[0] + step, 0, top), std::clamp(middle[1] + step, 0, top),
                     std::clamp(middle[2] + step, 0, top)},
                    solveRounds);
    }

private:
    const HalfPixels& m_rPixels;
    CCandidates& m_rCandidates;
    int m_nBits;
    int m_nLimit;
};
}  // namespace

bool CCandidates::Contains(const std::array<int, 3>& levels) const
{
    for (std::size_t i = 0; i < m_nCount; ++i)
        if (m_aEntries[i].levels == levels)
            return true;
    return false;
}

void CCandidates::Add(const Candidate& candidate)
{
    m_aEntries[m_nCount++] = candidate;
}

void CCandidates::Sort()
{
    std::sort(m_aEntries.begin(), m_aEntries.begin() + static_cast<std::ptrdiff_t>(m_nCount),
              [](const Candidate& a, const Candidate& b) {
                  return a.error != b.error ? a.error < b.error : a.levels < b.levels;
              });
}

std::array<int, 3> ExpandLevels(const std::array<int, 3>& levels, int bits)
{
    if (bits == 4)
        return {Expand4(levels[0]), Expand4(levels[1]), Expand4(levels[2])};
    return {Expand5(levels[0]), Expand5(levels[1]), Expand5(levels[2])};
}

std::array<int, kHalfPixels> CodesOf(const HalfPixels& pixels, const std::array<int, 3>& base,
                                     std::size_t table)
{
    const Palette palette = MakePalette(base, table);
    std::array<int, kHalfPixels> codes{};
    for (std::size_t i = 0; i < kHalfPixels; ++i) {
        int best = INT_MAX;
        for (std::size_t code = 0; code < palette.size(); ++code) {
            const int error = PixelError(pixels, i, palette[code]);
            if (error < best) {
                best = error;
                codes[i] = static_cast<int>(code);
            }
        }
    }
    return codes;
}

void FindBases(const HalfPixels& pixels, int bits, Plugin::Quality quality, int limit,
               CCandidates& candidates)
{
    const Levels mean = MeanLevels(pixels, bits);
    CBaseSearch search(pixels, bits, limit, candidates);
    switch (quality) {
        case Quality::Fast:
            search.Try(mean, 0);
            break;
        case Quality::Normal:
            search.Try(mean, 1);
            search.TryShades(mean, 1, 1);
            break;
        case Quality::High:
            search.Try(mean, 2);
            search.TryShades(mean, 3, 2);
            break;
        case Quality::Best:
            search.Try(mean, 2);
            search.TryShades(mean, 4, 2);
            search.TryAround(mean, 1, 1);
            break;
    }
    candidates.Sort();
}

}  // namespace Etc1
