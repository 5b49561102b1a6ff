#include "database/CacheRebuild.h"

#include <string>

#include "database/FileTools.h"
#include "database/TextureDatabaseImpl.h"

namespace {

[[noreturn]] void ThrowCannotWrite()
{
    throw CError(std::wstring(DatabaseText::kCannotWrite));
}

// A file that somebody else holds could not be replaced in the end, after all the work.
void RequireFree(IFileSystem& files, const std::unique_ptr<IFile>& open, const std::filesystem::path& path)
{
    if (!open && files.Exists(path) && !files.Open(path, OpenMode::ReadWrite))
        ThrowCannotWrite();
}

}  // namespace

CCacheRebuild::CCacheRebuild(CTextureDatabase& database, CacheIndex cache)
    : m_rDatabase(database), m_eCache(cache)
{
    CTextureDatabase::CImpl& state = *database.m_pImpl;
    state.RequireList();
    CacheSlot& slot = state.Slot(cache);
    RequireFree(state.m_rFiles, slot.toc, database.CacheFile(cache, L".toc"));
    RequireFree(state.m_rFiles, slot.dat, database.CacheFile(cache, L".dat"));
    RequireFree(state.m_rFiles, slot.tmb, database.CacheFile(cache, L".tmb"));
    try {
        Create(m_oTable, database.CacheFile(cache, L".toc"));
        Create(m_oRasters, database.CacheFile(cache, L".dat"));
        Create(m_oThumbnails, database.CacheFile(cache, L".tmb"));
    } catch (...) {
        for (NewFile* const created : {&m_oTable, &m_oRasters, &m_oThumbnails})
            Discard(*created);
        throw;
    }
}

CCacheRebuild::~CCacheRebuild()
{
    for (NewFile* const created : {&m_oTable, &m_oRasters, &m_oThumbnails})
        Discard(*created);
}

void CCacheRebuild::Create(NewFile& created, const std::filesystem::path& replaced) const
{
    IFileSystem& files = m_rDatabase.m_pImpl->m_rFiles;
    const auto path = FreeSibling(files, replaced, ".new");
    created.file = files.Open(path, OpenMode::Truncate);
    if (!created.file)
        ThrowCannotWrite();
    created.path = path;
}

void CCacheRebuild::Discard(NewFile& created) const
{
    created.file.reset();
    if (!created.path.empty())
        m_rDatabase.m_pImpl->m_rFiles.Remove(created.path);
    created.path.clear();
}

void CCacheRebuild::Append(std::span<const PreparedRecord> records)
{
    std::uint32_t place = kNone;
    for (const PreparedRecord& prepared : records) {
        const bool isRaster = prepared.kind == RecordKind::Raster;
        const auto offset =
            AppendBytes(isRaster ? *m_oRasters.file : *m_oThumbnails.file, BuildRecord(prepared.record));
        if (!offset)
            ThrowCannotWrite();
        if (isRaster)
            place = *offset;
    }
    m_aOffsets.push_back(place);
}

void CCacheRebuild::CompleteFiles()
{
    if (m_aOffsets.size() != m_rDatabase.EntryCount() ||
        !m_oTable.file->WriteAt(0, TableBytes(m_oRasters.file->Size(), m_aOffsets)))
        ThrowCannotWrite();
    for (NewFile* const complete : {&m_oTable, &m_oRasters, &m_oThumbnails}) {
        if (!complete->file->Sync())
            ThrowCannotWrite();
        complete->file.reset();
    }
}

// The table goes first: one that does not fit the rasters is found when the database is opened, and the walk
// over the old rasters mends it. The other way round the old table would lead into the new rasters.
bool CCacheRebuild::ReplaceRastersAndTable()
{
    IFileSystem& files = m_rDatabase.m_pImpl->m_rFiles;
    CacheSlot& slot = m_rDatabase.m_pImpl->Slot(m_eCache);
    const auto table = m_rDatabase.CacheFile(m_eCache, L".toc");
    const auto oldTable = FreeSibling(files, table, ".old");
    const bool hadTable = slot.toc != nullptr;
    if (hadTable && !CopyToNewFile(files, *slot.toc, oldTable))
        return false;
    slot = {};
    bool isReplaced = files.Replace(m_oTable.path, table);
    if (isReplaced && !files.Replace(m_oRasters.path, m_rDatabase.CacheFile(m_eCache, L".dat"))) {
        isReplaced = false;
        if (!hadTable)
            files.Remove(table);
        else if (!files.Replace(oldTable, table))
            return false;  // the copy stays for whoever mends the database
    }
    if (hadTable)
        files.Remove(oldTable);
    return isReplaced;
}

void CCacheRebuild::Reopen()
{
    CTextureDatabase::CImpl& state = *m_rDatabase.m_pImpl;
    const std::size_t index = SlotOf(m_eCache);
    CacheSlot& slot = state.Slot(m_eCache);
    slot = {};
    slot = OpenSlot(state.m_rFiles, m_rDatabase.ListPath(), m_eCache);
    for (TextureEntry& entry : state.m_aEntries) {
        entry.datOffset[index] = kNone;
        entry.tmbOffset[index] = kNone;
        entry.rasterHeader[index] = {};
        entry.thumbHeader[index] = {};
        // What it took from its target is out of date, and another cache may be the primary one now.
        if (entry.IsAlias())
            CTextureDatabase::CImpl::ForgetRecords(entry);
    }
    if (!slot.dat)
        return;
    state.LoadRasterOffsets(m_eCache);
    state.LoadThumbnailOffsets(m_eCache);
}

void CCacheRebuild::Finish()
{
    CompleteFiles();
    const bool isReplaced = ReplaceRastersAndTable();
    bool isComplete = isReplaced;
    if (isReplaced) {
        m_oTable.path.clear();
        m_oRasters.path.clear();
        isComplete = m_rDatabase.m_pImpl->m_rFiles.Replace(m_oThumbnails.path,
                                                           m_rDatabase.CacheFile(m_eCache, L".tmb"));
        if (isComplete)
            m_oThumbnails.path.clear();
    }
    Reopen();
    if (!isComplete || !m_rDatabase.IsOpen(m_eCache))
        ThrowCannotWrite();
}
