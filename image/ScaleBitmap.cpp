#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <vector>

#include "image/BitmapTools.h"

// Both directions give their weights as whole numbers, so the weighted sum of all source bytes under a target
// pixel is exact and is rounded once, to nearest. Nothing depends on the order of additions or on the
// processor.

namespace {

/// One direction: `Total` is the sum of the weights of every target pixel.
class CAxis {
public:
    CAxis(std::uint32_t source, std::uint32_t target) : m_nSource(source), m_nTarget(target) {}

    /// At most 255 * 2 * 65535, so that a sum along one direction fits 32 bits.
    std::uint32_t Total() const
    {
        if (m_nSource == m_nTarget)
            return 1;
        return m_nSource > m_nTarget ? m_nSource : 2 * m_nTarget;
    }

    /// Calls `use(sourceIndex, weight)` for the source pixels of one target pixel, ascending.
    template <class Use>
    void ForEach(std::uint32_t index, Use use) const
    {
        if (m_nSource == m_nTarget)
            use(index, 1U);
        else if (m_nSource > m_nTarget)
            Average(index, use);
        else
            Interpolate(index, use);
    }

private:
    /// A source pixel is m_nTarget units long, a target pixel m_nSource; a weight is the length of the
    /// overlap.
    template <class Use>
    void Average(std::uint32_t index, Use use) const
    {
        std::uint64_t at = std::uint64_t{index} * m_nSource;
        const std::uint64_t end = at + m_nSource;
        while (at < end) {
            const std::uint64_t pixel = at / m_nTarget;
            const std::uint64_t next = std::min(end, (pixel + 1) * m_nTarget);
            use(static_cast<std::uint32_t>(pixel), static_cast<std::uint32_t>(next - at));
            at = next;
        }
    }

    /// The centre of the target pixel lies between two source centres, counted in 1 / (2 * m_nTarget) pixels.
    /// Beyond the outer centres the edge pixel counts alone.
    template <class Use>
    void Interpolate(std::uint32_t index, Use use) const
    {
        const std::int64_t unit = 2 * std::int64_t{m_nTarget};
        const std::int64_t centre = (2 * std::int64_t{index} + 1) * m_nSource - m_nTarget;
        const std::int64_t place = std::clamp<std::int64_t>(centre, 0, (std::int64_t{m_nSource} - 1) * unit);
        const auto left = static_cast<std::uint32_t>(place / unit);
        const auto right = static_cast<std::uint32_t>(place % unit);
        use(left, static_cast<std::uint32_t>(unit) - right);
        if (right != 0)
            use(left + 1, right);
    }

    std::uint32_t m_nSource;
    std::uint32_t m_nTarget;
};

struct Tap {
    std::uint32_t offset;  // of the pixel's bytes in its row
    std::uint32_t weight;
};

class CScaler {
public:
    CScaler(const CBitmap& source, CBitmap& target)
        : m_rSource(source),
          m_rTarget(target),
          m_oAcross(source.Width(), target.Width()),
          m_oDown(source.Height(), target.Height()),
          m_aSums(std::size_t{target.Width()} * 4)
    {
        for (std::vector<std::uint32_t>& row : m_aRows)
            row.resize(m_aSums.size());
        m_aFirstTap.push_back(0);
        for (std::uint32_t x = 0; x < target.Width(); ++x) {
            m_oAcross.ForEach(x, [this](std::uint32_t pixel, std::uint32_t weight) {
                m_aTaps.push_back({pixel * 4, weight});
            });
            m_aFirstTap.push_back(m_aTaps.size());
        }
    }

    void Run()
    {
        const std::uint64_t total = std::uint64_t{m_oAcross.Total()} * m_oDown.Total();
        const std::size_t stride = m_aSums.size();
        for (std::uint32_t y = 0; y < m_rTarget.Height(); ++y) {
            std::fill(m_aSums.begin(), m_aSums.end(), total / 2);
            m_oDown.ForEach(y, [this](std::uint32_t row, std::uint32_t weight) { AddRow(row, weight); });
            std::uint8_t* const out = m_rTarget.Pixels().data() + y * stride;
            for (std::size_t i = 0; i < stride; ++i)
                out[i] = static_cast<std::uint8_t>(m_aSums[i] / total);
        }
    }

private:
    void AddRow(std::uint32_t row, std::uint32_t weight)
    {
        const std::vector<std::uint32_t>& sums = RowSums(row);
        for (std::size_t i = 0; i < sums.size(); ++i)
            m_aSums[i] += std::uint64_t{sums[i]} * weight;
    }

    /// Neighbouring target rows share at most two source rows, so the last two are kept.
    const std::vector<std::uint32_t>& RowSums(std::uint32_t row)
    {
        std::vector<std::uint32_t>& sums = m_aRows[row % 2];
        if (m_aRowInPlace[row % 2] == row)
            return sums;
        m_aRowInPlace[row % 2] = row;
        const std::uint8_t* const source = m_rSource.Row(row).data();
        for (std::size_t x = 0; x + 1 < m_aFirstTap.size(); ++x) {
            std::array<std::uint32_t, 4> sum{};
            for (std::size_t tap = m_aFirstTap[x]; tap < m_aFirstTap[x + 1]; ++tap)
                for (std::size_t channel = 0; channel < 4; ++channel)
                    sum[channel] += source[m_aTaps[tap].offset + channel] * m_aTaps[tap].weight;
            std::copy(sum.begin(), sum.end(), sums.data() + x * 4);
        }
        return sums;
    }

    const CBitmap& m_rSource;
    CBitmap& m_rTarget;
    CAxis m_oAcross;
    CAxis m_oDown;
    std::vector<Tap> m_aTaps;
    std::vector<std::size_t> m_aFirstTap;  // one more than there are columns
    std::vector<std::uint64_t> m_aSums;
    std::array<std::vector<std::uint32_t>, 2> m_aRows;
    std::array<std::uint32_t, 2> m_aRowInPlace = {0xFFFFFFFF, 0xFFFFFFFF};
};

std::uint32_t LoadPixel(const std::uint8_t* bytes)
{
    std::uint32_t pixel = 0;
    std::memcpy(&pixel, bytes, sizeof(pixel));
    return pixel;
}

/// Much faster than the ways below and with the same result: two channels share a word, each with 16 bits for
/// its sum. Which channels these are depends on the byte order, the result does not.
void HalveBitmap(const CBitmap& source, CBitmap& target)
{
    constexpr std::uint32_t kEveryOther = 0x00FF00FF;
    constexpr std::uint32_t kHalf = 0x00020002;
    std::uint8_t* out = target.Pixels().data();
    for (std::uint32_t y = 0; y < target.Height(); ++y) {
        const std::uint8_t* upper = source.Row(2 * y).data();
        const std::uint8_t* lower = source.Row(2 * y + 1).data();
        for (std::uint32_t x = 0; x < target.Width(); ++x, upper += 8, lower += 8, out += 4) {
            std::uint32_t even = kHalf;
            std::uint32_t odd = kHalf;
            for (const std::uint8_t* const bytes : {upper, upper + 4, lower, lower + 4}) {
                const std::uint32_t pixel = LoadPixel(bytes);
                even += pixel & kEveryOther;
                odd += pixel >> 8 & kEveryOther;
            }
            const std::uint32_t mean = (even >> 2 & kEveryOther) | (odd >> 2 & kEveryOther) << 8;
            std::memcpy(out, &mean, sizeof(mean));
        }
    }
}

/// The sums of these fit 32 bits, also when they are rounded.
constexpr std::uint64_t kMostPixelsInABox = 1U << 24;
/// The sums of so many rows fit 16 bits.
constexpr std::uint32_t kMostRowsInNarrowSums = 257;

/// Divides the sums of boxes by the number of their pixels, rounded to nearest, without a division.
class CDivider {
public:
    explicit CDivider(std::uint32_t count) : m_nHalf(count / 2), m_nInverse((kOne / count) + 1) {}

    /// Of up to 255 a pixel. The inverse is too large by at most 1, the quotient by at most sum / kOne, which
    /// is less than 1 / count and so never reaches the next whole number.
    std::uint8_t Mean(std::uint32_t sum) const
    {
        return static_cast<std::uint8_t>((std::uint64_t{sum} + m_nHalf) * m_nInverse >> kBits);
    }

private:
    static constexpr unsigned kBits = 56;
    static constexpr std::uint64_t kOne = std::uint64_t{1} << kBits;

    std::uint32_t m_nHalf;
    std::uint64_t m_nInverse;
};

/// Whether every target pixel covers a box of whole source pixels, all of one size.
bool CoversBoxes(const CBitmap& source, std::uint32_t width, std::uint32_t height)
{
    return source.Width() % width == 0 && source.Height() % height == 0 &&
           std::uint64_t{source.Width() / width} * (source.Height() / height) <= kMostPixelsInABox;
}

/// Much faster than the general way and with the same result. `Sum` holds the sum of a box's rows.
template <class Sum>
void AverageBoxes(const CBitmap& source, CBitmap& target)
{
    const std::uint32_t rows = source.Height() / target.Height();
    const std::uint32_t columns = source.Width() / target.Width();
    const CDivider divide(rows * columns);
    std::vector<Sum> sums(std::size_t{source.Width()} * 4);
    std::uint8_t* out = target.Pixels().data();
    for (std::uint32_t y = 0; y < target.Height(); ++y) {
        std::fill(sums.begin(), sums.end(), Sum{0});
        for (std::uint32_t row = y * rows; row < (y + 1) * rows; ++row) {
            const std::uint8_t* const bytes = source.Row(row).data();
            for (std::size_t i = 0; i < sums.size(); ++i)
                sums[i] = static_cast<Sum>(sums[i] + bytes[i]);
        }
        const Sum* sum = sums.data();
        for (std::uint32_t x = 0; x < target.Width(); ++x, out += 4) {
            std::array<std::uint32_t, 4> box{};
            for (std::uint32_t column = 0; column < columns; ++column, sum += 4)
                for (std::size_t channel = 0; channel < 4; ++channel)
                    box[channel] += sum[channel];
            for (std::size_t channel = 0; channel < 4; ++channel)
                out[channel] = divide.Mean(box[channel]);
        }
    }
}

}  // namespace

std::optional<CBitmap> ScaleBitmap(const CBitmap& source, std::uint32_t width, std::uint32_t height)
{
    if (source.IsEmpty())
        return std::nullopt;
    auto target = CBitmap::Create(width, height);
    if (!target)
        return std::nullopt;
    if (source.Width() == std::uint64_t{width} * 2 && source.Height() == std::uint64_t{height} * 2) {
        HalveBitmap(source, *target);
        return target;
    }
    try {
        if (source.Width() == width && source.Height() == height)
            return source;
        if (!CoversBoxes(source, width, height))
            CScaler(source, *target).Run();
        else if (source.Height() / height <= kMostRowsInNarrowSums)
            AverageBoxes<std::uint16_t>(source, *target);
        else
            AverageBoxes<std::uint32_t>(source, *target);
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
    return target;
}
