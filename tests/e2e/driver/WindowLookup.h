#pragma once

// Finding windows of another process and reading what they show.

#include "base/Windows.h"

#include <string>
#include <string_view>
#include <vector>

/// SendMessage with an end: throws CDriveError when the window does not answer or is gone.
LRESULT Ask(HWND window, UINT message, WPARAM wParam = 0, LPARAM lParam = 0);

std::wstring TextOf(HWND window);
std::wstring ClassOf(HWND window);

/// The visible top-level windows of a process.
std::vector<HWND> TopWindows(DWORD process);
/// The visible windows inside `parent`, however deep.
std::vector<HWND> Descendants(HWND parent);
/// The `nth` visible window of that class inside `parent`; null when there is none.
HWND FindDescendant(HWND parent, std::wstring_view className, std::size_t nth = 0);

/// Every visible window of a process with class and text, one a line: what a person would see when a test
/// fails.
std::wstring Describe(DWORD process);

/// Chooses a command as the menu does. It is posted: a dialog that opens does not hold the caller.
void PostCommand(HWND window, int command);
/// Asks the window to close, as its caption button does.
void PostClose(HWND window);
