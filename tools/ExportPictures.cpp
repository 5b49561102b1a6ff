#include "tools/ExportPictures.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <new>
#include <utility>

#include "base/File.h"
#include "base/Format.h"
#include "base/OrderedPipeline.h"
#include "base/Text.h"
#include "codec/CodecMessages.h"
#include "tools/UniqueNames.h"

namespace {

constexpr std::wstring_view kForbidden = L"\\/:*?\"<>|";

void NoteFailure(ExportCounts& counts, const std::wstring& text)
{
    if (counts.failed++ == 0)
        counts.firstError = text;
}

std::optional<StoredTexture> ReadToExport(CTextureDatabase& database, std::uint32_t index, CacheIndex cache,
                                          RecordKind kind)
{
    const TextureEntry& entry = database.ResolvedEntry(index);
    const auto& offsets = kind == RecordKind::Thumbnail ? entry.tmbOffset : entry.datOffset;
    if (offsets[SlotOf(cache)] == kNone)
        return std::nullopt;
    return ReadStoredTexture(database, index, cache, kind);
}

CBitmap DecodeToExport(StoredTexture texture, const CPluginTable& plugins)
{
    const DecodedTexture decoded = DecodeFirstLevel(std::move(texture), plugins);
    if (!decoded.isWritten)
        throw CError(std::wstring(CodecMessage::kUnsupportedFormat));
    auto bitmap = ToBitmap(decoded);
    if (!bitmap)
        throw CError(std::wstring(CodecMessage::kCannotDecompress));
    return std::move(*bitmap);
}

/// What becomes of one texture; neither flag nor bytes when it has no raster in the cache.
struct PictureFile {
    bool isDecoded = false;
    std::optional<std::vector<std::byte>> bytes;  // nothing when they could not be made
};

/// One run over many textures. What the owner reads is decoded and encoded ahead of it by other threads; it
/// takes the pictures in order, finds their names and hands them on to be written, which waits for the disk.
class CExportRun {
public:
    CExportRun(CTextureDatabase& database, const CPluginTable& plugins,
               const std::vector<std::uint32_t>& entries, const ExportRequest& request,
               const std::filesystem::path& folder)
        : m_rDatabase(database),
          m_rPlugins(plugins),
          m_aEntries(entries),
          m_rRequest(request),
          m_sFolder(FromPath(folder)),
          m_nThreads(ThreadsToStart(request.jobs, entries.size())),
          m_nMostAhead(m_nThreads == 0 ? 1 : m_nThreads + kPicturesInStock),
          m_oPictures(m_nThreads),
          m_oWrites(m_nThreads)
    {
    }

    ExportCounts Run(IProgress& progress)
    {
        const auto total = static_cast<std::uint32_t>(m_aEntries.size());
        for (std::uint32_t done = 0; done < total && !m_oCounts.wasStopped; ++done) {
            progress.Report(done, total, m_rDatabase.Entry(m_aEntries[done]).name);
            m_oCounts.wasStopped = progress.Cancelled();
            if (!m_oCounts.wasStopped)
                ExportNext(m_aEntries[done]);
        }
        FinishWrites(0);
        if (!m_oCounts.wasStopped)
            progress.Report(total, total, {});
        return m_oCounts;
    }

private:
    // More than one picture for each thread, so that none waits while the owner reads.
    static constexpr std::size_t kPicturesInStock = 2;

    /// A single picture needs no thread of its own.
    static unsigned ThreadsToStart(unsigned jobs, std::size_t pictures)
    {
        const auto threads = static_cast<unsigned>(std::min<std::size_t>(ThreadsFor(jobs), pictures));
        return threads > 1 ? threads : 0;
    }

    void ExportNext(std::uint32_t index)
    {
        while (m_nNextToRead < m_aEntries.size() && m_oPictures.Pending() < m_nMostAhead)
            HandOut(m_aEntries[m_nNextToRead++]);
        CountFailures([&] {
            PictureFile picture = m_oPictures.Take();
            if (picture.isDecoded)
                Write(index, std::move(picture.bytes));
            else
                ++m_oCounts.skipped;
        });
        FinishWrites(m_nThreads);
    }

    void HandOut(std::uint32_t index)
    {
        try {
            auto stored = ReadToExport(m_rDatabase, index, m_rRequest.cache, m_rRequest.kind);
            if (!stored)
                m_oPictures.Give([] { return PictureFile(); });
            else
                m_oPictures.Give([texture = std::make_shared<StoredTexture>(std::move(*stored)),
                                  &plugins = m_rPlugins, format = m_rRequest.format] {
                    const CBitmap bitmap = DecodeToExport(std::move(*texture), plugins);
                    return PictureFile{.isDecoded = true, .bytes = EncodeImage(bitmap, format)};
                });
        } catch (const std::exception&) {  // told when its turn comes
            m_oPictures.Give(
                [failure = std::current_exception()]() -> PictureFile { std::rethrow_exception(failure); });
        }
    }

    void Write(std::uint32_t index, std::optional<std::vector<std::byte>> bytes)
    {
        const std::wstring name = m_oNames.Take(SafeFileName(m_rDatabase.Entry(index).name));
        m_oWrites.Give(
            [file = ToPath(m_sFolder + L"/" + name + L"." + m_rRequest.extension), bytes = std::move(bytes)] {
                return bytes && WriteWholeFile(DiskFileSystem(), file, *bytes);
            });
    }

    /// Waits until no more than `most` files are being written.
    void FinishWrites(std::size_t most)
    {
        while (m_oWrites.Pending() > most)
            CountFailures([this] { ++(m_oWrites.Take() ? m_oCounts.exported : m_oCounts.notSaved); });
    }

    template <class Step>
    void CountFailures(Step step)
    {
        try {
            step();
        } catch (const CError& error) {
            NoteFailure(m_oCounts, error.Text());
        } catch (const std::bad_alloc&) {
            NoteFailure(m_oCounts, std::wstring(CodecMessage::kCannotDecompress));
        }
    }

    CTextureDatabase& m_rDatabase;
    const CPluginTable& m_rPlugins;
    const std::vector<std::uint32_t>& m_aEntries;
    const ExportRequest& m_rRequest;
    std::wstring m_sFolder;
    unsigned m_nThreads;
    std::size_t m_nMostAhead;  // bounds the memory
    std::size_t m_nNextToRead = 0;
    CUniqueNames m_oNames;
    ExportCounts m_oCounts;
    COrderedPipeline<PictureFile> m_oPictures;
    COrderedPipeline<bool> m_oWrites;
};

}  // namespace

std::wstring SafeFileName(std::wstring_view name)
{
    std::wstring safe(name);
    for (wchar_t& character : safe)
        if (character < L' ' || character == L'\x7F' || kForbidden.find(character) != std::wstring_view::npos)
            character = L'_';
    for (std::size_t at = safe.find(L".."); at != std::wstring::npos; at = safe.find(L".."))
        safe.replace(at, 2, L"__");
    return safe.empty() ? std::wstring(L"_") : safe;
}

std::vector<std::uint32_t> EntriesToExport(const CTextureDatabase& database,
                                           std::optional<std::uint32_t> category, bool withAliases)
{
    std::vector<std::uint32_t> entries;
    for (std::uint32_t index = 0; index < database.EntryCount(); ++index) {
        const TextureEntry& entry = database.Entry(index);
        const bool isInCategory = !category || entry.Value(Property::Cat) == *category;
        if (isInCategory && (withAliases || !entry.IsAlias()))
            entries.push_back(index);
    }
    return entries;
}

std::optional<CBitmap> TextureToExport(CTextureDatabase& database, const CPluginTable& plugins,
                                       std::uint32_t index, CacheIndex cache, RecordKind kind)
{
    auto stored = ReadToExport(database, index, cache, kind);
    if (!stored)
        return std::nullopt;
    return DecodeToExport(std::move(*stored), plugins);
}

void ExportTexture(CTextureDatabase& database, const CPluginTable& plugins, std::uint32_t index,
                   const ExportRequest& request, const std::filesystem::path& file)
{
    const auto bitmap = TextureToExport(database, plugins, index, request.cache, request.kind);
    if (!bitmap)
        throw CError(std::wstring(CodecMessage::kCannotDecompress));
    // Deliberate: a file that cannot be written is not reported.
    static_cast<void>(SaveImageFile(file, *bitmap, request.format));
}

ExportCounts ExportTextures(CTextureDatabase& database, const CPluginTable& plugins,
                            const std::vector<std::uint32_t>& entries, const ExportRequest& request,
                            const std::filesystem::path& folder, IProgress& progress)
{
    return CExportRun(database, plugins, entries, request, folder).Run(progress);
}

std::wstring ExportFailureText(const ExportCounts& counts)
{
    if (counts.failed == 0)
        return {};
    return Format(L"%d textures could not be exported.\n\n%s", counts.failed, counts.firstError);
}
