#pragma once

// The colours of a half, and the codes of the pixels once base colours and tables are known. Included by the
// kernels of each instruction set.
//
// The second word of a block as it lies in memory: pixel (x, y) has the high bit of its code in bit
// (4x + y) ^ 8 and the low bit 16 above that.

namespace {

// The four colours of a half by their codes.
struct Palette {
    CInts redGreen[4];
    CInts blue[4];
};

inline Palette PaletteOf(CInts base, CInts table)
{
    const CInts allBytes = CInts::All(0x010101);
    // Below 256, so the product fills three bytes with it.
    const CInts small = LookUp(kSmallModifiers, table) * allBytes;
    const CInts large = LookUp(kLargeModifiers, table) * allBytes;
    const CInts colors[4] = {AddBytesClamped(base, small), AddBytesClamped(base, large),
                             SubtractBytesClamped(base, small), SubtractBytesClamped(base, large)};
    Palette palette;
    for (int code = 0; code < 4; ++code) {
        palette.redGreen[code] = RedGreen(colors[code]);
        palette.blue[code] = ShiftRightUnsigned<16>(colors[code]);
    }
    return palette;
}

inline Palette Select(CInts mask, const Palette& a, const Palette& b)
{
    Palette palette;
    for (int code = 0; code < 4; ++code) {
        palette.redGreen[code] = Select(mask, a.redGreen[code], b.redGreen[code]);
        palette.blue[code] = Select(mask, a.blue[code], b.blue[code]);
    }
    return palette;
}

inline CInts PixelError(CInts redGreen, CInts blue, const Palette& palette, int code)
{
    const CInts redGreenAway = SubtractHalves(redGreen, palette.redGreen[code]);
    const CInts blueAway = SubtractHalves(blue, palette.blue[code]);
    return PairSums(redGreenAway, redGreenAway) + PairSums(blueAway, blueAway);
}

inline CInts NearestCode(CInts pixel, const Palette& palette)
{
    const CInts redGreen = RedGreen(pixel);
    const CInts blue = ShiftRightUnsigned<16>(pixel);
    CInts best = ShiftLeft<2>(PixelError(redGreen, blue, palette, 0));
    for (int code = 1; code < 4; ++code)
        best = Smaller(best, ShiftLeft<2>(PixelError(redGreen, blue, palette, code)) | CInts::All(code));
    return best & CInts::All(3);
}

inline CInts FirstTable(const Choice& choice)
{
    return ShiftRightUnsigned<5>(choice.tables);
}
inline CInts SecondTable(const Choice& choice)
{
    return ShiftRightUnsigned<2>(choice.tables) & CInts::All(kTableMask);
}

// The codes that come nearest, clamping included.
inline CInts NearestCodes(const Batch& batch, const Choice& choice, CInts flip)
{
    const Palette first = PaletteOf(ColorOf(choice.first, choice.differential), FirstTable(choice));
    const Palette second = PaletteOf(ColorOf(choice.second, choice.differential), SecondTable(choice));
    const Palette palettes[kQuadrants] = {first, Select(flip, first, second), Select(flip, second, first),
                                          second};
    CInts word = CInts::All(0);
    // The pixel of the highest bit first.
    for (int place = kPixels - 1; place >= 0; --place) {
        const int x = (place ^ 8) / 4;
        const int y = place % 4;
        const CInts code = NearestCode(batch.pixels[y * 4 + x], palettes[y / 2 * 2 + x / 2]);
        word = ShiftLeft<1>(word) | ShiftLeft<16>(code & CInts::All(1)) | ShiftRightUnsigned<1>(code);
    }
    return word;
}

// The codes that come nearest as long as nothing is clamped.
inline CInts UnclampedCodes(const Batch& batch, const Choice& choice, CInts flip)
{
    const CInts firstShade = Twice(ShadeOf(ColorOf(choice.first, choice.differential)));
    const CInts secondShade = Twice(ShadeOf(ColorOf(choice.second, choice.differential)));
    const CInts firstMiddle = MiddleOf(FirstTable(choice));
    const CInts secondMiddle = MiddleOf(SecondTable(choice));
    const CInts shades[kQuadrants] = {firstShade, Select(flip, firstShade, secondShade),
                                      Select(flip, secondShade, firstShade), secondShade};
    const CInts middles[kQuadrants] = {firstMiddle, Select(flip, firstMiddle, secondMiddle),
                                       Select(flip, secondMiddle, firstMiddle), secondMiddle};
    const CInts zero = CInts::All(0);
    CInts negative = zero;
    CInts large = zero;
    for (int quadrant = 0; quadrant < kQuadrants; ++quadrant)
        for (int column = 0; column < 2; ++column) {
            const int place = ((quadrant % 2 * 2 + column) * 4 + quadrant / 2 * 2) ^ 8;
            // The upper halves have the lower pixels.
            const CInts bits = CInts::All(0x20001 << place);
            const CInts away = SubtractHalves(batch.shades[quadrant][column], shades[quadrant]);
            negative = negative | (GreaterHalves(zero, away) & bits);
            large = large | (GreaterHalves(MagnitudeHalves(away), middles[quadrant]) & bits);
        }
    return Low(negative | ShiftRightUnsigned<16>(negative)) |
           ShiftLeft<16>(large | ShiftRightUnsigned<16>(large));
}

}  // namespace
