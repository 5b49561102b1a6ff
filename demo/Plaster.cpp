#include "demo/Plaster.h"

#include "demo/Brick.h"
#include "demo/Noise.h"
#include "demo/Relief.h"
#include "demo/Shapes.h"
#include "demo/Weather.h"

namespace Demo {

CCanvas DrawPlaster(int width, int height, const Color& color, double age, std::uint32_t seed)
{
    CCanvas canvas(width, height, color);
    CRelief relief(width, height);
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double u = (x + 0.5) / width;
        const double v = (y + 0.5) / height;
        relief.At(x, y) = Hills(u, v, {width / 8, height / 8, 3}, seed);
        return Lit(pixel, 0.92 + 0.16 * Hills(u, v, {3, 3, 5}, seed + 1));
    });
    relief.Shade(canvas, 0.45);
    AddStreaks(canvas, Hex(0x4A4238), 0.5 * age, seed + 2);
    AddStains(canvas, Hex(0x6B6353), 0.35 * age, seed + 3);
    AddCracks(canvas, 3, 0.5 * age, seed + 4);
    AddGrain(canvas, 0.03, seed + 5);
    return canvas;
}

CCanvas DrawConcrete(int width, int height, const Color& color, int panels, std::uint32_t seed)
{
    CCanvas canvas(width, height, color);
    CRelief relief(width, height);
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double u = (x + 0.5) / width;
        const double v = (y + 0.5) / height;
        const double hole = Smooth(0.84, 0.92, Hills(u, v, {width / 4, height / 4, 1}, seed + 7));
        relief.At(x, y) = 0.7 * Hills(u, v, {8, 8, 5}, seed) - 0.5 * hole;
        return Lit(pixel, (0.8 + 0.4 * Hills(u, v, {4, 4, 6}, seed + 1)) * (1 - 0.25 * hole));
    });
    relief.Shade(canvas, 0.5);
    for (int i = 0; i < panels * panels; ++i) {
        const double side = static_cast<double>(width) / panels;
        const double down = static_cast<double>(height) / panels;
        const double left = i % panels * side;
        const double top = i / panels * down;
        FillBevel(canvas, {left, top, left + side, top + down}, 1.2, {1, 1, 1, 0.22}, {0, 0, 0, 0.5});
        for (const double dx : {0.2, 0.8})
            for (const double dy : {0.2, 0.8}) {
                const Point center{left + dx * side, top + dy * down};
                FillDisc(canvas, center, side * 0.03 + 0.5, {0.08, 0.08, 0.08, 0.6});
            }
    }
    AddStreaks(canvas, Hex(0x3C3A36), 0.4, seed + 2);
    AddGrain(canvas, 0.06, seed + 5);
    return canvas;
}

CCanvas DrawPeelingPlaster(int width, int height, const Color& color, std::uint32_t seed)
{
    CCanvas canvas = DrawPlaster(width, height, color, 0.9, seed);
    const CCanvas bricks =
        DrawBricks(width, height,
                   {.piece = Hex(0x8A4A38), .joint = Hex(0x9A9184), .columns = 4, .rows = 8, .seed = seed});
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double u = (x + 0.5) / width;
        const double v = (y + 0.5) / height;
        const double bare = Hills(u, v, {2, 2, 6}, seed + 21);
        // Above the hole the plaster throws a shadow onto the bricks; below it shows its bright edge.
        const double above = Hills(u - 2.0 / width, v - 3.0 / height, {2, 2, 6}, seed + 21);
        if (bare > 0.6)
            return Lit(bricks.At(x, y), above < 0.6 ? 0.5 : 0.9);
        return Lit(pixel, above > 0.6 ? 1.25 : 1);
    });
    return canvas;
}

}  // namespace Demo
