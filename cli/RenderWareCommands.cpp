// Texture dictionaries, and RenderWare files of any kind:
//
//   txd tree FILE     txd list FILE     txd export FILE --out DIR [--format png|bmp|gif|jpg|tif]
//   txd import DB FILE [--category CATEGORY] [--replace|--skip]
//   rw copy FILE --out FILE

#include "cli/RenderWareCommands.h"

#include <algorithm>
#include <array>
#include <system_error>

#include "base/File.h"
#include "base/Format.h"
#include "base/Text.h"
#include "cli/Command.h"
#include "cli/ExportWords.h"
#include "cli/ImportWords.h"
#include "rw/Messages.h"
#include "rw/SectionName.h"
#include "rw/Stream.h"
#include "rw/TXDMobile.h"
#include "tools/ExportDictionary.h"
#include "tools/ImportDictionary.h"
#include "tools/SectionTree.h"
#include "tools/TXDHelper.h"

namespace {

void WriteNode(CJsonWriter& json, const RW::CNode& node)
{
    json.BeginObject()
        .Field(L"id", node.Id())
        .Field(L"name", Widen(RW::GetSectionName(node.Id()).value_or("")))
        .Field(L"size", node.Size())
        .Field(L"version", node.Version())
        .Field(L"offset", node.DataOffset());
    json.Key(L"children").BeginArray();
    for (std::uint32_t i = 0; i < node.ChildCount(); ++i)
        if (const RW::CNode* const child = node.FindChild(i))
            WriteNode(json, *child);
    json.EndArray().EndObject();
}

void WriteLines(RW::CNode& node, const IFile* file, std::size_t depth)
{
    WriteOutput(std::wstring(depth * 2, L' ') + SectionCaption(node, file) + L"\n");
    for (std::uint32_t i = 0; i < node.ChildCount(); ++i)
        if (RW::CNode* const child = node.FindChild(i))
            WriteLines(*child, file, depth + 1);
}

void WriteTree(const CSession& session, const RW::CStream& stream)
{
    if (!session.Options().json) {
        WriteLines(*stream.Root(), stream.File(), 0);
        return;
    }
    CJsonWriter json;
    WriteNode(json, *stream.Root());
    WriteOutput(json.Document());
}

// Opened by the helper without a word: any RenderWare file has a tree, and the plain stream tells what is
// wrong.
void TryToOpen(CTXDHelper& helper, const std::filesystem::path& file)
{
    try {
        helper.OpenDictionary(file);
    } catch (const RW::CException&) {
        helper.CloseDictionary();
    }
}

ExitCode RunTree(CSession& session, const CArguments& arguments)
{
    const auto file = ToPath(arguments.Words()[1]);
    CPrintedFailures failures(session.Prompt());
    const CPluginTable noPlugins;
    CTXDHelper helper(noPlugins, failures);
    TryToOpen(helper, file);
    // Mobile dictionaries are walked by their own reader, because their sizes cannot be trusted.
    if (dynamic_cast<RW::CTXDMobile*>(helper.Dictionary()) != nullptr) {
        WriteTree(session, *helper.Dictionary());
        return failures.Code();
    }
    helper.CloseDictionary();
    RW::CStream stream(failures);
    stream.Open(file, 0, RW::kNoRootId, 0);
    WriteTree(session, stream);
    return failures.Code();
}

void WriteTexture(CJsonWriter& json, const DictionaryTexture& texture)
{
    json.BeginObject()
        .Field(L"index", texture.index)
        .Field(L"name", texture.name)
        .Field(L"mask", texture.mask)
        .Field(L"width", texture.width)
        .Field(L"height", texture.height)
        .Field(L"depth", texture.depth)
        .Field(L"mips", texture.mips)
        .Field(L"raster_format", texture.rasterFormat)
        .Field(L"raster_format_raw", texture.rasterFormatRaw)
        .Field(L"compression", texture.compression)
        .Field(L"format_text", texture.formatText)
        .Field(L"alpha", texture.hasAlpha)
        .Field(L"platform", texture.platform)
        .EndObject();
}

void WriteTextures(const CSession& session, std::uint32_t version,
                   const std::vector<DictionaryTexture>& textures)
{
    const std::uint32_t platform = textures.empty() ? 0 : textures.front().platform;
    if (!session.Options().json) {
        WriteOutput(Format(L"RW Version: 0x%08X\nPlatform: %s\n", version,
                           Widen(RW::GetPlatformName(platform).value_or(""))));
        for (const DictionaryTexture& texture : textures)
            WriteOutput(Format(L"#%u \"%s\" %u x %u, %s\n", texture.index, texture.name, texture.width,
                               texture.height, texture.formatText));
        return;
    }
    CJsonWriter json;
    json.BeginObject().Field(L"platform", platform).Field(L"version", version).Key(L"textures").BeginArray();
    for (const DictionaryTexture& texture : textures)
        WriteTexture(json, texture);
    json.EndArray().EndObject();
    WriteOutput(json.Document());
}

ExitCode RunList(CSession& session, const CArguments& arguments)
{
    CPrintedFailures failures(session.Prompt());
    CTXDHelper helper(session.Plugins(), failures);
    helper.OpenDictionary(ToPath(arguments.Words()[1]));
    WriteTextures(session, helper.Version(), helper.DescribeAll());
    return failures.Code();
}

ExitCode RunExport(CSession& session, const CArguments& arguments)
{
    const std::wstring folder = RequireOption(arguments, L"--out");
    const std::wstring extension = arguments.Value(L"--format").value_or(L"png");
    const auto format = ImageFormatFromExtension(extension);
    if (!format)
        throw CUsageError(L"A picture format is png, bmp, gif, jpg or tif.");
    CPrintedFailures failures(session.Prompt());
    CTXDHelper helper(session.Plugins(), failures);
    helper.OpenDictionary(ToPath(arguments.Words()[1]));
    std::error_code error;
    std::filesystem::create_directories(ToPath(folder), error);
    if (error)
        throw CError(Format(L"The folder %s cannot be created.", folder));
    const ExportCounts counts =
        ExportDictionary(helper, AllTextures(helper), ToPath(folder), *format, extension, session.Progress());
    WriteExportCounts(session, counts, Format(L"%u exported, %u failed\n", counts.exported, counts.failed));
    if (counts.failed != 0)
        WriteMessage(ExportFailureText(counts));
    if (counts.notSaved != 0)
        WriteMessage(Format(L"%u files cannot be written.", counts.notSaved));
    return counts.failed != 0 || counts.notSaved != 0 ? ExitCode::Failed : failures.Code();
}

// The dictionary comes first: while it cannot be opened, the database is not touched.
ExitCode RunImport(CSession& session, const CArguments& arguments)
{
    const auto& words = arguments.Words();
    // A question that nobody answers ends the run, as it does in every command.
    const DictionaryImportOptions options = {.clash = ReadClashAnswer(arguments),
                                             .onCancel = ClashChoice::Stop};
    CPrintedFailures failures(session.Prompt());
    CTXDHelper helper(session.Plugins(), failures);
    helper.OpenDictionary(ToPath(words[2]));
    CTextureDatabase& database = session.OpenDatabase(words[1]);
    ImportRequest request;
    if (const auto category = arguments.Value(L"--category"))
        request.category = FindCategory(database, *category);
    CDictionaryImporter importer(database, session.Plugins(), session.Settings(), session.Prompt(),
                                 session.Progress(), options);
    const ImportCounts counts = importer.RunAll(helper, request);
    WriteImportCounts(session, counts);
    return counts.failed != 0 ? ExitCode::Failed : failures.Code();
}

ExitCode RunCopy(CSession& session, const CArguments& arguments)
{
    const std::wstring out = RequireOption(arguments, L"--out");
    CPrintedFailures failures(session.Prompt());
    RW::CStream stream(failures);
    stream.Open(ToPath(arguments.Words()[1]), 0, RW::kNoRootId, 0);
    if (!stream.Save(ToPath(out)))
        throw CError(std::wstring(RW::Message::kUnknownSaveError));
    return failures.Code();
}

constexpr std::array kDictionaryVerbs = {
    Verb{L"tree", 2, RunTree},
    Verb{L"list", 2, RunList},
    Verb{L"export", 2, RunExport},
    Verb{L"import", 3, RunImport},
};
constexpr std::array kFileVerbs = {Verb{L"copy", 2, RunCopy}};

ExitCode RunDictionaryVerb(CSession& session, const CArguments& arguments)
{
    return RunVerb(kDictionaryVerbs, session, arguments);
}

ExitCode RunFileVerb(CSession& session, const CArguments& arguments)
{
    return RunVerb(kFileVerbs, session, arguments);
}

}  // namespace

ExitCode RunVerb(std::span<const Verb> verbs, CSession& session, const CArguments& arguments)
{
    const auto& words = arguments.Words();
    const auto found = std::find_if(verbs.begin(), verbs.end(),
                                    [&words](const Verb& verb) { return verb.name == words[0]; });
    if (found == verbs.end())
        throw CUsageError(Format(L"'%s' is none of the words that can stand here.", words[0]));
    if (words.size() != found->words)
        throw CUsageError(Format(L"'%s' takes another number of words; --help shows them.", words[0]));
    return found->run(session, arguments);
}

std::wstring RequireOption(const CArguments& arguments, const std::wstring& option)
{
    const auto value = arguments.Value(option);
    if (!value)
        throw CUsageError(Format(L"The option %s is needed.", option));
    return *value;
}

std::span<const Command> RenderWareCommands()
{
    static const std::array kCommands = {
        Command{
            L"txd",
            L"tree FILE | list FILE | export FILE --out DIR [--format png|bmp|gif|jpg|tif] | import DB FILE "
            L"[--category CATEGORY] [--replace|--skip]",
            L"tree shows the sections of any RenderWare file, list the textures of a dictionary; export "
            L"writes the first level of every texture as an image file; import adds every texture to a "
            L"database, where a name that exists already is a question without --replace or --skip.",
            2,
            3,
            {.flags = {L"--replace", L"--skip"}, .withValue = {L"--out", L"--format", L"--category"}},
            RunDictionaryVerb},
        Command{L"dff",
                L"list FILE [--db DB] | rename FILE OLD NEW --out FILE | text FILE --out FILE",
                L"list shows the textures that a model names and whether a database has them; rename changes "
                L"one in "
                L"every material; text writes the names of the first geometry, one a line.",
                2,
                4,
                {.flags = {}, .withValue = {L"--db", L"--out"}},
                RunModelVerb},
        Command{
            L"rw",
            L"copy FILE --out FILE",
            L"Reads a RenderWare file as a tree of sections and saves it, with a copy of the root's header "
            L"behind it.",
            2,
            2,
            {.flags = {}, .withValue = {L"--out"}},
            RunFileVerb},
    };
    return kCommands;
}
