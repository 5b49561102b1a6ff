// About names, files and the program itself:
//
//   hash TEXT     md5 FILE     plugins

#include <array>

#include "base/File.h"
#include "base/Format.h"
#include "base/Text.h"
#include "cli/Command.h"
#include "image/Hash.h"
#include "image/MD5.h"

namespace {

constexpr std::uint64_t kLargestDigested = std::uint64_t{4} << 30;

ExitCode WriteText(const CSession& session, std::wstring_view field, const std::wstring& text)
{
    if (!session.Options().json)
        return WriteOutput(text + L"\n") ? ExitCode::Done : ExitCode::Failed;
    CJsonWriter json;
    json.BeginObject().Field(field, text).EndObject();
    return WriteOutput(json.Document()) ? ExitCode::Done : ExitCode::Failed;
}

ExitCode RunHash(CSession& session, const CArguments& arguments)
{
    return WriteText(session, L"hash", Format(L"0x%08X", NameHash(arguments.Words()[0])));
}

ExitCode RunMd5(CSession& session, const CArguments& arguments)
{
    const auto bytes = ReadWholeFile(DiskFileSystem(), ToPath(arguments.Words()[0]), kLargestDigested);
    if (!bytes)
        throw CError(Format(L"%s cannot be read.", arguments.Words()[0]));
    return WriteText(session, L"md5", MD5ToText(ComputeMD5(*bytes)));
}

void WriteNames(CJsonWriter& json, std::wstring_view key, const std::vector<std::wstring>& names)
{
    json.Key(key).BeginArray();
    for (const std::wstring& name : names)
        json.Text(name);
    json.EndArray();
}

void WritePlugin(CJsonWriter& json, const CodecPlugin& plugin)
{
    json.BeginObject()
        .Field(L"file", plugin.fileName)
        .Field(L"name", plugin.DisplayName())
        .Field(L"description", plugin.Description())
        .Field(L"thread_safe", plugin.threadSafe);
    json.Key(L"supports").BeginArray();
    for (const CacheIndex cache : kAllCaches)
        if (plugin.Supports(cache))
            json.Text(CacheInfix(cache));
    json.EndArray();
    WriteNames(json, L"quality", plugin.QualityNames());
    WriteNames(json, L"dithering", plugin.DitheringNames());
    json.Field(L"instructions", plugin.InstructionSet());
    json.EndObject();
}

std::wstring BoundName(const CPluginTable& table, CacheIndex cache)
{
    const auto bound = table.BoundPlugin(cache);
    return bound ? table.Plugins()[*bound].fileName : std::wstring();
}

std::string PluginsJson(const CPluginTable& table)
{
    CJsonWriter json;
    json.BeginObject().Key(L"plugins").BeginArray();
    for (const CodecPlugin& plugin : table.Plugins())
        WritePlugin(json, plugin);
    json.EndArray().Key(L"bound").BeginObject();
    for (const CacheIndex cache : kAllCaches)
        json.Field(CacheInfix(cache), BoundName(table, cache));
    json.EndObject().EndObject();
    return json.Document();
}

std::wstring Joined(const std::vector<std::wstring>& names)
{
    std::wstring text;
    for (const std::wstring& name : names)
        text += (text.empty() ? L"" : L", ") + name;
    return text;
}

ExitCode RunPlugins(CSession& session, const CArguments&)
{
    const CPluginTable& table = session.Plugins();
    if (session.Options().json) {
        WriteOutput(PluginsJson(table));
        return ExitCode::Done;
    }
    for (const CodecPlugin& plugin : table.Plugins()) {
        WriteOutput(Format(L"%s: %s\n%s\nQuality: %s\nDithering: %s\n", plugin.fileName, plugin.DisplayName(),
                           plugin.Description(), Joined(plugin.QualityNames()),
                           Joined(plugin.DitheringNames())));
        const std::wstring instructions = plugin.InstructionSet();
        WriteOutput(instructions.empty() ? L"\n" : Format(L"Instructions: %s\n\n", instructions));
    }
    for (const CacheIndex cache : kAllCaches)
        WriteOutput(Format(L"%s: %s\n", CacheInfix(cache), BoundName(table, cache)));
    return ExitCode::Done;
}

}  // namespace

std::span<const Command> ProgramCommands()
{
    static const std::array kCommands = {
        Command{L"hash", L"TEXT", L"The name hash of a text.", 1, 1, {}, RunHash},
        Command{L"md5", L"FILE", L"The MD5 digest of a file.", 1, 1, {}, RunMd5},
        Command{L"plugins", L"", L"The codec plugins and what each cache is bound to.", 0, 0, {}, RunPlugins},
    };
    return kCommands;
}
