#pragma once

// The colours of the levels from normal on, put together from the searches: ends for the pixels that count,
// then words for all pixels. Included by the kernels of each instruction set.

namespace {

// The words of a three-colour block: the first colour must not be the greater number. Places are those of
// LineColors: first, middle, second, black.
inline ColorWords WordsOfThree(CInts first, CInts second, CInts places)
{
    // Index 0 is the first colour, 1 the second, 2 their middle, 3 black: 1 and 2 change places.
    const CInts low = CInts::All(0x55555555);
    const CInts lowBits = places & low;
    const CInts highBits = ShiftRightUnsigned<1>(places) & low;
    CInts indices = highBits | ShiftLeft<1>(lowBits);
    // With the colours swapped, 0 and 1 do: wherever the upper bit is not set.
    const CInts isSwapped = first > second;
    indices = indices ^ (isSwapped & (lowBits ^ low));
    return {Smaller(first, second) | ShiftLeft<16>(Larger(first, second)), indices};
}

inline ColorWords WordsOfPlaces(const Candidate& ends, CInts places)
{
    // Labels count from the second end, places from the first.
    const ColorWords four = WordsOf(ends.first, ends.second, places ^ CInts::All(-1));
    const ColorWords three = WordsOfThree(ends.first, ends.second, places);
    return {Select(ends.isThree, three.ends, four.ends), Select(ends.isThree, three.indices, four.indices)};
}

inline ColorWords NearestWords(const ColorBatch& batch, const Candidate& ends)
{
    return WordsOfPlaces(ends, NearestPlaces(batch, ends));
}

// By the place on the line alone, which is nearly as good and quicker. For four colours.
inline ColorWords QuickWords(const ColorBatch& batch, const Candidate& ends)
{
    return WordsOf(ends.first, ends.second, LabelsOf(batch, {Unpacked(ends.first), Unpacked(ends.second)}));
}

// Does not tell the error.
template <int Rounds>
inline Candidate FitNormal(const ColorBatch& batch)
{
    const PackedLine line = FitLine<3, Rounds>(batch);
    return {line.first.packed, line.second.packed, CInts::All(0), CInts::All(0)};
}

inline Candidate SearchHigh(const ColorBatch& batch)
{
    const PackedLine line = FitLine<3, 2>(batch);
    Candidate best = Measured(batch, line.first.packed, line.second.packed, CInts::All(0));
    Descend(batch, 1, best);
    return best;
}

// Without the pixels for which `mask` is not set.
inline void Restrict(const ColorBatch& batch, const CInts (&mask)[kPixels], ColorBatch& part)
{
    for (int i = 0; i < kPixels; ++i) {
        part.redGreen[i] = batch.redGreen[i] & mask[i];
        part.blueOne[i] = batch.blueOne[i] & mask[i];
        part.counts[i] = batch.counts[i] & mask[i];
    }
}

// The pixels that a black beside the line will hardly fail to serve.
inline void LeaveOutDark(const ColorBatch& batch, ColorBatch& bright)
{
    constexpr int kDarkest = 48;
    const CInts ones = CInts::All(0x10001);
    CInts mask[kPixels];
    for (int i = 0; i < kPixels; ++i)
        mask[i] = PairSums(batch.redGreen[i], ones) + Low(batch.blueOne[i]) > CInts::All(kDarkest);
    Restrict(batch, mask, bright);
}

// Solves the ends again for the pixels that are nearest to one of the three colours.
inline void RefineThree(const ColorBatch& batch, Candidate& best)
{
    const CInts places = NearestPlaces(batch, best);
    CInts mask[kPixels];
    CInts labels[kPixels];
    CInts rest = places;
    for (int i = 0; i < kPixels; ++i, rest = ShiftRightUnsigned<2>(rest)) {
        const CInts place = rest & CInts::All(3);
        mask[i] = CInts::All(3) > place;
        labels[i] = CInts::All(2) - (place & mask[i]);
    }
    ColorBatch part;
    Restrict(batch, mask, part);
    LabelSums sums = NoLabels();
    for (int i = 0; i < kPixels; ++i)
        AddLabel(part, i, labels[i], sums);
    const ColorSums colors = SumColors(part);
    const FloatColor mean = MeanOf(colors);
    FloatLine line{mean, mean};
    const LineSystem system = SystemOf<2>(colors, sums);
    SolveLine<2>(system, line);
    const PackedLine packed = Rounded<2>(system, line);
    Keep(Measured(batch, packed.first.packed, packed.second.packed, best.isThree), best);
}

inline Candidate SearchThree(const ColorBatch& batch)
{
    constexpr int kRounds = 2;
    ColorBatch bright;
    LeaveOutDark(batch, bright);
    const ColorSums colors = SumColors(bright);
    const HalfColor axis = ToHalfColor(MainAxis(CovarianceOf(bright, colors)));
    const Candidate ofBright = FitRuns<2>(bright, colors, axis);
    Candidate best = Measured(batch, ofBright.first, ofBright.second, ofBright.isThree);
    for (int round = 0; round < kRounds; ++round)
        RefineThree(batch, best);
    return best;
}

inline Candidate SearchFour(const ColorBatch& batch)
{
    const ColorSums colors = SumColors(batch);
    Candidate best = FitRuns<3>(batch, colors, ToHalfColor(MainAxis(CovarianceOf(batch, colors))));
    const PackedLine line = FitLine<3, 2>(batch);
    Keep(Measured(batch, line.first.packed, line.second.packed, CInts::All(0)), best);
    return best;
}

template <bool FourOnly>
inline Candidate SearchBest(const ColorBatch& batch)
{
    // Each kind of block comes some way down on its own before the better one is known.
    constexpr int kPassesBefore = 1;
    constexpr int kPasses = 2;
    Candidate best = SearchFour(batch);
    if constexpr (!FourOnly) {
        Descend(batch, kPassesBefore, best);
        Candidate three = SearchThree(batch);
        Descend(batch, kPassesBefore, three);
        Keep(three, best);
    }
    Descend(batch, kPasses, best);
    return best;
}

}  // namespace
