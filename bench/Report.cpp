#include "bench/Report.h"

#include <cstdio>

namespace Bench {
namespace {
std::string RatioText(double ratio)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.2f", ratio);
    return text;
}

std::string LimitText(const Line& line)
{
    if (!line.isCorrect)
        return "WRONG RESULT";
    if (!line.limit || !line.ratio)
        return "";
    return (*line.ratio <= *line.limit ? "within " : "ABOVE ") + RatioText(*line.limit);
}

void PrintRow(const char* workload, const char* measured, const char* baseline, const char* ratio,
              const char* limit)
{
    std::printf("| %-26s | %-41s | %-30s | %7s | %-12s |\n", workload, measured, baseline, ratio, limit);
    std::fflush(stdout);
}
}  // namespace

void CReport::PrintHead() const
{
    PrintRow("workload", "measured", "compared with", "ratio", "limit");
    PrintRow("---", "---", "---", "---:", "---");
}

void CReport::Add(const Line& line)
{
    PrintRow(line.workload.c_str(), line.measured.c_str(), line.baseline.c_str(),
             line.ratio ? RatioText(*line.ratio).c_str() : "", LimitText(line).c_str());
    m_bAllCorrect = m_bAllCorrect && line.isCorrect;
    if (line.ratio && line.limit)
        m_bAllWithinLimits = m_bAllWithinLimits && *line.ratio <= *line.limit;
}

std::string TimeText(double seconds)
{
    char text[32];
    if (seconds < 1e-3)
        std::snprintf(text, sizeof text, "%.1f us", seconds * 1e6);
    else
        std::snprintf(text, sizeof text, "%.2f ms", seconds * 1e3);
    return text;
}

}  // namespace Bench
