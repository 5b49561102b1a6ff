#pragma once

// The final choice: which blocks punch through, the codes of the pixels, and the words made of them. Included
// once by the kernels of every instruction set, after its lanes.

#include "plugins/pvrtc/FitKernels.h"
#include "plugins/pvrtc/SumKernels.h"
#include "plugins/pvrtc/TwoBitKernels.h"

namespace {
// How much less error punching through would make in the quarters of the cells.
inline void CompareTile(const LevelView& view, const TileAt& at, const SumLines& lines)
{
    const std::size_t tile = view.Tile(at.row, at.parity, at.tile);
    CInts gain[4] = {CInts::All(0), CInts::All(0), CInts::All(0), CInts::All(0)};
    const CShorts zero = CShorts::All(0);
    const CShorts all = CShorts::All(-1);
    const auto compare = [&](std::size_t pixel, int x, int y, const PixelColors<4>& colors) {
        const PixelMasks masks = MasksOf<4, 4, true>(view, tile, pixel);
        const auto error = [&](int weight, CShorts clear) {
            return ErrorWith<4, true>(colors, masks, CShorts::All(weight), clear);
        };
        const CInts ends = Smaller(error(0, zero), error(8, zero));
        const CInts plain = Smaller(ends, Smaller(error(3, zero), error(5, zero)));
        const CInts punched = Smaller(ends, Smaller(error(4, zero), error(4, all)));
        const int corner = y / 2 * 2 + x / 2;
        gain[corner] = gain[corner] + (plain - punched);
    };
    ForTilePixels<4, 4>(view, at, compare);
    for (int corner = 0; corner < 4; ++corner)
        gain[corner].Store(lines.At(corner, at.parity) + at.tile * kLanes);
}

inline void CompareCellRow(const LevelView& view, std::size_t row, const SumLines& lines)
{
    for (std::size_t parity = 0; parity < 2; ++parity)
        for (std::size_t tile = 0; tile < view.tiles; ++tile)
            CompareTile(view, {row, parity, tile}, lines);
    WrapSums(view, lines, 4);
}

void PunchRows(const LevelView& view, std::uint32_t first, std::uint32_t end, std::int32_t* scratch)
{
    SumLines above{scratch, view.stride};
    SumLines here{scratch + std::size_t{8} * view.stride, view.stride};
    CompareCellRow(view, (first + view.rows - 1) & (view.rows - 1), above);
    for (std::uint32_t row = first; row < end; ++row) {
        CompareCellRow(view, row, here);
        for (std::size_t parity = 0; parity < 2; ++parity) {
            std::int16_t* const punched = view.punched + view.Line(row, parity) * view.stride + kLinePad;
            for (std::size_t element = 0; element < view.pairs; element += 8) {
                const OwnAndLeft cells = CellsOf(parity, element);
                const CFloats gain = OwnSum(here, 0, cells) + LeftSum(here, 1, cells) +
                                     OwnSum(above, 2, cells) + LeftSum(above, 3, cells);
                SelectLess(CFloats::All(0), gain, CFloats::All(-1), CFloats::All(0))
                    .StoreShorts(punched + element);
            }
            punched[view.pairs] = punched[0];
        }
        const SumLines swapped = above;
        above = here;
        here = swapped;
    }
}

template <int Channels, bool Masked, Choosing How>
inline void CodeTile(const LevelView& view, const TileAt& at)
{
    const std::size_t tile = view.Tile(at.row, at.parity, at.tile);
    std::uint8_t* const codes =
        view.codes + view.Line(at.row, at.parity) * 4 * view.stride + kLinePad + at.tile * kLanes;
    CShorts four = CShorts::All(0);
    const auto code = [&](std::size_t pixel, int x, int y, const PixelColors<Channels>& colors) {
        PixelMasks masks = MasksOf<4, Channels, Masked>(view, tile, pixel);
        if constexpr (Channels == 4)
            masks.punched = PunchedAt(view, at, x, y);
        const Chosen chosen = Choose<4, Channels, Masked, How>(view, at, x, y, colors, masks);
        // The last pixel of the four ends in the highest bits.
        four = ShiftRight<2>(four) + ShiftLeft<6>(chosen.code);
        if (x == 3) {
            four.StoreBytes(codes + static_cast<std::size_t>(y) * view.stride);
            four = CShorts::All(0);
        }
    };
    ForTilePixels<4, Channels>(view, at, code);
}

template <int Channels, bool Masked, Choosing How>
inline void CodeRowsAs(const LevelView& view, std::uint32_t first, std::uint32_t end)
{
    for (std::uint32_t row = first; row < end; ++row) {
        for (std::size_t parity = 0; parity < 2; ++parity) {
            for (std::size_t tile = 0; tile < view.tiles; ++tile)
                CodeTile<Channels, Masked, How>(view, {row, parity, tile});
            for (std::size_t y = 0; y < 4; ++y) {
                std::uint8_t* const line =
                    view.codes + (view.Line(row, parity) * 4 + y) * view.stride + kLinePad;
                line[-1] = line[view.pairs - 1];
            }
        }
    }
}

void CodeRows(const LevelView& view, std::uint32_t first, std::uint32_t end, Choosing how)
{
    if (view.channels == 4)
        CodeRowsAs<4, true, Choosing::ByTrying>(view, first, end);
    else if (view.masked)
        CodeRowsAs<3, true, Choosing::ByTrying>(view, first, end);
    else if (how == Choosing::ByTrying)
        CodeRowsAs<3, false, Choosing::ByTrying>(view, first, end);
    else
        CodeRowsAs<3, false, Choosing::ByProjection>(view, first, end);
}

// The modulation of 16 blocks: the lower and the upper half of 32 bits.
struct Modulations {
    CShorts low;
    CShorts high;
};

inline Modulations FourBitModulations(const LevelView& view, const TileAt& at)
{
    const std::size_t above = (at.row + view.rows - 1) & (view.rows - 1);
    const std::size_t element = kLinePad + at.tile * kLanes;
    const std::size_t left = element - (at.parity == 0 ? 1 : 0);
    CShorts rows[4];
    for (std::size_t y = 0; y < 4; ++y) {
        // The upper half of a block is the lower half of the cells above its middle.
        const std::size_t row = y < 2 ? above : at.row;
        const auto codesAt = [&](std::size_t parity, std::size_t from) {
            return CShorts::LoadBytes(view.codes + (view.Line(row, parity) * 4 + (y ^ 2)) * view.stride +
                                      from);
        };
        rows[y] = ShiftRight<4>(codesAt(1 - at.parity, left)) |
                  ShiftLeft<4>(codesAt(at.parity, element) & CShorts::All(15));
    }
    return {rows[0] | ShiftLeft<8>(rows[1]), rows[2] | ShiftLeft<8>(rows[3])};
}

inline Modulations TwoBitModulations(const LevelView& view, const TileAt& at, CShorts mode)
{
    CShorts plain[2] = {CShorts::All(0), CShorts::All(0)};
    CShorts interpolated[2] = {CShorts::All(0), CShorts::All(0)};
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 8; ++x) {
            const CShorts weight = CShorts::Load(view.weights + PixelLineAt(view, at, x, y));
            const int bit = 1 << (y % 2 * 8 + x);
            plain[y / 2] = plain[y / 2] | ((weight > CShorts::All(3)) & CShorts::All(bit));
            if (!IsStoredAt(x, y))
                continue;
            const CShorts code = CShorts::All(0) - (weight > CShorts::All(2)) - (weight > CShorts::All(4)) -
                                 (weight > CShorts::All(7));
            interpolated[y / 2] = interpolated[y / 2] | code * CShorts::All(1 << (y % 2 * 8 + x / 2 * 2));
        }
    }
    // The lower bits of two pixels, which have one bit only, tell the mode.
    const CShorts oneWay = mode > CShorts::All(TwoBitMode::kBoth);
    const CShorts vertical = mode > CShorts::All(TwoBitMode::kHorizontal);
    const CShorts low = (interpolated[0] & CShorts::All(-2)) | (oneWay & CShorts::All(1));
    const CShorts high = Select(oneWay, (interpolated[1] & CShorts::All(~16)) | (vertical & CShorts::All(16)),
                                interpolated[1]);
    const CShorts stored = mode > CShorts::All(TwoBitMode::kPlain);
    return {Select(stored, low, plain[0]), Select(stored, high, plain[1])};
}

// One endpoint of 16 blocks as it is stored; its lowest bit is clear in colour A.
template <bool IsA>
inline CShorts PackColors(const std::int16_t* lines, std::size_t stride)
{
    const CShorts red = CShorts::Load(lines);
    const CShorts green = CShorts::Load(lines + stride);
    const CShorts blue = CShorts::Load(lines + 2 * stride);
    const CShorts alpha = CShorts::Load(lines + 3 * stride);
    const CShorts opaque = CShorts::All(-0x8000) | ShiftLeft<10>(red) | ShiftLeft<5>(green) |
                           (IsA ? blue & CShorts::All(30) : blue);
    const CShorts translucent = ShiftLeft<11>(alpha & CShorts::All(14)) |
                                ShiftLeft<7>(red & CShorts::All(30)) |
                                ShiftLeft<3>(green & CShorts::All(30)) |
                                (IsA ? ShiftRight<1>(blue) & CShorts::All(14) : ShiftRight<1>(blue));
    return Select(alpha > CShorts::All(14), opaque, translucent);
}

void PackRow(const LevelView& view, std::uint32_t row)
{
    for (std::size_t parity = 0; parity < 2; ++parity) {
        const std::size_t line = view.Line(row, parity);
        for (std::size_t tile = 0; tile < view.tiles; ++tile) {
            const std::size_t element = kLinePad + tile * kLanes;
            const std::int16_t* const endpoints = view.endpoints + line * 8 * view.stride + element;
            CShorts mode = CShorts::All(0);
            Modulations modulations;
            if (view.blockWidth == 4) {
                modulations = FourBitModulations(view, {row, parity, tile});
                if (view.punched != nullptr)
                    mode = CShorts::Load(view.punched + line * view.stride + element);
            } else {
                mode = CShorts::Load(view.modes + line * view.stride + element);
                modulations = TwoBitModulations(view, {row, parity, tile}, mode);
                mode = mode > CShorts::All(TwoBitMode::kPlain);
            }
            std::int16_t* const words = view.words + line * 4 * view.stride + element;
            modulations.low.Store(words);
            modulations.high.Store(words + view.stride);
            (PackColors<true>(endpoints, view.stride) | (mode & CShorts::All(1)))
                .Store(words + 2 * view.stride);
            PackColors<false>(endpoints + 4 * view.stride, view.stride).Store(words + 3 * view.stride);
        }
    }
}

}  // namespace
