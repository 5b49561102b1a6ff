#pragma once

// Kernels over blocks: the normal equations are solved block after block on the values that can be stored.
// Blocks of one line do not touch each other, so eight are solved at a time. Included once by the kernels of
// every instruction set, after its lanes.

#include "plugins/pvrtc/FitKernels.h"
#include "plugins/pvrtc/PixelKernels.h"

namespace {

// The values of a channel, evenly numbered: 31 steps, 15, 7, alpha in 7 steps, or alpha 15 alone.
enum class Values { Five, Four, Three, Alpha, Opaque };

// Keeps the solution where it is along directions that no pixel decides.
constexpr float kStiffness = 0.5F;

template <Values Kind>
struct ValueRange {
    static constexpr float kLast = Kind == Values::Five ? 31 : Kind == Values::Four ? 15 : 7;
    static constexpr float kToIndex = Kind == Values::Five    ? 1
                                      : Kind == Values::Four  ? 15.0F / 31
                                      : Kind == Values::Three ? 7.0F / 31
                                                              : 0.5F;
};

inline CFloats Clamped(CFloats value, float last)
{
    return Smaller(Larger(value, CFloats::All(0)), CFloats::All(last));
}

template <Values Kind>
inline CFloats ValueAt(CFloats index)
{
    if constexpr (Kind == Values::Five)
        return index;
    const CFloats twice = index + index;
    if constexpr (Kind == Values::Four)
        return SelectLess(index, CFloats::All(8), twice, twice + CFloats::All(1));
    if constexpr (Kind == Values::Three)
        return twice + twice + Whole(index * CFloats::All(0.5F));
    if constexpr (Kind == Values::Alpha)
        return twice;
    return CFloats::All(15);
}

template <Values Kind>
inline CFloats NearestValue(CFloats wanted)
{
    using Range = ValueRange<Kind>;
    return ValueAt<Kind>(
        Whole(Clamped(wanted * CFloats::All(Range::kToIndex), Range::kLast) + CFloats::All(0.5F)));
}

// The number of the value below the wanted one, such that the next exists too.
template <Values Kind>
inline CFloats IndexBelow(CFloats wanted)
{
    using Range = ValueRange<Kind>;
    return Whole(Clamped(wanted * CFloats::All(Range::kToIndex), Range::kLast - 1));
}

// The 2 x 2 system of a block, the same for all colour channels.
struct BlockSystem {
    CFloats aa;
    CFloats ab;
    CFloats bb;
    CFloats overA;
    CFloats overB;
    CFloats overDeterminant;
};

inline BlockSystem SystemOf(CFloats aa, CFloats ab, CFloats bb)
{
    const CFloats one = CFloats::All(1);
    const CFloats stiffA = aa + CFloats::All(kStiffness);
    const CFloats stiffB = bb + CFloats::All(kStiffness);
    return {stiffA, ab, stiffB, one / stiffA, one / stiffB, one / (stiffA * stiffB - ab * ab)};
}

struct ChannelState {
    CFloats missingA;
    CFloats missingB;
    CFloats currentA;
    CFloats currentB;
};

struct ChannelAnswer {
    CFloats a;
    CFloats b;
    CFloats error;  // relative to no change
};

inline CFloats ErrorOf(const BlockSystem& system, const ChannelState& state, CFloats a, CFloats b)
{
    const CFloats moveA = a - state.currentA;
    const CFloats moveB = b - state.currentB;
    const CFloats two = CFloats::All(2);
    return moveA * (system.aa * moveA + two * (system.ab * moveB - state.missingA)) +
           moveB * (system.bb * moveB - two * state.missingB);
}

inline void Consider(const BlockSystem& system, const ChannelState& state, CFloats a, CFloats b,
                     ChannelAnswer& best)
{
    const CFloats error = ErrorOf(system, state, a, b);
    best.a = SelectLess(error, best.error, a, best.a);
    best.b = SelectLess(error, best.error, b, best.b);
    best.error = Smaller(error, best.error);
}

// Endpoint A is set to the values on either side of its optimum, B to its best answer.
// Thorough: also the other way round.
template <Values KindA, Values KindB, bool Thorough>
[[gnu::always_inline]] inline ChannelAnswer SolveChannel(const BlockSystem& system, const ChannelState& state)
{
    const CFloats optimumA =
        state.currentA + (state.missingA * system.bb - state.missingB * system.ab) * system.overDeterminant;
    const CFloats optimumB =
        state.currentB + (state.missingB * system.aa - state.missingA * system.ab) * system.overDeterminant;
    const CFloats one = CFloats::All(1);
    const auto answerB = [&](CFloats a) {
        const CFloats move = (state.missingB - system.ab * (a - state.currentA)) * system.overB;
        return NearestValue<KindB>(state.currentB + move);
    };
    const auto answerA = [&](CFloats b) {
        const CFloats move = (state.missingA - system.ab * (b - state.currentB)) * system.overA;
        return NearestValue<KindA>(state.currentA + move);
    };
    const CFloats belowA = IndexBelow<KindA>(optimumA);
    const CFloats firstA = ValueAt<KindA>(belowA);
    const CFloats firstB = answerB(firstA);
    ChannelAnswer best{firstA, firstB, ErrorOf(system, state, firstA, firstB)};
    if constexpr (KindA != Values::Opaque) {
        const CFloats secondA = ValueAt<KindA>(belowA + one);
        Consider(system, state, secondA, answerB(secondA), best);
    }
    if constexpr (KindB != Values::Opaque && (Thorough || KindA == Values::Opaque)) {
        const CFloats belowB = IndexBelow<KindB>(optimumB);
        const CFloats thirdB = ValueAt<KindB>(belowB);
        Consider(system, state, answerA(thirdB), thirdB, best);
        const CFloats fourthB = ValueAt<KindB>(belowB + one);
        Consider(system, state, answerA(fourthB), fourthB, best);
    }
    return best;
}

struct BlockAnswer {
    CFloats value[8];
    CFloats error;
};

template <bool OpaqueA, bool OpaqueB, int Channels>
inline BlockAnswer SolveForms(const BlockSystem* systems, const ChannelState* states)
{
    constexpr Values kA = OpaqueA ? Values::Five : Values::Four;
    constexpr Values kBlueA = OpaqueA ? Values::Four : Values::Three;
    constexpr Values kB = OpaqueB ? Values::Five : Values::Four;
    constexpr Values kAlphaA = OpaqueA ? Values::Opaque : Values::Alpha;
    constexpr Values kAlphaB = OpaqueB ? Values::Opaque : Values::Alpha;
    // Full depth gains nothing by it; coarse values do.
    constexpr bool kThorough = Channels == 4;
    ChannelAnswer answers[4];
    answers[0] = SolveChannel<kA, kB, kThorough>(systems[0], states[0]);
    answers[1] = SolveChannel<kA, kB, kThorough>(systems[0], states[1]);
    answers[2] = SolveChannel<kBlueA, kB, kThorough>(systems[0], states[2]);
    if constexpr (Channels == 4)
        answers[3] = SolveChannel<kAlphaA, kAlphaB, kThorough>(systems[1], states[3]);
    BlockAnswer block;
    block.error = CFloats::All(0);
    for (int c = 0; c < Channels; ++c) {
        block.value[c] = answers[c].a;
        block.value[c + 4] = answers[c].b;
        block.error = block.error + answers[c].error;
    }
    return block;
}

template <int Channels>
inline void KeepBetter(const BlockAnswer& other, BlockAnswer& best)
{
    for (int c = 0; c < Channels; ++c) {
        best.value[c] = SelectLess(other.error, best.error, other.value[c], best.value[c]);
        best.value[c + 4] = SelectLess(other.error, best.error, other.value[c + 4], best.value[c + 4]);
    }
    best.error = Smaller(other.error, best.error);
}

template <int Channels>
inline BlockAnswer SolveBlocks(const BlockSystem* systems, const ChannelState* states)
{
    BlockAnswer best = SolveForms<true, true, Channels>(systems, states);
    if constexpr (Channels == 4) {
        KeepBetter<4>(SolveForms<true, false, 4>(systems, states), best);
        KeepBetter<4>(SolveForms<false, true, 4>(systems, states), best);
        KeepBetter<4>(SolveForms<false, false, 4>(systems, states), best);
    }
    return best;
}

// Eight neighbours: where their share of the matrix stands, and where their changes stand.
struct Neighbour {
    const float* colors;  // three terms, a stride apart
    const float* alpha;
    const float* changes;
};

struct Neighbours {
    Neighbour item[8];
};

struct ElementAt {
    std::size_t row;
    std::size_t parity;
    std::size_t element;
};

inline Neighbours NeighboursOf(const LevelView& view, const ElementAt& at)
{
    const std::size_t above = (at.row + view.rows - 1) & (view.rows - 1);
    const std::size_t below = (at.row + 1) & (view.rows - 1);
    const std::size_t other = 1 - at.parity;
    const auto own = static_cast<std::ptrdiff_t>(at.element);
    const std::ptrdiff_t left = own - (at.parity == 0 ? 1 : 0);
    const std::ptrdiff_t right = own + (at.parity == 0 ? 0 : 1);
    const auto make = [&](std::size_t matrixRow, std::size_t matrixParity, std::ptrdiff_t matrixAt,
                          std::size_t term, std::size_t changeRow, std::size_t changeParity,
                          std::ptrdiff_t changeAt) {
        const std::size_t matrix =
            (view.Line(matrixRow, matrixParity) * kMatrixTerms + term * 3) * view.stride + kLinePad;
        const float* const changes =
            view.changes + view.Line(changeRow, changeParity) * 8 * view.stride + kLinePad + changeAt;
        return Neighbour{view.matrix + matrix + matrixAt,
                         view.alphaMatrix == nullptr ? nullptr : view.alphaMatrix + matrix + matrixAt,
                         changes};
    };
    return {{make(at.row, at.parity, own, 1, at.row, other, right),
             make(at.row, other, left, 1, at.row, other, left),
             make(at.row, at.parity, own, 2, below, at.parity, own),
             make(above, at.parity, own, 2, above, at.parity, own),
             make(at.row, at.parity, own, 3, below, other, right),
             make(at.row, other, left, 3, below, other, left),
             make(above, at.parity, own, 3, above, other, right),
             make(above, other, left, 3, above, other, left)}};
}

template <int Channels>
inline void SolveEight(const LevelView& view, const ElementAt& at)
{
    const std::size_t stride = view.stride;
    const std::size_t line = view.Line(at.row, at.parity);
    const std::size_t start = line * 8 * stride + kLinePad + at.element;
    const std::size_t own = line * kMatrixTerms * stride + kLinePad + at.element;
    ChannelState states[4];
    for (std::size_t c = 0; c < Channels; ++c) {
        states[c] = {CFloats::Load(view.missing + start + c * stride),
                     CFloats::Load(view.missing + start + (c + 4) * stride),
                     CFloats::LoadShorts(view.endpoints + start + c * stride),
                     CFloats::LoadShorts(view.endpoints + start + (c + 4) * stride)};
    }
    const Neighbours neighbours = NeighboursOf(view, at);
    for (const Neighbour& neighbour : neighbours.item) {
        CFloats aa = CFloats::Load(neighbour.colors);
        CFloats ab = CFloats::Load(neighbour.colors + stride);
        CFloats bb = CFloats::Load(neighbour.colors + 2 * stride);
        for (std::size_t c = 0; c < Channels; ++c) {
            if (c == 3) {
                aa = CFloats::Load(neighbour.alpha);
                ab = CFloats::Load(neighbour.alpha + stride);
                bb = CFloats::Load(neighbour.alpha + 2 * stride);
            }
            const CFloats a = CFloats::Load(neighbour.changes + c * stride);
            const CFloats b = CFloats::Load(neighbour.changes + (c + 4) * stride);
            states[c].missingA = states[c].missingA - (aa * a + ab * b);
            states[c].missingB = states[c].missingB - (ab * a + bb * b);
        }
    }
    BlockSystem systems[2];
    systems[0] = SystemOf(CFloats::Load(view.matrix + own), CFloats::Load(view.matrix + own + stride),
                          CFloats::Load(view.matrix + own + 2 * stride));
    if constexpr (Channels == 4)
        systems[1] =
            SystemOf(CFloats::Load(view.alphaMatrix + own), CFloats::Load(view.alphaMatrix + own + stride),
                     CFloats::Load(view.alphaMatrix + own + 2 * stride));
    const BlockAnswer answer = SolveBlocks<Channels>(systems, states);
    for (std::size_t c = 0; c < Channels; ++c) {
        (answer.value[c] - states[c].currentA).Store(view.changes + start + c * stride);
        (answer.value[c + 4] - states[c].currentB).Store(view.changes + start + (c + 4) * stride);
    }
}

// The level wraps: the first block is also the one behind the last, the last one also before the first.
template <typename Element>
inline void WrapLine(Element* line, std::size_t pairs)
{
    line[pairs] = line[0];
    line[-1] = line[pairs - 1];
}

template <int Channels>
inline void SolveRowAs(const LevelView& view, std::uint32_t row)
{
    for (std::size_t parity = 0; parity < 2; ++parity) {
        for (std::size_t element = 0; element < view.pairs; element += 8)
            SolveEight<Channels>(view, {row, parity, element});
        for (std::size_t e = 0; e < 8; ++e)
            WrapLine(view.changes + (view.Line(row, parity) * 8 + e) * view.stride + kLinePad, view.pairs);
    }
}

void SolveRow(const LevelView& view, std::uint32_t row)
{
    if (view.channels == 4)
        SolveRowAs<4>(view, row);
    else
        SolveRowAs<3>(view, row);
}

void ApplyRows(const LevelView& view, std::uint32_t first, std::uint32_t end)
{
    for (std::size_t line = view.Line(first, 0); line < view.Line(end, 0); ++line) {
        for (std::size_t e = 0; e < 8; ++e) {
            const std::size_t at = (line * 8 + e) * view.stride + kLinePad;
            for (std::size_t element = 0; element < view.pairs; element += 8) {
                const CFloats moved = CFloats::LoadShorts(view.endpoints + at + element) +
                                      CFloats::Load(view.changes + at + element);
                moved.StoreShorts(view.endpoints + at + element);
                CFloats::All(0).Store(view.changes + at + element);
            }
            WrapLine(view.endpoints + at, view.pairs);
            WrapLine(view.changes + at, view.pairs);
        }
    }
}

}  // namespace
