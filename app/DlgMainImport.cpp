#include <algorithm>
#include <array>

#include "app/DlgMain.h"
#include "app/resource.h"
#include "base/Format.h"
#include "base/Text.h"
#include "tools/FileKind.h"
#include "tools/ImportPictures.h"
#include "ui/DroppedFiles.h"

namespace {

/// What the five commands hand to the import.
struct ImportCommand {
    UINT id;
    bool hasAlpha;
    bool forcesUncompressed;
    bool storesRgba8888;
};
constexpr std::array kImportCommands = {
    ImportCommand{ID_IMPORT_ALPHA, true, false, false},
    ImportCommand{ID_IMPORT_OPAQUE, false, false, false},
    ImportCommand{ID_IMPORT_UNC_ALPHA, true, true, false},
    ImportCommand{ID_IMPORT_UNC_OPAQUE, false, true, false},
    ImportCommand{ID_IMPORT_RGBA8888, true, false, true},
};

}  // namespace

void CDlgMain::BindImportCommands()
{
    for (const ImportCommand& command : kImportCommands) {
        ImportRequest request;
        request.hasAlpha = command.hasAlpha;
        request.storeRgba8888 = command.storesRgba8888;
        if (command.forcesUncompressed)
            request.format = CacheIndex::Unc;
        Messages().OnCommand(command.id, [this, request] { AskAndImport(request); });
    }
}

std::uint32_t CDlgMain::CategoryForImport() const
{
    const TreeSelection selection = m_oTree.Selection();
    const std::uint32_t category = selection.focused
                                       ? m_pDatabase->Entry(*selection.focused).Value(Property::Cat)
                                       : selection.category.value_or(0);
    return category < m_pDatabase->Categories().size() ? category : 0;
}

void CDlgMain::AskAndImport(ImportRequest request)
{
    if (!HasDatabaseOrSaysSo())
        return;
    const auto files =
        m_oParts.dialogs.OpenFiles({.title = String(request.hasAlpha ? IDS_IMPORT_ALPHA : IDS_IMPORT_OPAQUE),
                                    .filter = String(IDS_IMPORT_FILTER),
                                    .defaultExtension = L"png",
                                    .folder = m_oParts.settings.ReadString(L"paths", L"last_import"),
                                    .several = true});
    if (files.empty())
        return;
    m_oParts.settings.WriteString(L"paths", L"last_import", files.front().parent_path().native());
    request.category = CategoryForImport();
    ImportFiles(files, request);
}

void CDlgMain::ImportFiles(const std::vector<std::filesystem::path>& files, const ImportRequest& request)
{
    const auto focused = m_oTree.Focused();
    ImportCounts counts;
    // What was imported before a failure is there, and the tree shows it.
    Attempt([&] {
        CPictureImporter importer(*m_pDatabase, m_oParts.plugins, m_oParts.settings, m_oParts.prompt,
                                  m_oProgress, {.whileWaiting = [this] { m_oProgress.ServeWindow(); }});
        counts = importer.Run(files, request);
    });
    m_oProgress.Hide();
    FillTree();
    if (counts.imported + counts.aliased != 0)
        m_oTree.SelectTexture(m_pDatabase->EntryCount() - 1);
    else if (focused && *focused < m_pDatabase->EntryCount())
        m_oTree.SelectTexture(*focused);
}

void CDlgMain::OnDropFiles(WPARAM wParam)
{
    const DroppedFiles dropped = TakeDroppedFiles(wParam);
    if (!AcceptsCommands() || dropped.files.empty())
        return;
    ::SetForegroundWindow(Handle());
    const auto isPicture = [](const auto& file) { return FileKindOf(file) == FileKind::Picture; };
    std::vector<std::filesystem::path> pictures;
    std::copy_if(dropped.files.begin(), dropped.files.end(), std::back_inserter(pictures), isPicture);
    if (!pictures.empty())
        ImportDropped(pictures, dropped.place);
    else if (FileKindOf(dropped.files.front()) == FileKind::Database)
        OpenAndSelect(dropped.files.front());
    else if (FileKindOf(dropped.files.front()) == FileKind::Dictionary)
        ImportDroppedTXD(dropped);
    else if (FileKindOf(dropped.files.front()) == FileKind::Model)
        m_oParts.dialogs.CheckDFF(dropped.files.front(), m_pDatabase.get());
    else if (FileKindOf(dropped.files.front()) == FileKind::Archive)
        ShowIMGTool(dropped.files.front());
    else
        m_oParts.prompt.ShowError(String(IDS_UNSUPPORTED_FORMAT));
}

void CDlgMain::ImportDropped(const std::vector<std::filesystem::path>& pictures, POINT place)
{
    if (!HasDatabaseOrSaysSo())
        return;
    const PromptAnswer answer = m_oParts.prompt.Show(
        {.text = Format(String(IDS_DROP_QUESTION), static_cast<std::uint32_t>(pictures.size())),
         .caption = String(IDS_DROP_CAPTION),
         .icon = PromptIcon::Question,
         .buttons = PromptButtons::YesNoCancel});
    if (answer == PromptAnswer::Cancel)
        return;
    SelectDropTarget(place);
    ImportRequest request;
    request.hasAlpha = answer == PromptAnswer::Yes;
    request.category = CategoryForImport();
    ImportFiles(pictures, request);
}

void CDlgMain::ImportDroppedTXD(const DroppedFiles& dropped)
{
    if (!HasDatabaseOrSaysSo())
        return;
    SelectDropTarget(dropped.place);
    for (const auto& file : dropped.files)
        if (FileKindOf(file) == FileKind::Dictionary)
            ImportTXD(file);
}

// Dropped on a category, or on one of its textures, files go there.
void CDlgMain::SelectDropTarget(POINT place)
{
    ::MapWindowPoints(Handle(), m_oTree.Control().Handle(), &place, 1);
    if (const HTREEITEM item = m_oTree.Control().ItemAt(place))
        m_oTree.Control().SelectOnly(item);
}
