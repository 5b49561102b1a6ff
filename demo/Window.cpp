#include "demo/Window.h"

#include <array>

#include "demo/Noise.h"
#include "demo/Plaster.h"
#include "demo/Random.h"
#include "demo/Shapes.h"
#include "demo/Trigonometry.h"
#include "demo/Weather.h"

namespace Demo {
namespace {
struct Room {
    Hour hour = Hour::Day;
    bool isLit = false;
    std::uint32_t seed = 1;
};

// What one sees in a pane: by day the sky and the houses opposite, by night a lit room or the dark.
Color Reflection(double u, double v, const Room& room)
{
    if (room.hour == Hour::Night) {
        const Color lamp = ChanceAt(3, 1, room.seed) > 0.3 ? Hex(0xF6CE7A) : Hex(0xBFD4E6);
        const double fall = 1 - 0.45 * v - 0.3 * (u - 0.5) * (u - 0.5);
        return room.isLit ? Lit(lamp, fall) : Lit(Hex(0x141C2A), 1.2 - 0.6 * v);
    }
    const double skyline = 0.55 + 0.25 * (ChanceAt(static_cast<int>(u * 5), 1, room.seed) - 0.5);
    const Color sky = Mix(Hex(0x8FB0CC), Hex(0xC6D5DD), v);
    const Color houses = Mix(Hex(0x47525A), Hex(0x2C343A), v);
    const double streak = Smooth(0.35, 0.4, u + 0.5 * v - 0.2) * (1 - Smooth(0.55, 0.6, u + 0.5 * v - 0.2));
    return Lit(v < skyline ? sky : houses, 0.75 + 0.25 * streak);
}

void FillPanes(CCanvas& canvas, const Box& box, const Room& room)
{
    for (int y = static_cast<int>(box.top); y < static_cast<int>(box.bottom); ++y)
        for (int x = static_cast<int>(box.left); x < static_cast<int>(box.right); ++x)
            canvas.At(x, y) = Reflection((x - box.left) / (box.right - box.left),
                                         (y - box.top) / (box.bottom - box.top), room);
}

// A blind or a pair of curtains, sometimes.
void AddCurtains(CCanvas& canvas, const Box& box, const Room& room)
{
    const double chance = ChanceAt(7, 7, room.seed);
    const Color cloth = Lit(Mix(Hex(0xD8CFBE), Hex(0x9C4A42), ChanceAt(8, 1, room.seed)),
                            room.hour == Hour::Day ? 0.85 : (room.isLit ? 0.9 : 0.16));
    const double width = box.right - box.left;
    if (chance < 0.35) {
        const double bottom = box.top + (box.bottom - box.top) * (0.2 + 0.6 * ChanceAt(9, 2, room.seed));
        for (double y = box.top; y < bottom; y += 3) {
            FillBox(canvas, {box.left, y, box.right, std::min(y + 2, bottom)}, WithAlpha(cloth, 0.9));
            FillBox(canvas, {box.left, y + 2, box.right, std::min(y + 3, bottom)},
                    WithAlpha(Lit(cloth, 0.5), 0.9));
        }
    } else if (chance < 0.7) {
        for (int i = 0; i < 4; ++i) {
            const double fold = width * 0.07;
            const Color tone = WithAlpha(Lit(cloth, i % 2 == 0 ? 1 : 0.7), 0.92);
            FillBox(canvas, {box.left + i * fold, box.top, box.left + (i + 1) * fold, box.bottom}, tone);
            FillBox(canvas, {box.right - (i + 1) * fold, box.top, box.right - i * fold, box.bottom}, tone);
        }
    }
}

void AddFrame(CCanvas& canvas, const Box& box, const Color& frame, int panes, double thickness)
{
    FillBevel(canvas, box, thickness, frame, Lit(frame, 0.8));
    for (int i = 1; i < panes; ++i) {
        const double x = Mix(box.left, box.right, static_cast<double>(i) / panes);
        const double y = Mix(box.top, box.bottom, static_cast<double>(i) / panes);
        FillBox(canvas, {x - thickness / 2, box.top, x + thickness / 2, box.bottom}, frame);
        FillBox(canvas, {box.left, y - thickness / 2, box.right, y + thickness / 2}, Lit(frame, 0.9));
        FillBox(canvas, {box.left, y + thickness / 2, box.right, y + thickness / 2 + 1}, {0, 0, 0, 0.35});
    }
}
}  // namespace

CCanvas DrawWindow(int width, int height, const Color& frame, int panes, Hour hour, std::uint32_t seed)
{
    CCanvas canvas(width, height, frame);
    const double border = width * 0.07 + 1;
    const Box glass{border, border, width - border, height - border * 1.4};
    const Color wood = hour == Hour::Day ? frame : Lit(frame, 0.3);
    FillBox(canvas, {0, 0, width * 1.0, height * 1.0}, wood);
    FillBevel(canvas, {0, 0, width * 1.0, height * 1.0}, border / 3, Lit(wood, 1.2), Lit(wood, 0.6));
    const Room room{hour, ChanceAt(1, 1, seed) > 0.3, seed};
    FillPanes(canvas, glass, room);
    AddCurtains(canvas, glass, room);
    FillBox(canvas, {glass.left, glass.top, glass.right, glass.top + 3}, {0, 0, 0, 0.4});
    FillBox(canvas, {glass.left, glass.top, glass.left + 2, glass.bottom}, {0, 0, 0, 0.3});
    AddFrame(canvas, glass, wood, panes, std::max(2.0, width * 0.035));
    FillBox(canvas, {0, height - border * 0.9, width * 1.0, height * 1.0}, Lit(wood, 1.15));
    FillBox(canvas, {0, height - border * 0.9, width * 1.0, height - border * 0.6}, Lit(wood, 1.35));
    AddGrain(canvas, 0.04, seed + 1);
    return canvas;
}

CCanvas DrawOfficeFront(int width, int height, const Color& wall, int columns, int rows, Hour hour,
                        std::uint32_t seed)
{
    CCanvas canvas = DrawPlaster(width, height, wall, 0.5, seed);
    if (hour == Hour::Night)
        TurnToNight(canvas);
    const double across = static_cast<double>(width) / columns;
    const double down = static_cast<double>(height) / rows;
    const Color frame = hour == Hour::Day ? Hex(0xB9B4A8) : Hex(0x23262C);
    for (int i = 0; i < columns * rows; ++i) {
        const double left = i % columns * across;
        const double top = i / columns * down;
        const Box box{left + across * 0.2, top + down * 0.18, left + across * 0.8, top + down * 0.8};
        const std::uint32_t own = seed * 131 + static_cast<std::uint32_t>(i);
        const Room room{hour, ChanceAt(i, 5, seed) > 0.55, own};
        FillBox(canvas, {box.left - 2, box.top - 2, box.right + 2, box.bottom + 2}, Lit(frame, 0.55));
        FillPanes(canvas, box, room);
        AddCurtains(canvas, box, room);
        FillBox(canvas, {box.left, box.top, box.right, box.top + 2.5}, {0, 0, 0, 0.5});
        AddFrame(canvas, box, frame, 2, std::max(1.2, across * 0.03));
        FillBox(canvas, {box.left - 3, box.bottom, box.right + 3, box.bottom + 3}, Lit(frame, 1.15));
        FillBox(canvas, {box.left - 3, box.bottom + 3, box.right + 3, box.bottom + 5}, {0, 0, 0, 0.4});
    }
    return canvas;
}

CCanvas DrawGlassFront(int size, const Color& tint, int columns, int rows, Hour hour, std::uint32_t seed)
{
    CCanvas canvas(size, size, tint);
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const int column = x * columns / size;
        const int row = y * rows / size;
        const double u = static_cast<double>(x * columns % size) / size;
        const double v = static_cast<double>(y * rows % size) / size;
        if (hour == Hour::Night) {
            const bool isLit = ChanceAt(column, row, seed) > 0.6;
            const Color lamp = Mix(Hex(0xE8D9A0), Hex(0xB8D0E0), ChanceAt(column, row, seed + 1));
            return isLit ? Lit(lamp, 0.95 - 0.4 * v) : Lit(pixel, 0.16 + 0.06 * u);
        }
        const double cloud = Hills((x + 0.5) / size, (y + 0.5) / size, {2, 2, 4}, seed);
        const Color mirror = Mix(pixel, Hex(0xDCE8EE), Smooth(0.45, 0.7, cloud) * 0.6);
        return Lit(mirror, 0.8 + 0.25 * ChanceAt(column, row, seed) - 0.15 * v);
    });
    const Color bar = hour == Hour::Day ? Hex(0x767E84) : Hex(0x15181C);
    for (int i = 0; i < columns; ++i)
        FillBox(canvas, {i * 1.0 * size / columns - 1, -2, i * 1.0 * size / columns + 1, size + 2.0}, bar);
    for (int i = 0; i < rows; ++i) {
        const double y = i * 1.0 * size / rows;
        FillBox(canvas, {-2, y - 1.5, size + 2.0, y + 1.5}, bar);
        FillBox(canvas, {-2, y + 1.5, size + 2.0, y + 2.5}, {0, 0, 0, 0.3});
    }
    return canvas;
}

CCanvas DrawPane(int width, int height, const Color& tint, double alpha, std::uint32_t seed)
{
    CCanvas canvas(width, height, WithAlpha(tint, alpha));
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double u = (x + 0.5) / width;
        const double v = (y + 0.5) / height;
        const double slant = u + v;
        const double band = Smooth(0.5, 0.56, slant) * (1 - Smooth(0.8, 0.86, slant)) +
                            0.6 * Smooth(0.95, 0.98, slant) * (1 - Smooth(1.03, 1.06, slant));
        const double dirt = 0.12 * Smooth(0.5, 0.8, Hills(u, v, {4, 4, 5}, seed));
        return Mix(pixel, {0.93, 0.97, 1, Clamp01(alpha + 0.25)}, 0.55 * band + dirt);
    });
    return canvas;
}

CCanvas DrawBrokenPane(int size, std::uint32_t seed)
{
    CCanvas canvas = DrawPane(size, size, Hex(0x9DB8BC), 0.35, seed);
    const Point center{size * 0.5, size * 0.47};
    CRandom random(seed);
    std::vector<Point> hole;
    for (int i = 0; i < 14; ++i) {
        const double angle = (i + random.Between(-0.3, 0.3)) / 14;
        const double radius = size * random.Between(0.08, i % 2 == 0 ? 0.13 : 0.24);
        hole.push_back({center.x + radius * CosineOfTurns(angle), center.y + radius * SineOfTurns(angle)});
        const double reach = size * random.Between(0.35, 0.75);
        Point from = hole.back();
        for (int step = 1; step <= 3; ++step) {
            const double bent = angle + random.Between(-0.025, 0.025);
            const double distance = radius + (reach - radius) * step / 3;
            const Point to{center.x + distance * CosineOfTurns(bent),
                           center.y + distance * SineOfTurns(bent)};
            if (std::fabs(to.x - size / 2.0) < size / 2.0 && std::fabs(to.y - size / 2.0) < size / 2.0)
                FillLine(canvas, from, to, 0.9, {0.95, 1, 1, 0.85});
            from = to;
        }
    }
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double distance = DistanceToPolygon({x + 0.5, y + 0.5}, hole);
        if (distance < 0)
            return WithAlpha(pixel, 0);
        return distance < 1.3 ? Color{0.95, 1, 1, 0.95} : pixel;
    });
    return canvas;
}

CCanvas DrawStainedGlass(int size, int pieces, std::uint32_t seed)
{
    constexpr std::array kGlass = {0x9E1B2FU, 0x1F4FA3U, 0xE0A42AU, 0x2E7A45U, 0x6A2E86U, 0xD9D3B0U};
    CCanvas canvas(size, size, {});
    canvas.Repaint([&](int x, int y, const Color&) {
        const double u = (x + 0.5) / size;
        const double v = (y + 0.5) / size;
        const Cell cell = CellAt(u, v, pieces, pieces, seed);
        const Color glass = Hex(kGlass[static_cast<std::size_t>(cell.chance * kGlass.size())]);
        const double bubble = 0.8 + 0.5 * Hills(u, v, {12, 12, 3}, seed + 1);
        const double lead = 1 - Smooth(0.08, 0.13, cell.border);
        return Mix(WithAlpha(Lit(glass, bubble), 0.75), Lit(Hex(0x26262A), 0.7 + 0.8 * cell.border * 5),
                   lead);
    });
    return canvas;
}

}  // namespace Demo
