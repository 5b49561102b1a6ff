#pragma once

// The search for the base colours. Included by the kernels of each instruction set.
//
// Whatever modifiers the pixels take, the base colour that fits them best lies on the grey line through the
// mean of the half as long as nothing is clamped. So those tried are the ones beside that line: the nearest
// to the mean, its neighbours in the channels that were rounded most, and the same some steps lighter and
// darker.

namespace {

constexpr int kPhases = 3;

template <int Shades>
constexpr int kLineLength = kPhases*(2 * Shades + 1);

template <int Bits>
constexpr int kTopLevels = ((1 << Bits) - 1) * 0x010101;

// The channel, as a 1 in its byte, whose value is the given one.
inline CInts ChannelWith(CInts value, CInts red, CInts green)
{
    return Select(red == value, CInts::All(1),
                  Select(green == value, CInts::All(0x100), CInts::All(0x10000)));
}

// What rounding took from each channel, and the channels where that is most and least.
struct Rounding {
    CInts levels;
    CInts most;
    CInts least;
    CInts sum;
    CInts up;    // the channel of `most`
    CInts down;  // the channel of `least`
};

template <int Bits>
inline Rounding RoundMean(const ChannelSums& sums)
{
    Rounding rounding;
    rounding.levels = NearestLevels<Bits>(sums);
    const CInts base = Expanded<Bits>(rounding.levels);
    const CInts redGreen = SubtractHalves(sums.redGreen, ShiftLeftHalves<3>(RedGreen(base)));
    const CInts red = ShiftRight<16>(ShiftLeft<16>(redGreen));
    const CInts green = ShiftRight<16>(redGreen);
    const CInts blue = sums.blue - ShiftRightUnsigned<13>(base & CInts::All(0xFF0000));
    rounding.most = Larger(red, Larger(green, blue));
    rounding.least = Smaller(red, Smaller(green, blue));
    rounding.sum = red + green + blue;
    rounding.up = ChannelWith(rounding.most, red, green);
    rounding.down = ChannelWith(rounding.least, red, green);
    return rounding;
}

template <int Bits>
inline CInts Lighter(CInts levels, int steps)
{
    return SmallerBytes(levels + CInts::All(steps * 0x010101), CInts::All(kTopLevels<Bits>));
}
inline CInts Darker(CInts levels, int steps)
{
    return SubtractBytesClamped(levels, CInts::All(steps * 0x010101));
}

template <int Bits, typename Tables>
inline Tried Try(Tables& tables, CInts levels)
{
    return {tables.Measure(Expanded<Bits>(levels)), levels};
}

template <int Bits, int Shades, typename Tables>
inline void TryLine(Tables& tables, Tried (&tried)[kLineLength<Shades>])
{
    const Rounding mean = RoundMean<Bits>(tables.half.sums);
    const CInts phases[kPhases] = {mean.levels,
                                   SmallerBytes(mean.levels + mean.up, CInts::All(kTopLevels<Bits>)),
                                   SubtractBytesClamped(mean.levels, mean.down)};
    tables.StartLine();
    Tried* next = tried;
    for (const CInts phase : phases)
        *next++ = Try<Bits>(tables, phase);
    for (int step = 1; step <= Shades; ++step)
        for (const CInts phase : phases) {
            *next++ = Try<Bits>(tables, Lighter<Bits>(phase, step));
            *next++ = Try<Bits>(tables, Darker(phase, step));
        }
}

template <int Length>
inline Tried BestOf(const Tried (&tried)[Length])
{
    Tried best = tried[0];
    for (int i = 1; i < Length; ++i)
        best = Smaller(best, tried[i]);
    return best;
}

// The best pair whose difference fits; the cost is kNoCost where none does.
template <int Length>
inline Choice BestPair(const Tried (&first)[Length], const Tried (&second)[Length])
{
    Tried bestFirst = BestOf(first);
    Tried bestSecond = BestOf(second);
    const CInts fits = DifferenceFits(bestFirst.levels, bestSecond.levels);
    Choice best = Join(bestFirst, bestSecond, CInts::All(-1));
    if (!AnyOf(Not(fits)))
        return best;
    CInts cost = Select(fits, best.cost, CInts::All(kNoCost));
    const CInts leastSecond = WithoutLabel(bestSecond.cost);
    for (int i = 0; i < Length; ++i) {
        const CInts firstCost = WithoutLabel(first[i].cost);
        if (!AnyOf(cost > firstCost + leastSecond))
            continue;
        for (int k = 0; k < Length; ++k) {
            const CInts sum = firstCost + WithoutLabel(second[k].cost);
            const CInts isBetter = DifferenceFits(first[i].levels, second[k].levels) & (cost > sum);
            if (!AnyOf(isBetter))
                continue;
            cost = Select(isBetter, sum, cost);
            bestFirst = {Select(isBetter, first[i].cost, bestFirst.cost),
                         Select(isBetter, first[i].levels, bestFirst.levels)};
            bestSecond = {Select(isBetter, second[k].cost, bestSecond.cost),
                          Select(isBetter, second[k].levels, bestSecond.levels)};
        }
    }
    best = Join(bestFirst, bestSecond, CInts::All(-1));
    best.cost = cost;
    return best;
}

}  // namespace
