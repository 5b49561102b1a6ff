#pragma once

// Opening a database as a person does it: which list a chosen file belongs to, the checks that follow
// loading, and the repairs that they offer. Questions go through the prompt, so that window and command line
// share every rule.

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/Progress.h"
#include "base/Prompt.h"
#include "base/Settings.h"
#include "codec/PluginTable.h"
#include "database/TextureDatabase.h"

/// The list that a chosen file belongs to: for an extension "toc" or "dat" (exactly so) the name with up to
/// two extensions replaced by ".txt", else the file itself.
std::filesystem::path ListPathOf(const std::filesystem::path& chosen);

/// What the checks after loading find. Every list is in cache order.
struct DatabaseCheck {
    std::vector<CacheIndex> badTocs;
    std::vector<CacheIndex> badThumbnails;
    bool nameHashesWrong = false;

    bool IsClean() const { return badTocs.empty() && badThumbnails.empty() && !nameHashesWrong; }
};

/// `limit` is "global"/"onload_check_limit": limit + 1 ordinary entries from the last on are compared, never
/// entry 0.
bool AreNameHashesWrong(CTextureDatabase& database, int limit);
/// Caches whose thumbnail count cannot be right. Every cache is compared with the raster count of the last
/// open one.
bool AreThumbnailsWrong(CTextureDatabase& database, CacheIndex cache);
/// All three checks, without a question and without a change.
DatabaseCheck CheckDatabase(CTextureDatabase& database, int nameHashLimit);

/// Builds a lost list from the caches, and every table of contents that is not valid then. False when the
/// first cache holds no texture; nothing was written.
bool RecoverDatabase(CTextureDatabase& database);

enum class OpenResult {
    Opened,
    NoCaches,    ///< nothing to open; the box was shown
    NoList,      ///< the list is missing and the person did not want a new one
    ListLocked,  ///< the list exists but cannot be opened for writing; the box was shown
    Recovered,   ///< a new list was built from the caches
};

/// Runs once the caches were opened: asks for a lost list to be rebuilt, else runs the checks and offers the
/// repairs, each with its question. `progress` is told about long repairs.
class CDatabaseOpener {
public:
    CDatabaseOpener(const ISettings& settings, IPrompt& prompt, IProgress& progress)
        : m_rSettings(settings), m_rPrompt(prompt), m_rProgress(progress)
    {
    }

    /// Opens the files; `opened` is called once a cache is open, before a lost list is asked about.
    OpenResult Open(
        CTextureDatabase& database, const std::filesystem::path& list,
        const std::function<void()>& opened = [] {});
    /// Table-of-contents and thumbnail questions. `done` is called after each repair (the window shows
    /// "Done!").
    void OfferFileRepairs(CTextureDatabase& database, const std::function<void()>& done);
    /// The name-hash question, after the tree is filled.
    void OfferNameHashRepair(CTextureDatabase& database);

private:
    const ISettings& m_rSettings;
    IPrompt& m_rPrompt;
    IProgress& m_rProgress;
};
