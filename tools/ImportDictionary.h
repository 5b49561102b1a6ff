#pragma once

// Importing the textures of a dictionary: each is drawn, checked and stored by the same rules as an image
// file, one after the other, so that no more than one is in memory. It borrows everything; the dictionary's
// own stop boxes go where its helper sends them.

#include <cstdint>
#include <functional>
#include <vector>

#include "base/Progress.h"
#include "tools/ImportClash.h"
#include "tools/ImportRules.h"
#include "tools/TXDHelper.h"

struct DictionaryImportOptions {
    ClashAnswer clash = ClashAnswer::Ask;
    /// What Cancel chooses when a name exists already. Deliberate: in the window it imports the texture
    /// beside the old one. ImportDictionary.CancelImportsTheTextureBesideTheOldOne pins it.
    ClashChoice onCancel = ClashChoice::KeepBoth;
    /// Called after each texture that was imported: for a bar that stands still when one is skipped or fails.
    std::function<void()> afterImport = {};
    /// When given, the records of a texture are made on another thread, and this is called every few
    /// milliseconds meanwhile: for a window that goes on painting. It must not throw. No byte depends on it.
    std::function<void()> whileWaiting = {};
};

/// One for a whole run over several dictionaries: the game of a new cache is asked for once.
class CDictionaryImporter {
public:
    CDictionaryImporter(CTextureDatabase& database, const CPluginTable& plugins, const ISettings& settings,
                        IPrompt& prompt, IProgress& progress, DictionaryImportOptions options = {});

    /// Imports these textures of the open dictionary, in the order given, then saves the database; an index
    /// that does not exist is skipped. Alpha and 32-bit storage are each texture's own, whatever the request
    /// says. A texture that fails is told about, and the run goes on; one that cannot be written ends it,
    /// because the next would lose what it replaces as well. Throws CError when the list cannot be saved.
    ImportCounts Run(CTXDHelper& helper, const std::vector<std::uint32_t>& textures,
                     const ImportRequest& request = {});
    /// The same for every texture.
    ImportCounts RunAll(CTXDHelper& helper, const ImportRequest& request = {});

private:
    CTextureDatabase& m_rDatabase;
    const CPluginTable& m_rPlugins;
    const ISettings& m_rSettings;
    IPrompt& m_rPrompt;
    IProgress& m_rProgress;
    DictionaryImportOptions m_oOptions;
    CGameChoice m_oGame;
};
