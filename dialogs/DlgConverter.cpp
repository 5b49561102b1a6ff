#include "dialogs/DlgConverter.h"

#include <functional>

#include "app/ErrorBox.h"
#include "app/resource.h"
#include "base/Format.h"
#include "base/Text.h"

namespace {

constexpr ULONGLONG kMillisecondsBetweenDrawings = 40;

void AppendCache(const CComboBox& list, const std::wstring& text, CacheIndex cache, CacheIndex selected)
{
    const auto item = static_cast<WPARAM>(list.SendPointer(CB_ADDSTRING, 0, text.c_str()));
    list.Send(CB_SETITEMDATA, item, static_cast<LPARAM>(cache));
    if (cache == selected)
        list.SetCurrent(static_cast<int>(item));
}

std::optional<CacheIndex> SelectedCache(const CComboBox& list)
{
    const LRESULT slot = list.Send(CB_GETITEMDATA, static_cast<WPARAM>(list.Current()));
    if (slot < 0 || slot >= static_cast<LRESULT>(kCacheCount))
        return std::nullopt;
    return kAllCaches[static_cast<std::size_t>(slot)];
}

}  // namespace

CDlgConverter::CDlgConverter(const ConverterDialogParts& parts) : CDialog(IDD_CONVERTER), m_oParts(parts)
{
    CMessageMap& messages = Messages();
    messages.OnCommand(IDC_CONVERTER_GO, [this] { Go(); });
    messages.OnCommand(IDCANCEL, [this] { OnClose(); });
    m_oWorker.Bind(messages);
}

bool CDlgConverter::OnInit()
{
    m_oWorker.Attach(*this);
    m_oSource.Attach(Child(IDC_CONVERTER_SOURCE).Handle());
    m_oTarget.Attach(Child(IDC_CONVERTER_TARGET).Handle());
    m_oBar.Attach(Child(IDC_CONVERTER_PROGRESS).Handle());
    m_oStatus = Child(IDC_CONVERTER_STATUS);
    m_sReady = m_oStatus.Text();
    const bool isLoaded = m_oParts.editor != nullptr;
    // The second target, whatever the source is.
    FillLists({.source = isLoaded ? m_oParts.editor->database.PrimaryCache().value_or(CacheIndex::Dxt)
                                  : CacheIndex::Dxt,
               .target = CacheIndex::Etc1});
    EnableLists(isLoaded);
    Child(IDC_CONVERTER_GO).Enable(isLoaded);
    Child(isLoaded ? IDC_CONVERTER_SOURCE : IDCANCEL).Focus();
    return false;
}

void CDlgConverter::OnException()
{
    EnableLists(!m_bBusy && m_oParts.editor != nullptr);
    ShowCurrentException(m_oParts.prompt);
}

// ---- The lists ----

void CDlgConverter::FillLists(const ConversionRequest& selected) const
{
    m_oSource.Clear();
    m_oTarget.Clear();
    for (const CacheIndex cache : kAllCaches) {
        const std::wstring name = ToUpperAscii(CacheInfix(cache));
        const bool isLoaded = m_oParts.editor != nullptr && m_oParts.editor->database.IsOpen(cache);
        if (isLoaded)
            AppendCache(m_oSource, name, cache, selected.source);
        AppendCache(m_oTarget, isLoaded ? Format(String(IDS_CONVERTER_REBUILD), name) : name, cache,
                    selected.target);
    }
}

std::optional<ConversionRequest> CDlgConverter::ReadLists() const
{
    const auto source = SelectedCache(m_oSource);
    const auto target = SelectedCache(m_oTarget);
    if (!source || !target)
        return std::nullopt;
    return ConversionRequest{*source, *target};
}

void CDlgConverter::EnableLists(bool enabled) const
{
    m_oSource.Enable(enabled);
    m_oTarget.Enable(enabled);
}

// ---- The work ----

void CDlgConverter::SayPleaseWait()
{
    m_oParts.prompt.Show(
        {.text = String(IDS_PLEASE_WAIT), .caption = String(IDS_PROGRAM), .icon = PromptIcon::Information});
}

void CDlgConverter::OnClose()
{
    if (m_bBusy)
        SayPleaseWait();
    else
        End(IDCANCEL);
}

void CDlgConverter::Go()
{
    if (m_bBusy) {
        SayPleaseWait();
        return;
    }
    const auto request = ReadLists();
    if (m_oParts.editor == nullptr || !request)
        return;
    m_nStarted = ::GetTickCount64();
    // The keyboard must not stay in a control that is disabled.
    Child(IDC_CONVERTER_GO).Focus();
    EnableLists(false);
    const ToolEditor& editor = *m_oParts.editor;
    m_pConverter = std::make_unique<CConverter>(
        ConverterParts{editor.database, editor.plugins, editor.settings, m_oParts.prompt, *this},
        ConverterOptions{.onOwner = [this](const auto& step) { m_oWorker.RunOnWindow(step); }});
    switch (m_pConverter->Check(*request)) {
        case ConversionCheck::Ready:
            Start(*request);
            break;
        case ConversionCheck::Refused:
            EnableLists(true);
            break;
        case ConversionCheck::NotConfirmed:
            // Deliberate: the lists stay disabled. ConverterDialog.LeavesTheListsDisabledAfterNo pins it.
            break;
    }
}

void CDlgConverter::Start(const ConversionRequest& request)
{
    m_oCounts = {};
    m_nLastDrawn = 0;
    m_oBar.Enable(true);
    m_bBusy = true;
    // Its steps wait until this function has returned to the message loop.
    m_oWorker.Start([this, request] { m_oCounts = m_pConverter->Run(request); },
                    [this](const std::exception_ptr& failure) { OnDone(failure); });
}

void CDlgConverter::Report(std::uint32_t current, std::uint32_t total, const std::wstring& text)
{
    const ULONGLONG now = ::GetTickCount64();
    if (now - m_nLastDrawn < kMillisecondsBetweenDrawings && current < total)
        return;
    m_nLastDrawn = now;
    m_oBar.Set(current, total);
    if (text.empty())
        m_oStatus.SetText(Format(String(IDS_CONVERTER_COUNT), current, total));
    else
        m_oStatus.SetText(text == CConverter::kPreparing ? String(IDS_CONVERTER_PREPARING) : text);
    ::UpdateWindow(m_oBar.Handle());
    ::UpdateWindow(m_oStatus.Handle());
}

void CDlgConverter::OnDone(const std::exception_ptr& failure)
{
    m_bBusy = false;
    m_pConverter.reset();
    const auto request = ReadLists();
    if (request)
        FillLists(*request);
    EnableLists(true);
    if (failure)
        ShowEnd(m_sReady);
    else
        ShowEnd(Format(String(IDS_CONVERTER_DONE),
                       static_cast<double>(static_cast<float>(::GetTickCount64() - m_nStarted) / 1000)));
    m_oParts.editor->host.Refresh();
    if (failure)
        std::rethrow_exception(failure);
    if (m_oCounts.failed != 0)
        m_oParts.prompt.Show({.text = ConversionFailureText(m_oCounts),
                              .caption = String(IDS_PROGRAM),
                              .icon = PromptIcon::Warning});
}

void CDlgConverter::ShowEnd(const std::wstring& status) const
{
    m_oStatus.SetText(status);
    m_oBar.Enable(false);
}
