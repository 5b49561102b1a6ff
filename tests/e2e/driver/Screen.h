#pragma once

// What can only be told from the pixels on the screen.

#include "base/Windows.h"

#include <cstdint>
#include <vector>

/// The pictures that message boxes carry.
enum class SystemIcon { Information, Question, Warning, Error };

/// The pixels, 0x00RRGGBB, that the screen shows inside the client area of a window, row by row.
std::vector<std::uint32_t> PixelsOf(HWND window);
/// The pixels at the left end of a window's menu bar, where the menus are.
std::vector<std::uint32_t> MenuBarPixels(HWND window);
/// The system icon that the window shows. Waits until one is painted.
SystemIcon SystemIconIn(HWND window);
