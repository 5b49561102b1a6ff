#include "demo/Relief.h"

namespace Demo {

void CRelief::Shade(CCanvas& canvas, double strength) const
{
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double slope = At(x, y) - (At(x - 1, y) + 2 * At(x - 1, y - 1) + 2 * At(x, y - 1)) / 5;
        return Lit(pixel, std::clamp(1 + strength * slope, 0.35, 1.7));
    });
}

}  // namespace Demo
