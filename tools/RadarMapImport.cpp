#include "tools/RadarMapImport.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "base/Format.h"
#include "codec/ImagePreparation.h"
#include "tools/ImportRules.h"
#include "tools/RadarMapPicture.h"
#include "tools/ReplacedTextures.h"

namespace {

constexpr std::uint32_t kSmallestPicture = 128;
constexpr std::wstring_view kNotSquare = L"Image must be square.";
constexpr std::wstring_view kTooSmall = L"Image is too small.";
constexpr std::wstring_view kUseAlpha = L"Use alpha?";
// Deliberate: it names the side of the grid twice, not a size in pixels.
// RadarMapImport.RecommendsTheSideOfTheGridTwice pins it.
constexpr std::wstring_view kWrongDimensions =
    L"Wrong texture dimensions given.\n\nRecommended dimensions is %d %d.";

/// The place that a tile is imported into.
struct TilePlace {
    std::uint32_t category = 0;
    /// Others are aliases of the tile and stay.
    bool hasAliases = false;
};

void OnOwner(const RadarImportParts& parts, const std::function<void()>& step)
{
    if (parts.onOwner)
        parts.onOwner(step);
    else
        step();
}

class CRadarImport {
public:
    CRadarImport(const RadarImportParts& parts, const CBitmap& picture, bool hasAlpha, IProgress& progress)
        : m_oParts(parts), m_rPicture(picture), m_bAlpha(hasAlpha), m_rProgress(progress)
    {
    }
    CRadarImport(const CRadarImport&) = delete;
    CRadarImport& operator=(const CRadarImport&) = delete;
    ~CRadarImport()
    {
        // What was stored without being completed is removed where the database lives.
        if (m_pReplaced)
            OnOwner(m_oParts, [this] { m_pReplaced.reset(); });
    }

    ImportCounts Run();

private:
    bool Prepare();
    void FindOldTiles(std::vector<std::uint32_t>& leaving);
    bool TilesFit() const;
    void ReadRules();
    bool ImportTile(std::uint32_t number);
    EarlyTexture EncodeTile(const CBitmap& tile, const TilePlace& place) const;
    ImportTarget TargetOf(std::uint32_t number) const;

    RadarImportParts m_oParts;
    const CBitmap& m_rPicture;
    bool m_bAlpha;
    IProgress& m_rProgress;
    RadarLayout m_oLayout;
    std::vector<TilePlace> m_aPlaces;
    std::unique_ptr<CReplacedTextures> m_pReplaced;
    PreparationRules m_oRules;
    bool m_bLooksForDuplicates = false;
    std::set<std::uint32_t> m_aHashes;  // of textures that a tile may duplicate
    ImportCounts m_oCounts;
};

// Every entry of a tile's name goes, or the one that comes first in the list would hide the new one.
void CRadarImport::FindOldTiles(std::vector<std::uint32_t>& leaving)
{
    const CTextureDatabase& database = m_oParts.database;
    m_aPlaces.assign(m_oLayout.Count(), {});
    std::set<std::wstring> names;
    for (std::uint32_t number = 0; number < m_oLayout.Count(); ++number) {
        names.insert(RadarTileName(number));
        if (const auto tile = FindRadarTile(database, number))
            m_aPlaces[number].category = database.Entry(*tile).Value(Property::Cat);
    }
    for (std::uint32_t index = 0; index < database.EntryCount(); ++index)
        if (names.contains(database.Entry(index).name))
            leaving.push_back(index);

    std::set<std::wstring> wanted;
    for (std::uint32_t index = 0; index < database.EntryCount(); ++index)
        if (database.IsAlias(index) && !std::ranges::binary_search(leaving, index))
            wanted.insert(database.Entry(index).affiliate);
    for (std::uint32_t number = 0; number < m_oLayout.Count(); ++number)
        m_aPlaces[number].hasAliases = wanted.contains(RadarTileName(number));
}

ImportTarget CRadarImport::TargetOf(std::uint32_t number) const
{
    ImportRequest request;
    request.hasAlpha = m_bAlpha;
    request.format = m_oLayout.format;
    request.category = m_aPlaces[number].category;
    const StreamMode game = GameOfDatabase(m_oParts.database).value_or(StreamMode::Raw);
    return TargetByRules(m_oParts.database, m_oParts.settings, RadarTileName(number), request, game);
}

// By the encoder of each tile: its category may have a rule of its own.
bool CRadarImport::TilesFit() const
{
    const std::uint32_t side = m_oLayout.side;
    if (m_rPicture.Width() % side != 0 || m_rPicture.Height() % side != 0)
        return false;
    try {
        for (std::uint32_t number = 0; number < m_oLayout.Count(); ++number)
            CheckDimensions(m_rPicture.Width() / side, m_rPicture.Height() / side,
                            TargetOf(number).forcedEncoder);
        return true;
    } catch (const CError&) {  // the caller says it in the words of the map
        return false;
    }
}

void CRadarImport::ReadRules()
{
    m_oRules = ReadPreparationRules(m_oParts.database, m_oParts.plugins, m_oParts.settings, TargetOf(0));
    m_bLooksForDuplicates = m_oParts.settings.IsOn(L"global", L"enable_img_hash", true);
    for (std::uint32_t index = 0; index < m_oParts.database.EntryCount(); ++index)
        if (!std::ranges::binary_search(m_pReplaced->Leaving(), index))
            m_aHashes.insert(m_oParts.database.Entry(index).Value(Property::Img));
}

bool CRadarImport::Prepare()
{
    CTextureDatabase& database = m_oParts.database;
    m_oLayout = RadarLayoutOf(database, m_oParts.cache);
    std::vector<std::uint32_t> leaving;
    FindOldTiles(leaving);
    if (!TilesFit()) {
        m_oParts.prompt.ShowError(Format(kWrongDimensions, m_oLayout.side, m_oLayout.side));
        return false;
    }
    m_pReplaced = std::make_unique<CReplacedTextures>(database, std::move(leaving));
    ReadRules();
    return true;
}

EarlyTexture CRadarImport::EncodeTile(const CBitmap& tile, const TilePlace& place) const
{
    return PrepareEarly(tile, m_oRules, [this, &place](std::uint32_t hash, PixelSize) {
        return m_bLooksForDuplicates && !place.hasAliases && m_aHashes.contains(hash);
    });
}

bool CRadarImport::ImportTile(std::uint32_t number)
{
    const TilePlace& place = m_aPlaces[number];
    const CBitmap tile = CutRadarTile(m_rPicture, number, m_oLayout.side);
    EarlyTexture early = EncodeTile(tile, place);
    m_aHashes.insert(early.imageHash);

    ImportRecord record;
    SetRecordText(record.name, RadarTileName(number));
    record.hasAlpha = m_bAlpha ? 1 : 0;
    record.width = tile.Width();
    record.height = tile.Height();
    record.category = place.category;
    record.noRefresh = 1;
    if (m_oLayout.format)
        record.format = static_cast<std::uint32_t>(*m_oLayout.format);
    record.early = &early;
    record.leaving = m_pReplaced->Leaving();
    record.hasAliases = place.hasAliases ? 1 : 0;
    m_oParts.host.Import(&tile, record);
    m_oCounts.imported += record.outcome == ImportOutcome::Imported ? 1 : 0;
    m_oCounts.aliased += record.outcome == ImportOutcome::MadeAlias ? 1 : 0;
    m_oCounts.failed += record.outcome == ImportOutcome::Failed ? 1 : 0;
    return record.outcome == ImportOutcome::Imported || record.outcome == ImportOutcome::MadeAlias;
}

ImportCounts CRadarImport::Run()
{
    bool isReady = false;
    OnOwner(m_oParts, [this, &isReady] { isReady = Prepare(); });
    if (!isReady)
        return {.failed = 1};
    for (std::uint32_t number = 0; number < m_oLayout.Count(); ++number) {
        m_rProgress.Report(number, m_oLayout.Count() - 1, RadarTileName(number));
        if (m_rProgress.Cancelled() || !ImportTile(number))
            return {.failed = m_oCounts.failed, .wasStopped = m_oCounts.failed == 0};
    }
    OnOwner(m_oParts, [this] { m_pReplaced->Complete(m_rProgress); });
    return m_oCounts;
}

}  // namespace

ImportCounts ImportRadarMap(const RadarImportParts& parts, const CBitmap& picture,
                            std::optional<bool> hasAlpha, IProgress& progress)
{
    const auto refuse = [&parts](std::wstring_view text) {
        OnOwner(parts, [&parts, text] { parts.prompt.ShowError(text); });
        return ImportCounts{.failed = 1};
    };
    if (picture.Width() != picture.Height())
        return refuse(kNotSquare);
    if (picture.Width() < kSmallestPicture)
        return refuse(kTooSmall);
    if (!hasAlpha)
        OnOwner(parts, [&parts, &hasAlpha] {
            hasAlpha = parts.prompt.Show({.text = std::wstring(kUseAlpha),
                                          .caption = L"Mavrel",
                                          .icon = PromptIcon::Question,
                                          .buttons = PromptButtons::YesNo}) == PromptAnswer::Yes;
        });
    return CRadarImport(parts, picture, *hasAlpha, progress).Run();
}
