#include "dialogs/DlgIMGTool.h"

#include <utility>

#include "app/resource.h"
#include "base/Format.h"
#include "rw/Messages.h"
#include "tools/ImportArchive.h"

namespace {

/// While it exists, a control is disabled.
class CDisabledWhile {
public:
    explicit CDisabledWhile(const CWindow& control) : m_oControl(control), m_hFocus(::GetFocus())
    {
        m_oControl.Enable(false);
    }
    ~CDisabledWhile()
    {
        m_oControl.Enable(true);
        if (m_hFocus == m_oControl.Handle())
            m_oControl.Focus();
    }
    CDisabledWhile(const CDisabledWhile&) = delete;
    CDisabledWhile& operator=(const CDisabledWhile&) = delete;

private:
    CWindow m_oControl;
    HWND m_hFocus;
};

}  // namespace

CDlgIMGTool::CDlgIMGTool(const ArchiveDialogParts& parts, std::filesystem::path archive)
    : CDlgIMGTool(IDD_IMG_TOOL, parts, CacheIndex::Dxt, ArchiveRows::Everything)
{
    m_sFirstArchive = std::move(archive);
}

CDlgIMGTool::CDlgIMGTool(int templateId, const ArchiveDialogParts& parts, CacheIndex target, ArchiveRows rows)
    : CArchiveDialog(templateId, parts, {IDC_IMG_LIST_LABEL, IDC_IMG_LIST, IDC_IMG_PROGRESS, IDC_IMG_STATUS}),
      m_eTarget(target),
      m_eRows(rows),
      m_oArchive(parts.files)
{
    BindCommands();
}

void CDlgIMGTool::BindCommands()
{
    OnIdleCommand(IDC_IMG_OPEN, [this] { AskAndOpen(); });
    OnIdleCommand(IDC_IMG_IMPORT_SELECTED, [this] { ImportSelected(); });
    OnIdleCommand(IDC_IMG_IMPORT_CHECKED, [this] { ImportChecked(); });
    OnIdleCommand(IDC_IMG_CHECK_ALL, [this] { CheckAll(); });
    // Deliberate: an archive is only read, so these two do nothing.
    // IMGToolDialog.HasButtonsThatDoNothing pins it.
    for (const UINT id : {IDC_IMG_ADD, IDC_IMG_DELETE})
        OnIdleCommand(id, [] {});
}

bool CDlgIMGTool::OnInit()
{
    CArchiveDialog::OnInit();
    Columns().Add(String(IDS_IMG_COLUMN_FILE), 220);
    Columns().Add(String(IDS_IMG_COLUMN_SIZE), 90);
    Columns().Add(String(IDS_IMG_COLUMN_OFFSET), 90);
    if (!m_sFirstArchive.empty())
        OpenArchive(m_sFirstArchive);
    return true;
}

std::wstring CDlgIMGTool::CellText(int row, int column) const
{
    if (row < 0 || static_cast<std::size_t>(row) >= m_aEntries.size())
        return {};
    const std::uint32_t entry = m_aEntries[static_cast<std::size_t>(row)];
    switch (column) {
        case 0:
            return m_oArchive.EntryName(entry);
        case 1:
            return EntrySizeText(m_oArchive.EntrySize(entry));
        default:
            return EntryOffsetText(m_oArchive.EntryOffset(entry));
    }
}

void CDlgIMGTool::AskAndOpen()
{
    if (const auto file = Parts().dialogs.OpenFile(ArchiveRequest(false)))
        OpenArchive(*file);
}

void CDlgIMGTool::OpenArchive(const std::filesystem::path& file)
{
    const bool isListed = Work([this, &file] {
        ShowRows(0);
        m_aEntries.clear();
        // An archive that cannot be opened has no entries, and the list stays empty.
        static_cast<void>(m_oArchive.Open(file));
        m_aEntries = ListArchive(m_oArchive, m_eRows, Progress());
        ShowRows(m_aEntries.size());
    });
    Progress().ShowText(String(IDS_IMG_FINISHED));
    if (Parts().editor != nullptr)
        for (const int id : {IDC_IMG_IMPORT_SELECTED, IDC_IMG_IMPORT_CHECKED})
            Child(id).Enable(true);
    if (isListed)
        OnListed();
}

std::optional<std::uint32_t> CDlgIMGTool::SelectedEntry() const
{
    const int row = List().FirstSelected();
    if (row < 0 || static_cast<std::size_t>(row) >= m_aEntries.size())
        return std::nullopt;
    return m_aEntries[static_cast<std::size_t>(row)];
}

void CDlgIMGTool::ImportSelected()
{
    const auto entry = SelectedEntry();
    if (!entry || Parts().editor == nullptr || m_oArchive.File() == nullptr)
        return;
    if (!m_oArchive.IsReachable(*entry)) {
        Parts().prompt.ShowError(RW::Message::kReadingFailed);
        return;
    }
    const CDisabledWhile once(Child(IDC_IMG_IMPORT_SELECTED));
    Parts().dialogs.ImportTXD(
        *Parts().editor,
        DictionaryInArchive(*m_oArchive.File(), m_oArchive.EntryOffset(*entry), m_oArchive.EntryName(*entry)),
        0);
}

void CDlgIMGTool::ImportChecked()
{
    std::vector<std::uint32_t> entries;
    for (const int row : CheckedRows())
        entries.push_back(m_aEntries[static_cast<std::size_t>(row)]);
    if (entries.empty() || Parts().editor == nullptr)
        return;
    const ToolEditor& editor = *Parts().editor;
    std::optional<ImportCounts> counts;
    Work([&] {
        CArchiveImporter importer(
            {editor.database, editor.plugins, editor.settings, editor.host, Parts().prompt, Progress(),
             Parts().failures},
            {.targetCache = m_eTarget, .whileWaiting = [this] { Progress().ServeMessages(); }});
        counts = importer.Run(m_oArchive, entries);
    });
    if (counts)
        Progress().ShowText(Format(String(IDS_IMG_IMPORTED), counts->imported + counts->aliased,
                                   counts->skipped, counts->failed));
}

void CDlgIMGTool::CheckAll() const
{
    const bool isEveryRowChecked = CheckedRows().size() == m_aEntries.size();
    List().SetChecked(-1, !isEveryRowChecked);
}

void CDlgIMGTool::ExportCurrent()
{
    const auto entry = SelectedEntry();
    if (!entry)
        return;
    const std::wstring name = m_oArchive.EntryName(*entry);
    // Deliberate: the default extension is that of a picture, whatever the entry is; its own is what the
    // filter offers. IMGToolDialog.OffersTheEntrysNameAndExtensionForExport pins it. There is no question
    // about an existing file, because that file is not touched.
    const auto file = Parts().dialogs.SaveFile({.filter = Translated(EntryFileFilter(name)),
                                                .defaultExtension = L"png",
                                                .proposedName = EntryFileName(name),
                                                .asksToReplace = false});
    // Deliberate: nothing is said when the file cannot be written.
    if (file)
        static_cast<void>(ExportEntry(m_oArchive, *entry, *file, Parts().files));
}
