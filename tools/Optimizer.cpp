#include "tools/Optimizer.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string>
#include <unordered_map>

#include "base/Text.h"
#include "tools/OptimizerDifferences.h"
#include "tools/OptimizerHashes.h"
#include "tools/OptimizerList.h"
#include "tools/OptimizerSteps.h"

namespace {

constexpr std::int64_t kDigitBase = 10;

// Names that differ in case only have one key.
std::vector<std::uint32_t> NameKeys(const CTextureDatabase& database)
{
    std::vector<std::uint32_t> keys(database.EntryCount());
    std::unordered_map<std::wstring, std::uint32_t> numbers;
    for (std::uint32_t i = 0; i < keys.size(); ++i)
        keys[i] =
            numbers
                .try_emplace(ToLowerAscii(database.Entry(i).name), static_cast<std::uint32_t>(numbers.size()))
                .first->second;
    return keys;
}

/// Indices as they are after others were deleted.
class CIndicesLeft {
public:
    explicit CIndicesLeft(std::uint32_t count) : m_aLeft(count)
    {
        for (std::uint32_t i = 0; i < count; ++i)
            m_aLeft[i] = i;
    }
    std::uint32_t Count() const { return static_cast<std::uint32_t>(m_aLeft.size()); }
    std::uint32_t Now(std::uint32_t before) const
    {
        return static_cast<std::uint32_t>(std::ranges::lower_bound(m_aLeft, before) - m_aLeft.begin());
    }
    /// `isGone` says for each index of now whether its texture was deleted.
    void Remove(const std::vector<bool>& isGone)
    {
        std::size_t at = 0;
        std::erase_if(m_aLeft, [&](std::uint32_t) { return isGone[at++]; });
    }

private:
    std::vector<std::uint32_t> m_aLeft;
};

}  // namespace

std::int32_t ParseComparisonValue(std::wstring_view text)
{
    const auto isBlank = [](wchar_t character) {
        return character == L' ' || (character >= L'\t' && character <= L'\r');
    };
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    const bool isNegative = text.starts_with(L'-');
    if (isNegative || text.starts_with(L'+'))
        text.remove_prefix(1);
    constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
    std::int64_t number = 0;
    for (; !text.empty() && text.front() >= L'0' && text.front() <= L'9'; text.remove_prefix(1))
        number = std::min(number * kDigitBase + (text.front() - L'0'), kMost);
    return static_cast<std::int32_t>(isNegative ? -number : number);
}

OptimizeCounts COptimizer::Run(const OptimizeOptions& options)
{
    m_oCounts = {};
    switch (options.mode) {
        case OptimizeMode::AliasNames:
            AliasNames();
            break;
        case OptimizeMode::DeleteNames:
            DeleteNames();
            break;
        case OptimizeMode::AliasRasters:
            if (options.comparison == RasterComparison::MD5 ||
                options.comparison == RasterComparison::MD5Decoded)
                AliasHashes(options);
            else
                AliasDifferences(options);
            break;
    }
    return m_oCounts;
}

bool COptimizer::ReportPlace(const COptimizerList& list, std::uint32_t place, std::uint32_t count)
{
    m_rProgress.Report(place, count, list.Name(place));
    return !m_rProgress.Cancelled();
}

void COptimizer::AliasNames()
{
    COptimizerList list(m_rDatabase, NameKeys(m_rDatabase));
    const bool isDone = MakeAliasesOfEqual(list, {.at = [&](std::uint32_t place, std::uint32_t count) {
                                               return ReportPlace(list, place, count);
                                           }});
    m_oCounts.wasStopped = !isDone;
    Apply(list);
}

void COptimizer::DeleteNames()
{
    COptimizerList list(m_rDatabase, NameKeys(m_rDatabase));
    const bool isDone = DeleteEqual(list, {.at = [&](std::uint32_t place, std::uint32_t count) {
                                        return ReportPlace(list, place, count);
                                    }});
    m_oCounts.wasStopped = !isDone;
    Apply(list);
}

void COptimizer::AliasHashes(const OptimizeOptions& options)
{
    const auto hashes = HashTextures(m_rDatabase, m_rHost, m_rProgress, options);
    if (!hashes) {
        m_oCounts.wasStopped = true;
        return;
    }
    m_oCounts.notCompared = hashes->notCompared;
    COptimizerList list(m_rDatabase, hashes->keys);
    MakeAliasesOfEqual(list, {.at = [](std::uint32_t, std::uint32_t) { return true; }});
    Apply(list);
}

void COptimizer::AliasDifferences(const OptimizeOptions& options)
{
    CDifferencePass pass(m_rDatabase, m_rHost, m_rProgress, options);
    if (!pass.Prepare()) {
        m_oCounts.wasStopped = true;
        return;
    }
    m_oCounts.notCompared = pass.NotCompared();
    COptimizerList list(m_rDatabase, pass.Keys());
    const auto at = [&](std::uint32_t place, std::uint32_t count) {
        // The bar is full by now; the person may still stop.
        constexpr std::uint32_t kPlacesBetweenReports = 64;
        if (place % kPlacesBetweenReports == 0)
            m_rProgress.Report(count, count, list.Name(place));
        return !m_rProgress.Cancelled();
    };
    const auto isSame = [&](std::uint32_t kept, std::uint32_t duplicate) {
        return pass.Match(list.Original(kept), list.Original(duplicate));
    };
    m_oCounts.wasStopped = !MakeAliasesOfEqual(list, {.at = at, .isSame = isSame});
    Apply(list);
}

void COptimizer::Apply(const COptimizerList& list)
{
    m_oCounts.leftAlone = list.LeftAlone();
    if (m_oCounts.wasStopped)
        return;
    if (!m_rDatabase.MakeAliases(list.Pairs(), m_rProgress)) {
        m_oCounts.wasStopped = true;
        return;
    }
    m_oCounts.aliased = static_cast<std::uint32_t>(list.Pairs().size());
    DeleteAll(list.Deleted());
}

void COptimizer::DeleteAll(const std::vector<std::uint32_t>& indices)
{
    const std::uint32_t before = m_rDatabase.EntryCount();
    const auto note = [&] {
        m_oCounts.deletedAliases = before - m_rDatabase.EntryCount() - m_oCounts.deleted;
    };
    if (m_rDatabase.CanDeleteTogether(indices)) {
        m_oCounts.wasStopped = !m_rDatabase.DeleteEntries(indices, m_rProgress);
        m_oCounts.deleted = m_oCounts.wasStopped ? 0 : static_cast<std::uint32_t>(indices.size());
        note();
        return;
    }
    CIndicesLeft left(before);
    for (const std::uint32_t index : indices) {
        const std::uint32_t now = left.Now(index);
        std::vector<bool> isGone(left.Count());
        for (std::uint32_t i = 0; i < isGone.size(); ++i)
            isGone[i] = i == now || m_rDatabase.AliasTarget(i) == now;
        m_rDatabase.DeleteEntry(now, std::nullopt);
        left.Remove(isGone);
        ++m_oCounts.deleted;
        note();
    }
}
