// window_wait.exe TITLE SECONDS
//
// Waits until a window whose title begins so shows a database: its tree has items and its status bar tells of
// the drawing or of the selection. Prints the place of the window, "x y width height". Serves
// scripts/take-screenshot.

#include "base/Windows.h"

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

#include "tests/e2e/driver/Controls.h"
#include "tests/e2e/driver/Input.h"
#include "tests/e2e/driver/Wait.h"
#include "tests/e2e/driver/WindowLookup.h"

namespace {

struct Search {
    std::wstring title;
    HWND found = nullptr;
};

BOOL CALLBACK LookAt(HWND window, LPARAM parameter)
{
    auto& search = *reinterpret_cast<Search*>(parameter);  // NOLINT: what the caller passed
    if (::IsWindowVisible(window) && TextOf(window).starts_with(search.title))
        search.found = window;
    return search.found ? FALSE : TRUE;
}

std::optional<HWND> FindWindowThatShows(const std::wstring& title)
{
    Search search{title};
    ::EnumWindows(LookAt, reinterpret_cast<LPARAM>(&search));  // NOLINT: handed through
    if (!search.found)
        return std::nullopt;
    const HWND tree = FindDescendant(search.found, L"SysTreeView32");
    const HWND status = FindDescendant(search.found, L"msctls_statusbar32");
    if (!tree || !status || CTree(tree).Items().empty())
        return std::nullopt;
    const std::wstring text = CStatusPanes(status).Text(0);
    const bool isSettled = text.find(L"rendered within") != std::wstring::npos ||
                           text.starts_with(L"Category '") || text.starts_with(L"Cache loaded within");
    return isSettled ? std::optional(search.found) : std::nullopt;
}

// A window may go while it is asked, as the splash does; the next look finds out.
std::optional<HWND> Look(const std::wstring& title)
{
    try {
        return FindWindowThatShows(title);
    } catch (const CDriveError&) {
        return std::nullopt;
    }
}

}  // namespace

int wmain(int count, wchar_t** arguments)
{
    if (count != 3) {
        std::fputs("usage: window_wait TITLE SECONDS\n", stderr);
        return 2;
    }
    try {
        const std::chrono::seconds patience(std::wcstol(arguments[2], nullptr, 10));
        const HWND window = WaitFor(
            "the window", [&] { return Look(arguments[1]); }, patience);
        BringToFront(window);
        RECT place{};
        ::GetWindowRect(window, &place);
        std::printf("%ld %ld %ld %ld\n", place.left, place.top, place.right - place.left,
                    place.bottom - place.top);
        return 0;
    } catch (const CDriveError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
