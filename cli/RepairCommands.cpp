// Finding damage and mending it:
//
//   check DB [--fix]     fix-hashes DB            default-thumbnails DB CACHE
//   recover DB           rebuild-toc DB CACHE

#include <array>

#include "base/Format.h"
#include "base/Text.h"
#include "cli/Command.h"
#include "cli/DatabaseJson.h"
#include "tools/ImportRules.h"
#include "tools/OpenDatabase.h"

namespace {

// Takes every repair that is offered: --fix is the answer. Where No is proposed, because the list itself lost
// lines and a repair would put everything under wrong names, it takes --yes as well.
class CFixPrompt final : public IPrompt {
public:
    explicit CFixPrompt(std::optional<PromptAnswer> answer) : m_eAnswer(answer) {}

    PromptAnswer Show(const PromptBox& box) override
    {
        WriteMessage(box.text);
        if (box.proposed == PromptAnswer::No && m_eAnswer != PromptAnswer::Yes)
            return PromptAnswer::No;
        return box.buttons == PromptButtons::YesNo || box.buttons == PromptButtons::YesNoCancel
                   ? PromptAnswer::Yes
                   : PromptAnswer::Ok;
    }

private:
    std::optional<PromptAnswer> m_eAnswer;
};

void WriteFindings(CSession& session, const DatabaseCheck& check)
{
    if (session.Options().json) {
        CJsonWriter json;
        json.BeginObject();
        const auto list = [&json](std::wstring_view name, const std::vector<CacheIndex>& caches) {
            json.Key(name).BeginArray();
            for (const CacheIndex cache : caches)
                json.Text(CacheInfix(cache));
            json.EndArray();
        };
        list(L"bad_tocs", check.badTocs);
        list(L"bad_thumbnails", check.badThumbnails);
        json.Field(L"name_hashes_valid", !check.nameHashesWrong).EndObject();
        WriteOutput(json.Document());
        return;
    }
    for (const CacheIndex cache : check.badTocs)
        WriteOutput(Format(L"%s.TOC file is corrupted.\n", ToUpperAscii(CacheInfix(cache))));
    for (const CacheIndex cache : check.badThumbnails)
        WriteOutput(Format(L"%s.TMB file is corrupted, it can hang game loading.\n",
                           ToUpperAscii(CacheInfix(cache))));
    if (check.nameHashesWrong)
        WriteOutput(std::wstring_view(L"Name hashes seems to be corrupted (by previous Mavrel version?).\n"));
    if (check.IsClean())
        WriteOutput(std::wstring_view(L"No damage found.\n"));
}

ExitCode RunCheck(CSession& session, const CArguments& arguments)
{
    CTextureDatabase& database = session.OpenDatabase(arguments.Words()[0]);
    const int limit = session.Settings().ReadInt(L"global", L"onload_check_limit", 3);
    if (arguments.Has(L"--fix")) {
        CFixPrompt prompt(session.Options().answer);
        CDatabaseOpener opener(session.Settings(), prompt, session.Progress());
        opener.OfferFileRepairs(database, [] {});
        opener.OfferNameHashRepair(database);
    }
    const DatabaseCheck check = CheckDatabase(database, limit);
    WriteFindings(session, check);
    return check.IsClean() ? ExitCode::Done : ExitCode::DamageFound;
}

ExitCode RunRecover(CSession& session, const CArguments& arguments)
{
    CTextureDatabase& database = session.OpenCaches(arguments.Words()[0]);
    if (DiskFileSystem().Exists(database.ListPath())) {
        if (!database.IsListOpen())
            throw CError(L"TXT file can not be opened for writing.");
        const PromptAnswer answer =
            session.Prompt().Show({.text = L"The TXT list exists. Recovering replaces it, and every name and "
                                           L"category in it is lost.\n\nDo you "
                                           L"want to build new database?",
                                   .caption = L"Warning",
                                   .icon = PromptIcon::Warning,
                                   .buttons = PromptButtons::YesNo,
                                   .proposed = PromptAnswer::No});
        if (answer != PromptAnswer::Yes)
            return ExitCode::Failed;
    }
    if (!RecoverDatabase(database)) {
        WriteMessage(L"There is no texture in the first cache; no list was written.");
        return ExitCode::Failed;
    }
    return ExitCode::Done;
}

ExitCode RunFixHashes(CSession& session, const CArguments& arguments)
{
    session.OpenDatabase(arguments.Words()[0]).FixNameHashes(session.Progress());
    return ExitCode::Done;
}

CacheIndex OpenCacheOf(const CTextureDatabase& database, const std::wstring& word)
{
    const CacheIndex cache = ParseCache(word);
    if (!database.IsOpen(cache))
        throw CError(Format(L"The database has no %s cache.", CacheInfix(cache)));
    return cache;
}

ExitCode RunDefaultThumbnails(CSession& session, const CArguments& arguments)
{
    const auto& words = arguments.Words();
    CTextureDatabase& database = session.OpenDatabase(words[0]);
    const CacheIndex cache = OpenCacheOf(database, words[1]);
    const StreamMode mode = GameOfDatabase(database).value_or(StreamMode::Raw);
    if (!database.WriteDefaultThumbnails(cache, mode))
        throw CError(L"Unable to write cache file");
    return ExitCode::Done;
}

ExitCode RunRebuildToc(CSession& session, const CArguments& arguments)
{
    const auto& words = arguments.Words();
    CTextureDatabase& database = session.OpenDatabase(words[0]);
    database.RebuildToc(OpenCacheOf(database, words[1]));
    return ExitCode::Done;
}

}  // namespace

std::span<const Command> RepairCommands()
{
    static const std::array kCommands = {
        Command{L"check",
                L"DB [--fix]",
                L"The checks of opening; with --fix their repairs.",
                1,
                1,
                {.flags = {L"--fix"}, .withValue = {}},
                RunCheck},
        Command{L"recover", L"DB", L"Rebuilds a lost TXT list from the first .dat.", 1, 1, {}, RunRecover},
        Command{L"fix-hashes", L"DB", L"Rewrites every stored name hash.", 1, 1, {}, RunFixHashes},
        Command{L"default-thumbnails",
                L"DB CACHE",
                L"Writes grey 1x1 thumbnails for every texture.",
                2,
                2,
                {},
                RunDefaultThumbnails},
        Command{L"rebuild-toc",
                L"DB CACHE",
                L"Rebuilds the table of contents of a cache.",
                2,
                2,
                {},
                RunRebuildToc},
    };
    return kCommands;
}
