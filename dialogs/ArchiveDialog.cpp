#include "dialogs/ArchiveDialog.h"

#include <utility>

#include "app/ErrorBox.h"
#include "app/resource.h"
#include "base/Format.h"
#include "ui/Menu.h"

CArchiveDialog::CArchiveDialog(int templateId, const ArchiveDialogParts& parts, const Controls& controls)
    : CDialog(templateId), m_oParts(parts), m_oControls(controls), m_oTranslator(parts.resources)
{
    BindMessages();
}

void CArchiveDialog::BindMessages()
{
    CMessageMap& messages = Messages();
    messages.OnCommand(IDCANCEL, [this] { OnCancel(); });
    messages.OnMessage(WM_CLOSE, [this](WPARAM, LPARAM) {
        OnClose();
        return 0;
    });
    m_oAnchors.Bind(messages, [this] {
        m_oColumns.Rescale();
        m_oAnchors.Layout();
    });
    messages.OnNotify(static_cast<UINT_PTR>(m_oControls.list), static_cast<UINT>(LVN_GETDISPINFOW),
                      [this](NMHDR& header) {
                          OnCellNeeded(reinterpret_cast<NMLVDISPINFOW&>(header).item);  // NOLINT: as defined
                          return 0;
                      });
    messages.OnSystemCommand(ID_IMG_EXPORT_CURRENT, [this] {
        if (!m_bWorking)
            ExportCurrent();
    });
}

void CArchiveDialog::OnIdleCommand(UINT id, std::function<void()> handler)
{
    Messages().OnCommand(id, [this, run = std::move(handler)] {
        if (!m_bWorking)
            run();
    });
}

bool CArchiveDialog::OnInit()
{
    m_oAnchors.Attach(*this);
    m_oAnchors.Add(m_oControls.listLabel, {.right = true});
    m_oAnchors.Add(m_oControls.list, {.right = true, .bottom = true});
    for (const int id : {m_oControls.progress, m_oControls.status})
        m_oAnchors.Add(id, {.top = false, .right = true, .bottom = true});
    m_oAnchors.Add(IDCANCEL, {.left = false, .top = false, .right = true, .bottom = true});
    m_oProgress.Attach(*this, m_oControls.progress, m_oControls.status);
    m_oProgress.SetFormat([](std::uint32_t current, std::uint32_t total, const std::wstring& text) {
        return text.empty() ? Format(L"%d / %d", current, total) : text;
    });
    m_oList.Attach(Child(m_oControls.list).Handle());
    m_oList.UseRows(LVS_EX_CHECKBOXES | LVS_EX_GRIDLINES);
    m_oColumns.Attach(*this, m_oList, true);
    AddSystemCommand();
    return true;
}

void CArchiveDialog::AddSystemCommand() const
{
    const CMenu menu(::GetSystemMenu(Handle(), FALSE));
    menu.AppendSeparator();
    menu.Append(ID_IMG_EXPORT_CURRENT, String(IDS_IMG_EXPORT_CURRENT));
}

void CArchiveDialog::OnException()
{
    ShowCurrentException(m_oParts.prompt);
}

void CArchiveDialog::OnCancel()
{
    if (m_bWorking)
        m_oProgress.Cancel();
    else
        End(IDCANCEL);
}

void CArchiveDialog::OnClose()
{
    m_bCloses = m_bWorking;
    OnCancel();
}

bool CArchiveDialog::Work(const std::function<void()>& work)
{
    if (m_bWorking)
        return false;
    const CWindow button = Child(IDCANCEL);
    const std::wstring close = button.Text();
    bool isDone = false;
    {
        const CBusyControls onlyStop(*this, m_oProgress, {IDCANCEL});
        button.SetText(String(IDS_IMG_STOP));
        m_bWorking = true;
        try {
            work();
            isDone = !m_oProgress.Cancelled();
        } catch (...) {
            // The work has ended, but the dialog goes on: its controls and its rows need their state back.
            OnException();
        }
        m_bWorking = false;
        button.SetText(close);
    }
    // Its scroll bars were drawn while it was disabled, and enabling does not draw them again.
    ::RedrawWindow(m_oList.Handle(), nullptr, nullptr, RDW_FRAME | RDW_INVALIDATE);
    // Not at once: the caller still shows what the work has done.
    if (m_bCloses)
        ::PostMessageW(Handle(), WM_CLOSE, 0, 0);
    return isDone;
}

void CArchiveDialog::ShowRows(std::size_t count)
{
    const CNoRedraw quiet(m_oList);
    m_oList.DeleteAll();
    m_oList.AppendOnDemand(static_cast<int>(count));
}

void CArchiveDialog::OnCellNeeded(LVITEMW& item) const
{
    if ((item.mask & LVIF_TEXT) == 0 || item.cchTextMax <= 0)
        return;
    ::lstrcpynW(item.pszText, CellText(item.iItem, item.iSubItem).c_str(), item.cchTextMax);
}

std::vector<int> CArchiveDialog::CheckedRows() const
{
    std::vector<int> rows;
    for (int row = 0, count = m_oList.Count(); row < count; ++row)
        if (m_oList.IsChecked(row))
            rows.push_back(row);
    return rows;
}

FileRequest CArchiveDialog::ArchiveRequest(bool several) const
{
    return {.filter = String(IDS_IMG_FILTER), .defaultExtension = L"img", .several = several};
}
