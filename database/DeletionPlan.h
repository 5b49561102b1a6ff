#pragma once

// Works out what a deletion does to one file of records, before anything is touched: which bytes go, and
// which pieces of what stays move down over the gaps. Pure: places and lengths in, a plan out.

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

/// A record of an entry in the file, by its place.
struct PlacedRecord {
    std::uint64_t offset = 0;
    std::uint32_t entry = 0;
};

struct RemovedRecord {
    std::uint64_t offset = 0;
    std::uint64_t length = 0;
    std::uint32_t entry = 0;
};

/// Bytes that stay, from the start of a record to the start of another one. `firstOwner` and `ownerCount`
/// name the records that begin in them in `DeletionPlan::kept`; bytes that belong to nobody have none.
struct MovedPiece {
    std::uint64_t from = 0;
    std::uint64_t length = 0;
    std::uint64_t down = 0;  // how far
    std::size_t firstOwner = 0;
    std::size_t ownerCount = 0;
};

struct DeletionPlan {
    std::vector<RemovedRecord> removed;  // by place
    std::vector<PlacedRecord> kept;      // by place
    std::vector<MovedPiece> moved;       // by place
    std::uint64_t newLength = 0;
};

/// Neighbouring pieces that move in one step.
struct MovedGroup {
    std::size_t firstPiece = 0;
    std::size_t pieceCount = 0;
    std::uint64_t length = 0;  // of all together
};

/// Groups neighbouring pieces, so that few large steps do. A group is at most `staged` bytes long; one whose
/// first piece moves at least `direct` bytes far is also no longer than that is far, so that its new place
/// and its old one have nothing in common. A single longer piece is a group of its own.
std::vector<MovedGroup> GroupPieces(std::span<const MovedPiece> pieces, std::uint64_t direct,
                                    std::uint64_t staged);

/// `records` are those of all ordinary entries that have one, in entry order; `isGone` says for each entry
/// whether it is deleted. A record reaches to the one of the next entry, the last one to the file's end.
/// Nothing when that cannot be: a negative length, a record behind the file's end, or another record inside.
std::optional<DeletionPlan> PlanDeletion(std::span<const PlacedRecord> records,
                                         const std::vector<bool>& isGone, std::uint64_t fileBytes);
