#pragma once

// Importing the texture dictionaries of an IMG archive: every texture whose name is new. Dictionaries are
// opened, errors shown and textures handed to the editor in order, on the calling thread; pictures are drawn
// and encoded on others in advance, which changes nothing but the time. It borrows everything.

#include <cstdint>
#include <functional>
#include <span>

#include "base/Progress.h"
#include "base/Prompt.h"
#include "base/Settings.h"
#include "codec/PluginTable.h"
#include "database/TextureDatabase.h"
#include "img/ImgArchive.h"
#include "rw/Failures.h"
#include "tools/EditorHost.h"
#include "tools/ImportClash.h"

/// What an import works with; all of it is borrowed.
struct ArchiveImportParts {
    CTextureDatabase& database;
    const CPluginTable& plugins;
    const ISettings& settings;
    IEditorHost& host;
    IPrompt& prompt;
    IProgress& progress;
    RW::IFailures& failures;
};

struct ArchiveImportOptions {
    /// The cache that the editor shows. It is told to the editor, which imports into every open cache all the
    /// same.
    CacheIndex targetCache = CacheIndex::Dxt;
    /// Threads that prepare pictures. 0: one for each core. 1: none besides the calling one.
    unsigned jobs = 0;
    /// Called every few milliseconds while the calling thread waits for a picture, so that a window can
    /// paint; one other thread is started at least. It must not change the database.
    std::function<void()> whileWaiting = {};
};

class CArchiveImporter {
public:
    explicit CArchiveImporter(const ArchiveImportParts& parts, ArchiveImportOptions options = {});

    /// Imports the textures of these entries in the order given, then saves the database and shows it anew.
    /// Reports "ENTRY" and "ENTRY / TEXTURE" as entry k of their number, k from 1. A texture whose name
    /// exists is skipped silently; a dictionary that cannot be read is told about and counts as one failure,
    /// what was read of it is imported. Asking to stop ends the run between two textures. Throws CError when
    /// the list cannot be saved.
    ImportCounts Run(const CImgArchive& archive, std::span<const std::uint32_t> entries);

private:
    const ArchiveImportParts m_oParts;
    ArchiveImportOptions m_oOptions;
};
