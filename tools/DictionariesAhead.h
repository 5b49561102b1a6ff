#pragma once

// Draws and encodes the next textures of an archive's dictionaries on other threads, while the caller stores
// those before them. It looks through the dictionaries by itself and in silence; whatever it cannot prepare,
// the caller meets in its turn. So the result of an import does not depend on how many threads there are.

#include <compare>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <unordered_set>

#include "base/OrderedPipeline.h"
#include "codec/ImagePreparation.h"
#include "image/Bitmap.h"
#include "img/ImgArchive.h"
#include "tools/ImportRules.h"
#include "tools/PicturesAhead.h"
#include "tools/TXDHelper.h"

/// A texture of a run: which of its dictionaries, and which texture of that.
struct TexturePlace {
    std::size_t dictionary = 0;
    std::uint32_t texture = 0;

    auto operator<=>(const TexturePlace&) const = default;
};

/// How a texture of a dictionary is imported.
ImportRequest RequestFor(const DictionaryTexture& texture);

/// A texture as far as it can be taken without the database.
struct TextureAhead {
    std::optional<CBitmap> picture;
    std::optional<EarlyTexture> texture;
};

class CDictionariesAhead {
public:
    struct Surroundings {
        CTextureDatabase& database;
        const CPluginTable& plugins;
        const ISettings& settings;
        const CImgArchive& archive;
        std::span<const std::uint32_t> entries;
        const CKnownPictures& known;
    };

    /// Everything is borrowed. Without threads nothing is done in advance.
    CDictionariesAhead(const Surroundings& around, unsigned threads);

    /// What was prepared for a texture, once; places come in order. Waits for it and calls `idle` meanwhile,
    /// and hands out the textures that come after it, so that every thread has work.
    TextureAhead Take(TexturePlace place, const std::function<void()>& idle);

private:
    bool HandOutOne();
    bool OpenNextDictionary();
    std::optional<PreparationRules> RulesFor(const DictionaryTexture& texture);
    void HandOut(const DictionaryTexture& texture, const PreparationRules& rules);
    void DropBefore(TexturePlace place);

    const Surroundings m_oAround;
    RW::CSilentFailures m_oFailures;
    CTXDHelper m_oHelper;
    TexturePlace m_oNext;
    bool m_bHasStarted = false;
    std::uint32_t m_nTextures = 0;  // of the dictionary that is open
    std::unordered_set<std::wstring> m_aHandedOut;
    std::deque<TexturePlace> m_aPending;         // oldest first, as in the pipeline
    std::size_t m_nMostPending;                  // bounds the memory
    COrderedPipeline<TextureAhead> m_oPipeline;  // last: its threads end before what they use
};
