#include "tools/OptimizerSteps.h"

#include <gtest/gtest.h>

#include "base/Text.h"
#include "tests/codec/TestDatabase.h"

namespace {

constexpr std::uint32_t kNoKey = COptimizerList::kNoKey;

/// Textures without rasters, by name; "name=target" is an alias.
class CNames {
public:
    explicit CNames(std::initializer_list<const wchar_t*> names) : m_oDatabase({CacheIndex::Unc})
    {
        for (const std::wstring text : names) {
            const std::size_t target = text.find(L'=');
            m_oDatabase->StoreTexture(target == std::wstring::npos
                                          ? MakeEntry({.name = text, .width = 4, .height = 4})
                                          : MakeAlias(text.substr(0, target), text.substr(target + 1)),
                                      {});
        }
    }
    CTextureDatabase& operator*() { return *m_oDatabase; }

private:
    CTestDatabase m_oDatabase;
};

std::vector<std::wstring> NamesIn(const COptimizerList& list)
{
    std::vector<std::wstring> names;
    for (std::uint32_t place = 0; place < list.Count(); ++place)
        names.push_back(list.Name(place));
    return names;
}

using Names = std::vector<std::wstring>;
using Pairs = std::vector<AliasPair>;

bool Always(std::uint32_t, std::uint32_t)
{
    return true;
}

}  // namespace

TEST(OptimizerSteps, MovesADuplicateToTheEnd)
{
    CNames names({L"a", L"b", L"c"});
    COptimizerList list(*names, std::vector<std::uint32_t>{7, 7, 8});
    EXPECT_TRUE(MakeAliasesOfEqual(list, {.at = Always}));
    EXPECT_EQ(NamesIn(list), (Names{L"a", L"c", L"b"}));
    EXPECT_EQ(list.Pairs(), (Pairs{{.kept = 0, .duplicate = 1}}));
    EXPECT_EQ(list.Key(2), kNoKey);
}

TEST(OptimizerSteps, PassesOverTheTextureBehindAHit)
{
    CNames names({L"a", L"b", L"c", L"d"});
    COptimizerList list(*names, std::vector<std::uint32_t>{1, 1, 1, 1});
    MakeAliasesOfEqual(list, {.at = Always});
    // After b, d is looked at; c is found by nobody but d, which is gone.
    EXPECT_EQ(NamesIn(list), (Names{L"a", L"c", L"b", L"d"}));
    EXPECT_EQ(list.Pairs(), (Pairs{{.kept = 0, .duplicate = 1}, {.kept = 0, .duplicate = 3}}));
}

TEST(OptimizerSteps, GoesOnBehindTheTextureThatWasPassedOver)
{
    CNames names({L"a", L"b", L"c", L"d", L"e"});
    COptimizerList list(*names, std::vector<std::uint32_t>{1, 1, 1, 2, 1});
    MakeAliasesOfEqual(list, {.at = Always});
    // b and e go to a; c stays, and is at place 1 now.
    EXPECT_EQ(NamesIn(list), (Names{L"a", L"c", L"d", L"b", L"e"}));
}

TEST(OptimizerSteps, NeverTouchesWhatHasNoKey)
{
    CNames names({L"a", L"b", L"x=a", L"y=a"});
    COptimizerList list(*names, std::vector<std::uint32_t>{kNoKey, kNoKey, 1, 1});
    MakeAliasesOfEqual(list, {.at = Always});
    DeleteEqual(list, {.at = Always});
    EXPECT_EQ(NamesIn(list), (Names{L"a", L"b", L"x", L"y"}));
    EXPECT_TRUE(list.Pairs().empty());
    EXPECT_TRUE(list.Deleted().empty());
}

TEST(OptimizerSteps, AsksForEachPairOfOneKey)
{
    CNames names({L"a", L"b", L"c", L"d"});
    COptimizerList list(*names, std::vector<std::uint32_t>{1, 2, 1, 1});
    std::vector<std::pair<std::uint32_t, std::uint32_t>> asked;
    MakeAliasesOfEqual(list, {.at = Always, .isSame = [&](std::uint32_t kept, std::uint32_t duplicate) {
                                  asked.emplace_back(list.Original(kept), list.Original(duplicate));
                                  return list.Original(duplicate) == 3;
                              }});
    EXPECT_EQ(asked, (std::vector<std::pair<std::uint32_t, std::uint32_t>>{{0, 2}, {0, 3}}));
    EXPECT_EQ(list.Pairs(), (Pairs{{.kept = 0, .duplicate = 3}}));
}

TEST(OptimizerSteps, DeletesEveryLaterOne)
{
    CNames names({L"a", L"b", L"c", L"d", L"e"});
    COptimizerList list(*names, std::vector<std::uint32_t>{1, 1, 1, 2, 1});
    EXPECT_TRUE(DeleteEqual(list, {.at = Always}));
    EXPECT_EQ(NamesIn(list), (Names{L"a", L"d"}));
    EXPECT_EQ(list.Deleted(), (std::vector<std::uint32_t>{1, 2, 4}));
}

TEST(OptimizerSteps, LooksAtAPlaceAgainAfterADeletion)
{
    CNames names({L"x", L"b", L"c", L"B"});
    COptimizerList list(*names, std::vector<std::uint32_t>{1, 2, 3, 2});
    std::vector<std::pair<std::uint32_t, std::uint32_t>> places;
    DeleteEqual(list, {.at = [&](std::uint32_t place, std::uint32_t count) {
                    places.emplace_back(place, count);
                    return true;
                }});
    EXPECT_EQ(places, (std::vector<std::pair<std::uint32_t, std::uint32_t>>{{0, 4}, {1, 4}, {1, 3}, {2, 3}}));
}

TEST(OptimizerSteps, WrapsBelowZeroAndBeginsAgain)
{
    CNames names({L"a", L"A", L"b", L"A"});
    COptimizerList list(*names, std::vector<std::uint32_t>{1, 1, 2, 1});
    std::vector<std::uint32_t> places;
    DeleteEqual(list, {.at = [&](std::uint32_t place, std::uint32_t) {
                    places.push_back(place);
                    return true;
                }});
    EXPECT_EQ(places, (std::vector<std::uint32_t>{0, 0, 0, 1}));
    EXPECT_EQ(NamesIn(list), (Names{L"a", L"b"}));
}

TEST(OptimizerSteps, EndsWithTheListWhenAliasesWentToo)
{
    CNames names({L"a", L"x=A", L"A", L"y=A", L"b"});
    COptimizerList list(*names, std::vector<std::uint32_t>{1, kNoKey, 1, kNoKey, 2});
    EXPECT_TRUE(DeleteEqual(list, {.at = Always}));
    EXPECT_EQ(NamesIn(list), (Names{L"a", L"b"}));
    EXPECT_EQ(list.Deleted(), (std::vector<std::uint32_t>{2}));
}

TEST(OptimizerSteps, StopsWhenAskedTo)
{
    CNames names({L"a", L"b"});
    COptimizerList list(*names, std::vector<std::uint32_t>{1, 1});
    const auto never = [](std::uint32_t, std::uint32_t) { return false; };
    EXPECT_FALSE(MakeAliasesOfEqual(list, {.at = never}));
    EXPECT_FALSE(DeleteEqual(list, {.at = never}));
    EXPECT_EQ(list.Count(), 2U);
}

TEST(OptimizerSteps, LeavesAPairAloneThatTheListHasNoRoomFor)
{
    const std::wstring longName(62, L'x');
    CNames names({(L"a" + longName).c_str(), (L"b" + longName).c_str(), L"c"});
    COptimizerList list(*names, std::vector<std::uint32_t>{1, 1, 1});
    MakeAliasesOfEqual(list, {.at = Always});
    EXPECT_EQ(list.Pairs(), (Pairs{{.kept = 0, .duplicate = 2}}));
    // Nobody else is like b by then.
    EXPECT_EQ(list.LeftAlone(), 1U);
}
