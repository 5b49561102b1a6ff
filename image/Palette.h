#pragma once

// Brings a bitmap down to a palette, for formats that store one. The same palette on every platform.

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "image/Bitmap.h"

struct PaletteColour {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    bool operator==(const PaletteColour&) const = default;
};

struct PalettedBitmap {
    std::vector<PaletteColour> palette;  // 1 to 256
    std::optional<std::uint8_t> transparent;
    std::vector<std::uint8_t> indices;  // one a pixel, rows top to bottom
};

/// Pixels with an alpha below 128 share one transparent entry, the last; all others become opaque. When the
/// colours fit into the palette they stay exact, else they are divided into groups (median cut) and each
/// pixel takes the nearest group's mean.
PalettedBitmap ReduceToPalette(const CBitmap& bitmap);
