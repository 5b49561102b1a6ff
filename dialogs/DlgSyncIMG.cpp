#include "dialogs/DlgSyncIMG.h"

#include <unordered_set>

#include "app/resource.h"

CDlgSyncIMG::CDlgSyncIMG(const ArchiveDialogParts& parts)
    : CArchiveDialog(IDD_SYNC_IMG, parts,
                     {IDC_SYNC_LIST_LABEL, IDC_SYNC_LIST, IDC_SYNC_PROGRESS, IDC_SYNC_STATUS})
{
    OnIdleCommand(IDC_SYNC_OPEN, [this] { AskAndScan(); });
    OnIdleCommand(IDC_SYNC_DELETE, [this] { AskAndDelete(); });
}

bool CDlgSyncIMG::OnInit()
{
    CArchiveDialog::OnInit();
    Columns().Add(String(IDS_COLUMN_TEXTURE), 250);
    Columns().Add(String(IDS_SYNC_COLUMN_INFO), 80);
    return true;
}

std::wstring CDlgSyncIMG::CellText(int row, int column) const
{
    if (row < 0 || static_cast<std::size_t>(row) >= m_aRows.size())
        return {};
    const Row& shown = m_aRows[static_cast<std::size_t>(row)];
    if (column == 0)
        return shown.texture.name;
    return shown.isAlias ? String(IDS_SYNC_ALIAS) : std::wstring();
}

void CDlgSyncIMG::AskAndScan()
{
    const std::vector<std::filesystem::path> archives = Parts().dialogs.OpenFiles(ArchiveRequest(true));
    if (archives.empty())
        return;
    ShowRows(0);
    m_aRows.clear();
    m_oUsed = {};
    Work([&] {
        m_oUsed = CollectUsedTextures(archives, Progress(), Parts().files);
        if (Parts().editor == nullptr)
            return;
        ListTextures();
        Progress().Report(0, 0, String(IDS_DONE));
        CheckUnused();
    });
    if (Parts().editor != nullptr)
        Child(IDC_SYNC_DELETE).Enable(true);
}

void CDlgSyncIMG::ListTextures()
{
    const CTextureDatabase& database = Parts().editor->database;
    m_aRows.clear();
    for (std::uint32_t index = 0; index < database.EntryCount(); ++index)
        m_aRows.push_back({{index, database.Entry(index).name}, database.IsAlias(index)});
    ShowRows(m_aRows.size());
}

void CDlgSyncIMG::CheckUnused()
{
    const UnusedTextures unused = FindUnusedTextures(Parts().editor->database, m_oUsed, Progress());
    const CNoRedraw quiet(List());
    for (const std::uint32_t index : unused.entries)
        List().SetChecked(static_cast<int>(index), true);
    Progress().ShowText(Translated(UnusedStatusText(unused)));
}

std::vector<CheckedTexture> CDlgSyncIMG::CheckedTextures() const
{
    std::vector<CheckedTexture> textures;
    for (const int row : CheckedRows())
        textures.push_back(m_aRows[static_cast<std::size_t>(row)].texture);
    return textures;
}

void CDlgSyncIMG::AskAndDelete()
{
    const std::vector<CheckedTexture> textures = CheckedTextures();
    if (Parts().editor == nullptr || textures.empty() ||
        Parts().prompt.Show(DeletionQuestion(textures.size(), m_oUsed)) != PromptAnswer::Yes)
        return;
    Work([&] {
        const SyncDeletion deletion = DeleteUnusedTextures(Parts().editor->database, textures, Progress());
        Progress().ShowText(Translated(DeletionStatusText(deletion)));
    });
    // Also after a failure the list and the editor show what is left. What stays may be deleted later.
    std::unordered_set<std::wstring> checked;
    for (const CheckedTexture& texture : textures)
        checked.insert(texture.name);
    ListTextures();
    for (std::size_t row = 0; row < m_aRows.size(); ++row)
        if (checked.contains(m_aRows[row].texture.name))
            List().SetChecked(static_cast<int>(row), true);
    Parts().editor->host.Refresh();
}
