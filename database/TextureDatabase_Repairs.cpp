// Repairs: default thumbnails, name hashes, and a list made anew from the rasters.

#include <string>
#include <utility>

#include "base/ByteWriter.h"
#include "base/Format.h"
#include "database/FileTools.h"
#include "database/RecordWalk.h"
#include "database/TextList.h"
#include "database/TextureDatabaseImpl.h"

namespace {

constexpr std::uint32_t kGreyPixel = 0x88888888;
constexpr std::uint32_t kUnknownSide = 65535;

std::vector<std::byte> DefaultThumbnails(std::span<TextureEntry> entries, StreamMode mode)
{
    CByteWriter out;
    for (TextureEntry& entry : entries) {
        if (entry.IsAlias())
            continue;
        out.U16(EntryNameHash(entry) & 0xFFFFU).U16(GlFormat::Rgba8888).U16(1).U16(1);
        if (mode == StreamMode::Framed)
            out.U32(8).U32(0);
        out.U32(kGreyPixel);
    }
    return out.Take();
}

struct RecoveredList {
    std::vector<TextureEntry> entries;
    std::vector<std::uint32_t> offsets;
    std::optional<std::uint32_t> emptyRecord;  // where a record without pixels stopped the search
};

RecoveredList RecoverEntries(const IFile& dat, StreamMode forced)
{
    RecoveredList recovered;
    CRecordWalk walk(dat, forced);
    // A record that is cut off at the end is given up: the walk does not return it.
    while (const auto record = walk.Next()) {
        if (record->offset >= kNone)
            break;
        const auto offset = static_cast<std::uint32_t>(record->offset);
        if (RasterSize(record->header) == 0) {
            recovered.emptyRecord = offset;
            break;
        }
        NewTexture texture{.name = Format(L"_0x%08x", offset), .width = kUnknownSide, .height = kUnknownSide};
        TextureEntry entry = MakeEntry(texture);
        SetProperty(entry, Property::Width, record->header.width);
        SetProperty(entry, Property::Height, record->header.Height());
        recovered.entries.push_back(std::move(entry));
        recovered.offsets.push_back(offset);
    }
    return recovered;
}

}  // namespace

bool CTextureDatabase::WriteDefaultThumbnails(CacheIndex cache, StreamMode mode)
{
    CImpl& state = *m_pImpl;
    state.RequireList();
    CacheSlot& slot = state.Slot(cache);
    if (!slot.tmb && state.m_rFiles.Exists(slot.tmbPath))
        return false;
    const auto bytes = DefaultThumbnails(state.m_aEntries, mode);
    const auto beside = FreeSibling(state.m_rFiles, slot.tmbPath, ".new");
    if (slot.tmb && !KeepBackup(state.m_rFiles, *slot.tmb, slot.tmbPath))
        return false;
    if (!WriteNewFile(state.m_rFiles, beside, bytes))
        return false;
    const bool replaced = ReplaceOpenFile(state.m_rFiles, beside, slot.tmbPath, slot.tmb);
    if (slot.dat)
        state.LoadThumbnailOffsets(cache);
    return replaced;
}

void CTextureDatabase::FixNameHashes(IProgress& progress)
{
    CImpl& state = *m_pImpl;
    state.RequireList();
    const std::uint32_t count = EntryCount();
    for (std::uint32_t index = 0; index < count && !progress.Cancelled(); ++index) {
        TextureEntry& entry = state.At(index);
        progress.Report(index, count, entry.name);
        if (entry.IsAlias())
            continue;
        state.LoadHeaders(entry);
        state.StoreNameHash(entry);
    }
}

bool CTextureDatabase::RecoverFromDat()
{
    CImpl& state = *m_pImpl;
    const auto cache = state.Primary();
    // A list that is there but cannot be opened belongs to somebody else at the moment.
    if (!cache || (!state.m_oList.IsOpen() && state.m_oList.Exists()))
        return false;
    CacheSlot& slot = state.Slot(*cache);
    if (slot.dat->Size() < kHeaderBytes)
        return false;
    RecoveredList recovered = RecoverEntries(*slot.dat, state.m_eForced);
    if (recovered.emptyRecord)
        ReportDatabaseError(state.m_rPrompt, L"fatal error: texture size = 0 on offset given",
                            *recovered.emptyRecord, __LINE__, ErrorKind::Fatal);
    if (recovered.entries.empty())
        return false;

    // Before the list is replaced: what cannot be kept must not be lost.
    if (slot.toc && !KeepBackup(state.m_rFiles, *slot.toc, slot.tocPath))
        throw CError(std::wstring(DatabaseText::kCannotWrite));
    const auto oldCategories = std::exchange(state.m_aCategories, {TextureCategory{.name = L"Default"}});
    try {
        if (state.m_oList.IsOpen())
            state.m_oList.KeepCopyAtNextRewrite();
        state.PrepareList(recovered.entries);
        state.CommitList();
    } catch (...) {
        state.m_aCategories = oldCategories;
        throw;
    }
    state.m_aEntries = std::move(recovered.entries);
    state.m_oNames.Forget();
    state.m_bListLostText = false;
    slot.offsets = std::move(recovered.offsets);
    WriteTocFromOffsetList(*cache);
    for (const CacheIndex other : kAllCaches)
        if (other != *cache && IsOpen(other))
            RebuildToc(other);
    state.LoadEverything();
    return true;
}
