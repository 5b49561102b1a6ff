#include "demo/Wood.h"

#include <cmath>

#include "demo/Noise.h"
#include "demo/Random.h"
#include "demo/Shapes.h"
#include "demo/Trigonometry.h"
#include "demo/Weather.h"

namespace Demo {
namespace {
// The tone of a board at `across` (0 to 1 over the board) and `along` (0 to 1 over the picture): year rings
// that bend around a knot, and fine fibres.
double Grain(double across, double along, int board, std::uint32_t seed)
{
    const std::uint32_t own = seed + static_cast<std::uint32_t>(board) * 31U;
    const double warp = Hills(along, across * 0.25, {3, 4, 3}, own);
    const double knotAlong = along - (0.2 + 0.6 * ChanceAt(board, 1, seed));
    const double knotAcross = across - (0.3 + 0.4 * ChanceAt(board, 2, seed));
    const bool hasKnot = ChanceAt(board, 3, seed) > 0.45;
    const double knot = hasKnot ? 1 / (1 + 900 * knotAlong * knotAlong + 25 * knotAcross * knotAcross) : 0.0;
    const double rings = 0.5 + 0.5 * SineOfTurns(across * 3 + warp * 3 + knot * 3.5);
    const double fibres = Hills(along, across * 0.5, {4, 48, 3}, own + 7);
    return Clamp01(0.45 * rings + 0.55 * fibres + 0.55 * Smooth(0.55, 1, knot));
}

Color BoardColor(const WoodStyle& style, double across, double along, int board)
{
    const double tone = Grain(across, along, board, style.seed);
    const Color wood = Mix(style.light, style.dark, Smooth(0.15, 0.95, tone));
    const Color gray = Mix(Hex(0xA39C90), Hex(0x4E4943), Smooth(0.2, 0.9, tone));
    const double light = 1 + style.variety * (ChanceAt(board, 0, style.seed) * 2 - 1);
    return Lit(Mix(wood, gray, style.age * 0.8), light);
}

void AddNails(CCanvas& canvas, const WoodStyle& style, double board)
{
    for (int i = 0; i < style.planks; ++i)
        for (const double side : {0.2, 0.8})
            for (const double along : {0.06, 0.56}) {
                const double across = (i + side) * board;
                const Point at = style.upright ? Point{across, along * canvas.Height()}
                                               : Point{along * canvas.Width(), across};
                FillDisc(canvas, {at.x + 0.7, at.y + 0.7}, 1.6, {1, 1, 1, 0.18});
                FillDisc(canvas, at, 1.4, {0.1, 0.08, 0.07, 0.85});
            }
}
}  // namespace

CCanvas DrawPlanks(int width, int height, const WoodStyle& style)
{
    CCanvas canvas(width, height, style.light);
    const double board = static_cast<double>(style.upright ? width : height) / style.planks;
    canvas.Repaint([&](int x, int y, const Color&) {
        const double place = style.upright ? x + 0.5 : y + 0.5;
        const double along = style.upright ? (y + 0.5) / height : (x + 0.5) / width;
        const int plank = static_cast<int>(std::floor(place / board));
        const double across = place / board - plank;
        const double edge = std::min(across, 1 - across) * board;
        const double gap = 1 - 0.75 * (1 - Smooth(0.2, 1.6, edge));
        const double bevel = across * board < 3 && across * board > 1.4 ? 1.12 : 1;
        return Lit(BoardColor(style, across, along, plank), gap * bevel);
    });
    if (style.nails)
        AddNails(canvas, style, board);
    AddStains(canvas, Hex(0x2E261E), 0.35 * style.age, style.seed + 40);
    AddGrain(canvas, 0.04, style.seed + 41);
    return canvas;
}

CCanvas DrawParquet(int size, const WoodStyle& style, int squares)
{
    CCanvas canvas(size, size, style.light);
    const double side = static_cast<double>(size) / squares;
    canvas.Repaint([&](int x, int y, const Color&) {
        const int column = static_cast<int>((x + 0.5) / side);
        const int row = static_cast<int>((y + 0.5) / side);
        const double inX = (x + 0.5) / side - column;
        const double inY = (y + 0.5) / side - row;
        const bool upright = ((column + row) & 1) == 0;
        const double place = (upright ? inX : inY) * style.planks;
        const int strip = static_cast<int>(place);
        const double across = place - strip;
        const int board = (row * squares + column) * style.planks + strip;
        const double ends = std::min(upright ? inY : inX, 1 - (upright ? inY : inX)) * side;
        const double edge = std::min(std::min(across, 1 - across) * side / style.planks, ends);
        return Lit(BoardColor(style, across, upright ? inY : inX, board),
                   1 - 0.5 * (1 - Smooth(0, 1.1, edge)));
    });
    AddGrain(canvas, 0.03, style.seed + 41);
    return canvas;
}

}  // namespace Demo
