#include "demo/Vehicle.h"

#include <cmath>

#include "demo/Lettering.h"
#include "demo/Noise.h"
#include "demo/Random.h"
#include "demo/Shapes.h"
#include "demo/Trigonometry.h"
#include "demo/Weather.h"

namespace Demo {

CCanvas DrawNumberPlate(int width, int height, std::string_view number, const Color& ground,
                        std::uint32_t seed)
{
    CCanvas canvas(width, height, ground);
    const double w = width;
    const double h = height;
    canvas.Repaint([&](int, int y, const Color& pixel) { return Lit(pixel, 1.05 - 0.15 * y / height); });
    FillBevel(canvas, {0, 0, w, h}, 2, {1, 1, 1, 0.6}, {0, 0, 0, 0.5});
    DrawTextIn(canvas, number, {w * 0.08 + 1, h * 0.24 + 1, w * 0.92 + 1, h * 0.84 + 1}, h * 0.58,
               {1, 1, 1, 0.6});
    DrawTextIn(canvas, number, {w * 0.08, h * 0.24, w * 0.92, h * 0.84}, h * 0.58, Hex(0x1D2A55));
    for (const double x : {0.1, 0.9})
        FillDisc(canvas, {w * x, h * 0.14}, h * 0.05, Hex(0x6A6A68));
    AddStains(canvas, Hex(0x5A5040), 0.35, seed);
    return canvas;
}

CCanvas DrawWheel(int size, int spokes, const Color& rim, std::uint32_t seed)
{
    CCanvas canvas(size, size, {0.1, 0.1, 0.1, 0});
    const Point center{size / 2.0, size / 2.0};
    const double radius = size * 0.485;
    FillDisc(canvas, center, radius, Hex(0x1C1C1E));
    FillRing(canvas, center, radius * 0.86, size * 0.012, Hex(0x3A3A3C));
    FillRing(canvas, center, radius * 0.94, size * 0.03, Hex(0x29292B));
    FillDisc(canvas, center, radius * 0.66, Lit(rim, 0.75));
    FillDisc(canvas, center, radius * 0.6, Hex(0x151517));
    for (const Point& end : RegularPolygon(center, radius * 0.6, spokes, 0.75)) {
        FillLine(canvas, {center.x + 1, center.y + 1.5}, {end.x + 1, end.y + 1.5}, size * 0.075,
                 {0, 0, 0, 0.6});
        FillLine(canvas, center, end, size * 0.07, Lit(rim, 0.82));
        FillLine(canvas, center, end, size * 0.03, Lit(rim, 1.1));
    }
    FillRing(canvas, center, radius * 0.63, size * 0.025, rim);
    FillDisc(canvas, center, radius * 0.16, Lit(rim, 0.7));
    FillDisc(canvas, {center.x - 1, center.y - 1}, radius * 0.1, Lit(rim, 1.2));
    canvas.Repaint(
        [&](int x, int y, const Color& pixel) { return Lit(pixel, 1.15 - 0.35 * (x + y) / (2.0 * size)); });
    AddGrain(canvas, 0.06, seed);
    return canvas;
}

CCanvas DrawTyreTread(int width, int height, std::uint32_t seed)
{
    CCanvas canvas(width, height, Hex(0x2E2E30));
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double u = (x + 0.5) / width;
        const double v = (y + 0.5) / height;
        const double side = std::fabs(u - 0.5);
        const double slant = v * 8 + (side < 0.25 ? 1.0 : -1.0) * side * 4 + (u < 0.5 ? 0.5 : 0.0);
        const double groove = std::fabs(slant - std::floor(slant) - 0.5);
        const bool isDeep = groove < 0.13 || side < 0.03 || std::fabs(side - 0.25) < 0.03;
        return Lit(pixel,
                   (isDeep ? 0.4 : 1.0 + 0.25 * Smooth(0.13, 0.2, groove) * (1 - Smooth(0.2, 0.3, groove))) *
                       (1 - 0.5 * Smooth(0.38, 0.5, side)));
    });
    AddStains(canvas, Hex(0x6A5F50), 0.35, seed);
    AddGrain(canvas, 0.1, seed + 1);
    return canvas;
}

CCanvas DrawLamp(int size, const Color& glass, bool isOn, std::uint32_t seed)
{
    CCanvas canvas(size, size, Hex(0x55585C));
    const Point center{size / 2.0, size / 2.0};
    FillDisc(canvas, center, size * 0.48, Hex(0xC5C8CA));
    FillDisc(canvas, center, size * 0.43, Hex(0x2A2B2D));
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x) {
            const double distance = DistanceToDisc({x + 0.5, y + 0.5}, center, 0) / (size * 0.41);
            if (distance > 1)
                continue;
            const double rib = 0.5 + 0.5 * SineOfTurns(x * 8.0 / size);
            const double bulb = 1 - Smooth(0, isOn ? 1.0 : 0.35, distance);
            const double light = 0.45 + 0.25 * rib + 0.35 * (1 - static_cast<double>(y) / size);
            canvas.At(x, y) = Mix(Lit(glass, light), {1, 0.98, 0.9}, bulb * (isOn ? 0.95 : 0.5));
        }
    FillDisc(canvas, {size * 0.36, size * 0.32}, size * 0.06, {1, 1, 1, 0.7});
    AddGrain(canvas, 0.04, seed);
    return canvas;
}

CCanvas DrawGrille(int width, int height, int bars, std::uint32_t seed)
{
    CCanvas canvas(width, height, Hex(0x141416));
    for (int i = 0; i < bars; ++i) {
        const double top = height * (i + 0.2) / bars;
        const double bottom = height * (i + 0.75) / bars;
        for (int y = static_cast<int>(top); y < static_cast<int>(bottom); ++y) {
            const double v = (y - top) / (bottom - top);
            const double shine = v < 0.5 ? 1 - v : 0.35 + 0.5 * v;
            for (int x = 0; x < width; ++x)
                canvas.At(x, y) = Lit(Hex(0xD8DCE0), shine);
        }
    }
    const Point center{width / 2.0, height / 2.0};
    FillDisc(canvas, center, height * 0.3, Hex(0x8C1F24));
    FillRing(canvas, center, height * 0.3, height * 0.05, Hex(0xE3E5E6));
    DrawTextIn(
        canvas, "M",
        {center.x - height * 0.2, center.y - height * 0.2, center.x + height * 0.2, center.y + height * 0.2},
        height * 0.3, Hex(0xF0F0EE));
    AddGrain(canvas, 0.05, seed);
    return canvas;
}

CCanvas DrawGauge(int size, std::string_view unit, double needle, std::uint32_t seed)
{
    CCanvas canvas(size, size, Hex(0x26231F));
    const Point center{size / 2.0, size / 2.0};
    const auto at = [&](double share, double radius) {
        const double turn = 0.375 + 0.75 * share;
        return Point{center.x + radius * size * CosineOfTurns(turn),
                     center.y + radius * size * SineOfTurns(turn)};
    };
    FillDisc(canvas, center, size * 0.47, Hex(0x9A9DA0));
    FillDisc(canvas, center, size * 0.44, Hex(0x101214));
    for (int i = 0; i <= 24; ++i)
        FillLine(canvas, at(i / 24.0, i % 4 == 0 ? 0.32 : 0.36), at(i / 24.0, 0.4),
                 i % 4 == 0 ? size / 60.0 : size / 110.0, i > 20 ? Hex(0xD23A30) : Hex(0xE8E6DA));
    for (int i = 0; i <= 6; ++i) {
        const Point spot = at(i / 6.0, 0.25);
        const std::string_view digit = std::string_view("0246810").substr(static_cast<std::size_t>(i), 1);
        DrawTextIn(canvas, i < 5 ? digit : "",
                   {spot.x - size * 0.06, spot.y - size * 0.04, spot.x + size * 0.06, spot.y + size * 0.04},
                   size * 0.07, Hex(0xE8E6DA));
    }
    DrawTextIn(canvas, unit, {size * 0.36, size * 0.78, size * 0.64, size * 0.85}, size * 0.07,
               Hex(0xA8C8E0));
    FillLine(canvas, center, at(needle, 0.36), size / 50.0, Hex(0xE0452E));
    FillDisc(canvas, center, size * 0.05, Hex(0x3A3A3C));
    AddGrain(canvas, 0.03, seed);
    return canvas;
}

CCanvas DrawCamouflage(int size, const Color& ground, const Color& first, const Color& second,
                       std::uint32_t seed)
{
    CCanvas canvas(size, size, ground);
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double u = (x + 0.5) / size;
        const double v = (y + 0.5) / size;
        if (Hills(u, v, {4, 4, 2}, seed) > 0.58)
            return first;
        if (Hills(u, v, {4, 4, 2}, seed + 50) > 0.6)
            return second;
        return Hills(u, v, {4, 4, 2}, seed + 100) > 0.66 ? Lit(second, 0.5) : pixel;
    });
    AddStains(canvas, Hex(0x4A453A), 0.3, seed + 1);
    AddGrain(canvas, 0.06, seed + 2);
    return canvas;
}

CCanvas DrawCarPaint(int size, const Color& color, std::uint32_t seed)
{
    CCanvas canvas(size, size, color);
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double v = (y + 0.5) / size;
        const double flake = ChanceAt(x, y, seed) > 0.9 ? 1.12 : 1;
        const double sky =
            Smooth(0.6, 0, v) * 0.35 + 0.25 * Smooth(0.42, 0.46, v) * (1 - Smooth(0.46, 0.62, v));
        return Mix(Lit(pixel, (1.1 - 0.5 * v) * flake), {0.95, 0.97, 1}, sky);
    });
    return canvas;
}

CCanvas DrawCheckerBand(int width, int height, const Color& color, std::uint32_t seed)
{
    CCanvas canvas(width, height, color);
    const int side = height / 4;
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        if (y < side || y >= height - side)
            return pixel;
        return (x / side + y / side) % 2 == 0 ? Hex(0x18181A) : Hex(0xEDEBE2);
    });
    AddStains(canvas, Hex(0x6A6258), 0.25, seed);
    AddGrain(canvas, 0.04, seed + 1);
    return canvas;
}

CCanvas DrawRoundel(int size, std::string_view number, const Color& rim, std::uint32_t seed)
{
    CCanvas canvas(size, size, WithAlpha(rim, 0));
    const Point center{size / 2.0, size / 2.0};
    FillDisc(canvas, center, size * 0.47, rim);
    FillDisc(canvas, center, size * 0.42, Hex(0xF2F0EA));
    DrawTextIn(canvas, number, {size * 0.2, size * 0.24, size * 0.8, size * 0.76}, size * 0.5, Hex(0x17171A));
    AddStains(canvas, Hex(0x9A9284), 0.3, seed);
    return canvas;
}

CCanvas DrawFlames(int width, int height, std::uint32_t seed)
{
    CCanvas canvas(width, height, Hex(0xE86A1A));
    canvas.Repaint([&](int x, int y, const Color&) {
        const double u = (x + 0.5) / width;
        const double v = (y + 0.5) / height;
        const double tongue = Hills(u * 0.5, v, {2, 5, 3}, seed) * 1.35 - 0.02;
        const double wave = u + 0.08 * SineOfTurns(v * 3 + u);
        const double heat = tongue + 0.15 - wave;
        const Color flame = Mix(Mix(Hex(0xB81E12), Hex(0xF08A1C), Smooth(0, 0.16, heat)), Hex(0xFCE47A),
                                Smooth(0.16, 0.4, heat));
        return WithAlpha(flame, Smooth(0, 0.025, heat));
    });
    return canvas;
}

CCanvas DrawStripes(int width, int height, const Color& color, int count)
{
    CCanvas canvas(width, height, WithAlpha(color, 0));
    for (int i = 0; i < count; ++i) {
        const double top = height * (i + 0.2) / count;
        const double bottom = height * (i + 0.2 + 0.55 * (count - i) / count) / count;
        FillPolygon(
            canvas,
            {{0, top}, {width * (0.98 - 0.12 * i), top}, {width * (0.9 - 0.12 * i), bottom}, {0, bottom}},
            Mix(color, {1, 1, 1}, 0.25 * i / count));
    }
    return canvas;
}

}  // namespace Demo
