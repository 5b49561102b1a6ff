#pragma once

// The kernels themselves, put together from the searches. Included by EncodeKernels_*.cpp after the lanes of
// the instruction set.

#include <cstddef>
#include <cstring>

#include "plugins/etc1/BlockFormat.h"
#include "plugins/etc1/EncodeKernels.h"
#include "plugins/etc1/SolidColor.h"

// Each of these builds on the ones above it.
// clang-format off
#include "plugins/etc1/BlockLanes.h"
#include "plugins/etc1/HalfLanes.h"
#include "plugins/etc1/CodeLanes.h"
#include "plugins/etc1/TableSearch.h"
#include "plugins/etc1/BaseSearch.h"
#include "plugins/etc1/FastFit.h"
#include "plugins/etc1/Refine.h"
// clang-format on

namespace {

constexpr std::size_t kBatchBlocks = kLanes;
constexpr std::size_t kRowBytes = 16;

using EncodeBatchFn = void (*)(const std::uint8_t* rows, std::size_t stride, std::uint8_t* out);

// Feeds rows of blocks to a kernel in batches of as many as there are lanes.
template <EncodeBatchFn EncodeBatch>
void EncodeRow(const std::uint8_t* rows, std::size_t stride, std::size_t count, std::uint8_t* out)
{
    constexpr std::size_t kBytes = Etc1::kBlockBytes;
    for (; count >= kBatchBlocks; count -= kBatchBlocks) {
        EncodeBatch(rows, stride, out);
        rows += kBatchBlocks * kRowBytes;
        out += kBatchBlocks * kBytes;
    }
    if (count == 0)
        return;
    // The last blocks, and copies of the very last one in the lanes that are left.
    std::uint8_t pixels[4 * kBatchBlocks * kRowBytes];
    std::uint8_t blocks[kBatchBlocks * kBytes];
    for (std::size_t y = 0; y < 4; ++y) {
        std::uint8_t* const to = pixels + y * kBatchBlocks * kRowBytes;
        std::memcpy(to, rows + y * stride, count * kRowBytes);
        for (std::size_t block = count; block < kBatchBlocks; ++block)
            std::memcpy(to + block * kRowBytes, to + (count - 1) * kRowBytes, kRowBytes);
    }
    EncodeBatch(pixels, kBatchBlocks * kRowBytes, blocks);
    std::memcpy(out, blocks, count * kBytes);
}

// Writes the blocks of one colour again from the tables.
inline void StoreSolids(const Batch& batch, std::uint8_t* out)
{
    const CInts isSolid = IsSolid(batch.pixels);
    if (!AnyOf(isSolid))
        return;
    std::int32_t masks[kBatchBlocks];
    std::int32_t pixels[kBatchBlocks];
    isSolid.Store(masks);
    batch.pixels[0].Store(pixels);
    for (std::size_t lane = 0; lane < kBatchBlocks; ++lane)
        if (masks[lane] != 0)
            Etc1::StoreSolidBlock(static_cast<std::uint32_t>(pixels[lane]),
                                  out + static_cast<std::size_t>(kBlockOfLane[lane]) * Etc1::kBlockBytes);
}

void EncodeFast(const std::uint8_t* rows, std::size_t stride, std::uint8_t* out)
{
    Batch batch;
    TakeBatch(rows, stride, batch);
    const Choice side = FitFlip(batch, false);
    const Choice above = FitFlip(batch, true);
    const CInts flip = side.cost > above.cost;
    const Choice choice = Select(flip, above, side);
    StorePairs(BaseWord(choice, flip), UnclampedCodes(batch, choice, flip), out);
    StoreSolids(batch, out);
}

template <typename Tables, int FineShades, int CoarseShades, int RefinePasses>
inline Choice SearchFlip(const Batch& batch, bool flip)
{
    Tables tables[2] = {Tables(batch, flip, 0), Tables(batch, flip, 1)};
    Tried fine[2][kLineLength<FineShades>];
    Tried coarse[2][kLineLength<CoarseShades>];
    CInts cut = CInts::All(0);
    for (int half = 0; half < 2; ++half) {
        cut = cut + CostOfCut(tables[half].half.sums);
        TryLine<5, FineShades>(tables[half], fine[half]);
        TryLine<4, CoarseShades>(tables[half], coarse[half]);
    }
    const Choice differential = BestPair(fine[0], fine[1]);
    const Choice individual = Join(BestOf(coarse[0]), BestOf(coarse[1]), CInts::All(0));
    Choice best = Select(differential.cost > individual.cost, individual, differential);
    if constexpr (RefinePasses > 0)
        Refine(tables, RefinePasses, best);
    best.cost = best.cost + ShiftLeft<kCostBits>(cut);
    return best;
}

template <typename Tables, int FineShades, int CoarseShades, int RefinePasses>
void EncodeSearched(const std::uint8_t* rows, std::size_t stride, std::uint8_t* out)
{
    Batch batch;
    TakeBatch(rows, stride, batch);
    const Choice side = SearchFlip<Tables, FineShades, CoarseShades, RefinePasses>(batch, false);
    const Choice above = SearchFlip<Tables, FineShades, CoarseShades, RefinePasses>(batch, true);
    const CInts flip = side.cost > above.cost;
    const Choice choice = Select(flip, above, side);
    StorePairs(BaseWord(choice, flip), NearestCodes(batch, choice, flip), out);
    StoreSolids(batch, out);
}

}  // namespace

namespace Etc1 {

const EncodeKernels MAVREL_ETC1_KERNELS{{EncodeRow<EncodeSearched<NearTables, 2, 2, 0>>,
                                         EncodeRow<EncodeFast>,
                                         EncodeRow<EncodeSearched<ClampedTables<2>, 4, 2, 1>>,
                                         EncodeRow<EncodeSearched<ClampedTables<3>, 8, 5, 2>>}};

}  // namespace Etc1
