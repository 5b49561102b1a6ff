// The optimizer leaves the same files as its steps taken one by one, on databases of every kind.

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

#include "base/ByteWriter.h"
#include "codec/PluginTable.h"
#include "database/RunLength.h"
#include "tests/codec/MemorySettings.h"
#include "tests/support/MemoryFileSystem.h"
#include "tests/support/ScriptedPrompt.h"
#include "tests/tools/LiteralOptimizer.h"
#include "tools/DirectHost.h"
#include "tools/Optimizer.h"

namespace {

constexpr std::uint16_t kRgba8888 = 0x1401;
constexpr std::uint16_t kRgba4444 = 0x8033;
constexpr std::uint16_t kDxt1 = 0x83F0;  // no decoder is bound here

struct RandomRaster {
    std::uint16_t format = kRgba8888;
    std::uint16_t width = 4;
    std::uint16_t height = 4;
    std::vector<std::byte> bytes;
};

class CRandomDatabase {
public:
    CRandomDatabase(unsigned seed, bool isFramed) : m_oRandom(seed), m_bFramed(isFramed)
    {
        m_oDatabase.categories = {"cat=0 name=Default onfoot=0 slow=0 fast=0 defaultstream=0"};
        m_oDatabase.caches = {"dxt", "unc"};
        if (Below(3) == 0)
            m_oDatabase.caches.insert(m_oDatabase.caches.begin() + 1, "etc");
        // A texture without a raster has a thumbnail nevertheless, or the cache would have none at all.
        m_bLacksRasters = Below(3) == 0;
        if (m_bLacksRasters)
            m_oDatabase.withoutThumbnails = {"unc"};
        else if (Below(4) == 0)
            m_oDatabase.withoutThumbnails = m_oDatabase.caches;
        for (std::uint32_t count = 3 + Below(40); count > 0; --count)
            AddEntry();
    }

    CLiteralDatabase& operator*() { return m_oDatabase; }

private:
    std::uint32_t Below(std::uint32_t limit) { return static_cast<std::uint32_t>(m_oRandom() % limit); }

    std::string RandomName()
    {
        constexpr std::array kNames = {"road", "wall", "sand", "Tree", "a", "sky_night", "b"};
        std::string name = kNames[Below(kNames.size())];
        if (Below(4) == 0)
            name += std::to_string(Below(6));
        if (Below(3) == 0)
            name[0] = static_cast<char>(name[0] ^ 0x20);
        // So long that an alias has room for neither of two such names.
        if (Below(12) == 0)
            name += std::string(63 - name.size(), 'x');
        return name;
    }

    RandomRaster Picture()
    {
        RandomRaster raster;
        const std::uint32_t kind = Below(8);
        if (kind == 0)
            raster.format = kDxt1;
        if (kind < 3)
            raster.height = 8;
        if (kind == 3) {
            raster.width = 8;
            raster.height = 2;
        }
        const auto base = static_cast<std::uint8_t>(0x11 * Below(3));
        const std::size_t pixels = std::size_t{raster.width} * raster.height;
        raster.bytes.assign(kind == 0 ? pixels / 2 : pixels * 4, std::byte{base});
        if (kind == 4 || kind == 5) {  // looks like one of 32 bits a pixel when it is decoded
            raster.format = kRgba4444;
            raster.bytes.resize(pixels * 2);
        }
        for (std::uint32_t changes = Below(3) == 0 ? Below(30) : 0; changes > 0; --changes) {
            std::byte& changed = raster.bytes[Below(static_cast<std::uint32_t>(raster.bytes.size()))];
            changed = static_cast<std::byte>(std::to_integer<unsigned>(changed) + Below(3));
        }
        return raster;
    }

    std::vector<std::byte> Record(const std::string& name, const RandomRaster& raster, bool mayCode)
    {
        CByteWriter record;
        record.U16(static_cast<std::uint16_t>(BuiltNameHash(name) & 0xFFFFU)).U16(raster.format);
        record.U16(raster.width).U16(raster.height);
        const auto coded =
            m_bFramed && mayCode ? RleEncode(raster.bytes, raster.format == kDxt1 ? 8 : 4) : std::nullopt;
        if (coded)
            record.U32(static_cast<std::uint32_t>(coded->size()));
        else if (m_bFramed)
            record.U32(static_cast<std::uint32_t>(raster.bytes.size() + 4)).U32(0);
        std::vector<std::byte> bytes = record.Take();
        const auto& content = coded ? *coded : raster.bytes;
        bytes.insert(bytes.end(), content.begin(), content.end());
        return bytes;
    }

    void AddEntry()
    {
        LiteralEntry entry;
        entry.name = RandomName();
        if (Below(5) == 0) {
            entry.affiliate = RandomName();
            entry.line = "\"" + entry.name + "\" \"affiliate=" + entry.affiliate + "\"";
            // A line of an alias that another name may not fit into.
            if (Below(4) == 0)
                entry.line += " cat=" + std::to_string(Below(3)) + " unknown=" + std::string(60, '1');
            if (entry.line.size() <= 127)
                m_oDatabase.entries.push_back(entry);
            return;
        }
        entry.line = "\"" + entry.name + "\" width=4 height=4";
        for (const std::string& cache : m_oDatabase.caches) {
            if (m_bLacksRasters && cache == "unc" && Below(3) == 0)
                continue;
            const RandomRaster raster = Picture();
            entry.dat[cache] = Record(entry.name, raster, Below(2) == 0);
            entry.raster[cache] = raster.bytes;
            entry.size[cache] = {raster.width, raster.height};
            const bool hasThumbnails = std::ranges::find(m_oDatabase.withoutThumbnails, cache) ==
                                       m_oDatabase.withoutThumbnails.end();
            if (hasThumbnails)
                entry.tmb[cache] = Record(
                    entry.name,
                    {.width = 1, .height = 1, .bytes = {raster.bytes.begin(), raster.bytes.begin() + 4}},
                    false);
        }
        m_oDatabase.entries.push_back(entry);
    }

    std::mt19937 m_oRandom;
    bool m_bFramed;
    bool m_bLacksRasters = false;
    CLiteralDatabase m_oDatabase;
};

class COpenFiles {
public:
    COpenFiles(const FileBytes& files, StreamMode mode) : m_oDatabase(mode, m_oSystem, m_oPrompt)
    {
        for (const auto& [name, bytes] : files)
            m_oSystem.Put(name, bytes);
        m_oDatabase.Open("textures.txt");
        EXPECT_TRUE(m_oPrompt.Shown().empty());
    }
    CTextureDatabase& Database() { return m_oDatabase; }
    CDirectHost Host() { return CDirectHost({m_oDatabase, m_oPlugins, m_oSettings, m_oPrompt}); }
    const std::vector<std::byte>& File(const std::string& name) const { return *m_oSystem.Find(name); }

private:
    CMemoryFileSystem m_oSystem;
    CScriptedPrompt m_oPrompt;
    CPluginTable m_oPlugins;
    CMemorySettings m_oSettings;
    CTextureDatabase m_oDatabase;
};

// What each texture looks like, by the decoder itself.
void NotePictures(CLiteralDatabase& literal, StreamMode mode)
{
    COpenFiles files(literal.Files(), mode);
    CDirectHost host = files.Host();
    for (const CacheIndex cache : kAllCaches)
        for (std::uint32_t i = 0; i < literal.entries.size(); ++i)
            if (const auto picture = host.Decode(i, cache); picture && literal.entries[i].affiliate.empty())
                literal.entries[i].decoded[std::string(Narrow(CacheInfix(cache)))] = {
                    picture->Pixels().begin(), picture->Pixels().end()};
}

void TakeSteps(CLiteralDatabase& literal, const OptimizeOptions& options)
{
    const std::string cache = Narrow(CacheInfix(options.cache));
    if (options.mode == OptimizeMode::AliasNames)
        literal.AliasNames();
    else if (options.mode == OptimizeMode::DeleteNames)
        literal.DeleteNames();
    else if (options.comparison == RasterComparison::MD5)
        literal.AliasHashes(cache, false);
    else if (options.comparison == RasterComparison::MD5Decoded)
        literal.AliasHashes(cache, true);
    else
        literal.AliasDifferences(cache, options.comparison == RasterComparison::DifferenceDecoded,
                                 options.value);
}

std::vector<OptimizeOptions> EveryWay(std::int32_t value)
{
    std::vector<OptimizeOptions> ways = {{.mode = OptimizeMode::AliasNames},
                                         {.mode = OptimizeMode::DeleteNames}};
    for (const auto comparison : {RasterComparison::MD5, RasterComparison::MD5Decoded,
                                  RasterComparison::Difference, RasterComparison::DifferenceDecoded})
        ways.push_back({.mode = OptimizeMode::AliasRasters,
                        .cache = CacheIndex::Unc,
                        .comparison = comparison,
                        .value = value,
                        .jobs = 2,
                        .memoryLimit = value % 2 == 0 ? 100U : 1000000U});
    return ways;
}

class OptimizerOnRandomDatabases : public testing::TestWithParam<bool> {
protected:
    StreamMode Mode() const { return GetParam() ? StreamMode::Framed : StreamMode::Raw; }
    void Compare(const CLiteralDatabase& before, const OptimizeOptions& options)
    {
        CLiteralDatabase literal = before;
        TakeSteps(literal, options);
        COpenFiles files(before.Files(), Mode());
        CDirectHost host = files.Host();
        CNoProgress progress;
        const OptimizeCounts counts = COptimizer(files.Database(), host, progress).Run(options);
        EXPECT_EQ(counts.aliased, literal.aliased);
        m_nDone += counts.aliased + counts.deleted;
        for (const auto& [name, bytes] : literal.Files())
            EXPECT_EQ(TextOf(files.File(name)), TextOf(bytes)) << name;
    }
    std::uint32_t m_nDone = 0;
};

INSTANTIATE_TEST_SUITE_P(StreamModes, OptimizerOnRandomDatabases, testing::Bool(),
                         [](const auto& mode) { return mode.param ? "Framed" : "Raw"; });

}  // namespace

TEST_P(OptimizerOnRandomDatabases, LeavesTheFilesOfTheStepsTakenOneByOne)
{
    constexpr std::array<std::int32_t, 6> kValues = {5, 0, 1, 300, -3, 8};
    for (unsigned seed = 0; seed < 24; ++seed) {
        CRandomDatabase random(seed, GetParam());
        NotePictures(*random, Mode());
        for (const OptimizeOptions& options : EveryWay(kValues[seed % kValues.size()])) {
            SCOPED_TRACE(testing::Message() << "seed " << seed << ", mode " << static_cast<int>(options.mode)
                                            << ", algorithm " << static_cast<int>(options.comparison));
            Compare(*random, options);
            if (HasFailure())
                return;
        }
    }
    EXPECT_GT(m_nDone, 500U);
}
