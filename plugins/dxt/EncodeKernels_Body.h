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
#include "plugins/dxt/ExplicitAlpha.h"
#include "plugins/dxt/FastFit.h"
#include "plugins/dxt/LineSearch.h"
#include "plugins/dxt/RunFit.h"
#include "plugins/dxt/ColorSearch.h"
#include "plugins/dxt/ColorSplit.h"
#include "plugins/dxt/OneBitAlpha.h"
#include "plugins/dxt/RowEncode.h"
// clang-format on

namespace {

// `store(lane, pixel, block)` for each block of one colour; `out` is the colour part of the first block.
template <typename Store>
inline void StoreEachSolid(CInts isSolid, CInts sample, std::size_t bytes, std::uint8_t* out, Store store)
{
    if (!AnyOf(isSolid))
        return;
    std::int32_t masks[kBatch];
    std::int32_t pixels[kBatch];
    isSolid.Store(masks);
    sample.Store(pixels);
    for (std::size_t lane = 0; lane < kBatch; ++lane)
        if (masks[lane] != 0)
            store(lane, static_cast<std::uint32_t>(pixels[lane]),
                  out + static_cast<std::size_t>(kBlockOfLane[lane]) * bytes);
}

// Writes the blocks of one colour again from the tables.
inline void StoreSolids(CInts isSolid, CInts sample, bool fourOnly, std::size_t bytes, std::uint8_t* out)
{
    // Neighbours mostly have the same colour.
    std::uint32_t lastPixel = 0;
    const std::uint8_t* lastBlock = nullptr;
    StoreEachSolid(isSolid, sample, bytes, out, [&](std::size_t, std::uint32_t pixel, std::uint8_t* block) {
        if (lastBlock != nullptr && pixel == lastPixel)
            std::memcpy(block, lastBlock, 8);
        else
            Dxt::StoreSolidBlock(pixel, fourOnly, block);
        lastPixel = pixel;
        lastBlock = block;
    });
}

void EncodeDxt1Fast(const std::uint8_t* rows, std::size_t stride, std::size_t count, std::uint8_t* out)
{
    EncodeBatches<8>(rows, stride, count, out,
                     [](const std::uint8_t* from, std::size_t fromStride, std::uint8_t* to) {
                         CInts pixels[kPixels];
                         LoadPixels(from, fromStride, pixels);
                         const ByteBox box = BoxOf(pixels);
                         const ColorWords words = FitFast<kEighth>(pixels, box);
                         StorePairs(words.ends, words.indices, to);
                         StoreSolids(HasNoRange(box), pixels[0], false, 8, to);
                     });
}

using FitColorsFn = Candidate (*)(const ColorBatch& counted);
using WordsFn = ColorWords (*)(const ColorBatch& all, const Candidate& ends);
using FitAlphasFn = AlphaWords (*)(const CInts (&pixels)[kPixels]);

template <FitColorsFn FitColors, WordsFn Words>
void EncodeDxt1(const std::uint8_t* rows, std::size_t stride, std::size_t count, std::uint8_t* out)
{
    EncodeBatches<8>(rows, stride, count, out,
                     [](const std::uint8_t* from, std::size_t fromStride, std::uint8_t* to) {
                         CInts pixels[kPixels];
                         SplitBatch batch;
                         LoadPixels(from, fromStride, pixels);
                         SplitOpaque(pixels, BoxOf(pixels), batch);
                         const ColorWords words = Words(batch.all, FitColors(batch.all));
                         StorePairs(words.ends, words.indices, to);
                         StoreSolids(batch.isSolid, batch.sample, false, 8, to);
                     });
}

template <int Rounds, int Passes, bool TriesRuns>
void EncodeDxt1Alpha(const std::uint8_t* rows, std::size_t stride, std::size_t count, std::uint8_t* out)
{
    EncodeBatches<8>(
        rows, stride, count, out, [](const std::uint8_t* from, std::size_t fromStride, std::uint8_t* to) {
            CInts pixels[kPixels];
            SplitBatch batch;
            LoadPixels(from, fromStride, pixels);
            const CInts clear = SplitByOneBit(pixels, batch);
            const Candidate ends = FitOneBit<Rounds, Passes, TriesRuns>(batch.counted, batch.anyLeftOut);
            const CInts places = NearestPlaces<Beside::Nothing>(batch.counted, ends) | clear;
            const ColorWords words = WordsOfPlaces(ends, places);
            StorePairs(words.ends, words.indices, to);
            std::int32_t holes[kBatch];
            clear.Store(holes);
            StoreEachSolid(batch.isSolid, batch.sample, 8, to,
                           [&](std::size_t lane, std::uint32_t pixel, std::uint8_t* block) {
                               Dxt::StoreSolidBlockWithHoles(pixel, static_cast<std::uint32_t>(holes[lane]),
                                                             block);
                           });
        });
}

// DXT3 and DXT5 differ in `FitAlphas` alone. Deliberate: the quickest level does not look which pixels can be
// seen; that would cost it a third of its speed.
template <FitAlphasFn FitAlphas>
void EncodeWithAlphaFast(const std::uint8_t* rows, std::size_t stride, std::size_t count, std::uint8_t* out)
{
    EncodeBatches<16>(rows, stride, count, out,
                      [](const std::uint8_t* from, std::size_t fromStride, std::uint8_t* to) {
                          CInts pixels[kPixels];
                          LoadPixels(from, fromStride, pixels);
                          const AlphaWords alpha = FitAlphas(pixels);
                          const ByteBox box = BoxOf(pixels);
                          const ColorWords words = FitFast<kSixteenth>(pixels, box);
                          StoreQuads(alpha.first, alpha.second, words.ends, words.indices, to);
                          StoreSolids(HasNoRange(box), pixels[0], true, 16, to + 8);
                      });
}

template <FitColorsFn FitColors, WordsFn Words, FitAlphasFn FitAlphas>
void EncodeWithAlpha(const std::uint8_t* rows, std::size_t stride, std::size_t count, std::uint8_t* out)
{
    EncodeBatches<16>(rows, stride, count, out,
                      [](const std::uint8_t* from, std::size_t fromStride, std::uint8_t* to) {
                          CInts pixels[kPixels];
                          SplitBatch batch;
                          LoadPixels(from, fromStride, pixels);
                          SplitVisible(pixels, batch);
                          const AlphaWords alpha = FitAlphas(pixels);
                          // Wholly transparent areas are mostly of one colour.
                          const CInts none = CInts::All(0);
                          const ColorWords words = AnyOf(batch.isSolid ^ CInts::All(-1))
                                                       ? Words(batch.all, FitColors(CountedOf(batch)))
                                                       : ColorWords{none, none};
                          StoreQuads(alpha.first, alpha.second, words.ends, words.indices, to);
                          StoreSolids(batch.isSolid, batch.sample, true, 16, to + 8);
                      });
}

}  // namespace

namespace Dxt {

const EncodeKernels MAVREL_DXT_KERNELS{
    {EncodeDxt1<FitNormal<2>, QuickWords>, EncodeDxt1Fast, EncodeDxt1<SearchHigh, NearestWords>,
     EncodeDxt1<SearchBest<false>, NearestWords>},
    {EncodeDxt1Alpha<1, 0, false>, EncodeDxt1Alpha<0, 0, false>, EncodeDxt1Alpha<2, 1, false>,
     EncodeDxt1Alpha<2, 3, true>},
    {EncodeWithAlpha<FitNormal<1>, QuickWords, ExplicitAlphas>, EncodeWithAlphaFast<ExplicitAlphas>,
     EncodeWithAlpha<SearchHigh, NearestWords, ExplicitAlphas>,
     EncodeWithAlpha<SearchBest<true>, NearestWords, ExplicitAlphas>},
    {EncodeWithAlpha<FitNormal<1>, QuickWords, FitAlphas<AlphaEffort::Normal, 0>>,
     EncodeWithAlphaFast<FitAlphas<AlphaEffort::Fast, 0>>,
     EncodeWithAlpha<SearchHigh, NearestWords, FitAlphas<AlphaEffort::Searched, 1>>,
     EncodeWithAlpha<SearchBest<true>, NearestWords, FitAlphas<AlphaEffort::Searched, 8>>}};

}  // namespace Dxt
