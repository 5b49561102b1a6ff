#pragma once

// The steps that the colour searches of all levels share, on one block in every lane: take pixels apart, find
// the axis of their colours, label them by their place on a line, and solve for the ends of the line.
// Included by the kernels of each instruction set after its lanes.
//
// A label is the parts of the first end in a pixel's colour: 0 to 3 on the line of four colours, 0 to 2 on
// that of three.

namespace {

constexpr int kPixels = 16;

// Halves: red and green, blue and 1. A pixel that does not count has 0 in all of them.
struct ColorBatch {
    CInts redGreen[kPixels];
    CInts blueOne[kPixels];
    CInts counts[kPixels];  // all ones, or 0
};

// A direction or a colour, in halves: red and green, blue and 0.
struct HalfColor {
    CInts redGreen;
    CInts blue;
};

struct FloatColor {
    CFloats red;
    CFloats green;
    CFloats blue;
};

// The two ends of a line in 8 bits a channel, exact or not.
struct FloatLine {
    FloatColor first;
    FloatColor second;
};

// Ends that the format holds: as 5-6-5 bits, and what a decoder makes of them.
struct PackedColor {
    CInts packed;
    HalfColor color;
};

struct PackedLine {
    PackedColor first;
    PackedColor second;
};

// Everything about a batch's colours that no label changes.
struct ColorSums {
    CFloats count;
    FloatColor sum;
};

// Sums over labelled pixels, in the units of a label.
struct LabelSums {
    CInts redGreen;
    CInts blueOne;  // the high half has the sum of the labels
    CInts squares;  // the high half has the sum of their squares
};

inline CInts Low(CInts a)
{
    return a & CInts::All(0xFFFF);
}
inline CInts High(CInts a)
{
    return ShiftRightUnsigned<16>(a);
}
// Both halves have the value of the low one; the high one must be 0.
inline CInts Twice(CInts a)
{
    return a | ShiftLeft<16>(a);
}

inline CInts BlueOne(CInts pixel)
{
    return (ShiftRightUnsigned<16>(pixel) & CInts::All(0xFF)) | CInts::All(0x10000);
}

inline CInts Place(const ColorBatch& batch, int pixel, const HalfColor& direction)
{
    return PairSums(batch.redGreen[pixel], direction.redGreen) +
           PairSums(batch.blueOne[pixel], direction.blue);
}

inline CFloats Clamped(CFloats value)
{
    return Larger(Smaller(value, CFloats::All(255)), CFloats::All(0));
}

inline FloatColor Plus(const FloatColor& a, const FloatColor& b)
{
    return {a.red + b.red, a.green + b.green, a.blue + b.blue};
}
inline FloatColor Minus(const FloatColor& a, const FloatColor& b)
{
    return {a.red - b.red, a.green - b.green, a.blue - b.blue};
}
inline FloatColor Times(const FloatColor& a, CFloats factor)
{
    return {a.red * factor, a.green * factor, a.blue * factor};
}
inline CFloats Dot(const FloatColor& a, const FloatColor& b)
{
    return a.red * b.red + a.green * b.green + a.blue * b.blue;
}
inline FloatColor Select(CInts mask, const FloatColor& a, const FloatColor& b)
{
    return {Select(mask, a.red, b.red), Select(mask, a.green, b.green), Select(mask, a.blue, b.blue)};
}

inline FloatColor ToFloatColor(const HalfColor& color)
{
    return {ToFloats(Low(color.redGreen)), ToFloats(High(color.redGreen)), ToFloats(color.blue)};
}

// Whole numbers from -32768 to 32767.
inline HalfColor ToHalfColor(const FloatColor& color)
{
    return {LowHalves(ToInts(color.red), ToInts(color.green)), Low(ToInts(color.blue))};
}

inline ColorSums SumColors(const ColorBatch& batch)
{
    CInts redGreen = batch.redGreen[0];
    CInts blueOne = batch.blueOne[0];
    for (int i = 1; i < kPixels; ++i) {
        redGreen = AddHalves(redGreen, batch.redGreen[i]);
        blueOne = AddHalves(blueOne, batch.blueOne[i]);
    }
    return {ToFloats(High(blueOne)),
            {ToFloats(Low(redGreen)), ToFloats(High(redGreen)), ToFloats(Low(blueOne))}};
}

// Symmetric: red-red, red-green, red-blue, green-green, green-blue, blue-blue.
struct Covariance {
    CFloats v[6];
};

inline Covariance CovarianceOf(const ColorBatch& batch, const ColorSums& sums)
{
    CInts products[6];
    for (CInts& product : products)
        product = CInts::All(0);
    for (int i = 0; i < kPixels; i += 2) {
        const CInts red = LowHalves(batch.redGreen[i], batch.redGreen[i + 1]);
        const CInts green = HighHalves(batch.redGreen[i], batch.redGreen[i + 1]);
        const CInts blue = LowHalves(batch.blueOne[i], batch.blueOne[i + 1]);
        products[0] = products[0] + PairSums(red, red);
        products[1] = products[1] + PairSums(red, green);
        products[2] = products[2] + PairSums(red, blue);
        products[3] = products[3] + PairSums(green, green);
        products[4] = products[4] + PairSums(green, blue);
        products[5] = products[5] + PairSums(blue, blue);
    }
    const CFloats n = sums.count;
    const FloatColor& s = sums.sum;
    return {{n * ToFloats(products[0]) - s.red * s.red, n * ToFloats(products[1]) - s.red * s.green,
             n * ToFloats(products[2]) - s.red * s.blue, n * ToFloats(products[3]) - s.green * s.green,
             n * ToFloats(products[4]) - s.green * s.blue, n * ToFloats(products[5]) - s.blue * s.blue}};
}

inline FloatColor Turned(const Covariance& c, const FloatColor& axis)
{
    return {c.v[0] * axis.red + c.v[1] * axis.green + c.v[2] * axis.blue,
            c.v[1] * axis.red + c.v[3] * axis.green + c.v[4] * axis.blue,
            c.v[2] * axis.red + c.v[4] * axis.green + c.v[5] * axis.blue};
}

inline CFloats Magnitude(CFloats a)
{
    return Larger(a, CFloats::All(0) - a);
}

// The direction in which the colours spread most, its largest part kAxisLength; power iteration from the row
// of the channel that spreads most. Zero when all colours are the same.
constexpr float kAxisLength = 1023;

inline FloatColor MainAxis(Covariance c)
{
    // Small enough for the iteration to stay within the range of a float, whose lower end is as far away.
    constexpr float kScale = 1.0F / 4096;
    for (CFloats& value : c.v)
        value = value * CFloats::All(kScale);
    const CInts greenWins = c.v[3] > c.v[0];
    FloatColor axis = Select(greenWins, FloatColor{c.v[1], c.v[3], c.v[4]}, {c.v[0], c.v[1], c.v[2]});
    const CInts blueWins = c.v[5] > Larger(c.v[0], c.v[3]);
    axis = Select(blueWins, FloatColor{c.v[2], c.v[4], c.v[5]}, axis);
    constexpr int kSteps = 4;
    for (int step = 0; step < kSteps; ++step)
        axis = Turned(c, axis);
    const CFloats largest = Larger(Larger(Magnitude(axis.red), Magnitude(axis.green)), Magnitude(axis.blue));
    return Times(axis, CFloats::All(kAxisLength) / Larger(largest, CFloats::All(1e-30F)));
}

inline void AddLabel(const ColorBatch& batch, int pixel, CInts label, LabelSums& sums)
{
    const CInts both = Twice(label);
    const CInts blueOne = MultiplyHalves(batch.blueOne[pixel], both);
    sums.redGreen = AddHalves(sums.redGreen, MultiplyHalves(batch.redGreen[pixel], both));
    sums.blueOne = AddHalves(sums.blueOne, blueOne);
    sums.squares = AddHalves(sums.squares, MultiplyHalves(blueOne, both));
}

// How much each end weighs in the labelled pixels, and the colours weighed so.
struct LineSystem {
    CFloats firstFirst;
    CFloats firstSecond;
    CFloats secondSecond;
    FloatColor first;
    FloatColor second;
};

template <int Steps>
inline LineSystem SystemOf(const ColorSums& colors, const LabelSums& sums)
{
    const CFloats steps = CFloats::All(Steps);
    const CFloats labels = ToFloats(High(sums.blueOne));
    LineSystem system;
    system.firstFirst = ToFloats(High(sums.squares));
    system.firstSecond = steps * labels - system.firstFirst;
    system.secondSecond = steps * steps * colors.count - steps * labels - system.firstSecond;
    system.first = {ToFloats(Low(sums.redGreen)), ToFloats(High(sums.redGreen)), ToFloats(Low(sums.blueOne))};
    system.second = Minus(Times(colors.sum, steps), system.first);
    return system;
}

// The least-squares ends; where the labels do not determine them, `line` stays.
template <int Steps>
inline void SolveLine(const LineSystem& s, FloatLine& line)
{
    const CFloats determinant = s.firstFirst * s.secondSecond - s.firstSecond * s.firstSecond;
    const CInts solvable = determinant > CFloats::All(0.5F);
    const CFloats scale = CFloats::All(Steps) / Larger(determinant, CFloats::All(1));
    const FloatColor first =
        Times(Minus(Times(s.first, s.secondSecond), Times(s.second, s.firstSecond)), scale);
    const FloatColor second =
        Times(Minus(Times(s.second, s.firstFirst), Times(s.first, s.firstSecond)), scale);
    line.first = Select(solvable, FloatColor{Clamped(first.red), Clamped(first.green), Clamped(first.blue)},
                        line.first);
    line.second = Select(
        solvable, FloatColor{Clamped(second.red), Clamped(second.green), Clamped(second.blue)}, line.second);
}

inline CInts Expanded5(CInts level)
{
    return ShiftLeft<3>(level) | ShiftRightUnsigned<2>(level);
}
inline CInts Expanded6(CInts level)
{
    return ShiftLeft<2>(level) | ShiftRightUnsigned<4>(level);
}

inline PackedColor FromLevels(CInts red, CInts green, CInts blue)
{
    return {ShiftLeft<11>(red) | ShiftLeft<5>(green) | blue,
            {Expanded5(red) | ShiftLeft<16>(Expanded6(green)), Expanded5(blue)}};
}

inline PackedColor Unpacked(CInts packed)
{
    return FromLevels(ShiftRightUnsigned<11>(packed), ShiftRightUnsigned<5>(packed) & CInts::All(63),
                      packed & CInts::All(31));
}

inline CInts NearestLevel(CFloats value, float levels)
{
    return ToInts(Clamped(value) * CFloats::All(levels / 255) + CFloats::All(0.5F));
}

inline PackedColor Nearest(const FloatColor& color)
{
    return FromLevels(NearestLevel(color.red, 31), NearestLevel(color.green, 63),
                      NearestLevel(color.blue, 31));
}

// A third of the way from `closer` to `farther`, rounded down; 21846 / 65536 divides every sum up to 765
// by 3.
inline CInts ThirdHalves(CInts closer, CInts farther)
{
    return MultiplyHighHalves(AddHalves(AddHalves(closer, closer), farther), CInts::All(0x55565556));
}

inline HalfColor Third(const HalfColor& closer, const HalfColor& farther)
{
    return {ThirdHalves(closer.redGreen, farther.redGreen), ThirdHalves(closer.blue, farther.blue)};
}

inline HalfColor Middle(const HalfColor& a, const HalfColor& b)
{
    return {ShiftRightHalves<1>(AddHalves(a.redGreen, b.redGreen)), ShiftRight<1>(a.blue + b.blue)};
}

inline CInts DotHalves(const HalfColor& a, const HalfColor& b)
{
    return PairSums(a.redGreen, b.redGreen) + PairSums(a.blue, b.blue);
}

}  // namespace
