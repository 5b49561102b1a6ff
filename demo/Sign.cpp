#include "demo/Sign.h"

#include <cmath>

#include "demo/Brick.h"
#include "demo/Lettering.h"
#include "demo/Noise.h"
#include "demo/Shapes.h"
#include "demo/Weather.h"

namespace Demo {
namespace {
const Color kRed = Hex(0xB3202A);
const Color kWhite = Hex(0xEDEBE4);
const Color kBlack = Hex(0x1C1C1E);

void AddDistanceGlow(CCanvas& canvas, const CCanvas& letters, const Color& glow, int reach)
{
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        double near = 0;
        for (int dy = -reach; dy <= reach; ++dy)
            for (int dx = -reach; dx <= reach; ++dx) {
                const bool isInside =
                    x + dx >= 0 && y + dy >= 0 && x + dx < canvas.Width() && y + dy < canvas.Height();
                if (isInside)
                    near += letters.At(x + dx, y + dy).alpha / (1.5 + dx * dx + dy * dy);
            }
        const double light = Clamp01(near / 7);
        return Color{pixel.red + glow.red * light, pixel.green + glow.green * light,
                     pixel.blue + glow.blue * light, 1};
    });
}

void DrawTriangle(CCanvas& canvas, bool pointsDown, const Color& edge, const Color& ground)
{
    const double w = canvas.Width();
    const double h = canvas.Height();
    const double tip = pointsDown ? 0.95 : 0.05;
    const double base = pointsDown ? 0.1 : 0.9;
    const double inner = pointsDown ? 0.74 : 0.26;
    const double innerBase = pointsDown ? 0.2 : 0.8;
    FillPolygon(canvas, {{w * 0.5, h * tip}, {w * 0.97, h * base}, {w * 0.03, h * base}}, edge);
    FillPolygon(canvas, {{w * 0.5, h * inner}, {w * 0.8, h * innerBase}, {w * 0.2, h * innerBase}}, ground);
}

void DrawPlate(CCanvas& canvas, const Color& ground, const Color& rim)
{
    const double w = canvas.Width();
    const double h = canvas.Height();
    FillBox(canvas, {w * 0.02, h * 0.04, w * 0.98, h * 0.96}, rim, h * 0.12);
    FillBox(canvas, {w * 0.04, h * 0.09, w * 0.96, h * 0.91}, ground, h * 0.1);
}

void DrawDiscSign(CCanvas& canvas, const Color& rim, const Color& ground)
{
    const Point center{canvas.Width() / 2.0, canvas.Height() / 2.0};
    FillDisc(canvas, center, canvas.Width() * 0.47, rim);
    FillDisc(canvas, center, canvas.Width() * 0.37, ground);
}

void DrawOneWay(CCanvas& canvas, std::string_view text)
{
    const double w = canvas.Width();
    const double h = canvas.Height();
    DrawPlate(canvas, kBlack, kWhite);
    FillPolygon(canvas,
                {{w * 0.1, h * 0.3},
                 {w * 0.7, h * 0.3},
                 {w * 0.7, h * 0.16},
                 {w * 0.93, h * 0.5},
                 {w * 0.7, h * 0.84},
                 {w * 0.7, h * 0.7},
                 {w * 0.1, h * 0.7}},
                kWhite);
    DrawTextIn(canvas, text, {w * 0.14, h * 0.36, w * 0.78, h * 0.64}, h * 0.28, kBlack);
}
}  // namespace

CCanvas DrawBoard(int width, int height, const BoardStyle& style)
{
    CCanvas canvas(width, height, style.ground);
    const double w = width;
    const double h = height;
    const double rim = std::max(2.0, h * 0.05);
    canvas.Repaint([&](int, int y, const Color& pixel) { return Lit(pixel, 1.08 - 0.2 * y / height); });
    FillBevel(canvas, {0, 0, w, h}, rim, Lit(style.letters, 0.9), Lit(style.letters, 0.6));
    FillBevel(canvas, {rim, rim, w - rim, h - rim}, 1.5, {0, 0, 0, 0.5}, {1, 1, 1, 0.3});
    const double split = style.second.empty() ? 0.84 : 0.62;
    const Box title{w * 0.1, h * 0.14, w * 0.9, h * split};
    DrawTextIn(canvas, style.text, {title.left + 2, title.top + 2, title.right + 2, title.bottom + 2},
               h * 0.6, {0, 0, 0, 0.45});
    DrawTextIn(canvas, style.text, title, h * 0.6, style.letters);
    if (!style.second.empty())
        DrawTextIn(canvas, style.second, {w * 0.12, h * 0.69, w * 0.88, h * 0.87}, h * 0.17, style.letters);
    AddStreaks(canvas, Hex(0x3A2E22), 0.6 * style.age, style.seed);
    AddStains(canvas, Mix(style.ground, Hex(0x8A8478), 0.6), 0.5 * style.age, style.seed + 1);
    AddGrain(canvas, 0.04, style.seed + 2);
    return canvas;
}

CCanvas DrawNeon(int width, int height, std::string_view text, const Color& glow, bool isOn,
                 std::uint32_t seed)
{
    CCanvas canvas = DrawBricks(width, height,
                                {.piece = Hex(0x4A3A3A),
                                 .joint = Hex(0x2C2829),
                                 .columns = width / 24,
                                 .rows = height / 10,
                                 .jointWidth = 1.5,
                                 .seed = seed});
    canvas.Repaint([](int, int, const Color& pixel) { return Lit(pixel, 0.55); });
    CCanvas letters(width, height, {1, 1, 1, 0});
    const Box box{width * 0.1, height * 0.2, width * 0.9, height * 0.8};
    DrawTextIn(letters, text, box, height * 0.55, {1, 1, 1, 1});
    if (isOn)
        AddDistanceGlow(canvas, letters, glow, 9);
    const Color tube = isOn ? Mix(glow, {1, 1, 1}, 0.55) : Mix(Lit(glow, 0.35), Hex(0x8A8A88), 0.5);
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        return Over(pixel, WithAlpha(tube, letters.At(x, y).alpha));
    });
    return canvas;
}

CCanvas DrawBillboard(int width, int height, std::string_view text, std::string_view second, const Color& sky,
                      std::uint32_t seed)
{
    CCanvas canvas(width, height, sky);
    const double w = width;
    const double h = height;
    canvas.Repaint([&](int, int y, const Color& pixel) {
        return Mix(pixel, Hex(0xF6D9A0), Smooth(0, 0.75, static_cast<double>(y) / height));
    });
    FillDisc(canvas, {w * 0.72, h * 0.55}, h * 0.2, Hex(0xFFF0C0));
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double u = (x + 0.5) / width;
        const double v = (y + 0.5) / height;
        const double far = 0.62 + 0.22 * (Hills(u, 0.5, {4, 1, 4}, seed) - 0.5);
        const double near = 0.78 + 0.2 * (Hills(u, 0.5, {3, 1, 5}, seed + 1) - 0.5);
        if (v > near)
            return Mix(Hex(0x24382E), Hex(0x4A5A34), (v - near) * 3);
        return v > far ? Mix(Hex(0x6A5A72), Hex(0xB08A7A), (v - far) * 3) : pixel;
    });
    DrawTextIn(canvas, text, {w * 0.06 + 3, h * 0.1 + 3, w * 0.94 + 3, h * 0.42 + 3}, h * 0.3,
               {0, 0, 0, 0.4});
    DrawTextIn(canvas, text, {w * 0.06, h * 0.1, w * 0.94, h * 0.42}, h * 0.3, kWhite);
    DrawTextIn(canvas, second, {w * 0.1, h * 0.83, w * 0.9, h * 0.93}, h * 0.1, kWhite);
    FillBevel(canvas, {0, 0, w, h}, 3, Hex(0xB8B4AA), Hex(0x6A665E));
    // Posters come in sheets; their seams show.
    for (int i = 1; i < 4; ++i)
        FillBox(canvas, {w * i / 4 - 0.5, 3, w * i / 4 + 0.5, h - 3}, {0, 0, 0, 0.18});
    AddStreaks(canvas, Hex(0x4A4238), 0.3, seed + 2);
    return canvas;
}

CCanvas DrawRoadSign(int width, int height, RoadSign sign, std::string_view text, std::uint32_t seed)
{
    CCanvas canvas(width, height, {0.5, 0.5, 0.5, 0});
    const double w = width;
    const double h = height;
    const Box middle{w * 0.2, h * 0.3, w * 0.8, h * 0.7};
    switch (sign) {
        case RoadSign::Stop:
            FillPolygon(canvas, RegularPolygon({w / 2, h / 2}, w * 0.49, 8, 1.0 / 16), kWhite);
            FillPolygon(canvas, RegularPolygon({w / 2, h / 2}, w * 0.45, 8, 1.0 / 16), kRed);
            DrawTextIn(canvas, text, {w * 0.14, h * 0.3, w * 0.86, h * 0.7}, h * 0.34, kWhite);
            break;
        case RoadSign::Yield:
            DrawTriangle(canvas, true, kRed, kWhite);
            break;
        case RoadSign::Warning:
            DrawTriangle(canvas, false, kRed, kWhite);
            DrawTextIn(canvas, text, {w * 0.3, h * 0.42, w * 0.7, h * 0.78}, h * 0.34, kBlack);
            break;
        case RoadSign::SpeedLimit:
            DrawDiscSign(canvas, kRed, kWhite);
            DrawTextIn(canvas, text, middle, h * 0.36, kBlack);
            break;
        case RoadSign::NoEntry:
            DrawDiscSign(canvas, kRed, kRed);
            FillBox(canvas, {w * 0.18, h * 0.42, w * 0.82, h * 0.58}, kWhite);
            break;
        case RoadSign::Parking:
            DrawPlate(canvas, Hex(0x1E4F9C), kWhite);
            DrawTextIn(canvas, text, {w * 0.2, h * 0.18, w * 0.8, h * 0.82}, h * 0.6, kWhite);
            break;
        case RoadSign::OneWay:
            DrawOneWay(canvas, text);
            break;
        case RoadSign::Street:
            DrawPlate(canvas, Hex(0x1F6B42), kWhite);
            DrawTextIn(canvas, text, {w * 0.08, h * 0.2, w * 0.92, h * 0.8}, h * 0.5, kWhite);
            break;
    }
    AddStreaks(canvas, Hex(0x4A3A2A), 0.35, seed);
    AddGrain(canvas, 0.04, seed + 1);
    return canvas;
}

}  // namespace Demo
