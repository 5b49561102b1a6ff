#pragma once

// Importing image files: names, clashes, replacing, hashes of the files, and going on after an error.
// Questions and writes come in the order of the files, on the calling thread; pictures are decoded and
// encoded on others in advance, which changes nothing but the time.

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string_view>
#include <vector>

#include "base/Progress.h"
#include "tools/ImportClash.h"
#include "tools/ImportRules.h"

/// What follows the text of a failure: Yes goes on with the next file.
inline constexpr std::wstring_view kContinueQuestion = L"\nContinue?";

struct ImportOptions {
    /// Threads that prepare pictures. 0: one for each core. 1: none besides the calling one.
    unsigned jobs = 0;
    /// Called every few milliseconds while the calling thread waits for a picture, so that a window can
    /// paint. It must not change the database.
    std::function<void()> whileWaiting = {};
};

class CPictureImporter {
public:
    CPictureImporter(CTextureDatabase& database, const CPluginTable& plugins, const ISettings& settings,
                     IPrompt& prompt, IProgress& progress, ImportOptions options = {});

    /// Imports the files in order, then saves the database. A failed file is reported with "\nContinue?".
    ImportCounts Run(const std::vector<std::filesystem::path>& files, const ImportRequest& request,
                     ClashAnswer clash = ClashAnswer::Ask);

private:
    CTextureDatabase& m_rDatabase;
    const CPluginTable& m_rPlugins;
    const ISettings& m_rSettings;
    IPrompt& m_rPrompt;
    IProgress& m_rProgress;
    ImportOptions m_oOptions;
};
