#pragma once

// Writes GIF files, on every platform: GDI+ would use a fixed palette and lose the transparency.

#include <cstddef>
#include <optional>
#include <vector>

#include "image/Bitmap.h"

/// One picture with a palette of its own (Palette.h).
std::optional<std::vector<std::byte>> WriteGif(const CBitmap& bitmap);
