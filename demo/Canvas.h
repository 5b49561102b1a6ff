#pragma once

// A picture while it is painted: floating-point colours that wrap around at the edges, so that whatever is
// drawn tiles. A value; ToBitmap gives the finished picture.

#include <vector>

#include "demo/Color.h"
#include "image/Bitmap.h"

namespace Demo {

class CCanvas {
public:
    CCanvas(int width, int height, const Color& fill);

    int Width() const { return m_nWidth; }
    int Height() const { return m_nHeight; }
    /// Any coordinates; they wrap.
    Color& At(int x, int y) { return m_aPixels[IndexOf(x, y)]; }
    const Color& At(int x, int y) const { return m_aPixels[IndexOf(x, y)]; }
    /// Lays a colour over a pixel, its alpha multiplied by `coverage`.
    void Blend(int x, int y, const Color& color, double coverage = 1)
    {
        Color& pixel = At(x, y);
        pixel = Over(pixel, WithAlpha(color, color.alpha * Clamp01(coverage)));
    }
    /// Replaces every pixel by paint(x, y, pixel).
    template <typename Paint>
    void Repaint(Paint paint)
    {
        for (int y = 0; y < m_nHeight; ++y)
            for (int x = 0; x < m_nWidth; ++x)
                At(x, y) = paint(x, y, At(x, y));
    }
    /// Lays a whole picture over this one, its upper left corner at (x, y).
    void Stamp(const CCanvas& picture, int x, int y);
    /// A part as a canvas of its own.
    CCanvas Cut(int x, int y, int width, int height) const;

    CBitmap ToBitmap() const;

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
    std::vector<Color> m_aPixels;
};

}  // namespace Demo
