#pragma once

// The search for DXT1 with one-bit alpha: a block with transparent pixels has three colours, and its fourth
// index is theirs. Included by the kernels of each instruction set.

namespace {

// From this alpha on a pixel is opaque.
constexpr int kOpaqueFrom = 128;

// Leaves out the transparent pixels. Returns their places, two bits each.
inline CInts SplitByOneBit(const CInts (&pixels)[kPixels], SplitBatch& batch)
{
    CInts isClear[kPixels];
    CInts clear = CInts::All(0);
    for (int i = kPixels - 1; i >= 0; --i) {
        isClear[i] = CInts::All(kOpaqueFrom) > ShiftRightUnsigned<24>(pixels[i]);
        clear = ShiftLeft<2>(clear) | (isClear[i] & CInts::All(3));
    }
    SplitBy(isClear, pixels, batch);
    return clear;
}

template <int Steps, int Rounds>
inline Candidate MeasuredLine(const ColorBatch& batch)
{
    const PackedLine line = FitLine<Steps, Rounds>(batch);
    return Measured<Beside::Nothing>(batch, line.first.packed, line.second.packed,
                                     CInts::All(Steps == 3 ? 0 : -1));
}

template <int Steps>
inline Candidate MeasuredRuns(const ColorBatch& batch)
{
    const ColorSums colors = SumColors(batch);
    return FitRuns<Steps, Beside::Nothing>(batch, colors, ToHalfColor(MainAxis(CovarianceOf(batch, colors))));
}

// The ends of the better kind of block; where `onlyThree` is set, of one with three colours.
template <int Rounds, int Passes, bool TriesRuns>
inline Candidate FitOneBit(const ColorBatch& batch, CInts onlyThree)
{
    Candidate four = MeasuredLine<3, Rounds>(batch);
    Candidate three = MeasuredLine<2, Rounds>(batch);
    if constexpr (TriesRuns) {
        Keep(MeasuredRuns<3>(batch), four);
        Keep(MeasuredRuns<2>(batch), three);
    }
    Descend<Beside::Nothing>(batch, Passes, four);
    Descend<Beside::Nothing>(batch, Passes, three);
    return Select(onlyThree | (four.error > three.error), three, four);
}

}  // namespace
