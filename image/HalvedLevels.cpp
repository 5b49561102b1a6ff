#include "image/HalvedLevels.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::size_t kChannels = 4;
/// 256 source pixels and what is added to round them fit 16 bits.
constexpr unsigned kMostNarrow = 8;

/// Each target pixel is the sum of two neighbours.
template <class Number, class Sum>
void AddPairs(const Number* from, Sum* to, std::size_t pixels)
{
    for (std::size_t pixel = 0; pixel < pixels; ++pixel, from += 2 * kChannels, to += kChannels)
        for (std::size_t channel = 0; channel < kChannels; ++channel)
            to[channel] = static_cast<Sum>(from[channel] + from[kChannels + channel]);
}

/// The same with the four sums of a pixel in one word, where none reaches its neighbour; compilers do not
/// find that.
void AddPairs(const std::uint16_t* from, std::uint16_t* to, std::size_t pixels)
{
    for (std::size_t pixel = 0; pixel < pixels; ++pixel, from += 2 * kChannels, to += kChannels) {
        std::uint64_t left = 0;
        std::uint64_t right = 0;
        std::memcpy(&left, from, sizeof(left));
        std::memcpy(&right, from + kChannels, sizeof(right));
        left += right;
        std::memcpy(to, &left, sizeof(left));
    }
}

/// Each target pixel is the sum of the two or four source pixels that it covers.
template <class Sum, class Number>
std::vector<Sum> AddUp(std::span<const Number> from, std::uint32_t width, std::uint32_t height)
{
    if (width == 1 || height == 1) {
        std::vector<Sum> sums(from.size() / 2);
        AddPairs(from.data(), sums.data(), sums.size() / kChannels);
        return sums;
    }
    std::vector<Sum> sums(from.size() / 4);
    const std::size_t stride = std::size_t{width} * kChannels;
    std::vector<Sum> bothRows(stride);
    const Number* upper = from.data();
    Sum* out = sums.data();
    for (std::uint32_t y = 0; y < height / 2; ++y, upper += 2 * stride, out += stride / 2) {
        for (std::size_t i = 0; i < stride; ++i)
            bothRows[i] = static_cast<Sum>(upper[i] + upper[stride + i]);
        AddPairs(bothRows.data(), out, width / 2);
    }
    return sums;
}

template <class Sum>
std::vector<std::byte> Means(const std::vector<Sum>& sums, unsigned shift)
{
    const Sum half = static_cast<Sum>(Sum{1} << (shift - 1));
    std::vector<std::byte> means(sums.size());
    for (std::size_t i = 0; i < sums.size(); ++i)
        means[i] = static_cast<std::byte>(static_cast<Sum>(sums[i] + half) >> shift);
    return means;
}

}  // namespace

CHalvedLevels::CHalvedLevels(std::span<const std::byte> pixels, std::uint32_t width, std::uint32_t height)
    : m_aPixels(pixels), m_nWidth(width), m_nHeight(height)
{
}

std::vector<std::byte> CHalvedLevels::Next()
{
    const bool isFirst = m_nShift == 0;
    const bool wasNarrow = m_nShift <= kMostNarrow;
    m_nShift += static_cast<unsigned>(m_nWidth > 1) + static_cast<unsigned>(m_nHeight > 1);
    const bool isNarrow = m_nShift <= kMostNarrow;
    if (isFirst) {
        const std::span bytes(reinterpret_cast<const std::uint8_t*>(m_aPixels.data()), m_aPixels.size());
        m_aNarrow = AddUp<std::uint16_t>(bytes, m_nWidth, m_nHeight);
    } else if (isNarrow) {
        m_aNarrow = AddUp<std::uint16_t>(std::span<const std::uint16_t>(m_aNarrow), m_nWidth, m_nHeight);
    } else if (wasNarrow) {
        m_aWide = AddUp<std::uint64_t>(std::span<const std::uint16_t>(m_aNarrow), m_nWidth, m_nHeight);
    } else {
        m_aWide = AddUp<std::uint64_t>(std::span<const std::uint64_t>(m_aWide), m_nWidth, m_nHeight);
    }
    m_nWidth = std::max(m_nWidth / 2, 1U);
    m_nHeight = std::max(m_nHeight / 2, 1U);
    return isNarrow ? Means(m_aNarrow, m_nShift) : Means(m_aWide, m_nShift);
}
