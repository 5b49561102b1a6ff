#include "demo/Noise.h"
#include "demo/Shapes.h"
#include "demo/Sky.h"
#include "demo/Weather.h"
#include "demo/catalogue/Catalogue.h"

namespace Demo {
namespace {
CCanvas Plain(const Color& color)
{
    return {16, 16, color};
}

// Shows at once which way up a texture lies and whether it is stretched.
CCanvas TestGrid(int size)
{
    CCanvas canvas(size, size, Hex(0x808080));
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const bool isDark = (x * 8 / size + y * 8 / size) % 2 == 0;
        return Lit(Color{1.0 * x / size, 1.0 * y / size, 0.6, pixel.alpha}, isDark ? 0.75 : 1);
    });
    FillDisc(canvas, {size / 2.0, size / 2.0}, size * 0.2, Hex(0xF0F0F0));
    FillRing(canvas, {size / 2.0, size / 2.0}, size * 0.4, size * 0.02, Hex(0xF0F0F0));
    return canvas;
}

CCanvas NoiseSquare(int size, std::uint32_t seed)
{
    CCanvas canvas(size, size, Hex(0x808080));
    canvas.Repaint([&](int x, int y, const Color&) {
        const double tone = Hills((x + 0.5) / size, (y + 0.5) / size, {4, 4, 6}, seed);
        return Color{tone, tone, tone, 1};
    });
    return canvas;
}

CCanvas Static(int size)
{
    CCanvas canvas(size, size, Hex(0x707070));
    AddGrain(canvas, 0.8, 4);
    return canvas;
}
}  // namespace

void AddDefaults(std::vector<Picture>& pictures)
{
    CCategoryPictures add(pictures, "Default");
    add.Opaque("white16", [] { return Plain(Hex(0xFFFFFF)); });
    add.Opaque("black16", [] { return Plain(Hex(0x000000)); });
    add.Opaque("gray16", [] { return Plain(Hex(0x808080)); });
    add.Opaque("testgrid", [] { return TestGrid(256); });
    add.Opaque("noise64", [] { return NoiseSquare(64, 1); });
    add.Opaque("noise128", [] { return NoiseSquare(128, 2); });
    add.Opaque("static64", [] { return Static(64); });
    add.Opaque("ramp_gray", [] { return DrawRamp(32, 128, Hex(0xFFFFFF), Hex(0x000000)); });
    add.Opaque("ramp_fire", [] { return DrawRamp(16, 128, Hex(0xFFE9A0), Hex(0x8A1408)); });
    add.Opaque("ramp_ice", [] { return DrawRamp(16, 128, Hex(0xF2FAFF), Hex(0x2A5A8A)); });
}

}  // namespace Demo
