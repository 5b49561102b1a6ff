#pragma once

// Makes the records of a new texture out of a picture, in the format of every target cache, and stores them.
// Preparing changes nothing; storing does nothing that can still be refused, so that a texture can be
// replaced without the risk of losing it.

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "base/Settings.h"
#include "codec/PluginTable.h"
#include "codec/RecordPreparation.h"
#include "database/TextureDatabase.h"
#include "image/Bitmap.h"

struct ImportTarget {
    std::wstring name;
    bool hasAlpha = false;
    bool storeRgba8888 = false;
    /// Nothing: every open cache, and a new entry. A cache: only its records; the caller keeps the entry.
    std::optional<CacheIndex> cache = std::nullopt;
    StreamMode streamMode = StreamMode::Raw;
    /// Nothing: each cache's own encoder.
    std::optional<CacheIndex> forcedEncoder = std::nullopt;
    std::uint32_t category = 0;
    /// The entry that the caller deletes before the texture is stored. It is no duplicate, and while it has
    /// aliases nothing is: they are to find a texture with pixels under its name.
    std::optional<std::uint32_t> replaced = std::nullopt;
    /// The hash of the source file that the caller sets afterwards, so that its pair is counted in the line's
    /// length.
    std::uint32_t pngHash = 0;
    /// Entries that the caller deletes after the texture is stored: as if they were gone already, none of
    /// them is a duplicate or keeps its name from another. Borrowed.
    std::span<const std::uint32_t> leaving = {};
    /// Others are aliases of this name: it is no duplicate, because they are to find pixels under it.
    bool hasAliases = false;
};

enum class StoreResult { Stored, MadeAlias };

/// A texture that has passed every check and waits to be stored.
struct PreparedTexture {
    std::wstring name;
    /// The name of the texture with the same pixels: an alias of it is stored, and nothing else.
    std::optional<std::wstring> duplicateOf;
    /// Nothing when only the records of one cache are stored.
    std::optional<TextureEntry> entry;
    CPreparedRecords records;
};

/// What settings, plugins and database say about the records of the next texture. A value, so that another
/// thread can prepare pictures by it.
struct PreparationRules {
    RecordPlan plan;  // the name is left out, and levels go by the picture
    bool wantsMips = false;
};
PreparationRules ReadPreparationRules(const CTextureDatabase& database, const CPluginTable& plugins,
                                      const ISettings& settings, const ImportTarget& target);

/// The work on a picture that was done before its turn, by the rules that were expected to hold then.
struct EarlyTexture {
    RecordPlan plan;
    std::uint32_t imageHash = 0;
    /// Nothing when they were not worth it, or could not be made.
    std::optional<CPreparedRecords> records;
};
/// Whether a texture of that hash and size is likely to be the same picture, so that its records would be
/// made in vain. Called on the thread that prepares.
using LikelyDuplicate = std::function<bool(std::uint32_t imageHash, PixelSize size)>;
/// The part of PrepareTexture that needs nothing but the picture; for any thread. A picture that would be
/// refused comes back without records, and its turn tells why. Throws std::bad_alloc when there is no room
/// for the picture's pixels.
EarlyTexture PrepareEarly(const CBitmap& picture, const PreparationRules& rules,
                          const LikelyDuplicate& isDuplicate);

/// The records of a picture whose entry exists already, by rules that name their cache and the name hash; for
/// any thread. Throws CError (not shown) for wrong dimensions or an encoder that does not keep to the sizes
/// of its format.
CPreparedRecords PrepareForCache(const CBitmap& picture, const PreparationRules& rules);

/// Throws CError (not shown) for wrong dimensions, a name or a line that does not fit, a cache that is not
/// open or an encoder that does not keep to the sizes of its format. `early` is what PrepareEarly made of the
/// same picture; whatever of it does not fit the rules of this moment is made anew.
PreparedTexture PrepareTexture(CTextureDatabase& database, const CPluginTable& plugins,
                               const ISettings& settings, const CBitmap& picture, const ImportTarget& target,
                               std::optional<EarlyTexture> early = std::nullopt);
/// A property and the value that it gets.
using PropertyValue = std::pair<Property, std::uint32_t>;
/// The entry gets `properties`, in that order, before its line is written. Throws CError for a failed write;
/// then nothing has changed.
StoreResult StorePrepared(CTextureDatabase& database, PreparedTexture prepared,
                          std::span<const PropertyValue> properties = {});

/// Both in one. Throws CError (not shown) for wrong dimensions, a name or a line that does not fit, an
/// encoder that does not keep to the sizes of its format, or a failed write; then nothing has changed.
StoreResult PrepareAndStore(CTextureDatabase& database, const CPluginTable& plugins,
                            const ISettings& settings, const CBitmap& picture, const ImportTarget& target);

/// Throws CError "Wrong texture dimensions given." when a picture of this size cannot be stored.
void CheckDimensions(std::uint32_t width, std::uint32_t height, std::optional<CacheIndex> forcedEncoder);
/// Throws CError when a texture cannot be called so: "Name should not be empty." or "Wrong texture name
/// given.".
void CheckTextureName(std::wstring_view name);
