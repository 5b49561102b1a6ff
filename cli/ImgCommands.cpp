// IMG archives:
//
//   img list ARCHIVE     img extract ARCHIVE ENTRY... --out DIR
//   img import DB ARCHIVE [--entry NAME]...
//   img sync DB ARCHIVE... [--delete]

#include <algorithm>
#include <array>
#include <system_error>

#include "base/Format.h"
#include "base/Text.h"
#include "cli/Command.h"
#include "cli/ImportWords.h"
#include "cli/RenderWareCommands.h"
#include "tools/ArchiveEntries.h"
#include "tools/DirectHost.h"
#include "tools/ImportArchive.h"
#include "tools/SyncArchives.h"

namespace {

void OpenArchive(CImgArchive& archive, const std::wstring& path)
{
    if (!archive.Open(ToPath(path)))
        throw CError(Format(L"The archive %s cannot be opened.", path));
}

/// An entry by its name, compared exactly and then without case, or "#N". Throws CError when there is none.
std::uint32_t FindEntry(const CImgArchive& archive, const std::wstring& word)
{
    if (word.starts_with(L"#"))
        if (const auto index = ParseIndex(std::wstring_view(word).substr(1));
            index && *index < archive.EntryCount())
            return *index;
    std::optional<std::uint32_t> similar;
    for (std::uint32_t index = 0; index < archive.EntryCount(); ++index) {
        const std::wstring name = archive.EntryName(index);
        if (name == word)
            return index;
        if (!similar && ToLowerAscii(name) == ToLowerAscii(word))
            similar = index;
    }
    if (!similar)
        throw CError(Format(L"There is no entry '%s'.", word));
    return *similar;
}

std::vector<std::uint32_t> FindEntries(const CImgArchive& archive, std::span<const std::wstring> words)
{
    std::vector<std::uint32_t> entries;
    for (const std::wstring& word : words)
        entries.push_back(FindEntry(archive, word));
    return entries;
}

ExitCode RunList(CSession& session, const CArguments& arguments)
{
    CImgArchive archive;
    OpenArchive(archive, arguments.Words()[1]);
    const std::uint32_t count = archive.EntryCount();
    if (!session.Options().json) {
        for (std::uint32_t index = 0; index < count; ++index)
            WriteOutput(Format(L"#%u \"%s\" %s %s\n", index, archive.EntryName(index),
                               EntryOffsetText(archive.EntryOffset(index)),
                               EntrySizeText(archive.EntrySize(index))));
        return ExitCode::Done;
    }
    CJsonWriter json;
    json.BeginObject().Field(L"version", archive.IsVersion2() ? 2 : 1).Key(L"entries").BeginArray();
    for (std::uint32_t index = 0; index < count; ++index)
        json.BeginObject()
            .Field(L"index", index)
            .Field(L"name", archive.EntryName(index))
            .Field(L"offset", archive.EntryOffset(index))
            .Field(L"size", archive.EntrySize(index))
            .EndObject();
    json.EndArray().EndObject();
    WriteOutput(json.Document());
    return ExitCode::Done;
}

std::wstring_view FailureOf(EntryExport result)
{
    switch (result) {
        case EntryExport::Written:
            break;
        case EntryExport::Exists:
            return L"%s exists already.";
        case EntryExport::Incomplete:
            return L"%s is not whole in the archive.";
        case EntryExport::NotSaved:
            return L"%s cannot be written.";
    }
    return {};
}

ExitCode RunExtract(CSession& session, const CArguments& arguments)
{
    const std::filesystem::path folder = ToPath(RequireOption(arguments, L"--out"));
    CImgArchive archive;
    OpenArchive(archive, arguments.Words()[1]);
    const auto entries = FindEntries(archive, std::span(arguments.Words()).subspan(2));
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
        throw CError(Format(L"The folder %s cannot be created.", FromPath(folder)));
    std::uint32_t extracted = 0;
    for (std::uint32_t done = 0; done < entries.size(); ++done) {
        const std::wstring name = archive.EntryName(entries[done]);
        session.Progress().Report(done, static_cast<std::uint32_t>(entries.size()), name);
        const EntryExport result = ExportEntry(archive, entries[done], folder / ToPath(EntryFileName(name)));
        if (result == EntryExport::Written)
            ++extracted;
        else
            WriteMessage(Format(FailureOf(result), EntryFileName(name)));
    }
    const auto failed = static_cast<std::uint32_t>(entries.size()) - extracted;
    if (session.Options().json)
        WriteOutput(CJsonWriter()
                        .BeginObject()
                        .Field(L"extracted", extracted)
                        .Field(L"failed", failed)
                        .EndObject()
                        .Document());
    else
        WriteOutput(Format(L"%u extracted, %u failed\n", extracted, failed));
    return failed == 0 ? ExitCode::Done : ExitCode::Failed;
}

// The archive comes first: while it cannot be opened, the database is not touched.
ExitCode RunImport(CSession& session, const CArguments& arguments)
{
    CImgArchive archive;
    OpenArchive(archive, arguments.Words()[2]);
    CNoProgress silent;
    const auto names = arguments.Values(L"--entry");
    const auto entries =
        names.empty() ? ListArchive(archive, ArchiveRows::Dictionaries, silent) : FindEntries(archive, names);
    if (entries.empty())
        WriteMessage(L"No TXDs found, bitch!");
    CTextureDatabase& database = session.OpenDatabase(arguments.Words()[1]);
    CDirectHost host({database, session.Plugins(), session.Settings(), session.Prompt()});
    CPrintedFailures failures(session.Prompt());
    CArchiveImporter importer({database, session.Plugins(), session.Settings(), host, session.Prompt(),
                               session.Progress(), failures},
                              {.jobs = session.Options().jobs});
    const ImportCounts counts = importer.Run(archive, entries);
    WriteImportCounts(session, counts);
    return counts.failed != 0 ? ExitCode::Failed : failures.Code();
}

UsedTextures CollectFrom(CSession& session, const std::vector<std::wstring>& words)
{
    UsedTextures used;
    for (std::size_t i = 2; i < words.size(); ++i) {
        CollectUsedTextures(ToPath(words[i]), used, session.Progress());
        // Its models may use any texture.
        if (used.archivesNotOpened != 0)
            throw CError(Format(L"The archive %s cannot be opened.", words[i]));
    }
    if (used.modelsSkipped != 0)
        WriteMessage(Format(L"%u models could not be read.", used.modelsSkipped));
    return used;
}

void WriteUnused(const CSession& session, const CTextureDatabase& database, const UnusedTextures& unused)
{
    if (session.Options().json)
        return;
    for (const std::uint32_t entry : unused.entries)
        WriteOutput(Format(L"#%u \"%s\"%s\n", entry, database.Entry(entry).name,
                           database.IsAlias(entry) ? L" Alias" : L""));
    WriteOutput(UnusedStatusText(unused) + L"\n");
}

std::string SyncDocument(const UsedTextures& used, const UnusedTextures& unused,
                         std::span<const CheckedTexture> rows, const SyncDeletion& deletion)
{
    CJsonWriter json;
    json.BeginObject()
        .Field(L"models_read", used.modelsRead)
        .Field(L"models_skipped", used.modelsSkipped)
        .Field(L"unused", unused.entries.size())
        .Field(L"bytes", unused.bytes)
        .Field(L"deleted", deletion.deleted)
        .Field(L"kept", deletion.kept)
        .Key(L"textures")
        .BeginArray();
    for (const CheckedTexture& row : rows)
        json.Text(row.name);
    return json.EndArray().EndObject().Document();
}

// --delete is the answer already. Only models that could not be read are a reason to ask: textures that they
// name look unused.
bool MayDelete(CSession& session, std::size_t textures, const UsedTextures& used)
{
    if (used.modelsSkipped == 0 && session.Options().answer != PromptAnswer::No)
        return true;
    return session.Prompt().Show(DeletionQuestion(textures, used)) == PromptAnswer::Yes;
}

ExitCode RunSync(CSession& session, const CArguments& arguments)
{
    CTextureDatabase& database = session.OpenDatabase(arguments.Words()[1]);
    const UsedTextures used = CollectFrom(session, arguments.Words());
    const UnusedTextures unused = FindUnusedTextures(database, used, session.Progress());
    const auto rows = CheckedRows(database, unused.entries);
    WriteUnused(session, database, unused);
    SyncDeletion deletion;
    if (arguments.Has(L"--delete") && !rows.empty() && MayDelete(session, rows.size(), used)) {
        deletion = DeleteUnusedTextures(database, rows, session.Progress());
        if (!session.Options().json)
            WriteOutput(DeletionStatusText(deletion) + L"\n");
    }
    if (session.Options().json)
        WriteOutput(SyncDocument(used, unused, rows, deletion));
    if (used.modelsRead != 0)
        return ExitCode::Done;
    WriteMessage(L"No model could be read, so that no texture counts as unused.");
    return ExitCode::Failed;
}

struct ArchiveVerb {
    std::wstring_view name;
    std::size_t fewestWords;
    std::size_t mostWords;
    ExitCode (*run)(CSession& session, const CArguments& arguments);
};

constexpr std::array kVerbs = {
    ArchiveVerb{L"list", 2, 2, RunList},
    ArchiveVerb{L"extract", 3, kAnyNumber, RunExtract},
    ArchiveVerb{L"import", 3, 3, RunImport},
    ArchiveVerb{L"sync", 3, kAnyNumber, RunSync},
};

ExitCode RunArchiveVerb(CSession& session, const CArguments& arguments)
{
    const auto& words = arguments.Words();
    for (const ArchiveVerb& verb : kVerbs) {
        if (verb.name != words[0])
            continue;
        if (words.size() < verb.fewestWords || words.size() > verb.mostWords)
            throw CUsageError(Format(L"'%s' takes another number of words; --help shows them.", words[0]));
        return verb.run(session, arguments);
    }
    throw CUsageError(Format(L"'%s' is none of the words that can stand here.", words[0]));
}

}  // namespace

std::span<const Command> ImgCommands()
{
    static const std::array kCommands = {
        Command{L"img",
                L"list ARCHIVE | extract ARCHIVE ENTRY... --out DIR | import DB ARCHIVE [--entry NAME]... | "
                L"sync DB ARCHIVE... [--delete]",
                L"list shows the entries of an archive; extract writes entries as new files; import adds the "
                L"textures of every dictionary, or of the named ones, whose names are new; sync shows the "
                L"textures that no model of the archives uses, and with --delete removes them after a "
                L"question. An ENTRY is a name or #N.",
                2,
                kAnyNumber,
                {.flags = {L"--delete"}, .withValue = {L"--out", L"--entry"}},
                RunArchiveVerb},
    };
    return kCommands;
}
