#pragma once

// Real input, as from a person: the mouse moves and keys go to the window in front. One driver at a time may
// use a display.

#include "base/Windows.h"

#include <initializer_list>

/// Brings the window to the front, so that keys reach it.
void BringToFront(HWND window);
/// Clicks the point, in client coordinates of `window`, with the keys (VK_CONTROL, VK_SHIFT) held down.
void ClickAt(HWND window, POINT point, std::initializer_list<WORD> heldKeys = {});
/// Presses and releases a key while the others are held down. The window must be in front.
void PressKey(WORD key, std::initializer_list<WORD> heldKeys = {});
