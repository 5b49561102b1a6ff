#pragma once

// The picture of a check box for controls that draw one themselves, in the look of the system.

#include "ui/Window.h"

/// The size for the screen that shows `control`.
SIZE CheckBoxSize(const CWindow& control);
/// Draws the box in the middle of the left edge of `place`.
void DrawCheckBox(const CWindow& control, HDC target, const RECT& place, bool checked, bool enabled);
