#include "tools/OptimizerDifferences.h"

#include <algorithm>
#include <unordered_map>

#include "tools/OptimizerBytes.h"
#include "tools/OptimizerList.h"

namespace {

constexpr std::uint64_t kBytesPerPixel = 4;

// Less than nothing matches nothing, as 0 does.
std::uint64_t LimitOf(std::int32_t value)
{
    return value < 0 ? 0 : static_cast<std::uint64_t>(value) * kBytesPerPixel;
}

}  // namespace

CDifferencePass::CDifferencePass(CTextureDatabase& database, IEditorHost& host, IProgress& progress,
                                 const OptimizeOptions& options)
    : m_rDatabase(database),
      m_rProgress(progress),
      m_eCache(options.cache),
      m_bDecoded(IsDecoded(options.comparison)),
      m_eMeasure(m_bDecoded ? DifferenceMeasure::AbsoluteSum : DifferenceMeasure::DifferingBytes),
      m_nLimit(LimitOf(options.value)),
      m_oStore([&database, &host, cache = m_eCache, isDecoded = m_bDecoded](
                   std::uint32_t index) { return ComparedBytes(database, host, index, cache, isDecoded); },
               options.memoryLimit),
      m_aKeys(database.EntryCount(), COptimizerList::kNoKey),
      m_aSketches(database.EntryCount())
{
}

bool CDifferencePass::Prepare()
{
    GroupBySize();
    std::vector<std::uint32_t> counts;
    for (const std::uint32_t key : m_aKeys) {
        if (key == COptimizerList::kNoKey)
            continue;
        counts.resize(std::max<std::size_t>(counts.size(), std::size_t{key} + 1));
        ++counts[key];
    }
    const std::uint32_t count = m_rDatabase.EntryCount();
    for (std::uint32_t i = 0; i < count; ++i) {
        m_rProgress.Report(i, count, m_rDatabase.Entry(i).name);
        if (m_rProgress.Cancelled())
            return false;
        // Nothing is below a limit of 0, and nothing is like the only one of its size.
        if (m_aKeys[i] != COptimizerList::kNoKey && counts[m_aKeys[i]] > 1 && m_nLimit != 0)
            Sketch(i);
        else
            m_aKeys[i] = COptimizerList::kNoKey;
    }
    SplitGroups();
    return true;
}

// From textures of one size to those that may be alike.
void CDifferencePass::SplitGroups()
{
    const std::vector<std::uint32_t> related = RelateSketches(m_aSketches, m_aKeys, m_nLimit);
    for (std::size_t i = 0; i < m_aKeys.size(); ++i)
        if (m_aKeys[i] != COptimizerList::kNoKey)
            m_aKeys[i] = related[i];
}

void CDifferencePass::GroupBySize()
{
    std::unordered_map<std::uint64_t, std::uint32_t> numbers;
    for (std::uint32_t i = 0; i < m_aKeys.size(); ++i)
        if (HasRasterIn(m_rDatabase, i, m_eCache))
            m_aKeys[i] =
                numbers.try_emplace(SizeKey(i), static_cast<std::uint32_t>(numbers.size())).first->second;
}

std::uint64_t CDifferencePass::SizeKey(std::uint32_t index)
{
    constexpr unsigned kWidthShift = 32;
    const RasterHeader& header = m_rDatabase.ResolvedEntry(index).rasterHeader[SlotOf(m_eCache)];
    return m_bDecoded ? (std::uint64_t{header.width} << kWidthShift) | header.Height() : RasterSize(header);
}

void CDifferencePass::Sketch(std::uint32_t index)
{
    const auto bytes = m_oStore.Get(index);
    if (bytes->empty()) {
        m_aKeys[index] = COptimizerList::kNoKey;
        ++m_nNotCompared;
        return;
    }
    m_aSketches[index].resize(SketchWords(bytes->size(), m_nLimit));
    FillSketch(*bytes, m_eMeasure, m_aSketches[index]);
}

bool CDifferencePass::Match(std::uint32_t a, std::uint32_t b)
{
    if (!MayDifferByLess(m_aSketches[a], m_aSketches[b], m_eMeasure, m_nLimit))
        return false;
    const auto left = m_oStore.Get(a);
    const auto right = m_oStore.Get(b);
    return left->size() == right->size() && DifferByLess(*left, *right, m_eMeasure, m_nLimit);
}
