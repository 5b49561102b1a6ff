#include "tools/ImportDictionary.h"

#include <exception>
#include <optional>
#include <string>
#include <utility>

#include "base/OrderedPipeline.h"
#include "rw/Messages.h"
#include "tools/ExportDictionary.h"
#include "tools/PicturesAhead.h"

namespace {

constexpr std::uint32_t kDepthWithAlpha = 32;

/// What one run remembers from texture to texture.
class CDictionaryRun {
public:
    struct Surroundings {
        CTextureDatabase& database;
        const CPluginTable& plugins;
        const ISettings& settings;
        IPrompt& prompt;
        IProgress& progress;
        const DictionaryImportOptions& options;
        CGameChoice& game;
    };

    CDictionaryRun(const Surroundings& around, CTXDHelper& helper, const ImportRequest& request)
        : m_oAround(around),
          m_rHelper(helper),
          m_oRequest(request),
          m_oStoringMany(around.database),
          m_oAside(around.options.whileWaiting ? 1 : 0)
    {
        if (WorksAside())
            m_oKnown.AddAll(around.database);
    }

    /// Texture `done` of `total`. False when the run is to end.
    bool ImportTexture(std::uint32_t index, std::uint32_t done, std::uint32_t total)
    {
        try {
            const DictionaryTexture texture = m_rHelper.Describe(index);
            m_oAround.progress.Report(done, total, texture.name);
            return !m_oAround.progress.Cancelled() && ImportOrSkip(texture);
        } catch (const CError& error) {
            ReportFailure(error.WasShown() ? std::wstring_view() : error.Text());
        } catch (const RW::CException& error) {
            ReportFailure(error.Message());
        } catch (const std::exception&) {
            ReportFailure(kUnknownImportError);
        }
        return !m_bCannotWrite;
    }
    void SkipTexture() { ++m_oCounts.skipped; }

    void SaveWhatChanged()
    {
        if (m_bChanged)
            m_oAround.database.Save();
    }

    const ImportCounts& Counts() const { return m_oCounts; }

private:
    bool ImportOrSkip(const DictionaryTexture& texture)
    {
        if (texture.isDamaged)
            throw CError(std::wstring(RW::Message::kRecordUnreadable), true);
        CheckTextureName(texture.name);
        ImportRequest request = m_oRequest;
        request.hasAlpha = texture.hasAlpha || texture.depth == kDepthWithAlpha;
        request.storeRgba8888 = texture.depth == kDepthWithAlpha;
        request.replaced = std::nullopt;
        std::wstring name = texture.name;
        if (const auto existing = m_oAround.database.FindByName(name, false)) {
            switch (DecideClash(name)) {
                case ClashChoice::Replace:
                    request.replaced = existing;
                    name = NameInPlaceOf(m_oAround.database, *existing, name);
                    break;
                case ClashChoice::Skip:
                    ++m_oCounts.skipped;
                    return true;
                case ClashChoice::KeepBoth:
                    break;
                case ClashChoice::Stop:
                    return false;
            }
        }
        return Import(texture.index, name, request);
    }

    ClashChoice DecideClash(const std::wstring& name)
    {
        if (const auto choice = ChoiceWithoutAsking(m_oAround.options.clash))
            return *choice;
        PromptBox question = ClashQuestion(name);
        question.caption = L"Mavrel";
        question.icon = PromptIcon::Question;
        switch (m_oAround.prompt.Show(question)) {
            case PromptAnswer::Yes:
                return ClashChoice::Replace;
            case PromptAnswer::No:
                return ClashChoice::Skip;
            case PromptAnswer::Ok:
            case PromptAnswer::Cancel:
                break;
        }
        return m_oAround.options.onCancel;
    }

    // Everything that can be refused comes before the old texture goes.
    bool Import(std::uint32_t index, const std::wstring& name, const ImportRequest& request)
    {
        auto prepared = Prepare(index, name, request);
        if (!prepared)
            return false;
        m_bChanged = true;
        m_bCannotWrite = true;
        const StoreResult result = StoreImported(m_oAround.database, std::move(*prepared), request);
        CountImported(m_oCounts, result);
        m_bCannotWrite = false;
        if (WorksAside() && result == StoreResult::Stored)
            m_oKnown.Add(m_oAround.database.Entry(m_oAround.database.EntryCount() - 1));
        if (m_oAround.options.afterImport)
            m_oAround.options.afterImport();
        return true;
    }

    // A function of its own, so that the picture is gone before its records are written. Nothing when the
    // question about the game was cancelled.
    std::optional<PreparedTexture> Prepare(std::uint32_t index, const std::wstring& name,
                                           const ImportRequest& request)
    {
        const CBitmap picture = m_rHelper.ToBitmap(index);
        const auto game = m_oAround.game.For(m_oAround.database);
        if (!game)
            return std::nullopt;
        return PrepareByRules(m_oAround.database, m_oAround.plugins, m_oAround.settings, picture, name,
                              request, *game, PrepareAside(picture, name, request, *game));
    }

    /// What takes time, on the other thread.
    std::optional<EarlyTexture> PrepareAside(const CBitmap& picture, const std::wstring& name,
                                             const ImportRequest& request, StreamMode game)
    {
        if (!WorksAside())
            return std::nullopt;
        const PreparationRules rules =
            ReadPreparationRules(m_oAround.database, m_oAround.plugins, m_oAround.settings,
                                 TargetByRules(m_oAround.database, m_oAround.settings, name, request, game));
        const bool findsDuplicates = m_oAround.settings.IsOn(L"global", L"enable_img_hash", true);
        m_oAside.Give([&, this] {
            return PrepareEarly(picture, rules, [&, this](std::uint32_t imageHash, PixelSize size) {
                return findsDuplicates && m_oKnown.HasOther(imageHash, size, name);
            });
        });
        return m_oAside.Take(m_oAround.options.whileWaiting);
    }
    bool WorksAside() const { return static_cast<bool>(m_oAround.options.whileWaiting); }

    /// No text: it was shown already.
    void ReportFailure(std::wstring_view text)
    {
        ++m_oCounts.failed;
        if (!text.empty())
            m_oAround.prompt.ShowError(text);
    }

    const Surroundings m_oAround;
    CTXDHelper& m_rHelper;
    const ImportRequest& m_oRequest;
    ImportCounts m_oCounts;
    bool m_bChanged = false;
    bool m_bCannotWrite = false;
    CStoringMany m_oStoringMany;
    CKnownPictures m_oKnown;
    COrderedPipeline<EarlyTexture> m_oAside;  // last: its thread ends before what it uses
};

}  // namespace

CDictionaryImporter::CDictionaryImporter(CTextureDatabase& database, const CPluginTable& plugins,
                                         const ISettings& settings, IPrompt& prompt, IProgress& progress,
                                         DictionaryImportOptions options)
    : m_rDatabase(database),
      m_rPlugins(plugins),
      m_rSettings(settings),
      m_rPrompt(prompt),
      m_rProgress(progress),
      m_oOptions(std::move(options)),
      m_oGame(prompt)
{
}

ImportCounts CDictionaryImporter::Run(CTXDHelper& helper, const std::vector<std::uint32_t>& textures,
                                      const ImportRequest& request)
{
    CDictionaryRun run({m_rDatabase, m_rPlugins, m_rSettings, m_rPrompt, m_rProgress, m_oOptions, m_oGame},
                       helper, request);
    const std::uint32_t count = helper.Dictionary() != nullptr ? helper.Dictionary()->ReachableTextures() : 0;
    const auto total = static_cast<std::uint32_t>(textures.size());
    bool wasStopped = false;
    for (std::uint32_t done = 0; done < total && !wasStopped; ++done) {
        if (textures[done] < count)
            wasStopped = !run.ImportTexture(textures[done], done, total);
        else
            run.SkipTexture();
    }
    run.SaveWhatChanged();
    if (!wasStopped)
        m_rProgress.Report(total, total, {});
    ImportCounts counts = run.Counts();
    counts.wasStopped = wasStopped;
    return counts;
}

ImportCounts CDictionaryImporter::RunAll(CTXDHelper& helper, const ImportRequest& request)
{
    return Run(helper, AllTextures(helper), request);
}
