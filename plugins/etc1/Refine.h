#pragma once

// Single steps away from bases that were found. Clamping can make colours beside the grey line better than
// those on it. Included by the kernels of each instruction set.

namespace {

constexpr int kSteps = 6;

// One level up or down in one channel.
inline CInts Stepped(CInts levels, CInts differential, int step)
{
    const CInts one = CInts::All(1 << (step / 2 * 8));
    const CInts top = Select(differential, CInts::All(kTopLevels<5>), CInts::All(kTopLevels<4>));
    return step % 2 == 0 ? SmallerBytes(levels + one, top) : SubtractBytesClamped(levels, one);
}

template <typename Tables>
inline void Refine(Tables (&tables)[2], int passes, Choice& choice)
{
    Tried best[2] = {{CInts::All(0), choice.first}, {CInts::All(0), choice.second}};
    for (int half = 0; half < 2; ++half) {
        tables[half].StartLine();
        best[half].cost = tables[half].Measure(ColorOf(best[half].levels, choice.differential));
    }
    for (int pass = 0; pass < passes; ++pass)
        for (int half = 0; half < 2; ++half) {
            const CInts from = best[half].levels;
            for (int step = 0; step < kSteps; ++step) {
                const CInts levels = Stepped(from, choice.differential, step);
                const CInts fits = half == 0 ? DifferenceFits(levels, best[1].levels)
                                             : DifferenceFits(best[0].levels, levels);
                const CInts isAllowed = fits | Not(choice.differential);
                const CInts cost = tables[half].Measure(ColorOf(levels, choice.differential));
                const CInts isBetter = isAllowed & (best[half].cost > cost);
                best[half] = {Select(isBetter, cost, best[half].cost),
                              Select(isBetter, levels, best[half].levels)};
            }
        }
    choice = Join(best[0], best[1], choice.differential);
}

}  // namespace
