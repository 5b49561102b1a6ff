#pragma once

// Gives a window that is open already the texts of another interface language.

#include "ui/Window.h"

/// Sets every label, button and group box of `dialog` to the text that the control of the same number has in
/// the template `id` of `module`; controls without a number of their own, and those that the template gives
/// no text, keep theirs. `dialog` was made from the same template.
void TakeTextsFromTemplate(const CWindow& dialog, HINSTANCE module, int id);
