#include "plugins/pvrtc/DitherModulation.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <vector>

#include "plugins/common/PixelDither.h"
#include "plugins/common/RoundErrors.h"
#include "plugins/common/RowTeam.h"
#include "plugins/pvrtc/Modulation.h"
#include "plugins/pvrtc/PvrtcDecode.h"

namespace Pvrtc {
namespace {
constexpr std::size_t kColors = 3;
constexpr std::size_t kAlpha = 3;
// Weights whose colours are further apart than this belong to edges and grain, not to bands.
constexpr int kWidestGap = 24;
// Thresholds make good nothing, so they may do less.
constexpr int kWidestOrderedGap = 12;
// A thread more takes a fraction of the time to start that these take to dither.
constexpr std::uint64_t kPixelsPerThread = std::uint64_t{256} * 256;
// In sixteenths. What the two endpoints cannot show at all must not pile up.
constexpr int kMostError = 16 * 16;

using Error = std::array<std::int32_t, kColors>;

struct Choice {
    const std::uint8_t* weights;
    std::size_t count;
};
constexpr std::uint8_t kTwoWeights[2] = {0, 8};
constexpr Choice kFourChoices{kWeights, 4};
constexpr Choice kTwoChoices{kTwoWeights, 2};
constexpr Choice kNoChoice{kTwoWeights, 0};

// Colours A and B at every pixel: what the level would show with all weights 0 and with all weights 8.
std::vector<std::uint8_t> EndpointPicture(const BlockGrid& grid, const std::uint8_t* level,
                                          std::uint32_t modulation, const EncodeOptions& options)
{
    std::vector<std::uint8_t> words(grid.Blocks() * kBlockBytes);
    for (std::size_t at = 0; at < words.size(); at += kBlockBytes)
        WriteBlock(words.data() + at, {modulation, ReadBlock(level + at).colors & ~1U});
    std::vector<std::uint8_t> pixels(std::size_t{grid.width} * grid.height * kPixelBytes);
    PvrtcDecode(words.data(), pixels.data(), grid.width, grid.height, options.bitsPerPixel,
                options.instructionSet);
    return pixels;
}

class CModulationDither {
public:
    CModulationDither(const BlockGrid& grid, const std::uint8_t* source, std::uint8_t* level,
                      const EncodeOptions& options)
        : m_oGrid(grid),
          m_pSource(source),
          m_pLevel(level),
          m_bHidesColors(options.alpha),
          m_oMap(grid),
          m_aColorA(EndpointPicture(grid, level, 0, options)),
          m_aColorB(EndpointPicture(grid, level, ~0U, options))
    {
        for (std::uint32_t row = 0; row < grid.rows; ++row)
            for (std::uint32_t column = 0; column < grid.columns; ++column)
                UnpackModulation(ReadBlock(Word(column, row)), column, row, m_oMap);
        FillInterpolated(m_oMap);
    }

    // Floyd and Steinberg's weights; every second row runs from right to left, which leaves no slanting
    // trails.
    void Diffuse()
    {
        // One pixel of margin on both sides.
        std::vector<Error> current(m_oGrid.width + std::size_t{2});
        std::vector<Error> next(current.size());
        for (std::size_t y = 0; y < m_oGrid.height; ++y) {
            const bool isBackward = y % 2 != 0;
            for (std::size_t step = 0; step < m_oGrid.width; ++step) {
                const std::size_t x = isBackward ? m_oGrid.width - 1 - step : step;
                const std::size_t ahead = isBackward ? x : x + 2;
                const std::size_t behind = isBackward ? x + 2 : x;
                const Error error = DiffuseAt(x, y, current[x + 1]);
                for (std::size_t channel = 0; channel < kColors; ++channel) {
                    current[ahead][channel] += error[channel] * 7 / 16;
                    next[behind][channel] += error[channel] * 3 / 16;
                    next[x + 1][channel] += error[channel] * 5 / 16;
                    next[ahead][channel] += error[channel] / 16;
                }
            }
            std::swap(current, next);
            std::fill(next.begin(), next.end(), Error{});
        }
    }

    // With 4 bits per pixel in rounds. What comes out does not depend on the number of threads.
    void Order(unsigned members)
    {
        Plugin::CRowTeam team(members);
        if (m_oGrid.blockWidth == 8) {
            team.Run(m_oGrid.height, [&](std::uint32_t first, std::uint32_t end, unsigned /*member*/) {
                for (std::size_t y = first; y < end; ++y)
                    for (std::size_t x = 0; x < m_oGrid.width; ++x)
                        OrderByThreshold(x, y);
            });
            return;
        }
        Plugin::CRoundErrors<std::int8_t> errors(m_oGrid.width, m_oGrid.height);
        for (const Plugin::Round round : Plugin::kRounds) {
            const auto rows = static_cast<std::uint32_t>((m_oGrid.height + 1 - round.lower) / 2);
            team.Run(rows, [&](std::uint32_t first, std::uint32_t end, unsigned /*member*/) {
                for (std::size_t pair = first; pair < end; ++pair)
                    for (std::size_t x = round.right; x < m_oGrid.width; x += 2)
                        OrderAt(x, 2 * pair + round.lower, errors);
            });
        }
    }

    void Store()
    {
        for (std::uint32_t row = 0; row < m_oGrid.rows; ++row)
            for (std::uint32_t column = 0; column < m_oGrid.columns; ++column) {
                std::uint8_t* const word = Word(column, row);
                const BlockWord packed = PackModulation(m_oMap, column, row);
                WriteBlock(word, {packed.modulation, (ReadBlock(word).colors & ~1U) | packed.colors});
            }
    }

private:
    std::uint8_t* Word(std::uint32_t column, std::uint32_t row) const
    {
        return m_pLevel + StoredIndex(m_oGrid, column, row) * kBlockBytes;
    }

    std::size_t At(std::size_t x, std::size_t y) const { return (y * m_oGrid.width + x) * kPixelBytes; }

    std::uint8_t& WeightAt(std::size_t x, std::size_t y)
    {
        const std::size_t row = y & (m_oGrid.PaddedHeight() - 1);
        return m_oMap.weights[row * m_oGrid.PaddedWidth() + (x & (m_oGrid.PaddedWidth() - 1))];
    }

    ModulationMode ModeAt(std::size_t x, std::size_t y) const
    {
        return m_oMap.modes[y / kBlockHeight * m_oGrid.columns + x / m_oGrid.blockWidth];
    }

    // The weights that the block stores for this pixel.
    Choice ChoiceAt(std::size_t x, std::size_t y) const
    {
        const ModulationMode mode = ModeAt(x, y);
        if (mode == ModulationMode::PunchThrough)
            return kNoChoice;
        if (mode == ModulationMode::Plain)
            return m_oGrid.blockWidth == 4 ? kFourChoices : kTwoChoices;
        if (!IsStored(x, y))
            return kNoChoice;
        return IsOneBit(mode, x % m_oGrid.blockWidth, y % kBlockHeight) ? kTwoChoices : kFourChoices;
    }

    int Shown(std::size_t at, std::size_t channel, int weight) const
    {
        return (m_aColorA[at + channel] * (kWeightScale - weight) + m_aColorB[at + channel] * weight) /
               kWeightScale;
    }

    // Whether dithering may look at a pixel at all.
    bool IsSmooth(std::size_t at, const Choice& choice, int widestGap = kWidestGap) const
    {
        if (m_aColorA[at + kAlpha] != m_aColorB[at + kAlpha] ||
            (m_bHidesColors && m_pSource[at + kAlpha] == 0))
            return false;
        const int gap = choice.count == 2 ? kWeightScale : 3;
        for (std::size_t channel = 0; channel < kColors; ++channel)
            if (std::abs(m_aColorA[at + channel] - m_aColorB[at + channel]) * gap > widestGap * kWeightScale)
                return false;
        return true;
    }

    std::uint8_t Nearest(std::size_t at, const Choice& choice, const Error& wanted) const
    {
        std::uint8_t best = choice.weights[0];
        std::int64_t least = INT64_MAX;
        for (std::size_t i = 0; i < choice.count; ++i) {
            std::int64_t distance = 0;
            for (std::size_t channel = 0; channel < kColors; ++channel) {
                const std::int64_t off = wanted[channel] - Shown(at, channel, choice.weights[i]) * 16;
                distance += off * off;
            }
            if (distance < least) {
                least = distance;
                best = choice.weights[i];
            }
        }
        return best;
    }

    Error WantedAt(std::size_t at) const
    {
        return {m_pSource[at] * 16, m_pSource[at + 1] * 16, m_pSource[at + 2] * 16};
    }

    // As the decoder does it, from neighbours of which some are chosen later.
    void UpdateInterpolated(std::size_t x, std::size_t y)
    {
        const ModulationMode mode = ModeAt(x, y);
        if (!IsInterpolated(mode) || IsStored(x, y))
            return;
        // Unsigned wrap-around is undone by the wrap at the level's edges.
        const unsigned across = WeightAt(x - 1, y) + unsigned{WeightAt(x + 1, y)};
        const unsigned down = WeightAt(x, y - 1) + unsigned{WeightAt(x, y + 1)};
        unsigned weight = (across + down + 2) / 4;
        if (mode == ModulationMode::InterpolateHorizontal)
            weight = (across + 1) / 2;
        else if (mode == ModulationMode::InterpolateVertical)
            weight = (down + 1) / 2;
        WeightAt(x, y) = static_cast<std::uint8_t>(weight);
    }

    // Chooses the weight where there is a choice; returns what the pixel leaves to others. Both in
    // sixteenths.
    Error DiffuseAt(std::size_t x, std::size_t y, const Error& taken)
    {
        const Choice choice = ChoiceAt(x, y);
        const std::size_t at = At(x, y);
        if (ModeAt(x, y) == ModulationMode::PunchThrough || !IsSmooth(at, choice))
            return {};
        Error wanted = WantedAt(at);
        for (std::size_t channel = 0; channel < kColors; ++channel)
            wanted[channel] += taken[channel];
        if (choice.count != 0)
            WeightAt(x, y) = Nearest(at, choice, wanted);
        else
            UpdateInterpolated(x, y);
        const int weight = WeightAt(x, y);
        Error error{};
        for (std::size_t channel = 0; channel < kColors; ++channel)
            error[channel] =
                std::clamp(wanted[channel] - Shown(at, channel, weight) * 16, -kMostError, kMostError);
        return error;
    }

    // Errors are kept in quarters here, which a byte holds.
    void OrderAt(std::size_t x, std::size_t y, Plugin::CRoundErrors<std::int8_t>& errors)
    {
        constexpr int kQuarter = 4;
        Error taken = errors.For(x, y);
        for (std::int32_t& value : taken)
            value *= kQuarter;
        Error error = DiffuseAt(x, y, taken);
        for (std::int32_t& value : error)
            value /= kQuarter;
        errors.Set(x, y, error);
    }

    // By a threshold that belongs to the place: half of the pixels of an interpolated block have no choice,
    // so there are no rounds in which they could make good anything.
    void OrderByThreshold(std::size_t x, std::size_t y)
    {
        const Choice choice = ChoiceAt(x, y);
        const std::size_t at = At(x, y);
        const bool isChessboard = IsInterpolated(ModeAt(x, y));
        // The few one-bit pixels among finer ones would stand out.
        if (choice.count == 0 || (isChessboard && choice.count == 2) ||
            !IsSmooth(at, choice, kWidestOrderedGap))
            return;
        const std::uint8_t nearest = Nearest(at, choice, WantedAt(at));
        // Where the pixel lies between the endpoints, along / length of the way. Decoders cut fractions off.
        int along = 0;
        int length = 0;
        bool isExact = true;
        for (std::size_t channel = 0; channel < kColors; ++channel) {
            const int way = m_aColorB[at + channel] - m_aColorA[at + channel];
            const int wanted = m_pSource[at + channel];
            along += (2 * (wanted - m_aColorA[at + channel]) + 1) * way;
            length += 2 * way * way;
            isExact = isExact && wanted == Shown(at, channel, nearest);
        }
        WeightAt(x, y) = nearest;
        if (isExact || length == 0)
            return;
        // Along the diagonals of a chessboard the pattern is whole.
        const std::size_t column = isChessboard ? (x + y) / 2 : x;
        const std::size_t row = isChessboard ? (x - y) / 2 : y;
        WeightAt(x, y) = Between(choice, along, length, Plugin::kBayerThresholds[row % 8][column % 8]);
    }

    // The weight under or above along / length of the whole way, by the threshold in 64ths.
    static std::uint8_t Between(const Choice& choice, int along, int length, int threshold)
    {
        for (std::size_t i = 0; i + 1 < choice.count; ++i) {
            const int low = choice.weights[i];
            const int high = choice.weights[i + 1];
            if (kWeightScale * along > high * length && i + 2 < choice.count)
                continue;
            const std::int64_t over = std::int64_t{kWeightScale} * along - std::int64_t{low} * length;
            const bool isHigh = over * 128 > std::int64_t{2 * threshold + 1} * (high - low) * length;
            return choice.weights[isHigh ? i + 1 : i];
        }
        return choice.weights[0];
    }

    BlockGrid m_oGrid;
    const std::uint8_t* m_pSource;
    std::uint8_t* m_pLevel;
    bool m_bHidesColors;
    ModulationMap m_oMap;
    std::vector<std::uint8_t> m_aColorA;
    std::vector<std::uint8_t> m_aColorB;
};
}  // namespace

void DitherModulation(const BlockGrid& grid, const std::uint8_t* source, std::uint8_t* level,
                      const EncodeOptions& options)
{
    CModulationDither dither(grid, source, level, options);
    if (options.dithering == Plugin::Dithering::Ordered)
        dither.Order(options.threads != 0
                         ? options.threads
                         : Plugin::TeamSizeFor(std::uint64_t{grid.width} * grid.height, kPixelsPerThread));
    else
        dither.Diffuse();
    dither.Store();
}

}  // namespace Pvrtc
