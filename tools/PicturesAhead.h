#pragma once

// Prepares the next pictures of an import on other threads, while the caller stores those before them. What
// comes back is only work done in advance: the caller looks at every picture in its turn, asks and decides
// then, and does anew whatever was prepared by expectations that did not hold. So the result of an import
// does not depend on how many threads there are.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "base/OrderedPipeline.h"
#include "codec/ImagePreparation.h"
#include "image/Bitmap.h"

/// A picture file as far as it can be taken without the database. Everything may be missing.
struct PictureAhead {
    std::optional<CBitmap> picture;
    std::optional<std::uint32_t> fileHash;
    std::optional<EarlyTexture> texture;
};

/// What a picture file will probably be imported as.
struct PictureOutlook {
    PreparationRules rules;
    std::wstring name;
    bool needsFileHash = false;
    bool findsDuplicates = false;
};

/// The pictures that the database holds by their hashes, for guesses on any thread. A wrong guess costs time
/// only.
class CKnownPictures {
public:
    void Add(std::uint32_t imageHash, PixelSize size, const std::wstring& name);
    /// The picture of an entry, as far as its hash is known.
    void Add(const TextureEntry& entry);
    /// Those of all entries.
    void AddAll(const CTextureDatabase& database);
    /// True when a texture of another name has that picture.
    bool HasOther(std::uint32_t imageHash, PixelSize size, const std::wstring& name) const;

private:
    mutable std::mutex m_oMutex;
    std::multimap<std::tuple<std::uint32_t, std::uint32_t, std::uint32_t>, std::wstring> m_aPictures;
};

class CPicturesAhead {
public:
    /// The outlook for a file, or nothing when it is not worth preparing. Called on the caller's thread.
    using Outlook = std::function<std::optional<PictureOutlook>(const std::filesystem::path& file)>;

    /// Without threads nothing is done in advance. `files` and `known` are borrowed.
    CPicturesAhead(const std::vector<std::filesystem::path>& files, unsigned threads, Outlook outlook,
                   const CKnownPictures& known);

    /// Goes on to the next file, the first one at first; a picture that was not taken is dropped. Hands out
    /// the files that come after it, so that every thread has work.
    void Next();
    /// What was prepared for the file at hand, once. Waits for it and calls `idle` meanwhile.
    PictureAhead Take(const std::function<void()>& idle);

private:
    void HandOut(const std::filesystem::path& file);

    const std::vector<std::filesystem::path>& m_aFiles;
    Outlook m_fnOutlook;
    const CKnownPictures& m_rKnown;
    std::size_t m_nMostPending;  // bounds the memory
    std::size_t m_nHandedOut = 0;
    bool m_bHasOne = false;  // the oldest pending picture is that of the file at hand
    COrderedPipeline<PictureAhead> m_oPipeline;
};
