#include "app/ProgressPane.h"

#include "base/Format.h"

namespace {
constexpr int kTextPane = 0;
constexpr int kPane = 1;
constexpr ULONGLONG kMillisecondsBetweenDrawings = 40;
constexpr int kMostPaintsAtOnce = 32;
}  // namespace

void CProgressPane::Create(const CStatusBar& status, int id)
{
    m_oStatus = status;
    m_oBar.Create(status.Handle(), id);
    Follow();
}

void CProgressPane::Follow() const
{
    RECT place = m_oStatus.PaneRect(kPane);
    ::InflateRect(&place, -2, -2);
    m_oBar.Move(place);
}

void CProgressPane::Hide()
{
    m_bCancelled = false;
    m_oBar.Show(false);
    if (m_bRunning && m_oStatus.PaneText(kTextPane) == m_sShown)
        m_oStatus.SetPane(kTextPane, m_sBefore);
    m_bRunning = false;
}

void CProgressPane::ShowText(const std::wstring& text)
{
    m_sShown = text;
    m_oStatus.SetPane(kTextPane, text);
}

void CProgressPane::Report(std::uint32_t current, std::uint32_t total, const std::wstring& text)
{
    if (!m_bRunning) {
        m_bRunning = true;
        m_bCancelled = false;
        m_nLastDrawn = 0;
        m_sBefore = m_oStatus.PaneText(kTextPane);
        m_sShown = m_sBefore;
        m_oBar.Show(true);
    }
    const ULONGLONG now = ::GetTickCount64();
    if (now - m_nLastDrawn < kMillisecondsBetweenDrawings && current < total)
        return;
    m_nLastDrawn = now;
    m_oBar.Set(current, total);
    if (!m_sFormat.empty() && current < total)
        ShowText(Format(m_sFormat, current + 1, total, text));
    ServeWindow();
}

void CProgressPane::ServeWindow()
{
    MSG message{};
    // Bounded: a window that never validates itself would keep the work waiting.
    for (int paints = 0; paints < kMostPaintsAtOnce; ++paints) {
        if (!::PeekMessageW(&message, nullptr, WM_PAINT, WM_PAINT, PM_REMOVE))
            break;
        ::DispatchMessageW(&message);
    }
    while (::PeekMessageW(&message, nullptr, WM_KEYDOWN, WM_KEYDOWN, PM_REMOVE))
        m_bCancelled = m_bCancelled || message.wParam == VK_ESCAPE;
    // Clicks that were meant for a window at rest must not take effect when the work is done.
    while (::PeekMessageW(&message, nullptr, WM_MOUSEFIRST, WM_MOUSELAST, PM_REMOVE)) {
    }
}
