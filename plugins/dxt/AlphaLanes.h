#pragma once

// The search for the alpha part of DXT5 blocks, one block in every lane. Included by the kernels of each
// instruction set.
//
// Alphas lie two by two in the halves of a lane: pixel i with pixel i + 8. A line is the pair of its lower
// and its higher end, the same in both halves. Labels count the values of a palette in rising order.

namespace {

constexpr int kAlphaPairs = 8;
constexpr int kAlphaValues = 8;

struct AlphaBatch {
    CInts pairs[kAlphaPairs];
};

struct AlphaLine {
    CInts low;
    CInts high;
};

// The two words of an alpha block, and its summed squared error.
struct AlphaWords {
    CInts first;
    CInts second;
    CInts error;
};

inline CInts AllHalves(int value)
{
    return CInts::All(value * 0x10001);
}

inline CInts AlphaPair(CInts pixel, CInts eighthNext)
{
    return ShiftRightUnsigned<8>(HighHalves(pixel, eighthNext)) & AllHalves(0xFF);
}

inline void SplitAlphas(const CInts (&pixels)[kPixels], AlphaBatch& alphas)
{
    for (int i = 0; i < kAlphaPairs; ++i)
        alphas.pairs[i] = AlphaPair(pixels[i], pixels[i + kAlphaPairs]);
}

// The smaller and the larger of both halves, in both.
inline AlphaLine AcrossHalves(const AlphaLine& line)
{
    return {Twice(Smaller(Low(line.low), High(line.low))), Twice(Larger(Low(line.high), High(line.high)))};
}

inline AlphaLine RangeOf(const AlphaBatch& alphas)
{
    AlphaLine line{alphas.pairs[0], alphas.pairs[0]};
    for (int i = 1; i < kAlphaPairs; ++i) {
        line.low = SmallerHalves(line.low, alphas.pairs[i]);
        line.high = LargerHalves(line.high, alphas.pairs[i]);
    }
    return AcrossHalves(line);
}

// The range of what is neither 0 nor 255, which six values have beside their line. Where there is nothing
// else it is the whole range.
inline AlphaLine InnerRangeOf(const AlphaBatch& alphas)
{
    const CInts byte = AllHalves(0xFF);
    const CInts one = AllHalves(1);
    AlphaLine line{byte, CInts::All(0)};
    for (const CInts& pair : alphas.pairs) {
        line.low = SmallerHalves(line.low, SubtractHalves(pair, one) & byte);
        line.high = LargerHalves(line.high, AddHalves(pair, one) & byte);
    }
    line = AcrossHalves(line);
    line = {AddHalves(line.low, one), SubtractHalves(line.high, one)};
    const CInts isEmpty = GreaterHalves(line.low, line.high);
    return {Select(isEmpty, CInts::All(0), line.low), Select(isEmpty, byte, line.high)};
}

// Values in the low byte of each half, the format's index of each in the high one.
struct AlphaPalette {
    CInts values[kAlphaValues];
};

inline CInts Coded(CInts value, int index)
{
    return value | AllHalves(index << 8);
}

// 65536 / 7 and / 5, rounded up, divide every sum up to seven or five times 255.
inline CInts MixOfSeven(const AlphaLine& line, int partsOfHigh)
{
    const CInts sum = AddHalves(MultiplyHalves(line.high, AllHalves(partsOfHigh)),
                                MultiplyHalves(line.low, AllHalves(7 - partsOfHigh)));
    return MultiplyHighHalves(sum, AllHalves(9363));
}
inline CInts MixOfFive(const AlphaLine& line, int partsOfHigh)
{
    const CInts sum = AddHalves(MultiplyHalves(line.high, AllHalves(partsOfHigh)),
                                MultiplyHalves(line.low, AllHalves(5 - partsOfHigh)));
    return MultiplyHighHalves(sum, AllHalves(13108));
}

// The first alpha of the block is the higher end.
inline AlphaPalette EightValues(const AlphaLine& line)
{
    AlphaPalette palette;
    palette.values[0] = Coded(line.low, 1);
    for (int i = 1; i < 7; ++i)
        palette.values[i] = Coded(MixOfSeven(line, i), 8 - i);
    palette.values[7] = Coded(line.high, 0);
    return palette;
}

// The first alpha of the block is the lower end; 0 and 255 are there besides.
inline AlphaPalette SixValues(const AlphaLine& line)
{
    AlphaPalette palette;
    palette.values[0] = AllHalves(6 << 8);
    palette.values[1] = Coded(line.low, 0);
    for (int i = 1; i < 5; ++i)
        palette.values[i + 1] = Coded(MixOfFive(line, i), i + 1);
    palette.values[6] = Coded(line.high, 1);
    palette.values[7] = AllHalves(7 << 8 | 255);
    return palette;
}

// Gives each pixel the nearest value. Thresholds rise, so the steps from value to value up to the last
// threshold passed add up to the value, and those of the indices in the upper byte to the index.
inline AlphaWords WordsOf(const AlphaBatch& alphas, const AlphaPalette& palette)
{
    const CInts byte = AllHalves(0xFF);
    CInts cuts[kAlphaValues - 1];
    CInts steps[kAlphaValues - 1];
    for (int k = 0; k + 1 < kAlphaValues; ++k) {
        cuts[k] = ShiftRightHalves<1>(AddHalves(palette.values[k] & byte, palette.values[k + 1] & byte));
        steps[k] = SubtractHalves(palette.values[k + 1], palette.values[k]);
    }
    AlphaWords words{CInts::All(0), CInts::All(0), CInts::All(0)};
    CInts codes[2] = {CInts::All(0), CInts::All(0)};
    for (int i = kAlphaPairs - 1; i >= 0; --i) {
        CInts coded = palette.values[0];
        for (int k = 0; k + 1 < kAlphaValues; ++k)
            coded = AddHalves(coded, GreaterHalves(alphas.pairs[i], cuts[k]) & steps[k]);
        const CInts difference = SubtractHalves(alphas.pairs[i], coded & byte);
        words.error = words.error + PairSums(difference, difference);
        codes[i / 4] = ShiftLeftHalves<3>(codes[i / 4]) | ShiftRightHalves<8>(coded);
    }
    const CInts first = Low(codes[0]) | ShiftLeft<12>(Low(codes[1]));
    const CInts second = High(codes[0]) | ShiftLeft<12>(High(codes[1]));
    words.first = ShiftLeft<16>(first);
    words.second = ShiftRightUnsigned<16>(first) | ShiftLeft<8>(second);
    return words;
}

inline AlphaWords WordsOfEight(const AlphaBatch& alphas, const AlphaLine& line)
{
    AlphaWords words = WordsOf(alphas, EightValues(line));
    words.first = words.first | Low(line.high) | ShiftLeft<8>(Low(line.low));
    return words;
}

inline AlphaWords WordsOfSix(const AlphaBatch& alphas, const AlphaLine& line)
{
    AlphaWords words = WordsOf(alphas, SixValues(line));
    words.first = words.first | Low(line.low) | ShiftLeft<8>(Low(line.high));
    return words;
}

inline AlphaWords Select(CInts mask, const AlphaWords& a, const AlphaWords& b)
{
    return {Select(mask, a.first, b.first), Select(mask, a.second, b.second), Select(mask, a.error, b.error)};
}

inline AlphaWords Better(const AlphaWords& a, const AlphaWords& b)
{
    return Select(b.error > a.error, a, b);
}

// Labels by even spacing on the line, and its ends solved from them. Of six values' lines (`Steps` 5) the
// pixels that are 0 or 255 take no part.
template <int Steps>
inline AlphaLine SolvedLine(const AlphaBatch& alphas, const AlphaLine& line)
{
    const CInts zero = CInts::All(0);
    const CFloats range = ToFloats(Low(SubtractHalves(line.high, line.low)));
    // Eighths of a label: 2^7 here, 2^9 there, 2^16 gone by taking upper halves.
    const CInts scale = Twice(ToInts(CFloats::All(Steps * 512 * 8) / Larger(range, CFloats::All(2))));
    CInts labels = zero;
    CInts squares = zero;
    CInts products = zero;
    CInts alphaSum = zero;
    CInts count = zero;
    for (const CInts& pair : alphas.pairs) {
        const CInts place = ShiftLeftHalves<7>(SubtractHalves(pair, line.low));
        const CInts eighths = MultiplyHighHalves(place, scale);
        CInts label = ShiftRightHalves<3>(AddHalves(eighths, AllHalves(4)));
        CInts value = pair;
        if constexpr (Steps == 5) {
            const CInts counts = GreaterHalves(pair, zero) & GreaterHalves(AllHalves(255), pair);
            label = SmallerHalves(LargerHalves(label, zero), AllHalves(Steps)) & counts;
            value = pair & counts;
            count = SubtractHalves(count, counts);
        }
        labels = AddHalves(labels, label);
        squares = AddHalves(squares, MultiplyHalves(label, label));
        products = AddHalves(products, MultiplyHalves(label, value));
        alphaSum = AddHalves(alphaSum, value);
    }
    const auto total = [](CInts halves) { return ToFloats(PairSums(halves, CInts::All(0x10001))); };
    const CFloats steps = CFloats::All(Steps);
    const CFloats highHigh = total(squares);
    const CFloats sum = total(labels);
    const CFloats number = Steps == 5 ? total(count) : CFloats::All(kPixels);
    const CFloats lowHigh = steps * sum - highHigh;
    const CFloats lowLow = steps * steps * number - steps * sum - lowHigh;
    const CFloats high = total(products);
    const CFloats low = steps * total(alphaSum) - high;
    const CFloats determinant = highHigh * lowLow - lowHigh * lowHigh;
    const CInts solvable = determinant > CFloats::All(0.5F);
    const CFloats factor = steps / Larger(determinant, CFloats::All(1));
    const CFloats half = CFloats::All(0.5F);
    const CInts newHigh = ToInts(Clamped((high * lowLow - low * lowHigh) * factor) + half);
    const CInts newLow = ToInts(Clamped((low * highHigh - high * lowHigh) * factor) + half);
    return {Twice(Select(solvable, Smaller(newLow, newHigh), Low(line.low))),
            Twice(Select(solvable, Larger(newLow, newHigh), Low(line.high)))};
}

inline CInts HasExtremes(const AlphaLine& range)
{
    return GreaterHalves(AllHalves(1), range.low) | GreaterHalves(range.high, AllHalves(254));
}

struct AlphaCandidate {
    AlphaLine line;
    AlphaWords words;
};

template <int Steps>
inline AlphaCandidate MeasuredAlphas(const AlphaBatch& alphas, const AlphaLine& line)
{
    return {line, Steps == 7 ? WordsOfEight(alphas, line) : WordsOfSix(alphas, line)};
}

inline void Keep(const AlphaCandidate& other, AlphaCandidate& best)
{
    const CInts isBetter = best.words.error > other.words.error;
    best.line = {Select(isBetter, other.line.low, best.line.low),
                 Select(isBetter, other.line.high, best.line.high)};
    best.words = Select(isBetter, other.words, best.words);
}

// Moves the ends one by one and together; the lower one stays the lower one, and both stay bytes.
inline AlphaLine Moved(const AlphaLine& line, int low, int high)
{
    const CInts top = AllHalves(255);
    const CInts zero = CInts::All(0);
    const CInts movedLow = LargerHalves(AddHalves(line.low, AllHalves(low)), zero);
    const CInts movedHigh = SmallerHalves(AddHalves(line.high, AllHalves(high)), top);
    return {SmallerHalves(movedLow, movedHigh), LargerHalves(movedLow, movedHigh)};
}

template <int Steps>
inline AlphaWords SearchedAlphas(const AlphaBatch& alphas, const AlphaLine& range, int passes)
{
    constexpr int kMoves[8][2] = {{1, 0}, {-1, 0}, {0, 1}, {0, -1}, {1, 1}, {-1, -1}, {1, -1}, {-1, 1}};
    AlphaCandidate best = MeasuredAlphas<Steps>(alphas, range);
    Keep(MeasuredAlphas<Steps>(alphas, SolvedLine<Steps>(alphas, range)), best);
    for (int pass = 0; pass < passes; ++pass) {
        const CInts before = best.words.error;
        for (const auto& move : kMoves)
            Keep(MeasuredAlphas<Steps>(alphas, Moved(best.line, move[0], move[1])), best);
        if (!AnyOf(before > best.words.error))
            break;
    }
    return best.words;
}

enum class AlphaEffort { Fast, Normal, Searched };

// What a block gets must not depend on its neighbours in the batch: the tests for all lanes at once only save
// work, and the choice is made lane by lane.
template <AlphaEffort Effort, int Passes>
inline AlphaWords FitAlphas(const CInts (&pixels)[kPixels])
{
    AlphaBatch alphas;
    SplitAlphas(pixels, alphas);
    const AlphaLine range = RangeOf(alphas);
    const CInts isSolid = range.low == range.high;
    const AlphaWords solid{Low(range.low) | ShiftLeft<8>(Low(range.low)), CInts::All(0), CInts::All(0)};
    if (!AnyOf(isSolid ^ CInts::All(-1)))
        return solid;
    if constexpr (Effort == AlphaEffort::Fast)
        return Select(isSolid, solid, WordsOfEight(alphas, range));
    const auto fitted = [&]<int Steps>(const AlphaLine& start) {
        if constexpr (Effort == AlphaEffort::Searched)
            return SearchedAlphas<Steps>(alphas, start, Passes);
        const AlphaLine line = SolvedLine<Steps>(alphas, start);
        return Steps == 7 ? WordsOfEight(alphas, line) : WordsOfSix(alphas, line);
    };
    AlphaWords words = fitted.template operator()<7>(range);
    // Six values are worth a try where their 0 or their 255 has pixels.
    const CInts hasExtremes = HasExtremes(range);
    if (AnyOf(hasExtremes)) {
        const AlphaWords six = fitted.template operator()<5>(InnerRangeOf(alphas));
        words = Select(hasExtremes, Better(words, six), words);
    }
    return Select(isSolid, solid, words);
}

}  // namespace
