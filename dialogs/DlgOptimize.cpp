#include "dialogs/DlgOptimize.h"

#include <array>

#include "app/ErrorBox.h"
#include "app/resource.h"
#include "base/Format.h"
#include "base/Text.h"
#include "ui/ComboBox.h"

namespace {

constexpr std::array<UINT, 4> kAlgorithmTexts = {IDS_OPTIMIZE_MD5, IDS_OPTIMIZE_MD5_DECODED,
                                                 IDS_OPTIMIZE_DIFFERENCE, IDS_OPTIMIZE_DIFFERENCE_DECODED};

std::wstring ProgressText(std::uint32_t current, std::uint32_t total, const std::wstring& text)
{
    return total == 0 ? text : Format(L"%d / %d : %s", current, total, text);
}

/// While it exists, work runs; afterwards the editor shows what became of the database, whatever ended it.
class CWorkUnderWay {
public:
    CWorkUnderWay(bool& isBusy, IEditorHost& host) : m_rBusy(isBusy), m_rHost(host) { m_rBusy = true; }
    ~CWorkUnderWay()
    {
        m_rBusy = false;
        m_rHost.Refresh();
    }
    CWorkUnderWay(const CWorkUnderWay&) = delete;
    CWorkUnderWay& operator=(const CWorkUnderWay&) = delete;

private:
    bool& m_rBusy;
    IEditorHost& m_rHost;
};

}  // namespace

CDlgOptimize::CDlgOptimize(const OptimizeParts& parts) : CDialog(IDD_OPTIMIZE), m_oParts(parts)
{
    Messages().OnCommand(IDOK, [this] { Optimize(); });
    Messages().OnCommand(IDCANCEL, [this] { OnClose(); });
}

bool CDlgOptimize::OnInit()
{
    m_oProgress.Attach(*this, IDC_OPTIMIZE_PROGRESS, IDC_OPTIMIZE_STATUS);
    m_oProgress.SetFormat(ProgressText);
    FillCaches();
    FillAlgorithms();
    Child(IDC_OPTIMIZE_VALUE).SetText(std::to_wstring(OptimizeOptions::kDefaultValue));
    ::CheckRadioButton(Handle(), IDC_OPTIMIZE_ALIAS_NAMES, IDC_OPTIMIZE_ALIAS_RASTERS,
                       IDC_OPTIMIZE_ALIAS_NAMES);
    const bool isLoaded = m_oParts.editor != nullptr;
    Child(IDC_OPTIMIZE_CACHE).Enable(isLoaded);
    Child(IDOK).Enable(isLoaded);
    Child(IDC_OPTIMIZE_ALIAS_NAMES).Focus();
    return false;
}

void CDlgOptimize::OnException()
{
    ShowCurrentException(m_oParts.prompt);
}

void CDlgOptimize::FillCaches() const
{
    if (m_oParts.editor == nullptr)
        return;
    CComboBox list;
    list.Attach(Child(IDC_OPTIMIZE_CACHE).Handle());
    for (const CacheIndex cache : kAllCaches) {
        if (!m_oParts.editor->database.IsOpen(cache))
            continue;
        const LRESULT item = list.SendPointer(CB_ADDSTRING, 0, ToUpperAscii(CacheInfix(cache)).c_str());
        list.Send(CB_SETITEMDATA, static_cast<WPARAM>(item), static_cast<LPARAM>(cache));
    }
    list.SetCurrent(0);
}

void CDlgOptimize::FillAlgorithms() const
{
    CComboBox list;
    list.Attach(Child(IDC_OPTIMIZE_ALGORITHM).Handle());
    for (const UINT text : kAlgorithmTexts)
        list.Append(String(text));
    list.SetCurrent(0);
}

void CDlgOptimize::OnClose()
{
    // Work stops at the next texture; the dialog stays, to show how it ended.
    if (m_bBusy)
        m_oProgress.Cancel();
    else
        End(IDCANCEL);
}

void CDlgOptimize::Optimize()
{
    if (m_bBusy || m_oParts.editor == nullptr)
        return;
    const OptimizeOptions options = ReadOptions();
    const ToolEditor& editor = *m_oParts.editor;
    const CBusyControls onlyClose(*this, m_oProgress, {IDCANCEL});
    const CWorkUnderWay work(m_bBusy, editor.host);
    const OptimizeCounts counts = COptimizer(editor.database, editor.host, m_oProgress).Run(options);
    m_oProgress.Report(0, 0, ResultText(options, counts));
}

OptimizeOptions CDlgOptimize::ReadOptions() const
{
    OptimizeOptions options;
    if (::IsDlgButtonChecked(Handle(), IDC_OPTIMIZE_DELETE_NAMES) == BST_CHECKED)
        options.mode = OptimizeMode::DeleteNames;
    else if (::IsDlgButtonChecked(Handle(), IDC_OPTIMIZE_ALIAS_RASTERS) == BST_CHECKED)
        options.mode = OptimizeMode::AliasRasters;
    const CWindow caches = Child(IDC_OPTIMIZE_CACHE);
    const LRESULT item = caches.Send(CB_GETCURSEL);
    if (const LRESULT slot = caches.Send(CB_GETITEMDATA, static_cast<WPARAM>(item)); slot != CB_ERR)
        options.cache = static_cast<CacheIndex>(slot);
    const LRESULT algorithm = Child(IDC_OPTIMIZE_ALGORITHM).Send(CB_GETCURSEL);
    options.comparison = static_cast<RasterComparison>(algorithm);
    options.value = ParseComparisonValue(Child(IDC_OPTIMIZE_VALUE).Text());
    return options;
}

std::wstring CDlgOptimize::ResultText(const OptimizeOptions& options, const OptimizeCounts& counts) const
{
    if (counts.wasStopped)
        return String(IDS_OPTIMIZE_STOPPED);
    const bool isCounted = options.mode == OptimizeMode::AliasRasters &&
                           (options.comparison == RasterComparison::Difference ||
                            options.comparison == RasterComparison::DifferenceDecoded);
    return isCounted ? Format(String(IDS_OPTIMIZE_DUPLICATES), counts.aliased) : String(IDS_OPTIMIZE_DONE);
}
