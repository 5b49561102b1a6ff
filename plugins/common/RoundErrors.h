#pragma once

// The errors of ordered dithering. A level is done in four rounds, one for each place in every 2 x 2: top
// left, bottom right, top right, bottom left. What is done in a round makes good what its neighbours of
// earlier rounds left, and asks them for it, so that nobody writes for another and the order within a round
// does not matter.

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <vector>

namespace Plugin {

/// Where the places of a round are in every 2 x 2.
struct Round {
    std::size_t right;
    std::size_t lower;
};
inline constexpr Round kRounds[] = {{0, 0}, {1, 1}, {1, 0}, {0, 1}};

/// One error of red, green and blue a place, in units of the caller that fit a Number.
template <typename Number>
class CRoundErrors {
public:
    using Sum = std::array<int, 3>;

    /// Throws std::bad_alloc.
    CRoundErrors(std::size_t columns, std::size_t rows)
        : m_nColumns(columns), m_nRows(rows), m_aErrors(columns * rows)
    {
    }

    void Set(std::size_t column, std::size_t row, const Sum& error)
    {
        std::array<Number, 3>& kept = m_aErrors[row * m_nColumns + column];
        for (std::size_t i = 0; i < error.size(); ++i)
            kept[i] = static_cast<Number>(std::clamp<int>(error[i], std::numeric_limits<Number>::min(),
                                                          std::numeric_limits<Number>::max()));
    }

    /// What the neighbours of earlier rounds left to a place.
    Sum For(std::size_t column, std::size_t row) const
    {
        // In parts of 256. The first round shares with all eight neighbours, those beside it and above and
        // below twice as much as the corners; the second with four; the third with the four corners.
        constexpr int kBesideFirst = 42;
        constexpr int kCornerOfFirst = 21;
        constexpr int kQuarter = 64;
        Sum sum{};
        const bool isRight = column % 2 != 0;
        const bool isLower = row % 2 != 0;
        if (isRight && isLower) {
            AddCorners(column, row, kCornerOfFirst, sum);
        } else if (isRight) {
            AddBeside(column, row, kBesideFirst, sum);
            AddAboveAndBelow(column, row, kQuarter, sum);
        } else if (isLower) {
            AddAboveAndBelow(column, row, kBesideFirst, sum);
            AddBeside(column, row, kQuarter, sum);
            AddCorners(column, row, kQuarter, sum);
        }
        // The shift rounds down also for a negative sum.
        for (int& value : sum)
            value = (value + 128) >> 8;
        return sum;
    }

private:
    // Coordinates before the first wrap around and are outside as well.
    void Add(std::size_t column, std::size_t row, int share, Sum& sum) const
    {
        if (column < m_nColumns && row < m_nRows)
            for (std::size_t i = 0; i < sum.size(); ++i)
                sum[i] += m_aErrors[row * m_nColumns + column][i] * share;
    }

    void AddBeside(std::size_t column, std::size_t row, int share, Sum& sum) const
    {
        Add(column - 1, row, share, sum);
        Add(column + 1, row, share, sum);
    }

    void AddAboveAndBelow(std::size_t column, std::size_t row, int share, Sum& sum) const
    {
        Add(column, row - 1, share, sum);
        Add(column, row + 1, share, sum);
    }

    void AddCorners(std::size_t column, std::size_t row, int share, Sum& sum) const
    {
        AddBeside(column, row - 1, share, sum);
        AddBeside(column, row + 1, share, sum);
    }

    std::size_t m_nColumns;
    std::size_t m_nRows;
    std::vector<std::array<Number, 3>> m_aErrors;
};

}  // namespace Plugin
