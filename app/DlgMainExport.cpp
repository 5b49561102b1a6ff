#include "app/DlgMain.h"
#include "app/resource.h"
#include "base/Format.h"
#include "base/Text.h"
#include "tools/ExportPictures.h"

void CDlgMain::ExportSelection()
{
    if (!HasDatabaseOrSaysSo())
        return;
    const TreeSelection selection = m_oTree.Selection();
    if (selection.textures.empty()) {
        // Ctrl+E means what the menu of a category says.
        ExportFocusedCategory();
        return;
    }
    if (selection.textures.size() == 1) {
        ExportOne(selection.textures.front());
        return;
    }
    if (const auto folder = AskExportFolder())
        ExportToFolder(selection.textures, *folder);
}

void CDlgMain::ExportOne(std::uint32_t index)
{
    const auto file =
        m_oParts.dialogs.SaveFile({.filter = String(IDS_IMAGE_FILTER),
                                   .defaultExtension = L"png",
                                   .folder = m_oParts.settings.ReadString(L"paths", L"last_export_dir"),
                                   .proposedName = SafeFileName(m_pDatabase->Entry(index).name)});
    if (!file)
        return;
    m_oParts.settings.WriteString(L"paths", L"last_export_dir", file->parent_path().native());
    const std::wstring extension = file->extension().native();
    const auto format = ImageFormatFromExtension(extension.empty() ? extension : extension.substr(1));
    if (!format) {
        m_oParts.prompt.ShowError(String(IDS_UNSUPPORTED_FORMAT));
        return;
    }
    ExportTexture(*m_pDatabase, m_oParts.plugins, index, {.cache = m_eCache, .format = *format}, *file);
    Status(String(IDS_DONE));
}

std::optional<std::filesystem::path> CDlgMain::AskExportFolder()
{
    const std::wstring initial = m_oParts.settings.ReadString(L"paths", L"last_export_dir");
    const auto folder = m_oParts.dialogs.BrowseFolder(String(IDS_EXPORT_FOLDER), initial);
    if (!folder)
        return std::nullopt;
    m_oParts.settings.WriteString(L"paths", L"last_export_dir", *folder);
    return std::filesystem::path(*folder);
}

void CDlgMain::ExportAll(std::optional<std::uint32_t> category, const std::wstring& caption)
{
    if (!HasDatabaseOrSaysSo())
        return;
    const PromptAnswer answer = m_oParts.prompt.Show({.text = String(IDS_EXPORT_ALIASES),
                                                      .caption = caption,
                                                      .icon = PromptIcon::Question,
                                                      .buttons = PromptButtons::YesNoCancel});
    if (answer == PromptAnswer::Cancel)
        return;
    const auto folder = AskExportFolder();
    if (!folder)
        return;
    ExportToFolder(EntriesToExport(*m_pDatabase, category, answer == PromptAnswer::Yes), *folder);
}

void CDlgMain::ExportFocusedCategory()
{
    if (!HasDatabaseOrSaysSo())
        return;
    const auto category = m_oTree.Selection().category;
    if (category)
        ExportAll(category, Format(String(IDS_EXPORT_CATEGORY), m_pDatabase->CategoryName(*category)));
}

void CDlgMain::ExportToFolder(const std::vector<std::uint32_t>& entries, const std::filesystem::path& folder)
{
    const ExportCounts counts =
        ExportTextures(*m_pDatabase, m_oParts.plugins, entries, {.cache = m_eCache}, folder, m_oProgress);
    m_oProgress.Hide();
    if (const std::wstring failure = ExportFailureText(counts); !failure.empty())
        m_oParts.prompt.ShowError(failure);
    else if (!counts.wasStopped && counts.notSaved == 0)
        Status(String(IDS_DONE));
}
