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

// Short records that follow each other move together; a longer one moves alone.
constexpr std::uint64_t kLongestPiece = std::uint64_t{1} << 16;

// Cuts the bytes between two removed records, or behind the last one, where records begin.
void AddPieces(DeletionPlan& plan, std::uint64_t from, std::uint64_t end, std::uint64_t down)
{
    const auto isBefore = [](const PlacedRecord& record, std::uint64_t place) {
        return record.offset < place;
    };
    auto next = std::lower_bound(plan.kept.begin(), plan.kept.end(), from, isBefore);
    while (from < end) {
        const auto first = next;
        std::uint64_t to = from;
        while (to < end) {
            const auto behind = std::find_if(
                next, plan.kept.end(), [to](const PlacedRecord& record) { return record.offset != to; });
            const bool endsHere = behind == plan.kept.end() || behind->offset >= end;
            const std::uint64_t stop = endsHere ? end : behind->offset;
            if (to != from && stop - from > kLongestPiece)
                break;
            next = behind;
            to = stop;
        }
        plan.moved.push_back({.from = from,
                              .length = to - from,
                              .down = down,
                              .firstOwner = static_cast<std::size_t>(first - plan.kept.begin()),
                              .ownerCount = static_cast<std::size_t>(next - first)});
        from = to;
    }
}

}  // namespace

std::optional<DeletionPlan> PlanDeletion(std::span<const PlacedRecord> records,
                                         const std::vector<bool>& isGone, std::uint64_t fileBytes)
{
    DeletionPlan plan;
    plan.newLength = fileBytes;
    std::vector<PlacedRecord> sorted;
    std::span<const PlacedRecord> byPlace = records;
    if (!std::ranges::is_sorted(records, {}, &PlacedRecord::offset)) {
        sorted.assign(records.begin(), records.end());
        std::ranges::stable_sort(sorted, {}, &PlacedRecord::offset);
        byPlace = sorted;
    }

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
    plan.kept.reserve(byPlace.size());
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

std::vector<MovedGroup> GroupPieces(std::span<const MovedPiece> pieces, std::uint64_t direct,
                                    std::uint64_t staged)
{
    std::vector<MovedGroup> groups;
    std::uint64_t longest = 0;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        const MovedPiece& piece = pieces[i];
        if (groups.empty() || groups.back().length + piece.length > longest) {
            groups.push_back({.firstPiece = i, .pieceCount = 0, .length = 0});
            longest = piece.down >= direct ? std::min(piece.down, staged) : staged;
        }
        ++groups.back().pieceCount;
        groups.back().length += piece.length;
    }
    return groups;
}
