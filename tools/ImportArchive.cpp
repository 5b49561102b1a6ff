#include "tools/ImportArchive.h"

#include <exception>
#include <optional>
#include <string>
#include <utility>

#include "rw/Messages.h"
#include "tools/DictionariesAhead.h"
#include "tools/TXDHelper.h"

namespace {

constexpr std::wstring_view kContinue = L"\n\nDo you want to continue?";

unsigned ThreadsToStart(const ArchiveImportOptions& options)
{
    const unsigned threads = ThreadsFor(options.jobs);
    return threads > 1 || options.whileWaiting ? threads : 0;
}

/// What one run remembers from texture to texture.
class CArchiveRun {
public:
    CArchiveRun(const ArchiveImportParts& parts, const ArchiveImportOptions& options,
                const CImgArchive& archive, std::span<const std::uint32_t> entries)
        : m_rParts(parts),
          m_rOptions(options),
          m_rArchive(archive),
          m_aEntries(entries),
          m_nThreads(ThreadsToStart(options)),
          m_oHelper(parts.plugins, parts.failures),
          m_oStoringMany(parts.database),
          m_oAhead({parts.database, parts.plugins, parts.settings, archive, entries, m_oKnown}, m_nThreads)
    {
        if (m_nThreads != 0)
            m_oKnown.AddAll(parts.database);
    }

    /// Dictionary `number` of the run, from 0. False when the run is to end.
    bool ImportDictionary(std::size_t number)
    {
        m_nNumber = number;
        m_sEntry = m_rArchive.EntryName(m_aEntries[number]);
        if (!Report(m_sEntry))
            return false;
        Open(m_aEntries[number]);
        const std::uint32_t count = m_oHelper.TextureCount();
        for (std::uint32_t texture = 0; texture < count; ++texture)
            if (!ImportTexture(texture))
                return false;
        m_oHelper.CloseDictionary();
        return true;
    }

    void SaveWhatChanged()
    {
        if (m_oCounts.imported + m_oCounts.aliased != 0)
            m_rParts.database.Save();
    }

    const ImportCounts& Counts() const { return m_oCounts; }

private:
    /// False when the person asked to stop.
    bool Report(const std::wstring& text)
    {
        m_rParts.progress.Report(static_cast<std::uint32_t>(m_nNumber + 1),
                                 static_cast<std::uint32_t>(m_aEntries.size()), text);
        return !m_rParts.progress.Cancelled();
    }

    // Deliberate: the answer changes nothing; the run goes on with whatever was read.
    // ImportArchive.GoesOnWhateverTheAnswerAboutABrokenDictionary pins it.
    void Open(std::uint32_t entry)
    {
        m_oHelper.CloseDictionary();
        try {
            const IFile* const file = m_rArchive.File();
            if (file == nullptr || !m_rArchive.IsReachable(entry))
                throw RW::CException(std::wstring(RW::Message::kReadingFailed), nullptr, nullptr);
            m_oHelper.AttachDictionary(*file, m_rArchive.EntryOffset(entry));
        } catch (const RW::CException& error) {
            ++m_oCounts.failed;
            m_rParts.prompt.Show({.text = error.Message() + std::wstring(kContinue),
                                  .caption = m_sEntry,
                                  .icon = PromptIcon::Error,
                                  .buttons = PromptButtons::YesNo});
        }
    }

    /// False when the run is to end.
    bool ImportTexture(std::uint32_t index)
    {
        try {
            const DictionaryTexture texture = m_oHelper.Describe(index);
            if (!Report(m_sEntry + L" / " + texture.name))
                return false;
            if (m_rParts.database.FindByName(texture.name, false)) {
                ++m_oCounts.skipped;
                return true;
            }
            if (texture.isDamaged)
                throw CError(std::wstring(RW::Message::kRecordUnreadable), true);
            return Import(texture);
        } catch (const CError& error) {
            ReportFailure(error.WasShown() ? std::wstring_view() : error.Text());
        } catch (const RW::CException& error) {
            ReportFailure(error.Message());
        } catch (const std::exception&) {
            ReportFailure(kUnknownImportError);
        }
        return true;
    }

    bool Import(const DictionaryTexture& texture)
    {
        TextureAhead ahead = m_oAhead.Take({m_nNumber, texture.index}, m_rOptions.whileWaiting);
        const CBitmap picture = ahead.picture ? std::move(*ahead.picture) : m_oHelper.ToBitmap(texture.index);
        ImportRecord record = RecordFor(texture);
        record.pixels = std::as_bytes(picture.Pixels()).data();
        record.early = ahead.texture ? &*ahead.texture : nullptr;
        m_rParts.host.Import(&picture, record);
        return Count(record.outcome);
    }

    ImportRecord RecordFor(const DictionaryTexture& texture) const
    {
        const ImportRequest request = RequestFor(texture);
        ImportRecord record;
        SetRecordText(record.name, texture.name);
        record.hasAlpha = request.hasAlpha ? 1 : 0;
        record.depth = texture.depth;
        record.width = texture.width;
        record.height = texture.height;
        record.noRefresh = 1;
        record.storeRgba8888 = request.storeRgba8888 ? 1 : 0;
        // Without the flag that a cache is given the editor imports into every open one.
        record.targetCache = static_cast<std::int32_t>(m_rOptions.targetCache);
        return record;
    }

    /// False when the run is to end.
    bool Count(ImportOutcome outcome)
    {
        switch (outcome) {
            case ImportOutcome::Imported:
                ++m_oCounts.imported;
                if (m_nThreads != 0)
                    m_oKnown.Add(m_rParts.database.Entry(m_rParts.database.EntryCount() - 1));
                return true;
            case ImportOutcome::MadeAlias:
                ++m_oCounts.aliased;
                return true;
            case ImportOutcome::Failed:
                ++m_oCounts.failed;
                return true;
            case ImportOutcome::Ignored:
                break;
        }
        // The question about the game of a new cache was cancelled; the next texture would ask it again.
        return false;
    }

    /// No text: it was shown already.
    void ReportFailure(std::wstring_view text)
    {
        ++m_oCounts.failed;
        if (!text.empty())
            m_rParts.prompt.ShowError(text);
    }

    const ArchiveImportParts& m_rParts;
    const ArchiveImportOptions& m_rOptions;
    const CImgArchive& m_rArchive;
    std::span<const std::uint32_t> m_aEntries;
    unsigned m_nThreads;
    CTXDHelper m_oHelper;
    CStoringMany m_oStoringMany;
    CKnownPictures m_oKnown;
    std::size_t m_nNumber = 0;
    std::wstring m_sEntry;
    ImportCounts m_oCounts;
    CDictionariesAhead m_oAhead;  // last: its threads end before what they use
};

}  // namespace

CArchiveImporter::CArchiveImporter(const ArchiveImportParts& parts, ArchiveImportOptions options)
    : m_oParts(parts), m_oOptions(std::move(options))
{
}

ImportCounts CArchiveImporter::Run(const CImgArchive& archive, std::span<const std::uint32_t> entries)
{
    CArchiveRun run(m_oParts, m_oOptions, archive, entries);
    bool wasStopped = false;
    for (std::size_t number = 0; number < entries.size() && !wasStopped; ++number)
        wasStopped = !run.ImportDictionary(number);
    m_oParts.host.Refresh();
    run.SaveWhatChanged();
    const auto total = static_cast<std::uint32_t>(entries.size());
    if (!wasStopped)
        m_oParts.progress.Report(total, total, {});
    ImportCounts counts = run.Counts();
    counts.wasStopped = wasStopped;
    return counts;
}
