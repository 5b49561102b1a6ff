#pragma once

// The search of the quickest level: the diagonal of the box around the colours, its ends drawn in, and one
// multiplication for the place of a pixel on it. Included by the kernels of each instruction set.

namespace {

constexpr int kClearlyFalling = 1024;

struct ByteBox {
    CInts low;
    CInts high;
};

inline ByteBox BoxOf(const CInts (&pixels)[kPixels])
{
    ByteBox box{pixels[0], pixels[0]};
    for (int i = 1; i < kPixels; ++i) {
        box.low = SmallerBytes(box.low, pixels[i]);
        box.high = LargerBytes(box.high, pixels[i]);
    }
    return box;
}

// The diagonal before anything is rounded: two opposite corners, and the way from the second to the first.
struct Diagonal {
    HalfColor first;
    HalfColor second;
    HalfColor way;
};

// Masks, in the halves of red and green and in those of blue, of the channels that fall while green rises.
struct Falling {
    CInts redGreen;
    CInts blue;
};

inline CInts Negated(CInts halves, CInts mask)
{
    return SubtractHalves(halves ^ mask, mask);
}

inline Diagonal DiagonalOf(const ByteBox& box, const Falling& falling)
{
    const CInts byte = CInts::All(0xFF);
    const HalfColor low{RedGreen(box.low), ShiftRightUnsigned<16>(box.low) & byte};
    const HalfColor high{RedGreen(box.high), ShiftRightUnsigned<16>(box.high) & byte};
    const CInts redGreenSwap = (low.redGreen ^ high.redGreen) & falling.redGreen;
    const CInts blueSwap = (low.blue ^ high.blue) & falling.blue;
    const HalfColor range{SubtractHalves(high.redGreen, low.redGreen), SubtractHalves(high.blue, low.blue)};
    return {{high.redGreen ^ redGreenSwap, high.blue ^ blueSwap},
            {low.redGreen ^ redGreenSwap, low.blue ^ blueSwap},
            {Negated(range.redGreen, falling.redGreen), Negated(range.blue, falling.blue)}};
}

// The ends as 5-6-5 bits in the low halves.
struct PackedEnds {
    CInts first;
    CInts second;
};

// How far the ends are drawn in, in bits of the way. With an eighth the four colours stand in the middles of
// four equal parts. A sixteenth suits pictures with alpha better: where a block has two colours, one of them
// that of the pixels without alpha, both stay nearly as they are.
constexpr int kEighth = 3;
constexpr int kSixteenth = 4;

template <int Bits>
inline PackedEnds DrawnIn(const Diagonal& diagonal)
{
    const CInts half = AllHalves(1 << (Bits - 1));
    const CInts redGreen = ShiftRightHalves<Bits>(AddHalves(diagonal.way.redGreen, half));
    const CInts blue = ShiftRightHalves<Bits>(AddHalves(diagonal.way.blue, half));
    // One more than the half, times 257 / 65536, divides exactly by 255.
    const CInts halfAndOne = AllHalves(128);
    const CInts by255 = AllHalves(257);
    const auto rounded = [&](CInts value, CInts top) {
        return MultiplyHighHalves(AddHalves(MultiplyHalves(value, top), halfAndOne), by255);
    };
    const CInts tops = CInts::All(63 << 16 | 31);
    const CInts first = rounded(SubtractHalves(diagonal.first.redGreen, redGreen), tops);
    const CInts second = rounded(AddHalves(diagonal.second.redGreen, redGreen), tops);
    const CInts blues =
        rounded(LowHalves(SubtractHalves(diagonal.first.blue, blue), AddHalves(diagonal.second.blue, blue)),
                AllHalves(31));
    const auto packed = [](CInts levels, CInts blueLevel) {
        return Low(ShiftLeft<11>(levels) | ShiftRightUnsigned<11>(levels)) | blueLevel;
    };
    return {packed(first, Low(blues)), packed(second, High(blues))};
}

// Labels by quarters of the diagonal, two bits each in the pixels' places.
inline CInts LabelsAlong(const CInts (&pixels)[kPixels], const Diagonal& diagonal)
{
    const HalfColor& way = diagonal.way;
    const CInts ones = CInts::All(0x10001);
    const CInts fold = way.redGreen ^ ShiftRightHalves<15>(way.redGreen);
    const CInts foldBlue = Low(way.blue ^ ShiftRightHalves<15>(way.blue));
    // The direction in signed bytes whose sizes add up to no more than 127: products with a pixel stay within
    // 16 bits.
    const CInts size = PairSums(fold, ones) + foldBlue;
    const CInts scale = Twice(ToInts(CFloats::All(126 * 256) / Larger(ToFloats(size), CFloats::All(2))));
    const CInts redGreen = ShiftRightHalves<8>(MultiplyHalves(way.redGreen, scale));
    const CInts blue = ShiftRightHalves<8>(MultiplyHalves(way.blue, scale));
    const CInts direction = (redGreen & CInts::All(0xFF)) |
                            (ShiftRightUnsigned<8>(redGreen) & CInts::All(0xFF00)) |
                            (ShiftLeft<16>(blue) & CInts::All(0xFF0000));
    const CInts start =
        PairSums(redGreen, diagonal.second.redGreen) + PairSums(Low(blue), diagonal.second.blue);
    const CInts length = PairSums(redGreen, way.redGreen) + PairSums(Low(blue), way.blue);
    // 32 parts a label.
    const CFloats parts =
        CFloats::All(128 * 65536.0F) / Larger(ToFloats(length) + CFloats::All(1), CFloats::All(257));
    const CInts factor = Twice(ToInts(parts));
    const CInts offset = Twice(Low(start));
    CInts labels = CInts::All(0);
    for (int i = kPixels / 2 - 1; i >= 0; --i) {
        const CInts upper = PairSums(BytePairSums(pixels[i], direction), ones);
        const CInts lower = PairSums(BytePairSums(pixels[i + kPixels / 2], direction), ones);
        const CInts place = LowHalves(upper, lower);
        const CInts part = MultiplyHighHalves(SubtractHalves(place, offset), factor);
        labels = ShiftLeftHalves<2>(labels) | ShiftRightHalves<5>(part);
    }
    return labels;
}

// Told by two pairs of pixels far apart, chosen so that stripes and chessboards differ in one of them.
// Colours mostly rise together, so it takes a clear difference to say otherwise.
inline Falling FallingBySamples(const CInts (&pixels)[kPixels])
{
    const CInts redGreenA = SubtractHalves(RedGreen(pixels[0]), RedGreen(pixels[14]));
    const CInts redGreenB = SubtractHalves(RedGreen(pixels[3]), RedGreen(pixels[8]));
    const CInts upperBytes = CInts::All(0xFF00FF);
    const CInts blueA = SubtractHalves(ShiftRightUnsigned<16>(pixels[0]) & upperBytes,
                                       ShiftRightUnsigned<16>(pixels[14]) & upperBytes);
    const CInts blueB = SubtractHalves(ShiftRightUnsigned<16>(pixels[3]) & upperBytes,
                                       ShiftRightUnsigned<16>(pixels[8]) & upperBytes);
    const CInts reds = LowHalves(redGreenA, redGreenB);
    const CInts greens = HighHalves(redGreenA, redGreenB);
    // Blue goes by red too, which is all there is where green stands still.
    const CInts redsAndGreens = AddHalves(AddHalves(greens, greens), reds);
    const CInts clear = CInts::All(-kClearlyFalling);
    return {Low(clear > PairSums(reds, greens)),
            Low(clear > PairSums(LowHalves(blueA, blueB), redsAndGreens))};
}

template <int DrawnInBits>
inline ColorWords FitFast(const CInts (&pixels)[kPixels], const ByteBox& box)
{
    const Diagonal diagonal = DiagonalOf(box, FallingBySamples(pixels));
    const PackedEnds ends = DrawnIn<DrawnInBits>(diagonal);
    return WordsOf(ends.first, ends.second, LabelsAlong(pixels, diagonal));
}

}  // namespace
