#pragma once

// Ways to find the best table for a base colour, from quick to exact. Each has the cost of a base colour,
// labelled with the table. Included by the kernels of each instruction set.

namespace {

// All tables, as if nothing were clamped.
struct EveryTable {
    Half half;

    EveryTable(const Batch& batch, bool flip, int index) : half(TakeHalf(batch, flip, index)) {}

    void StartLine() {}

    CInts Measure(CInts base) const
    {
        const Distances distances = DistancesFrom(half, base);
        const CInts farthest = LargerHalves(LargerHalves(distances.v[0], distances.v[1]),
                                            LargerHalves(distances.v[2], distances.v[3]));
        CInts best = ShiftLeft<kCostBits>(SquaresLeft(distances, 0));
        for (int table = 1; table < kTableCount; ++table) {
            // Once the small modifier reaches every pixel, larger tables only overshoot.
            if (table % 2 == 0 && table >= 4 &&
                !AnyOf(GreaterHalves(farthest, CInts::All(BothHalves(6 * kSmallModifiers[table - 1])))))
                break;
            best = Smaller(best, Labelled(SquaresLeft(distances, table), CInts::All(table)));
        }
        return CostOf(best, CostOfTint(half.sums, base));
    }
};

// As if nothing were clamped, the table that is best for the mean of the pixels and those next to it.
struct NearTables {
    static constexpr int kCount = 3;

    Half half;
    CInts numbers[kCount];
    CInts middles[kCount];
    CInts reaches[kCount];

    NearTables(const Batch& batch, bool flip, int index) : half(TakeHalf(batch, flip, index))
    {
        const CInts mean = Expanded<5>(NearestLevels<5>(half.sums));
        const CInts best = LabelOf(EveryTable(batch, flip, index).Measure(mean));
        numbers[0] = Larger(best - CInts::All(1), CInts::All(0));
        numbers[1] = best;
        numbers[2] = Smaller(best + CInts::All(1), CInts::All(kTableCount - 1));
        for (int i = 0; i < kCount; ++i) {
            middles[i] = MiddleOf(numbers[i]);
            reaches[i] = ReachOf(numbers[i]);
        }
    }

    void StartLine() {}

    CInts Measure(CInts base) const
    {
        const Distances distances = DistancesFrom(half, base);
        CInts best = CInts::All(kNoCost);
        for (int i = 0; i < kCount; ++i)
            best = Smaller(best, Labelled(SquaresLeft(distances, middles[i], reaches[i]), numbers[i]));
        return CostOf(best, CostOfTint(half.sums, base));
    }
};

// The pixels of a half, and what they add to 24 times the error whatever is chosen.
struct ExactHalf {
    CInts redGreen[8];
    CInts blue[8];
    CInts constant;
};

inline ExactHalf TakeExact(const CInts (&pixels)[8], const ChannelSums& sums)
{
    ExactHalf exact;
    CInts spread = CInts::All(0);
    for (int i = 0; i < 8; ++i) {
        const CInts redGreen = RedGreen(pixels[i]);
        const CInts blue = ShiftRightUnsigned<16>(pixels[i]);
        const CInts sum = PairSums(redGreen, CInts::All(BothHalves(1))) + blue;
        const CInts squares = PairSums(redGreen, redGreen) + PairSums(blue, blue);
        spread = spread + squares + squares + squares - sum * sum;
        exact.redGreen[i] = redGreen;
        exact.blue[i] = blue;
    }
    exact.constant = ShiftLeft<3>(spread) + CostOfCut(sums);
    return exact;
}

inline CInts ExactCost(const ExactHalf& half, CInts base, int table)
{
    const Palette palette = PaletteOf(base, CInts::All(table));
    CInts error = CInts::All(0);
    for (int i = 0; i < 8; ++i) {
        CInts nearest = PixelError(half.redGreen[i], half.blue[i], palette, 0);
        for (int code = 1; code < 4; ++code)
            nearest = Smaller(nearest, PixelError(half.redGreen[i], half.blue[i], palette, code));
        error = error + nearest;
    }
    return ShiftLeft<4>(error) + ShiftLeft<3>(error) - half.constant;
}

// How far the channels are from where they would be clamped, at least.
inline CInts RoomOf(CInts base)
{
    const CInts room = SmallerBytes(base, base ^ CInts::All(0xFFFFFF));
    const CInts byte = CInts::All(0xFF);
    return Smaller(room & byte, Smaller(ShiftRightUnsigned<8>(room) & byte, ShiftRightUnsigned<16>(room)));
}

// All tables, with clamping: exact for every table whose error would be below the least so far if clamping
// left no more than a 2^-Slack of it. What a lane finds does not depend on the other lanes.
template <int Slack>
struct ClampedTables {
    Half half;
    ExactHalf exact;
    CInts best = CInts::All(kFarCost);

    ClampedTables(const Batch& batch, bool flip, int index) : half(TakeHalf(batch, flip, index))
    {
        CInts pixels[8];
        for (int i = 0; i < 8; ++i)
            pixels[i] = batch.pixels[PixelOf(flip, index, i)];
        exact = TakeExact(pixels, half.sums);
    }

    void StartLine() { best = CInts::All(kFarCost); }

    CInts Measure(CInts base)
    {
        const Distances distances = DistancesFrom(half, base);
        const CInts tint = CostOfTint(half.sums, base);
        const CInts room = RoomOf(base);
        CInts costs[kTableCount];
        for (int table = 0; table < kTableCount; ++table) {
            const CInts squares = SquaresLeft(distances, table);
            costs[table] = squares + squares + tint;
            best = Smaller(best, costs[table]);
        }
        CInts labelled = CInts::All(kNoCost);
        for (int table = 0; table < kTableCount; ++table) {
            const CInts isClamped = CInts::All(kLargeModifiers[table]) > room;
            const CInts isHopeful =
                isClamped & (best + exact.constant > ShiftRight<Slack>(costs[table] + exact.constant));
            if (AnyOf(isHopeful)) {
                costs[table] = Select(isHopeful, ExactCost(exact, base, table), costs[table]);
                best = Smaller(best, costs[table]);
            }
            labelled = Smaller(labelled, Labelled(costs[table], CInts::All(table)));
        }
        return labelled;
    }
};

}  // namespace
