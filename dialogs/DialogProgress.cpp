#include "dialogs/DialogProgress.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {
constexpr ULONGLONG kMillisecondsBetweenDrawings = 40;
constexpr int kMostMessagesAtOnce = 256;

/// Texts, frames and bars only show; gray they would be harder to read.
bool IsForInput(const CWindow& control)
{
    std::array<wchar_t, 64> name{};
    ::GetClassNameW(control.Handle(), name.data(), static_cast<int>(name.size()));
    const std::wstring_view kind = name.data();
    if (kind == WC_STATICW || kind == PROGRESS_CLASSW)
        return false;
    const LONG_PTR style = ::GetWindowLongPtrW(control.Handle(), GWL_STYLE);
    return kind != WC_BUTTONW || (style & BS_TYPEMASK) != BS_GROUPBOX;
}

}  // namespace

void CDialogProgress::Attach(const CWindow& dialog, int barId, int statusId)
{
    m_oDialog = dialog;
    m_oBar.Attach(dialog.Child(barId).Handle());
    m_oStatus = dialog.Child(statusId);
}

void CDialogProgress::Reset()
{
    m_bCancelled = false;
    m_nLastServed = 0;
}

void CDialogProgress::Draw(std::uint32_t current, std::uint32_t total, const std::wstring& text) const
{
    m_oBar.Set(current, total);
    m_oStatus.SetText(m_fnFormat ? m_fnFormat(current, total, text) : text);
}

void CDialogProgress::Report(std::uint32_t current, std::uint32_t total, const std::wstring& text)
{
    const ULONGLONG now = ::GetTickCount64();
    if (now - m_nLastServed < kMillisecondsBetweenDrawings && current < total)
        return;
    m_nLastServed = now;
    Draw(current, total, text);
    ServeMessages();
}

void CDialogProgress::ServeMessages()
{
    if (m_bServing)
        return;
    m_bServing = true;
    MSG message{};
    // Bounded: a window that never validates itself would keep the work waiting.
    for (int served = 0; served < kMostMessagesAtOnce; ++served) {
        if (!::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
            break;
        if (message.message == WM_QUIT) {
            // The loop of the dialog is the one that ends by it.
            m_bCancelled = true;
            ::PostQuitMessage(static_cast<int>(message.wParam));
            break;
        }
        if (m_oDialog.Exists() && ::IsDialogMessageW(m_oDialog.Handle(), &message))
            continue;
        ::TranslateMessage(&message);
        ::DispatchMessageW(&message);
    }
    m_bServing = false;
}

CBusyControls::CBusyControls(const CWindow& dialog, CDialogProgress& progress,
                             std::initializer_list<int> inUse)
    : m_hFocus(::GetFocus())
{
    progress.Reset();
    for (HWND child = ::GetWindow(dialog.Handle(), GW_CHILD); child != nullptr;
         child = ::GetWindow(child, GW_HWNDNEXT)) {
        const CWindow control(child);
        const bool staysInUse = std::ranges::find(inUse, ::GetDlgCtrlID(child)) != inUse.end();
        if (!staysInUse && control.IsEnabled() && IsForInput(control))
            m_aDisabled.push_back(control);
    }
    // The keyboard goes to what stays in use, before the control that has it is disabled.
    if (inUse.size() != 0)
        dialog.Child(*inUse.begin()).Focus();
    for (const CWindow& control : m_aDisabled)
        control.Enable(false);
}

CBusyControls::~CBusyControls()
{
    for (const CWindow& control : m_aDisabled)
        if (control.Exists())
            control.Enable(true);
    if (::IsWindow(m_hFocus) && ::IsWindowEnabled(m_hFocus))
        ::SetFocus(m_hFocus);
}
