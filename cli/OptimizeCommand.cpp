// The duplicate optimizer:
//
//   optimize DB --mode alias-names|delete-names|alias-rasters [--cache CACHE]
//               [--algorithm md5|md5-decoded|diff|diff-decoded] [--value N]

#include <algorithm>
#include <array>
#include <utility>

#include "base/Format.h"
#include "cli/Command.h"
#include "tools/DirectHost.h"
#include "tools/Optimizer.h"

namespace {

constexpr std::array<std::pair<std::wstring_view, OptimizeMode>, 3> kModes = {
    {{L"alias-names", OptimizeMode::AliasNames},
     {L"delete-names", OptimizeMode::DeleteNames},
     {L"alias-rasters", OptimizeMode::AliasRasters}}};

constexpr std::array<std::pair<std::wstring_view, RasterComparison>, 4> kAlgorithms = {
    {{L"md5", RasterComparison::MD5},
     {L"md5-decoded", RasterComparison::MD5Decoded},
     {L"diff", RasterComparison::Difference},
     {L"diff-decoded", RasterComparison::DifferenceDecoded}}};

template <class Choices>
auto ChoiceOf(const Choices& choices, const std::wstring& option, const std::wstring& word)
{
    const auto choice = std::ranges::find(choices, word, &Choices::value_type::first);
    if (choice == choices.end())
        throw CUsageError(Format(L"'%s' is not a value of %s.", word, option));
    return choice->second;
}

OptimizeOptions ReadOptions(const CSession& session, const CArguments& arguments)
{
    const auto mode = arguments.Value(L"--mode");
    if (!mode)
        throw CUsageError(L"optimize needs --mode alias-names, delete-names or alias-rasters.");
    OptimizeOptions options;
    options.mode = ChoiceOf(kModes, L"--mode", *mode);
    if (const auto cache = arguments.Value(L"--cache"))
        options.cache = ParseCache(*cache);
    if (const auto algorithm = arguments.Value(L"--algorithm"))
        options.comparison = ChoiceOf(kAlgorithms, L"--algorithm", *algorithm);
    if (const auto value = arguments.Value(L"--value"))
        options.value = ParseComparisonValue(*value);
    options.jobs = session.Options().jobs;
    return options;
}

void WriteCounts(const CSession& session, const OptimizeCounts& counts)
{
    if (!session.Options().json) {
        WriteOutput(Format(L"%u aliased, %u deleted with %u aliases, %u skipped, %u failed\n", counts.aliased,
                           counts.deleted, counts.deletedAliases, counts.leftAlone, counts.notCompared));
        return;
    }
    CJsonWriter json;
    json.BeginObject()
        .Field(L"aliased", counts.aliased)
        .Field(L"deleted", counts.deleted)
        .Field(L"deleted_aliases", counts.deletedAliases)
        .Field(L"skipped", counts.leftAlone)
        .Field(L"failed", counts.notCompared)
        .EndObject();
    WriteOutput(json.Document());
}

ExitCode RunOptimize(CSession& session, const CArguments& arguments)
{
    OptimizeOptions options = ReadOptions(session, arguments);
    CTextureDatabase& database = session.OpenDatabase(arguments.Words().front());
    if (!arguments.Has(L"--cache"))
        options.cache = database.PrimaryCache().value_or(options.cache);
    if (options.mode == OptimizeMode::AliasRasters && !database.IsOpen(options.cache))
        throw CError(L"Data file is not loaded for requested cache.");
    CDirectHost host(CHostOperations(database, session.Plugins(), session.Settings(), session.Prompt()));
    WriteCounts(session, COptimizer(database, host, session.Progress()).Run(options));
    return ExitCode::Done;
}

}  // namespace

std::span<const Command> OptimizeCommands()
{
    static const std::array kCommands = {Command{
        .name = L"optimize",
        .syntax = L"DB --mode alias-names|delete-names|alias-rasters [--cache CACHE] "
                  L"[--algorithm md5|md5-decoded|diff|diff-decoded] [--value N]",
        .help =
            L"Finds textures of the same name (capitals do not count) or with the same picture. The first\n"
            L"one stays; the later ones become its aliases, or are deleted together with their aliases.\n"
            L"Pictures are compared in CACHE (default: the first one that is there) by their digests, as\n"
            L"stored or decoded, or byte for byte: they match when fewer than four times N bytes differ\n"
            L"(diff), or when the differences add up to less than that (diff-decoded). N is 5 unless given;\n"
            L"anything that is no number counts as 0, and nothing matches then.\n"
            L"Skipped are duplicates whose alias the list has no room for; textures that cannot be read or\n"
            L"decoded count as failed and are left alone.",
        .fewestWords = 1,
        .mostWords = 1,
        .options = {.flags = {}, .withValue = {L"--mode", L"--cache", L"--algorithm", L"--value"}},
        .run = RunOptimize}};
    return kCommands;
}
