#pragma once

// The exhaustive part of the highest level: the pixels in order along a line, and every way to cut that order
// into runs of one label, scored by how much of the colours' spread the best line for it explains. Included
// by the kernels of each instruction set.

namespace {

// Sums of the first n pixels in order, less n times the mean of all, so that the last one is 0.
struct RunSums {
    FloatColor upTo[kPixels + 1];
};

// Ascending in every lane; the keys' low four bits are the pixels.
inline void SortKeys(CInts (&keys)[kPixels])
{
    for (int size = 2; size <= kPixels; size *= 2)
        for (int apart = size / 2; apart > 0; apart /= 2)
            for (int i = 0; i < kPixels; ++i) {
                const int other = i ^ apart;
                if (other < i)
                    continue;
                const bool isRising = (i & size) == 0;
                const CInts low = Smaller(keys[i], keys[other]);
                const CInts high = Larger(keys[i], keys[other]);
                keys[i] = isRising ? low : high;
                keys[other] = isRising ? high : low;
            }
}

inline ColorBatch InOrder(const ColorBatch& batch, const HalfColor& direction)
{
    CInts keys[kPixels];
    for (int i = 0; i < kPixels; ++i)
        keys[i] = ShiftLeft<4>(Place(batch, i, direction)) | CInts::All(i);
    SortKeys(keys);
    std::int32_t from[3][kPixels][kLanes];
    std::int32_t to[3][kPixels][kLanes];
    std::int32_t order[kPixels][kLanes];
    for (int i = 0; i < kPixels; ++i) {
        batch.redGreen[i].Store(from[0][i]);
        batch.blueOne[i].Store(from[1][i]);
        batch.counts[i].Store(from[2][i]);
        (keys[i] & CInts::All(15)).Store(order[i]);
    }
    for (int i = 0; i < kPixels; ++i)
        for (int lane = 0; lane < kLanes; ++lane)
            for (int part = 0; part < 3; ++part)
                to[part][i][lane] = from[part][order[i][lane]][lane];
    ColorBatch sorted;
    for (int i = 0; i < kPixels; ++i) {
        sorted.redGreen[i] = CInts::Load(to[0][i]);
        sorted.blueOne[i] = CInts::Load(to[1][i]);
        sorted.counts[i] = CInts::Load(to[2][i]);
    }
    return sorted;
}

inline RunSums SumRuns(const ColorBatch& sorted, const ColorSums& colors)
{
    const FloatColor mean = MeanOf(colors);
    const CFloats zero = CFloats::All(0);
    RunSums sums;
    sums.upTo[0] = {zero, zero, zero};
    for (int i = 0; i < kPixels; ++i) {
        const CInts redGreen = sorted.redGreen[i];
        const CInts blueOne = sorted.blueOne[i];
        const FloatColor color{ToFloats(Low(redGreen)), ToFloats(High(redGreen)), ToFloats(Low(blueOne))};
        // A pixel that does not count adds nothing.
        sums.upTo[i + 1] = Plus(sums.upTo[i], Minus(color, Times(mean, ToFloats(High(blueOne)))));
    }
    return sums;
}

// Where the labels fall in the order: pixels before the first cut have the highest label.
struct RunCuts {
    CFloats score;
    CInts cuts;  // 8 bits each, the first one lowest
};

constexpr int kFourRuns = 969;
constexpr int kThreeRuns = 153;

// Every way to cut, the last cut moving first, and what the squared sum of the labels' colours is multiplied
// with.
template <int Count>
struct RunTable {
    float weights[Count];
    std::int32_t cuts[Count];
};

constexpr float RunWeight(int squares, int labels, int steps)
{
    const int both = steps * labels - squares;
    const int others = steps * steps * kPixels - steps * labels - both;
    const int determinant = squares * others - both * both;
    // The line explains steps^2 * pixels / determinant of the squared sum.
    return determinant == 0 ? 0.0F
                            : static_cast<float>(steps * steps * kPixels) / static_cast<float>(determinant);
}

constexpr RunTable<kFourRuns> MakeFourRuns()
{
    RunTable<kFourRuns> table{};
    int run = 0;
    for (int a = 0; a <= kPixels; ++a)
        for (int b = a; b <= kPixels; ++b)
            for (int c = b; c <= kPixels; ++c, ++run) {
                table.weights[run] = RunWeight(5 * a + 3 * b + c, a + b + c, 3);
                table.cuts[run] = a | b << 8 | c << 16;
            }
    return table;
}

constexpr RunTable<kThreeRuns> MakeThreeRuns()
{
    RunTable<kThreeRuns> table{};
    int run = 0;
    for (int a = 0; a <= kPixels; ++a)
        for (int b = a; b <= kPixels; ++b, ++run) {
            table.weights[run] = RunWeight(3 * a + b, a + b, 2);
            table.cuts[run] = a | b << 8;
        }
    return table;
}

constexpr RunTable<kFourRuns> kFourRunTable = MakeFourRuns();
constexpr RunTable<kThreeRuns> kThreeRunTable = MakeThreeRuns();

template <int Count>
inline void TryCuts(const FloatColor& sum, const RunTable<Count>& table, int run, RunCuts& best)
{
    const CFloats score = Dot(sum, sum) * CFloats::All(table.weights[run]);
    const CInts isBetter = score > best.score;
    best.score = Larger(score, best.score);
    best.cuts = Select(isBetter, CInts::All(table.cuts[run]), best.cuts);
}

inline RunCuts BestFourCuts(const RunSums& sums)
{
    RunCuts best{CFloats::All(-1), CInts::All(0)};
    int run = 0;
    for (int a = 0; a <= kPixels; ++a)
        for (int b = a; b <= kPixels; ++b) {
            const FloatColor two = Plus(sums.upTo[a], sums.upTo[b]);
            for (int c = b; c <= kPixels; ++c)
                TryCuts(Plus(two, sums.upTo[c]), kFourRunTable, run++, best);
        }
    return best;
}

inline RunCuts BestThreeCuts(const RunSums& sums)
{
    RunCuts best{CFloats::All(-1), CInts::All(0)};
    int run = 0;
    for (int a = 0; a <= kPixels; ++a)
        for (int b = a; b <= kPixels; ++b)
            TryCuts(Plus(sums.upTo[a], sums.upTo[b]), kThreeRunTable, run++, best);
    return best;
}

// The ends for the best cuts of the order along `direction`.
template <int Steps, Beside Fourth = Beside::Black>
inline Candidate FitRuns(const ColorBatch& batch, const ColorSums& colors, const HalfColor& direction)
{
    const ColorBatch sorted = InOrder(batch, direction);
    const RunSums runs = SumRuns(sorted, colors);
    const RunCuts best = Steps == 3 ? BestFourCuts(runs) : BestThreeCuts(runs);
    LabelSums sums = NoLabels();
    const CInts byte = CInts::All(0xFF);
    const CInts first = best.cuts & byte;
    const CInts second = ShiftRight<8>(best.cuts) & byte;
    const CInts third = ShiftRight<16>(best.cuts);
    for (int i = 0; i < kPixels; ++i) {
        const CInts at = CInts::All(i);
        // The third cut of three colours is 0, which no place is before.
        AddLabel(sorted, i, CInts::All(0) - ((first > at) + (second > at) + (third > at)), sums);
    }
    const FloatColor mean = MeanOf(colors);
    FloatLine line{mean, mean};
    const LineSystem system = SystemOf<Steps>(colors, sums);
    SolveLine<Steps>(system, line);
    const PackedLine packed = Rounded<Steps>(system, line);
    return Measured<Fourth>(batch, packed.first.packed, packed.second.packed,
                            CInts::All(Steps == 3 ? 0 : -1));
}

}  // namespace
