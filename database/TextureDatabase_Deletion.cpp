// Deleting textures, one or many at once.
//
// The order of writes keeps every surviving texture within reach whatever fails: the new list is on the disk,
// beside the old one, before any record moves; a record moves to where no other one that is still referred to
// lies, and its word of the table follows at once; then the list is replaced, the tables shrink, and only
// then the files are cut.

#include <algorithm>
#include <string>
#include <utility>

#include "database/DeletionPlan.h"
#include "database/FileTools.h"
#include "database/TextureDatabaseImpl.h"
#include "database/TextureDeletion.h"

namespace {

// Records that move at least this far are copied straight down in pieces of that length; where the gap is
// smaller, longer pieces by way of a copy behind the end take fewer steps.
constexpr std::uint64_t kDirectMove = std::uint64_t{1} << 16;
constexpr std::uint64_t kStagedMove = std::uint64_t{1} << 22;

[[noreturn]] void ThrowCannotWrite()
{
    throw CError(std::wstring(DatabaseText::kCannotWrite));
}

}  // namespace

CTextureDeletion::CTextureDeletion(CTextureDatabase::CImpl& state, std::vector<bool> isGone,
                                   IProgress& progress)
    : m_rState(state), m_aGone(std::move(isGone)), m_rProgress(progress)
{
    for (const CacheIndex cache : kAllCaches) {
        const CacheSlot& slot = state.Slot(cache);
        if (slot.dat)
            m_aRasters[SlotOf(cache)] = Plan(cache, RecordKind::Raster, slot.dat->Size());
        if (slot.dat && slot.tmb && slot.hasThumbnails)
            m_aThumbnails[SlotOf(cache)] = Plan(cache, RecordKind::Thumbnail, slot.tmb->Size());
    }
    for (std::size_t i = 0; i < state.m_aEntries.size(); ++i)
        if (!m_aGone[i])
            m_aRemaining.push_back(state.m_aEntries[i]);
}

CTextureDeletion::~CTextureDeletion()
{
    for (const auto& file : m_aPreparedThumbnails)
        if (!file.empty())
            m_rState.m_rFiles.Remove(file);
    m_rState.m_oList.Discard();
}

DeletionPlan CTextureDeletion::Plan(CacheIndex cache, RecordKind kind, std::uint64_t fileBytes)
{
    std::vector<PlacedRecord> records;
    for (std::uint32_t i = 0; i < m_rState.Count(); ++i) {
        const TextureEntry& entry = m_rState.m_aEntries[i];
        const std::uint32_t offset = CTextureDatabase::CImpl::OffsetOf(entry, cache, kind);
        if (!entry.IsAlias() && offset != kNone)
            records.push_back({.offset = offset, .entry = i});
    }
    auto plan = PlanDeletion(records, m_aGone, fileBytes);
    if (plan)
        return *plan;
    std::wstring text = L"Wrong texture size given [value].";
    if (m_rState.ForcedModeLooksWrong(cache))
        text += L" The chosen game does not fit the cache.";
    throw CError(text);
}

void CTextureDeletion::Prepare()
{
    m_rState.PrepareList(m_aRemaining);
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
    bool written = CopyBytes(*slot.tmb, 0, first.from - first.down, *file, 0);
    for (const MovedPiece& piece : plan.moved)
        written = written && CopyBytes(*slot.tmb, piece.from, piece.length, *file, piece.from - piece.down);
    if (!written)
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
    for (const CacheIndex cache : kAllCaches)
        if (m_aRasters[SlotOf(cache)])
            MoveRecordsOf(cache, *m_aRasters[SlotOf(cache)]);
}

void CTextureDeletion::MoveRecordsOf(CacheIndex cache, const DeletionPlan& plan)
{
    CacheSlot& slot = m_rState.Slot(cache);
    const std::uint64_t oldEnd = slot.dat->Size();
    std::size_t forgotten = 0;
    std::uint32_t done = 0;
    for (const MovedPiece& piece : JoinPieces(plan.moved, kDirectMove, kStagedMove)) {
        const std::uint64_t to = piece.from - piece.down;
        for (; forgotten < plan.removed.size() && plan.removed[forgotten].offset < to + piece.length;
             ++forgotten)
            Forget(cache, plan.removed[forgotten].entry);
        std::uint64_t from = piece.from;
        if (piece.ownerCount != 0 && piece.length > piece.down && oldEnd + piece.length < kNone) {
            // It would overwrite its own beginning. A copy behind the end stands in for it meanwhile.
            if (!CopyBytes(*slot.dat, from, piece.length, *slot.dat, oldEnd)) {
                slot.dat->Resize(oldEnd);
                ThrowCannotWrite();
            }
            PlaceOwners(cache, plan, piece, oldEnd);
            from = oldEnd;
        }
        if (!CopyBytes(*slot.dat, from, piece.length, *slot.dat, to))
            ThrowCannotWrite();
        PlaceOwners(cache, plan, piece, to);
        done += static_cast<std::uint32_t>(piece.ownerCount);
        if (piece.ownerCount != 0)
            m_rProgress.Report(done, static_cast<std::uint32_t>(plan.kept.size()),
                               m_rState.m_aEntries[plan.kept[piece.firstOwner].entry].name);
    }
    if (slot.dat->Size() > oldEnd)
        slot.dat->Resize(oldEnd);
}

void CTextureDeletion::PlaceOwners(CacheIndex cache, const DeletionPlan& plan, const MovedPiece& piece,
                                   std::uint64_t place)
{
    if (piece.ownerCount == 0)
        return;
    CacheSlot& slot = m_rState.Slot(cache);
    std::uint32_t first = kNone;
    std::uint32_t last = 0;
    for (const PlacedRecord& record : std::span(plan.kept).subspan(piece.firstOwner, piece.ownerCount)) {
        const auto offset = static_cast<std::uint32_t>(place + (record.offset - piece.from));
        slot.offsets[record.entry] = offset;
        m_rState.m_aEntries[record.entry].datOffset[SlotOf(cache)] = offset;
        first = std::min(first, record.entry);
        last = std::max(last, record.entry);
    }
    // The words between them are written as they are.
    if (!WriteTableWords(slot, first, std::size_t{last} - first + 1))
        ThrowCannotWrite();
}

void CTextureDeletion::Forget(CacheIndex cache, std::uint32_t entry)
{
    CacheSlot& slot = m_rState.Slot(cache);
    slot.offsets[entry] = kNone;
    m_rState.m_aEntries[entry].datOffset[SlotOf(cache)] = kNone;
    if (!WriteTableWords(slot, entry, 1))
        ThrowCannotWrite();
}

void CTextureDeletion::Commit(std::optional<std::uint32_t> heir)
{
    m_rState.CommitList();
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
    for (const CacheIndex cache : kAllCaches)
        if (m_aRasters[SlotOf(cache)])
            eraseGone(m_rState.Slot(cache).offsets);
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
        if (!m_aPreparedThumbnails[index].empty()) {
            const auto prepared = std::exchange(m_aPreparedThumbnails[index], {});
            note(ReplaceOpenFile(m_rState.m_rFiles, prepared, slot.tmbPath, slot.tmb),
                 FailedDeletionStep::Thumbnails);
        } else if (m_aThumbnails[index]) {
            note(slot.tmb->Resize(m_aThumbnails[index]->newLength), FailedDeletionStep::Thumbnails);
        }
        if (slot.dat)
            m_rState.LoadThumbnailOffsets(cache);
    }
    return failed;
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

bool CTextureDatabase::DeleteEntries(std::span<const std::uint32_t> indices, IProgress& progress)
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
    state.MarkAliasesOfGone(isGone);
    CTextureDeletion deletion(state, std::move(isGone), progress);
    // Until now nothing was changed; a deletion that has begun is completed.
    if (progress.Cancelled())
        return false;
    deletion.Prepare();
    deletion.MoveRecords();
    deletion.Commit(std::nullopt);
    switch (deletion.Finish()) {
        case FailedDeletionStep::None:
            break;
        case FailedDeletionStep::Thumbnails:
            ReportDatabaseError(state.m_rPrompt, L"Unable to reduce TMB size", 1, __LINE__, ErrorKind::Fatal);
            break;
        case FailedDeletionStep::Rasters:
            ReportDatabaseError(state.m_rPrompt, L"Unable to change cache file size", 0, __LINE__,
                                ErrorKind::Fatal);
            break;
        case FailedDeletionStep::Table:
            ReportDatabaseError(state.m_rPrompt, L"Unable to change cache file size", 1, __LINE__,
                                ErrorKind::Fatal);
            break;
    }
    return true;
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
