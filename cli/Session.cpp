#include "cli/Session.h"

#include <limits>

#include "base/Format.h"
#include "base/ProgramPath.h"
#include "base/Text.h"

namespace {

// A command line that runs from a script must not change what the next one finds.
class CReadOnlySettings final : public ISettings {
public:
    explicit CReadOnlySettings(const std::filesystem::path& file) : m_pSettings(OpenSettings(file)) {}

    int ReadInt(std::wstring_view section, std::wstring_view key, int fallback) const override
    {
        return m_pSettings->ReadInt(section, key, fallback);
    }
    std::wstring ReadString(std::wstring_view section, std::wstring_view key) const override
    {
        return m_pSettings->ReadString(section, key);
    }
    bool WriteString(std::wstring_view /*section*/, std::wstring_view /*key*/,
                     std::wstring_view /*value*/) override
    {
        return false;
    }
    bool Delete(std::wstring_view /*section*/, std::wstring_view /*key*/) override { return false; }

private:
    std::unique_ptr<ISettings> m_pSettings;
};

std::filesystem::path BesideProgram(const char* name)
{
    return ProgramPath().parent_path() / name;
}

std::optional<std::uint32_t> NumberedWord(const std::wstring& word)
{
    return word.starts_with(L"#") ? ParseIndex(std::wstring_view(word).substr(1)) : std::nullopt;
}

}  // namespace

CSession::CSession(const GlobalOptions& options)
    : m_oOptions(options),
      m_pSettings(
          std::make_unique<CReadOnlySettings>(options.settings.value_or(BesideProgram("mavrel-cli.ini")))),
      m_oPrompt(options.answer),
      m_oProgress(options.progress.value_or(IsErrorStreamATerminal()))
{
}

StreamMode CSession::Game() const
{
    if (m_oOptions.game)
        return *m_oOptions.game;
    const int stored = m_pSettings->ReadInt(L"global", L"game", 0);
    return stored == 1 || stored == 2 ? static_cast<StreamMode>(stored) : StreamMode::Auto;
}

const CPluginTable& CSession::Plugins()
{
    if (!m_pPlugins) {
        m_pPlugins = std::make_unique<CPluginTable>();
        m_pPlugins->Discover(m_oOptions.plugins.value_or(BesideProgram("plugins")), m_oPrompt);
        m_pPlugins->BindFromSettings(*m_pSettings);
    }
    return *m_pPlugins;
}

CTextureDatabase& CSession::OpenCaches(const std::wstring& list)
{
    m_pDatabase = std::make_unique<CTextureDatabase>(Game(), DiskFileSystem(), m_oPrompt);
    m_pDatabase->Open(ToPath(list));
    if (!m_pDatabase->PrimaryCache())
        throw CError(
            L"No caches found to load, lol.\n\nCheck .DAT, .TMB and .TOC files, all of them sholuld be "
            L"located in the "
            L"same folder as TXT.");
    return *m_pDatabase;
}

CTextureDatabase& CSession::OpenDatabase(const std::wstring& list)
{
    CTextureDatabase& database = OpenCaches(list);
    if (!database.IsListOpen())
        throw CError(Format(L"The TXT list %s cannot be opened for reading and writing.", list));
    return database;
}

std::uint32_t FindTexture(const CTextureDatabase& database, const std::wstring& word)
{
    if (const auto index = NumberedWord(word); index && *index < database.EntryCount())
        return *index;
    if (const auto found = database.FindByName(word, true))
        return *found;
    throw CError(Format(L"There is no texture '%s'.", word));
}

std::uint32_t FindCategory(const CTextureDatabase& database, const std::wstring& word)
{
    const auto categories = database.Categories();
    if (const auto index = NumberedWord(word); index && *index < categories.size())
        return *index;
    for (std::uint32_t i = 0; i < categories.size(); ++i)
        if (categories[i].name == word)
            return i;
    throw CError(Format(L"There is no category '%s'.", word));
}

CacheIndex ParseCache(const std::wstring& word)
{
    if (const auto cache = CacheFromInfix(word))
        return *cache;
    throw CUsageError(L"A cache is dxt, etc, pvr or unc, not '" + word + L"'.");
}

std::wstring_view GameWord(StreamMode game)
{
    switch (game) {
        case StreamMode::Auto:
            return L"auto";
        case StreamMode::Raw:
            return L"vc";
        case StreamMode::Framed:
            return L"sa";
    }
    return L"auto";
}

std::optional<std::uint32_t> ParseIndex(std::wstring_view digits)
{
    std::uint64_t number = 0;
    for (const wchar_t digit : digits) {
        if (digit < L'0' || digit > L'9')
            return std::nullopt;
        number = number * 10 + static_cast<std::uint64_t>(digit - L'0');
        if (number > std::numeric_limits<std::uint32_t>::max())
            return std::nullopt;
    }
    if (digits.empty())
        return std::nullopt;
    return static_cast<std::uint32_t>(number);
}
