#pragma once

// Shapes as signed distances in pixels, negative inside, and the brush that fills them with smooth edges.

#include <algorithm>
#include <cmath>
#include <vector>

#include "demo/Canvas.h"

namespace Demo {

struct Point {
    double x = 0;
    double y = 0;
};

/// A rectangle from one corner to the other.
struct Box {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;
};

double DistanceToDisc(Point at, Point center, double radius);
/// With corners rounded by `radius`.
double DistanceToBox(Point at, const Box& box, double radius = 0);
/// A line of the given thickness with round ends.
double DistanceToLine(Point at, Point from, Point to, double thickness);
/// A polygon of any form.
double DistanceToPolygon(Point at, const std::vector<Point>& corners);
/// A regular polygon, its first corner `turn` turns after the right.
std::vector<Point> RegularPolygon(Point center, double radius, int corners, double turn);

/// Fills where distance(point) is negative. `bounds` limits the work and may reach over the edges, where it
/// wraps.
template <typename Distance>
void FillShape(CCanvas& canvas, const Box& bounds, const Color& color, Distance distance)
{
    const int left = static_cast<int>(std::floor(bounds.left)) - 1;
    const int right = static_cast<int>(std::floor(bounds.right)) + 1;
    const int top = static_cast<int>(std::floor(bounds.top)) - 1;
    const int bottom = static_cast<int>(std::floor(bounds.bottom)) + 1;
    for (int y = top; y <= bottom; ++y)
        for (int x = left; x <= right; ++x) {
            const double inside = 0.5 - distance(Point{x + 0.5, y + 0.5});
            if (inside > 0)
                canvas.Blend(x, y, color, inside);
        }
}

void FillDisc(CCanvas& canvas, Point center, double radius, const Color& color);
void FillBox(CCanvas& canvas, const Box& box, const Color& color, double radius = 0);
void FillRing(CCanvas& canvas, Point center, double radius, double thickness, const Color& color);
void FillLine(CCanvas& canvas, Point from, Point to, double thickness, const Color& color);
void FillPolygon(CCanvas& canvas, const std::vector<Point>& corners, const Color& color);
/// A raised (or, with swapped colours, sunken) frame just inside the box.
void FillBevel(CCanvas& canvas, const Box& box, double thickness, const Color& lit, const Color& shaded);

}  // namespace Demo
