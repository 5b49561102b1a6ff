#include "plugins/etc1/SolidColor.h"

#include <climits>

#include "plugins/etc1/BlockFormat.h"

namespace Etc1 {
namespace {
constexpr std::size_t kValues = 256;
constexpr std::size_t kCodes = 4;
// Of each mode: every table with every code.
constexpr std::size_t kShifts = kTables * kCodes;

struct Level {
    std::uint8_t level;
    std::uint8_t distance;
};

using Levels = std::array<std::array<Level, kValues>, kShifts>;

struct Tables {
    Levels fine;    // five bits
    Levels coarse;  // four bits
};

Level NearestLevel(int value, int modifier, int bits)
{
    Level best{0, 255};
    for (int level = 0; level < 1 << bits; ++level) {
        const int base = bits == 5 ? Expand5(level) : Expand4(level);
        const int away = Clamp255(base + modifier) - value;
        const int distance = away < 0 ? -away : away;
        if (distance < best.distance)
            best = {static_cast<std::uint8_t>(level), static_cast<std::uint8_t>(distance)};
    }
    return best;
}

void FillLevels(int bits, Levels& levels)
{
    for (std::size_t shift = 0; shift < kShifts; ++shift)
        for (std::size_t value = 0; value < kValues; ++value)
            levels[shift][value] = NearestLevel(
                static_cast<int>(value), ModifierOf(shift / kCodes, static_cast<int>(shift % kCodes)), bits);
}

const Tables& SolidTables()
{
    static const Tables kSolidTables = [] {
        Tables tables;
        FillLevels(5, tables.fine);
        FillLevels(4, tables.coarse);
        return tables;
    }();
    return kSolidTables;
}

using Rgb = std::array<std::uint8_t, 3>;

struct Choice {
    const Levels* levels;
    std::size_t shift;
    int error;
};

int ErrorOf(const Levels& levels, std::size_t shift, const Rgb& color)
{
    int error = 0;
    for (const std::uint8_t value : color) {
        const int distance = levels[shift][value].distance;
        error += distance * distance;
    }
    return error;
}
}  // namespace

void StoreSolidBlock(std::uint32_t pixel, std::uint8_t* out)
{
    const Tables& tables = SolidTables();
    const Rgb color{static_cast<std::uint8_t>(pixel), static_cast<std::uint8_t>(pixel >> 8),
                    static_cast<std::uint8_t>(pixel >> 16)};
    Choice best{&tables.fine, 0, INT_MAX};
    for (const Levels* levels : {&tables.fine, &tables.coarse})
        for (std::size_t shift = 0; shift < kShifts && best.error > 0; ++shift) {
            const int error = ErrorOf(*levels, shift, color);
            if (error < best.error)
                best = {levels, shift, error};
        }
    const bool differential = best.levels == &tables.fine;
    for (std::size_t channel = 0; channel < color.size(); ++channel) {
        const int level = (*best.levels)[best.shift][color[channel]].level;
        out[channel] = static_cast<std::uint8_t>(differential ? level << 3 : level << 4 | level);
    }
    const std::size_t table = best.shift / kCodes;
    const std::size_t code = best.shift % kCodes;
    out[3] = static_cast<std::uint8_t>(table << 5 | table << 2 | (differential ? kDiffBit : 0));
    const std::uint8_t high = (code & 2) != 0 ? 0xFF : 0;
    const std::uint8_t low = (code & 1) != 0 ? 0xFF : 0;
    out[4] = high;
    out[5] = high;
    out[6] = low;
    out[7] = low;
}

}  // namespace Etc1
