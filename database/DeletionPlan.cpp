#include "database/DeletionPlan.h"

#include <algorithm>
#include <iterator>

namespace {

bool HasNeighbourInside(std::span<const PlacedRecord> byPlace, const RemovedRecord& removed)
{
    const std::uint64_t end = removed.offset + std::max<std::uint64_t>(removed.length, 1);
    const auto isBefore = [](const PlacedRecord& record, std::uint64_t place) {
        return record.offset < place;
    };
    const auto first = std::lower_bound(byPlace.begin(), byPlace.end(), removed.offset, isBefore);
    const auto last = std::lower_bound(first, byPlace.end(), end, isBefore);
    return last - first != 1;
}

// Cuts the bytes between two removed records, or behind the last one, at the records that begin there.
void AddPieces(DeletionPlan& plan, std::uint64_t from, std::uint64_t end, std::uint64_t down)
{
    const auto isBefore = [](const PlacedRecord& record, std::uint64_t place) {
        return record.offset < place;
    };
    auto owner = std::lower_bound(plan.kept.begin(), plan.kept.end(), from, isBefore);
    while (from < end) {
        MovedPiece piece = {.from = from, .length = end - from, .down = down};
        piece.firstOwner = static_cast<std::size_t>(owner - plan.kept.begin());
        for (; owner != plan.kept.end() && owner->offset == from; ++owner)
            ++piece.ownerCount;
        if (owner != plan.kept.end() && owner->offset < end)
            piece.length = owner->offset - from;
        plan.moved.push_back(piece);
        from += piece.length;
    }
}

}  // namespace

std::optional<DeletionPlan> PlanDeletion(std::span<const PlacedRecord> records,
                                         const std::vector<bool>& isGone, std::uint64_t fileBytes)
{
    DeletionPlan plan;
    plan.newLength = fileBytes;
    std::vector<PlacedRecord> byPlace(records.begin(), records.end());
    std::ranges::stable_sort(byPlace, {}, &PlacedRecord::offset);

    for (std::size_t i = 0; i < records.size(); ++i) {
        const std::uint64_t start = records[i].offset;
        if (!isGone[records[i].entry])
            continue;
        const std::uint64_t end = i + 1 < records.size() ? records[i + 1].offset : fileBytes;
        if (end < start || end > fileBytes)
            return std::nullopt;
        const RemovedRecord removed = {.offset = start, .length = end - start, .entry = records[i].entry};
        if (HasNeighbourInside(byPlace, removed))
            return std::nullopt;
        plan.removed.push_back(removed);
        plan.newLength -= removed.length;
    }
    std::ranges::sort(plan.removed, {}, &RemovedRecord::offset);
    std::ranges::copy_if(byPlace, std::back_inserter(plan.kept),
                         [&isGone](const PlacedRecord& record) { return !isGone[record.entry]; });

    std::uint64_t down = 0;
    for (std::size_t i = 0; i < plan.removed.size(); ++i) {
        const RemovedRecord& removed = plan.removed[i];
        down += removed.length;
        const bool isLast = i + 1 == plan.removed.size();
        AddPieces(plan, removed.offset + removed.length, isLast ? fileBytes : plan.removed[i + 1].offset,
                  down);
    }
    return plan;
}

std::vector<MovedPiece> JoinPieces(std::span<const MovedPiece> pieces, std::uint64_t direct,
                                   std::uint64_t staged)
{
    std::vector<MovedPiece> groups;
    for (const MovedPiece& piece : pieces) {
        const std::uint64_t longest = piece.down >= direct ? piece.down : staged;
        const bool joins = !groups.empty() && groups.back().down == piece.down &&
                           groups.back().length + piece.length <= longest;
        if (!joins) {
            groups.push_back(piece);
            continue;
        }
        groups.back().length += piece.length;
        groups.back().ownerCount += piece.ownerCount;
    }
    return groups;
}
