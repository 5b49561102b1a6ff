#include "app/DlgMain.h"
#include "app/resource.h"

void CDlgMain::BindToolCommands()
{
    CMessageMap& messages = Messages();
    messages.OnCommand(ID_IMPORT_TXD, [this] { AskAndImportTXD(); });
    messages.OnCommand(ID_CHECK_DFF, [this] { AskAndCheckDFF(); });
    messages.OnCommand(ID_IMG_TOOL, [this] { ShowIMGTool({}); });
    messages.OnCommand(ID_IMPORT_IMG, [this] { ImportIMG(); });
    messages.OnCommand(ID_IMG_SYNCHRONIZER, [this] { SyncIMG(); });
    messages.OnCommand(ID_CACHE_OPTIMIZER, [this] { OptimizeCache(); });
    messages.OnCommand(ID_CACHE_CONVERTER, [this] { ConvertCache(); });
    messages.OnCommand(ID_RADAR_EDITOR, [this] { EditRadarMap(); });
}

// ---- Texture dictionaries ----

void CDlgMain::AskAndImportTXD()
{
    if (!HasDatabaseOrSaysSo())
        return;
    // Deliberate: the folder itself is the proposed name. One that ends with a backslash, the root of a
    // drive, would be refused by the system's dialog.
    const std::wstring folder = m_oParts.settings.ReadString(L"paths", L"last_txd");
    const auto file =
        m_oParts.dialogs.OpenFile({.filter = String(IDS_TXD_FILTER),
                                   .defaultExtension = L"txd",
                                   .folder = folder,
                                   .proposedName = folder.ends_with(L'\\') ? std::wstring() : folder});
    if (!file)
        return;
    m_oParts.settings.WriteString(L"paths", L"last_txd", file->parent_path().native());
    ImportTXD(*file);
}

void CDlgMain::ImportTXD(const std::filesystem::path& dictionary)
{
    CWindowEditorHost host(*this);
    m_oParts.dialogs.ImportTXD({*m_pDatabase, m_oParts.plugins, m_oParts.settings, host},
                               DictionaryFile(dictionary), CategoryForImport());
}

// ---- Models ----

void CDlgMain::AskAndCheckDFF()
{
    const auto file =
        m_oParts.dialogs.OpenFile({.filter = String(IDS_DFF_FILTER), .defaultExtension = L"dff"});
    if (file)
        m_oParts.dialogs.CheckDFF(*file, m_pDatabase.get());
}

// ---- IMG archives ----

void CDlgMain::ShowIMGTool(const std::filesystem::path& archive)
{
    CWindowEditorHost host(*this);
    if (!m_pDatabase) {
        m_oParts.dialogs.ShowIMGTool(nullptr, archive);
        return;
    }
    const ToolEditor editor = {*m_pDatabase, m_oParts.plugins, m_oParts.settings, host};
    m_oParts.dialogs.ShowIMGTool(&editor, archive);
}

void CDlgMain::ImportIMG()
{
    if (!HasDatabaseOrSaysSo())
        return;
    CWindowEditorHost host(*this);
    m_oParts.dialogs.ImportIMG({*m_pDatabase, m_oParts.plugins, m_oParts.settings, host}, m_eCache);
}

void CDlgMain::SyncIMG()
{
    if (!HasDatabaseOrSaysSo())
        return;
    CWindowEditorHost host(*this);
    m_oParts.dialogs.SyncIMG({*m_pDatabase, m_oParts.plugins, m_oParts.settings, host});
}

// ---- Duplicates ----

// Without a database the dialog opens too, with nothing to choose.
void CDlgMain::OptimizeCache()
{
    CWindowEditorHost host(*this);
    if (!m_pDatabase) {
        m_oParts.dialogs.OptimizeCache(nullptr);
        return;
    }
    const ToolEditor editor = {*m_pDatabase, m_oParts.plugins, m_oParts.settings, host};
    m_oParts.dialogs.OptimizeCache(&editor);
}

// ---- Conversion ----

// As above.
void CDlgMain::ConvertCache()
{
    CWindowEditorHost host(*this);
    if (!m_pDatabase) {
        m_oParts.dialogs.ConvertCache(nullptr);
        return;
    }
    const ToolEditor editor = {*m_pDatabase, m_oParts.plugins, m_oParts.settings, host};
    m_oParts.dialogs.ConvertCache(&editor);
}

// ---- The radar map ----

// Deliberate: also without a database, when there is only to be said that there is no map.
void CDlgMain::EditRadarMap()
{
    CWindowEditorHost host(*this);
    if (!m_pDatabase) {
        m_oParts.dialogs.EditRadarMap(nullptr, m_eCache);
        return;
    }
    const ToolEditor editor = {*m_pDatabase, m_oParts.plugins, m_oParts.settings, host};
    m_oParts.dialogs.EditRadarMap(&editor, m_eCache);
}
