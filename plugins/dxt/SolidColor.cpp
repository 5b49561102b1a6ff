#include "plugins/dxt/SolidColor.h"

#include <utility>

namespace Dxt {
namespace {
struct LevelPair {
    std::uint8_t first;
    std::uint8_t second;
    std::uint8_t reached;
};

using LevelTable = std::array<LevelPair, 256>;

constexpr int Expand(int level, int bits)
{
    return bits == 5 ? Expand5(level) : Expand6(level);
}

constexpr int Mix(int first, int second, PaletteMode mode)
{
    return mode == PaletteMode::FourColors ? Third(first, second) : Half(first, second);
}

constexpr std::size_t Index(int value)
{
    return static_cast<std::size_t>(value);
}

// A value that no pair reaches takes the pair of the nearest value that one does.
constexpr LevelPair NearestReached(const LevelTable& reached, const std::array<int, 256>& distance, int value)
{
    for (int away = 0; away < 256; ++away) {
        if (value - away >= 0 && distance[Index(value - away)] >= 0)
            return reached[Index(value - away)];
        if (value + away < 256 && distance[Index(value + away)] >= 0)
            return reached[Index(value + away)];
    }
    return {};
}

constexpr LevelTable MakeTable(int bits, PaletteMode mode)
{
    LevelTable reached{};
    std::array<int, 256> distance{};
    for (int& entry : distance)
        entry = -1;
    const int levels = 1 << bits;
    for (int first = 0; first < levels; ++first)
        for (int second = 0; second < levels; ++second) {
            const int value = Mix(Expand(first, bits), Expand(second, bits), mode);
            const int apart = first > second ? first - second : second - first;
            int& best = distance[Index(value)];
            // Of equal pairs the closest: decoders that round the mix differently then differ least.
            if (best >= 0 && best <= apart)
                continue;
            best = apart;
            reached[Index(value)] = {static_cast<std::uint8_t>(first), static_cast<std::uint8_t>(second),
                                     static_cast<std::uint8_t>(value)};
        }
    LevelTable table{};
    for (int value = 0; value < 256; ++value)
        table[Index(value)] = NearestReached(reached, distance, value);
    return table;
}

constexpr LevelTable kFour5 = MakeTable(5, PaletteMode::FourColors);
constexpr LevelTable kFour6 = MakeTable(6, PaletteMode::FourColors);
constexpr LevelTable kThree5 = MakeTable(5, PaletteMode::ThreeColors);
constexpr LevelTable kThree6 = MakeTable(6, PaletteMode::ThreeColors);

int Squared(int difference)
{
    return difference * difference;
}

Rgb ColorOf(std::uint32_t pixel)
{
    return {static_cast<int>(pixel & 0xFF), static_cast<int>(pixel >> 8 & 0xFF),
            static_cast<int>(pixel >> 16 & 0xFF)};
}

void StoreBlock(const SolidEndpoints& ends, std::uint32_t indices, std::uint8_t* out)
{
    out[0] = static_cast<std::uint8_t>(ends.color0 & 0xFF);
    out[1] = static_cast<std::uint8_t>(ends.color0 >> 8);
    out[2] = static_cast<std::uint8_t>(ends.color1 & 0xFF);
    out[3] = static_cast<std::uint8_t>(ends.color1 >> 8);
    for (std::size_t row = 4; row < kColorBytes; ++row, indices >>= 8)
        out[row] = static_cast<std::uint8_t>(indices & 0xFF);
}

// Every pixel the mix that is nearer to the first colour, and the one that is nearer to the second.
constexpr std::uint32_t kAllThird = 0xAAAAAAAA;
constexpr std::uint32_t kAllFourth = 0xFFFFFFFF;
}  // namespace

SolidEndpoints SolidEndpointsFor(const Rgb& color, PaletteMode mode)
{
    const bool four = mode == PaletteMode::FourColors;
    const LevelTable& five = four ? kFour5 : kThree5;
    const LevelTable& six = four ? kFour6 : kThree6;
    const LevelPair red = five[Index(color.red)];
    const LevelPair green = six[Index(color.green)];
    const LevelPair blue = five[Index(color.blue)];
    return {PackColor(red.first, green.first, blue.first), PackColor(red.second, green.second, blue.second),
            Squared(color.red - red.reached) + Squared(color.green - green.reached) +
                Squared(color.blue - blue.reached)};
}

void StoreSolidBlock(std::uint32_t pixel, bool fourOnly, std::uint8_t* out)
{
    const Rgb color = ColorOf(pixel);
    SolidEndpoints best = SolidEndpointsFor(color, PaletteMode::FourColors);
    bool isFour = true;
    if (!fourOnly) {
        const SolidEndpoints three = SolidEndpointsFor(color, PaletteMode::ThreeColors);
        isFour = best.error <= three.error;
        best = isFour ? best : three;
    }
    std::uint32_t indices = kAllThird;
    if (best.color0 == best.color1) {
        indices = 0;
    } else if ((best.color0 > best.color1) != isFour) {
        // The colours change places for the mode.
        std::swap(best.color0, best.color1);
        indices = isFour ? kAllFourth : kAllThird;
    }
    StoreBlock(best, indices, out);
}

void StoreSolidBlockWithHoles(std::uint32_t pixel, std::uint32_t clear, std::uint8_t* out)
{
    if (clear == 0) {
        StoreSolidBlock(pixel, false, out);
        return;
    }
    SolidEndpoints ends = SolidEndpointsFor(ColorOf(pixel), PaletteMode::ThreeColors);
    if (ends.color0 > ends.color1)
        std::swap(ends.color0, ends.color1);
    StoreBlock(ends, kAllThird | clear, out);
}

}  // namespace Dxt
