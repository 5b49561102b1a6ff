// Appending records, alone or as the parts of a new texture.

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "database/TextureDatabaseImpl.h"

namespace {

[[noreturn]] void ThrowCannotWrite()
{
    throw CError(std::wstring(DatabaseText::kCannotWrite));
}

// The lengths that every cache file and offset list had, and has again unless the edit is completed.
class CRestorePoint {
public:
    explicit CRestorePoint(std::span<CacheSlot> slots) : m_aSlots(slots)
    {
        for (std::size_t i = 0; i < slots.size(); ++i)
            m_aNoted[i] = {.toc = SizeOf(slots[i].toc),
                           .dat = SizeOf(slots[i].dat),
                           .tmb = SizeOf(slots[i].tmb),
                           .offsets = slots[i].offsets.size()};
    }
    CRestorePoint(const CRestorePoint&) = delete;
    CRestorePoint& operator=(const CRestorePoint&) = delete;
    ~CRestorePoint()
    {
        if (m_bCompleted)
            return;
        for (std::size_t i = 0; i < m_aSlots.size(); ++i) {
            CutTo(m_aSlots[i].toc, m_aNoted[i].toc);
            CutTo(m_aSlots[i].dat, m_aNoted[i].dat);
            CutTo(m_aSlots[i].tmb, m_aNoted[i].tmb);
            m_aSlots[i].offsets.resize(m_aNoted[i].offsets);
        }
    }

    void Complete() { m_bCompleted = true; }

private:
    struct Noted {
        std::uint64_t toc = 0;
        std::uint64_t dat = 0;
        std::uint64_t tmb = 0;
        std::size_t offsets = 0;
    };

    static std::uint64_t SizeOf(const std::unique_ptr<IFile>& file) { return file ? file->Size() : 0; }
    static void CutTo(const std::unique_ptr<IFile>& file, std::uint64_t size)
    {
        if (file && file->Size() > size)
            file->Resize(size);
    }

    std::span<CacheSlot> m_aSlots;
    std::array<Noted, kCacheCount> m_aNoted;
    bool m_bCompleted = false;
};

// One more slot in the table of contents, in memory and on disk. Its place goes by the list in memory, so
// that a table of a wrong length does not shift it.
void AppendOffset(CacheSlot& slot, std::uint32_t offset)
{
    if (slot.toc && !WriteTableWord(slot, slot.offsets.size(), offset))
        ThrowCannotWrite();
    slot.offsets.push_back(offset);
}

std::uint32_t AppendTo(const std::unique_ptr<IFile>& file, const NewRecord& record)
{
    const auto offset = file ? AppendBytes(*file, BuildRecord(record)) : std::nullopt;
    if (!offset)
        ThrowCannotWrite();
    return *offset;
}

}  // namespace

bool CTextureDatabase::AppendRecord(CacheIndex cache, RecordKind kind, const NewRecord& record)
{
    CImpl& state = *m_pImpl;
    CacheSlot& slot = state.Slot(cache);
    CRestorePoint restore(state.m_aSlots);
    try {
        const std::uint32_t offset = AppendTo(kind == RecordKind::Raster ? slot.dat : slot.tmb, record);
        if (kind == RecordKind::Raster) {
            AppendOffset(slot, offset);
            UpdateTocLengthWords();
        }
    } catch (const CError&) {
        return false;  // the restore point says the rest
    }
    restore.Complete();
    return true;
}

bool CTextureDatabase::AppendNoRaster(CacheIndex cache)
{
    CRestorePoint restore(m_pImpl->m_aSlots);
    try {
        AppendOffset(m_pImpl->Slot(cache), kNone);
    } catch (const CError&) {
        return false;
    }
    restore.Complete();
    return true;
}

void CTextureDatabase::StoreTexture(std::optional<TextureEntry> entry,
                                    std::span<const PreparedRecord> records)
{
    CImpl& state = *m_pImpl;
    if (entry) {
        state.RequireEverything();
        RequireTextureName(entry->name);
        RequireLineFits(*entry);
    }
    CRestorePoint restore(state.m_aSlots);
    for (const PreparedRecord& prepared : records) {
        CacheSlot& slot = state.Slot(prepared.cache);
        const bool isRaster = prepared.kind == RecordKind::Raster;
        const std::uint32_t offset = AppendTo(isRaster ? slot.dat : slot.tmb, prepared.record);
        if (entry && isRaster) {
            entry->datOffset[SlotOf(prepared.cache)] = offset;
            entry->rasterHeader[SlotOf(prepared.cache)] = prepared.record.header;
        } else if (isRaster) {
            AppendOffset(slot, offset);
        }
    }
    if (entry)
        state.AppendEntry(*entry);
    restore.Complete();
    if (entry && !entry->IsAlias())
        state.LoadNewThumbnails();
    // The texture is stored. A table without its length word is found invalid and mended at the next start.
    for (const CacheIndex cache : kAllCaches)
        if (!WriteLengthWord(state.Slot(cache)))
            ReportDatabaseError(state.m_rPrompt, DatabaseText::kCannotWrite,
                                static_cast<std::uint32_t>(cache), __LINE__, ErrorKind::Warning);
}

void CTextureDatabase::CImpl::AppendEntry(const TextureEntry& entry)
{
    for (const CacheIndex cache : kAllCaches)
        if (Slot(cache).dat)
            AppendOffset(Slot(cache), entry.IsAlias() ? kNone : entry.datOffset[SlotOf(cache)]);
    m_aEntries.push_back(entry);
    try {
        WriteLastLine();
    } catch (...) {
        m_aEntries.pop_back();
        throw;
    }
    m_oNames.Forget();
    if (entry.IsAlias())
        return;
    // Aliases that ask for this name find it from now on, also those that stood for something else until now.
    for (TextureEntry& alias : m_aEntries) {
        if (!alias.IsAlias() || alias.affiliate != entry.name)
            continue;
        alias.aliasTarget = kNone;
        ForgetRecords(alias);
    }
}

void CTextureDatabase::CImpl::LoadNewThumbnails()
{
    for (const CacheIndex cache : kAllCaches)
        if (Slot(cache).dat && !TakeLastThumbnail(cache))
            LoadThumbnailOffsets(cache);
}

bool CTextureDatabase::CImpl::TakeLastThumbnail(CacheIndex cache)
{
    CacheSlot& slot = Slot(cache);
    TextureEntry& last = m_aEntries.back();
    const std::size_t index = SlotOf(cache);
    if (!slot.hasThumbnails || last.datOffset[index] == kNone)
        return false;
    // A thumbnail goes to the ordinary entry of its rank, so one without a raster in between shifts the rest.
    const auto ordinary = std::count_if(m_aEntries.begin(), m_aEntries.end(),
                                        [](const TextureEntry& entry) { return !entry.IsAlias(); });
    if (static_cast<std::uint32_t>(ordinary) != CountRasters(cache))
        return false;
    // Every earlier thumbnail was found, so the new one begins where the one before it ends.
    std::uint64_t start = 0;
    for (auto entry = m_aEntries.rbegin() + 1; entry != m_aEntries.rend(); ++entry) {
        if (entry->IsAlias() || entry->tmbOffset[index] == kNone)
            continue;
        const RecordProbe before = Probe(cache, RecordKind::Thumbnail, entry->tmbOffset[index]);
        start = entry->tmbOffset[index] + RecordBytes(before, ModeOf(before));
        break;
    }
    if (start >= slot.tmb->Size())
        return false;
    const RecordProbe probe = Probe(cache, RecordKind::Thumbnail, static_cast<std::uint32_t>(start));
    if (probe.bytes <= kHeaderBytes || start + RecordBytes(probe, ModeOf(probe)) != slot.tmb->Size())
        return false;
    last.tmbOffset[index] = static_cast<std::uint32_t>(start);
    last.thumbHeader[index] = probe.header;
    return true;
}

CStoringMany::CStoringMany(CTextureDatabase& database) : m_rDatabase(database)
{
    ++m_rDatabase.m_pImpl->m_nStoringMany;
}

CStoringMany::~CStoringMany()
{
    --m_rDatabase.m_pImpl->m_nStoringMany;
}
