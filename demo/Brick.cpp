#include "demo/Brick.h"

#include <cmath>

#include "demo/Noise.h"
#include "demo/Random.h"
#include "demo/Relief.h"
#include "demo/Weather.h"

namespace Demo {

CCanvas DrawBricks(int width, int height, const BrickStyle& style)
{
    CCanvas canvas(width, height, style.joint);
    CRelief relief(width, height);
    const double pieceWidth = static_cast<double>(width) / style.columns;
    const double pieceHeight = static_cast<double>(height) / style.rows;
    canvas.Repaint([&](int x, int y, const Color& joint) {
        const double u = (x + 0.5) / width;
        const double v = (y + 0.5) / height;
        const double wobble = 1.2 * style.roughness * (Hills(u, v, {16, 16, 2}, style.seed + 1) - 0.5);
        const double py = y + 0.5 + wobble;
        const int row = static_cast<int>(std::floor(py / pieceHeight));
        const double px = x + 0.5 + wobble + (style.shifted && (row & 1) != 0 ? pieceWidth / 2 : 0);
        const int column = static_cast<int>(std::floor(px / pieceWidth));
        const double inX = px - column * pieceWidth;
        const double inY = py - row * pieceHeight;
        const double edge = std::min(std::min(inX, pieceWidth - inX), std::min(inY, pieceHeight - inY)) -
                            style.jointWidth / 2;
        const double isPiece = Smooth(-0.6, 0.6, edge);
        const double pores = Hills(u, v, {width / 8, height / 8, 3}, style.seed + 2) - 0.5;
        relief.At(x, y) = isPiece * (0.6 + 0.4 * Smooth(0, 3, edge)) + style.roughness * 0.5 * pores;

        const int wrappedColumn = (column % style.columns + style.columns) % style.columns;
        const int wrappedRow = (row % style.rows + style.rows) % style.rows;
        const double tone = ChanceAt(wrappedColumn, wrappedRow, style.seed) * 2 - 1;
        const double burned = ChanceAt(wrappedColumn, wrappedRow, style.seed + 77) > 0.9 ? 0.8 : 1;
        Color piece = Lit(style.piece, (1 + style.variety * tone) * (style.variety > 0.1 ? burned : 1));
        piece.red *= 1 + 0.15 * style.variety * (ChanceAt(wrappedColumn, wrappedRow, style.seed + 5) - 0.5);
        piece.blue *= 1 + 0.5 * style.variety * (ChanceAt(wrappedColumn, wrappedRow, style.seed + 6) - 0.5);
        const double mottle = 1 + style.roughness * 0.5 * pores;
        return Mix(Lit(joint, mottle), Lit(piece, mottle), isPiece);
    });
    relief.Shade(canvas, 0.5);
    AddGrain(canvas, 0.05 * style.roughness, style.seed + 3);
    return canvas;
}

}  // namespace Demo
