#include "plugins/common/ErrorDiffusion.h"

#include <algorithm>

namespace Plugin {
namespace {
constexpr std::size_t kChannels = 4;

int Quantise(int value, int bits)
{
    const int top = (1 << bits) - 1;
    const int level = (value * top + 127) / 255;
    return (level * 255 + top / 2) / top;
}
}  // namespace

CErrorDiffusion::CErrorDiffusion(std::size_t width, ChannelBits bits)
    : m_nWidth(width),
      m_aBits{bits.red, bits.green, bits.blue, bits.alpha},
      m_aCurrent((width + 2) * kChannels),
      m_aNext((width + 2) * kChannels)
{
}

void CErrorDiffusion::NextRow(const std::uint8_t* source, std::uint8_t* destination)
{
    for (std::size_t i = 0; i < m_nWidth * kChannels; ++i) {
        const int bits = m_aBits[i % kChannels];
        if (bits >= 8) {
            destination[i] = source[i];
            continue;
        }
        const std::size_t at = i + kChannels;
        // The shift rounds to the nearest also for a negative sum.
        const int wanted = std::clamp(source[i] + ((m_aCurrent[at] + 8) >> 4), 0, 255);
        const int kept = Quantise(wanted, bits);
        destination[i] = static_cast<std::uint8_t>(kept);
        const int error = wanted - kept;
        m_aCurrent[at + kChannels] += error * 7;
        m_aNext[at - kChannels] += error * 3;
        m_aNext[at] += error * 5;
        m_aNext[at + kChannels] += error;
    }
    std::swap(m_aCurrent, m_aNext);
    std::fill(m_aNext.begin(), m_aNext.end(), 0);
}

}  // namespace Plugin
