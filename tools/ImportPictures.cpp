#include "tools/ImportPictures.h"

#include <exception>
#include <optional>
#include <string>
#include <utility>

#include "base/Format.h"
#include "base/Text.h"
#include "image/Hash.h"
#include "image/ImageFile.h"

namespace {

constexpr std::wstring_view kClash = L"Texture '%s' already exists. Would you like to replace it?";
constexpr std::wstring_view kForAll = L"Yes for all?\n\nChoose 'No' if you want decide ";
constexpr std::wstring_view kContinue = L"\nContinue?";
constexpr std::wstring_view kUnknownError = L"Unknown import error";

std::wstring TextureNameOf(const std::filesystem::path& file)
{
    const std::wstring name = FromPath(file.filename());
    return name.substr(0, name.rfind(L'.'));
}

/// What one run remembers from file to file.
class CImportRun {
public:
    CImportRun(CTextureDatabase& database, const CPluginTable& plugins, const ISettings& settings,
               IPrompt& prompt, const ImportRequest& request, ClashAnswer clash)
        : m_rDatabase(database),
          m_rPlugins(plugins),
          m_rSettings(settings),
          m_rPrompt(prompt),
          m_oRequest(request),
          m_eClash(clash),
          m_oGame(prompt)
    {
    }

    /// False when the run is to end.
    bool ImportFile(const std::filesystem::path& file)
    {
        try {
            return ImportOrSkip(file);
        } catch (const CError& error) {
            return AskToGoOn(error.Text());
        } catch (const std::exception&) {
            return AskToGoOn({});
        }
    }

    void SaveWhatChanged()
    {
        if (m_bChanged)
            m_rDatabase.Save();
    }

    const ImportCounts& Counts() const { return m_oCounts; }

private:
    enum class ClashChoice { Replace, Skip, Stop };

    bool ImportOrSkip(const std::filesystem::path& file)
    {
        std::wstring name = TextureNameOf(file);
        CheckTextureName(name);
        const auto existing = m_rDatabase.FindByName(name, false);
        if (existing) {
            switch (DecideClash(name)) {
                case ClashChoice::Replace:
                    break;
                case ClashChoice::Skip:
                    ++m_oCounts.skipped;
                    return true;
                case ClashChoice::Stop:
                    return false;
            }
            // Aliases find their texture by its exact name, so while there are any its spelling stays.
            if (m_rDatabase.CountAliasesOf(*existing) != 0)
                name = m_rDatabase.Entry(*existing).name;
        }
        return Import(file, name, existing);
    }

    ClashChoice DecideClash(const std::wstring& name)
    {
        if (m_eClash != ClashAnswer::Ask)
            return m_eClash == ClashAnswer::Replace ? ClashChoice::Replace : ClashChoice::Skip;
        const PromptAnswer answer = m_rPrompt.Show({.text = Format(kClash, name),
                                                    .caption = L"Error",
                                                    .icon = PromptIcon::Warning,
                                                    .buttons = PromptButtons::YesNoCancel});
        if (answer == PromptAnswer::No)
            return ClashChoice::Skip;
        if (answer != PromptAnswer::Yes)
            return ClashChoice::Stop;
        const PromptAnswer forAll = m_rPrompt.Show({.text = std::wstring(kForAll),
                                                    .caption = L"Mavrel",
                                                    .icon = PromptIcon::Question,
                                                    .buttons = PromptButtons::YesNo});
        if (forAll == PromptAnswer::Yes)
            m_eClash = ClashAnswer::Replace;
        return ClashChoice::Replace;
    }

    // Everything that can be refused comes before the old texture goes.
    bool Import(const std::filesystem::path& file, const std::wstring& name,
                std::optional<std::uint32_t> replaced)
    {
        const auto picture = LoadImageFile(file);
        if (!picture)
            throw CError(std::wstring(kUnknownError));
        const auto game = m_oGame.For(m_rDatabase);
        if (!game)
            return false;
        ImportRequest request = m_oRequest;
        request.replaced = replaced;
        request.pngHash = m_rSettings.IsOn(L"global", L"hash_png", false) ? HashFile(file) : 0;
        PreparedTexture prepared =
            PrepareByRules(m_rDatabase, m_rPlugins, m_rSettings, *picture, name, request, *game);
        if (replaced) {
            m_bChanged = true;
            // The texture as its own replacement: its aliases stay, and find the new one by its name.
            if (!m_rDatabase.DeleteEntry(*replaced, *replaced))
                throw CError(std::wstring(kUnknownError));
        }
        m_bChanged = true;
        const StoreResult result = StoreByRules(m_rDatabase, std::move(prepared), request);
        const std::uint32_t index = m_rDatabase.EntryCount() - 1;
        m_rDatabase.ChangeProperty(index, Property::Png, request.pngHash);
        m_rDatabase.ChangeProperty(index, Property::Cat, request.category);
        ++(result == StoreResult::MadeAlias ? m_oCounts.aliased : m_oCounts.imported);
        return true;
    }

    bool AskToGoOn(const std::wstring& error)
    {
        ++m_oCounts.failed;
        const std::wstring text = error.empty() ? std::wstring(kUnknownError) : error;
        return m_rPrompt.Show({.text = text + std::wstring(kContinue),
                               .caption = L"Error",
                               .icon = PromptIcon::Warning,
                               .buttons = PromptButtons::YesNo}) == PromptAnswer::Yes;
    }

    CTextureDatabase& m_rDatabase;
    const CPluginTable& m_rPlugins;
    const ISettings& m_rSettings;
    IPrompt& m_rPrompt;
    const ImportRequest& m_oRequest;
    ClashAnswer m_eClash;
    CGameChoice m_oGame;
    ImportCounts m_oCounts;
    bool m_bChanged = false;
};

}  // namespace

CPictureImporter::CPictureImporter(CTextureDatabase& database, const CPluginTable& plugins,
                                   const ISettings& settings, IPrompt& prompt, IProgress& progress)
    : m_rDatabase(database),
      m_rPlugins(plugins),
      m_rSettings(settings),
      m_rPrompt(prompt),
      m_rProgress(progress)
{
}

ImportCounts CPictureImporter::Run(const std::vector<std::filesystem::path>& files,
                                   const ImportRequest& request, ClashAnswer clash)
{
    CImportRun run(m_rDatabase, m_rPlugins, m_rSettings, m_rPrompt, request, clash);
    const auto total = static_cast<std::uint32_t>(files.size());
    bool wasStopped = false;
    for (std::uint32_t done = 0; done < total && !wasStopped; ++done) {
        m_rProgress.Report(done, total, FromPath(files[done].filename()));
        wasStopped = m_rProgress.Cancelled() || !run.ImportFile(files[done]);
    }
    run.SaveWhatChanged();
    if (!wasStopped)
        m_rProgress.Report(total, total, {});
    ImportCounts counts = run.Counts();
    counts.wasStopped = wasStopped;
    return counts;
}
