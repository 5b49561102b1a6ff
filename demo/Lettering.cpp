#include "demo/Lettering.h"

#include <array>
#include <cstdint>

namespace Demo {
namespace {
constexpr int kGlyphWidth = 5;
constexpr int kGlyphHeight = 7;
constexpr int kAdvance = 6;

struct Glyph {
    char letter;
    std::array<std::uint8_t, kGlyphHeight> rows;  // bit 4 is the leftmost column
};

// clang-format off
constexpr std::array kGlyphs = {
    Glyph{'A', {14, 17, 17, 31, 17, 17, 17}}, Glyph{'B', {30, 17, 17, 30, 17, 17, 30}},
    Glyph{'C', {14, 17, 16, 16, 16, 17, 14}}, Glyph{'D', {30, 17, 17, 17, 17, 17, 30}},
    Glyph{'E', {31, 16, 16, 30, 16, 16, 31}}, Glyph{'F', {31, 16, 16, 30, 16, 16, 16}},
    Glyph{'G', {14, 17, 16, 23, 17, 17, 14}}, Glyph{'H', {17, 17, 17, 31, 17, 17, 17}},
    Glyph{'I', {14,  4,  4,  4,  4,  4, 14}}, Glyph{'J', { 7,  2,  2,  2,  2, 18, 12}},
    Glyph{'K', {17, 18, 20, 24, 20, 18, 17}}, Glyph{'L', {16, 16, 16, 16, 16, 16, 31}},
    Glyph{'M', {17, 27, 21, 21, 17, 17, 17}}, Glyph{'N', {17, 25, 21, 19, 17, 17, 17}},
    Glyph{'O', {14, 17, 17, 17, 17, 17, 14}}, Glyph{'P', {30, 17, 17, 30, 16, 16, 16}},
    Glyph{'Q', {14, 17, 17, 17, 21, 18, 13}}, Glyph{'R', {30, 17, 17, 30, 20, 18, 17}},
    Glyph{'S', {15, 16, 16, 14,  1,  1, 30}}, Glyph{'T', {31,  4,  4,  4,  4,  4,  4}},
    Glyph{'U', {17, 17, 17, 17, 17, 17, 14}}, Glyph{'V', {17, 17, 17, 17, 17, 10,  4}},
    Glyph{'W', {17, 17, 17, 21, 21, 27, 17}}, Glyph{'X', {17, 17, 10,  4, 10, 17, 17}},
    Glyph{'Y', {17, 17, 10,  4,  4,  4,  4}}, Glyph{'Z', {31,  1,  2,  4,  8, 16, 31}},
    Glyph{'0', {14, 17, 19, 21, 25, 17, 14}}, Glyph{'1', { 4, 12,  4,  4,  4,  4, 14}},
    Glyph{'2', {14, 17,  1,  6,  8, 16, 31}}, Glyph{'3', {30,  1,  1, 14,  1,  1, 30}},
    Glyph{'4', { 2,  6, 10, 18, 31,  2,  2}}, Glyph{'5', {31, 16, 30,  1,  1, 17, 14}},
    Glyph{'6', { 6,  8, 16, 30, 17, 17, 14}}, Glyph{'7', {31,  1,  2,  4,  8,  8,  8}},
    Glyph{'8', {14, 17, 17, 14, 17, 17, 14}}, Glyph{'9', {14, 17, 17, 15,  1,  2, 12}},
    Glyph{'-', { 0,  0,  0, 14,  0,  0,  0}}, Glyph{'.', { 0,  0,  0,  0,  0, 12, 12}},
    Glyph{'!', { 4,  4,  4,  4,  4,  0,  4}}, Glyph{'&', {12, 18, 20,  8, 21, 18, 13}},
    Glyph{'%', {24, 25,  2,  4,  8, 19,  3}}, Glyph{'+', { 0,  4,  4, 31,  4,  4,  0}},
    Glyph{'>', {16,  8,  4,  2,  4,  8, 16}}, Glyph{'*', { 0, 21, 14, 31, 14, 21,  0}},
    Glyph{'\'', {4,  4,  8,  0,  0,  0,  0}}, Glyph{'$', { 4, 15, 20, 14,  5, 30,  4}},
};
// clang-format on

bool IsSet(const Glyph& glyph, int column, int row)
{
    if (column < 0 || row < 0 || column >= kGlyphWidth || row >= kGlyphHeight)
        return false;
    return (glyph.rows[static_cast<std::size_t>(row)] >> (kGlyphWidth - 1 - column) & 1) != 0;
}

// Strokes between the centres of neighbouring dots give letters with round ends instead of squares.
void DrawGlyph(CCanvas& canvas, const Glyph& glyph, Point corner, double dot, const Color& color)
{
    const auto centerOf = [&](int column, int row) {
        return Point{corner.x + (column + 0.5) * dot, corner.y + (row + 0.5) * dot};
    };
    const auto distance = [&](Point at) {
        double nearest = 1e9;
        for (int row = 0; row < kGlyphHeight; ++row)
            for (int column = 0; column < kGlyphWidth; ++column) {
                if (!IsSet(glyph, column, row))
                    continue;
                const Point here = centerOf(column, row);
                nearest = std::min(nearest, DistanceToDisc(at, here, dot * 0.55));
                for (const auto& [dx, dy] : {Point{1, 0}, Point{0, 1}, Point{1, 1}, Point{-1, 1}}) {
                    const int nextColumn = column + static_cast<int>(dx);
                    const int nextRow = row + static_cast<int>(dy);
                    // A diagonal is drawn only where no straight neighbour fills the corner already.
                    const bool isCorner = dx != 0 && dy != 0 &&
                                          (IsSet(glyph, nextColumn, row) || IsSet(glyph, column, nextRow));
                    if (IsSet(glyph, nextColumn, nextRow) && !isCorner)
                        nearest = std::min(
                            nearest, DistanceToLine(at, here, centerOf(nextColumn, nextRow), dot * 1.1));
                }
            }
        return nearest;
    };
    FillShape(canvas, {corner.x, corner.y, corner.x + kGlyphWidth * dot, corner.y + kGlyphHeight * dot},
              color, distance);
}
}  // namespace

double TextWidth(std::string_view text, double height)
{
    return text.empty() ? 0 : (static_cast<int>(text.size()) * kAdvance - 1) * height / kGlyphHeight;
}

void DrawText(CCanvas& canvas, std::string_view text, Point corner, double height, const Color& color)
{
    const double dot = height / kGlyphHeight;
    for (const char letter : text) {
        for (const Glyph& glyph : kGlyphs)
            if (glyph.letter == letter)
                DrawGlyph(canvas, glyph, corner, dot, color);
        corner.x += kAdvance * dot;
    }
}

void DrawTextIn(CCanvas& canvas, std::string_view text, const Box& box, double height, const Color& color)
{
    const double width = box.right - box.left;
    double fitting = std::min(height, box.bottom - box.top);
    if (TextWidth(text, fitting) > width)
        fitting *= width / TextWidth(text, fitting);
    DrawText(canvas, text,
             {(box.left + box.right - TextWidth(text, fitting)) / 2, (box.top + box.bottom - fitting) / 2},
             fitting, color);
}

}  // namespace Demo
