#pragma once

// The looks of controls that Windows itself uses in its file windows.

#include "ui/Window.h"

/// True where Wine stands in for Windows: some of its controls need other handling to look well or be quick.
bool IsWine();

/// Gives a tree or list the look of the file windows where the system draws it well.
void UseExplorerTheme(const CWindow& control);
/// Whether UseExplorerTheme gives a list the look of the file windows, which paints whole rows itself.
bool HasExplorerTheme();
