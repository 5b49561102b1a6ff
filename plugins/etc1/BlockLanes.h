#pragma once

// The pixels of a batch, one block in every lane, taken apart as the searches of all levels want them, and
// the two words of a block put together again. Included by the kernels of each instruction set after its
// lanes.
//
// A block consists of four quadrants of 2x2 pixels, numbered row by row; each half of either kind is two of
// them. Three channels are kept in the bytes of a lane, red lowest, as levels of a depth or as a colour.

namespace {

constexpr int kPixels = 16;
constexpr int kQuadrants = 4;

// In halves of a lane: the sums of four or eight pixels.
struct ChannelSums {
    CInts redGreen;
    CInts blue;
};

struct Batch {
    CInts pixels[kPixels];  // with 0 for alpha
    // Twice the sum of a pixel's channels, in pairs one above the other: the left ones of the quadrant, then
    // the right ones.
    CInts shades[kQuadrants][2];
    ChannelSums sums[kQuadrants];
};

struct Half {
    CInts shades[4];
    ChannelSums sums;
};

// What is written, apart from the pixels' codes.
struct Choice {
    CInts cost;
    CInts first;         // levels
    CInts second;        // levels
    CInts tables;        // at their place in the block's fourth byte
    CInts differential;  // a mask
};

// Both halves have the value of the low one; the high one must be 0.
inline CInts Twice(CInts a)
{
    return a | ShiftLeft<16>(a);
}
inline CInts Low(CInts a)
{
    return a & CInts::All(0xFFFF);
}
inline CInts Not(CInts mask)
{
    return mask ^ CInts::All(-1);
}

// Twice the sum of the channels of a colour.
inline CInts ShadeOf(CInts color)
{
    return PairSums(BytePairSums(color, CInts::All(0x020202)), CInts::All(0x10001));
}

inline ChannelSums Plus(const ChannelSums& a, const ChannelSums& b)
{
    return {AddHalves(a.redGreen, b.redGreen), AddHalves(a.blue, b.blue)};
}

inline void TakeQuadrant(Batch& batch, int quadrant)
{
    const int first = quadrant / 2 * 8 + quadrant % 2 * 2;
    const CInts evenBytes = CInts::All(0xFF00FF);
    CInts redBlue = CInts::All(0);
    CInts green = CInts::All(0);
    for (int column = 0; column < 2; ++column) {
        const CInts upper = batch.pixels[first + column];
        const CInts lower = batch.pixels[first + column + 4];
        batch.shades[quadrant][column] = ShadeOf(upper) | ShiftLeft<16>(ShadeOf(lower));
        redBlue = AddHalves(redBlue, AddHalves(upper & evenBytes, lower & evenBytes));
        green = green + (ShiftRightUnsigned<8>(upper) & CInts::All(0xFF)) +
                (ShiftRightUnsigned<8>(lower) & CInts::All(0xFF));
    }
    batch.sums[quadrant] = {Low(redBlue) | ShiftLeft<16>(green), ShiftRightUnsigned<16>(redBlue)};
}

inline void TakeBatch(const std::uint8_t* rows, std::size_t stride, Batch& batch)
{
    for (int y = 0; y < 4; ++y) {
        CInts row[4];
        LoadRow(rows + static_cast<std::size_t>(y) * stride, row);
        for (int x = 0; x < 4; ++x)
            batch.pixels[y * 4 + x] = row[x] & CInts::All(0xFFFFFF);
    }
    for (int quadrant = 0; quadrant < kQuadrants; ++quadrant)
        TakeQuadrant(batch, quadrant);
}

// Pixel 0 to 7 of half 0 or 1.
constexpr int PixelOf(bool flip, int half, int i)
{
    return flip ? half * 8 + i : i / 2 * 4 + half * 2 + i % 2;
}

// The quadrant that half 0 or 1 has beside quadrant 0 or 3.
constexpr int OtherQuadrant(bool flip, int half)
{
    return flip == (half == 0) ? 1 : 2;
}

inline Half TakeHalf(const Batch& batch, bool flip, int half)
{
    const int a = half * 3;
    const int b = OtherQuadrant(flip, half);
    return {{batch.shades[a][0], batch.shades[a][1], batch.shades[b][0], batch.shades[b][1]},
            Plus(batch.sums[a], batch.sums[b])};
}

inline Choice Select(CInts mask, const Choice& a, const Choice& b)
{
    return {Select(mask, a.cost, b.cost), Select(mask, a.first, b.first), Select(mask, a.second, b.second),
            Select(mask, a.tables, b.tables), Select(mask, a.differential, b.differential)};
}

// The level nearest to an eighth of each sum.
template <int Bits>
inline CInts NearestLevels(const ChannelSums& sums)
{
    constexpr int kTop = (1 << Bits) - 1;
    constexpr int kWhole = 8 * 255;
    constexpr int kHalfStep = (kWhole + kTop) / (2 * kTop);
    constexpr int kFactor = (65536 * kTop + kWhole / 2) / kWhole;
    const CInts offset = CInts::All(kHalfStep * 0x10001);
    const CInts factor = CInts::All(kFactor * 0x10001);
    const CInts redGreen = MultiplyHighHalves(AddHalves(sums.redGreen, offset), factor);
    const CInts blue = MultiplyHighHalves(AddHalves(sums.blue, offset), factor);
    return (redGreen & CInts::All(0xFF)) | (ShiftRightUnsigned<8>(redGreen) & CInts::All(0xFF00)) |
           (ShiftLeft<16>(blue) & CInts::All(0xFF0000));
}

template <int Bits>
inline CInts Expanded(CInts levels)
{
    if constexpr (Bits == 4)
        return levels | ShiftLeft<4>(levels);
    else
        return ShiftLeft<3>(levels) | (ShiftRightUnsigned<2>(levels) & CInts::All(0x070707));
}

inline CInts ColorOf(CInts levels, CInts differential)
{
    return Select(differential, Expanded<5>(levels), Expanded<4>(levels));
}

// The first four bytes of a block.
inline CInts BaseWord(const Choice& choice, CInts flip)
{
    const CInts difference = SubtractBytes(choice.second, choice.first) & CInts::All(0x070707);
    const CInts bases = Select(choice.differential, ShiftLeft<3>(choice.first) | difference,
                               ShiftLeft<4>(choice.first) | choice.second);
    const CInts modes = (choice.differential & CInts::All(2)) | (flip & CInts::All(1));
    return bases | ShiftLeft<24>(choice.tables | modes);
}

// All pixels of the block have the same colour.
inline CInts IsSolid(const CInts (&pixels)[kPixels])
{
    CInts differences = CInts::All(0);
    for (int i = 1; i < kPixels; ++i)
        differences = differences | (pixels[i] ^ pixels[0]);
    return differences == CInts::All(0);
}

}  // namespace
