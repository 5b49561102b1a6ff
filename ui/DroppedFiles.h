#pragma once

// Files that were dropped on a window.

#include "base/Windows.h"

#include <filesystem>
#include <vector>

struct DroppedFiles {
    std::vector<std::filesystem::path> files;
    POINT place{};  // of the drop, in the window's client area
};

/// Says that files may be dropped on the window; they arrive with WM_DROPFILES.
void AcceptDroppedFiles(HWND window);
/// The files of a WM_DROPFILES message; `wParam` is not to be used afterwards.
DroppedFiles TakeDroppedFiles(WPARAM wParam);
