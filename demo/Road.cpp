#include "demo/Road.h"

#include <cmath>

#include "demo/Brick.h"
#include "demo/Ground.h"
#include "demo/Lettering.h"
#include "demo/Noise.h"
#include "demo/Random.h"
#include "demo/Relief.h"
#include "demo/Shapes.h"
#include "demo/Weather.h"

namespace Demo {
namespace {
const Color kWhitePaint = Hex(0xD9D8D0);
const Color kYellowPaint = Hex(0xC9A227);

// Paint is drawn on a layer of its own, so that wear can take it off again.
void AddWornPaint(CCanvas& road, const CCanvas& paint, std::uint32_t seed)
{
    road.Repaint([&](int x, int y, const Color& asphalt) {
        const double u = (x + 0.5) / road.Width();
        const double v = (y + 0.5) / road.Height();
        const double wear = Hills(u, v, {road.Width() / 8, road.Height() / 8, 4}, seed);
        const double stays = 1 - 0.75 * Smooth(0.5, 0.72, wear);
        const Color& color = paint.At(x, y);
        const double light = (asphalt.red + asphalt.green + asphalt.blue) / 0.9;
        return Over(asphalt, WithAlpha(Lit(color, std::clamp(light, 0.75, 1.08)), color.alpha * stays));
    });
}

void PaintArrow(CCanvas& paint)
{
    const double w = paint.Width();
    const double h = paint.Height();
    FillBox(paint, {w * 0.45, h * 0.4, w * 0.55, h * 0.85}, kWhitePaint);
    FillPolygon(paint, {{w * 0.5, h * 0.12}, {w * 0.68, h * 0.42}, {w * 0.32, h * 0.42}}, kWhitePaint);
}

void PaintMarking(CCanvas& paint, Marking marking)
{
    const double w = paint.Width();
    const double h = paint.Height();
    switch (marking) {
        case Marking::DashedCenter:
            FillBox(paint, {w * 0.48, h * 0.15, w * 0.52, h * 0.65}, kWhitePaint);
            break;
        case Marking::DoubleCenter:
            FillBox(paint, {w * 0.455, -4, w * 0.485, h + 4}, kYellowPaint);
            FillBox(paint, {w * 0.515, -4, w * 0.545, h + 4}, kYellowPaint);
            break;
        case Marking::EdgeLines:
            FillBox(paint, {w * 0.06, -4, w * 0.09, h + 4}, kYellowPaint);
            FillBox(paint, {w * 0.91, -4, w * 0.94, h + 4}, kWhitePaint);
            break;
        case Marking::Crossing:
            for (int i = 0; i < 4; ++i)
                FillBox(paint, {w * (0.0625 + 0.25 * i), h * 0.1, w * (0.1875 + 0.25 * i), h * 0.9},
                        kWhitePaint);
            break;
        case Marking::Arrow:
            PaintArrow(paint);
            break;
        case Marking::StopLine:
            FillBox(paint, {w * 0.04, h * 0.08, w * 0.96, h * 0.2}, kWhitePaint);
            DrawTextIn(paint, "STOP", {w * 0.1, h * 0.35, w * 0.9, h * 0.85}, h * 0.5, kWhitePaint);
            break;
        case Marking::Parking:
            FillBox(paint, {w * 0.02, -4, w * 0.06, h + 4}, kWhitePaint);
            FillBox(paint, {w * 0.94, -4, w * 0.98, h + 4}, kWhitePaint);
            FillBox(paint, {-4, h * 0.02, w + 4, h * 0.06}, kWhitePaint);
            break;
        case Marking::Bus:
            FillBox(paint, {w * 0.03, -4, w * 0.07, h + 4}, kYellowPaint);
            DrawTextIn(paint, "BUS", {w * 0.15, h * 0.25, w * 0.9, h * 0.75}, h * 0.4, kYellowPaint);
            break;
    }
}
}  // namespace

CCanvas DrawAsphalt(int width, int height, double age, std::uint32_t seed)
{
    CCanvas canvas(width, height, Mix(Hex(0x3E3F42), Hex(0x6C6A66), age));
    CRelief relief(width, height);
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double u = (x + 0.5) / width;
        const double v = (y + 0.5) / height;
        const double chip = ChanceAt(x, y, seed) > 0.93 ? 1.35 : 1;
        relief.At(x, y) = ChanceAt(x, y, seed + 1);
        return Lit(pixel, (0.85 + 0.3 * Hills(u, v, {3, 3, 5}, seed + 2)) * chip);
    });
    relief.Shade(canvas, 0.16);
    AddCracks(canvas, 4, 0.7 * age, seed + 3);
    AddStains(canvas, Hex(0x232325), 0.35, seed + 4);
    AddGrain(canvas, 0.08, seed + 5);
    return canvas;
}

CCanvas DrawRoad(int width, int height, Marking marking, std::uint32_t seed)
{
    CCanvas road = DrawAsphalt(width, height, 0.35, seed);
    // Wheels polish two tracks a lane.
    road.Repaint([&](int x, int, const Color& pixel) {
        const double lane = std::fabs(std::fabs((x + 0.5) / width - 0.5) - 0.25);
        return Lit(pixel, 1.06 - 0.14 * Smooth(0.03, 0.12, lane) * (1 - Smooth(0.12, 0.2, lane)));
    });
    CCanvas paint(width, height, {0, 0, 0, 0});
    PaintMarking(paint, marking);
    AddWornPaint(road, paint, seed + 11);
    return road;
}

CCanvas DrawKerb(int width, int height, std::uint32_t seed)
{
    CCanvas canvas = DrawAsphalt(width, height, 0.4, seed);
    const CCanvas slabs = DrawBricks(width, height,
                                     {.piece = Hex(0x9D978C),
                                      .joint = Hex(0x5C574F),
                                      .columns = 4,
                                      .rows = 4,
                                      .shifted = false,
                                      .variety = 0.08,
                                      .seed = seed + 1});
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double u = (x + 0.5) / width;
        if (u < 0.36)
            return Lit(pixel, 1 - 0.45 * Smooth(0.2, 0.36, u));
        if (u < 0.5) {
            const double top = Smooth(0.4, 0.44, u);
            const double joint = y % (height / 2) < 2 ? 0.55 : 1;
            return Lit(Hex(0xA9A59B), (0.55 + 0.5 * top) * joint * (0.9 + 0.2 * ChanceAt(x, y, seed)));
        }
        return slabs.At(x, y);
    });
    return canvas;
}

CCanvas DrawManhole(int size, std::uint32_t seed)
{
    CCanvas canvas = DrawAsphalt(size, size, 0.4, seed);
    const Point center{size / 2.0, size / 2.0};
    const double radius = size * 0.4;
    FillDisc(canvas, center, radius * 1.1, Hex(0x2A2928));
    FillDisc(canvas, center, radius, Hex(0x5A544C));
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x) {
            if (DistanceToDisc({x + 0.5, y + 0.5}, center, radius * 0.9) > 0)
                continue;
            const int cell = size / 16;
            const bool knob = (x / cell + y / cell) % 2 == 0;
            canvas.Blend(x, y, knob ? Color{1, 0.95, 0.85, 0.22} : Color{0, 0, 0, 0.3});
        }
    FillRing(canvas, center, radius * 0.93, 1.5, {0, 0, 0, 0.6});
    AddStains(canvas, Hex(0x5A3520), 0.4, seed + 2);
    AddGrain(canvas, 0.1, seed + 3);
    return canvas;
}

CCanvas DrawRails(int width, int height, std::uint32_t seed)
{
    CCanvas canvas = DrawCobbles(width, Hex(0x7C756C), width / 8, seed).Cut(0, 0, width, height);
    for (int i = 0; i < 4; ++i) {
        const double top = height * (i + 0.2) / 4;
        FillBox(canvas, {width * 0.08, top + 2, width * 0.92, top + height * 0.12 + 3}, {0, 0, 0, 0.4});
        FillBox(canvas, {width * 0.08, top, width * 0.92, top + height * 0.12}, Hex(0x4A3728));
    }
    for (const double rail : {0.24, 0.76}) {
        FillBox(canvas, {width * (rail - 0.035), -4, width * (rail + 0.05), height + 4.0}, {0, 0, 0, 0.5});
        FillBox(canvas, {width * (rail - 0.03), -4, width * (rail + 0.03), height + 4.0}, Hex(0x6A4A36));
        FillBox(canvas, {width * (rail - 0.014), -4, width * (rail + 0.014), height + 4.0}, Hex(0xC4C6C8));
    }
    AddGrain(canvas, 0.12, seed + 1);
    return canvas;
}

CCanvas DrawSkidMarks(int width, int height, std::uint32_t seed)
{
    CCanvas canvas(width, height, {0.05, 0.05, 0.05, 0});
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double u = (x + 0.5) / width;
        const double v = (y + 0.5) / height;
        const double track = 1 - Smooth(0.06, 0.12, std::fabs(std::fabs(u - 0.5) - 0.25));
        const double rubber = Smooth(0.2, 0.6, Hills(u, v, {width / 2, 4, 3}, seed));
        const double fade = Smooth(0, 0.15, v) * (1 - Smooth(0.8, 1, v));
        return WithAlpha(pixel, 0.75 * track * rubber * fade);
    });
    return canvas;
}

}  // namespace Demo
