#include "tools/OptimizerSteps.h"

namespace {

// Deliberate: the texture behind a duplicate moves to its place, and the scan goes on behind that place. The
// second of two equal neighbours may be left for another run. OptimizerSteps.PassesOverTheTextureBehindAHit
// pins it.
void MakeAliasesOf(COptimizerList& list, const OptimizerWalk& walk, std::uint32_t kept)
{
    const std::uint32_t count = list.Count();
    for (std::uint32_t place = kept + 1; place < count; ++place)
        if (list.Key(place) == list.Key(kept) && (!walk.isSame || walk.isSame(kept, place)))
            list.MakeAlias(kept, place);
}

}  // namespace

bool MakeAliasesOfEqual(COptimizerList& list, const OptimizerWalk& walk)
{
    const std::uint32_t count = list.Count();
    for (std::uint32_t place = 0; place < count; ++place) {
        if (!walk.at(place, count))
            return false;
        if (list.HasEquals(place))
            MakeAliasesOf(list, walk, place);
    }
    return true;
}

// Deliberate: a deletion moves the place that is being looked at one down at once, and the scan goes on
// against the texture there, until the outer step returns; at 0 it wraps below zero and nothing is equal to
// it until then. Aliases may go with a texture, so the list can be shorter than the count says, but the count
// goes down by one only. OptimizerSteps.LooksAtAPlaceAgainAfterADeletion pins it.
bool DeleteEqual(COptimizerList& list, const OptimizerWalk& walk)
{
    std::uint32_t count = list.Count();
    for (std::uint32_t at = 0; at < count; ++at) {
        if (at >= list.Count())
            break;
        if (!walk.at(at, count))
            return false;
        if (!list.HasEquals(at))
            continue;
        std::uint32_t kept = at;
        for (std::uint32_t place = at + 1; place < count && place < list.Count(); ++place) {
            if (kept >= list.Count())
                break;
            if (list.Key(kept) == COptimizerList::kNoKey || list.Key(place) != list.Key(kept))
                continue;
            list.Delete(place);
            --count;
            --kept;
        }
        at = kept;
    }
    return true;
}
