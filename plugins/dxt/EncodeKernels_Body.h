#pragma once

// The kernels themselves, put together from the searches. Included by EncodeKernels_*.cpp after the lanes of
// the instruction set.

#include <cstddef>
#include <cstring>

#include "plugins/dxt/EncodeKernels.h"
#include "plugins/dxt/SolidColor.h"

// Each of these builds on the ones above it.
// clang-format off
#include "plugins/dxt/ColorLanes.h"
#include "plugins/dxt/LineFit.h"
#include "plugins/dxt/AlphaLanes.h"
#include "plugins/dxt/FastFit.h"
#include "plugins/dxt/LineSearch.h"
#include "plugins/dxt/RunFit.h"
#include "plugins/dxt/ColorSearch.h"
#include "plugins/dxt/RowEncode.h"
// clang-format on

namespace {

// The colours of a batch: all of them, and those that count.
struct SplitBatch {
    ColorBatch all;
    ColorBatch counted;
    CInts isSolid;  // all pixels that count have the colour of `sample`
    CInts sample;
};

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

inline void SplitOpaque(const CInts (&pixels)[kPixels], SplitBatch& batch)
{
    SplitColors(pixels, batch.all);
    batch.isSolid = HasNoRange(BoxOf(pixels));
    batch.sample = pixels[0];
}

// Nobody sees the colour of a pixel without alpha, so it does not count; where no pixel has any, all do.
// Returns the colours that count.
inline const ColorBatch& SplitVisible(const CInts (&pixels)[kPixels], SplitBatch& batch)
{
    const CInts zero = CInts::All(0);
    CInts highest = pixels[0];
    for (int i = 1; i < kPixels; ++i)
        highest = LargerBytes(highest, pixels[i]);
    const CInts hasVisible = (ShiftRightUnsigned<24>(highest) == zero) ^ CInts::All(-1);
    CInts unseen[kPixels];
    CInts anyUnseen = zero;
    for (int i = 0; i < kPixels; ++i) {
        unseen[i] = (ShiftRightUnsigned<24>(pixels[i]) == zero) & hasVisible;
        anyUnseen = anyUnseen | unseen[i];
    }
    if (!AnyOf(anyUnseen)) {
        SplitOpaque(pixels, batch);
        return batch.all;
    }
    SplitColors(pixels, batch.all);
    ByteBox box{CInts::All(-1), zero};
    for (int i = 0; i < kPixels; ++i) {
        const CInts counts = unseen[i] ^ CInts::All(-1);
        batch.counted.redGreen[i] = batch.all.redGreen[i] & counts;
        batch.counted.blueOne[i] = batch.all.blueOne[i] & counts;
        batch.counted.counts[i] = counts;
        box.low = SmallerBytes(box.low, pixels[i] | unseen[i]);
        box.high = LargerBytes(box.high, pixels[i] & counts);
    }
    batch.isSolid = HasNoRange(box);
    batch.sample = box.high;
    return batch.counted;
}

// Writes the blocks of one colour again from the tables; `out` is the colour part of the first block.
inline void StoreSolids(CInts isSolid, CInts sample, bool fourOnly, std::size_t bytes, std::uint8_t* out)
{
    if (!AnyOf(isSolid))
        return;
    std::int32_t masks[kBatch];
    std::int32_t pixels[kBatch];
    isSolid.Store(masks);
    sample.Store(pixels);
    for (std::size_t lane = 0; lane < kBatch; ++lane)
        if (masks[lane] != 0)
            Dxt::StoreSolidBlock(static_cast<std::uint32_t>(pixels[lane]), fourOnly,
                                 out + static_cast<std::size_t>(kBlockOfLane[lane]) * bytes);
}

void EncodeDxt1Fast(const std::uint8_t* rows, std::size_t stride, std::size_t count, std::uint8_t* out)
{
    EncodeBatches<8>(rows, stride, count, out,
                     [](const std::uint8_t* from, std::size_t fromStride, std::uint8_t* to) {
                         CInts pixels[kPixels];
                         LoadPixels(from, fromStride, pixels);
                         const ByteBox box = BoxOf(pixels);
                         const ColorWords words = FitFast(pixels, box);
                         StorePairs(words.ends, words.indices, to);
                         StoreSolids(HasNoRange(box), pixels[0], false, 8, to);
                     });
}

// Deliberate: the quickest level does not look which pixels can be seen; that would cost it a third of its
// speed.
void EncodeDxt5Fast(const std::uint8_t* rows, std::size_t stride, std::size_t count, std::uint8_t* out)
{
    EncodeBatches<16>(rows, stride, count, out,
                      [](const std::uint8_t* from, std::size_t fromStride, std::uint8_t* to) {
                          CInts pixels[kPixels];
                          LoadPixels(from, fromStride, pixels);
                          const AlphaWords alpha = FitAlphas<AlphaEffort::Fast, 0>(pixels);
                          const ByteBox box = BoxOf(pixels);
                          const ColorWords words = FitFast(pixels, box);
                          StoreQuads(alpha.first, alpha.second, words.ends, words.indices, to);
                          StoreSolids(HasNoRange(box), pixels[0], true, 16, to + 8);
                      });
}

using FitColorsFn = ColorWords (*)(const ColorBatch& counted, const ColorBatch& all);
using FitAlphasFn = AlphaWords (*)(const CInts (&pixels)[kPixels]);

template <FitColorsFn FitColors>
void EncodeDxt1(const std::uint8_t* rows, std::size_t stride, std::size_t count, std::uint8_t* out)
{
    EncodeBatches<8>(rows, stride, count, out,
                     [](const std::uint8_t* from, std::size_t fromStride, std::uint8_t* to) {
                         CInts pixels[kPixels];
                         SplitBatch batch;
                         LoadPixels(from, fromStride, pixels);
                         SplitOpaque(pixels, batch);
                         const ColorWords words = FitColors(batch.all, batch.all);
                         StorePairs(words.ends, words.indices, to);
                         StoreSolids(batch.isSolid, batch.sample, false, 8, to);
                     });
}

template <FitColorsFn FitColors, FitAlphasFn FitAlpha>
void EncodeDxt5(const std::uint8_t* rows, std::size_t stride, std::size_t count, std::uint8_t* out)
{
    EncodeBatches<16>(rows, stride, count, out,
                      [](const std::uint8_t* from, std::size_t fromStride, std::uint8_t* to) {
                          CInts pixels[kPixels];
                          SplitBatch batch;
                          LoadPixels(from, fromStride, pixels);
                          const ColorBatch& counted = SplitVisible(pixels, batch);
                          const AlphaWords alpha = FitAlpha(pixels);
                          const ColorWords words = FitColors(counted, batch.all);
                          StoreQuads(alpha.first, alpha.second, words.ends, words.indices, to);
                          StoreSolids(batch.isSolid, batch.sample, true, 16, to + 8);
                      });
}

}  // namespace

namespace Dxt {

const EncodeKernels MAVREL_DXT_KERNELS{
    {EncodeDxt1<FitNormal<2>>, EncodeDxt1Fast, EncodeDxt1<SearchHigh>, EncodeDxt1<SearchBest<false>>},
    {EncodeDxt5<FitNormal<1>, FitAlphas<AlphaEffort::Normal, 0>>, EncodeDxt5Fast,
     EncodeDxt5<SearchHigh, FitAlphas<AlphaEffort::Searched, 1>>,
     EncodeDxt5<SearchBest<true>, FitAlphas<AlphaEffort::Searched, 8>>}};

}  // namespace Dxt
