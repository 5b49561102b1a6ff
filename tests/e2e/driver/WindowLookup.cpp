#include "tests/e2e/driver/WindowLookup.h"

#include <array>

#include "tests/e2e/driver/Wait.h"

namespace {

BOOL CALLBACK Collect(HWND window, LPARAM list)
{
    reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);  // NOLINT: what the caller passed
    return TRUE;
}

LPARAM AsParameter(std::vector<HWND>& list)
{
    return reinterpret_cast<LPARAM>(&list);  // NOLINT: handed through to Collect
}

}  // namespace

LRESULT Ask(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    DWORD_PTR answer = 0;
    if (!::SendMessageTimeoutW(window, message, wParam, lParam, SMTO_NORMAL,
                               static_cast<UINT>(kPatience.count()), &answer))
        throw CDriveError("a window does not answer message " + std::to_string(message));
    return static_cast<LRESULT>(answer);
}

std::wstring TextOf(HWND window)
{
    std::wstring text(static_cast<std::size_t>(Ask(window, WM_GETTEXTLENGTH)) + 1, L'\0');
    const LPARAM buffer = reinterpret_cast<LPARAM>(text.data());  // NOLINT: Windows translates this one
    text.resize(static_cast<std::size_t>(Ask(window, WM_GETTEXT, text.size(), buffer)));
    return text;
}

std::wstring ClassOf(HWND window)
{
    std::array<wchar_t, 256> name{};
    ::GetClassNameW(window, name.data(), static_cast<int>(name.size()));
    return name.data();
}

std::vector<HWND> TopWindows(DWORD process)
{
    std::vector<HWND> all;
    ::EnumWindows(Collect, AsParameter(all));
    std::erase_if(all, [process](HWND window) {
        DWORD owner = 0;
        ::GetWindowThreadProcessId(window, &owner);
        return owner != process || !::IsWindowVisible(window);
    });
    return all;
}

std::vector<HWND> Descendants(HWND parent)
{
    std::vector<HWND> all;
    ::EnumChildWindows(parent, Collect, AsParameter(all));
    std::erase_if(all, [](HWND window) { return !::IsWindowVisible(window); });
    return all;
}

HWND FindDescendant(HWND parent, std::wstring_view className, std::size_t nth)
{
    for (const HWND window : Descendants(parent))
        if (ClassOf(window) == className && nth-- == 0)
            return window;
    return nullptr;
}

std::wstring Describe(DWORD process)
{
    std::wstring text;
    for (const HWND top : TopWindows(process)) {
        text += ClassOf(top) + L": " + TextOf(top) + L"\n";
        for (const HWND window : Descendants(top))
            text += L"    " + ClassOf(window) + L": " + TextOf(window) + L"\n";
    }
    return text;
}

void PostCommand(HWND window, int command)
{
    if (!::PostMessageW(window, WM_COMMAND, static_cast<WPARAM>(command), 0))
        throw CDriveError("the window for command " + std::to_string(command) + " is gone");
}

void PostClose(HWND window)
{
    ::PostMessageW(window, WM_SYSCOMMAND, SC_CLOSE, 0);
}
