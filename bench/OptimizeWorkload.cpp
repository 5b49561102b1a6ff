#include "bench/OptimizeWorkload.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <random>
#include <stdexcept>
#include <vector>

#include "base/Progress.h"
#include "base/Settings.h"
#include "bench/BigDatabase.h"
#include "bench/SilentPrompt.h"
#include "bench/Stopwatch.h"
#include "codec/PluginTable.h"
#include "image/BitmapTools.h"
#include "image/MD5.h"
#include "tools/DirectHost.h"
#include "tools/Optimizer.h"

namespace Bench {
namespace {
constexpr std::uint16_t kSide = 128;
constexpr std::uint16_t kThumbnailSide = 8;
constexpr std::uint32_t kHashedTextures = 5000;
constexpr std::uint32_t kHashedDuplicates = 1000;
constexpr std::uint32_t kComparedTextures = 2000;
constexpr std::uint32_t kComparedDuplicates = 100;
/// What the step-by-step ways do for the whole is reckoned from so much of it.
constexpr std::uint32_t kSampleDuplicates = 20;
constexpr std::uint32_t kSampleTextures = 250;
constexpr double kMostHashRatio = 3;
constexpr double kLeastSpeedUp = 50;
constexpr int kRounds = 5;

struct Family {
    std::uint32_t textures = 0;
    std::uint32_t duplicates = 0;
    bool isExact = true;  // else the copies have a few other bytes
};

bool IsDuplicate(const Family& family, std::uint32_t index)
{
    const std::uint32_t every = family.textures / family.duplicates;
    return index % every == every - 1;
}

/// Noise, in blocks with four colours; a duplicate has that of the texture half of the list before it.
std::vector<std::byte> RasterOf(const Family& family, std::uint32_t index, std::size_t bytes)
{
    const bool isCopy = IsDuplicate(family, index);
    std::mt19937_64 random(isCopy ? index / 2 / 5 * 5 : index);
    std::vector<std::byte> raster(bytes);
    for (std::size_t at = 0; at < bytes; ++at)
        raster[at] = static_cast<std::byte>(random() >> 56U);
    if (isCopy && !family.isExact)
        for (std::size_t change = 0; change < 3; ++change)
            raster[change * 1000] ^= std::byte{0x10};
    return raster;
}

void Store(CTextureDatabase& database, const Family& family, std::uint32_t index)
{
    const std::vector<std::byte> thumbnail(std::size_t{kThumbnailSide} * kThumbnailSide * 4);
    std::vector<std::vector<std::byte>> rasters;
    std::vector<PreparedRecord> records;
    for (const auto& [cache, format] :
         {std::pair{CacheIndex::Dxt, GlFormat::Dxt1}, std::pair{CacheIndex::Pvrtc, GlFormat::Pvrtc2}}) {
        const RasterHeader header = {.glFormat = format, .width = kSide, .heightAndMips = kSide};
        rasters.push_back(RasterOf(family, index, RasterSize(header)));
        records.push_back({cache, RecordKind::Raster, {header, rasters.back(), StreamMode::Framed, false}});
        records.push_back(
            {cache,
             RecordKind::Thumbnail,
             {{.glFormat = GlFormat::Rgba8888, .width = kThumbnailSide, .heightAndMips = kThumbnailSide},
              thumbnail,
              StreamMode::Framed,
              false}});
    }
    database.StoreTexture(
        MakeEntry({.name = L"texture_" + std::to_wstring(index), .width = kSide, .height = kSide}), records);
}

void WriteFamily(const std::filesystem::path& list, const Family& family)
{
    CSilentPrompt prompt;
    CTextureDatabase database(StreamMode::Framed, DiskFileSystem(), prompt);
    if (!database.Create(list, std::vector{CacheIndex::Dxt, CacheIndex::Pvrtc}))
        throw std::runtime_error("cannot create the database");
    const CStoringMany many(database);
    for (std::uint32_t i = 0; i < family.textures; ++i)
        Store(database, family, i);
    database.Save();
}

std::filesystem::path CopyFolder(const std::filesystem::path& from, const std::filesystem::path& to)
{
    std::filesystem::remove_all(to);
    std::filesystem::copy(from, to);
    return to / "family.txt";
}

std::filesystem::path PluginFolder()
{
    return std::filesystem::read_symlink("/proc/self/exe").parent_path() / "plugins";
}

/// An open copy of a family, and what an optimizer on it needs.
class COpenFamily {
public:
    explicit COpenFamily(const std::filesystem::path& list)
        : m_pSettings(OpenSettings(list.parent_path() / "settings.ini")),
          m_oDatabase(StreamMode::Framed, DiskFileSystem(), m_oPrompt)
    {
        m_oPlugins.Discover(PluginFolder(), m_oPrompt);
        m_oPlugins.BindFromSettings(*m_pSettings);
        m_oDatabase.Open(list);
    }

    CTextureDatabase& Database() { return m_oDatabase; }
    CDirectHost Host()
    {
        return CDirectHost(CHostOperations(m_oDatabase, m_oPlugins, *m_pSettings, m_oPrompt));
    }
    /// Seconds.
    double Optimize(const OptimizeOptions& options, const Family& family)
    {
        CNoProgress progress;
        CDirectHost host = Host();
        OptimizeCounts counts;
        const double seconds =
            ShortestRun(1, [&] { counts = COptimizer(m_oDatabase, host, progress).Run(options); });
        m_bCorrect = counts.aliased == family.duplicates && IsAsExpected(family) && m_oPrompt.Shown() == 0;
        return seconds;
    }
    bool IsCorrect() const { return m_bCorrect; }

private:
    // The texture that each duplicate was made from is the one that is left.
    bool IsAsExpected(const Family& family)
    {
        const std::uint32_t left = family.textures - family.duplicates;
        if (m_oDatabase.EntryCount() != family.textures || !m_oDatabase.IsTocValid(CacheIndex::Dxt) ||
            !m_oDatabase.HasThumbnails(CacheIndex::Pvrtc))
            return false;
        for (std::uint32_t i = 0; i < family.textures; ++i) {
            const TextureEntry& entry = m_oDatabase.Entry(i);
            const auto number = static_cast<std::uint32_t>(std::stoul(entry.name.substr(8)));
            const bool isAlias = i >= left;
            if (entry.IsAlias() != isAlias || IsDuplicate(family, number) != isAlias ||
                (isAlias && entry.affiliate != L"texture_" + std::to_wstring(number / 2 / 5 * 5)))
                return false;
        }
        return true;
    }

    CSilentPrompt m_oPrompt;
    std::unique_ptr<ISettings> m_pSettings;
    CPluginTable m_oPlugins;
    CTextureDatabase m_oDatabase;
    bool m_bCorrect = false;
};

// ---- By digests ----

std::vector<std::byte> ReadAll(const std::filesystem::path& path)
{
    const auto file = DiskFileSystem().Open(path, OpenMode::Read);
    std::vector<std::byte> bytes(file ? static_cast<std::size_t>(file->Size()) : 0);
    if (!file || file->ReadAt(0, bytes) != bytes.size())
        throw std::runtime_error("cannot read " + path.string());
    return bytes;
}

// Reading the `.dat` once, hashing it once and writing the resulting files once. As in every edit, the list
// is waited for until the device holds it.
double OnceEach(const std::filesystem::path& source, const std::filesystem::path& result,
                const std::filesystem::path& written)
{
    std::vector<std::pair<std::filesystem::path, std::vector<std::byte>>> files;
    for (const auto& item : std::filesystem::directory_iterator(result))
        files.emplace_back(item.path().filename(), ReadAll(item.path()));
    std::filesystem::remove_all(written);
    std::filesystem::create_directory(written);
    return ShortestRun(1, [&] {
        const auto dat = ReadAll(source / "family.dxt.dat");
        const MD5Digest digest = ComputeMD5(dat);
        KeepAlive(&digest);
        for (const auto& [name, bytes] : files) {
            const auto file = DiskFileSystem().Open(written / name, OpenMode::Truncate);
            if (!file || !file->WriteAt(0, bytes) || (name.extension() == ".txt" && !file->Sync()))
                throw std::runtime_error("cannot write " + name.string());
        }
    });
}

/// Seconds for all duplicates, one after the other.
double StepByStep(const std::filesystem::path& list, const Family& family)
{
    COpenFamily open(list);
    CNoProgress progress;
    const double seconds = ShortestRun(1, [&] {
        std::uint32_t done = 0;
        for (std::uint32_t i = 0; done < kSampleDuplicates; ++i)
            if (IsDuplicate(family, i)) {
                const AliasPair pair = {.kept = 0, .duplicate = i - done++};
                open.Database().MakeAliases(std::span(&pair, 1), progress);
            }
    });
    return seconds / kSampleDuplicates * family.duplicates;
}

void MeasureHashes(CReport& report)
{
    const CScratchFolder folder;
    const Family family = {.textures = kHashedTextures, .duplicates = kHashedDuplicates};
    const std::filesystem::path source = folder.Path() / "source";
    std::filesystem::create_directory(source);
    WriteFamily(source / "family.txt", family);
    double optimizing = 1e30;
    double onceEach = 1e30;
    bool isCorrect = true;
    for (int round = 0; round < kRounds; ++round) {
        {
            COpenFamily open(CopyFolder(source, folder.Path() / "copy"));
            optimizing =
                std::min(optimizing, open.Optimize({.mode = OptimizeMode::AliasRasters, .jobs = 2}, family));
            isCorrect = isCorrect && open.IsCorrect();
        }
        onceEach = std::min(onceEach, OnceEach(source, folder.Path() / "copy", folder.Path() / "written"));
    }
    const double steps = StepByStep(CopyFolder(source, folder.Path() / "copy"), family);
    report.Add({.workload = "optimize-md5",
                .measured = TimeText(optimizing) + ", 1000 of 5000",
                .baseline = TimeText(onceEach) + " once each",
                .ratio = optimizing / onceEach,
                .limit = kMostHashRatio,
                .isCorrect = isCorrect});
    report.Add({.workload = "optimize-md5-steps",
                .measured = TimeText(steps) + " one by one",
                .baseline = TimeText(onceEach) + " once each",
                .ratio = steps / onceEach,
                .limit = {}});
}

// ---- By differences ----

std::uint64_t DifferingBytes(const std::vector<std::byte>& a, const std::vector<std::byte>& b)
{
    std::uint64_t count = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        count += a[i] != b[i] ? 1 : 0;
    return count;
}

/// Seconds for comparing some textures, each with each and in full, with all of them in memory already.
template <class Picture, class Compare>
double EveryPair(const std::vector<Picture>& pictures, Compare compare)
{
    return ShortestRun(1, [&] {
        std::uint64_t sum = 0;
        for (std::size_t i = 0; i < pictures.size(); ++i)
            for (std::size_t j = i + 1; j < pictures.size(); ++j)
                sum += static_cast<std::uint64_t>(compare(pictures[i], pictures[j]));
        KeepAlive(&sum);
    });
}

double EveryPairOf(COpenFamily& open, bool isDecoded)
{
    std::vector<std::vector<std::byte>> rasters;
    std::vector<CBitmap> bitmaps;
    CDirectHost host = open.Host();
    for (std::uint32_t i = 0; i < kSampleTextures; ++i) {
        if (!isDecoded) {
            rasters.push_back(open.Database().ReadRaster(i, CacheIndex::Dxt, RecordKind::Raster).value());
            continue;
        }
        auto bitmap = host.Decode(i, CacheIndex::Dxt);
        if (!bitmap)
            throw std::runtime_error("cannot decode the textures");
        bitmaps.push_back(std::move(*bitmap));
    }
    const double sample =
        isDecoded ? EveryPair(bitmaps, ImageDifference) : EveryPair(rasters, DifferingBytes);
    const auto pairs = [](double count) { return count * (count - 1) / 2; };
    return sample * pairs(kComparedTextures) / pairs(kSampleTextures);
}

void MeasureDifferences(bool isDecoded, CReport& report)
{
    const CScratchFolder folder;
    const Family family = {
        .textures = kComparedTextures, .duplicates = kComparedDuplicates, .isExact = isDecoded};
    const std::filesystem::path source = folder.Path() / "source";
    std::filesystem::create_directory(source);
    WriteFamily(source / "family.txt", family);
    COpenFamily open(source / "family.txt");
    const double everyPair = EveryPairOf(open, isDecoded);
    const double optimizing = open.Optimize(
        {.mode = OptimizeMode::AliasRasters,
         .comparison = isDecoded ? RasterComparison::DifferenceDecoded : RasterComparison::Difference,
         .jobs = 2},
        family);
    char speedUp[32];
    std::snprintf(speedUp, sizeof speedUp, ", %.0f times as fast", everyPair / optimizing);
    report.Add({.workload = isDecoded ? "optimize-diff-decoded" : "optimize-diff",
                .measured = TimeText(optimizing) + speedUp,
                .baseline = TimeText(everyPair / kLeastSpeedUp) + ", a 50th of all pairs",
                .ratio = optimizing / (everyPair / kLeastSpeedUp),
                .limit = 1,
                .isCorrect = open.IsCorrect()});
}

bool Concerns(const std::string& workload, const std::string& only)
{
    const std::size_t common = std::min(workload.size(), only.size());
    return workload.compare(0, common, only, 0, common) == 0;
}
}  // namespace

void MeasureOptimizing(const std::string& only, CReport& report)
{
    if (Concerns("optimize-md5", only))
        MeasureHashes(report);
    if (Concerns("optimize-diff", only))
        MeasureDifferences(false, report);
    if (Concerns("optimize-diff-decoded", only))
        MeasureDifferences(true, report);
}

}  // namespace Bench
