#pragma once

// Capital letters, digits and a few marks from a small bitmap font of our own, drawn at any size with smooth
// edges.

#include <string_view>

#include "demo/Canvas.h"
#include "demo/Shapes.h"

namespace Demo {

/// Width of a text whose letters are `height` pixels high.
double TextWidth(std::string_view text, double height);
/// Draws from the upper left corner. Characters that the font lacks are blank.
void DrawText(CCanvas& canvas, std::string_view text, Point corner, double height, const Color& color);
/// Centred in the box, as large as fits it but at most `height` pixels high.
void DrawTextIn(CCanvas& canvas, std::string_view text, const Box& box, double height, const Color& color);

}  // namespace Demo
