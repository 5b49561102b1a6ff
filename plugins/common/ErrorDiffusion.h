#pragma once

// Floyd-Steinberg error diffusion of RGBA rows to the channel depths of a format, done before blocks are
// fitted so that smooth gradients do not turn into bands. One object serves one picture, its rows taken from
// top to bottom.

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace Plugin {

/// Bits kept of each channel, 1 to 8; a channel of 8 bits passes unchanged.
struct ChannelBits {
    int red;
    int green;
    int blue;
    int alpha;
};

class CErrorDiffusion {
public:
    /// Throws std::bad_alloc when there is no room for two rows of errors.
    CErrorDiffusion(std::size_t width, ChannelBits bits);

    /// Writes the next row, width * 4 bytes; source and destination may be the same row.
    void NextRow(const std::uint8_t* source, std::uint8_t* destination);

private:
    std::size_t m_nWidth;
    std::array<int, 4> m_aBits;
    // Errors in sixteenths, one pixel of margin on both sides.
    std::vector<std::int32_t> m_aCurrent;
    std::vector<std::int32_t> m_aNext;
};

}  // namespace Plugin
