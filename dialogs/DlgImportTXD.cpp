#include "dialogs/DlgImportTXD.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "app/ErrorBox.h"
#include "app/resource.h"
#include "base/Format.h"
#include "image/ImageFile.h"
#include "tools/ExportDictionary.h"
#include "tools/ImportDictionary.h"
#include "ui/Menu.h"

namespace {

// Lengths in 1/96 inch.
constexpr int kTextureWidth = 160;
constexpr int kDimensionsWidth = 90;
constexpr int kInfoWidth = 90;

constexpr SectionTreeControls kTreeControls = {.caption = IDC_TXD_TREE_LABEL,
                                               .tree = IDC_TXD_TREE,
                                               .version = IDC_TXD_VERSION,
                                               .toggle = IDC_TXD_SHOW_TREE,
                                               .listCaption = IDC_TXD_LIST_LABEL,
                                               .list = IDC_TXD_LIST};

/// While it exists, a flag is set.
class CFlagWhile {
public:
    explicit CFlagWhile(bool& flag) : m_rFlag(flag) { m_rFlag = true; }
    ~CFlagWhile() { m_rFlag = false; }
    CFlagWhile(const CFlagWhile&) = delete;
    CFlagWhile& operator=(const CFlagWhile&) = delete;

private:
    bool& m_rFlag;
};

/// Shows the database anew when it goes.
class CRefreshAfterwards {
public:
    explicit CRefreshAfterwards(IEditorHost& host) : m_rHost(host) {}
    ~CRefreshAfterwards() { m_rHost.Refresh(); }
    CRefreshAfterwards(const CRefreshAfterwards&) = delete;
    CRefreshAfterwards& operator=(const CRefreshAfterwards&) = delete;

private:
    IEditorHost& m_rHost;
};

}  // namespace

CDlgImportTXD::CDlgImportTXD(const ImportTXDParts& parts, DictionarySource source, std::uint32_t category)
    : CDialog(IDD_IMPORT_TXD),
      m_oParts(parts),
      m_oSource(std::move(source)),
      m_nCategory(category),
      m_oHelper(parts.editor.plugins, parts.failures, parts.files)
{
    BindMessages();
}

void CDlgImportTXD::Run(HWND owner)
{
    DoModal(m_oParts.resources.Current(), owner);
}

void CDlgImportTXD::BindMessages()
{
    CMessageMap& messages = Messages();
    messages.OnCommand(IDOK, [this] { Import(); });
    messages.OnCommand(IDCANCEL, [this] { OnCancel(); });
    messages.OnCommand(IDC_TXD_CHECK_ALL, [this] { CheckAll(); });
    messages.OnCommand(IDC_TXD_SHOW_TREE, [this] { m_oTree.Toggle(); });
    messages.OnSystemCommand(ID_TXD_EXPORT_CURRENT, [this] { ExportCurrent(); });
    messages.OnSystemCommand(ID_TXD_EXPORT_ALL, [this] { ExportAll(); });
    m_oAnchors.Bind(messages, [this] {
        m_oColumns.Rescale();
        m_oTree.Layout();
    });
}

bool CDlgImportTXD::OnInit()
{
    AttachControls();
    try {
        OpenDictionary(m_oHelper, m_oSource);
        SetText(Format(Text(), m_oSource.title));
        m_oTree.Fill(*m_oHelper.Dictionary());
        m_oTree.ShowVersion(m_oHelper.Version());
        AddRows();
    } catch (const std::exception&) {
        m_oHelper.CloseDictionary();
        ShowCurrentException(m_oParts.prompt);
        End(IDCANCEL);
        return false;
    }
    m_oColumns.Fit();
    m_oTree.Layout();
    AddSystemCommands();
    m_oList.Focus();
    return false;
}

void CDlgImportTXD::OnException()
{
    ShowCurrentException(m_oParts.prompt);
}

void CDlgImportTXD::AttachControls()
{
    m_oAnchors.Attach(*this);
    m_oAnchors.Add(IDC_TXD_LIST_LABEL, {.right = true});
    m_oAnchors.Add(IDC_TXD_LIST, {.right = true, .bottom = true});
    m_oAnchors.Add(IDC_TXD_VERSION, {.top = false, .bottom = true});
    m_oAnchors.Add(IDC_TXD_COUNTER, {.left = false, .top = false, .right = true, .bottom = true});
    m_oAnchors.Add(IDC_TXD_PROGRESS, {.top = false, .right = true, .bottom = true});
    for (const int id : {IDC_TXD_CHECK_ALL, IDC_TXD_SHOW_TREE})
        m_oAnchors.Add(id, {.top = false, .bottom = true});
    for (const int id : {IDOK, IDCANCEL})
        m_oAnchors.Add(id, {.left = false, .top = false, .right = true, .bottom = true});
    m_oTree.Attach(*this, kTreeControls, m_oAnchors);
    m_oProgress.Attach(*this, IDC_TXD_PROGRESS, IDC_TXD_COUNTER);
    m_oProgress.SetFormat([](std::uint32_t current, std::uint32_t total, const std::wstring&) {
        return CounterText(current, total);
    });
    m_oBar.Attach(Child(IDC_TXD_PROGRESS).Handle());
    m_oList.Attach(Child(IDC_TXD_LIST).Handle());
    m_oList.UseRows(LVS_EX_CHECKBOXES | LVS_EX_GRIDLINES);
    m_oColumns.Attach(*this, m_oList, true);
    m_oColumns.Add(String(IDS_COLUMN_TEXTURE), kTextureWidth);
    m_oColumns.Add(String(IDS_TXD_COLUMN_DIMENSIONS), kDimensionsWidth);
    m_oColumns.Add(String(IDS_TXD_COLUMN_INFO), kInfoWidth);
}

void CDlgImportTXD::AddRows()
{
    const std::vector<DictionaryTexture> textures = m_oHelper.DescribeAll();
    const CNoRedraw quiet(m_oList);
    m_oList.Reserve(static_cast<int>(textures.size()));
    for (const DictionaryTexture& texture : textures) {
        const int row = m_oList.Append(texture.name, static_cast<LPARAM>(texture.index));
        m_oList.SetItemText(row, 1, Format(L"%d x %d", texture.width, texture.height));
        m_oList.SetItemText(row, 2, texture.formatText);
        m_oList.SetChecked(row, !m_oParts.editor.database.FindByName(texture.name, false));
    }
    if (!textures.empty())
        m_oList.Select(0);
}

void CDlgImportTXD::AddSystemCommands() const
{
    const CMenu menu(::GetSystemMenu(Handle(), FALSE));
    menu.AppendSeparator();
    menu.Append(ID_TXD_EXPORT_CURRENT, String(IDS_TXD_EXPORT_CURRENT));
    menu.Append(ID_TXD_EXPORT_ALL, String(IDS_TXD_EXPORT_ALL));
    for (const UINT id : {ID_TXD_EXPORT_CURRENT, ID_TXD_EXPORT_ALL})
        menu.Enable(id, m_oList.Count() != 0);
}

void CDlgImportTXD::OnCancel()
{
    // A running import or export stops between two textures; the dialog stays, to show how far it came.
    if (m_bBusy)
        m_oProgress.Cancel();
    else
        End(IDCANCEL);
}

void CDlgImportTXD::CheckAll() const
{
    m_oList.SetChecked(-1, true);
}

std::vector<std::uint32_t> CDlgImportTXD::CheckedTextures() const
{
    std::vector<std::uint32_t> textures;
    for (int row = 0; row < m_oList.Count(); ++row)
        if (m_oList.IsChecked(row))
            textures.push_back(static_cast<std::uint32_t>(m_oList.Data(row)));
    return textures;
}

// ---- Import ----

void CDlgImportTXD::Import()
{
    if (m_bBusy)
        return;
    const std::vector<std::uint32_t> textures = CheckedTextures();
    const auto total = static_cast<std::uint32_t>(textures.size());
    m_oProgress.ShowText(CounterText(0, total));
    m_oBar.Set(0, total);
    if (total == 0) {
        ShowInformation(IDS_TXD_NOTHING);
        return;
    }
    const ImportCounts counts = ImportTextures(textures);
    if (counts.imported + counts.aliased != total)
        return;
    ShowInformation(IDS_TXD_ALL_IMPORTED);
    End(IDOK);
}

ImportCounts CDlgImportTXD::ImportTextures(const std::vector<std::uint32_t>& textures)
{
    const ToolEditor& editor = m_oParts.editor;
    // The editor shows what was imported, whatever ended the run.
    const CRefreshAfterwards refresh(editor.host);
    const CBusyControls onlyCancel(*this, m_oProgress, {IDCANCEL});
    const CFlagWhile busy(m_bBusy);
    std::uint32_t imported = 0;
    const auto total = static_cast<std::uint32_t>(textures.size());
    DictionaryImportOptions options;
    // A texture that is skipped or fails does not move the bar.
    options.afterImport = [&] { m_oBar.Set(++imported, total); };
    options.whileWaiting = [this] { m_oProgress.ServeMessages(); };
    CDictionaryImporter importer(editor.database, editor.plugins, editor.settings, m_oParts.prompt, *this,
                                 std::move(options));
    ImportRequest request;
    request.category = m_nCategory;
    return importer.Run(m_oHelper, textures, request);
}

// The texture at hand counts already.
void CDlgImportTXD::Report(std::uint32_t current, std::uint32_t total, const std::wstring&)
{
    m_oProgress.ShowText(CounterText(std::min(current + 1, total), total));
    m_oProgress.ServeMessages();
}

void CDlgImportTXD::ShowInformation(UINT text) const
{
    m_oParts.prompt.Show(
        {.text = String(text), .caption = String(IDS_PROGRAM), .icon = PromptIcon::Information});
}

std::wstring CDlgImportTXD::CounterText(std::uint32_t current, std::uint32_t total)
{
    return Format(L"%d / %d", current, total);
}

// ---- Export ----

void CDlgImportTXD::ExportCurrent()
{
    const int row = m_oList.FirstSelected();
    if (m_bBusy || row < 0)
        return;
    ISettings& settings = m_oParts.editor.settings;
    const auto file = m_oParts.dialogs.SaveFile({.filter = String(IDS_IMAGE_FILTER),
                                                 .defaultExtension = L"png",
                                                 .folder = settings.ReadString(L"paths", L"last_export_dir"),
                                                 .proposedName = SafeFileName(m_oList.ItemText(row, 0))});
    if (!file)
        return;
    settings.WriteString(L"paths", L"last_export_dir", file->parent_path().native());
    const std::wstring extension = file->extension().native();
    const auto format = ImageFormatFromExtension(extension.empty() ? extension : extension.substr(1));
    if (!format) {
        m_oParts.prompt.ShowError(String(IDS_UNSUPPORTED_FORMAT));
        return;
    }
    // A failed save is not reported, as everywhere.
    static_cast<void>(
        SaveImageFile(*file, m_oHelper.ToBitmap(static_cast<std::uint32_t>(m_oList.Data(row))), *format));
}

void CDlgImportTXD::ExportAll()
{
    if (m_bBusy || m_oList.Count() == 0)
        return;
    ISettings& settings = m_oParts.editor.settings;
    const auto folder = m_oParts.dialogs.BrowseFolder(String(IDS_EXPORT_FOLDER),
                                                      settings.ReadString(L"paths", L"last_export_dir"));
    if (!folder)
        return;
    settings.WriteString(L"paths", L"last_export_dir", *folder);
    const ExportCounts counts = ExportTextures(*folder);
    if (const std::wstring failure = ExportFailureText(counts); !failure.empty())
        m_oParts.prompt.ShowError(failure);
}

ExportCounts CDlgImportTXD::ExportTextures(const std::filesystem::path& folder)
{
    const CBusyControls onlyCancel(*this, m_oProgress, {IDCANCEL});
    const CFlagWhile busy(m_bBusy);
    return ExportDictionary(m_oHelper, AllTextures(m_oHelper), folder, ImageFormat::Png, L"png", m_oProgress);
}
