#include "demo/Interior.h"

#include <array>
#include <cmath>

#include "demo/Metal.h"
#include "demo/Noise.h"
#include "demo/Random.h"
#include "demo/Relief.h"
#include "demo/Shapes.h"
#include "demo/Trigonometry.h"
#include "demo/Weather.h"
#include "demo/Wood.h"

namespace Demo {

CCanvas DrawWallpaper(int size, const Color& ground, const Color& print, Pattern pattern, std::uint32_t seed)
{
    CCanvas canvas(size, size, ground);
    const double pitch = size / 4.0;
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column) {
            const Point at{(column + (row % 2 == 0 ? 0.25 : 0.75)) * pitch, (row + 0.5) * pitch};
            switch (pattern) {
                case Pattern::Stripes:
                    FillBox(canvas, {column * pitch, -2, column * pitch + pitch * 0.42, size + 2.0},
                            WithAlpha(print, 0.3));
                    FillBox(canvas,
                            {column * pitch + pitch * 0.7, -2, column * pitch + pitch * 0.74, size + 2.0},
                            print);
                    break;
                case Pattern::Diamonds:
                    FillPolygon(canvas,
                                {{at.x, at.y - pitch * 0.5},
                                 {at.x + pitch * 0.4, at.y},
                                 {at.x, at.y + pitch * 0.5},
                                 {at.x - pitch * 0.4, at.y}},
                                WithAlpha(print, 0.6));
                    FillDisc(canvas, at, pitch * 0.1, Lit(ground, 1.1));
                    break;
                case Pattern::Blossoms:
                    for (const Point& petal : RegularPolygon(at, pitch * 0.15, 5, 0.75))
                        FillDisc(canvas, petal, pitch * 0.11, print);
                    FillDisc(canvas, at, pitch * 0.08, Hex(0xE8C860));
                    FillLine(canvas, {at.x, at.y + pitch * 0.25}, {at.x + pitch * 0.1, at.y + pitch * 0.5},
                             pitch * 0.04, Hex(0x6A8A5A));
                    break;
                case Pattern::Dots:
                    FillDisc(canvas, at, pitch * 0.14, print);
                    break;
            }
        }
    AddStains(canvas, Hex(0x8A7A5A), 0.25, seed);
    AddGrain(canvas, 0.03, seed + 1);
    return canvas;
}

CCanvas DrawCarpet(int size, const Color& color, const Color& border, std::uint32_t seed)
{
    CCanvas canvas(size, size, color);
    const double s = size;
    FillBevel(canvas, {0, 0, s, s}, s * 0.05, border, border);
    FillBevel(canvas, {s * 0.08, s * 0.08, s * 0.92, s * 0.92}, s * 0.02, Lit(border, 1.3), Lit(border, 1.3));
    for (int ring = 3; ring > 0; --ring)
        FillPolygon(canvas, RegularPolygon({s / 2, s / 2}, s * 0.11 * ring, 4, 0),
                    ring % 2 == 0 ? color : border);
    for (const double x : {0.22, 0.78})
        for (const double y : {0.22, 0.78}) {
            FillPolygon(canvas, RegularPolygon({s * x, s * y}, s * 0.09, 8, 0), Lit(border, 1.2));
            FillPolygon(canvas, RegularPolygon({s * x, s * y}, s * 0.05, 4, 0), color);
        }
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double tuft = 0.8 + 0.35 * ChanceAt(x, y, seed);
        return Lit(pixel, tuft * (0.9 + 0.2 * Hills((x + 0.5) / size, (y + 0.5) / size, {4, 4, 4}, seed)));
    });
    return canvas;
}

CCanvas DrawMarble(int size, const Color& ground, const Color& vein, std::uint32_t seed)
{
    CCanvas canvas(size, size, ground);
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double u = (x + 0.5) / size;
        const double v = (y + 0.5) / size;
        const double warp = 0.35 * Hills(u, v, {3, 3, 4}, seed + 1);
        const double line = Ridges(u + warp, v + warp, {2, 2, 4}, seed);
        const Color base = Lit(pixel, 0.9 + 0.2 * Hills(u, v, {3, 3, 4}, seed + 2));
        return Mix(base, vein, Smooth(0.72, 0.95, line) * 0.8);
    });
    return canvas;
}

CCanvas DrawTileFloor(int size, const Color& first, const Color& second, int tiles, std::uint32_t seed)
{
    CCanvas canvas = DrawMarble(size, first, Lit(first, 0.65), seed);
    const CCanvas other = DrawMarble(size, second, Lit(second, 1.5), seed + 20);
    const double side = static_cast<double>(size) / tiles;
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const int column = static_cast<int>((x + 0.5) / side);
        const int row = static_cast<int>((y + 0.5) / side);
        const double inX = x + 0.5 - column * side;
        const double inY = y + 0.5 - row * side;
        const double edge = std::min(std::min(inX, side - inX), std::min(inY, side - inY));
        const Color& tile = (column + row) % 2 == 0 ? pixel : other.At(x, y);
        const double shine =
            1.06 - 0.1 * (inX + inY) / (2 * side) + 0.05 * (ChanceAt(column, row, seed) - 0.5);
        return edge < 0.9 ? Hex(0x6A655C) : Lit(tile, edge < 2 && inX < side / 2 ? shine * 1.12 : shine);
    });
    AddStains(canvas, Hex(0x5A5040), 0.2, seed + 3);
    return canvas;
}

CCanvas DrawWeave(int size, const Color& first, const Color& second, int threads, std::uint32_t seed)
{
    CCanvas canvas(size, size, first);
    canvas.Repaint([&](int x, int y, const Color&) {
        const double u = (x + 0.5) * threads / size;
        const double v = (y + 0.5) * threads / size;
        const bool isOver = (static_cast<int>(u) + static_cast<int>(v)) % 2 == 0;
        const double across = isOver ? v - std::floor(v) : u - std::floor(u);
        const double along = isOver ? u - std::floor(u) : v - std::floor(v);
        const double round = 0.55 + 1.6 * across * (1 - across) + 0.5 * along * (1 - along);
        return Lit(isOver ? first : second, round * (0.88 + 0.2 * ChanceAt(x, y, seed)));
    });
    return canvas;
}

CCanvas DrawCurtain(int width, int height, const Color& color, int folds, std::uint32_t seed)
{
    CCanvas canvas(width, height, color);
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double u = (x + 0.5) / width;
        const double v = (y + 0.5) / height;
        const double sway = 0.25 * Hills(u, v, {folds, 2, 2}, seed) * v;
        const double fold = SineOfTurns(u * folds + sway);
        return Lit(pixel, 0.72 + 0.36 * fold + 0.12 * SineOfTurns(u * folds * 2 + 0.3));
    });
    FillBox(canvas, {-2, 0, width + 2.0, height * 0.05}, {0, 0, 0, 0.35});
    FillBox(canvas, {-2, height * 0.95, width + 2.0, height * 0.97}, WithAlpha(Lit(Hex(0xD8B45A), 0.9), 0.8));
    AddGrain(canvas, 0.05, seed + 1);
    return canvas;
}

CCanvas DrawLeather(int size, const Color& color, std::uint32_t seed)
{
    CCanvas canvas(size, size, color);
    CRelief relief(size, size);
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double u = (x + 0.5) / size;
        const double v = (y + 0.5) / size;
        const Cell cell = CellAt(u, v, size / 5, size / 5, seed);
        const double pad = SineOfTurns(u + 0.75) + SineOfTurns(v + 0.75);
        relief.At(x, y) = 1.1 * Smooth(0, 0.3, cell.border) + 6 * pad * size / 128;
        return Lit(pixel, 0.8 + 0.12 * pad + 0.12 * Smooth(0, 0.3, cell.border));
    });
    relief.Shade(canvas, 0.4);
    FillDisc(canvas, {0, 0}, size * 0.045, Lit(color, 0.45));
    FillDisc(canvas, {-0.5, -0.5}, size * 0.03, Lit(color, 1.1));
    return canvas;
}

CCanvas DrawCeiling(int size, std::uint32_t seed)
{
    CCanvas canvas(size, size, Hex(0xD8D5CC));
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        return Lit(pixel, ChanceAt(x / 2, y / 2, seed) > 0.88 ? 0.72 : 1);
    });
    const double half = size / 2.0;
    for (const double left : {0.0, half})
        for (const double top : {0.0, half}) {
            FillBevel(canvas, {left, top, left + half, top + half}, 2, Hex(0xF0EEE8), Hex(0xA8A49A));
        }
    FillBox(canvas, {half * 0.2, half * 0.2, half * 0.8, half * 0.8}, Hex(0xF4F6F2));
    FillBevel(canvas, {half * 0.2, half * 0.2, half * 0.8, half * 0.8}, 2, Hex(0x9A9A96), Hex(0xC8C8C2));
    AddStains(canvas, Hex(0xA89468), 0.3, seed + 1);
    return canvas;
}

CCanvas DrawBookshelf(int width, int height, int shelves, std::uint32_t seed)
{
    constexpr std::array kCovers = {0x6A2A2AU, 0x2A4A6AU, 0x3A5A3AU, 0x8A6A3AU,
                                    0x4A3A5AU, 0xA89A7AU, 0x2E2E32U};
    CCanvas canvas(width, height, Hex(0x2A1C12));
    CRandom random(seed);
    for (int shelf = 0; shelf < shelves; ++shelf) {
        const double top = static_cast<double>(height) * shelf / shelves;
        const double bottom = static_cast<double>(height) * (shelf + 1) / shelves - height * 0.025;
        double x = width * 0.04;
        while (x < width * 0.93) {
            const double thick = width * random.Between(0.025, 0.06);
            const double tall = (bottom - top) * random.Between(0.62, 0.9);
            // Named one by one: the order of arguments is the compiler's choice.
            const auto kind = static_cast<std::size_t>(random.Below(static_cast<int>(kCovers.size())));
            const double fading = random.Between(0.8, 1.2);
            const Color cover = Lit(Hex(kCovers[kind]), fading);
            if (random.Next() > 0.08) {
                FillBox(canvas, {x, bottom - tall, x + thick, bottom}, cover);
                FillBox(canvas, {x, bottom - tall, x + thick * 0.25, bottom}, {1, 1, 1, 0.18});
                FillBox(canvas, {x + thick * 0.8, bottom - tall, x + thick, bottom}, {0, 0, 0, 0.4});
                FillBox(canvas,
                        {x + thick * 0.15, bottom - tall * 0.82, x + thick * 0.85, bottom - tall * 0.74},
                        Hex(0xC8A85A));
            }
            x += thick;
        }
        FillBox(canvas, {0, bottom, width * 1.0, bottom + height * 0.025}, Hex(0x7A5230));
        FillBox(canvas, {0, bottom, width * 1.0, bottom + 1.2}, Hex(0xA87848));
        FillBox(canvas, {0, bottom + height * 0.025, width * 1.0, bottom + height * 0.05}, {0, 0, 0, 0.45});
    }
    FillBox(canvas, {0, 0, width * 0.035, height * 1.0}, Hex(0x6A4628));
    FillBox(canvas, {width * 0.965, 0, width * 1.0, height * 1.0}, Hex(0x5A3A20));
    AddGrain(canvas, 0.05, seed + 1);
    return canvas;
}

CCanvas DrawPainting(int width, int height, std::uint32_t seed)
{
    CCanvas canvas(width, height, Hex(0x8A6A30));
    const double rim = width * 0.08;
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double u = (x - rim) / (width - 2 * rim);
        const double v = (y - rim) / (height - 2 * rim);
        if (u < 0 || v < 0 || u > 1 || v > 1)
            return Lit(pixel, 0.8 + 0.4 * ChanceAt(x, y, seed));
        const double brush = 0.25 * (Hills(u, v, {10, 24, 3}, seed) - 0.5);
        const double hills = 0.45 + 0.3 * (Hills(u, 0.5, {3, 1, 4}, seed + 1) - 0.5);
        const Color sky = Mix(Hex(0x6E93B8), Hex(0xF0D2A0), Clamp01(v * 1.8 + brush));
        const Color land = Mix(Hex(0x5E7A4A), Hex(0x3A4A26), Clamp01((v - hills) * 2 + brush * 2));
        const Color lake = Mix(Hex(0x8AA8B8), Hex(0x4A6478), Clamp01((v - 0.7) * 3 + brush));
        return v < hills ? sky : (v > 0.7 + brush * 0.3 && u > 0.25 + brush ? lake : land);
    });
    FillBevel(canvas, {0, 0, width * 1.0, height * 1.0}, rim * 0.4, Hex(0xD8B868), Hex(0x6A4E20));
    FillBevel(canvas, {rim * 0.8, rim * 0.8, width - rim * 0.8, height - rim * 0.8}, rim * 0.25,
              Hex(0x5A4018), Hex(0xC8A858));
    return canvas;
}

CCanvas DrawDrawers(int width, int height, const Color& color, Surface surface, int columns, int rows,
                    std::uint32_t seed)
{
    CCanvas canvas = surface == Surface::Metal ? DrawBrushed(width, height, color, seed)
                                               : DrawPlanks(width, height,
                                                            {.light = color,
                                                             .dark = Lit(color, 0.6),
                                                             .planks = 1,
                                                             .upright = false,
                                                             .age = 0,
                                                             .seed = seed});
    for (int i = 0; i < columns * rows; ++i) {
        const double w = static_cast<double>(width) / columns;
        const double h = static_cast<double>(height) / rows;
        const double left = i % columns * w;
        const double top = i / columns * h;
        FillBevel(canvas, {left + w * 0.06, top + h * 0.1, left + w * 0.94, top + h * 0.9}, 2, {1, 1, 1, 0.3},
                  {0, 0, 0, 0.5});
        FillBox(canvas, {left + w * 0.4, top + h * 0.46, left + w * 0.6, top + h * 0.54}, Hex(0xC8A24A), 2);
        FillBox(canvas, {left + w * 0.4, top + h * 0.54, left + w * 0.6, top + h * 0.58}, {0, 0, 0, 0.45});
    }
    return canvas;
}

}  // namespace Demo
