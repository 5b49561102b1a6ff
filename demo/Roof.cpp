#include "demo/Roof.h"

#include <cmath>

#include "demo/Noise.h"
#include "demo/Random.h"
#include "demo/Shapes.h"
#include "demo/Weather.h"

namespace Demo {

CCanvas DrawRoofTiles(int size, const Color& color, int columns, int rows, std::uint32_t seed)
{
    CCanvas canvas(size, size, color);
    const double tileWidth = static_cast<double>(size) / columns;
    const double tileHeight = static_cast<double>(size) / rows;
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const int column = static_cast<int>((x + 0.5) / tileWidth);
        const double across = (x + 0.5) / tileWidth - column;
        const double arch = 1 - (2 * across - 1) * (2 * across - 1);
        const double down = (y + 0.5) / tileHeight - 0.35 * arch;
        const int row = (static_cast<int>(std::floor(down)) + rows) % rows;
        const double along = down - std::floor(down);
        const double tone = 0.8 + 0.4 * ChanceAt(column, row, seed);
        const double round =
            0.45 + 0.5 * Smooth(0, 0.55, across) * (1 - 0.75 * Smooth(0.5, 1, across)) + 0.2 * arch;
        const double shadow = 0.35 + 0.65 * Smooth(0, 0.25, along);
        const double lip = along > 0.9 ? 1.15 : 1;
        const double pores = Hills((x + 0.5) / size, (y + 0.5) / size, {16, 16, 3}, seed + 1);
        return Lit(pixel, tone * round * shadow * lip * (0.85 + 0.3 * pores) * 1.25);
    });
    AddStains(canvas, Hex(0x3E4A2A), 0.3, seed + 2);
    AddGrain(canvas, 0.06, seed + 3);
    return canvas;
}

CCanvas DrawShingles(int size, const Color& color, int columns, int rows, std::uint32_t seed)
{
    CCanvas canvas(size, size, color);
    const double width = static_cast<double>(size) / columns;
    const double height = static_cast<double>(size) / rows;
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const int row = static_cast<int>((y + 0.5) / height);
        const double along = (y + 0.5) / height - row;
        const double place = (x + 0.5) / width + 0.37 * row + 0.2 * ChanceAt(row, 9, seed);
        const int column = static_cast<int>(std::floor(place)) % columns;
        const double across = place - std::floor(place);
        const double gap = std::min(across, 1 - across) * width < 0.9 ? 0.5 : 1;
        const double slip = 0.12 * ChanceAt(column, row, seed + 4);
        const double shadow = 0.5 + 0.5 * Smooth(slip, slip + 0.22, along);
        const double tone = 0.72 + 0.5 * ChanceAt(column, row, seed);
        return Lit(pixel, tone * gap * shadow * (along > 0.92 ? 1.2 : 1));
    });
    AddStains(canvas, Hex(0x4A5236), 0.3, seed + 2);
    AddGrain(canvas, 0.1, seed + 3);
    return canvas;
}

CCanvas DrawTarRoof(int size, std::uint32_t seed)
{
    CCanvas canvas(size, size, Hex(0x3B3A3A));
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double patch = Hills((x + 0.5) / size, (y + 0.5) / size, {3, 3, 5}, seed);
        const double gravel = ChanceAt(x, y, seed + 1) > 0.85 ? 1.5 : 1;
        return Lit(pixel, (0.7 + 0.6 * patch) * gravel);
    });
    for (int i = 0; i < 3; ++i) {
        const double y = size * (i + 0.3) / 3;
        FillBox(canvas, {-2, y, size + 2.0, y + 1.5}, {0, 0, 0, 0.6});
        FillBox(canvas, {-2, y + 1.5, size + 2.0, y + 3}, {1, 1, 1, 0.15});
    }
    AddStains(canvas, Hex(0x8C8980), 0.3, seed + 2);
    return canvas;
}

}  // namespace Demo
