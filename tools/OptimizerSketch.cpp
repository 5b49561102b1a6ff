#include "tools/OptimizerSketch.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <numeric>
#include <unordered_map>

namespace {

constexpr std::size_t kStep = 256;     // bytes between two looks at the limit
constexpr std::size_t kWordStep = 16;  // the same for words of a sketch
constexpr std::uint64_t kFewestWords = 32;
constexpr std::uint64_t kMostWords = 512;
// The sum of a part has 32 bits.
constexpr std::uint64_t kLongestPart = std::uint64_t{1} << 20;

std::uint32_t DifferingBytes(const std::byte* a, const std::byte* b, std::size_t count)
{
    std::uint32_t differing = 0;
    for (std::size_t i = 0; i < count; ++i)
        differing += a[i] != b[i] ? 1U : 0U;
    return differing;
}

std::uint32_t AbsoluteSum(const std::byte* a, const std::byte* b, std::size_t count)
{
    std::uint32_t sum = 0;
    for (std::size_t i = 0; i < count; ++i)
        sum += static_cast<std::uint32_t>(
            std::abs(std::to_integer<std::int32_t>(a[i]) - std::to_integer<std::int32_t>(b[i])));
    return sum;
}

// Eight bytes at once, in four lanes of 16 bits that are emptied before they can overflow.
std::uint32_t SumOf(std::span<const std::byte> part)
{
    constexpr std::uint64_t kEven = 0x00FF00FF00FF00FF;
    constexpr std::size_t kMostSteps = 128;
    std::uint32_t sum = 0;
    while (part.size() >= sizeof(std::uint64_t)) {
        std::uint64_t lanes = 0;
        const std::size_t steps = std::min(kMostSteps, part.size() / sizeof lanes);
        for (std::size_t i = 0; i < steps; ++i) {
            std::uint64_t word = 0;
            std::memcpy(&word, part.data() + i * sizeof word, sizeof word);
            lanes += (word & kEven) + ((word >> 8U) & kEven);
        }
        for (; lanes != 0; lanes >>= 16U)
            sum += static_cast<std::uint32_t>(lanes & 0xFFFFU);
        part = part.subspan(steps * sizeof lanes);
    }
    for (const std::byte byte : part)
        sum += std::to_integer<std::uint32_t>(byte);
    return sum;
}

std::uint64_t Mixed(std::uint64_t mix, std::uint64_t word)
{
    constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15;
    mix = (mix ^ word) * kOdd;
    return mix ^ (mix >> 29U);
}

// Any function of the bytes does: parts whose words differ differ.
std::uint32_t MixOf(std::span<const std::byte> part)
{
    std::uint64_t mix = part.size();
    for (; part.size() >= sizeof mix; part = part.subspan(sizeof mix)) {
        std::uint64_t word = 0;
        std::memcpy(&word, part.data(), sizeof word);
        mix = Mixed(mix, word);
    }
    for (const std::byte byte : part)
        mix = Mixed(mix, std::to_integer<std::uint64_t>(byte));
    return static_cast<std::uint32_t>(mix >> 32U);
}

/// Sets of indices that are joined step by step; the smallest index stands for its set.
class CJoinedSets {
public:
    explicit CJoinedSets(std::size_t count) : m_aParents(count)
    {
        std::iota(m_aParents.begin(), m_aParents.end(), 0U);
    }
    std::uint32_t Find(std::uint32_t index)
    {
        while (m_aParents[index] != index)
            index = m_aParents[index] = m_aParents[m_aParents[index]];
        return index;
    }
    void Join(std::uint32_t a, std::uint32_t b)
    {
        const auto [first, second] = std::minmax({Find(a), Find(b)});
        m_aParents[second] = first;
    }

private:
    std::vector<std::uint32_t> m_aParents;
};

}  // namespace

bool DifferByLess(std::span<const std::byte> a, std::span<const std::byte> b, DifferenceMeasure measure,
                  std::uint64_t limit)
{
    std::uint64_t difference = 0;
    for (std::size_t at = 0; at < a.size() && difference < limit; at += kStep) {
        const std::size_t count = std::min(kStep, a.size() - at);
        difference += measure == DifferenceMeasure::DifferingBytes
                          ? DifferingBytes(a.data() + at, b.data() + at, count)
                          : AbsoluteSum(a.data() + at, b.data() + at, count);
    }
    return difference < limit;
}

std::size_t SketchWords(std::uint64_t bytes, std::uint64_t limit)
{
    const std::uint64_t wanted = std::clamp(std::min(limit, kMostWords) * 2, kFewestWords, kMostWords);
    const std::uint64_t needed = (bytes + kLongestPart - 1) / kLongestPart;
    return static_cast<std::size_t>(std::min(bytes, std::max(wanted, needed)));
}

void FillSketch(std::span<const std::byte> bytes, DifferenceMeasure measure, std::span<std::uint32_t> words)
{
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::size_t from = bytes.size() * std::uint64_t{i} / words.size();
        const std::size_t to = bytes.size() * (std::uint64_t{i} + 1) / words.size();
        const auto part = bytes.subspan(from, to - from);
        words[i] = measure == DifferenceMeasure::DifferingBytes ? MixOf(part) : SumOf(part);
    }
}

bool MayDifferByLess(std::span<const std::uint32_t> a, std::span<const std::uint32_t> b,
                     DifferenceMeasure measure, std::uint64_t limit)
{
    std::uint64_t least = 0;
    for (std::size_t at = 0; at < a.size() && least < limit; at += kWordStep) {
        const std::size_t end = std::min(at + kWordStep, a.size());
        // A part that differs at all has at least one byte that does.
        for (std::size_t i = at; i < end; ++i)
            least += measure == DifferenceMeasure::DifferingBytes
                         ? (a[i] != b[i] ? 1U : 0U)
                         : std::max(a[i], b[i]) - std::min(a[i], b[i]);
    }
    return least < limit;
}

std::vector<std::uint32_t> RelateSketches(std::span<const std::vector<std::uint32_t>> sketches,
                                          std::span<const std::uint32_t> groups, std::uint64_t limit)
{
    CJoinedSets sets(sketches.size());
    // By a mix of group, place and words. Two that have the same mix by chance are only compared in vain.
    std::unordered_map<std::uint64_t, std::uint32_t> firstWith;
    for (std::uint32_t i = 0; i < sketches.size(); ++i) {
        const std::span<const std::uint32_t> words = sketches[i];
        // Too few parts to tell anything: all of a group stay together.
        const std::size_t parts = limit > words.size() ? 0 : static_cast<std::size_t>(limit);
        for (std::size_t part = 0; part < std::max<std::size_t>(parts, 1); ++part) {
            const std::size_t from = parts == 0 ? 0 : words.size() * part / parts;
            const std::size_t to = parts == 0 ? 0 : words.size() * (part + 1) / parts;
            std::uint64_t mix = (std::uint64_t{groups[i]} << 32U) | part;
            for (const std::uint32_t word : words.subspan(from, to - from))
                mix = Mixed(mix, word);
            const auto [place, isNew] = firstWith.try_emplace(Mixed(mix, 0), i);
            if (!isNew)
                sets.Join(place->second, i);
        }
    }
    std::vector<std::uint32_t> related(sketches.size());
    for (std::uint32_t i = 0; i < related.size(); ++i)
        related[i] = sets.Find(i);
    return related;
}
