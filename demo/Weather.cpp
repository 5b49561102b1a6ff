#include "demo/Weather.h"

#include "demo/Noise.h"
#include "demo/Random.h"

namespace Demo {
namespace {
double PartOf(int position, int size)
{
    return (position + 0.5) / size;
}
}  // namespace

void AddGrain(CCanvas& canvas, double amount, std::uint32_t seed)
{
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        return Lit(pixel, 1 + amount * (ChanceAt(x, y, seed) * 2 - 1));
    });
}

void AddStains(CCanvas& canvas, const Color& color, double amount, std::uint32_t seed)
{
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double patch = Hills(PartOf(x, canvas.Width()), PartOf(y, canvas.Height()), {3, 3, 5}, seed);
        return WithAlpha(Mix(pixel, color, amount * Smooth(0.42, 0.75, patch)), pixel.alpha);
    });
}

void AddStreaks(CCanvas& canvas, const Color& color, double amount, std::uint32_t seed)
{
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double v = PartOf(y, canvas.Height());
        const double streak = Hills(PartOf(x, canvas.Width()), v, {canvas.Width() / 4, 2, 3}, seed);
        const double reach = Hills(PartOf(x, canvas.Width()), 0.5, {canvas.Width() / 8, 1, 2}, seed + 9);
        const double share = Smooth(0.45, 0.8, streak) * Smooth(1.1 - reach, 1.5 - reach, v + 0.35);
        return WithAlpha(Mix(pixel, color, amount * share), pixel.alpha);
    });
}

void AddCracks(CCanvas& canvas, int cells, double amount, std::uint32_t seed)
{
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double u = PartOf(x, canvas.Width());
        const double v = PartOf(y, canvas.Height());
        const double bend = 0.05 * (Hills(u, v, {8, 8, 3}, seed + 3) - 0.5);
        const Cell cell = CellAt(u + bend, v + bend, cells, cells, seed);
        const double width = 1.6 * cells / canvas.Width();
        const double fades = Smooth(0.35, 0.6, Hills(u, v, {4, 4, 2}, seed + 5));
        return Lit(pixel, 1 - amount * fades * (1 - Smooth(0, width, cell.border)));
    });
}

void TurnToNight(CCanvas& canvas)
{
    canvas.Repaint([](int, int, const Color& pixel) {
        const double gray = (pixel.red + pixel.green + pixel.blue) / 3;
        const Color dull = WithAlpha(Mix(pixel, {gray, gray, gray}, 0.45), pixel.alpha);
        return Color{dull.red * 0.26, dull.green * 0.31, dull.blue * 0.46, pixel.alpha};
    });
}

void MakeWet(CCanvas& canvas, std::uint32_t seed)
{
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double puddle =
            Smooth(0.58, 0.66, Hills(PartOf(x, canvas.Width()), PartOf(y, canvas.Height()), {3, 3, 4}, seed));
        const double sky = Hills(PartOf(x, canvas.Width()), PartOf(y, canvas.Height()), {2, 8, 3}, seed + 4);
        const Color mirror = Mix(Hex(0x3A4350), Hex(0x97A7B8), sky * sky * 1.3);
        return WithAlpha(Mix(Lit(pixel, 0.55), mirror, 0.75 * puddle), pixel.alpha);
    });
}

}  // namespace Demo
