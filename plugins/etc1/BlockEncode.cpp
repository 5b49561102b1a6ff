#include "plugins/etc1/BlockEncode.h"

#include "plugins/etc1/HalfFit.h"

namespace Etc1 {
namespace {
// What three bits of two's complement can hold.
constexpr int kLowestDifference = -4;
constexpr int kHighestDifference = 3;

// More than any block can have, and small enough to be added.
constexpr int kWorstError = 1 << 24;

// A block that could be written.
struct Choice {
    bool differential = false;
    bool flip = false;
    Candidate first{};
    Candidate second{};
    int error = kWorstError;
};

std::size_t PixelOf(bool flip, std::size_t half, std::size_t i)
{
    const std::size_t x = flip ? i % 4 : half * 2 + i % 2;
    const std::size_t y = flip ? half * 2 + i / 4 : i / 2;
    return y * 4 + x;
}

HalfPixels TakeHalf(const Plugin::BlockPixels& pixels, bool flip, std::size_t half)
{
    HalfPixels taken{};
    for (std::size_t i = 0; i < kHalfPixels; ++i) {
        const std::uint8_t* pixel = pixels.data() + PixelOf(flip, half, i) * Plugin::kPixelBytes;
        taken.red[i] = pixel[0];
        taken.green[i] = pixel[1];
        taken.blue[i] = pixel[2];
    }
    return taken;
}

bool DifferenceFits(const Candidate& first, const Candidate& second)
{
    for (std::size_t channel = 0; channel < 3; ++channel) {
        const int difference = second.levels[channel] - first.levels[channel];
        if (difference < kLowestDifference || difference > kHighestDifference)
            return false;
    }
    return true;
}

// Both lists are sorted, so a pair that is no better ends the row.
void ChooseDifferential(const CCandidates& first, const CCandidates& second, bool flip, Choice& best)
{
    for (std::size_t i = 0; i < first.Count(); ++i)
        for (std::size_t k = 0; k < second.Count(); ++k) {
            const int error = first[i].error + second[k].error;
            if (error >= best.error)
                break;
            if (DifferenceFits(first[i], second[k]))
                best = {true, flip, first[i], second[k], error};
        }
}

void ChooseFlip(const std::array<HalfPixels, 2>& halves, bool flip, Plugin::Quality quality, Choice& best)
{
    for (const bool differential : {true, false}) {
        const int bits = differential ? 5 : 4;
        CCandidates first;
        CCandidates second;
        FindBases(halves[0], bits, quality, best.error, first);
        if (first[0].error >= best.error)
            continue;
        FindBases(halves[1], bits, quality, best.error - first[0].error, second);
        if (differential) {
            ChooseDifferential(first, second, flip, best);
            continue;
        }
        const int error = first[0].error + second[0].error;
        if (error < best.error)
            best = {false, flip, first[0], second[0], error};
    }
}

// The bits of both planes of one half.
std::uint32_t PixelBits(const HalfPixels& pixels, const Choice& choice, std::size_t half)
{
    const Candidate& candidate = half == 0 ? choice.first : choice.second;
    const auto codes =
        CodesOf(pixels, ExpandLevels(candidate.levels, choice.differential ? 5 : 4), candidate.table);
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < kHalfPixels; ++i) {
        const std::size_t pixel = PixelOf(choice.flip, half, i);
        const std::size_t place = pixel % 4 * 4 + pixel / 4;
        const auto code = static_cast<std::uint32_t>(codes[i]);
        bits |= (code & 1) << place | (code >> 1) << (16 + place);
    }
    return bits;
}

void StoreChoice(const Choice& choice, std::uint32_t pixelBits, std::uint8_t* out)
{
    for (std::size_t channel = 0; channel < 3; ++channel) {
        const int first = choice.first.levels[channel];
        const int second = choice.second.levels[channel];
        const int byte = choice.differential ? first << 3 | ((second - first) & 7) : first << 4 | second;
        out[channel] = static_cast<std::uint8_t>(byte);
    }
    out[3] = static_cast<std::uint8_t>(choice.first.table << 5 | choice.second.table << 2 |
                                       (choice.differential ? kDiffBit : 0) | (choice.flip ? kFlipBit : 0));
    for (std::size_t i = 0; i < 4; ++i)
        out[4 + i] = static_cast<std::uint8_t>(pixelBits >> (24 - 8 * i));
}
}  // namespace

void EncodeBlock(const Plugin::BlockPixels& pixels, Plugin::Quality quality, std::uint8_t* out)
{
    Choice best;
    for (const bool flip : {false, true})
        ChooseFlip({TakeHalf(pixels, flip, 0), TakeHalf(pixels, flip, 1)}, flip, quality, best);
    const std::uint32_t bits = PixelBits(TakeHalf(pixels, best.flip, 0), best, 0) |
                               PixelBits(TakeHalf(pixels, best.flip, 1), best, 1);
    StoreChoice(best, bits, out);
}

}  // namespace Etc1
