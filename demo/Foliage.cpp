#include "demo/Foliage.h"

#include <cmath>

#include "demo/Noise.h"
#include "demo/Random.h"
#include "demo/Relief.h"
#include "demo/Shapes.h"
#include "demo/Trigonometry.h"
#include "demo/Weather.h"

namespace Demo {
namespace {
struct Leaf {
    Point root;
    double turn = 0;  // 0 to the right, 0.25 down
    double length = 8;
    double slimness = 2.2;
    Color color;
};

// Two arcs that meet in a tip, a bright midrib, one half lighter than the other.
void DrawLeaf(CCanvas& canvas, const Leaf& leaf)
{
    const double cosine = CosineOfTurns(leaf.turn);
    const double sine = SineOfTurns(leaf.turn);
    const double reach = leaf.length + 1;
    const Box bounds{leaf.root.x - reach, leaf.root.y - reach, leaf.root.x + reach, leaf.root.y + reach};
    const double breadth = leaf.length / leaf.slimness;
    const auto place = [&](Point at) {
        const double dx = at.x - leaf.root.x;
        const double dy = at.y - leaf.root.y;
        return Point{dx * cosine + dy * sine, dy * cosine - dx * sine};
    };
    for (int y = static_cast<int>(std::floor(bounds.top)); y <= bounds.bottom; ++y)
        for (int x = static_cast<int>(std::floor(bounds.left)); x <= bounds.right; ++x) {
            const Point at = place({x + 0.5, y + 0.5});
            const double along = at.x / leaf.length;
            if (along < 0 || along > 1)
                continue;
            const double half = breadth * 2 * along * (1 - along) * (1.3 - 0.6 * along);
            const double coverage = half + 0.5 - std::fabs(at.y);
            if (coverage <= 0)
                continue;
            const double rib = 1 - Smooth(0, 0.9, std::fabs(at.y));
            const double light = (at.y < 0 ? 1.12 : 0.88) * (0.82 + 0.3 * along) + 0.2 * rib;
            canvas.Blend(x, y, Lit(leaf.color, light), coverage);
        }
}

// Transparent pixels keep a leafy colour: their colour bleeds into the edges when a renderer filters.
CCanvas EmptyCanvas(int width, int height, const Color& color)
{
    return {width, height, WithAlpha(Lit(color, 0.7), 0)};
}

Leaf RandomLeaf(const LeafStyle& style, double size, CRandom& random)
{
    Leaf leaf;
    leaf.turn = random.Next();
    leaf.length = size * style.length * random.Between(0.7, 1.2);
    leaf.slimness = style.slimness;
    return leaf;
}

void DrawCluster(CCanvas& canvas, const LeafStyle& style, Point center, double size)
{
    CRandom random(style.seed);
    for (int i = 0; i < style.count; ++i) {
        Leaf leaf = RandomLeaf(style, size, random);
        const double depth = static_cast<double>(i) / style.count;  // 0 behind, 1 in front
        const double angle = random.Next();
        const double radius =
            size * (style.reach - style.length * 0.6) * std::sqrt(random.Next()) * (1.3 - 0.3 * depth);
        leaf.turn = angle + random.Between(-0.25, 0.25);
        // The middle of the leaf lies at the radius, so that the cluster closes in its centre.
        leaf.root = {center.x + radius * CosineOfTurns(angle) - 0.6 * leaf.length * CosineOfTurns(leaf.turn),
                     center.y + radius * SineOfTurns(angle) - 0.6 * leaf.length * SineOfTurns(leaf.turn)};
        const double height = (center.y - leaf.root.y) / (size * style.reach);
        const double light = 0.4 + 0.45 * depth + 0.25 * height + random.Between(-0.1, 0.1);
        leaf.color = Mix(Lit(style.dark, 0.6), style.light, Clamp01(light));
        DrawLeaf(canvas, leaf);
    }
}
}  // namespace

CCanvas DrawLeaves(int size, const LeafStyle& style)
{
    CCanvas canvas = EmptyCanvas(size, size, style.dark);
    CRandom random(style.seed + 500);
    const Point center{size / 2.0, size / 2.0};
    for (int i = 0; i < 7; ++i) {
        const double angle = random.Next();
        const double reach = size * style.reach * random.Between(0.5, 0.85);
        FillLine(canvas, {center.x, size * 0.9},
                 {center.x + reach * CosineOfTurns(angle), center.y + reach * SineOfTurns(angle)},
                 size / 80.0, Hex(0x3E2F20));
    }
    DrawCluster(canvas, style, center, size);
    return canvas;
}

CCanvas DrawTree(int width, int height, const LeafStyle& style)
{
    CCanvas canvas = EmptyCanvas(width, height, style.dark);
    const Point crown{width / 2.0, height * 0.42};
    const double thick = width * 0.045;
    for (int step = 0; step < 10; ++step) {
        const double y = Mix(height - thick, crown.y, step / 10.0);
        const double next = Mix(height - thick, crown.y, (step + 1) / 10.0);
        const double sway = width * 0.015 * SineOfTurns(step / 9.0);
        FillLine(canvas, {crown.x + sway, y}, {crown.x + sway * 0.8, next}, thick * (1.5 - step * 0.07),
                 Lit(Hex(0x4B3A2A), 0.8 + 0.03 * step));
        FillLine(canvas, {crown.x + sway - thick * 0.35, y}, {crown.x + sway - thick * 0.35, next},
                 thick * 0.3, Hex(0x77614A));
    }
    for (const double side : {-0.3, -0.12, 0.16, 0.32})
        FillLine(canvas, {crown.x, crown.y + width * 0.2}, {crown.x + side * width, crown.y - width * 0.1},
                 thick * 0.5, Hex(0x44352A));
    DrawCluster(canvas, style, crown, width);
    return canvas;
}

CCanvas DrawFrond(int width, int height, const Color& color, int leaflets, std::uint32_t seed)
{
    CCanvas canvas = EmptyCanvas(width, height, color);
    CRandom random(seed);
    const auto rib = [&](double along) {
        return Point{width * (0.06 + 0.86 * along), height * (0.78 - 0.62 * along + 0.34 * along * along)};
    };
    for (int i = 0; i < leaflets; ++i) {
        const double along = 0.08 + 0.92 * (i + 0.5) / leaflets;
        const Point root = rib(along);
        const double length = width * 0.3 * (0.35 + 1.1 * along * (1 - along) * 2) * (1.1 - 0.5 * along);
        for (const double side : {-1.0, 1.0}) {
            Leaf leaf{root, side * Mix(0.2, 0.05, along) - 0.03 + random.Between(-0.012, 0.012), length, 7.5,
                      Lit(color, random.Between(0.7, 1.15) * (side < 0 ? 1.1 : 0.82))};
            DrawLeaf(canvas, leaf);
        }
    }
    for (int step = 0; step < 24; ++step)
        FillLine(canvas, rib(step / 24.0), rib((step + 1) / 24.0), 2.4 - step * 0.07,
                 Lit(Mix(color, Hex(0xB9A25A), 0.5), 0.9));
    return canvas;
}

CCanvas DrawGrassTuft(int width, int height, const Color& color, int blades, std::uint32_t seed)
{
    CCanvas canvas = EmptyCanvas(width, height, color);
    CRandom random(seed);
    for (int i = 0; i < blades; ++i) {
        const double depth = static_cast<double>(i) / blades;
        const Point root{width * random.Between(0.12, 0.88), height - 1.0};
        const double lean = random.Between(-0.22, 0.22) * width;
        const double tall = height * random.Between(0.35, 0.92) * (1.1 - 0.3 * depth);
        const Color tone = Lit(Mix(color, Hex(0xC9C06A), random.Next() * 0.35), 0.5 + 0.6 * depth);
        Point from = root;
        for (int step = 1; step <= 6; ++step) {
            const double t = step / 6.0;
            const Point to{std::clamp(root.x + lean * t * t, 2.0, width - 2.0),
                           root.y - tall * t * (1.15 - 0.15 * t)};
            if (to.y > 1)
                FillLine(canvas, from, {to.x, to.y}, std::max(0.5, width / 50.0 * (1.05 - t)),
                         Lit(tone, 0.7 + 0.45 * t));
            from = to;
        }
    }
    return canvas;
}

CCanvas DrawFlowers(int width, int height, const Color& petals, int blossoms, std::uint32_t seed)
{
    CCanvas canvas = DrawGrassTuft(width, height, Hex(0x4E7A32), 40, seed);
    CRandom random(seed + 1);
    for (int i = 0; i < blossoms; ++i) {
        const Point at{width * random.Between(0.15, 0.85), height * random.Between(0.14, 0.6)};
        FillLine(canvas, at, {at.x + random.Between(-4, 4), height - 1.0}, 1.2, Hex(0x3F6A2A));
        const double radius = width * random.Between(0.045, 0.075);
        const double turn = random.Next();
        for (int petal = 0; petal < 6; ++petal) {
            Leaf leaf{at, turn + petal / 6.0, radius * 1.6, 1.7, Lit(petals, random.Between(0.85, 1.1))};
            DrawLeaf(canvas, leaf);
        }
        FillDisc(canvas, at, radius * 0.4, Hex(0xE3B53A));
    }
    return canvas;
}

CCanvas DrawIvy(int size, const LeafStyle& style)
{
    CCanvas canvas = EmptyCanvas(size, size, style.dark);
    CRandom random(style.seed);
    for (int vine = 0; vine < 7; ++vine) {
        double x = size * (vine + random.Next()) / 7;
        for (double y = 0; y < size * random.Between(0.6, 1.0); y += 3) {
            const double next = x + random.Between(-2.2, 2.2);
            FillLine(canvas, {x, y}, {next, y + 3}, 1.2, Hex(0x4A3B28));
            x = next;
        }
    }
    for (int i = 0; i < style.count; ++i) {
        Leaf leaf = RandomLeaf(style, size, random);
        leaf.root = {random.Between(0, size), size * random.Next()};
        const double dense = Hills(leaf.root.x / size, leaf.root.y / size, {4, 3, 3}, style.seed);
        // Fewer towards the lower edge, where the shoots end.
        if (dense < 0.25 + 0.5 * leaf.root.y / size)
            continue;
        leaf.turn = 0.25 + random.Between(-0.22, 0.22);
        const double depth = static_cast<double>(i) / style.count;
        leaf.color = Mix(Lit(style.dark, 0.65), style.light, Clamp01(depth + random.Between(-0.2, 0.15)));
        DrawLeaf(canvas, leaf);
    }
    return canvas;
}

CCanvas DrawHedge(int size, const LeafStyle& style)
{
    CCanvas canvas(size, size, Lit(style.dark, 0.35));
    CRandom random(style.seed);
    for (int i = 0; i < style.count; ++i) {
        Leaf leaf = RandomLeaf(style, size, random);
        leaf.root = {random.Between(0, size), random.Between(0, size)};
        const double depth = static_cast<double>(i) / style.count;
        leaf.color =
            Mix(Lit(style.dark, 0.55), style.light, Clamp01(depth * 0.9 + random.Between(-0.25, 0.15)));
        DrawLeaf(canvas, leaf);
    }
    return canvas;
}

CCanvas DrawBark(int width, int height, const Color& color, std::uint32_t seed)
{
    CCanvas canvas(width, height, color);
    CRelief relief(width, height);
    canvas.Repaint([&](int x, int y, const Color& pixel) {
        const double u = (x + 0.5) / width;
        const double v = (y + 0.5) / height;
        const double warp = 0.2 * Hills(u, v, {4, 4, 3}, seed + 1);
        const double groove = Ridges(u + warp, v, {8, 3, 5}, seed);
        relief.At(x, y) = 5 * groove;
        return Lit(pixel, 0.35 + 0.9 * groove);
    });
    relief.Shade(canvas, 0.5);
    AddStains(canvas, Hex(0x5D6A3C), 0.35, seed + 2);
    AddGrain(canvas, 0.08, seed + 3);
    return canvas;
}

}  // namespace Demo
