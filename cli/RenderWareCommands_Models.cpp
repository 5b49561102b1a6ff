// Models:
//
//   dff list FILE [--db DB]     dff rename FILE OLD NEW --out FILE     dff text FILE --out FILE

#include <array>

#include "base/Format.h"
#include "base/Text.h"
#include "cli/RenderWareCommands.h"
#include "codec/CodecMessages.h"
#include "tools/ModelCheck.h"

namespace {

void WriteRow(CJsonWriter& json, const ModelTexture& row)
{
    json.BeginObject()
        .Field(L"name", row.name)
        .Field(L"state", row.state)
        .Field(L"index", row.index ? std::int64_t{*row.index} : std::int64_t{-1})
        .EndObject();
}

void WriteRows(const CSession& session, std::uint32_t version, const std::vector<ModelTexture>& rows)
{
    if (!session.Options().json) {
        WriteOutput(Format(L"RW Version: 0x%08X\n", version));
        for (const ModelTexture& row : rows)
            WriteOutput(Format(L"\"%s\" %s\n", row.name, row.state));
        return;
    }
    CJsonWriter json;
    json.BeginObject().Field(L"version", version).Key(L"textures").BeginArray();
    for (const ModelTexture& row : rows)
        WriteRow(json, row);
    json.EndArray().EndObject();
    WriteOutput(json.Document());
}

ExitCode RunList(CSession& session, const CArguments& arguments)
{
    const auto list = arguments.Value(L"--db");
    const CTextureDatabase* const database = list ? &session.OpenDatabase(*list) : nullptr;
    CPrintedFailures failures(session.Prompt());
    CModelCheck check(failures);
    check.Open(ToPath(arguments.Words()[1]));
    WriteRows(session, check.Stream().Root()->Version(), check.Check(database));
    return failures.Code();
}

void ThrowUnlessSaved(const std::optional<std::wstring>& failure)
{
    if (failure)
        throw CError(*failure);
}

void RequireModel(const CModelCheck& check, const std::wstring& file)
{
    if (!check.IsModel())
        throw CError(Format(L"%s is not a model.", file));
}

ExitCode RunRename(CSession& session, const CArguments& arguments)
{
    const auto& words = arguments.Words();
    const std::wstring out = RequireOption(arguments, L"--out");
    const std::wstring& from = words[2];
    const std::wstring& to = words[3];
    if (to.empty())
        throw CError(std::wstring(CodecMessage::kEmptyName));
    CPrintedFailures failures(session.Prompt());
    CModelCheck check(failures);
    check.Open(ToPath(words[1]));
    RequireModel(check, words[1]);
    // The same name changes nothing, not even how it is stored.
    const std::uint32_t renamed = from == to ? 0 : check.Rename(from, to);
    if (renamed == 0 && from != to)
        throw CError(Format(L"There is no texture '%s'.", from));
    ThrowUnlessSaved(check.Save(ToPath(out)));
    if (session.Options().json) {
        CJsonWriter json;
        json.BeginObject().Field(L"renamed", renamed).EndObject();
        WriteOutput(json.Document());
    } else {
        WriteOutput(Format(L"%u renamed\n", renamed));
    }
    return failures.Code();
}

ExitCode RunText(CSession& session, const CArguments& arguments)
{
    const std::wstring& file = arguments.Words()[1];
    const std::wstring out = RequireOption(arguments, L"--out");
    CPrintedFailures failures(session.Prompt());
    CModelCheck check(failures);
    check.Open(ToPath(file));
    RequireModel(check, file);
    ThrowUnlessSaved(check.SavePlainText(ToPath(out)));
    // A material without a texture is told of but is no failure: the text just has no line for it.
    return ExitCode::Done;
}

constexpr std::array kVerbs = {
    Verb{L"list", 2, RunList},
    Verb{L"rename", 4, RunRename},
    Verb{L"text", 2, RunText},
};

}  // namespace

ExitCode RunModelVerb(CSession& session, const CArguments& arguments)
{
    return RunVerb(kVerbs, session, arguments);
}
