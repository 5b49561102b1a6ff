#include "tools/Optimizer.h"

#include <gtest/gtest.h>
#include <map>

#include "tests/codec/FakeCodecs.h"
#include "tests/codec/MemorySettings.h"
#include "tests/database/DatabaseFixture.h"
#include "tools/DirectHost.h"

namespace {

constexpr auto kUnc = CacheIndex::Unc;

/// Counts what is decoded, and decodes some textures to nothing.
class CCountingHost final : public CDirectHost {
public:
    using CDirectHost::CDirectHost;
    std::unique_ptr<CBitmap> Decode(std::uint32_t index, CacheIndex cache) override
    {
        ++decoded[index];
        return CDirectHost::Decode(index, cache);
    }
    std::map<std::uint32_t, int> decoded;
};

class CNotedProgress final : public IProgress {
public:
    void Report(std::uint32_t current, std::uint32_t total, const std::wstring& text) override
    {
        reports.push_back(std::to_string(current) + "/" + std::to_string(total) + " " + ToUtf8(text));
    }
    bool Cancelled() const override { return reports.size() >= stopAt; }
    std::vector<std::string> reports;
    std::size_t stopAt = SIZE_MAX;
};

class COptimizerFixture : public testing::Test {
protected:
    void Open(const CDatabaseBuilder& builder) { Open(builder.Files("textures")); }
    void Open(const FileBytes& files)
    {
        m_pDatabase = std::make_unique<CDatabaseFixture>(files, DiskFileSystem(), StreamMode::Raw);
        m_aBefore = m_pDatabase->Files();
    }
    OptimizeCounts Run(const OptimizeOptions& options)
    {
        m_pHost = std::make_unique<CCountingHost>(
            CHostOperations(**m_pDatabase, m_oPlugins, m_oSettings, m_pDatabase->Prompt()));
        return COptimizer(**m_pDatabase, *m_pHost, m_oProgress).Run(options);
    }
    OptimizeCounts Rasters(RasterComparison comparison, std::int32_t value = 5)
    {
        return Run(
            {.mode = OptimizeMode::AliasRasters, .cache = kUnc, .comparison = comparison, .value = value});
    }
    /// Name by name, an alias as "name=target".
    std::string Entries()
    {
        std::string text;
        for (std::uint32_t i = 0; i < (*m_pDatabase)->EntryCount(); ++i) {
            const TextureEntry& entry = (*m_pDatabase)->Entry(i);
            text += text.empty() ? "" : " ";
            text += Narrow(entry.name) + (entry.IsAlias() ? "=" + Narrow(entry.affiliate) : "");
        }
        return text;
    }
    void ExpectUnchanged() { EXPECT_EQ(m_pDatabase->Files(), m_aBefore); }

    CPluginTable m_oPlugins;
    CMemorySettings m_oSettings;
    CNotedProgress m_oProgress;
    std::unique_ptr<CDatabaseFixture> m_pDatabase;
    std::unique_ptr<CCountingHost> m_pHost;
    FileBytes m_aBefore;
};

CDatabaseBuilder Roads()
{
    CDatabaseBuilder builder;
    builder.Texture("Road").Picture("unc", 1).Texture("sand").Picture("unc", 2);
    builder.Texture("road").Picture("unc", 3).Alias("track", "road");
    return builder;
}

/// 4x4 pixels of which the first bytes are different by one each.
BuiltRaster Changed(std::size_t bytes)
{
    BuiltRaster raster = {
        .width = 4, .heightAndMips = 4, .pixels = std::vector<std::byte>(64, std::byte{50})};
    std::fill_n(raster.pixels.begin(), bytes, std::byte{51});
    return raster;
}

CDatabaseBuilder TwoThatDifferBy(std::size_t bytes)
{
    CDatabaseBuilder builder;
    builder.Texture("a").Raster("unc", Changed(0)).Thumbnail("unc", {.pixels = std::vector<std::byte>(4)});
    builder.Texture("b")
        .Raster("unc", Changed(bytes))
        .Thumbnail("unc", {.pixels = std::vector<std::byte>(4)});
    return builder;
}

constexpr std::array kRasterComparisons = {RasterComparison::MD5, RasterComparison::MD5Decoded,
                                           RasterComparison::Difference, RasterComparison::DifferenceDecoded};

using Optimizer = COptimizerFixture;

}  // namespace

// ---- Names ----

TEST_F(Optimizer, MakesTheLaterOfTwoNamesThatDifferInCaseAnAlias)
{
    Open(Roads());
    EXPECT_EQ(Run({.mode = OptimizeMode::AliasNames}).aliased, 1U);
    EXPECT_EQ(Entries(), "Road sand track=Road road=Road");
    EXPECT_EQ(m_oProgress.reports.front(), "0/4 Road");
}

TEST_F(Optimizer, DeletesTheLaterOfTwoNamesThatDifferInCaseWithItsAliases)
{
    Open(Roads());
    const OptimizeCounts counts = Run({.mode = OptimizeMode::DeleteNames});
    EXPECT_EQ(counts.deleted, 1U);
    EXPECT_EQ(counts.deletedAliases, 1U);
    EXPECT_EQ(Entries(), "Road sand");
}

TEST_F(Optimizer, NeverTakesAnAliasForATextureOrItsDuplicate)
{
    CDatabaseBuilder builder;
    builder.Alias("ROAD", "sand").Texture("road").Picture("unc", 1);
    builder.Texture("sand").Picture("unc", 2).Alias("Road", "sand").Alias("roaD", "sand");
    Open(builder);
    EXPECT_EQ(Run({.mode = OptimizeMode::AliasNames}).aliased, 0U);
    EXPECT_EQ(Run({.mode = OptimizeMode::DeleteNames}).deleted, 0U);
    for (const RasterComparison comparison : kRasterComparisons)
        EXPECT_EQ(Rasters(comparison).aliased, 0U);
    ExpectUnchanged();
}

TEST_F(Optimizer, KeepsAnAliasThatStandsAtAPlaceOfANameThatIsDeleted)
{
    CDatabaseBuilder builder;
    builder.Alias("road", "x").Texture("Rock").Picture("unc", 1).Texture("rock").Picture("unc", 2);
    builder.Texture("x").Picture("unc", 3).Texture("ROAD").Picture("unc", 4);
    Open(builder);
    EXPECT_EQ(Run({.mode = OptimizeMode::DeleteNames}).deleted, 1U);
    EXPECT_EQ(Entries(), "road=x Rock x ROAD");
}

TEST_F(Optimizer, DeletesEveryNameButTheFirst)
{
    CDatabaseBuilder builder;
    for (const char* name : {"a", "A", "b", "a", "B", "A", "c"})
        builder.Texture(name).Picture("unc", 1).Picture("dxt", 2);
    Open(builder);
    EXPECT_EQ(Run({.mode = OptimizeMode::DeleteNames}).deleted, 4U);
    EXPECT_EQ(Entries(), "a b c");
    EXPECT_TRUE((*m_pDatabase)->IsTocValid(kUnc));
    EXPECT_TRUE((*m_pDatabase)->HasThumbnails(CacheIndex::Dxt));
}

// ---- Digests ----

TEST_F(Optimizer, ReportsTheDigestOfEachRaster)
{
    CDatabaseBuilder builder;
    builder.Texture("a").Raster("unc", {.pixels = BytesOf("abcd")}).Alias("b", "a");
    Open(builder);
    Rasters(RasterComparison::MD5);
    EXPECT_EQ(m_oProgress.reports, (std::vector<std::string>{"1/2 e2fc714c4727ee9395f324cd2e7f331f",
                                                             "2/2 d41d8cd98f00b204e9800998ecf8427e"}));
}

TEST_F(Optimizer, NeverPairsTexturesWithoutData)
{
    CDatabaseBuilder builder;
    builder.Texture("a").Picture("dxt", 1).Texture("b").Picture("dxt", 1);
    builder.Texture("c").Picture("unc", 1).Picture("dxt", 2);
    Open(builder);
    for (const RasterComparison comparison : kRasterComparisons) {
        const OptimizeCounts counts = Rasters(comparison);
        EXPECT_EQ(counts.aliased, 0U);
        EXPECT_EQ(counts.notCompared, 0U);
    }
    ExpectUnchanged();
}

TEST_F(Optimizer, NeverPairsTexturesThatCannotBeReadOrDecoded)
{
    CDatabaseBuilder builder;
    for (const char* name : {"a", "b"})  // of no known format
        builder.Texture(name).Raster("unc",
                                     {.glFormat = 0x1234, .width = 4, .heightAndMips = 4, .pixels = {}});
    for (const char* name : {"c", "d"})  // no plugin is loaded
        builder.Texture(name).Raster(
            "unc", {.glFormat = 0x83F0, .width = 4, .heightAndMips = 4, .pixels = std::vector<std::byte>(8)});
    Open(builder);
    EXPECT_EQ(Rasters(RasterComparison::MD5Decoded).notCompared, 4U);
    EXPECT_EQ(Rasters(RasterComparison::DifferenceDecoded).notCompared, 4U);
    ExpectUnchanged();
    EXPECT_EQ(Rasters(RasterComparison::MD5).aliased, 1U);
    EXPECT_EQ(Entries(), "a b c d=c");
}

TEST_F(Optimizer, FindsTheSamePictureInTwoFormatsOnlyWhenDecoded)
{
    CDatabaseBuilder builder;
    builder.Texture("a").Raster(
        "unc", {.width = 4, .heightAndMips = 4, .pixels = std::vector<std::byte>(64, std::byte{0x33})});
    builder.Texture("b").Raster("unc", {.glFormat = 0x8033,
                                        .width = 4,
                                        .heightAndMips = 4,
                                        .pixels = std::vector<std::byte>(32, std::byte{0x33})});
    Open(builder);
    EXPECT_EQ(Rasters(RasterComparison::MD5).aliased, 0U);
    EXPECT_EQ(Rasters(RasterComparison::Difference).aliased, 0U);
    ExpectUnchanged();
    EXPECT_EQ(Rasters(RasterComparison::MD5Decoded).aliased, 1U);
    Open(builder);
    EXPECT_EQ(Rasters(RasterComparison::DifferenceDecoded).aliased, 1U);
}

TEST_F(Optimizer, LeavesTheSecondOfTwoEqualNeighboursForAnotherRun)
{
    CDatabaseBuilder builder;
    for (const char* name : {"a", "b", "c"})
        builder.Texture(name).Picture("unc", 9);
    for (const RasterComparison comparison : kRasterComparisons) {
        Open(builder);
        EXPECT_EQ(Rasters(comparison).aliased, 1U);
        EXPECT_EQ(Entries(), "a c b=a");
        EXPECT_EQ(Rasters(comparison).aliased, 1U);
        EXPECT_EQ(Entries(), "a b=a c=a");
        EXPECT_EQ(Rasters(comparison).aliased, 0U);
    }
}

// ---- Differences ----

TEST_F(Optimizer, MatchesBelowFourTimesTheValue)
{
    for (const RasterComparison comparison :
         {RasterComparison::Difference, RasterComparison::DifferenceDecoded}) {
        Open(TwoThatDifferBy(19));
        EXPECT_EQ(Rasters(comparison, 5).aliased, 1U);
        Open(TwoThatDifferBy(20));
        EXPECT_EQ(Rasters(comparison, 5).aliased, 0U);
        EXPECT_EQ(Rasters(comparison, 6).aliased, 1U);
    }
}

TEST_F(Optimizer, MatchesNothingBelowZeroAndEqualOnesAboveIt)
{
    for (const RasterComparison comparison :
         {RasterComparison::Difference, RasterComparison::DifferenceDecoded}) {
        Open(TwoThatDifferBy(0));
        EXPECT_EQ(Rasters(comparison, 0).aliased, 0U);
        EXPECT_EQ(Rasters(comparison, -1).aliased, 0U);
        EXPECT_EQ(Rasters(comparison, INT32_MIN).aliased, 0U);
        ExpectUnchanged();
        EXPECT_EQ(Rasters(comparison, 1).aliased, 1U);
        Open(TwoThatDifferBy(64));
        EXPECT_EQ(Rasters(comparison, INT32_MAX).aliased, 1U);
    }
}

TEST_F(Optimizer, ComparesStoredBytesOfOneLengthButPicturesOfOneSizeOnly)
{
    CDatabaseBuilder builder;
    builder.Texture("wide").Picture("unc", 5, 8, 2).Texture("high").Picture("unc", 5, 2, 8);
    Open(builder);
    EXPECT_EQ(Rasters(RasterComparison::DifferenceDecoded, INT32_MAX).aliased, 0U);
    ExpectUnchanged();
    EXPECT_EQ(Rasters(RasterComparison::Difference).aliased, 1U);
}

TEST_F(Optimizer, DecodesOnlyWhatMayHaveALikeAndEachOnce)
{
    CDatabaseBuilder builder;
    builder.Texture("alone").Picture("unc", 1, 16, 16).Alias("alias", "alone");
    for (int i = 0; i < 6; ++i)
        builder.Texture("t" + std::to_string(i)).Picture("unc", static_cast<std::uint8_t>(i % 3 * 40));
    Open(builder);
    EXPECT_EQ(Rasters(RasterComparison::DifferenceDecoded).aliased, 3U);
    EXPECT_EQ(m_pHost->decoded,
              (std::map<std::uint32_t, int>{{2, 1}, {3, 1}, {4, 1}, {5, 1}, {6, 1}, {7, 1}}));
}

TEST_F(Optimizer, FindsTheSamePairsWithinLittleMemory)
{
    CDatabaseBuilder builder;
    for (int i = 0; i < 12; ++i)
        builder.Texture("t" + std::to_string(i)).Picture("unc", static_cast<std::uint8_t>(i % 5 * 40));
    std::string expected;
    for (const std::uint64_t limit : {1000000U, 100U, 0U}) {
        Open(builder);
        Run({.mode = OptimizeMode::AliasRasters,
             .cache = kUnc,
             .comparison = RasterComparison::DifferenceDecoded,
             .memoryLimit = limit});
        expected = expected.empty() ? Entries() : expected;
        EXPECT_EQ(Entries(), expected);
    }
    EXPECT_EQ(expected, "t0 t1 t2 t3 t4 t5=t0 t10=t0 t6=t1 t11=t1 t7=t2 t8=t3 t9=t4");
}

TEST_F(Optimizer, GivesTheSameFilesWithAnyNumberOfThreads)
{
    CDatabaseBuilder builder;
    for (int i = 0; i < 50; ++i)
        builder.Texture("t" + std::to_string(i)).Picture("unc", static_cast<std::uint8_t>(i % 7));
    FileBytes alone;
    for (const unsigned jobs : {1U, 2U, 7U}) {
        Open(builder);
        Run({.mode = OptimizeMode::AliasRasters, .cache = kUnc, .jobs = jobs});
        alone = alone.empty() ? m_pDatabase->Files() : alone;
        EXPECT_EQ(m_pDatabase->Files(), alone);
    }
}

// ---- Stopping, failures, the value ----

TEST_F(Optimizer, ChangesNothingWhenStopped)
{
    Open(Roads().Texture("ROAD").Picture("unc", 1));
    std::vector<OptimizeOptions> ways = {{.mode = OptimizeMode::AliasNames},
                                         {.mode = OptimizeMode::DeleteNames}};
    for (const RasterComparison comparison : kRasterComparisons)
        ways.push_back({.mode = OptimizeMode::AliasRasters, .cache = kUnc, .comparison = comparison});
    for (const OptimizeOptions& way : ways)
        for (m_oProgress.stopAt = 1; m_oProgress.stopAt < 4; ++m_oProgress.stopAt) {
            m_oProgress.reports.clear();
            const OptimizeCounts counts = Run(way);
            EXPECT_TRUE(counts.wasStopped);
            EXPECT_EQ(counts.aliased + counts.deleted, 0U);
            ExpectUnchanged();
        }
}

TEST_F(Optimizer, StopsAtTheFirstTextureThatCannotBeDeleted)
{
    CDatabaseBuilder builder;
    for (const char* name : {"a", "A", "b", "c", "C", "d"})
        builder.Texture(name).Raster("unc", {.pixels = std::vector<std::byte>(4)});
    FileBytes files = builder.Files("textures");
    files.erase("textures.unc.tmb");
    // The words of C and d change places, so that C has no length.
    std::vector<std::byte>& toc = files["textures.unc.toc"];
    std::swap_ranges(toc.begin() + 20, toc.begin() + 24, toc.begin() + 24);
    for (const OptimizeMode mode : {OptimizeMode::DeleteNames, OptimizeMode::AliasNames}) {
        Open(files);
        EXPECT_THROW(Run({.mode = mode}), CError);
        EXPECT_EQ(Entries(), mode == OptimizeMode::DeleteNames ? "a b c C d" : "a b c C d A=a");
        EXPECT_TRUE((*m_pDatabase)->IsTocValid(kUnc));
    }
}

TEST_F(Optimizer, LeavesThumbnailsThatAreIgnoredToTheStepsOneByOne)
{
    CDatabaseBuilder builder;
    for (const char* name : {"a", "A", "b", "B", "c"})
        builder.Texture(name).Raster("unc", {.pixels = std::vector<std::byte>(4)});
    // One too few: once a texture is gone they fit again.
    for (std::uint8_t shade = 1; shade <= 4; ++shade)
        builder.Thumbnail("unc", {.pixels = std::vector<std::byte>(4, std::byte{shade})});
    Open(builder);
    ASSERT_FALSE((*m_pDatabase)->HasThumbnails(kUnc));
    EXPECT_EQ(Run({.mode = OptimizeMode::DeleteNames}).deleted, 2U);
    EXPECT_EQ(Entries(), "a b c");
    EXPECT_EQ(m_pDatabase->Files()["textures.unc.tmb"].size(), 36U);
    EXPECT_TRUE((*m_pDatabase)->HasThumbnails(kUnc));
}

TEST(ComparisonValue, ReadsWhatAPersonTypes)
{
    EXPECT_EQ(ParseComparisonValue(L"5"), 5);
    EXPECT_EQ(ParseComparisonValue(L"abc"), 0);
    EXPECT_EQ(ParseComparisonValue(L""), 0);
    EXPECT_EQ(ParseComparisonValue(L"  12 pixels"), 12);
    EXPECT_EQ(ParseComparisonValue(L"+7"), 7);
    EXPECT_EQ(ParseComparisonValue(L"-3"), -3);
    EXPECT_EQ(ParseComparisonValue(L"- 3"), 0);
    EXPECT_EQ(ParseComparisonValue(L"99999999999999999999"), 2147483647);
}
