#pragma once

// Importing image files: names, clashes, replacing, hashes of the files, and going on after an error.

#include <cstdint>
#include <filesystem>
#include <string_view>
#include <vector>

#include "base/Progress.h"
#include "tools/ImportRules.h"

/// How a name that exists already is treated.
enum class ClashAnswer { Ask, Replace, Skip };

/// What follows the text of a failure: Yes goes on with the next file.
inline constexpr std::wstring_view kContinueQuestion = L"\nContinue?";

struct ImportCounts {
    std::uint32_t imported = 0;
    std::uint32_t aliased = 0;
    std::uint32_t skipped = 0;
    std::uint32_t failed = 0;
    bool wasStopped = false;
};

class CPictureImporter {
public:
    CPictureImporter(CTextureDatabase& database, const CPluginTable& plugins, const ISettings& settings,
                     IPrompt& prompt, IProgress& progress);

    /// Imports the files in order, then saves the database. A failed file is reported with "\nContinue?".
    ImportCounts Run(const std::vector<std::filesystem::path>& files, const ImportRequest& request,
                     ClashAnswer clash = ClashAnswer::Ask);

private:
    CTextureDatabase& m_rDatabase;
    const CPluginTable& m_rPlugins;
    const ISettings& m_rSettings;
    IPrompt& m_rPrompt;
    IProgress& m_rProgress;
};
