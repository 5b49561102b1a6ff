#include "ui/StatusBar.h"

#include <algorithm>
#include <commctrl.h>
#include <vector>

#include "ui/Theme.h"

namespace {

/// Wine paints a pane as soon as it gets a text, which may take longer than the work that the text tells of.
/// Windows waits until the window is painted, and so does Wine while this lives.
class CPaintLater {
public:
    CPaintLater(const CWindow& bar, const RECT& pane) : m_oBar(bar), m_oPlace(pane), m_bIsNeeded(IsWine())
    {
        if (!m_bIsNeeded)
            return;
        // What was to be painted before is forgotten when drawing stops.
        RECT pending{};
        if (::GetUpdateRect(m_oBar.Handle(), &pending, FALSE) != FALSE)
            ::UnionRect(&m_oPlace, &pane, &pending);
        m_oBar.Send(WM_SETREDRAW, FALSE);
    }
    ~CPaintLater()
    {
        if (!m_bIsNeeded)
            return;
        m_oBar.Send(WM_SETREDRAW, TRUE);
        ::RedrawWindow(m_oBar.Handle(), &m_oPlace, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN);
    }
    CPaintLater(const CPaintLater&) = delete;
    CPaintLater& operator=(const CPaintLater&) = delete;

private:
    CWindow m_oBar;
    RECT m_oPlace;
    bool m_bIsNeeded;
};

}  // namespace

bool CStatusBar::Create(HWND parent, int id)
{
    const auto menu = reinterpret_cast<HMENU>(static_cast<INT_PTR>(id));  // NOLINT: how a child gets its id
    Attach(::CreateWindowExW(0, STATUSCLASSNAMEW, L"",
                             WS_CHILD | WS_VISIBLE | SBARS_TOOLTIPS | WS_CLIPCHILDREN, 0, 0, 0, 0, parent,
                             menu, nullptr, nullptr));
    return Handle() != nullptr;
}

void CStatusBar::SetPanes(std::span<const int> widths) const
{
    int left = ClientRect().right;
    for (const int width : widths)
        left -= width;
    std::vector<int> edges = {std::max(left, 0)};
    for (const int width : widths)
        edges.push_back(edges.back() + width);
    SendPointer(SB_SETPARTS, edges.size(), edges.data());
}

void CStatusBar::SetPane(int pane, const std::wstring& text) const
{
    if (PaneText(pane) == text)
        return;
    const CPaintLater later(*this, PaneRect(pane));
    SendPointer(SB_SETTEXTW, static_cast<WPARAM>(pane), text.c_str());
    // Shown where the pane is too narrow for its text.
    SendPointer(SB_SETTIPTEXTW, static_cast<WPARAM>(pane), text.c_str());
}

std::wstring CStatusBar::PaneText(int pane) const
{
    const auto length = static_cast<std::size_t>(LOWORD(Send(SB_GETTEXTLENGTHW, static_cast<WPARAM>(pane))));
    std::wstring text(length + 1, L'\0');
    SendPointer(SB_GETTEXTW, static_cast<WPARAM>(pane), text.data());
    text.resize(length);
    return text;
}

RECT CStatusBar::PaneRect(int pane) const
{
    RECT rect{};
    SendPointer(SB_GETRECT, static_cast<WPARAM>(pane), &rect);
    return rect;
}
