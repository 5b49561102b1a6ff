#include "demo/Ground.h"

#include "demo/Noise.h"
#include "demo/Random.h"
#include "demo/Relief.h"
#include "demo/Shapes.h"
#include "demo/Trigonometry.h"
#include "demo/Weather.h"

namespace Demo {

CCanvas DrawGrass(int size, const Color& dark, const Color& light, std::uint32_t seed)
{
    CCanvas canvas(size, size, dark);
    canvas.Repaint([&](int x, int y, const Color&) {
        const double hill = Hills((x + 0.5) / size, (y + 0.5) / size, {4, 4, 6}, seed);
        return Lit(Mix(dark, light, Smooth(0.3, 0.75, hill)), 0.75);
    });
    CRandom random(seed);
    for (int i = 0; i < size * size / 9; ++i) {
        const Point root{random.Between(0, size), random.Between(0, size)};
        const double angle = random.Next();
        const double length = random.Between(2, 5.5);
        const double patch = Hills(root.x / size, root.y / size, {4, 4, 4}, seed);
        // Named one by one: the order of arguments is the compiler's choice.
        const double tone = Clamp01(random.Next() * 0.6 + patch * 0.5);
        const double sun = random.Between(0.8, 1.25);
        const Color blade = Lit(Mix(dark, light, tone), sun);
        FillLine(canvas, root, {root.x + length * CosineOfTurns(angle), root.y + length * SineOfTurns(angle)},
                 0.8, WithAlpha(blade, 0.55));
    }
    AddGrain(canvas, 0.08, seed + 2);
    return canvas;
}

CCanvas DrawSand(int size, const Color& color, double ripples, std::uint32_t seed)
{
    CCanvas canvas(size, size, color);
    CRelief relief(size, size);
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double u = (x + 0.5) / size;
        const double v = (y + 0.5) / size;
        const double bend = Hills(u, v, {3, 3, 3}, seed);
        const double wave = SineOfTurns(v * (size / 16) + bend * 2.5);
        relief.At(x, y) = ripples * wave * (0.5 + bend) + Hills(u, v, {8, 8, 4}, seed + 1);
        return Lit(pixel, 0.88 + 0.24 * Hills(u, v, {2, 2, 5}, seed + 2) + 0.05 * ripples * wave);
    });
    relief.Shade(canvas, 0.35);
    AddGrain(canvas, 0.08, seed + 3);
    return canvas;
}

CCanvas DrawEarth(int size, const Color& color, double stones, std::uint32_t seed)
{
    CCanvas canvas(size, size, color);
    CRelief relief(size, size);
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double u = (x + 0.5) / size;
        const double v = (y + 0.5) / size;
        const double clod = Hills(u, v, {6, 6, 6}, seed);
        const Cell cell = CellAt(u, v, size / 6, size / 6, seed + 1);
        const bool isStone = cell.chance < stones;
        const double radius = 0.18 + 0.25 * cell.chance / (stones + 0.001);
        const double stone = isStone ? 1 - Smooth(radius - 0.12, radius, cell.nearest) : 0.0;
        relief.At(x, y) = 1.8 * clod + 1.2 * stone * (1 - cell.nearest);
        const Color ground = Lit(pixel, 0.55 + 0.9 * clod);
        return Mix(ground,
                   Lit(Hex(0x9A938A), 0.7 + 0.5 * ChanceAt(static_cast<int>(cell.chance * 9999), 1, seed)),
                   stone);
    });
    relief.Shade(canvas, 0.8);
    AddGrain(canvas, 0.12, seed + 3);
    return canvas;
}

CCanvas DrawCobbles(int size, const Color& color, int count, std::uint32_t seed)
{
    CCanvas canvas(size, size, color);
    CRelief relief(size, size);
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double u = (x + 0.5) / size;
        const double v = (y + 0.5) / size;
        const Cell cell = CellAt(u, v, count, count, seed);
        const double stone = Smooth(0.04, 0.2, cell.border);
        const double pores = Hills(u, v, {size / 6, size / 6, 3}, seed + 2);
        relief.At(x, y) = 2.6 * Smooth(0, 0.55, cell.border) + 0.7 * pores;
        const Color own = Lit(pixel, 0.72 + 0.5 * cell.chance + 0.25 * (pores - 0.5));
        return Mix(Lit(Hex(0x3A352E), 0.7 + 0.5 * pores), own, stone);
    });
    relief.Shade(canvas, 0.55);
    AddGrain(canvas, 0.06, seed + 3);
    return canvas;
}

CCanvas DrawRock(int size, const Color& color, std::uint32_t seed)
{
    CCanvas canvas(size, size, color);
    CRelief relief(size, size);
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double u = (x + 0.5) / size;
        const double v = (y + 0.5) / size;
        const double warp = 0.25 * Hills(u, v, {3, 3, 4}, seed + 1);
        const double crag = Ridges(u, v + warp, {3, 4, 6}, seed);
        relief.At(x, y) = 6 * crag * size / 128;
        const double layer = Hills(u * 0.5, v + warp, {1, 9, 3}, seed + 2);
        return Lit(pixel, 0.5 + 0.45 * layer + 0.35 * crag);
    });
    relief.Shade(canvas, 0.6);
    AddCracks(canvas, 5, 0.6, seed + 4);
    AddStains(canvas, Hex(0x5C6236), 0.25, seed + 5);
    AddGrain(canvas, 0.07, seed + 3);
    return canvas;
}

CCanvas DrawSnow(int size, std::uint32_t seed)
{
    CCanvas canvas(size, size, Hex(0xE6ECF4));
    CRelief relief(size, size);
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double drift = Hills((x + 0.5) / size, (y + 0.5) / size, {3, 3, 6}, seed);
        relief.At(x, y) = 5 * drift;
        return Mix(Hex(0xC3D0E4), pixel, Smooth(0.3, 0.6, drift));
    });
    relief.Shade(canvas, 0.2);
    AddGrain(canvas, 0.03, seed + 1);
    return canvas;
}

CCanvas DrawWater(int size, const Color& deep, const Color& crest, std::uint32_t seed)
{
    CCanvas canvas(size, size, deep);
    canvas.Repaint([&](int x, int y, const Color&) {
        const double u = (x + 0.5) / size;
        const double v = (y + 0.5) / size;
        const double warp = 0.12 * Hills(u, v, {4, 4, 3}, seed + 1);
        const double wave = Ridges(u + warp, v + warp, {4, 6, 4}, seed);
        const double glint = Smooth(0.72, 0.95, wave);
        return Mix(Mix(deep, crest, 0.35 * wave), Lit(crest, 1.25), glint * 0.7);
    });
    return canvas;
}

CCanvas BlendGrounds(const CCanvas& left, const CCanvas& right, std::uint32_t seed)
{
    CCanvas canvas = left;
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double u = (x + 0.5) / canvas.Width();
        const double edge = Hills(u, (y + 0.5) / canvas.Height(), {4, 4, 5}, seed) - 0.5;
        return Mix(pixel, right.At(x, y), Smooth(0.4, 0.6, u + 0.7 * edge));
    });
    return canvas;
}

}  // namespace Demo
