#pragma once

// The table that the benchmarks print: a workload, what was measured, what it is compared with, and whether a
// limit holds.

#include <optional>
#include <string>
#include <vector>

namespace Bench {

struct Line {
    std::string workload;
    std::string measured;
    std::string baseline;  ///< empty when there is none
    std::optional<double> ratio;
    std::optional<double> limit;  ///< of the ratio
    /// False when the result of the work was wrong, which fails the run whatever the limits say.
    bool isCorrect = true;
};

class CReport {
public:
    /// Prints the line at once.
    void Add(const Line& line);
    void PrintHead() const;
    bool AllCorrect() const { return m_bAllCorrect; }
    bool AllWithinLimits() const { return m_bAllWithinLimits; }

private:
    bool m_bAllCorrect = true;
    bool m_bAllWithinLimits = true;
};

/// "12.3 ms", "850 us".
std::string TimeText(double seconds);

}  // namespace Bench
