#pragma once

// A picture becomes the radar map: it is checked, cut into tiles, and every tile replaces the one of its
// name. The old tiles go when all new ones are stored, so that a picture that is refused, a full disk or a
// stop costs nothing. It borrows everything.

#include <functional>
#include <optional>

#include "base/Progress.h"
#include "base/Prompt.h"
#include "base/Settings.h"
#include "codec/PluginTable.h"
#include "tools/EditorHost.h"
#include "tools/ImportClash.h"
#include "tools/RadarMap.h"

struct RadarImportParts {
    CTextureDatabase& database;
    const CPluginTable& plugins;
    const ISettings& settings;
    IEditorHost& host;
    IPrompt& prompt;
    CacheIndex cache = CacheIndex::Dxt;
    /// Runs a step on the thread that owns the database, and waits until it has run; boxes and questions come
    /// there too. Without it, that thread is the calling one.
    std::function<void(const std::function<void()>& step)> onOwner = {};
};

/// For any thread. `hasAlpha`: nothing asks "Use alpha?". Says in a box why a picture is refused; then, and
/// when it was stopped or a tile failed, nothing has changed and nothing is counted. Throws CError when the
/// old tiles could not be deleted.
ImportCounts ImportRadarMap(const RadarImportParts& parts, const CBitmap& picture,
                            std::optional<bool> hasAlpha, IProgress& progress);
