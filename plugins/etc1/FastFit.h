#pragma once

// The quickest level: one base colour for each half. Included by the kernels of each instruction set.

namespace {

// Of the levels nearest to the mean and those with one channel rounded the other way, the ones whose tint is
// nearest to the mean's; a modifier can make up for the shade.
template <int Bits>
inline CInts NearestTint(const ChannelSums& sums)
{
    // What a level is in a sum of eight pixels.
    constexpr int kStep = 8 * 255 / ((1 << Bits) - 1);
    const Rounding mean = RoundMean<Bits>(sums);
    const CInts gainUp = mean.most + mean.most + mean.most - mean.sum;
    const CInts gainDown = mean.sum - mean.least - mean.least - mean.least;
    const CInts isUp = gainUp > gainDown;
    const CInts isGain = Larger(gainUp, gainDown) > CInts::All(kStep);
    const CInts up = SmallerBytes(mean.levels + mean.up, CInts::All(kTopLevels<Bits>));
    const CInts down = SubtractBytesClamped(mean.levels, mean.down);
    return Select(isGain, Select(isUp, up, down), mean.levels);
}

inline Choice FitFlip(const Batch& batch, bool flip)
{
    EveryTable halves[2] = {EveryTable(batch, flip, 0), EveryTable(batch, flip, 1)};
    CInts levels[2] = {NearestTint<5>(halves[0].half.sums), NearestTint<5>(halves[1].half.sums)};
    const CInts fits = DifferenceFits(levels[0], levels[1]);
    if (AnyOf(Not(fits)))
        for (int half = 0; half < 2; ++half)
            levels[half] = Select(fits, levels[half], NearestTint<4>(halves[half].half.sums));
    Tried tried[2];
    for (int half = 0; half < 2; ++half)
        tried[half] = {halves[half].Measure(ColorOf(levels[half], fits)), levels[half]};
    Choice choice = Join(tried[0], tried[1], fits);
    const CInts cut = CostOfCut(halves[0].half.sums) + CostOfCut(halves[1].half.sums);
    choice.cost = choice.cost + ShiftLeft<kCostBits>(cut);
    return choice;
}

}  // namespace
