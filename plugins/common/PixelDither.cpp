#include "plugins/common/PixelDither.h"

#include <algorithm>

namespace Plugin {
namespace {
constexpr std::size_t kChannels = 4;
constexpr std::size_t kAlpha = 3;

// As decoders fill the lower bits: with the upper ones again.
int Expand(int level, int bits)
{
    const int top = level << (8 - bits);
    int value = top;
    for (int shift = bits; shift < 8; shift += bits)
        value |= top >> shift;
    return value;
}

constexpr std::uint8_t Threshold(unsigned x, unsigned y)
{
    unsigned value = 0;
    for (unsigned bit = 0; bit < 3; ++bit) {
        const unsigned ofY = y >> bit & 1;
        const unsigned differs = (x >> bit & 1) ^ ofY;
        value |= (differs << 1 | ofY) << (2 * (2 - bit));
    }
    return static_cast<std::uint8_t>(value);
}

constexpr std::array<std::array<std::uint8_t, 8>, 8> MakeThresholds()
{
    std::array<std::array<std::uint8_t, 8>, 8> thresholds{};
    for (unsigned y = 0; y < 8; ++y)
        for (unsigned x = 0; x < 8; ++x)
            thresholds[y][x] = Threshold(x, y);
    return thresholds;
}
}  // namespace

constexpr std::array<std::array<std::uint8_t, 8>, 8> kBayerThresholds = MakeThresholds();

CPixelDither::Brackets CPixelDither::BracketsOf(int bits)
{
    Brackets brackets{};
    const int top = (1 << bits) - 1;
    int level = 0;
    for (int value = 0; value < 256; ++value) {
        while (level < top && Expand(level + 1, bits) <= value)
            ++level;
        const int low = Expand(level, bits);
        const int high = low == value ? low : Expand(level + 1, bits);
        brackets[static_cast<std::size_t>(value)] = {static_cast<std::uint8_t>(low),
                                                     static_cast<std::uint8_t>(high)};
    }
    return brackets;
}

CPixelDither::CPixelDither(Dithering mode, std::size_t width, ChannelBits bits, bool hidesColors)
    : m_eMode(mode),
      m_nWidth(width),
      m_bHidesColors(hidesColors),
      m_aBrackets{BracketsOf(bits.red), BracketsOf(bits.green), BracketsOf(bits.blue), BracketsOf(bits.alpha)}
{
    if (mode == Dithering::ErrorDiffusion) {
        m_aCurrent.resize((width + 2) * kChannels);
        m_aNext.resize((width + 2) * kChannels);
    }
}

void CPixelDither::NextRow(const std::uint8_t* source, std::uint8_t* destination)
{
    switch (m_eMode) {
        case Dithering::None:
            RoundRow(source, destination);
            break;
        case Dithering::ErrorDiffusion:
            DiffuseRow(source, destination);
            break;
        case Dithering::Ordered:
            OrderRow(source, destination);
            break;
    }
    ++m_nRow;
}

// What is not seen matters to nobody, and what is fully transparent or fully opaque must not get specks.
bool CPixelDither::IsFixed(const std::uint8_t* pixel, std::size_t channel) const
{
    const std::uint8_t alpha = pixel[kAlpha];
    return (m_bHidesColors && alpha == 0) || (channel == kAlpha && (alpha == 0 || alpha == 255));
}

std::uint8_t CPixelDither::Nearest(std::size_t channel, int value) const
{
    const Bracket bracket = m_aBrackets[channel][static_cast<std::size_t>(value)];
    return value - bracket.low <= bracket.high - value ? bracket.low : bracket.high;
}

void CPixelDither::RoundRow(const std::uint8_t* source, std::uint8_t* destination) const
{
    for (std::size_t i = 0; i < m_nWidth * kChannels; ++i)
        destination[i] = Nearest(i % kChannels, source[i]);
}

void CPixelDither::OrderRow(const std::uint8_t* source, std::uint8_t* destination) const
{
    for (std::size_t x = 0; x < m_nWidth; ++x) {
        std::array<std::uint8_t, kChannels> kept{};
        for (std::size_t channel = 0; channel < kChannels; ++channel) {
            const std::uint8_t value = source[x * kChannels + channel];
            const Bracket bracket = m_aBrackets[channel][value];
            // Each channel has its own place in the pattern, so that not all of them step up together.
            const int threshold = kBayerThresholds[(m_nRow + 5 * channel) % 8][(x + 3 * channel) % 8];
            const bool isHigh =
                128 * (value - bracket.low) > (2 * threshold + 1) * (bracket.high - bracket.low);
            kept[channel] = isHigh ? bracket.high : bracket.low;
            if (IsFixed(source + x * kChannels, channel))
                kept[channel] = Nearest(channel, value);
        }
        std::copy(kept.begin(), kept.end(), destination + x * kChannels);
    }
}

// Floyd and Steinberg's weights; every second row runs from right to left, which leaves no slanting trails.
void CPixelDither::DiffuseRow(const std::uint8_t* source, std::uint8_t* destination)
{
    const bool isBackward = m_nRow % 2 != 0;
    for (std::size_t step = 0; step < m_nWidth; ++step) {
        const std::size_t x = isBackward ? m_nWidth - 1 - step : step;
        // With the margin of one pixel.
        const std::size_t ahead = (isBackward ? x : x + 2) * kChannels;
        const std::size_t behind = (isBackward ? x + 2 : x) * kChannels;
        const std::size_t here = (x + 1) * kChannels;
        std::array<std::uint8_t, kChannels> kept{};
        for (std::size_t channel = 0; channel < kChannels; ++channel) {
            const std::uint8_t value = source[x * kChannels + channel];
            if (IsFixed(source + x * kChannels, channel)) {
                kept[channel] = Nearest(channel, value);
                continue;
            }
            // The shift rounds to the nearest also for a negative sum.
            const int wanted = std::clamp(value + ((m_aCurrent[here + channel] + 8) >> 4), 0, 255);
            kept[channel] = Nearest(channel, wanted);
            const int error = wanted - kept[channel];
            m_aCurrent[ahead + channel] += error * 7;
            m_aNext[behind + channel] += error * 3;
            m_aNext[here + channel] += error * 5;
            m_aNext[ahead + channel] += error;
        }
        std::copy(kept.begin(), kept.end(), destination + x * kChannels);
    }
    std::swap(m_aCurrent, m_aNext);
    std::fill(m_aNext.begin(), m_aNext.end(), 0);
}

}  // namespace Plugin
