#include "tools/OptimizerSketch.h"

#include <gtest/gtest.h>
#include <random>

#include "tools/OptimizerStore.h"

namespace {

using Bytes = std::vector<std::byte>;

constexpr std::array kMeasures = {DifferenceMeasure::DifferingBytes, DifferenceMeasure::AbsoluteSum};

Bytes Filled(std::size_t count, unsigned value)
{
    return Bytes(count, static_cast<std::byte>(value));
}

bool MayMatch(const Bytes& a, const Bytes& b, DifferenceMeasure measure, std::uint64_t limit)
{
    std::vector<std::uint32_t> left(SketchWords(a.size(), limit));
    std::vector<std::uint32_t> right(left.size());
    FillSketch(a, measure, left);
    FillSketch(b, measure, right);
    return MayDifferByLess(left, right, measure, limit);
}

}  // namespace

TEST(OptimizerSketch, CountsBytesThatDiffer)
{
    Bytes a = Filled(1000, 7);
    Bytes b = a;
    for (std::size_t i = 0; i < 20; ++i)
        b[i * 50] = std::byte{200};
    EXPECT_FALSE(DifferByLess(a, b, DifferenceMeasure::DifferingBytes, 20));
    EXPECT_TRUE(DifferByLess(a, b, DifferenceMeasure::DifferingBytes, 21));
}

TEST(OptimizerSketch, AddsUpHowMuchBytesDiffer)
{
    Bytes a = Filled(1000, 7);
    Bytes b = a;
    b[0] = std::byte{0};     // by 7
    b[999] = std::byte{20};  // by 13
    EXPECT_FALSE(DifferByLess(a, b, DifferenceMeasure::AbsoluteSum, 20));
    EXPECT_TRUE(DifferByLess(a, b, DifferenceMeasure::AbsoluteSum, 21));
}

TEST(OptimizerSketch, FindsNothingBelowZero)
{
    const Bytes a = Filled(64, 1);
    for (const DifferenceMeasure measure : kMeasures) {
        EXPECT_FALSE(DifferByLess(a, a, measure, 0));
        EXPECT_TRUE(DifferByLess(a, a, measure, 1));
    }
}

// 20 MB that differ by 255 everywhere: more than 32 bits hold.
TEST(OptimizerSketch, DoesNotWrap)
{
    const Bytes black = Filled(20'000'000, 0);
    const Bytes white = Filled(20'000'000, 255);
    EXPECT_FALSE(DifferByLess(black, white, DifferenceMeasure::AbsoluteSum, 5'100'000'000));
    EXPECT_TRUE(DifferByLess(black, white, DifferenceMeasure::AbsoluteSum, 5'100'000'001));
    EXPECT_FALSE(MayMatch(black, white, DifferenceMeasure::AbsoluteSum, 5'100'000'000));
    EXPECT_TRUE(MayMatch(black, white, DifferenceMeasure::AbsoluteSum, 5'100'000'001));
}

TEST(OptimizerSketch, NeverMissesAPairThatIsClose)
{
    std::mt19937 random(1);
    for (int round = 0; round < 3000; ++round) {
        Bytes a(1 + random() % 300);
        for (std::byte& byte : a)
            byte = static_cast<std::byte>(random() % 256);
        Bytes b = a;
        const auto changes = random() % 40;
        for (std::size_t i = 0; i < changes; ++i)
            b[random() % b.size()] = static_cast<std::byte>(random() % 256);
        const std::uint64_t limit = random() % (round % 2 == 0 ? 50 : 5000);
        for (const DifferenceMeasure measure : kMeasures) {
            const bool isMissed = DifferByLess(a, b, measure, limit) && !MayMatch(a, b, measure, limit);
            EXPECT_FALSE(isMissed) << "round " << round;
        }
    }
}

TEST(OptimizerSketch, TellsUnlikeBytesApart)
{
    std::mt19937 random(2);
    Bytes a(4096);
    Bytes b(4096);
    for (std::size_t i = 0; i < a.size(); ++i) {
        a[i] = static_cast<std::byte>(random() % 256);
        b[i] = static_cast<std::byte>(random() % 256);
    }
    for (const DifferenceMeasure measure : kMeasures)
        EXPECT_FALSE(MayMatch(a, b, measure, 20));
}

TEST(OptimizerSketch, NeverSeparatesAPairThatIsClose)
{
    std::mt19937 random(3);
    for (int round = 0; round < 300; ++round) {
        const std::size_t count = 1 + random() % 200;
        const std::uint64_t limit = 1 + random() % (round % 2 == 0 ? 30 : 3000);
        const DifferenceMeasure measure = kMeasures[random() % 2];
        std::vector<Bytes> strings(10);
        std::vector<std::vector<std::uint32_t>> sketches(strings.size());
        for (std::size_t i = 0; i < strings.size(); ++i) {
            strings[i] = i < 3 ? Filled(count, static_cast<unsigned>(i)) : strings[random() % 3];
            for (auto changes = random() % 30; changes > 0; --changes)
                strings[i][random() % count] = static_cast<std::byte>(random() % 256);
            sketches[i].resize(SketchWords(count, limit));
            FillSketch(strings[i], measure, sketches[i]);
        }
        const auto related = RelateSketches(sketches, std::vector<std::uint32_t>(strings.size()), limit);
        for (std::size_t i = 0; i < strings.size(); ++i)
            for (std::size_t j = 0; j < i; ++j) {
                const bool isLost =
                    related[i] != related[j] && DifferByLess(strings[i], strings[j], measure, limit);
                EXPECT_FALSE(isLost) << "round " << round;
            }
    }
}

TEST(OptimizerSketch, SeparatesGroupsAndUnlikeSketches)
{
    const std::vector<std::vector<std::uint32_t>> sketches = {
        {1, 2, 3, 4}, {1, 2, 9, 9}, {8, 2, 8, 4}, {1, 2, 3, 4}};
    const std::vector<std::uint32_t> groups = {5, 5, 5, 6};
    // Two parts of two words: the first two have one in common.
    EXPECT_EQ(RelateSketches(sketches, groups, 2), (std::vector<std::uint32_t>{0, 0, 2, 3}));
    // Four words tell nothing about a limit of five.
    EXPECT_EQ(RelateSketches(sketches, groups, 5), (std::vector<std::uint32_t>{0, 0, 0, 3}));
}

TEST(OptimizerSketch, HasAsManyWordsAsItNeeds)
{
    EXPECT_EQ(SketchWords(0, 20), 0U);
    EXPECT_EQ(SketchWords(5, 20), 5U);
    EXPECT_EQ(SketchWords(65536, 0), 32U);
    EXPECT_EQ(SketchWords(65536, 20), 40U);
    EXPECT_EQ(SketchWords(65536, 0xFFFFFFFFFFFFFFFF), 512U);
    // No part may be longer than what 32 bits add up.
    EXPECT_EQ(SketchWords(std::uint64_t{1} << 31, 20), 2048U);
}

TEST(OptimizerStore, FetchesEachOnceWhileAllFit)
{
    std::vector<std::uint32_t> fetched;
    COptimizerStore store(
        [&](std::uint32_t index) {
            fetched.push_back(index);
            return Filled(10, index);
        },
        30);
    for (const std::uint32_t index : {1U, 2U, 3U, 1U, 2U, 3U})
        EXPECT_EQ(*store.Get(index), Filled(10, index));
    EXPECT_EQ(fetched, (std::vector<std::uint32_t>{1, 2, 3}));
    EXPECT_EQ(store.Held(), 30U);
}

TEST(OptimizerStore, DropsWhatWasNotAskedForTheLongest)
{
    std::vector<std::uint32_t> fetched;
    COptimizerStore store(
        [&](std::uint32_t index) {
            fetched.push_back(index);
            return Filled(10, index);
        },
        20);
    for (const std::uint32_t index : {1U, 2U, 1U, 3U, 1U, 2U})
        store.Get(index);
    EXPECT_EQ(fetched, (std::vector<std::uint32_t>{1, 2, 3, 2}));
    EXPECT_LE(store.Held(), 20U);
}

TEST(OptimizerStore, HoldsATextureThatIsLargerThanTheLimit)
{
    COptimizerStore store([](std::uint32_t index) { return Filled(100, index); }, 20);
    EXPECT_EQ(*store.Get(1), Filled(100, 1));
    EXPECT_EQ(*store.Get(2), Filled(100, 2));
    EXPECT_EQ(store.Held(), 100U);
}
