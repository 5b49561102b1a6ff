// Deleting textures, one or many at once.
//
// The order of writes keeps every surviving texture within reach whatever fails: the new list is on the disk,
// beside the old one, before any record moves; a record moves to where no other one that is still referred to
// lies, and its word of the table follows at once; then the list is replaced, the tables shrink, and only
// then the files are cut.

#include <algorithm>
#include <string>
#include <utility>

#include "database/CopyPieces.h"
#include "database/DeletionPlan.h"
#include "database/FileTools.h"
#include "database/TextureDatabaseImpl.h"
#include "database/TextureDeletion.h"

namespace {

// Records that move at least this far are copied straight down in steps of that length; where the gap is
// smaller, longer steps by way of a copy behind the end are fewer.
constexpr std::uint64_t kDirectMove = std::uint64_t{1} << 16;
constexpr std::uint64_t kStagedMove = std::uint64_t{1} << 19;

[[noreturn]] void ThrowCannotWrite()
{
    throw CError(std::wstring(DatabaseText::kCannotWrite));
}

/// Words of a table that are written at once; those between them are written as they are.
class CWordRange {
public:
    void Add(std::uint32_t entry)
    {
        m_nFirst = std::min(m_nFirst, entry);
        m_nLast = std::max(m_nLast, entry);
    }
    bool Write(CacheSlot& slot) const
    {
        return m_nFirst == kNone || WriteTableWords(slot, m_nFirst, std::size_t{m_nLast} - m_nFirst + 1);
    }

private:
    std::uint32_t m_nFirst = kNone;
    std::uint32_t m_nLast = 0;
};

/// Gives the entries the places of the tables in memory, however far moving the records came.
class CPlacesInStep {
public:
    explicit CPlacesInStep(CTextureDatabase::CImpl& state) : m_rState(state) {}
    CPlacesInStep(const CPlacesInStep&) = delete;
    CPlacesInStep& operator=(const CPlacesInStep&) = delete;
    ~CPlacesInStep()
    {
        for (std::size_t i = 0; i < m_rState.m_aEntries.size(); ++i) {
            TextureEntry& entry = m_rState.m_aEntries[i];
            for (std::size_t cache = 0; cache < kCacheCount && !entry.IsAlias(); ++cache)
                if (const auto& offsets = m_rState.m_aSlots[cache].offsets; i < offsets.size())
                    entry.datOffset[cache] = offsets[i];
        }
    }

private:
    CTextureDatabase::CImpl& m_rState;
};

}  // namespace

CTextureDeletion::CTextureDeletion(CTextureDatabase::CImpl& state, std::vector<bool> isGone,
                                   IProgress& progress)
    : m_rState(state), m_aGone(std::move(isGone)), m_rProgress(progress)
{
    std::array<std::vector<PlacedRecord>, kCacheCount> rasters;
    std::array<std::vector<PlacedRecord>, kCacheCount> thumbnails;
    for (const CacheIndex cache : kAllCaches) {
        rasters[SlotOf(cache)].reserve(state.Slot(cache).dat ? state.Count() : 0);
        thumbnails[SlotOf(cache)].reserve(state.Slot(cache).hasThumbnails ? state.Count() : 0);
    }
    for (std::uint32_t i = 0; i < state.Count(); ++i) {
        const TextureEntry& entry = state.m_aEntries[i];
        for (std::size_t cache = 0; cache < kCacheCount && !entry.IsAlias(); ++cache) {
            if (entry.datOffset[cache] != kNone)
                rasters[cache].push_back({.offset = entry.datOffset[cache], .entry = i});
            if (entry.tmbOffset[cache] != kNone)
                thumbnails[cache].push_back({.offset = entry.tmbOffset[cache], .entry = i});
        }
    }
    for (const CacheIndex cache : kAllCaches) {
        const CacheSlot& slot = state.Slot(cache);
        if (slot.dat)
            m_aRasters[SlotOf(cache)] = Plan(cache, *slot.dat, rasters[SlotOf(cache)]);
        if (slot.dat && slot.tmb && slot.hasThumbnails)
            m_aThumbnails[SlotOf(cache)] = Plan(cache, *slot.tmb, thumbnails[SlotOf(cache)]);
    }
}

CTextureDeletion::~CTextureDeletion()
{
    for (const auto& file : m_aPreparedThumbnails)
        if (!file.empty())
            m_rState.m_rFiles.Remove(file);
    m_rState.m_oList.Discard();
}

DeletionPlan CTextureDeletion::Plan(CacheIndex cache, const IFile& file,
                                    std::span<const PlacedRecord> records)
{
    auto plan = PlanDeletion(records, m_aGone, file.Size());
    if (plan)
        return std::move(*plan);
    std::wstring text = L"Wrong texture size given [value].";
    if (m_rState.ForcedModeLooksWrong(cache))
        text += L" The chosen game does not fit the cache.";
    throw CError(text);
}

void CTextureDeletion::Prepare()
{
    m_rState.PrepareListWithout(m_aGone, m_aAppended);
    m_rState.RequireFreeList();
    for (const CacheIndex cache : kAllCaches)
        if (m_aThumbnails[SlotOf(cache)])
            PrepareThumbnails(cache, *m_aThumbnails[SlotOf(cache)]);
    for (const CacheIndex cache : kAllCaches)
        if (m_aRasters[SlotOf(cache)])
            PrepareTable(cache);
}

// The thumbnails have no table, so what stays is written anew beside the old file. Without a record behind
// the removed ones a cut does it.
void CTextureDeletion::PrepareThumbnails(CacheIndex cache, const DeletionPlan& plan)
{
    if (plan.moved.empty())
        return;
    CacheSlot& slot = m_rState.Slot(cache);
    auto& prepared = m_aPreparedThumbnails[SlotOf(cache)];
    const auto beside = FreeSibling(m_rState.m_rFiles, slot.tmbPath, ".new");
    const auto file = m_rState.m_rFiles.Open(beside, OpenMode::Truncate);
    if (!file)
        ThrowCannotWrite();
    prepared = beside;
    const MovedPiece& first = plan.moved.front();
    const std::uint64_t start = first.from - first.down;
    if (!CopyBytes(*slot.tmb, 0, start, *file, 0) || !CopyPieces(*slot.tmb, plan.moved, *file, start))
        ThrowCannotWrite();
}

// Moving keeps the table on disk up to date word by word, so it must be whole before the first record moves.
void CTextureDeletion::PrepareTable(CacheIndex cache)
{
    CacheSlot& slot = m_rState.Slot(cache);
    const std::uint64_t wholeTable = 4 * (std::uint64_t{m_rState.Count()} + 1);
    if (slot.toc && slot.toc->Size() == wholeTable)
        return;
    if (!WriteTable(m_rState.m_rFiles, slot, TableBytes(slot.dat->Size(), slot.offsets)))
        ThrowCannotWrite();
}

void CTextureDeletion::MoveRecords()
{
    const CPlacesInStep places(m_rState);
    for (const CacheIndex cache : kAllCaches)
        if (m_aRasters[SlotOf(cache)])
            MoveRecordsOf(cache, *m_aRasters[SlotOf(cache)]);
}

void CTextureDeletion::MoveRecordsOf(CacheIndex cache, const DeletionPlan& plan)
{
    CacheSlot& slot = m_rState.Slot(cache);
    const std::uint64_t oldEnd = slot.dat->Size();
    std::size_t forgotten = 0;
    for (const MovedGroup& group : GroupPieces(plan.moved, kDirectMove, kStagedMove)) {
        const MovedPiece& first = plan.moved[group.firstPiece];
        const std::uint64_t end = first.from - first.down + group.length;
        const std::size_t firstForgotten = forgotten;
        while (forgotten < plan.removed.size() && plan.removed[forgotten].offset < end)
            ++forgotten;
        Forget(cache, std::span(plan.removed).subspan(firstForgotten, forgotten - firstForgotten));
        MoveGroup(cache, plan, group, oldEnd);
        const MovedPiece& last = plan.moved[group.firstPiece + group.pieceCount - 1];
        const std::size_t done = last.firstOwner + last.ownerCount;
        if (done != 0)
            m_rProgress.Report(static_cast<std::uint32_t>(done), static_cast<std::uint32_t>(plan.kept.size()),
                               m_rState.m_aEntries[plan.kept[done - 1].entry].name);
    }
    if (slot.dat->Size() > oldEnd)
        slot.dat->Resize(oldEnd);
}

void CTextureDeletion::MoveGroup(CacheIndex cache, const DeletionPlan& plan, const MovedGroup& group,
                                 std::uint64_t oldEnd)
{
    IFile& dat = *m_rState.Slot(cache).dat;
    const auto pieces = std::span(plan.moved).subspan(group.firstPiece, group.pieceCount);
    const std::uint64_t to = pieces.front().from - pieces.front().down;
    const bool overlapsItself = to + group.length > pieces.front().from;
    const bool hasOwners = pieces.back().firstOwner + pieces.back().ownerCount > pieces.front().firstOwner;
    if (hasOwners && overlapsItself && oldEnd + group.length < kNone) {
        // It would overwrite its own beginning. A copy behind the end stands in for it meanwhile.
        if (!CopyPieces(dat, pieces, dat, oldEnd)) {
            dat.Resize(oldEnd);
            ThrowCannotWrite();
        }
        PlaceOwners(cache, plan, pieces, oldEnd);
        if (!CopyBytes(dat, oldEnd, group.length, dat, to))
            ThrowCannotWrite();
    } else if (!CopyPieces(dat, pieces, dat, to)) {
        ThrowCannotWrite();
    }
    PlaceOwners(cache, plan, pieces, to);
}

void CTextureDeletion::PlaceOwners(CacheIndex cache, const DeletionPlan& plan,
                                   std::span<const MovedPiece> pieces, std::uint64_t place)
{
    CacheSlot& slot = m_rState.Slot(cache);
    CWordRange changed;
    for (const MovedPiece& piece : pieces) {
        for (const PlacedRecord& record : std::span(plan.kept).subspan(piece.firstOwner, piece.ownerCount)) {
            const auto offset = static_cast<std::uint32_t>(place + (record.offset - piece.from));
            slot.offsets[record.entry] = offset;
            changed.Add(record.entry);
        }
        place += piece.length;
    }
    if (!changed.Write(slot))
        ThrowCannotWrite();
}

void CTextureDeletion::Forget(CacheIndex cache, std::span<const RemovedRecord> records)
{
    CacheSlot& slot = m_rState.Slot(cache);
    CWordRange changed;
    for (const RemovedRecord& record : records) {
        slot.offsets[record.entry] = kNone;
        changed.Add(record.entry);
    }
    if (!changed.Write(slot))
        ThrowCannotWrite();
}

// In memory; the files follow in Finish.
void CTextureDeletion::PlaceThumbnails()
{
    for (const CacheIndex cache : kAllCaches) {
        const auto& plan = m_aThumbnails[SlotOf(cache)];
        if (!plan)
            continue;
        for (const MovedPiece& piece : plan->moved)
            for (const PlacedRecord& record :
                 std::span(plan->kept).subspan(piece.firstOwner, piece.ownerCount))
                m_rState.m_aEntries[record.entry].tmbOffset[SlotOf(cache)] =
                    static_cast<std::uint32_t>(record.offset - piece.down);
    }
}

void CTextureDeletion::Commit(std::optional<std::uint32_t> heir)
{
    m_rState.CommitList();
    PlaceThumbnails();
    // From here on the list has the new entries, and everything else is brought in line with it as far as it
    // goes.
    std::vector<std::uint32_t> newIndex(m_aGone.size(), kNone);
    std::uint32_t next = 0;
    for (std::size_t i = 0; i < m_aGone.size(); ++i)
        newIndex[i] = m_aGone[i] ? kNone : next++;
    const std::uint32_t newHeir = heir ? newIndex[*heir] : kNone;
    std::vector<TextureEntry>& entries = m_rState.m_aEntries;
    for (TextureEntry& entry : entries) {
        if (!entry.IsAlias())
            continue;
        if (entry.aliasTarget < newIndex.size())
            entry.aliasTarget = m_aGone[entry.aliasTarget] ? newHeir : newIndex[entry.aliasTarget];
        CTextureDatabase::CImpl::ForgetRecords(entry);
    }
    const auto eraseGone = [this](auto& list) {
        std::size_t at = 0;
        std::erase_if(list, [this, &at](const auto&) { return m_aGone[at++]; });
    };
    eraseGone(entries);
    entries.insert(entries.end(), m_aAppended.begin(), m_aAppended.end());
    for (const CacheIndex cache : kAllCaches) {
        if (!m_aRasters[SlotOf(cache)])
            continue;
        std::vector<std::uint32_t>& offsets = m_rState.Slot(cache).offsets;
        eraseGone(offsets);
        offsets.resize(entries.size(), kNone);
    }
    m_rState.m_oNames.Forget();
}

FailedDeletionStep CTextureDeletion::Finish()
{
    FailedDeletionStep failed = FailedDeletionStep::None;
    const auto note = [&failed](bool worked, FailedDeletionStep step) {
        if (!worked && failed == FailedDeletionStep::None)
            failed = step;
    };
    for (const CacheIndex cache : kAllCaches) {
        const std::size_t index = SlotOf(cache);
        CacheSlot& slot = m_rState.Slot(cache);
        if (m_aRasters[index]) {
            const std::uint64_t length = m_aRasters[index]->newLength;
            note(WriteTable(m_rState.m_rFiles, slot, TableBytes(length, slot.offsets)),
                 FailedDeletionStep::Table);
            note(slot.dat->Resize(length), FailedDeletionStep::Rasters);
        }
        const bool hadThumbnails = m_aThumbnails[index].has_value();
        const bool worked = !hadThumbnails || FinishThumbnails(cache);
        note(worked, FailedDeletionStep::Thumbnails);
        // Their places are known as long as rasters and thumbnails went in pairs.
        const bool arePlaced =
            hadThumbnails && worked && m_aThumbnails[index]->kept.size() == m_rState.CountRasters(cache);
        if (slot.dat && !arePlaced)
            m_rState.LoadThumbnailOffsets(cache);
    }
    return failed;
}

void CTextureDeletion::FinishMany()
{
    switch (Finish()) {
        case FailedDeletionStep::None:
            break;
        case FailedDeletionStep::Thumbnails:
            ReportDatabaseError(m_rState.m_rPrompt, L"Unable to reduce TMB size", 1, __LINE__,
                                ErrorKind::Fatal);
            break;
        case FailedDeletionStep::Rasters:
            ReportDatabaseError(m_rState.m_rPrompt, L"Unable to change cache file size", 0, __LINE__,
                                ErrorKind::Fatal);
            break;
        case FailedDeletionStep::Table:
            ReportDatabaseError(m_rState.m_rPrompt, L"Unable to change cache file size", 1, __LINE__,
                                ErrorKind::Fatal);
            break;
    }
}

bool CTextureDeletion::IsSameOneByOne() const
{
    const auto hasWhole = [this](CacheIndex cache) {
        const std::size_t index = SlotOf(cache);
        const CacheSlot& slot = m_rState.m_aSlots[index];
        if (!slot.dat || !slot.tmb)
            return true;
        // Ignored ones may fit again once a texture less is there.
        if (!m_aThumbnails[index])
            return false;
        for (std::size_t i = 0; i < m_aGone.size(); ++i) {
            const TextureEntry& entry = m_rState.m_aEntries[i];
            const bool isHalf = (entry.datOffset[index] == kNone) != (entry.tmbOffset[index] == kNone);
            if (m_aGone[i] && !entry.IsAlias() && isHalf)
                return false;
        }
        return m_aThumbnails[index]->kept.size() == m_aRasters[index]->kept.size();
    };
    return std::ranges::all_of(kAllCaches, hasWhole);
}

bool CTextureDeletion::FinishThumbnails(CacheIndex cache)
{
    CacheSlot& slot = m_rState.Slot(cache);
    const auto prepared = std::exchange(m_aPreparedThumbnails[SlotOf(cache)], {});
    if (prepared.empty())
        return slot.tmb->Resize(m_aThumbnails[SlotOf(cache)]->newLength);
    return ReplaceOpenFile(m_rState.m_rFiles, prepared, slot.tmbPath, slot.tmb);
}

bool CTextureDatabase::DeleteEntry(std::uint32_t index, std::optional<std::uint32_t> replacement)
{
    CImpl& state = *m_pImpl;
    if (index >= state.Count())
        return false;
    state.RequireEverything();
    std::vector<bool> isGone(state.Count());
    isGone[index] = true;
    state.ResolveAllAliases();
    if (!replacement)
        state.MarkAliasesOfGone(isGone);
    const bool canInherit = replacement && *replacement < state.Count() && *replacement != index &&
                            !state.At(*replacement).IsAlias();
    CNoProgress progress;
    CTextureDeletion deletion(state, std::move(isGone), progress);
    deletion.Prepare();
    deletion.MoveRecords();
    deletion.Commit(canInherit ? replacement : std::nullopt);
    switch (deletion.Finish()) {
        case FailedDeletionStep::None:
            break;
        case FailedDeletionStep::Thumbnails:
            ReportDatabaseError(state.m_rPrompt, L"Unable to reduce TMB size", 1, __LINE__, ErrorKind::Fatal);
            break;
        case FailedDeletionStep::Rasters:
        case FailedDeletionStep::Table:
            ReportDatabaseError(state.m_rPrompt, L"Unable to reduce DAT size", 1, __LINE__, ErrorKind::Fatal);
            break;
    }
    return true;
}

bool CTextureDatabase::DeleteEntries(std::span<const std::uint32_t> indices, IProgress& progress,
                                     AliasesOfDeleted aliases)
{
    CImpl& state = *m_pImpl;
    std::vector<bool> isGone(state.Count());
    for (const std::uint32_t index : indices) {
        if (index >= state.Count())
            return false;
        isGone[index] = true;
    }
    if (indices.empty())
        return true;
    state.RequireEverything();
    state.ResolveAllAliases();
    if (aliases == AliasesOfDeleted::Delete)
        state.MarkAliasesOfGone(isGone);
    CTextureDeletion deletion(state, std::move(isGone), progress);
    // Until now nothing was changed; a deletion that has begun is completed.
    if (progress.Cancelled())
        return false;
    deletion.Prepare();
    deletion.MoveRecords();
    deletion.Commit(std::nullopt);
    deletion.FinishMany();
    return true;
}

bool CTextureDatabase::CanDeleteTogether(std::span<const std::uint32_t> indices)
{
    CImpl& state = *m_pImpl;
    std::vector<bool> isGone(state.Count());
    for (const std::uint32_t index : indices)
        if (index < state.Count())
            isGone[index] = true;
    CNoProgress progress;
    try {
        return CTextureDeletion(state, std::move(isGone), progress).IsSameOneByOne();
    } catch (const CError&) {  // one of the records lies where it cannot be
        return false;
    }
}

void CTextureDatabase::CImpl::ResolveAllAliases()
{
    for (std::uint32_t i = 0; i < Count(); ++i)
        ResolveAlias(i);
}

void CTextureDatabase::CImpl::MarkAliasesOfGone(std::vector<bool>& isGone)
{
    std::vector<std::uint32_t> aliases;
    for (std::uint32_t i = 0; i < Count(); ++i)
        if (m_aEntries[i].IsAlias() && m_aEntries[i].aliasTarget != kNone &&
            isGone[m_aEntries[i].aliasTarget])
            aliases.push_back(i);
    for (const std::uint32_t alias : aliases)
        isGone[alias] = true;
}
