#pragma once

// What a base colour costs one half of a block when nothing is clamped. Included by the kernels of each
// instruction set.
//
// A modifier m then moves all channels alike. With s for the sum of a pixel's three differences from the base
// colour, three times the pixel's error is
//
//   (s - 3m)^2 + the squared differences between its channel differences,
//
// so the modifiers see one number a pixel, and the rest depends on the sums of the half's pixels alone. Costs
// are 24 times the error, short of what no choice changes; squares are counted in units of (2s - 6m)^2. Where
// a channel is clamped the colour comes nearer to the pixel, so a cost is never too small.

namespace {

constexpr int kTableCount = 8;
constexpr int kTableMask = 7;
constexpr int kCostBits = 3;
constexpr int kNoCost = 0x7FFFFFFF;
// Above every cost without a label, and small enough to be added.
constexpr int kFarCost = 1 << 30;

constexpr std::uint8_t kSmallModifiers[16] = {2, 5, 9, 13, 18, 24, 33, 47};
constexpr std::uint8_t kLargeModifiers[16] = {8, 17, 29, 42, 60, 80, 106, 183};
// Three times each of these: the 2s at which both modifiers do equally well, and how far each is from there.
constexpr std::uint8_t kMiddles[16] = {10, 22, 38, 55, 78, 104, 139, 230};
constexpr std::uint8_t kReaches[16] = {6, 12, 20, 29, 42, 56, 73, 136};

constexpr int BothHalves(int value)
{
    return value * 0x10001;
}

inline CInts MiddleOf(CInts table)
{
    return LookUp(kMiddles, table) * CInts::All(BothHalves(3));
}
inline CInts ReachOf(CInts table)
{
    return LookUp(kReaches, table) * CInts::All(BothHalves(3));
}

struct Distances {
    CInts v[4];
};

// 2s of each pixel, without its sign.
inline Distances DistancesFrom(const Half& half, CInts base)
{
    const CInts shade = Twice(ShadeOf(base));
    Distances distances;
    for (int i = 0; i < 4; ++i)
        distances.v[i] = MagnitudeHalves(SubtractHalves(half.shades[i], shade));
    return distances;
}

// The squares that are left when every pixel takes the better modifier of the table.
inline CInts SquaresLeft(const Distances& distances, CInts middle, CInts reach)
{
    CInts squares = CInts::All(0);
    for (const CInts distance : distances.v) {
        const CInts left = SubtractHalves(MagnitudeHalves(SubtractHalves(distance, middle)), reach);
        squares = squares + PairSums(left, left);
    }
    return squares;
}

inline CInts SquaresLeft(const Distances& distances, int table)
{
    return SquaresLeft(distances, CInts::All(BothHalves(3 * kMiddles[table])),
                       CInts::All(BothHalves(3 * kReaches[table])));
}

// What the tint of the base colour, its channels against each other, is away from that of the half.
inline CInts CostOfTint(const ChannelSums& sums, CInts base)
{
    const CInts redGreen = SubtractHalves(sums.redGreen, ShiftLeftHalves<3>(RedGreen(base)));
    const CInts blue = SubtractHalves(sums.blue, ShiftRightUnsigned<13>(base & CInts::All(0xFF0000)));
    const CInts differences =
        SubtractHalves(redGreen, ShiftRightUnsigned<16>(redGreen) | ShiftLeft<16>(blue));
    const CInts third = PairSums(differences, CInts::All(BothHalves(1)));
    return PairSums(differences, differences) + third * third;
}

// What must be added before halves that were cut differently are compared.
inline CInts CostOfCut(const ChannelSums& sums)
{
    return CInts::All(0) - CostOfTint(sums, CInts::All(0));
}

// Costs that carry a number, mostly that of a table, in their lowest bits.
inline CInts Labelled(CInts cost, CInts number)
{
    return ShiftLeft<kCostBits>(cost) | number;
}
inline CInts LabelOf(CInts cost)
{
    return cost & CInts::All(kTableMask);
}
inline CInts WithoutLabel(CInts cost)
{
    return cost & CInts::All(~kTableMask);
}

// The cost from labelled squares, with their label.
inline CInts CostOf(CInts squares, CInts tint)
{
    return squares + WithoutLabel(squares) + ShiftLeft<kCostBits>(tint);
}

// A base colour that was tried; its cost is labelled with its best table.
struct Tried {
    CInts cost;
    CInts levels;
};

inline Tried Smaller(const Tried& a, const Tried& b)
{
    return {Smaller(a.cost, b.cost), Select(a.cost > b.cost, b.levels, a.levels)};
}

inline Choice Join(const Tried& first, const Tried& second, CInts differential)
{
    const CInts tables = ShiftLeft<5>(LabelOf(first.cost)) | ShiftLeft<2>(LabelOf(second.cost));
    return {WithoutLabel(first.cost) + WithoutLabel(second.cost), first.levels, second.levels, tables,
            differential};
}

// A mask of the lanes where three bits hold the difference of each channel, -4 to 3.
inline CInts DifferenceFits(CInts first, CInts second)
{
    const CInts difference = SubtractBytes(second + CInts::All(0x040404), first);
    return (difference & CInts::All(0xF8F8F8)) == CInts::All(0);
}

}  // namespace
