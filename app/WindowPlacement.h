#pragma once

// Where the main window stood when it was closed, kept in the section "position" of the settings.

#include "base/Settings.h"
#include "ui/Window.h"

void SaveWindowPlace(const CWindow& window, ISettings& settings);
/// Moves the window to its saved place, when there is one that meets a screen; else only moves its lower edge
/// up one pixel.
void RestoreWindowPlace(const CWindow& window, const ISettings& settings);
