#pragma once

// Noise that tiles: smooth hills of several sizes, and cells around scattered points. Places are given as
// parts of the picture, u from left to right and v from top to bottom, each from 0 to 1.

#include <cstdint>

namespace Demo {

/// How often the largest hills repeat across and down; each further octave is half as large and half as high.
struct NoiseScale {
    int across = 4;
    int down = 4;
    int octaves = 4;
};

/// About 0 to 1, mean 0.5.
double Hills(double u, double v, const NoiseScale& scale, std::uint32_t seed);

/// As Hills, with sharp crests at 1: veins, cracks, mountains.
double Ridges(double u, double v, const NoiseScale& scale, std::uint32_t seed);

/// The cell of a scattered grid that a place lies in.
struct Cell {
    double nearest = 0;  ///< to its point, in cell widths
    double border = 0;   ///< how far from the border to the next cell, in cell widths; 0 on it
    double chance = 0;   ///< a number in [0, 1) that belongs to the cell
};
Cell CellAt(double u, double v, int across, int down, std::uint32_t seed);

}  // namespace Demo
