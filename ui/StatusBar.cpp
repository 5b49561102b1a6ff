#include "ui/StatusBar.h"

#include <algorithm>
#include <commctrl.h>
#include <vector>

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
