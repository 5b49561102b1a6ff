#pragma once

// Where an imported picture goes: for which game, and through which encoder.

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "base/Prompt.h"
#include "base/Settings.h"
#include "codec/ImagePreparation.h"
#include "database/TextureDatabase.h"

/// The forced encoder by the category's default format, the "rules" entry of the database's list, and the
/// global compression switch. `chosen` is what the command fixed; it wins over the rules but not over the
/// switch.
std::optional<CacheIndex> EncoderByRules(const CTextureDatabase& database, const ISettings& settings,
                                         std::uint32_t category, std::optional<CacheIndex> chosen);

/// The same for records of one cache whose entries exist already: neither category nor list count, so that
/// every cache gets its own form.
std::optional<CacheIndex> EncoderOfOneCache(const ISettings& settings, std::optional<CacheIndex> chosen);
/// A picture of such a cache whose sides are no powers of two fits the uncompressed form only.
std::optional<CacheIndex> EncoderForSize(std::optional<CacheIndex> forced, PixelSize size);

/// The game of imports into this database: the forced one, else that of the first readable record of an
/// ordinary entry in cache order, else nothing.
std::optional<StreamMode> GameOfDatabase(CTextureDatabase& database);

/// Asks once for the game of a new cache. Nothing when the person cancels, which ends the run.
class CGameChoice {
public:
    explicit CGameChoice(IPrompt& prompt) : m_rPrompt(prompt) {}
    std::optional<StreamMode> For(CTextureDatabase& database);
    /// The same without the question.
    std::optional<StreamMode> WithoutAsking(CTextureDatabase& database) const;

private:
    IPrompt& m_rPrompt;
    std::optional<StreamMode> m_eAnswer;
};

/// What an import command asks for.
struct ImportRequest {
    bool hasAlpha = true;
    bool storeRgba8888 = false;
    std::optional<CacheIndex> format = std::nullopt;  // fixed by the command
    std::uint32_t category = 0;
    /// Nothing: every open cache, and a new entry. A cache: only its records.
    std::optional<CacheIndex> cache = std::nullopt;
    /// The entry that the new texture takes the place of; whoever stores the texture deletes it first.
    std::optional<std::uint32_t> replaced = std::nullopt;
    /// The hash of the source file, when it is to be kept.
    std::uint32_t pngHash = 0;
    /// See ImportTarget.
    std::span<const std::uint32_t> leaving = {};
    bool hasAliases = false;
};

/// What the request means for the next texture, by settings and database.
ImportTarget TargetByRules(const CTextureDatabase& database, const ISettings& settings,
                           const std::wstring& name, const ImportRequest& request, StreamMode game);

/// The first half of ImportByRules: everything that can be refused. Throws CError; nothing has changed then.
/// `early`: see PrepareTexture.
PreparedTexture PrepareByRules(CTextureDatabase& database, const CPluginTable& plugins,
                               const ISettings& settings, const CBitmap& picture, const std::wstring& name,
                               const ImportRequest& request, StreamMode game,
                               std::optional<EarlyTexture> early = std::nullopt);
/// The second half. A texture that became an alias gets the requested category.
StoreResult StoreByRules(CTextureDatabase& database, PreparedTexture prepared, const ImportRequest& request);

/// One picture into every open cache, by the rules. A texture that became an alias gets the requested
/// category. Throws CError; nothing has changed then.
StoreResult ImportByRules(CTextureDatabase& database, const CPluginTable& plugins, const ISettings& settings,
                          const CBitmap& picture, const std::wstring& name, const ImportRequest& request,
                          StreamMode game);
