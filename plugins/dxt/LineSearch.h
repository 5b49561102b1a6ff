#pragma once

// The searches of the upper levels: exact errors of a pair of ends, single steps of their levels, and every
// way to cut the pixels, in the order of their places on a line, into runs of one label. Included by the
// kernels of each instruction set.

namespace {

// Ends as 5-6-5 bits, how many colours lie between them in each lane, and the error of the best labels.
struct Candidate {
    CInts first;
    CInts second;
    CInts isThree;  // all ones: three colours on the line and black beside it
    CInts error;
};

inline void Keep(const Candidate& other, Candidate& best)
{
    const CInts isBetter = best.error > other.error;
    best = {Select(isBetter, other.first, best.first), Select(isBetter, other.second, best.second),
            Select(isBetter, other.isThree, best.isThree), Smaller(other.error, best.error)};
}

inline Candidate Select(CInts mask, const Candidate& a, const Candidate& b)
{
    return {Select(mask, a.first, b.first), Select(mask, a.second, b.second),
            Select(mask, a.isThree, b.isThree), Select(mask, a.error, b.error)};
}

constexpr int kColors = 4;

// What pixels may make of the index beside a line of three colours: the black that decoders show for it, or
// nothing because it means transparent.
enum class Beside { Black, Nothing };

// From the first end to the second; of three colours the fourth is black, or the first one again where pixels
// may not have black.
struct LineColors {
    HalfColor colors[kColors];
};

inline HalfColor Select(CInts mask, const HalfColor& a, const HalfColor& b)
{
    return {Select(mask, a.redGreen, b.redGreen), Select(mask, a.blue, b.blue)};
}

template <Beside Fourth>
inline LineColors ColorsOf(CInts packedFirst, CInts packedSecond, CInts isThree)
{
    const HalfColor first = Unpacked(packedFirst).color;
    const HalfColor second = Unpacked(packedSecond).color;
    const HalfColor black{CInts::All(0), CInts::All(0)};
    const HalfColor& beside = Fourth == Beside::Black ? black : first;
    LineColors line{{first, Select(isThree, Middle(first, second), Third(first, second)),
                     Select(isThree, second, Third(second, first)), Select(isThree, beside, second)}};
    // The halves that count the pixels cancel out.
    for (HalfColor& color : line.colors)
        color.blue = color.blue | CInts::All(0x10000);
    return line;
}

inline CInts Distance(const ColorBatch& batch, int pixel, const HalfColor& color)
{
    const CInts redGreen = SubtractHalves(batch.redGreen[pixel], color.redGreen);
    const CInts blue = SubtractHalves(batch.blueOne[pixel], color.blue);
    return PairSums(redGreen, redGreen) + PairSums(blue, blue);
}

inline CInts LeastDistance(const ColorBatch& batch, int pixel, const LineColors& line)
{
    CInts least = Distance(batch, pixel, line.colors[0]);
    for (int k = 1; k < kColors; ++k)
        least = Smaller(least, Distance(batch, pixel, line.colors[k]));
    return least;
}

template <Beside Fourth = Beside::Black>
inline Candidate Measured(const ColorBatch& batch, CInts first, CInts second, CInts isThree)
{
    const LineColors line = ColorsOf<Fourth>(first, second, isThree);
    CInts error = CInts::All(0);
    for (int i = 0; i < kPixels; ++i)
        error = error + (LeastDistance(batch, i, line) & batch.counts[i]);
    return {first, second, isThree, error};
}

// The place of the nearest colour in LineColors for every pixel, two bits each.
template <Beside Fourth = Beside::Black>
inline CInts NearestPlaces(const ColorBatch& batch, const Candidate& candidate)
{
    const LineColors line = ColorsOf<Fourth>(candidate.first, candidate.second, candidate.isThree);
    CInts places = CInts::All(0);
    for (int i = kPixels - 1; i >= 0; --i) {
        CInts least = Distance(batch, i, line.colors[0]);
        CInts place = CInts::All(0);
        for (int k = 1; k < kColors; ++k) {
            const CInts distance = Distance(batch, i, line.colors[k]);
            place = Select(least > distance, CInts::All(k), place);
            least = Smaller(least, distance);
        }
        places = ShiftLeft<2>(places) | place;
    }
    return places;
}

// Moves one level of the ends, or the same channel of both, up or down; where that leaves the channel's range
// the level stays.
inline CInts Moved(CInts packed, int shift, int top, int by)
{
    const CInts unit = CInts::All(by * (1 << shift));
    const CInts mask = CInts::All(top << shift);
    const CInts atEnd = (packed & mask) == (by > 0 ? mask : CInts::All(0));
    return Select(atEnd, packed, packed + unit);
}

// One pass over single steps of each level and of both ends' levels together. Returns whether any lane
// gained.
template <Beside Fourth>
inline bool StepOnce(const ColorBatch& batch, Candidate& best)
{
    constexpr int kShift[3] = {11, 5, 0};
    constexpr int kTop[3] = {31, 63, 31};
    constexpr int kMoves[8][2] = {{1, 0}, {-1, 0}, {0, 1}, {0, -1}, {1, 1}, {-1, -1}, {1, -1}, {-1, 1}};
    const CInts before = best.error;
    for (int channel = 0; channel < 3; ++channel)
        for (const auto& move : kMoves) {
            const int shift = kShift[channel];
            const int top = kTop[channel];
            const CInts first = move[0] == 0 ? best.first : Moved(best.first, shift, top, move[0]);
            const CInts second = move[1] == 0 ? best.second : Moved(best.second, shift, top, move[1]);
            Keep(Measured<Fourth>(batch, first, second, best.isThree), best);
        }
    return AnyOf(before > best.error);
}

template <Beside Fourth = Beside::Black>
inline void Descend(const ColorBatch& batch, int passes, Candidate& best)
{
    while (passes > 0 && StepOnce<Fourth>(batch, best))
        --passes;
}

}  // namespace
