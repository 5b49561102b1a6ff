#pragma once

// The search of the middle level: the line along the main axis of the colours, labels by the nearest place on
// it, and ends solved from the labels, a few times over. A line has as many steps as the highest label: three
// for four colours, two for three. Included by the kernels of each instruction set.

namespace {

// Where a pixel's place on a line changes its label, in the direction's own units.
struct Cuts {
    HalfColor direction;
    CInts at[3];
};

inline CInts LabelOf(CInts place, const Cuts& cuts)
{
    // Each comparison is -1 where the place lies beyond.
    return CInts::All(0) - ((place > cuts.at[0]) + (place > cuts.at[1]) + (place > cuts.at[2]));
}

inline LabelSums NoLabels()
{
    return {CInts::All(0), CInts::All(0), CInts::All(0)};
}

inline LabelSums SumLabels(const ColorBatch& batch, const Cuts& cuts)
{
    LabelSums sums = NoLabels();
    for (int i = 0; i < kPixels; ++i)
        AddLabel(batch, i, LabelOf(Place(batch, i, cuts.direction), cuts), sums);
    return sums;
}

// Cuts a way of the length `range` into parts around evenly spaced places.
template <int Steps>
inline Cuts EvenCuts(const HalfColor& direction, CFloats start, CFloats range)
{
    // What is beyond every place is no cut.
    constexpr int kNever = 0x7FFFFFFF;
    return {direction,
            {ToInts(start + range * CFloats::All(0.5F / Steps)),
             ToInts(start + range * CFloats::All(1.5F / Steps)),
             Steps == 3 ? ToInts(start + range * CFloats::All(2.5F / Steps)) : CInts::All(kNever)}};
}

// Labels by even parts of the axis between the outermost pixels.
template <int Steps>
inline LabelSums SumLabelsAlong(const ColorBatch& batch, const FloatColor& mean, const FloatColor& direction)
{
    const HalfColor axis = ToHalfColor(direction);
    // A pixel that does not count stands with the mean, within the others.
    const CInts middle = ToInts(Dot(mean, direction));
    CInts places[kPixels];
    CInts lowest = middle;
    CInts highest = middle;
    for (int i = 0; i < kPixels; ++i) {
        places[i] = Select(batch.counts[i], Place(batch, i, axis), middle);
        lowest = Smaller(lowest, places[i]);
        highest = Larger(highest, places[i]);
    }
    const CFloats low = ToFloats(lowest);
    const Cuts cuts = EvenCuts<Steps>(axis, low, ToFloats(highest) - low);
    LabelSums sums = NoLabels();
    for (int i = 0; i < kPixels; ++i)
        AddLabel(batch, i, LabelOf(places[i], cuts), sums);
    return sums;
}

// The direction is eight times the line's, so that short lines keep their slope.
template <int Steps>
inline Cuts CutsOf(const FloatLine& line)
{
    constexpr float kScale = 8;
    const FloatColor direction = Times(Minus(line.first, line.second), CFloats::All(kScale));
    const HalfColor whole = ToHalfColor(direction);
    const FloatColor rounded{ToFloats(ToInts(direction.red)), ToFloats(ToInts(direction.green)),
                             ToFloats(ToInts(direction.blue))};
    const CFloats start = Dot(line.second, rounded);
    return EvenCuts<Steps>(whole, start, Dot(line.first, rounded) - start);
}

// Cuts halfway between the colours that the decoder shows.
inline Cuts CutsOf(const PackedLine& line)
{
    const HalfColor& first = line.first.color;
    const HalfColor& second = line.second.color;
    // Twice the direction, so that the middle of two places is a whole number.
    const HalfColor once{SubtractHalves(first.redGreen, second.redGreen),
                         Low(SubtractHalves(first.blue, second.blue))};
    const HalfColor direction{AddHalves(once.redGreen, once.redGreen), Low(AddHalves(once.blue, once.blue))};
    const CInts at3 = DotHalves(first, once);
    const CInts at2 = DotHalves(Third(first, second), once);
    const CInts at1 = DotHalves(Third(second, first), once);
    const CInts at0 = DotHalves(second, once);
    return {direction, {at0 + at1, at1 + at2, at2 + at3}};
}

// Rounds the first end, solves the second one again for what the first has become, and rounds it.
template <int Steps>
inline PackedLine Rounded(const LineSystem& system, const FloatLine& line)
{
    PackedLine packed;
    packed.first = Nearest(line.first);
    const CInts solvable = system.secondSecond > CFloats::All(0.5F);
    const CFloats scale = CFloats::All(1) / Larger(system.secondSecond, CFloats::All(1));
    const FloatColor first = ToFloatColor(packed.first.color);
    const FloatColor second =
        Times(Minus(Times(system.second, CFloats::All(Steps)), Times(first, system.firstSecond)), scale);
    packed.second = Nearest(Select(solvable, second, line.second));
    return packed;
}

// The words of a four-colour block. Labels lie in the pixels' places, two bits each.
struct ColorWords {
    CInts ends;
    CInts indices;
};

inline ColorWords WordsOf(CInts first, CInts second, CInts labels)
{
    // The first colour has to be the greater number. Equal colours would mean three-colour mode to a decoder,
    // where the last index is black: all pixels get the first one.
    const CInts isSwapped = second > first;
    labels = (labels ^ isSwapped) | (first == second);
    const CInts high = (labels ^ ShiftLeft<1>(labels)) & CInts::All(static_cast<int>(0xAAAAAAAAU));
    const CInts low = ShiftRightUnsigned<1>(labels ^ CInts::All(-1)) & CInts::All(0x55555555);
    return {Larger(first, second) | ShiftLeft<16>(Smaller(first, second)), high | low};
}

inline CInts LabelsOf(const ColorBatch& batch, const PackedLine& line)
{
    const Cuts cuts = CutsOf(line);
    CInts labels = CInts::All(0);
    for (int i = kPixels - 1; i >= 0; --i)
        labels = ShiftLeft<2>(labels) | LabelOf(Place(batch, i, cuts.direction), cuts);
    return labels;
}

inline FloatColor MeanOf(const ColorSums& colors)
{
    return Times(colors.sum, CFloats::All(1) / Larger(colors.count, CFloats::All(1)));
}

// Labels come once from the axis, and `Rounds` times from the line solved last.
template <int Steps, int Rounds>
inline PackedLine FitLine(const ColorBatch& batch)
{
    const ColorSums colors = SumColors(batch);
    const FloatColor mean = MeanOf(colors);
    FloatLine line{mean, mean};
    LineSystem system =
        SystemOf<Steps>(colors, SumLabelsAlong<Steps>(batch, mean, MainAxis(CovarianceOf(batch, colors))));
    SolveLine<Steps>(system, line);
    for (int round = 0; round < Rounds; ++round) {
        system = SystemOf<Steps>(colors, SumLabels(batch, CutsOf<Steps>(line)));
        SolveLine<Steps>(system, line);
    }
    return Rounded<Steps>(system, line);
}

}  // namespace
