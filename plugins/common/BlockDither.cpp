#include "plugins/common/BlockDither.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <vector>

#include "plugins/common/PixelDither.h"
#include "plugins/common/RoundErrors.h"
#include "plugins/common/RowTeam.h"

namespace Plugin {
namespace {
constexpr std::size_t kColors = 3;
constexpr std::size_t kBlockRowBytes = kBlockSide * kPixelBytes;
constexpr std::size_t kBlockPixels = kBlockSide * kBlockSide;
constexpr std::size_t kBlockBytes = kBlockPixels * kPixelBytes;
constexpr std::size_t kMostCodeBytes = 16;
constexpr std::uint32_t kAllSeen = 0xFFFF;
// Blocks that are encoded in one call of the kernel.
constexpr std::size_t kBatch = 32;

// Errors of a block's mean, in 256ths of a step of 8-bit red, green and blue.
constexpr int kUnit = 256;
using Error = std::array<std::int16_t, kColors>;
// An error that the format can never make good must not pile up.
constexpr int kMostError = 8 * kUnit;

Error& operator+=(Error& sum, const Error& error)
{
    for (std::size_t i = 0; i < kColors; ++i)
        sum[i] = static_cast<std::int16_t>(std::clamp(sum[i] + error[i], -kMostError, kMostError));
    return sum;
}

Error Share(const Error& error, int of256)
{
    Error share{};
    for (std::size_t i = 0; i < kColors; ++i)
        share[i] = static_cast<std::int16_t>(error[i] * of256 / 256);
    return share;
}

struct Level {
    const std::uint8_t* pixels;
    std::size_t width;
    std::size_t height;

    std::size_t Columns() const { return (width + kBlockSide - 1) / kBlockSide; }
    std::size_t Rows() const { return (height + kBlockSide - 1) / kBlockSide; }
};

// A block with the picture's edge repeated where it sticks out, and the pixels that somebody sees.
struct SourceBlock {
    BlockPixels pixels;
    std::uint32_t seen;  // one bit a pixel

    bool IsSeen(std::size_t pixel) const { return (seen >> pixel & 1) != 0; }
};

SourceBlock LoadBlock(const Level& level, std::size_t column, std::size_t row, bool hidesColors)
{
    SourceBlock block{};
    const bool isWhole = (column + 1) * kBlockSide <= level.width && (row + 1) * kBlockSide <= level.height;
    if (isWhole && !hidesColors) {
        const std::uint8_t* const from =
            level.pixels + (row * level.width + column) * kBlockSide * kPixelBytes;
        for (std::size_t y = 0; y < kBlockSide; ++y)
            std::memcpy(block.pixels.data() + y * kBlockRowBytes, from + y * level.width * kPixelBytes,
                        kBlockRowBytes);
        block.seen = kAllSeen;
        return block;
    }
    for (std::size_t i = 0; i < kBlockPixels; ++i) {
        const std::size_t x = column * kBlockSide + i % kBlockSide;
        const std::size_t y = row * kBlockSide + i / kBlockSide;
        const std::uint8_t* const from =
            level.pixels +
            (std::min(y, level.height - 1) * level.width + std::min(x, level.width - 1)) * kPixelBytes;
        std::memcpy(block.pixels.data() + i * kPixelBytes, from, kPixelBytes);
        const bool isInside = x < level.width && y < level.height;
        if (isInside && !(hidesColors && from[kColors] == 0))
            block.seen |= 1U << i;
    }
    return block;
}

bool IsSolid(const SourceBlock& block)
{
    const std::uint8_t* first = nullptr;
    for (std::size_t i = 0; i < kBlockPixels; ++i) {
        if (!block.IsSeen(i))
            continue;
        const std::uint8_t* const pixel = block.pixels.data() + i * kPixelBytes;
        if (first != nullptr && std::memcmp(first, pixel, kColors) != 0)
            return false;
        first = pixel;
    }
    return true;
}

// What a part of a step is compared with at every byte of a block, alpha never: neighbours are far apart.
constexpr std::array<std::int16_t, kBlockBytes> MakeThresholds()
{
    constexpr std::array<std::uint8_t, kBlockPixels> kOrder{0, 8,  2, 10, 12, 4, 14, 6,
                                                            3, 11, 1, 9,  15, 7, 13, 5};
    std::array<std::int16_t, kBlockBytes> thresholds{};
    for (std::size_t i = 0; i < kBlockBytes; ++i)
        if (i % kPixelBytes < kColors)
            thresholds[i] = static_cast<std::int16_t>(kOrder[i / kPixelBytes] * (kUnit / 16) + kUnit / 32);
    return thresholds;
}
constexpr std::array<std::int16_t, kBlockBytes> kThresholds = MakeThresholds();

// Moves the mean by `shift`; the parts of a step are spread over the pixels. Sixteen bits are enough
// everywhere, and loops without branches are what compilers make vectors of.
BlockPixels Shifted(const SourceBlock& block, const Error& shift)
{
    std::array<std::int16_t, kBlockBytes> moved{};
    for (std::size_t i = 0; i < kBlockPixels; ++i)
        for (std::size_t channel = 0; channel < kColors; ++channel)
            moved[i * kPixelBytes + channel] = shift[channel];
    BlockPixels pixels;
    for (std::size_t i = 0; i < kBlockBytes; ++i) {
        // The shift rounds down also for a negative sum.
        const auto step =
            static_cast<std::int16_t>(static_cast<std::int16_t>(moved[i] + kThresholds[i]) >> 8);
        const auto value = static_cast<std::int16_t>(block.pixels[i] + step);
        pixels[i] = static_cast<std::uint8_t>(std::clamp<std::int16_t>(value, 0, 255));
    }
    for (std::size_t i = 0; block.seen != kAllSeen && i < kBlockPixels; ++i)
        if (!block.IsSeen(i))
            std::memcpy(pixels.data() + i * kPixelBytes, block.pixels.data() + i * kPixelBytes, kPixelBytes);
    return pixels;
}

// How far the seen pixels come out from what they should be, on the mean.
Error MeanError(const SourceBlock& wanted, const BlockPixels& got)
{
    std::array<std::int16_t, kBlockBytes> off;
    for (std::size_t i = 0; i < kBlockBytes; ++i)
        off[i] = static_cast<std::int16_t>(wanted.pixels[i] - got[i]);
    for (std::size_t i = 0; wanted.seen != kAllSeen && i < kBlockPixels; ++i)
        if (!wanted.IsSeen(i))
            std::fill_n(off.begin() + static_cast<std::ptrdiff_t>(i * kPixelBytes), kPixelBytes,
                        std::int16_t{0});
    // Half of the pixels to the other half, until the first pixel has all.
    for (std::size_t half = kBlockBytes / 2; half >= kPixelBytes; half /= 2)
        for (std::size_t i = 0; i < half; ++i)
            off[i] = static_cast<std::int16_t>(off[i] + off[half + i]);
    const int count = std::popcount(wanted.seen);
    Error error{};
    for (std::size_t channel = 0; channel < kColors && count != 0; ++channel)
        error[channel] =
            static_cast<std::int16_t>(std::clamp(off[channel] * kUnit / count, -kMostError, kMostError));
    return error;
}

bool IsExact(const SourceBlock& wanted, const BlockPixels& got)
{
    for (std::size_t i = 0; i < kBlockPixels; ++i)
        if (wanted.IsSeen(i) &&
            std::memcmp(wanted.pixels.data() + i * kPixelBytes, got.data() + i * kPixelBytes, kColors) != 0)
            return false;
    return true;
}

// Blocks that were encoded in one call, and what decoders make of them.
class CCodedBatch {
public:
    void Add(const BlockPixels& pixels) { m_aPixels[m_nCount++] = pixels; }
    std::size_t Count() const { return m_nCount; }

    void Encode(const LevelEncoder& encoder)
    {
        if (m_nCount == 0)
            return;
        const std::size_t stride = m_nCount * kBlockRowBytes;
        for (std::size_t block = 0; block < m_nCount; ++block)
            for (std::size_t y = 0; y < kBlockSide; ++y)
                std::memcpy(m_aStrip.data() + y * stride + block * kBlockRowBytes,
                            m_aPixels[block].data() + y * kBlockRowBytes, kBlockRowBytes);
        encoder.encodeRow(m_aStrip.data(), stride, m_nCount, m_aCodes.data());
        encoder.dithering.decodeRow(m_aCodes.data(), m_nCount, m_aStrip.data(), stride);
        for (std::size_t block = 0; block < m_nCount; ++block)
            for (std::size_t y = 0; y < kBlockSide; ++y)
                std::memcpy(m_aPixels[block].data() + y * kBlockRowBytes,
                            m_aStrip.data() + y * stride + block * kBlockRowBytes, kBlockRowBytes);
    }

    const BlockPixels& Decoded(std::size_t block) const { return m_aPixels[block]; }
    const std::uint8_t* Codes() const { return m_aCodes.data(); }

private:
    std::size_t m_nCount = 0;
    std::array<BlockPixels, kBatch> m_aPixels;
    std::array<std::uint8_t, kBatch * kBlockBytes> m_aStrip;
    std::array<std::uint8_t, kBatch * kMostCodeBytes> m_aCodes;
};

// Encodes every second block of a row. Borrows everything.
class CAlternateBlocks {
public:
    CAlternateBlocks(const Level& level, const LevelEncoder& encoder, std::uint8_t* destination)
        : m_oLevel(level), m_rEncoder(encoder), m_pDestination(destination)
    {
    }

    /// `shiftOf(column)` is what a block has to make good, `leave(column, error)` hears what it leaves to
    /// others.
    template <typename ShiftOf, typename Leave>
    void Encode(std::size_t row, std::size_t firstColumn, ShiftOf shiftOf, Leave leave) const
    {
        for (std::size_t column = firstColumn; column < m_oLevel.Columns(); column += 2 * kBatch)
            EncodeBatch(row, column, shiftOf, leave);
    }

private:
    void Store(const CCodedBatch& batch, std::size_t index, std::size_t column, std::size_t row) const
    {
        const std::size_t bytes = m_rEncoder.blockBytes;
        std::memcpy(m_pDestination + (row * m_oLevel.Columns() + column) * bytes,
                    batch.Codes() + index * bytes, bytes);
    }

    template <typename ShiftOf, typename Leave>
    void EncodeBatch(std::size_t row, std::size_t firstColumn, ShiftOf shiftOf, Leave leave) const
    {
        std::array<SourceBlock, kBatch> blocks;
        std::array<std::size_t, kBatch> solid{};
        std::array<bool, kBatch> isDone{};
        const std::size_t count = std::min(kBatch, (m_oLevel.Columns() - firstColumn + 1) / 2);
        CCodedBatch plain;
        for (std::size_t i = 0; i < count; ++i) {
            blocks[i] = LoadBlock(m_oLevel, firstColumn + 2 * i, row, m_rEncoder.dithering.hidesColors);
            if (IsSolid(blocks[i])) {
                solid[plain.Count()] = i;
                plain.Add(blocks[i].pixels);
            }
        }
        // A flat colour that the format has takes no error from its neighbours: it would only get specks.
        plain.Encode(m_rEncoder);
        for (std::size_t i = 0; i < plain.Count(); ++i) {
            const std::size_t block = solid[i];
            isDone[block] = IsExact(blocks[block], plain.Decoded(i));
            if (!isDone[block])
                continue;
            Store(plain, i, firstColumn + 2 * block, row);
            leave(firstColumn + 2 * block, Error{});
        }
        CCodedBatch shifted;
        for (std::size_t i = 0; i < count; ++i)
            if (!isDone[i])
                shifted.Add(Shifted(blocks[i], shiftOf(firstColumn + 2 * i)));
        shifted.Encode(m_rEncoder);
        for (std::size_t i = 0, coded = 0; i < count; ++i) {
            if (isDone[i])
                continue;
            const std::size_t column = firstColumn + 2 * i;
            Store(shifted, coded, column, row);
            Error error = MeanError(blocks[i], shifted.Decoded(coded++));
            error += shiftOf(column);
            leave(column, error);
        }
    }

    Level m_oLevel;
    const LevelEncoder& m_rEncoder;
    std::uint8_t* m_pDestination;
};

// Row by row; the second half of a row makes good what the first half leaves beside it.
void Diffuse(const Level& level, const LevelEncoder& encoder, std::uint8_t* destination)
{
    const CAlternateBlocks blocks(level, encoder, destination);
    // One block of margin on both sides.
    std::vector<Error> current(level.Columns() + 2);
    std::vector<Error> next(level.Columns() + 2);
    for (std::size_t row = 0; row < level.Rows(); ++row) {
        const auto shiftOf = [&](std::size_t column) { return current[column + 1]; };
        const auto spreadBelow = [&](std::size_t column, const Error& error, int below, int beside) {
            next[column + 1] += Share(error, below);
            next[column] += Share(error, beside);
            next[column + 2] += Share(error, beside);
        };
        blocks.Encode(row, 0, shiftOf, [&](std::size_t column, const Error& error) {
            current[column] += Share(error, 64);
            current[column + 2] += Share(error, 64);
            spreadBelow(column, error, 76, 26);
        });
        blocks.Encode(row, 1, shiftOf,
                      [&](std::size_t column, const Error& error) { spreadBelow(column, error, 128, 64); });
        std::swap(current, next);
        std::fill(next.begin(), next.end(), Error{});
    }
}

void DitherInRounds(const Level& level, const LevelEncoder& encoder, std::uint8_t* destination)
{
    const CAlternateBlocks blocks(level, encoder, destination);
    CRoundErrors<std::int16_t> errors(level.Columns(), level.Rows());
    CRowTeam team(encoder.threads);
    for (const Round round : kRounds) {
        const auto rows = static_cast<std::uint32_t>((level.Rows() + 1 - round.lower) / 2);
        team.Run(rows, [&](std::uint32_t first, std::uint32_t end, unsigned /*member*/) {
            for (std::size_t pair = first; pair < end; ++pair) {
                const std::size_t row = 2 * pair + round.lower;
                const auto shiftOf = [&](std::size_t column) {
                    Error shift{};
                    const auto sum = errors.For(column, row);
                    for (std::size_t i = 0; i < kColors; ++i)
                        shift[i] = static_cast<std::int16_t>(std::clamp(sum[i], -kMostError, kMostError));
                    return shift;
                };
                blocks.Encode(row, round.right, shiftOf, [&](std::size_t column, const Error& error) {
                    errors.Set(column, row, {error[0], error[1], error[2]});
                });
            }
        });
    }
}

std::vector<std::uint8_t> WithDitheredAlpha(const Level& level, const BlockDithering& dithering)
{
    const std::size_t stride = level.width * kPixelBytes;
    std::vector<std::uint8_t> pixels(level.pixels, level.pixels + stride * level.height);
    CPixelDither alpha(dithering.mode, level.width, {8, 8, 8, dithering.alphaBits}, false);
    for (std::size_t y = 0; y < level.height; ++y)
        alpha.NextRow(pixels.data() + y * stride, pixels.data() + y * stride);
    return pixels;
}
}  // namespace

void EncodeDithered(const std::uint8_t* source, std::uint8_t* destination, std::size_t width,
                    std::size_t height, const LevelEncoder& encoder)
{
    Level level{source, width, height};
    std::vector<std::uint8_t> pixels;
    if (encoder.dithering.alphaBits < 8) {
        pixels = WithDitheredAlpha(level, encoder.dithering);
        level.pixels = pixels.data();
    }
    if (encoder.dithering.mode == Dithering::Ordered)
        DitherInRounds(level, encoder, destination);
    else
        Diffuse(level, encoder, destination);
}

}  // namespace Plugin
