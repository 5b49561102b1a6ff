#include "demo/Canvas.h"

#include <cstdint>
#include <stdexcept>

namespace Demo {
namespace {
std::uint8_t ToByte(double channel)
{
    return static_cast<std::uint8_t>(Clamp01(channel) * 255 + 0.5);
}
}  // namespace

CCanvas::CCanvas(int width, int height, const Color& fill)
    : m_nWidth(width),
      m_nHeight(height),
      m_aPixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), fill)
{
}

void CCanvas::Stamp(const CCanvas& picture, int x, int y)
{
    for (int row = 0; row < picture.Height(); ++row)
        for (int column = 0; column < picture.Width(); ++column)
            Blend(x + column, y + row, picture.At(column, row));
}

CCanvas CCanvas::Cut(int x, int y, int width, int height) const
{
    CCanvas part(width, height, {});
    part.Repaint([&](int column, int row, const Color&) { return At(x + column, y + row); });
    return part;
}

CBitmap CCanvas::ToBitmap() const
{
    auto bitmap =
        CBitmap::Create(static_cast<std::uint32_t>(m_nWidth), static_cast<std::uint32_t>(m_nHeight));
    if (!bitmap)
        throw std::runtime_error("no memory for a picture");
    std::size_t place = 0;
    const auto pixels = bitmap->Pixels();
    for (const Color& color : m_aPixels) {
        pixels[place++] = ToByte(color.blue);
        pixels[place++] = ToByte(color.green);
        pixels[place++] = ToByte(color.red);
        pixels[place++] = ToByte(color.alpha);
    }
    return std::move(*bitmap);
}

}  // namespace Demo
