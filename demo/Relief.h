#pragma once

// A height for every pixel, and the light that falls on it from the upper left: what turns flat paint into
// bricks, planks and stones.

#include <vector>

#include "demo/Canvas.h"

namespace Demo {

class CRelief {
public:
    CRelief(int width, int height)
        : m_nWidth(width),
          m_nHeight(height),
          m_aHeights(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 0.0)
    {
    }

    /// Any coordinates; they wrap.
    double& At(int x, int y) { return m_aHeights[IndexOf(x, y)]; }
    double At(int x, int y) const { return m_aHeights[IndexOf(x, y)]; }

    /// Brightens slopes that face the light and darkens the others. A step of 1 per pixel changes the
    /// brightness by `strength`.
    void Shade(CCanvas& canvas, double strength) const;

private:
    std::size_t IndexOf(int x, int y) const
    {
        const int column = (x % m_nWidth + m_nWidth) % m_nWidth;
        const int row = (y % m_nHeight + m_nHeight) % m_nHeight;
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(m_nWidth) +
               static_cast<std::size_t>(column);
    }

    int m_nWidth;
    int m_nHeight;
    std::vector<double> m_aHeights;
};

}  // namespace Demo
