#pragma once

// The start-up logo: shown, painted, and gone after its time. It is the program's own even in another
// language.

#include "base/Windows.h"

/// Blocks for `milliseconds`; the program has nothing else to do then.
void ShowSplash(HINSTANCE program, int milliseconds);
