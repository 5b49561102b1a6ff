#pragma once

// Leaves, branches, blades and flowers on a transparent ground, and bark, which is opaque.

#include <cstdint>

#include "demo/Canvas.h"

namespace Demo {

struct LeafStyle {
    Color dark;
    Color light;
    int count = 120;
    double length = 0.14;   ///< of a leaf, as a part of the picture's width
    double slimness = 2.2;  ///< length of a leaf over its breadth
    double reach = 0.42;    ///< radius of the cluster as a part of the picture's width
    std::uint32_t seed = 1;
};

/// A round cluster, darker inside, lit from above.
CCanvas DrawLeaves(int size, const LeafStyle& style);
/// A tree or shrub seen from the side: a trunk under a cluster.
CCanvas DrawTree(int width, int height, const LeafStyle& style);
/// A palm frond or fern: leaflets along a bent rib.
CCanvas DrawFrond(int width, int height, const Color& color, int leaflets, std::uint32_t seed);
/// Blades that rise from the lower edge.
CCanvas DrawGrassTuft(int width, int height, const Color& color, int blades, std::uint32_t seed);
/// A tuft with blossoms on stalks.
CCanvas DrawFlowers(int width, int height, const Color& petals, int blossoms, std::uint32_t seed);
/// Leaves hanging over the whole picture with gaps.
CCanvas DrawIvy(int size, const LeafStyle& style);
/// Opaque: cut shrubs.
CCanvas DrawHedge(int size, const LeafStyle& style);
/// Opaque.
CCanvas DrawBark(int width, int height, const Color& color, std::uint32_t seed);

}  // namespace Demo
