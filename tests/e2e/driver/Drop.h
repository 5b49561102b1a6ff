#pragma once

// Files dropped on a window of another process, without a mouse.

#include "base/Windows.h"

#include <filesystem>
#include <vector>

/// Drops the files at a point in client coordinates of `window`. The window need not be in front.
void DropFiles(HWND window, const std::vector<std::filesystem::path>& files, POINT place);
