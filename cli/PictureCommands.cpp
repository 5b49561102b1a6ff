// Pictures in and out:
//
//   import DB IMAGE... [--category CATEGORY] [--alpha|--no-alpha] [--format rules|dxt|etc|pvr|unc]
//   [--rgba8888]
//                      [--replace|--skip]
//   export DB [TEXTURE...] --cache CACHE --out DIR [--all] [--category CATEGORY] [--no-aliases]
//   [--thumbnails]
//                      [--format png|bmp|gif|jpg|tif]
//   raw DB TEXTURE --cache CACHE [--thumbnail] [--out FILE]

#include <algorithm>
#include <array>
#include <system_error>

#include "base/File.h"
#include "base/Format.h"
#include "base/Text.h"
#include "cli/Command.h"
#include "cli/ExportWords.h"
#include "cli/ImportWords.h"
#include "tools/ExportPictures.h"
#include "tools/ImportPictures.h"

namespace {

ImportRequest ReadImportRequest(const CTextureDatabase& database, const CArguments& arguments)
{
    ImportRequest request;
    request.hasAlpha = !arguments.Has(L"--no-alpha");
    request.storeRgba8888 = arguments.Has(L"--rgba8888");
    const std::wstring format = arguments.Value(L"--format").value_or(L"rules");
    if (format != L"rules")
        request.format = ParseCache(format);
    if (const auto word = arguments.Value(L"--category"))
        request.category = FindCategory(database, *word);
    return request;
}

// Whether to go on after a picture that failed is not a question a script must answer: without --yes the run
// ends there, as a failure.
class CImportPrompt final : public IPrompt {
public:
    explicit CImportPrompt(CSession& session) : m_rSession(session) {}

    PromptAnswer Show(const PromptBox& box) override
    {
        if (m_rSession.Options().answer || !box.text.ends_with(kContinueQuestion))
            return m_rSession.Prompt().Show(box);
        WriteMessage(box.text.substr(0, box.text.size() - kContinueQuestion.size()));
        return PromptAnswer::No;
    }

private:
    CSession& m_rSession;
};

ExitCode RunImport(CSession& session, const CArguments& arguments)
{
    RefuseBoth(arguments, L"--alpha", L"--no-alpha");
    const auto& words = arguments.Words();
    const ClashAnswer clash = ReadClashAnswer(arguments);
    CTextureDatabase& database = session.OpenDatabase(words[0]);
    const ImportRequest request = ReadImportRequest(database, arguments);
    std::vector<std::filesystem::path> files;
    std::transform(words.begin() + 1, words.end(), std::back_inserter(files),
                   [](const std::wstring& word) { return ToPath(word); });
    CImportPrompt prompt(session);
    CPictureImporter importer(database, session.Plugins(), session.Settings(), prompt, session.Progress(),
                              {.jobs = session.Options().jobs});
    const ImportCounts counts = importer.Run(files, request, clash);
    WriteImportCounts(session, counts);
    return counts.failed == 0 ? ExitCode::Done : ExitCode::Failed;
}

CacheIndex RequireCacheOption(const CArguments& arguments)
{
    const auto word = arguments.Value(L"--cache");
    if (!word)
        throw CUsageError(L"The option --cache is needed.");
    return ParseCache(*word);
}

CacheIndex NamedCache(const CTextureDatabase& database, const CArguments& arguments)
{
    const CacheIndex cache = RequireCacheOption(arguments);
    if (!database.IsOpen(cache))
        throw CError(Format(L"The database has no %s cache.", CacheInfix(cache)));
    return cache;
}

RecordKind KindOf(const CArguments& arguments, const std::wstring& flag)
{
    return arguments.Has(flag) ? RecordKind::Thumbnail : RecordKind::Raster;
}

std::vector<std::uint32_t> EntriesNamed(const CTextureDatabase& database, const CArguments& arguments)
{
    const auto& words = arguments.Words();
    std::vector<std::uint32_t> entries;
    for (std::size_t i = 1; i < words.size(); ++i)
        entries.push_back(FindTexture(database, words[i]));
    if (!entries.empty())
        return entries;
    std::optional<std::uint32_t> category;
    if (const auto word = arguments.Value(L"--category"))
        category = FindCategory(database, *word);
    return EntriesToExport(database, category, !arguments.Has(L"--no-aliases"));
}

ExportRequest ReadExportRequest(const CTextureDatabase& database, const CArguments& arguments)
{
    ExportRequest request;
    request.extension = arguments.Value(L"--format").value_or(L"png");
    const auto format = ImageFormatFromExtension(request.extension);
    if (!format)
        throw CUsageError(L"A picture format is png, bmp, gif, jpg or tif.");
    request.format = *format;
    request.cache = NamedCache(database, arguments);
    request.kind = KindOf(arguments, L"--thumbnails");
    return request;
}

ExitCode RunExport(CSession& session, const CArguments& arguments)
{
    const auto folder = arguments.Value(L"--out");
    if (!folder)
        throw CUsageError(L"The option --out is needed.");
    const bool isNamed = arguments.Words().size() > 1;
    RequireCacheOption(arguments);
    if (!isNamed && !arguments.Has(L"--all") && !arguments.Value(L"--category"))
        throw CUsageError(L"Name textures, or use --all or --category.");
    CTextureDatabase& database = session.OpenDatabase(arguments.Words()[0]);
    ExportRequest request = ReadExportRequest(database, arguments);
    request.jobs = session.Options().jobs;
    const std::vector<std::uint32_t> entries = EntriesNamed(database, arguments);
    std::error_code error;
    std::filesystem::create_directories(ToPath(*folder), error);
    if (error)
        throw CError(Format(L"The folder %s cannot be created.", *folder));
    const ExportCounts counts =
        ExportTextures(database, session.Plugins(), entries, request, ToPath(*folder), session.Progress());
    WriteExportCounts(
        session, counts,
        Format(L"%u exported, %u skipped, %u failed\n", counts.exported, counts.skipped, counts.failed));
    if (counts.failed != 0)
        WriteMessage(ExportFailureText(counts));
    if (counts.notSaved != 0)
        WriteMessage(Format(L"%u files cannot be written.", counts.notSaved));
    // A texture that was asked for by name and has no raster is a failure; in a whole category it is not.
    const bool isComplete = counts.failed == 0 && counts.notSaved == 0 && (!isNamed || counts.skipped == 0);
    return isComplete ? ExitCode::Done : ExitCode::Failed;
}

ExitCode RunRaw(CSession& session, const CArguments& arguments)
{
    const auto& words = arguments.Words();
    RequireCacheOption(arguments);
    CTextureDatabase& database = session.OpenDatabase(words[0]);
    const CacheIndex cache = NamedCache(database, arguments);
    const std::uint32_t index = FindTexture(database, words[1]);
    const auto raster = database.ReadRaster(index, cache, KindOf(arguments, L"--thumbnail"));
    if (!raster)
        throw CError(Format(L"'%s' has no such record in the %s cache.", words[1], CacheInfix(cache)));
    const auto file = arguments.Value(L"--out");
    const bool written = file ? WriteWholeFile(DiskFileSystem(), ToPath(*file), *raster)
                              : WriteOutput(std::span<const std::byte>(*raster));
    if (!written)
        throw CError(L"The raster cannot be written.");
    return ExitCode::Done;
}

}  // namespace

std::span<const Command> PictureCommands()
{
    static const std::array kCommands = {
        Command{L"import",
                L"DB IMAGE... [--category CATEGORY] [--alpha|--no-alpha] [--format rules|dxt|etc|pvr|unc] "
                L"[--rgba8888] [--replace|--skip]",
                L"Imports image files into every cache. A texture is called as its file; a name that exists "
                L"already is "
                L"a question without --replace or --skip.",
                2,
                kAnyNumber,
                {.flags = {L"--alpha", L"--no-alpha", L"--rgba8888", L"--replace", L"--skip"},
                 .withValue = {L"--category", L"--format"}},
                RunImport},
        Command{L"export",
                L"DB [TEXTURE...] --cache CACHE --out DIR [--all] [--category CATEGORY] [--no-aliases] "
                L"[--thumbnails] "
                L"[--format png|bmp|gif|jpg|tif]",
                L"Writes textures as image files.",
                1,
                kAnyNumber,
                {.flags = {L"--all", L"--no-aliases", L"--thumbnails"},
                 .withValue = {L"--cache", L"--out", L"--category", L"--format"}},
                RunExport},
        Command{L"raw",
                L"DB TEXTURE --cache CACHE [--thumbnail] [--out FILE]",
                L"The stored raster, all levels, with its stream mode undone.",
                2,
                2,
                {.flags = {L"--thumbnail"}, .withValue = {L"--cache", L"--out"}},
                RunRaw},
    };
    return kCommands;
}
