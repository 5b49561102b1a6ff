#pragma once

// What every tool may ask of the editor that it runs in: import, show, select, refresh and decode. A tool
// never adds, decodes or shows a texture itself, so that every import runs through the same rules and the
// same refresh. The window answers through its application messages, the command line directly.

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "base/Prompt.h"
#include "base/Settings.h"
#include "codec/PluginTable.h"
#include "database/TextureDatabase.h"
#include "image/Bitmap.h"

struct EarlyTexture;

/// What became of an import, for the sender's own count.
enum class ImportOutcome : std::uint32_t {
    Failed,     ///< the error box was shown
    Imported,   ///< a texture with records of its own, or records for the one cache that was given
    MadeAlias,  ///< an alias, asked for or because the same pixels are there already
    Ignored,    ///< nothing was to be done
};

/// One texture to import. The sender fills and owns it; the host writes the outcome and the target cache.
struct ImportRecord {
    static constexpr std::size_t kTextLength = 128;
    static constexpr std::uint32_t kFormatByRules = 0xFFFFFFFF;
    static constexpr std::int32_t kEveryCache = -1;

    std::array<wchar_t, kTextLength> name{};
    std::uint32_t hasAlpha = 0;
    // Facts about the source that the import does not need.
    std::uint32_t depth = 0;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    const std::byte* pixels = nullptr;

    std::uint32_t category = 0;
    /// Empty for a texture with pixels, else the name of the texture that this one is an alias of.
    std::array<wchar_t, kTextLength> aliasTarget{};
    /// Non-zero: the sender refreshes once at the end.
    std::uint32_t noRefresh = 0;
    std::uint32_t storeRgba8888 = 0;
    std::int32_t targetCache = kEveryCache;
    /// 0: the sender names no cache, and `targetCache` is reset.
    std::uint32_t cacheGiven = 0;
    /// The cache whose encoder is forced, or kFormatByRules.
    std::uint32_t format = kFormatByRules;
    /// What PrepareEarly made of the picture, or null. The host takes what it can use of it.
    EarlyTexture* early = nullptr;
    ImportOutcome outcome = ImportOutcome::Ignored;

    // For a sender that replaces many textures: it deletes the old ones when all new ones are stored.
    /// Entries that count as gone already. Borrowed until the import returns.
    std::span<const std::uint32_t> leaving = {};
    /// Non-zero: others are aliases of this name, so it never becomes an alias itself.
    std::uint32_t hasAliases = 0;
};

/// A record's text; one without a terminator ends with its field.
std::wstring RecordText(const std::array<wchar_t, ImportRecord::kTextLength>& field);
/// Cut to what the field holds.
void SetRecordText(std::array<wchar_t, ImportRecord::kTextLength>& field, std::wstring_view text);

class IEditorHost {
public:
    IEditorHost() = default;
    IEditorHost(const IEditorHost&) = delete;
    IEditorHost& operator=(const IEditorHost&) = delete;
    virtual ~IEditorHost() = default;

    /// `picture` may be null for an alias. Errors are shown by the host; the outcome is in the record.
    virtual void Import(const CBitmap* picture, ImportRecord& record) = 0;
    /// Shows a picture in the preview; null empties it. An empty name reads "unnamed".
    virtual void Show(const std::wstring& name, const CBitmap* picture) = 0;
    /// Selects an entry; an index that does not exist is ignored.
    virtual void Select(std::uint32_t index) = 0;
    /// Shows the database anew after imports without refresh.
    virtual void Refresh() = 0;
    /// An entry's raster of a cache; null when it cannot be decoded.
    virtual std::unique_ptr<CBitmap> Decode(std::uint32_t index, CacheIndex cache) = 0;
};

/// What both hosts do the same way: imports and decoding on an open database. It borrows everything.
class CHostOperations {
public:
    CHostOperations(CTextureDatabase& database, const CPluginTable& plugins, const ISettings& settings,
                    IPrompt& prompt)
        : m_rDatabase(database), m_rPlugins(plugins), m_rSettings(settings), m_rPrompt(prompt)
    {
    }

    /// Shows its errors. True when the editor's list of textures has changed and is to be shown anew.
    bool Import(const CBitmap* picture, ImportRecord& record);
    /// Null for an index or a cache that does not exist, and when decoding fails.
    std::unique_ptr<CBitmap> Decode(std::uint32_t index, CacheIndex cache);

private:
    ImportOutcome ImportAlias(const ImportRecord& record);
    ImportOutcome ImportPicture(const CBitmap& picture, const ImportRecord& record);

    CTextureDatabase& m_rDatabase;
    const CPluginTable& m_rPlugins;
    const ISettings& m_rSettings;
    IPrompt& m_rPrompt;
};
