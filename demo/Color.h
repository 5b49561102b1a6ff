#pragma once

// A colour with alpha, each channel from 0 to 1, and the arithmetic of paint. Only + - * / are used anywhere
// in the drawing, which round alike on every machine.

#include <algorithm>
#include <cstdint>

namespace Demo {

struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;
};

/// 0xRRGGBB, opaque.
constexpr Color Hex(std::uint32_t rgb)
{
    return {(rgb >> 16 & 255) / 255.0, (rgb >> 8 & 255) / 255.0, (rgb & 255) / 255.0, 1};
}

constexpr double Clamp01(double value)
{
    return std::clamp(value, 0.0, 1.0);
}

constexpr double Mix(double a, double b, double share)
{
    return a + (b - a) * share;
}

/// 0 at `low`, 1 at `high`, smooth between them.
constexpr double Smooth(double low, double high, double value)
{
    const double t = Clamp01((value - low) / (high - low));
    return t * t * (3 - 2 * t);
}

constexpr Color Mix(const Color& a, const Color& b, double share)
{
    return {Mix(a.red, b.red, share), Mix(a.green, b.green, share), Mix(a.blue, b.blue, share),
            Mix(a.alpha, b.alpha, share)};
}

/// Brighter above 1, darker below; alpha stays.
constexpr Color Lit(const Color& color, double light)
{
    return {color.red * light, color.green * light, color.blue * light, color.alpha};
}

constexpr Color WithAlpha(const Color& color, double alpha)
{
    return {color.red, color.green, color.blue, alpha};
}

/// `top` laid over `bottom`.
constexpr Color Over(const Color& bottom, const Color& top)
{
    const double alpha = top.alpha + bottom.alpha * (1 - top.alpha);
    if (alpha <= 0)
        return WithAlpha(top, 0);
    const double share = top.alpha / alpha;
    return WithAlpha(Mix(bottom, top, share), alpha);
}

}  // namespace Demo
