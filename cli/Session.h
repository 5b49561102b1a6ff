#pragma once

// What every command works with: the global options, the settings, the plugins and, where one was named, the
// open database. It owns them for the length of one command.

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/Settings.h"
#include "cli/Arguments.h"
#include "cli/ExitCode.h"
#include "cli/Json.h"
#include "cli/Terminal.h"
#include "codec/PluginTable.h"
#include "database/TextureDatabase.h"

/// The options that stand for every command.
struct GlobalOptions {
    std::optional<std::filesystem::path> settings;
    std::optional<std::filesystem::path> plugins;
    std::optional<StreamMode> game;
    std::optional<PromptAnswer> answer;
    bool json = false;
    std::optional<bool> progress;  // nothing: only on a terminal
    unsigned jobs = 0;             // 0: all cores
};

class CSession {
public:
    explicit CSession(const GlobalOptions& options);

    const GlobalOptions& Options() const { return m_oOptions; }
    /// Read only: a command never changes the settings.
    const ISettings& Settings() const { return *m_pSettings; }
    CTerminalPrompt& Prompt() { return m_oPrompt; }
    IProgress& Progress() { return m_oProgress; }
    StreamMode Game() const;

    /// The plugins, found and bound on first use.
    const CPluginTable& Plugins();
    /// Opens a database for a command. Throws CError when there is no cache or the list cannot be used; the
    /// box has been printed then.
    CTextureDatabase& OpenDatabase(const std::wstring& list);
    /// As OpenDatabase, for commands that work without a list.
    CTextureDatabase& OpenCaches(const std::wstring& list);

private:
    GlobalOptions m_oOptions;
    std::unique_ptr<ISettings> m_pSettings;
    CTerminalPrompt m_oPrompt;
    CTerminalProgress m_oProgress;
    std::unique_ptr<CPluginTable> m_pPlugins;
    std::unique_ptr<CTextureDatabase> m_pDatabase;
};

/// An entry by its name, compared exactly, or "#N". Throws CError when there is none.
std::uint32_t FindTexture(const CTextureDatabase& database, const std::wstring& word);
/// A category by its name or "#N". Throws CError when there is none.
std::uint32_t FindCategory(const CTextureDatabase& database, const std::wstring& word);
/// "dxt", "etc", "pvr", "unc". Throws CUsageError for anything else.
CacheIndex ParseCache(const std::wstring& word);
/// "auto", "vc", "sa".
std::wstring_view GameWord(StreamMode game);
/// A whole number written in decimal digits only.
std::optional<std::uint32_t> ParseIndex(std::wstring_view digits);
