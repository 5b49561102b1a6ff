#pragma once

// Which colours of a batch count: all of them, or those of the pixels that a decoder will show. Included by
// the kernels of each instruction set.

namespace {

// The colours of a batch: all of them, and those that count, which are there only when some do not.
struct SplitBatch {
    ColorBatch all;
    ColorBatch counted;
    CInts anyLeftOut;  // all ones where a pixel does not count
    CInts isSolid;     // all pixels that count have the colour of `sample`
    CInts sample;
};

inline const ColorBatch& CountedOf(const SplitBatch& batch)
{
    return AnyOf(batch.anyLeftOut) ? batch.counted : batch.all;
}

inline void SplitColors(const CInts (&pixels)[kPixels], ColorBatch& colors)
{
    for (int i = 0; i < kPixels; ++i) {
        colors.redGreen[i] = RedGreen(pixels[i]);
        colors.blueOne[i] = BlueOne(pixels[i]);
        colors.counts[i] = CInts::All(-1);
    }
}

inline CInts HasNoRange(const ByteBox& box)
{
    return ((box.low ^ box.high) & CInts::All(0xFFFFFF)) == CInts::All(0);
}

inline void SplitOpaque(const CInts (&pixels)[kPixels], const ByteBox& box, SplitBatch& batch)
{
    SplitColors(pixels, batch.all);
    batch.anyLeftOut = CInts::All(0);
    batch.isSolid = HasNoRange(box);
    batch.sample = pixels[0];
}

// Leaves out the pixels whose mask is set.
inline void SplitBy(const CInts (&leftOut)[kPixels], const CInts (&pixels)[kPixels], SplitBatch& batch)
{
    SplitColors(pixels, batch.all);
    batch.anyLeftOut = CInts::All(0);
    ByteBox box{CInts::All(-1), CInts::All(0)};
    for (int i = 0; i < kPixels; ++i) {
        const CInts counts = leftOut[i] ^ CInts::All(-1);
        batch.anyLeftOut = batch.anyLeftOut | leftOut[i];
        batch.counted.redGreen[i] = batch.all.redGreen[i] & counts;
        batch.counted.blueOne[i] = batch.all.blueOne[i] & counts;
        batch.counted.counts[i] = counts;
        box.low = SmallerBytes(box.low, pixels[i] | leftOut[i]);
        box.high = LargerBytes(box.high, pixels[i] & counts);
    }
    batch.isSolid = HasNoRange(box);
    batch.sample = box.high;
}

// Leaves out the pixels without alpha, whose colour nobody sees; where no pixel has any, all count.
// Deliberate: black counts also without alpha. It is what such pixels have where colours are stored
// multiplied by their alpha, and there any other colour would be seen, added to what lies behind.
inline void SplitVisible(const CInts (&pixels)[kPixels], SplitBatch& batch)
{
    const CInts zero = CInts::All(0);
    const ByteBox box = BoxOf(pixels);
    const CInts noneSeen = ShiftRightUnsigned<24>(box.high) == zero;
    CInts unseen[kPixels];
    CInts anyUnseen = zero;
    for (int i = 0; i < kPixels; ++i) {
        const CInts isBlack = pixels[i] == zero;
        unseen[i] = (ShiftRightUnsigned<24>(pixels[i]) == zero) & ((noneSeen | isBlack) ^ CInts::All(-1));
        anyUnseen = anyUnseen | unseen[i];
    }
    if (AnyOf(anyUnseen))
        SplitBy(unseen, pixels, batch);
    else
        SplitOpaque(pixels, box, batch);
}

}  // namespace
