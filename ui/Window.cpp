#include "ui/Window.h"

std::wstring CWindow::Text() const
{
    std::wstring text(static_cast<std::size_t>(::GetWindowTextLengthW(m_hWindow)) + 1, L'\0');
    const int length = ::GetWindowTextW(m_hWindow, text.data(), static_cast<int>(text.size()));
    text.resize(static_cast<std::size_t>(length));
    return text;
}

void CWindow::Move(const RECT& place) const
{
    ::SetWindowPos(m_hWindow, nullptr, place.left, place.top, place.right - place.left,
                   place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
}

RECT CWindow::ClientRect() const
{
    RECT rect{};
    ::GetClientRect(m_hWindow, &rect);
    return rect;
}

RECT CWindow::WindowRect() const
{
    RECT rect{};
    ::GetWindowRect(m_hWindow, &rect);
    return rect;
}

RECT CWindow::WorkArea() const
{
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    ::GetMonitorInfoW(::MonitorFromWindow(m_hWindow, MONITOR_DEFAULTTONEAREST), &monitor);
    return monitor.rcWork;
}

CNoRedraw::CNoRedraw(const CWindow& window) : m_oWindow(window)
{
    m_oWindow.Send(WM_SETREDRAW, FALSE);
}

CNoRedraw::~CNoRedraw()
{
    m_oWindow.Send(WM_SETREDRAW, TRUE);
    ::InvalidateRect(m_oWindow.Handle(), nullptr, TRUE);
}
