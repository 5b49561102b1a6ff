#include "tools/Statistics.h"

#include <gtest/gtest.h>

#include "tests/codec/TestDatabase.h"

namespace {

// 512 x 512 RGBA 8888.
constexpr RasterHeader kOneMegabyte = {0, 0x1401, 512, 512};

std::vector<std::byte> Megabyte()
{
    return std::vector<std::byte>(1048576);
}

}  // namespace

TEST(Statistics, ReportsAnEmptyDatabase)
{
    CTestDatabase database({CacheIndex::Dxt, CacheIndex::Unc});
    EXPECT_EQ(StatisticsText(*database),
              L"Game: (auto)\n"
              L"\n-----------------------------------------------------------\n\n"
              L"Total:     0\nOriginals: 0\nAliases:   0\n"
              L"\n-----------------------------------------------------------\n\n"
              L"dxt size: 0.000 MB\nunc size: 0.000 MB\nTOTAL size: 0.000 MB\n");
}

TEST(Statistics, AddsTheRunningSumOfACacheToTheGrandTotal)
{
    CTestDatabase database({CacheIndex::Unc});
    database.Add(L"first", {{CacheIndex::Unc, {kOneMegabyte, Megabyte()}}});
    database.Add(L"second", {{CacheIndex::Unc, {kOneMegabyte, Megabyte()}}});
    EXPECT_EQ(StatisticsText(*database),
              L"Game: GTA VC\n"
              L"\n-----------------------------------------------------------\n\n"
              L"Total:     2\nOriginals: 2\nAliases:   0\n"
              L"\n-----------------------------------------------------------\n\n"
              L"unc size: 2.000 MB\nTOTAL size: 3.000 MB\n");
}

TEST(Statistics, CountsAliasesWithoutTheirSizeButAddsTheSumOnceMore)
{
    CTestDatabase database({CacheIndex::Unc}, StreamMode::Framed);
    database.Add(L"first", {{CacheIndex::Unc, {kOneMegabyte, Megabyte()}}});
    database->AddAlias(L"alias", L"first");
    const std::wstring text = StatisticsText(*database);
    EXPECT_NE(text.find(L"Game: GTA SA\n"), std::wstring::npos);
    EXPECT_NE(text.find(L"Total:     2\nOriginals: 1\nAliases:   1\n"), std::wstring::npos);
    EXPECT_NE(text.find(L"unc size: 1.000 MB\nTOTAL size: 2.000 MB\n"), std::wstring::npos);
}
