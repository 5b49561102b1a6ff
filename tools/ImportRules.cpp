#include "tools/ImportRules.h"

#include <bit>
#include <utility>

#include "base/Text.h"

namespace {

constexpr std::wstring_view kGameQuestion =
    L"Do you want to make this cache for San Andreas? \n\nIf you choose 'No' an Vice City cache will be "
    L"created.";

std::optional<CacheIndex> EncoderOfCategory(const CTextureDatabase& database, std::uint32_t category)
{
    const auto categories = database.Categories();
    const std::int32_t format = category < categories.size() ? categories[category].defaultformat : 0;
    // The two values that the games' own lists use; any other leaves the choice open.
    if (format == 4)
        return CacheIndex::Unc;
    if (format == 7)
        return CacheIndex::Dxt;
    return std::nullopt;
}

std::optional<StreamMode> FirstReadableGame(CTextureDatabase& database, CacheIndex cache)
{
    for (std::uint32_t index = 0; index < database.EntryCount(); ++index) {
        const TextureEntry& entry = database.Entry(index);
        if (entry.IsAlias() || entry.datOffset[SlotOf(cache)] == kNone)
            continue;
        if (const StreamMode game = database.GameOf(index, cache); game != StreamMode::Auto)
            return game;
    }
    return std::nullopt;
}

}  // namespace

std::optional<CacheIndex> EncoderByRules(const CTextureDatabase& database, const ISettings& settings,
                                         std::uint32_t category, std::optional<CacheIndex> chosen)
{
    if (!settings.IsOn(L"global", L"enable_compression", true))
        return CacheIndex::Unc;
    if (chosen || !settings.IsOn(L"global", L"enable_rules", true))
        return chosen;
    const std::wstring key = ToLowerAscii(FromPath(database.ListPath().filename()));
    const auto byList = CacheFromInfix(settings.ReadString(L"rules", key));
    return byList ? byList : EncoderOfCategory(database, category);
}

std::optional<CacheIndex> EncoderOfOneCache(const ISettings& settings, std::optional<CacheIndex> chosen)
{
    return settings.IsOn(L"global", L"enable_compression", true) ? chosen : CacheIndex::Unc;
}

std::optional<CacheIndex> EncoderForSize(std::optional<CacheIndex> forced, PixelSize size)
{
    const bool isRegular = std::has_single_bit(size.width) && std::has_single_bit(size.height);
    return forced || isRegular ? forced : CacheIndex::Unc;
}

std::optional<StreamMode> GameOfDatabase(CTextureDatabase& database)
{
    if (database.ForcedMode() != StreamMode::Auto)
        return database.ForcedMode();
    for (const CacheIndex cache : kAllCaches) {
        if (!database.IsOpen(cache))
            continue;
        if (const auto game = FirstReadableGame(database, cache))
            return game;
    }
    return std::nullopt;
}

std::optional<StreamMode> CGameChoice::WithoutAsking(CTextureDatabase& database) const
{
    return m_eAnswer ? m_eAnswer : GameOfDatabase(database);
}

std::optional<StreamMode> CGameChoice::For(CTextureDatabase& database)
{
    if (const auto game = WithoutAsking(database))
        return game;
    switch (m_rPrompt.Show({.text = std::wstring(kGameQuestion),
                            .caption = L"Mavrel",
                            .icon = PromptIcon::Question,
                            .buttons = PromptButtons::YesNoCancel})) {
        case PromptAnswer::Yes:
            m_eAnswer = StreamMode::Framed;
            break;
        case PromptAnswer::No:
            m_eAnswer = StreamMode::Raw;
            break;
        case PromptAnswer::Ok:
        case PromptAnswer::Cancel:
            break;
    }
    return m_eAnswer;
}

ImportTarget TargetByRules(const CTextureDatabase& database, const ISettings& settings,
                           const std::wstring& name, const ImportRequest& request, StreamMode game)
{
    ImportTarget target;
    target.name = name;
    target.hasAlpha = request.hasAlpha;
    target.storeRgba8888 = request.storeRgba8888;
    target.streamMode = game;
    target.forcedEncoder = EncoderByRules(database, settings, request.category, request.format);
    target.category = request.category;
    target.cache = request.cache;
    target.replaced = request.replaced;
    target.pngHash = request.pngHash;
    target.leaving = request.leaving;
    target.hasAliases = request.hasAliases;
    return target;
}

PreparedTexture PrepareByRules(CTextureDatabase& database, const CPluginTable& plugins,
                               const ISettings& settings, const CBitmap& picture, const std::wstring& name,
                               const ImportRequest& request, StreamMode game,
                               std::optional<EarlyTexture> early)
{
    ImportTarget target = TargetByRules(database, settings, name, request, game);
    if (request.cache)
        target.forcedEncoder =
            EncoderForSize(EncoderOfOneCache(settings, request.format), {picture.Width(), picture.Height()});
    PreparedTexture prepared = PrepareTexture(database, plugins, settings, picture, target, std::move(early));
    // A list may hold names that no new line can repeat.
    if (prepared.duplicateOf)
        CheckTextureName(*prepared.duplicateOf);
    return prepared;
}

StoreResult StoreByRules(CTextureDatabase& database, PreparedTexture prepared, const ImportRequest& request)
{
    const StoreResult result = StorePrepared(database, std::move(prepared));
    if (result == StoreResult::MadeAlias && request.category != 0) {
        database.ChangeProperty(database.EntryCount() - 1, Property::Cat, request.category);
        database.Save();
    }
    return result;
}

StoreResult ImportByRules(CTextureDatabase& database, const CPluginTable& plugins, const ISettings& settings,
                          const CBitmap& picture, const std::wstring& name, const ImportRequest& request,
                          StreamMode game)
{
    return StoreByRules(database, PrepareByRules(database, plugins, settings, picture, name, request, game),
                        request);
}
