#include "demo/Door.h"

#include "demo/Metal.h"
#include "demo/Shapes.h"
#include "demo/Weather.h"
#include "demo/Window.h"
#include "demo/Wood.h"

namespace Demo {
namespace {
void AddKnob(CCanvas& canvas, Point center, double radius)
{
    FillDisc(canvas, {center.x + 1, center.y + 2}, radius * 1.3, {0, 0, 0, 0.45});
    FillDisc(canvas, center, radius, Hex(0xB08D3C));
    FillDisc(canvas, {center.x - radius * 0.3, center.y - radius * 0.3}, radius * 0.4, Hex(0xF4E3A4));
}

void AddPanel(CCanvas& canvas, const Box& box)
{
    FillBevel(canvas, box, 2, {0, 0, 0, 0.5}, {1, 1, 1, 0.3});
    const Box inner{box.left + 5, box.top + 5, box.right - 5, box.bottom - 5};
    if (inner.right - inner.left < 6 || inner.bottom - inner.top < 6)
        return;
    FillBox(canvas, inner, {1, 1, 1, 0.05});
    FillBevel(canvas, inner, 1.5, {1, 1, 1, 0.28}, {0, 0, 0, 0.4});
}

void AddOuterFrame(CCanvas& canvas, double thickness, const Color& color)
{
    const double width = canvas.Width();
    const double height = canvas.Height();
    FillBox(canvas, {0, 0, width, thickness}, color);
    FillBox(canvas, {0, 0, thickness, height}, color);
    FillBox(canvas, {width - thickness, 0, width, height}, color);
    FillBevel(canvas, {thickness, thickness, width - thickness, height + 8}, 1.5, {0, 0, 0, 0.65},
              {0, 0, 0, 0.4});
}
}  // namespace

CCanvas DrawPanelDoor(int width, int height, const Color& color, int rows, std::uint32_t seed)
{
    CCanvas canvas = DrawPlanks(
        width, height,
        {.light = color, .dark = Lit(color, 0.72), .planks = 1, .variety = 0, .age = 0.1, .seed = seed});
    AddOuterFrame(canvas, width * 0.06, Lit(color, 0.75));
    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < 2; ++column) {
            const double left = width * (0.15 + 0.37 * column);
            const double top = height * (0.08 + 0.88 * row / rows);
            AddPanel(canvas, {left, top, left + width * 0.32, top + height * (0.88 / rows - 0.05)});
        }
    AddKnob(canvas, {width * 0.88, height * 0.54}, width * 0.03 + 1);
    AddStreaks(canvas, Hex(0x2A211A), 0.25, seed + 1);
    return canvas;
}

CCanvas DrawSteelDoor(int width, int height, const Color& color, std::uint32_t seed)
{
    CCanvas canvas = DrawBrushed(width, height, color, seed);
    AddOuterFrame(canvas, width * 0.06, Lit(color, 0.65));
    FillBox(canvas, {width * 0.12, height * 0.88, width * 0.88, height * 0.97}, Hex(0x8F8F8C));
    FillBevel(canvas, {width * 0.12, height * 0.88, width * 0.88, height * 0.97}, 1, {1, 1, 1, 0.4},
              {0, 0, 0, 0.4});
    FillBox(canvas, {width * 0.36, height * 0.12, width * 0.64, height * 0.3}, Hex(0x2E3A40));
    FillBevel(canvas, {width * 0.36, height * 0.12, width * 0.64, height * 0.3}, 2, {0, 0, 0, 0.6},
              {1, 1, 1, 0.4});
    FillBox(canvas, {width * 0.78, height * 0.5, width * 0.9, height * 0.53}, Hex(0xC8CACC), 2);
    FillBox(canvas, {width * 0.78, height * 0.53, width * 0.9, height * 0.54}, {0, 0, 0, 0.5});
    AddStreaks(canvas, Hex(0x5A3420), 0.45, seed + 1);
    AddStains(canvas, Hex(0x2E2A26), 0.3, seed + 2);
    AddGrain(canvas, 0.04, seed + 3);
    return canvas;
}

CCanvas DrawGlassDoor(int width, int height, const Color& frame, std::uint32_t seed)
{
    CCanvas canvas = DrawWindow(width, height, frame, 1, Hour::Day, seed);
    FillBox(canvas, {0, height * 0.86, width * 1.0, height * 1.0}, Lit(frame, 0.9));
    FillBevel(canvas, {2, height * 0.86, width - 2.0, height - 2.0}, 1.5, {1, 1, 1, 0.35}, {0, 0, 0, 0.45});
    FillBox(canvas, {width * 0.1, height * 0.5, width * 0.9, height * 0.535}, Hex(0xC9CCCE), 2);
    FillBox(canvas, {width * 0.1, height * 0.535, width * 0.9, height * 0.545}, {0, 0, 0, 0.5});
    return canvas;
}

CCanvas DrawShutter(int width, int height, const Color& color, int slats, std::uint32_t seed)
{
    CCanvas canvas = DrawBrushed(width, height, color, seed);
    canvas.Repaint([&](int, int y, const Color& pixel) {
        const double along = static_cast<double>(y * slats % height) / height;
        return Lit(pixel, along < 0.12 ? 0.4 : 0.75 + 0.45 * Smooth(0.12, 0.4, along) * (1 - along));
    });
    AddStreaks(canvas, Hex(0x5A3A24), 0.6, seed + 1);
    AddStains(canvas, Hex(0x3A3632), 0.4, seed + 2);
    AddGrain(canvas, 0.05, seed + 3);
    return canvas;
}

CCanvas DrawGarageDoor(int width, int height, const Color& color, std::uint32_t seed)
{
    CCanvas canvas = DrawBrushed(width, height, color, seed);
    for (int row = 0; row < 4; ++row) {
        const double top = height * row / 4.0;
        FillBox(canvas, {0, top, width * 1.0, top + 2}, {0, 0, 0, 0.55});
        FillBox(canvas, {0, top + 2, width * 1.0, top + 3}, {1, 1, 1, 0.4});
        for (int column = 0; column < 4; ++column) {
            const double left = width * (0.04 + 0.24 * column);
            AddPanel(canvas, {left, top + height * 0.05, left + width * 0.2, top + height * 0.21});
        }
    }
    FillBox(canvas, {width * 0.46, height * 0.94, width * 0.54, height * 0.97}, Hex(0x303030), 2);
    AddStreaks(canvas, Hex(0x4A3E32), 0.4, seed + 1);
    AddGrain(canvas, 0.04, seed + 2);
    return canvas;
}

}  // namespace Demo
