#include "demo/Sky.h"

#include <cmath>

#include "demo/Noise.h"
#include "demo/Random.h"
#include "demo/Shapes.h"
#include "demo/Trigonometry.h"

namespace Demo {

CCanvas DrawSky(int width, int height, const Color& top, const Color& horizon, double clouds, double stars,
                std::uint32_t seed)
{
    CCanvas canvas(width, height, top);
    canvas.Repaint([&](int x, int y, const Color&) {
        const double u = (x + 0.5) / width;
        const double v = (y + 0.5) / height;
        const Color sky = Mix(top, horizon, v * v * (1.6 - 0.6 * v));
        const double puff = Hills(u, v * 0.5, {3, 4, 6}, seed);
        const double cover = clouds * Smooth(0.5, 0.72, puff) * Smooth(0, 0.25, v + 0.1);
        const double under = Hills(u, v * 0.5 + 0.02, {3, 4, 6}, seed);
        const Color cloud = Lit(Mix(horizon, {1, 1, 1}, 0.75), 1 - 1.1 * Clamp01(under - 0.55));
        const double star = ChanceAt(x, y, seed + 5) < stars ? ChanceAt(x, y, seed + 6) * (1 - v) : 0.0;
        return Mix(Mix(sky, {1, 1, 0.95}, star), cloud, cover);
    });
    return canvas;
}

CCanvas DrawRamp(int width, int height, const Color& top, const Color& bottom)
{
    CCanvas canvas(width, height, top);
    canvas.Repaint([&](int, int y, const Color&) { return Mix(top, bottom, y / (height - 1.0)); });
    return canvas;
}

CCanvas DrawCloud(int width, int height, std::uint32_t seed)
{
    CCanvas canvas(width, height, {1, 1, 1, 0});
    canvas.Repaint([&](int x, int y, const Color&) {
        const double u = (x + 0.5) / width;
        const double v = (y + 0.5) / height;
        const double dx = (u - 0.5) * 2;
        const double dy = (v - 0.55) * 2.4;
        const double puff = Hills(u, v, {4, 3, 6}, seed);
        const double body = 1 - dx * dx - dy * dy + 1.3 * (puff - 0.5);
        const double light = 0.98 - 0.3 * Smooth(0.35, 0.85, v) - 0.25 * Clamp01(0.5 - puff);
        return Color{light, light, light * 1.02, Smooth(0.25, 0.75, body)};
    });
    return canvas;
}

CCanvas DrawGlow(int size, const Color& color, int rays, std::uint32_t seed)
{
    CCanvas canvas(size, size, WithAlpha(color, 0));
    const Point center{size / 2.0, size / 2.0};
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double distance = DistanceToDisc({x + 0.5, y + 0.5}, center, 0) / (size / 2.0);
        const double fall = Clamp01(1 - distance);
        return WithAlpha(Mix(pixel, {1, 1, 1}, Smooth(0.7, 1, fall)),
                         fall * fall * 0.8 + Smooth(0.75, 0.95, fall));
    });
    CRandom random(seed);
    for (int i = 0; i < rays; ++i) {
        const double turn = static_cast<double>(i) / rays + random.Between(-0.01, 0.01);
        const double reach = size * random.Between(0.28, 0.47);
        const double width = size * 0.012;
        const Point tip{center.x + reach * CosineOfTurns(turn), center.y + reach * SineOfTurns(turn)};
        const Point left{center.x - width * SineOfTurns(turn), center.y + width * CosineOfTurns(turn)};
        const Point right{center.x + width * SineOfTurns(turn), center.y - width * CosineOfTurns(turn)};
        FillPolygon(canvas, {left, tip, right}, WithAlpha(Mix(color, {1, 1, 1}, 0.5), 0.5));
    }
    return canvas;
}

CCanvas DrawSmoke(int size, const Color& color, std::uint32_t seed)
{
    CCanvas canvas(size, size, WithAlpha(color, 0));
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double u = (x + 0.5) / size;
        const double v = (y + 0.5) / size;
        const double distance = DistanceToDisc({u, v}, {0.5, 0.5}, 0) * 2;
        const double curl = Hills(u + 0.2 * Hills(u, v, {3, 3, 3}, seed + 1), v, {4, 4, 5}, seed);
        return WithAlpha(Lit(pixel, 0.6 + 0.8 * curl),
                         Smooth(0.95, 0.2, distance + 0.9 * (curl - 0.5)) * 0.9);
    });
    return canvas;
}

CCanvas DrawShadow(int size, double roundness)
{
    CCanvas canvas(size, size, {0, 0, 0, 0});
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double inset = size * 0.3;
        const double distance = DistanceToBox({x + 0.5, y + 0.5}, {inset, inset, size - inset, size - inset},
                                              roundness * size * 0.2);
        return WithAlpha(pixel, 0.65 * Smooth(size * 0.25, -size * 0.1, distance));
    });
    return canvas;
}

CCanvas DrawRain(int width, int height, std::uint32_t seed)
{
    CCanvas canvas(width, height, {0.8, 0.86, 0.92, 0});
    CRandom random(seed);
    for (int i = 0; i < width / 2; ++i) {
        const Point from{random.Between(0, width), random.Between(0, height)};
        const double length = height * random.Between(0.06, 0.18);
        FillLine(canvas, from, {from.x + length * 0.08, from.y + length}, 0.8,
                 {0.85, 0.9, 0.96, random.Between(0.2, 0.7)});
    }
    return canvas;
}

CCanvas DrawSplash(int size, const Color& color, std::uint32_t seed)
{
    CCanvas canvas(size, size, WithAlpha(color, 0));
    CRandom random(seed);
    FillDisc(canvas, {size * 0.5, size * 0.5}, size * 0.16, color);
    for (int i = 0; i < 46; ++i) {
        const double turn = random.Next();
        const double reach = size * random.Between(0.1, 0.42);
        const Point at{size * 0.5 + reach * CosineOfTurns(turn), size * 0.5 + reach * SineOfTurns(turn)};
        FillDisc(canvas, at, size * 0.07 * (1.15 - reach / (size * 0.45)) * random.Between(0.5, 1.4), color);
        if (i % 3 == 0)
            FillLine(canvas, {size * 0.5, size * 0.5}, at, size * 0.02, color);
    }
    return canvas;
}

}  // namespace Demo
