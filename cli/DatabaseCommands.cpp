// Making and looking at a database:
//
//   new DB [--caches CACHE,...]                    info DB       stats DB
//   list DB [--category CATEGORY] [--find TEXT]    set DB TEXTURE KEY=VALUE...

#include <array>

#include "base/Format.h"
#include "base/Text.h"
#include "cli/Command.h"
#include "cli/DatabaseJson.h"
#include "tools/EditProperties.h"
#include "tools/NewDatabase.h"
#include "tools/OpenDatabase.h"
#include "tools/Statistics.h"

namespace {

DatabaseCheck CheckOf(CSession& session, CTextureDatabase& database)
{
    return CheckDatabase(database, session.Settings().ReadInt(L"global", L"onload_check_limit", 3));
}

std::vector<CacheIndex> ParseCaches(std::wstring_view list)
{
    std::vector<CacheIndex> caches;
    while (true) {
        const std::size_t comma = list.find(L',');
        caches.push_back(ParseCache(std::wstring(list.substr(0, comma))));
        if (comma == std::wstring_view::npos)
            return caches;
        list.remove_prefix(comma + 1);
    }
}

ExitCode RunNew(CSession& session, const CArguments& arguments)
{
    const auto path = ToPath(arguments.Words()[0]);
    const auto named = arguments.Value(L"--caches");
    const std::vector<CacheIndex> caches =
        named ? ParseCaches(*named) : std::vector<CacheIndex>(kAllCaches.begin(), kAllCaches.end());
    CTextureDatabase database(session.Game(), DiskFileSystem(), session.Prompt());
    switch (CreateDatabase(database, path, caches, session.Prompt())) {
        case CreateResult::Created:
            return ExitCode::Done;
        case CreateResult::Declined:
        case CreateResult::NoCaches:
            return ExitCode::Failed;
    }
    return ExitCode::Failed;
}

std::wstring InfoText(CTextureDatabase& database, const DatabaseCheck& check)
{
    std::wstring text =
        Format(L"Entries: %u\nAliases: %u\nCategories: %u\nGame: %s\n", database.EntryCount(),
               CountAliases(database), database.Categories().size(), GameWord(ShownGame(database)));
    for (const CacheIndex cache : kAllCaches) {
        if (!database.IsOpen(cache))
            continue;
        text +=
            Format(L"%s: .dat %u bytes, .toc %u bytes (%s), .tmb %u bytes (%s), %u rasters, %u thumbnails\n",
                   CacheInfix(cache), database.FileSize(cache, RecordKind::Raster), database.TocSize(cache),
                   Contains(check.badTocs, cache) ? L"corrupted" : L"valid",
                   database.FileSize(cache, RecordKind::Thumbnail),
                   Contains(check.badThumbnails, cache) ? L"corrupted" : L"valid",
                   CountRecords(database, cache, RecordKind::Raster),
                   CountRecords(database, cache, RecordKind::Thumbnail));
    }
    return text + Format(L"Name hashes: %s\n", check.nameHashesWrong ? L"corrupted" : L"valid");
}

ExitCode RunInfo(CSession& session, const CArguments& arguments)
{
    CTextureDatabase& database = session.OpenDatabase(arguments.Words()[0]);
    const DatabaseCheck check = CheckOf(session, database);
    if (!session.Options().json) {
        WriteOutput(InfoText(database, check));
        return ExitCode::Done;
    }
    CJsonWriter json;
    WriteFacts(json, database, check);
    WriteOutput(json.Document());
    return ExitCode::Done;
}

std::vector<std::uint32_t> EntriesToList(const CTextureDatabase& database, const CArguments& arguments)
{
    std::optional<std::uint32_t> category;
    if (const auto word = arguments.Value(L"--category"))
        category = FindCategory(database, *word);
    const std::wstring text = ToLowerAscii(arguments.Value(L"--find").value_or(L""));
    std::vector<std::uint32_t> entries;
    for (std::uint32_t i = 0; i < database.EntryCount(); ++i) {
        const TextureEntry& entry = database.Entry(i);
        const bool fits = !category || entry.Value(Property::Cat) == *category;
        if (fits && ToLowerAscii(entry.name).find(text) != std::wstring::npos)
            entries.push_back(i);
    }
    return entries;
}

ExitCode RunList(CSession& session, const CArguments& arguments)
{
    CTextureDatabase& database = session.OpenDatabase(arguments.Words()[0]);
    const std::vector<std::uint32_t> entries = EntriesToList(database, arguments);
    if (session.Options().json) {
        CJsonWriter json;
        WriteDatabase(json, database, entries);
        WriteOutput(json.Document());
        return ExitCode::Done;
    }
    for (std::uint32_t i = 0; i < database.Categories().size(); ++i)
        WriteOutput(Format(L"category #%u %s\n", i, database.CategoryName(i)));
    for (const std::uint32_t index : entries)
        WriteOutput(Format(L"#%u %s\n", index, ShownLine(database.Entry(index))));
    return ExitCode::Done;
}

ExitCode RunStats(CSession& session, const CArguments& arguments)
{
    const std::wstring text = StatisticsText(session.OpenDatabase(arguments.Words()[0]));
    if (!session.Options().json) {
        WriteOutput(text);
        return ExitCode::Done;
    }
    CJsonWriter json;
    json.BeginObject().Field(L"text", text).EndObject();
    WriteOutput(json.Document());
    return ExitCode::Done;
}

struct KeyAndValue {
    Property property;
    std::uint32_t value;
};

Property ParseKey(const std::wstring& word, const std::wstring& key)
{
    // Narrowing alone would take other letters for those of a key.
    if (Widen(Narrow(key)) == key)
        if (const auto property = PropertyFromKey(Narrow(key));
            property && *property != Property::Name && *property != Property::Affiliate)
            return *property;
    throw CUsageError(Format(L"'%s' is not KEY=VALUE with the key of a property.", word));
}

KeyAndValue ParseChange(const std::wstring& word)
{
    const std::size_t equals = word.find(L'=');
    const Property property = ParseKey(word, word.substr(0, equals));
    if (equals == std::wstring::npos)
        throw CUsageError(Format(L"'%s' is not KEY=VALUE.", word));
    const auto value = ParseNumber(property, std::wstring_view(word).substr(equals + 1));
    if (!value)
        throw CUsageError(Format(IsHexProperty(property)
                                     ? L"'%s' is not KEY=VALUE with one to eight hexadecimal digits."
                                     : L"'%s' is not KEY=VALUE with a whole number of 32 bits.",
                                 word));
    return {property, *value};
}

ExitCode RunSet(CSession& session, const CArguments& arguments)
{
    const auto& words = arguments.Words();
    std::vector<KeyAndValue> pairs;
    for (std::size_t i = 2; i < words.size(); ++i)
        pairs.push_back(ParseChange(words[i]));
    CTextureDatabase& database = session.OpenDatabase(words[0]);
    const std::uint32_t index = FindTexture(database, words[1]);
    std::vector<PropertyChange> changes;
    for (const auto& [property, value] : pairs)
        changes.push_back({index, property, value});
    database.ChangeProperties(changes);
    return ExitCode::Done;
}

}  // namespace

std::span<const Command> DatabaseCommands()
{
    static const std::array kCommands = {
        Command{L"new",
                L"DB [--caches CACHE,...]",
                L"Creates the list and its caches (default: all four).",
                1,
                1,
                {.flags = {}, .withValue = {L"--caches"}},
                RunNew},
        Command{
            L"info", L"DB", L"Counts, caches, sizes, game and the result of every check.", 1, 1, {}, RunInfo},
        Command{L"list",
                L"DB [--category CATEGORY] [--find TEXT]",
                L"Categories and entries; with --json every property and record.",
                1,
                1,
                {.flags = {}, .withValue = {L"--category", L"--find"}},
                RunList},
        Command{L"stats", L"DB", L"The statistics report.", 1, 1, {}, RunStats},
        Command{L"set",
                L"DB TEXTURE KEY=VALUE...",
                L"Sets properties in the order given; the hashes img and png in hexadecimal.",
                3,
                kAnyNumber,
                {},
                RunSet},
    };
    return kCommands;
}
