#pragma once

// A picture in memory: 32-bit pixels, four bytes each in the order blue, green, red, alpha, rows top to
// bottom without gaps. It owns its pixels and is cheap to move.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

class CBitmap {
public:
    CBitmap() = default;
    /// Transparent black. Nothing when the size is zero in a direction, beyond 65535, takes 2 GiB or more, or
    /// memory is short.
    static std::optional<CBitmap> Create(std::uint32_t width, std::uint32_t height);

    std::uint32_t Width() const { return m_nWidth; }
    std::uint32_t Height() const { return m_nHeight; }
    bool IsEmpty() const { return m_aPixels.empty(); }
    /// Width * height * 4 bytes.
    std::span<std::uint8_t> Pixels() { return m_aPixels; }
    std::span<const std::uint8_t> Pixels() const { return m_aPixels; }
    std::span<const std::uint8_t> Row(std::uint32_t y) const
    {
        return std::span(m_aPixels).subspan(std::size_t{y} * m_nWidth * 4, std::size_t{m_nWidth} * 4);
    }

private:
    std::uint32_t m_nWidth = 0;
    std::uint32_t m_nHeight = 0;
    std::vector<std::uint8_t> m_aPixels;
};
