// The cache converter:
//
//   convert DB --from CACHE --to CACHE

#include <array>

#include "base/Format.h"
#include "cli/Command.h"
#include "tools/Converter.h"

namespace {

CacheIndex ReadCache(const CArguments& arguments, const std::wstring& option)
{
    const auto word = arguments.Value(option);
    if (!word)
        throw CUsageError(Format(L"convert needs %s dxt, etc, pvr or unc.", option));
    return ParseCache(*word);
}

void WriteCounts(const CSession& session, const ConversionCounts& counts)
{
    if (!session.Options().json) {
        WriteOutput(Format(L"%u converted, %u aliased, %u failed\n", counts.converted, counts.aliases,
                           counts.failed));
        return;
    }
    CJsonWriter json;
    json.BeginObject()
        .Field(L"converted", counts.converted)
        .Field(L"aliased", counts.aliases)
        .Field(L"failed", counts.failed)
        .EndObject();
    WriteOutput(json.Document());
}

ExitCode RunConvert(CSession& session, const CArguments& arguments)
{
    const ConversionRequest request = {ReadCache(arguments, L"--from"), ReadCache(arguments, L"--to")};
    CTextureDatabase& database = session.OpenDatabase(arguments.Words().front());
    CConverter converter(
        {database, session.Plugins(), session.Settings(), session.Prompt(), session.Progress()},
        {.jobs = session.Options().jobs});
    if (converter.Check(request) != ConversionCheck::Ready)
        return ExitCode::Failed;
    const ConversionCounts counts = converter.Run(request);
    WriteCounts(session, counts);
    if (counts.failed != 0)
        WriteMessage(ConversionFailureText(counts));
    return counts.failed == 0 && !counts.wasStopped ? ExitCode::Done : ExitCode::Failed;
}

}  // namespace

std::span<const Command> ConvertCommands()
{
    static const std::array kCommands = {Command{
        .name = L"convert",
        .syntax = L"DB --from CACHE --to CACHE",
        .help = L"Builds the cache --to from the textures of the cache --from. Its files are written\n"
                L"beside those that are there, which are replaced at the very end, after a question\n"
                L"(--yes). A texture that cannot be decoded or stored has no raster in the new cache; it\n"
                L"counts as failed, and the exit code is 1.",
        .fewestWords = 1,
        .mostWords = 1,
        .options = {.flags = {}, .withValue = {L"--from", L"--to"}},
        .run = RunConvert}};
    return kCommands;
}
