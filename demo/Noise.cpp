#include "demo/Noise.h"

#include <cmath>

#include "demo/Color.h"
#include "demo/Random.h"

namespace Demo {
namespace {
int Wrap(int value, int period)
{
    return (value % period + period) % period;
}

double Ease(double t)
{
    return t * t * t * (t * (t * 6 - 15) + 10);
}

// Value noise on a lattice that repeats after `across` and `down` steps.
double Lattice(double x, double y, int across, int down, std::uint32_t seed)
{
    const int column = static_cast<int>(std::floor(x));
    const int row = static_cast<int>(std::floor(y));
    const double tx = Ease(x - column);
    const double ty = Ease(y - row);
    const int left = Wrap(column, across);
    const int right = Wrap(column + 1, across);
    const int top = Wrap(row, down);
    const int bottom = Wrap(row + 1, down);
    return Mix(Mix(ChanceAt(left, top, seed), ChanceAt(right, top, seed), tx),
               Mix(ChanceAt(left, bottom, seed), ChanceAt(right, bottom, seed), tx), ty);
}

template <typename Shape>
double SumOctaves(double u, double v, const NoiseScale& scale, std::uint32_t seed, Shape shape)
{
    double sum = 0;
    double weight = 0;
    double height = 1;
    int across = scale.across;
    int down = scale.down;
    for (int octave = 0; octave < scale.octaves; ++octave) {
        sum += height *
               shape(Lattice(u * across, v * down, across, down, seed + static_cast<std::uint32_t>(octave)));
        weight += height;
        height /= 2;
        across *= 2;
        down *= 2;
    }
    return sum / weight;
}
}  // namespace

double Hills(double u, double v, const NoiseScale& scale, std::uint32_t seed)
{
    return SumOctaves(u, v, scale, seed, [](double value) { return value; });
}

double Ridges(double u, double v, const NoiseScale& scale, std::uint32_t seed)
{
    return SumOctaves(u, v, scale, seed, [](double value) { return 1 - std::fabs(value * 2 - 1); });
}

Cell CellAt(double u, double v, int across, int down, std::uint32_t seed)
{
    const double x = u * across;
    const double y = v * down;
    const int column = static_cast<int>(std::floor(x));
    const int row = static_cast<int>(std::floor(y));
    double nearest = 9;
    double second = 9;
    Cell cell;
    for (int dy = -1; dy <= 1; ++dy)
        for (int dx = -1; dx <= 1; ++dx) {
            const int wrappedColumn = Wrap(column + dx, across);
            const int wrappedRow = Wrap(row + dy, down);
            const double px = column + dx + 0.1 + 0.8 * ChanceAt(wrappedColumn, wrappedRow, seed);
            const double py = row + dy + 0.1 + 0.8 * ChanceAt(wrappedColumn, wrappedRow, seed + 71);
            const double distance = std::sqrt((px - x) * (px - x) + (py - y) * (py - y));
            if (distance < nearest) {
                second = nearest;
                nearest = distance;
                cell.chance = ChanceAt(wrappedColumn, wrappedRow, seed + 137);
            } else if (distance < second) {
                second = distance;
            }
        }
    cell.nearest = nearest;
    cell.border = second - nearest;
    return cell;
}

}  // namespace Demo
