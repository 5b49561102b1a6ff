// The radar map:
//
//   radar info|export|import|optimize DB --cache CACHE [FILE] [--alpha|--no-alpha]

#include <array>

#include "base/Format.h"
#include "base/Text.h"
#include "cli/Command.h"
#include "cli/ImportWords.h"
#include "cli/RenderWareCommands.h"
#include "image/ImageFile.h"
#include "tools/DirectHost.h"
#include "tools/RadarMapImport.h"
#include "tools/RadarMapOptimizer.h"
#include "tools/RadarMapPicture.h"

namespace {

/// The database of the command and the cache that it names.
struct OpenMap {
    CTextureDatabase& database;
    CacheIndex cache;
};

OpenMap OpenMapOf(CSession& session, const CArguments& arguments)
{
    const CacheIndex cache = ParseCache(RequireOption(arguments, L"--cache"));
    CTextureDatabase& database = session.OpenDatabase(arguments.Words()[1]);
    if (!database.IsOpen(cache))
        throw CError(Format(L"The database has no %s cache.", CacheInfix(cache)));
    return {.database = database, .cache = cache};
}

/// Stops work that a question was not answered for: a script must answer it before anything is changed.
class CStopUnanswered final : public IProgress {
public:
    explicit CStopUnanswered(CSession& session) : m_rSession(session) {}
    void Report(std::uint32_t current, std::uint32_t total, const std::wstring& text) override
    {
        m_rSession.Progress().Report(current, total, text);
    }
    bool Cancelled() const override { return !m_rSession.Prompt().Unanswered().empty(); }

private:
    CSession& m_rSession;
};

void WriteTilesAsJson(const std::vector<RadarTile>& tiles)
{
    CJsonWriter json;
    json.BeginObject()
        .Field(L"tiles", tiles.size())
        .Field(L"grid", RadarGridSide(static_cast<std::uint32_t>(tiles.size())))
        .Key(L"entries")
        .BeginArray();
    for (const RadarTile& tile : tiles)
        json.BeginObject()
            .Field(L"index", tile.index)
            .Field(L"name", tile.name)
            .Field(L"width", tile.width)
            .Field(L"height", tile.height)
            .Field(L"format", tile.format)
            .Field(L"alias_of", tile.aliasOf)
            .EndObject();
    json.EndArray().EndObject();
    WriteOutput(json.Document());
}

ExitCode RunInfo(CSession& session, const CArguments& arguments)
{
    const OpenMap map = OpenMapOf(session, arguments);
    std::vector<RadarTile> tiles;
    for (std::uint32_t number = 0; number < CountRadarTiles(map.database); ++number)
        tiles.push_back(DescribeRadarTile(map.database, number, map.cache));
    if (session.Options().json) {
        WriteTilesAsJson(tiles);
        return ExitCode::Done;
    }
    const std::uint32_t side = RadarGridSide(static_cast<std::uint32_t>(tiles.size()));
    WriteOutput(Format(L"%d tiles, %d x %d\n", static_cast<std::uint32_t>(tiles.size()), side, side));
    for (const RadarTile& tile : tiles) {
        const std::wstring alias = tile.aliasOf.empty() ? std::wstring() : L", alias of " + tile.aliasOf;
        WriteOutput(Format(L"%s: %s%s\n", tile.name, tile.Info(), alias));
    }
    return ExitCode::Done;
}

ExitCode RunExport(CSession& session, const CArguments& arguments)
{
    const auto file = ToPath(arguments.Words()[2]);
    const std::wstring extension = FromPath(file.extension());
    const auto format = ImageFormatFromExtension(extension.empty() ? extension : extension.substr(1));
    if (!format)
        throw CError(L"This format is unsupported");
    const OpenMap map = OpenMapOf(session, arguments);
    const auto plan = PlanRadarMap(map.database, map.cache);
    if (!plan)
        throw CError(std::wstring(kNoRadarMap));
    CDirectHost host(CHostOperations(map.database, session.Plugins(), session.Settings(), session.Prompt()));
    const auto picture = JoinRadarMap(*plan, host, session.Progress());
    if (!picture || !SaveImageFile(file, *picture, *format))
        throw CError(std::wstring(kRadarMapNotSaved));
    if (session.Options().json) {
        CJsonWriter json;
        json.BeginObject().Field(L"width", picture->Width()).Field(L"height", picture->Height()).EndObject();
        WriteOutput(json.Document());
    }
    return ExitCode::Done;
}

ExitCode RunImport(CSession& session, const CArguments& arguments)
{
    RefuseBoth(arguments, L"--alpha", L"--no-alpha");
    std::optional<bool> hasAlpha;
    if (arguments.Has(L"--alpha") || arguments.Has(L"--no-alpha"))
        hasAlpha = arguments.Has(L"--alpha");
    const OpenMap map = OpenMapOf(session, arguments);
    const auto picture = LoadImageFile(ToPath(arguments.Words()[2]));
    if (!picture)
        throw CError(Format(L"Cannot load '%s'.", arguments.Words()[2]));
    CDirectHost host(CHostOperations(map.database, session.Plugins(), session.Settings(), session.Prompt()));
    CStopUnanswered progress(session);
    const ImportCounts counts = ImportRadarMap({.database = map.database,
                                                .plugins = session.Plugins(),
                                                .settings = session.Settings(),
                                                .host = host,
                                                .prompt = session.Prompt(),
                                                .cache = map.cache},
                                               *picture, hasAlpha, progress);
    WriteImportCounts(session, counts);
    return counts.imported + counts.aliased != 0 ? ExitCode::Done : ExitCode::Failed;
}

ExitCode RunOptimize(CSession& session, const CArguments& arguments)
{
    const OpenMap map = OpenMapOf(session, arguments);
    if (CountRadarTiles(map.database) == 0)
        throw CError(std::wstring(kNoRadarMap));
    CDirectHost host(CHostOperations(map.database, session.Plugins(), session.Settings(), session.Prompt()));
    const std::uint32_t aliased = OptimizeRadarMap(map.database, host, map.cache, session.Progress());
    if (!session.Options().json) {
        WriteOutput(Format(L"%d aliased\n", aliased));
        return ExitCode::Done;
    }
    CJsonWriter json;
    json.BeginObject().Field(L"aliased", aliased).EndObject();
    WriteOutput(json.Document());
    return ExitCode::Done;
}

ExitCode RunRadar(CSession& session, const CArguments& arguments)
{
    static constexpr std::array kVerbs = {
        Verb{.name = L"info", .words = 2, .run = RunInfo},
        Verb{.name = L"export", .words = 3, .run = RunExport},
        Verb{.name = L"import", .words = 3, .run = RunImport},
        Verb{.name = L"optimize", .words = 2, .run = RunOptimize},
    };
    return RunVerb(kVerbs, session, arguments);
}

}  // namespace

std::span<const Command> RadarCommands()
{
    static const std::array kCommands = {Command{
        .name = L"radar",
        .syntax = L"info|export|import|optimize DB --cache CACHE [FILE] [--alpha|--no-alpha]",
        .help =
            L"The map of the radar: the textures radar00, radar01 and so on, row by row.\n"
            L"info lists them; export joins them into the picture FILE (png, bmp, gif, jpg or tif); import\n"
            L"cuts a square picture into 8 x 8 tiles, 12 x 12 for San Andreas, which replace the old ones\n"
            L"when all of them are stored; optimize makes tiles that look alike aliases of one another.\n"
            L"CACHE is the cache whose tiles are read, and whose game counts; import writes all of them.\n"
            L"Without --alpha or --no-alpha import asks whether to keep the alpha channel.",
        .fewestWords = 2,
        .mostWords = 3,
        .options = {.flags = {L"--alpha", L"--no-alpha"}, .withValue = {L"--cache"}},
        .run = RunRadar}};
    return kCommands;
}
