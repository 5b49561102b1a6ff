#include "demo/Metal.h"

#include <cmath>

#include "demo/Noise.h"
#include "demo/Random.h"
#include "demo/Relief.h"
#include "demo/Shapes.h"
#include "demo/Trigonometry.h"
#include "demo/Weather.h"

namespace Demo {
namespace {
const Color kTransparent{0.35, 0.35, 0.35, 0};

// Rust eats in from patches and runs down.
void AddRust(CCanvas& canvas, double amount, std::uint32_t seed)
{
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double u = (x + 0.5) / canvas.Width();
        const double v = (y + 0.5) / canvas.Height();
        const double patch = Hills(u, v, {4, 4, 6}, seed);
        const double fine = Hills(u, v, {canvas.Width() / 4, canvas.Height() / 4, 2}, seed + 1);
        const double share = Smooth(0.72 - 0.35 * amount, 0.8 - 0.25 * amount, patch * 0.85 + fine * 0.15);
        const Color rust = Mix(Hex(0x4A2413), Hex(0xA65A2A), Clamp01(fine * 1.2));
        return WithAlpha(Mix(pixel, rust, share), pixel.alpha);
    });
    AddStreaks(canvas, Hex(0x6B3418), 0.55 * amount, seed + 2);
}
}  // namespace

CCanvas DrawCorrugated(int width, int height, const Color& color, int waves, double rust, std::uint32_t seed)
{
    CCanvas canvas(width, height, color);
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double u = (x + 0.5) / width;
        const double v = (y + 0.5) / height;
        const double wave = SineOfTurns(u * waves + 0.1);
        const double glint = Smooth(0.8, 1, SineOfTurns(u * waves + 0.02));
        return Lit(pixel,
                   0.78 + 0.32 * wave + 0.25 * glint + 0.15 * (Hills(u, v, {waves, 4, 4}, seed) - 0.5));
    });
    AddRust(canvas, rust, seed + 1);
    AddGrain(canvas, 0.04, seed + 5);
    return canvas;
}

CCanvas DrawBrushed(int width, int height, const Color& color, std::uint32_t seed)
{
    CCanvas canvas(width, height, color);
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double u = (x + 0.5) / width;
        const double v = (y + 0.5) / height;
        const double line = Hills(u, v, {2, height / 2, 2}, seed);
        const double sheen = SineOfTurns(u + 0.3 * v);
        return Lit(pixel, 0.85 + 0.25 * line + 0.1 * sheen);
    });
    AddGrain(canvas, 0.03, seed + 1);
    return canvas;
}

CCanvas DrawRust(int size, std::uint32_t seed)
{
    CCanvas canvas(size, size, Hex(0x6E6A66));
    CRelief relief(size, size);
    AddRust(canvas, 1.4, seed);
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        relief.At(x, y) = 2 * Hills((x + 0.5) / size, (y + 0.5) / size, {12, 12, 4}, seed + 8);
        return pixel;
    });
    relief.Shade(canvas, 0.5);
    AddGrain(canvas, 0.1, seed + 4);
    return canvas;
}

CCanvas DrawTreadPlate(int size, const Color& color, std::uint32_t seed)
{
    CCanvas canvas(size, size, color);
    CRelief relief(size, size);
    const double pitch = size / 8.0;
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const int column = static_cast<int>(x / pitch);
        const int row = static_cast<int>(y / pitch);
        const double inX = x + 0.5 - (column + 0.5) * pitch;
        const double inY = y + 0.5 - (row + 0.5) * pitch;
        const double turn = ((column + row) & 1) != 0 ? 1 : -1;
        const double along = (inX + turn * inY) * 0.7071;
        const double across = (inX - turn * inY) * 0.7071;
        const double bump =
            1 - Smooth(0.3, 1.05, (along * along / 0.2 + across * across / 0.022) / (pitch * pitch));
        relief.At(x, y) = 2.2 * bump;
        return Lit(pixel, 0.85 + 0.2 * bump);
    });
    relief.Shade(canvas, 0.4);
    AddStains(canvas, Hex(0x3B332B), 0.45, seed);
    AddGrain(canvas, 0.05, seed + 1);
    return canvas;
}

CCanvas DrawRivetedPlates(int size, const Color& color, int panels, double rust, std::uint32_t seed)
{
    CCanvas canvas = DrawBrushed(size, size, color, seed);
    const double side = static_cast<double>(size) / panels;
    for (int i = 0; i < panels * panels; ++i) {
        const double left = i % panels * side;
        const double top = i / panels * side;
        const double tone = ChanceAt(i, 0, seed) - 0.5;
        FillBox(canvas, {left, top, left + side, top + side},
                tone > 0 ? Color{1, 1, 1, tone * 0.3} : Color{0, 0, 0, -tone * 0.4});
        FillBevel(canvas, {left, top, left + side, top + side}, 1.5, {1, 1, 1, 0.35}, {0, 0, 0, 0.55});
        for (int k = 0; k < 5; ++k) {
            const double step = side * (0.1 + 0.2 * k);
            for (const Point& at :
                 {Point{left + step, top + side * 0.08}, Point{left + step, top + side * 0.92},
                  Point{left + side * 0.08, top + step}, Point{left + side * 0.92, top + step}}) {
                FillDisc(canvas, {at.x + 0.8, at.y + 0.8}, side * 0.025 + 0.8, {0, 0, 0, 0.5});
                FillDisc(canvas, at, side * 0.025 + 0.6, Lit(color, 1.2));
            }
        }
    }
    AddRust(canvas, rust, seed + 3);
    AddGrain(canvas, 0.05, seed + 4);
    return canvas;
}

CCanvas DrawChainLink(int size, std::uint32_t seed)
{
    CCanvas canvas(size, size, kTransparent);
    const double pitch = size / 4.0;
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double bend = 1.2 * SineOfTurns(y / pitch);
        const double rising = std::fabs(std::fmod(x + y + 0.5 + bend + 2 * pitch, pitch) - pitch / 2);
        const double falling =
            std::fabs(std::fmod(x - y + 0.5 - bend + size * 2 + 2 * pitch, pitch) - pitch / 2);
        const double wire = std::min(rising, falling);
        const double half = size / 64.0 + 0.6;
        const double light = 0.55 + 0.55 * Smooth(half, 0, wire) + 0.15 * ChanceAt(x, y, seed);
        return WithAlpha(Lit(Hex(0xA4A9AC), wire < half + 1 ? light : 0.6),
                         std::max(pixel.alpha, 1 - Smooth(half - 0.6, half + 0.6, wire)));
    });
    return canvas;
}

CCanvas DrawGrating(int size, const Color& color, int bars, std::uint32_t seed)
{
    CCanvas canvas(size, size, WithAlpha(Lit(color, 0.5), 0));
    const double pitch = static_cast<double>(size) / bars;
    for (int i = 0; i < bars; ++i) {
        const double at = (i + 0.5) * pitch;
        FillBox(canvas, {-2, at - pitch * 0.16, size + 2.0, at + pitch * 0.16}, color);
        FillBox(canvas, {at - pitch * 0.16, -2, at + pitch * 0.16, size + 2.0}, Lit(color, 0.85));
        FillBox(canvas, {-2, at - pitch * 0.16, size + 2.0, at - pitch * 0.08}, Lit(color, 1.35));
    }
    AddGrain(canvas, 0.1, seed);
    return canvas;
}

CCanvas DrawRailing(int width, int height, const Color& color, std::uint32_t seed)
{
    CCanvas canvas(width, height, WithAlpha(color, 0));
    for (const double v : {0.12, 0.85}) {
        FillBox(canvas, {-2, height * (v - 0.045), width + 2.0, height * (v + 0.045)}, color);
        FillBox(canvas, {-2, height * (v - 0.045), width + 2.0, height * (v - 0.015)}, Lit(color, 1.6));
    }
    const int posts = 8;
    for (int i = 0; i < posts; ++i) {
        const double x = width * (i + 0.5) / posts;
        FillBox(canvas, {x - width * 0.014, height * 0.12, x + width * 0.014, height * 1.0}, color);
        FillBox(canvas, {x - width * 0.014, height * 0.12, x - width * 0.004, height * 1.0}, Lit(color, 1.5));
        FillPolygon(canvas,
                    {{x, 0},
                     {x + width * 0.03, height * 0.07},
                     {x, height * 0.12},
                     {x - width * 0.03, height * 0.07}},
                    Lit(color, 1.2));
    }
    AddGrain(canvas, 0.1, seed);
    return canvas;
}

}  // namespace Demo
