#include "dialogs/DlgRadarEditor.h"

#include <memory>
#include <utility>

#include "app/ErrorBox.h"
#include "app/resource.h"
#include "base/Format.h"
#include "base/Text.h"
#include "tools/RadarMapImport.h"
#include "tools/RadarMapOptimizer.h"

namespace {

// Lengths in 1/96 inch.
constexpr int kTileWidth = 100;
constexpr int kInfoWidth = 150;
constexpr int kAliasWidth = 100;

// What the preview is told that the whole map is called.
constexpr const wchar_t* kMapName = L"radar_fuck";

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

}  // namespace

CDlgRadarEditor::CDlgRadarEditor(const RadarEditorParts& parts) : CDialog(IDD_RADAR_EDITOR), m_oParts(parts)
{
    BindMessages();
}

void CDlgRadarEditor::BindMessages()
{
    CMessageMap& messages = Messages();
    m_oWorker.Bind(messages);
    messages.OnCommand(IDCANCEL, [this] { OnClose(); });
    messages.OnCommand(IDC_RADAR_EXPORT, [this] { Export(); });
    messages.OnCommand(IDC_RADAR_IMPORT, [this] { Import(); });
    messages.OnCommand(IDC_RADAR_SHOW, [this] { ShowMap(); });
    messages.OnCommand(IDC_RADAR_OPTIMIZE, [this] { Optimize(); });
    messages.OnNotify(IDC_RADAR_TILES, LVN_ITEMCHANGED, [this](NMHDR& header) {
        OnItemChanged(reinterpret_cast<const NMLISTVIEW&>(header));  // NOLINT: what the code carries
        return 0;
    });
    messages.OnMessage(kFillMessage, [this](WPARAM, LPARAM) {
        Fill();
        return 0;
    });
    m_oAnchors.Bind(messages, [this] {
        m_oColumns.Rescale();
        m_oAnchors.Layout();
    });
}

bool CDlgRadarEditor::OnInit()
{
    AttachControls();
    m_oWorker.Attach(*this);
    // In sight first: filling may show a box, which belongs in front of the dialog.
    ::PostMessageW(Handle(), kFillMessage, 0, 0);
    m_oList.Focus();
    return false;
}

void CDlgRadarEditor::AttachControls()
{
    m_oAnchors.Attach(*this);
    for (const int id : {IDC_RADAR_TILES_GROUP, IDC_RADAR_TILES})
        m_oAnchors.Add(id, {.right = true, .bottom = true});
    for (const int id : {IDC_RADAR_FILES_GROUP, IDC_RADAR_PROGRESS, IDC_RADAR_STATUS})
        m_oAnchors.Add(id, {.top = false, .right = true, .bottom = true});
    for (const int id : {IDC_RADAR_EXPORT, IDC_RADAR_IMPORT})
        m_oAnchors.Add(id, {.top = false, .bottom = true});
    for (const int id : {IDC_RADAR_SHOW, IDC_RADAR_OPTIMIZE})
        m_oAnchors.Add(id, {.left = false, .top = false, .right = true, .bottom = true});
    m_oProgress.Attach(*this, IDC_RADAR_PROGRESS, IDC_RADAR_STATUS);
    m_oBar.Attach(Child(IDC_RADAR_PROGRESS).Handle());
    m_oList.Attach(Child(IDC_RADAR_TILES).Handle());
    m_oList.UseRows(LVS_EX_GRIDLINES);
    m_oColumns.Attach(*this, m_oList, false);
    m_oColumns.Add(String(IDS_RADAR_COLUMN_TILE), kTileWidth);
    m_oColumns.Add(String(IDS_RADAR_COLUMN_INFO), kInfoWidth);
    m_oColumns.Add(String(IDS_COLUMN_ALIAS_OF), kAliasWidth);
}

void CDlgRadarEditor::OnException()
{
    ShowCurrentException(m_oParts.prompt);
}

void CDlgRadarEditor::OnClose()
{
    if (!IsBusy())
        End(IDCANCEL);
}

bool CDlgRadarEditor::IsBusy() const
{
    if (m_bBusy)
        m_oParts.prompt.Show({.text = String(IDS_PLEASE_WAIT),
                              .caption = String(IDS_PROGRAM),
                              .icon = PromptIcon::Information});
    return m_bBusy;
}

// ---- The list ----

void CDlgRadarEditor::Fill()
{
    const CFlagWhile filling(m_bFilling);
    m_oList.DeleteAll();
    const std::uint32_t count = m_oParts.editor != nullptr ? CountRadarTiles(m_oParts.editor->database) : 0;
    for (const int id : {IDC_RADAR_EXPORT, IDC_RADAR_SHOW})
        Child(id).Enable(count != 0);
    if (count == 0) {
        m_oProgress.ShowText(String(IDS_ERROR));
        SayThereIsNoMap();
        return;
    }
    const CNoRedraw quiet(m_oList);
    m_oList.Reserve(static_cast<int>(count));
    for (std::uint32_t number = 0; number < count; ++number) {
        const RadarTile tile = DescribeRadarTile(m_oParts.editor->database, number, m_oParts.cache);
        ShowProgress(number, count, tile.name);
        const int row = m_oList.Append(tile.name, static_cast<LPARAM>(tile.index));
        m_oList.SetItemText(row, 1, tile.Info());
        m_oList.SetItemText(row, 2, tile.aliasOf);
    }
    ShowProgress(0, count, RadarTileName(0));
}

void CDlgRadarEditor::OnItemChanged(const NMLISTVIEW& change) const
{
    // An import replaces the entries that the rows stand for.
    const bool isMeant = !m_bFilling && !m_bImporting && change.iItem >= 0;
    if (isMeant && (change.uChanged & LVIF_STATE) != 0)
        m_oParts.editor->host.Select(static_cast<std::uint32_t>(m_oList.Data(change.iItem)));
}

void CDlgRadarEditor::SayThereIsNoMap() const
{
    m_oParts.prompt.Show(
        {.text = std::wstring(kNoRadarMap), .caption = String(IDS_PROGRAM), .icon = PromptIcon::Information});
}

// ---- Progress ----

void CDlgRadarEditor::ShowProgress(std::uint32_t current, std::uint32_t total, const std::wstring& text) const
{
    m_oBar.Set(current, total);
    m_oProgress.ShowText(text);
}

void CDlgRadarEditor::Report(std::uint32_t current, std::uint32_t total, const std::wstring& text)
{
    m_oWorker.RunOnWindow([&] { m_oProgress.Report(current, total, text); });
}

void CDlgRadarEditor::StartWork(std::function<void()> work, std::function<void(bool)> ended)
{
    m_bBusy = true;
    m_oProgress.Reset();
    m_oWorker.Start(std::move(work), [this, ended = std::move(ended)](const std::exception_ptr& error) {
        m_bBusy = false;
        ended(error == nullptr);
        if (error != nullptr)
            std::rethrow_exception(error);
    });
}

// ---- The whole map ----

std::wstring CDlgRadarEditor::FileName() const
{
    return L"radar_" + ToUpperAscii(CacheInfix(m_oParts.cache));
}

std::optional<RadarMapPlan> CDlgRadarEditor::PlanOrSayThereIsNone() const
{
    auto plan =
        m_oParts.editor != nullptr ? PlanRadarMap(m_oParts.editor->database, m_oParts.cache) : std::nullopt;
    if (!plan)
        SayThereIsNoMap();
    return plan;
}

void CDlgRadarEditor::Export()
{
    if (IsBusy())
        return;
    const auto file = m_oParts.dialogs.SaveFile(
        {.filter = String(IDS_IMAGE_FILTER), .defaultExtension = L"png", .proposedName = FileName()});
    if (!file)
        return;
    const std::wstring extension = FromPath(file->extension());
    const auto format = ImageFormatFromExtension(extension.empty() ? extension : extension.substr(1));
    if (!format) {
        m_oParts.prompt.ShowError(String(IDS_UNSUPPORTED_FORMAT));
        return;
    }
    const CFlagWhile busy(m_bBusy);
    const CBusyControls controls(*this, m_oProgress, {});
    ExportTo(*file, *format);
}

void CDlgRadarEditor::ExportTo(const std::filesystem::path& file, ImageFormat format)
{
    const auto plan = PlanOrSayThereIsNone();
    if (!plan)
        return;
    const auto map = JoinRadarMap(*plan, m_oParts.editor->host, *this);
    if (!map)
        return;
    if (!SaveImageFile(file, *map, format)) {
        m_oParts.prompt.ShowError(kRadarMapNotSaved);
        return;
    }
    ShowProgress(1, 1, String(IDS_DONE));
}

void CDlgRadarEditor::ShowMap()
{
    if (IsBusy())
        return;
    auto plan = PlanOrSayThereIsNone();
    if (!plan)
        return;
    StartWork(
        [this, plan = std::move(*plan)] {
            if (const auto map = JoinRadarMap(plan, m_oParts.editor->host, *this))
                m_oParts.editor->host.Show(kMapName, &*map);
        },
        [this](bool worked) {
            if (worked)
                ShowProgress(1, 1, String(IDS_DONE));
        });
}

// ---- Import ----

void CDlgRadarEditor::Import()
{
    if (IsBusy())
        return;
    if (m_oParts.editor == nullptr) {
        m_oParts.prompt.ShowError(String(IDS_LOAD_CACHE_FIRST));
        return;
    }
    const auto file = m_oParts.dialogs.OpenFile(
        {.filter = String(IDS_IMPORT_FILTER), .defaultExtension = L"png", .proposedName = FileName()});
    if (!file)
        return;
    m_bImporting = true;
    m_oList.Focus();
    for (const int id : {IDC_RADAR_IMPORT, IDC_RADAR_EXPORT})
        Child(id).Enable(false);
    const auto counts = std::make_shared<ImportCounts>();
    StartWork([this, file = *file, counts] { ImportFile(file, *counts); },
              [this, counts](bool worked) {
                  m_bImporting = false;
                  Child(IDC_RADAR_IMPORT).Enable(true);
                  Child(IDC_RADAR_EXPORT).Enable(m_oList.Count() != 0);
                  if (worked && counts->imported + counts->aliased == 0)
                      return;
                  m_oParts.editor->host.Refresh();
                  Fill();
              });
}

void CDlgRadarEditor::ImportFile(const std::filesystem::path& file, ImportCounts& counts)
{
    const auto picture = LoadImageFile(file);
    if (!picture)
        return;  // Deliberate: nothing is said about a file that is no picture.
    const ToolEditor& editor = *m_oParts.editor;
    counts = ImportRadarMap({.database = editor.database,
                             .plugins = editor.plugins,
                             .settings = editor.settings,
                             .host = editor.host,
                             .prompt = m_oParts.prompt,
                             .cache = m_oParts.cache,
                             .onOwner = [this](const auto& step) { m_oWorker.RunOnWindow(step); }},
                            *picture, std::nullopt, *this);
}

// ---- Optimizing ----

void CDlgRadarEditor::Optimize()
{
    if (IsBusy())
        return;
    if (m_oParts.editor != nullptr) {
        const CFlagWhile busy(m_bBusy);
        const CBusyControls controls(*this, m_oProgress, {});
        OptimizeRadarMap(m_oParts.editor->database, m_oParts.editor->host, m_oParts.cache, *this);
        m_oParts.editor->host.Refresh();
    }
    Fill();
}
