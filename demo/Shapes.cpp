#include "demo/Shapes.h"

#include "demo/Trigonometry.h"

namespace Demo {
namespace {
double Length(double x, double y)
{
    return std::sqrt(x * x + y * y);
}

Box BoundsOf(const std::vector<Point>& corners)
{
    Box bounds{corners.front().x, corners.front().y, corners.front().x, corners.front().y};
    for (const Point& corner : corners) {
        bounds.left = std::min(bounds.left, corner.x);
        bounds.top = std::min(bounds.top, corner.y);
        bounds.right = std::max(bounds.right, corner.x);
        bounds.bottom = std::max(bounds.bottom, corner.y);
    }
    return bounds;
}
}  // namespace

double DistanceToDisc(Point at, Point center, double radius)
{
    return Length(at.x - center.x, at.y - center.y) - radius;
}

double DistanceToBox(Point at, const Box& box, double radius)
{
    const double dx = std::fabs(at.x - (box.left + box.right) / 2) - (box.right - box.left) / 2 + radius;
    const double dy = std::fabs(at.y - (box.top + box.bottom) / 2) - (box.bottom - box.top) / 2 + radius;
    const double outside = Length(std::max(dx, 0.0), std::max(dy, 0.0));
    return outside + std::min(std::max(dx, dy), 0.0) - radius;
}

double DistanceToLine(Point at, Point from, Point to, double thickness)
{
    const double dx = to.x - from.x;
    const double dy = to.y - from.y;
    const double length = dx * dx + dy * dy;
    const double along = length > 0 ? Clamp01(((at.x - from.x) * dx + (at.y - from.y) * dy) / length) : 0;
    return Length(at.x - from.x - along * dx, at.y - from.y - along * dy) - thickness / 2;
}

double DistanceToPolygon(Point at, const std::vector<Point>& corners)
{
    double distance = 1e9;
    bool inside = false;
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const Point a = corners[i];
        const Point b = corners[(i + 1) % corners.size()];
        distance = std::min(distance, DistanceToLine(at, a, b, 0));
        if ((a.y > at.y) != (b.y > at.y) && at.x < a.x + (at.y - a.y) / (b.y - a.y) * (b.x - a.x))
            inside = !inside;
    }
    return inside ? -distance : distance;
}

std::vector<Point> RegularPolygon(Point center, double radius, int corners, double turn)
{
    std::vector<Point> points;
    for (int i = 0; i < corners; ++i) {
        const double angle = turn + static_cast<double>(i) / corners;
        points.push_back({center.x + radius * CosineOfTurns(angle), center.y + radius * SineOfTurns(angle)});
    }
    return points;
}

void FillDisc(CCanvas& canvas, Point center, double radius, const Color& color)
{
    FillShape(canvas, {center.x - radius, center.y - radius, center.x + radius, center.y + radius}, color,
              [&](Point at) { return DistanceToDisc(at, center, radius); });
}

void FillBox(CCanvas& canvas, const Box& box, const Color& color, double radius)
{
    FillShape(canvas, box, color, [&](Point at) { return DistanceToBox(at, box, radius); });
}

void FillRing(CCanvas& canvas, Point center, double radius, double thickness, const Color& color)
{
    const double reach = radius + thickness;
    FillShape(canvas, {center.x - reach, center.y - reach, center.x + reach, center.y + reach}, color,
              [&](Point at) { return std::fabs(DistanceToDisc(at, center, radius)) - thickness / 2; });
}

void FillLine(CCanvas& canvas, Point from, Point to, double thickness, const Color& color)
{
    FillShape(canvas,
              {std::min(from.x, to.x) - thickness, std::min(from.y, to.y) - thickness,
               std::max(from.x, to.x) + thickness, std::max(from.y, to.y) + thickness},
              color, [&](Point at) { return DistanceToLine(at, from, to, thickness); });
}

void FillPolygon(CCanvas& canvas, const std::vector<Point>& corners, const Color& color)
{
    FillShape(canvas, BoundsOf(corners), color, [&](Point at) { return DistanceToPolygon(at, corners); });
}

void FillBevel(CCanvas& canvas, const Box& box, double thickness, const Color& lit, const Color& shaded)
{
    FillBox(canvas, {box.left, box.top, box.right, box.top + thickness}, lit);
    FillBox(canvas, {box.left, box.top, box.left + thickness, box.bottom}, lit);
    FillBox(canvas, {box.left, box.bottom - thickness, box.right, box.bottom}, shaded);
    FillBox(canvas, {box.right - thickness, box.top, box.right, box.bottom}, shaded);
}

}  // namespace Demo
