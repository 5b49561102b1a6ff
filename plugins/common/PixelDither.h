#pragma once

// Dithering of RGBA rows to the channel depths of a format, pixel by pixel: for formats that store every
// pixel on its own, and for alpha of few bits. One object serves one picture, its rows taken from top to
// bottom.

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "plugins/common/PluginInfo.h"

namespace Plugin {

/// Bits kept of each channel, 1 to 8; a channel of 8 bits passes unchanged.
struct ChannelBits {
    int red;
    int green;
    int blue;
    int alpha;
};

/// Thresholds 0 to 63 of ordered dithering, an 8x8 pattern in which neighbours differ as much as they can.
extern const std::array<std::array<std::uint8_t, 8>, 8> kBayerThresholds;

/// Every value comes out as one that the depth has; a value that the depth has stays as it is, and so do
/// alphas 0 and 255. Where `hidesColors` is set, a pixel of alpha 0 only loses bits: it takes no error and
/// passes none on.
class CPixelDither {
public:
    /// Throws std::bad_alloc when there is no room for two rows of errors.
    CPixelDither(Dithering mode, std::size_t width, ChannelBits bits, bool hidesColors);

    /// Writes the next row, width * 4 bytes; source and destination may be the same row.
    void NextRow(const std::uint8_t* source, std::uint8_t* destination);

private:
    // The nearest values of the depth that are not above and not below a value.
    struct Bracket {
        std::uint8_t low;
        std::uint8_t high;
    };
    using Brackets = std::array<Bracket, 256>;

    static Brackets BracketsOf(int bits);
    void DiffuseRow(const std::uint8_t* source, std::uint8_t* destination);
    void OrderRow(const std::uint8_t* source, std::uint8_t* destination) const;
    void RoundRow(const std::uint8_t* source, std::uint8_t* destination) const;
    bool IsFixed(const std::uint8_t* pixel, std::size_t channel) const;
    std::uint8_t Nearest(std::size_t channel, int value) const;

    Dithering m_eMode;
    std::size_t m_nWidth;
    bool m_bHidesColors;
    std::size_t m_nRow = 0;
    std::array<Brackets, 4> m_aBrackets;
    // Errors in sixteenths, one pixel of margin on both sides.
    std::vector<std::int32_t> m_aCurrent;
    std::vector<std::int32_t> m_aNext;
};

}  // namespace Plugin
