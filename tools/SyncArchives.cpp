#include "tools/SyncArchives.h"

#include <algorithm>
#include <array>
#include <optional>

#include "base/ByteReader.h"
#include "base/Format.h"
#include "img/ImgArchive.h"
#include "rw/Exception.h"
#include "rw/ModelTextures.h"
#include "rw/SectionId.h"
#include "tools/ArchiveEntries.h"

namespace {

/// Shows nothing, but remembers that something was wrong.
class CNotedFailures final : public RW::IFailures {
public:
    void ShowStopBox(const PromptBox& /*box*/, int /*exitCode*/) override { m_bRaised = true; }
    bool WasRaised() const { return m_bRaised; }

private:
    bool m_bRaised = false;
};

/// One model of an archive: its clump may stand behind other sections, and there may be several.
class CModelEntry {
public:
    CModelEntry(const IFile& file, std::unordered_set<std::wstring>& names) : m_rFile(file), m_rNames(names)
    {
    }

    /// Adds the names of all clumps between `start` and `end`; the section at `start` may be longer. False
    /// when there is no clump, or something of one cannot be read.
    bool AddNames(std::uint64_t start, std::uint64_t end)
    {
        const auto first = HeaderAt(start);
        auto section = first;
        while (section) {
            AddSection(start);
            start += RW::kHeaderBytes + std::uint64_t{section->size};
            section = start + RW::kHeaderBytes <= end ? HeaderAt(start) : std::nullopt;
            // What fills the last sector is no section.
            if (section && (section->id == 0 || section->version != first->version))
                section.reset();
        }
        return m_bHasClump && !m_bIsDamaged;
    }

private:
    std::optional<RW::SectionHeader> HeaderAt(std::uint64_t offset) const
    {
        std::array<std::byte, RW::kHeaderBytes> bytes{};
        if (m_rFile.ReadAt(offset, bytes) != bytes.size())
            return std::nullopt;
        CByteReader in(bytes);
        RW::SectionHeader header;
        header.id = in.U32();
        header.size = in.U32();
        header.version = in.U32();
        return header;
    }

    void AddSection(std::uint64_t offset)
    {
        CNotedFailures failures;
        RW::CSimpleDFF model(failures);
        model.SetQuiet(true);
        try {
            const bool isAttached = model.Attach(m_rFile, offset, RW::kNoRootId, 0);
            m_bHasClump = m_bHasClump || (isAttached && model.Root()->Id() == RW::ClumpId);
            // What was read before an error counts as well.
            for (std::wstring& name : RW::CollectUsedTextureNames(model))
                m_rNames.insert(std::move(name));
            m_bIsDamaged = m_bIsDamaged || !isAttached || !model.LastError().empty();
        } catch (const RW::CException&) {
            m_bIsDamaged = true;
        }
        m_bIsDamaged = m_bIsDamaged || failures.WasRaised();
    }

    const IFile& m_rFile;
    std::unordered_set<std::wstring>& m_rNames;
    bool m_bHasClump = false;
    bool m_bIsDamaged = false;
};

void CollectFromEntry(const CImgArchive& archive, std::uint32_t index, UsedTextures& used)
{
    const std::uint64_t start = archive.EntryOffset(index);
    CModelEntry model(*archive.File(), used.names);
    if (archive.IsReachable(index) && model.AddNames(start, start + archive.EntrySize(index)))
        ++used.modelsRead;
    else
        ++used.modelsSkipped;
}

/// How long the records of a cache are, by their distances.
class CRecordLengths {
public:
    CRecordLengths(const CTextureDatabase& database, CacheIndex cache)
        : m_nEnd(database.FileSize(cache, RecordKind::Raster)), m_aOffsets(database.OffsetList(cache))
    {
        std::copy_if(m_aOffsets.begin(), m_aOffsets.end(), std::back_inserter(m_aSorted),
                     [](std::uint32_t offset) { return offset != kNone; });
        std::sort(m_aSorted.begin(), m_aSorted.end());
    }

    /// 0 without a record.
    std::uint64_t Of(std::uint32_t entry) const
    {
        const std::uint32_t offset = entry < m_aOffsets.size() ? m_aOffsets[entry] : kNone;
        if (offset == kNone)
            return 0;
        const auto next = std::upper_bound(m_aSorted.begin(), m_aSorted.end(), offset);
        const std::uint64_t end = next != m_aSorted.end() ? *next : m_nEnd;
        return end > offset ? end - offset : 0;
    }

private:
    std::uint64_t m_nEnd;
    std::span<const std::uint32_t> m_aOffsets;
    std::vector<std::uint32_t> m_aSorted;
};

std::uint64_t StoredBytes(const CTextureDatabase& database, std::span<const std::uint32_t> entries)
{
    std::uint64_t bytes = 0;
    for (const CacheIndex cache : kAllCaches) {
        if (!database.IsOpen(cache))
            continue;
        const CRecordLengths lengths(database, cache);
        for (const std::uint32_t entry : entries)
            if (!database.IsAlias(entry))
                bytes += lengths.Of(entry);
    }
    return bytes;
}

/// What a deletion does meanwhile, shown at the end of the bar.
class CTailProgress final : public IProgress {
public:
    CTailProgress(IProgress& target, std::uint32_t total) : m_rTarget(target), m_nTotal(total) {}
    void Report(std::uint32_t /*current*/, std::uint32_t /*total*/, const std::wstring& text) override
    {
        m_rTarget.Report(m_nTotal, m_nTotal, text);
    }
    bool Cancelled() const override { return m_rTarget.Cancelled(); }

private:
    IProgress& m_rTarget;
    std::uint32_t m_nTotal;
};

/// Chooses the entries that go, in two passes over the rows.
class CDeletionChoice {
public:
    CDeletionChoice(CTextureDatabase& database, std::span<const CheckedTexture> rows, IProgress& progress)
        : m_rDatabase(database), m_aRows(rows), m_rProgress(progress), m_aIsGone(database.EntryCount())
    {
    }

    /// False when the person asked to stop.
    bool Choose()
    {
        if (!EachRow(0, [this](std::uint32_t entry) {
                if (m_rDatabase.IsAlias(entry))
                    m_aIsGone[entry] = true;
            }))
            return false;
        CountAliasesThatStay();
        return EachRow(RowCount(), [this](std::uint32_t entry) {
            if (m_rDatabase.IsAlias(entry))
                return;
            if (m_aHasAlias[entry])
                ++m_nKept;
            else
                m_aIsGone[entry] = true;
        });
    }

    std::uint32_t RowCount() const { return static_cast<std::uint32_t>(m_aRows.size()); }
    std::uint32_t Kept() const { return m_nKept; }
    std::vector<std::uint32_t> Entries() const
    {
        std::vector<std::uint32_t> entries;
        for (std::uint32_t entry = 0; entry < m_aIsGone.size(); ++entry)
            if (m_aIsGone[entry])
                entries.push_back(entry);
        return entries;
    }

private:
    template <class Visit>
    bool EachRow(std::uint32_t done, Visit visit)
    {
        for (const CheckedTexture& row : m_aRows) {
            m_rProgress.Report(done++, 2 * RowCount(), row.name);
            if (m_rProgress.Cancelled())
                return false;
            if (const auto entry = EntryOf(row))
                visit(*entry);
        }
        return true;
    }

    std::optional<std::uint32_t> EntryOf(const CheckedTexture& row) const
    {
        if (row.index < m_rDatabase.EntryCount() && m_rDatabase.Entry(row.index).name == row.name)
            return row.index;
        return m_rDatabase.FindByName(row.name, true);
    }

    void CountAliasesThatStay()
    {
        m_aHasAlias.assign(m_aIsGone.size(), false);
        for (std::uint32_t entry = 0; entry < m_aIsGone.size(); ++entry) {
            if (m_aIsGone[entry] || !m_rDatabase.IsAlias(entry))
                continue;
            const std::uint32_t target = m_rDatabase.AliasTarget(entry);
            if (target < m_aHasAlias.size())
                m_aHasAlias[target] = true;
        }
    }

    CTextureDatabase& m_rDatabase;
    std::span<const CheckedTexture> m_aRows;
    IProgress& m_rProgress;
    std::vector<bool> m_aIsGone;
    std::vector<bool> m_aHasAlias;
    std::uint32_t m_nKept = 0;
};

}  // namespace

void CollectUsedTextures(const std::filesystem::path& archive, UsedTextures& used, IProgress& progress,
                         IFileSystem& files)
{
    CImgArchive img(files);
    if (!img.Open(archive)) {
        ++used.archivesNotOpened;
        return;
    }
    const std::uint32_t count = img.EntryCount();
    progress.Report(0, count, {});
    for (std::uint32_t index = 0; index < count; ++index) {
        if (!IsModelEntry(img, index))
            continue;
        progress.Report(index, count, img.EntryName(index));
        if (progress.Cancelled()) {
            used.wasStopped = true;
            return;
        }
        CollectFromEntry(img, index, used);
    }
}

UsedTextures CollectUsedTextures(std::span<const std::filesystem::path> archives, IProgress& progress,
                                 IFileSystem& files)
{
    UsedTextures used;
    for (const std::filesystem::path& archive : archives)
        if (!used.wasStopped)
            CollectUsedTextures(archive, used, progress, files);
    return used;
}

UnusedTextures FindUnusedTextures(CTextureDatabase& database, const UsedTextures& used, IProgress& progress)
{
    UnusedTextures unused;
    if (!used.IsKnown())
        return unused;
    const std::uint32_t count = database.EntryCount();
    for (std::uint32_t index = 0; index < count; ++index) {
        const std::wstring& name = database.Entry(index).name;
        progress.Report(index, count, name);
        if (progress.Cancelled())
            return {};
        if (!used.names.contains(name))
            unused.entries.push_back(index);
    }
    unused.bytes = StoredBytes(database, unused.entries);
    return unused;
}

std::wstring UnusedStatusText(const UnusedTextures& unused)
{
    constexpr double kKilobyte = 1024;
    if (unused.bytes == 0)
        return L"Cache N/A";
    return Format(L"%d to delete (%0.2f MB)", unused.entries.size(),
                  static_cast<double>(unused.bytes) / kKilobyte / kKilobyte);
}

std::vector<CheckedTexture> CheckedRows(const CTextureDatabase& database,
                                        std::span<const std::uint32_t> entries)
{
    std::vector<CheckedTexture> rows;
    rows.reserve(entries.size());
    for (const std::uint32_t entry : entries)
        rows.push_back({.index = entry, .name = database.Entry(entry).name});
    return rows;
}

PromptBox DeletionQuestion(std::size_t textures, const UsedTextures& used)
{
    return {.text = Format(L"Delete %d textures?\n\nModels read: %d\nModels skipped: %d\nArchives not "
                           L"opened: %d",
                           textures, used.modelsRead, used.modelsSkipped, used.archivesNotOpened),
            .caption = L"Mavrel",
            .icon = PromptIcon::Question,
            .buttons = PromptButtons::YesNo,
            .proposed = PromptAnswer::No};
}

SyncDeletion DeleteUnusedTextures(CTextureDatabase& database, std::span<const CheckedTexture> rows,
                                  IProgress& progress)
{
    CDeletionChoice choice(database, rows, progress);
    SyncDeletion deletion;
    if (!choice.Choose()) {
        deletion.wasStopped = true;
        return deletion;
    }
    const std::uint32_t total = 2 * choice.RowCount();
    const auto entries = choice.Entries();
    deletion.kept = choice.Kept();
    // One pass over each file gives the same files as one deletion after the other.
    CTailProgress tail(progress, total);
    if (database.DeleteEntries(entries, tail))
        deletion.deleted = static_cast<std::uint32_t>(entries.size());
    else
        deletion.wasStopped = true;
    progress.Report(total, total, {});
    return deletion;
}

std::wstring DeletionStatusText(const SyncDeletion& deletion)
{
    if (deletion.kept == 0)
        return Format(L"%d deleted", deletion.deleted);
    return Format(L"%d deleted, %d kept because aliases of them stay", deletion.deleted, deletion.kept);
}
