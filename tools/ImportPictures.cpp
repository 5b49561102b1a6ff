#include "tools/ImportPictures.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <string>
#include <utility>

#include "base/Text.h"
#include "image/Hash.h"
#include "image/ImageFile.h"
#include "tools/PicturesAhead.h"

namespace {

constexpr std::wstring_view kForAll = L"Yes for all?\n\nChoose 'No' if you want decide ";
constexpr std::wstring_view kContinue = L"\nContinue?";

std::wstring TextureNameOf(const std::filesystem::path& file)
{
    const std::wstring name = FromPath(file.filename());
    return name.substr(0, name.rfind(L'.'));
}

/// A single file needs no thread of its own.
unsigned ThreadsToStart(unsigned jobs, std::size_t files)
{
    const auto threads = static_cast<unsigned>(std::min<std::size_t>(ThreadsFor(jobs), files));
    return threads > 1 ? threads : 0;
}

/// What one run remembers from file to file.
class CImportRun {
public:
    struct Surroundings {
        CTextureDatabase& database;
        const CPluginTable& plugins;
        const ISettings& settings;
        IPrompt& prompt;
        const ImportOptions& options;
    };

    CImportRun(const Surroundings& around, const std::vector<std::filesystem::path>& files,
               const ImportRequest& request, ClashAnswer clash)
        : m_rDatabase(around.database),
          m_rPlugins(around.plugins),
          m_rSettings(around.settings),
          m_rPrompt(around.prompt),
          m_rOptions(around.options),
          m_oRequest(request),
          m_eClash(clash),
          m_oGame(around.prompt),
          m_oStoringMany(around.database),
          m_nThreads(ThreadsToStart(around.options.jobs, files.size())),
          m_oAhead(
              files, m_nThreads, [this](const std::filesystem::path& file) { return OutlookFor(file); },
              m_oKnown)
    {
        if (m_nThreads != 0)
            m_oKnown.AddAll(m_rDatabase);
    }

    /// The next file in order. False when the run is to end.
    bool ImportFile(const std::filesystem::path& file)
    {
        m_oAhead.Next();
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
    // What will be asked about and decided in its turn is guessed here: a picture that will probably be
    // refused or skipped is not worth the work.
    std::optional<PictureOutlook> OutlookFor(const std::filesystem::path& file)
    {
        PictureOutlook outlook;
        outlook.name = TextureNameOf(file);
        CheckTextureName(outlook.name);
        if (m_eClash == ClashAnswer::Skip && m_rDatabase.FindByName(outlook.name, false))
            return std::nullopt;
        const auto game = m_oGame.WithoutAsking(m_rDatabase);
        const ImportTarget target =
            TargetByRules(m_rDatabase, m_rSettings, outlook.name, m_oRequest, game.value_or(StreamMode::Raw));
        outlook.rules = ReadPreparationRules(m_rDatabase, m_rPlugins, m_rSettings, target);
        outlook.needsFileHash = m_rSettings.IsOn(L"global", L"hash_png", false);
        outlook.findsDuplicates = m_rSettings.IsOn(L"global", L"enable_img_hash", true);
        return outlook;
    }

    bool ImportOrSkip(const std::filesystem::path& file)
    {
        std::wstring name = TextureNameOf(file);
        CheckTextureName(name);
        const auto existing = m_rDatabase.FindByName(name, false);
        if (existing) {
            switch (DecideClash(name)) {
                case ClashChoice::Skip:
                    ++m_oCounts.skipped;
                    return true;
                case ClashChoice::Stop:
                    return false;
                case ClashChoice::Replace:
                case ClashChoice::KeepBoth:
                    break;
            }
            name = NameInPlaceOf(m_rDatabase, *existing, name);
        }
        return Import(file, name, existing);
    }

    ClashChoice DecideClash(const std::wstring& name)
    {
        if (const auto choice = ChoiceWithoutAsking(m_eClash))
            return *choice;
        PromptBox question = ClashQuestion(name);
        question.caption = L"Error";
        question.icon = PromptIcon::Warning;
        const PromptAnswer answer = m_rPrompt.Show(question);
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
        PictureAhead ahead = m_oAhead.Take(m_rOptions.whileWaiting);
        const auto picture = ahead.picture ? std::move(ahead.picture) : LoadImageFile(file);
        if (!picture)
            throw CError(std::wstring(kUnknownImportError));
        const auto game = m_oGame.For(m_rDatabase);
        if (!game)
            return false;
        ImportRequest request = m_oRequest;
        request.replaced = replaced;
        request.pngHash = 0;
        if (m_rSettings.IsOn(L"global", L"hash_png", false))
            request.pngHash = ahead.fileHash ? *ahead.fileHash : HashFile(file);
        PreparedTexture prepared = PrepareByRules(m_rDatabase, m_rPlugins, m_rSettings, *picture, name,
                                                  request, *game, std::move(ahead.texture));
        // A replaced texture is gone even when the new one cannot be stored.
        m_bChanged = m_bChanged || replaced.has_value();
        const StoreResult result = StoreImported(m_rDatabase, std::move(prepared), request);
        m_bChanged = true;
        CountImported(m_oCounts, result);
        if (result == StoreResult::Stored && m_nThreads != 0)
            m_oKnown.Add(m_rDatabase.Entry(m_rDatabase.EntryCount() - 1));
        return true;
    }

    bool AskToGoOn(const std::wstring& error)
    {
        ++m_oCounts.failed;
        const std::wstring text = error.empty() ? std::wstring(kUnknownImportError) : error;
        return m_rPrompt.Show({.text = text + std::wstring(kContinue),
                               .caption = L"Error",
                               .icon = PromptIcon::Warning,
                               .buttons = PromptButtons::YesNo}) == PromptAnswer::Yes;
    }

    CTextureDatabase& m_rDatabase;
    const CPluginTable& m_rPlugins;
    const ISettings& m_rSettings;
    IPrompt& m_rPrompt;
    const ImportOptions& m_rOptions;
    const ImportRequest& m_oRequest;
    ClashAnswer m_eClash;
    CGameChoice m_oGame;
    ImportCounts m_oCounts;
    bool m_bChanged = false;
    CStoringMany m_oStoringMany;
    CKnownPictures m_oKnown;
    unsigned m_nThreads;
    CPicturesAhead m_oAhead;  // last: its threads end before what they use
};

}  // namespace

CPictureImporter::CPictureImporter(CTextureDatabase& database, const CPluginTable& plugins,
                                   const ISettings& settings, IPrompt& prompt, IProgress& progress,
                                   ImportOptions options)
    : m_rDatabase(database),
      m_rPlugins(plugins),
      m_rSettings(settings),
      m_rPrompt(prompt),
      m_rProgress(progress),
      m_oOptions(std::move(options))
{
}

ImportCounts CPictureImporter::Run(const std::vector<std::filesystem::path>& files,
                                   const ImportRequest& request, ClashAnswer clash)
{
    CImportRun run({m_rDatabase, m_rPlugins, m_rSettings, m_rPrompt, m_oOptions}, files, request, clash);
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
