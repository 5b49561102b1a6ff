#include "bench/ImgWorkloads.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <stdexcept>

#include "base/ByteReader.h"
#include "bench/BigDatabase.h"
#include "bench/CountingFileSystem.h"
#include "bench/EncoderWork.h"
#include "bench/HeapPeak.h"
#include "bench/SilentPrompt.h"
#include "bench/Stopwatch.h"
#include "tests/support/ImgFiles.h"
#include "tests/support/RenderWareFiles.h"
#include "tools/ArchiveEntries.h"
#include "tools/DirectHost.h"
#include "tools/ImportArchive.h"
#include "tools/SyncArchives.h"
#include "tools/TXDHelper.h"

namespace Bench {
namespace {

constexpr std::uint32_t kEntries = 20000;
constexpr double kMostListingRatio = 2;

constexpr std::uint32_t kModels = 2000;
constexpr std::size_t kModelBytes = 50000;
constexpr std::uint32_t kMaterials = 12;
constexpr double kMostBytesRead = 0.1;

constexpr std::size_t kPictures = 120;
constexpr std::size_t kPicturesATurn = 30;
constexpr std::size_t kTexturesADictionary = 3;
constexpr double kMostImportRatio = 1 / 0.8;
/// Textures that are in memory at once, as bitmaps with all their records.
constexpr double kMostTexturesInMemory = 8;

void MeasureListing(const std::filesystem::path& folder, CReport& report)
{
    std::vector<ImgEntry> entries(kEntries);
    for (std::uint32_t i = 0; i < kEntries; ++i)
        entries[i].name = "entry" + std::to_string(i) + (i % 2 == 0 ? ".TXD" : ".dff");
    const std::filesystem::path file = folder / "list.img";
    WriteVersion2Archive(file, entries);
    CNoProgress progress;
    std::size_t rows = 0;
    double listing = 1e30;
    double reading = 1e30;
    for (int round = 0; round < 5; ++round) {
        listing = std::min(listing, ShortestCall([&] {
                               CImgArchive archive;
                               archive.Open(file);
                               rows = ListArchive(archive, ArchiveRows::Dictionaries, progress).size();
                           }));
        reading = std::min(reading, ShortestCall([&] {
                               const auto opened = DiskFileSystem().Open(file, OpenMode::ReadWrite);
                               std::array<std::byte, 8> header{};
                               opened->ReadAt(0, header);
                               std::vector<std::byte> directory(std::size_t{kEntries} * 32);
                               opened->ReadAt(header.size(), directory);
                               KeepAlive(directory.data());
                           }));
    }
    report.Add({.workload = "img-list",
                .measured = TimeText(listing) + ", 20000 entries",
                .baseline = TimeText(reading) + " reading the directory",
                .ratio = listing / reading,
                .limit = kMostListingRatio,
                .isCorrect = rows == kEntries / 2});
}

RwFile::Bytes BigModel(std::uint32_t number)
{
    std::vector<RwFile::Bytes> materials;
    for (std::uint32_t i = 0; i < kMaterials; ++i)
        materials.push_back(
            RwFile::Material({.textures = {"texture" + std::to_string(number * kMaterials + i)}}));
    const RwFile::Bytes list = RwFile::MaterialList(materials);
    return RwFile::Clump({RwFile::Geometry(list, kModelBytes - list.size() - 200)});
}

void MeasureSynchronizing(const std::filesystem::path& folder, CReport& report)
{
    std::vector<ImgEntry> entries;
    for (std::uint32_t i = 0; i < kModels; ++i)
        entries.push_back({.name = "model" + std::to_string(i) + ".dff", .contents = BigModel(i)});
    const std::filesystem::path file = folder / "models.img";
    WriteVersion2Archive(file, entries);
    const auto length = static_cast<double>(std::filesystem::file_size(file));
    CNoProgress progress;
    UsedTextures used;
    std::uint64_t bytes = 0;
    const double seconds = ShortestRun(3, [&] {
        CCountingFileSystem files;
        used = UsedTextures();
        CollectUsedTextures(file, used, progress, files);
        bytes = files.Bytes();
    });
    std::array<char, 64> measured{};
    std::snprintf(measured.data(), measured.size(), "%.1f MB read, %s", static_cast<double>(bytes) / 1e6,
                  TimeText(seconds).c_str());
    std::array<char, 64> baseline{};
    std::snprintf(baseline.data(), baseline.size(), "%.0f MB of %u models", length / 1e6, kModels);
    report.Add(
        {.workload = "img-sync",
         .measured = measured.data(),
         .baseline = baseline.data(),
         .ratio = static_cast<double>(bytes) / length,
         .limit = kMostBytesRead,
         .isCorrect = used.modelsRead == kModels && used.names.size() == std::size_t{kModels} * kMaterials});
}

/// The samples as DXT textures, and what their pictures are once they are drawn.
struct DictionaryArchive {
    std::filesystem::path file;
    std::vector<EncoderSample> drawn;
};

RwFile::Bytes MakeTexture(const EncoderSample& sample, std::size_t number, const CPluginTable& plugins)
{
    std::vector<std::byte> rgba(sample.picture.Pixels().size());
    const auto pixels = std::as_bytes(sample.picture.Pixels());
    for (std::size_t at = 0; at < rgba.size(); at += 4) {
        rgba[at] = pixels[at + 2];
        rgba[at + 1] = pixels[at + 1];
        rgba[at + 2] = pixels[at];
        rgba[at + 3] = pixels[at + 3];
    }
    RwFile::Bytes blocks(std::size_t{kSampleSide} * kSampleSide / (sample.hasAlpha ? 1 : 2));
    plugins.Compress(CacheIndex::Dxt)(rgba.data(), blocks.data(), kSampleSide, kSampleSide, 0,
                                      sample.hasAlpha ? MavrelAlpha : MavrelDxt1);
    return RwFile::PCNative({.name = "picture" + std::to_string(number),
                             .rasterFormat = sample.hasAlpha ? 0x300U : 0x200U,
                             .width = kSampleSide,
                             .height = kSampleSide,
                             .depth = 16,
                             .compression = static_cast<std::uint8_t>(sample.hasAlpha ? 3 : 1),
                             .pixels = blocks});
}

DictionaryArchive MakeArchive(const std::filesystem::path& folder, const CPluginTable& plugins)
{
    const auto samples = MakeSamples(kPictures, kPicturesATurn);
    std::vector<ImgEntry> entries;
    std::vector<RwFile::Bytes> natives;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        natives.push_back(MakeTexture(samples[i], i, plugins));
        if (natives.size() < kTexturesADictionary)
            continue;
        entries.push_back(
            {.name = "d" + std::to_string(entries.size()) + ".txd", .contents = RwFile::Dictionary(natives)});
        natives.clear();
    }
    DictionaryArchive made;
    made.file = folder / "dictionaries.img";
    WriteVersion2Archive(made.file, entries);
    CImgArchive archive;
    archive.Open(made.file);
    RW::CSilentFailures failures;
    CTXDHelper helper(plugins, failures);
    for (std::uint32_t entry = 0; entry < archive.EntryCount(); ++entry) {
        helper.AttachDictionary(*archive.File(), archive.EntryOffset(entry));
        for (const DictionaryTexture& texture : helper.DescribeAll())
            made.drawn.push_back({.picture = helper.ToBitmap(texture.index), .hasAlpha = texture.hasAlpha});
    }
    return made;
}

void ReportMemory(CTextureDatabase& database, double most, bool isCorrect, CReport& report)
{
    std::uint64_t records = 0;
    for (const CacheIndex cache : kAllCaches)
        for (const RecordKind kind : {RecordKind::Raster, RecordKind::Thumbnail})
            records += database.FileSize(cache, kind);
    const double texture =
        static_cast<double>(records) / kPictures + static_cast<double>(kSampleSide) * kSampleSide * 4;
    std::array<char, 64> measured{};
    std::snprintf(measured.data(), measured.size(), "%.2f MB above the open archive", most / 1e6);
    std::array<char, 64> baseline{};
    std::snprintf(baseline.data(), baseline.size(), "%.2f MB a texture with records", texture / 1e6);
    report.Add({.workload = "img-memory",
                .measured = measured.data(),
                .baseline = baseline.data(),
                .ratio = most / texture,
                .limit = kMostTexturesInMemory,
                .isCorrect = isCorrect});
}

void MeasureImporting(const std::filesystem::path& folder, CReport& report)
{
    CSilentPrompt prompt;
    const auto settings = OpenSettings(folder / "bench.ini");
    CPluginTable plugins;
    plugins.Discover(std::filesystem::read_symlink("/proc/self/exe").parent_path() / "plugins", prompt);
    plugins.BindFromSettings(*settings);
    if (plugins.Plugins().size() < 3)
        throw std::runtime_error("the plugins are missing");
    const DictionaryArchive made = MakeArchive(folder, plugins);
    CImgArchive archive;
    CTextureDatabase database(StreamMode::Framed, DiskFileSystem(), prompt);
    if (!archive.Open(made.file) || !database.Create(folder / "bench.txt", kAllCaches))
        throw std::runtime_error("cannot open the archive or create a database");
    CNoProgress progress;
    RW::CSilentFailures failures;
    CDirectHost host({database, plugins, *settings, prompt});
    const auto entries = ListArchive(archive, ArchiveRows::Dictionaries, progress);
    Times encoding;
    Times importing;
    std::uint64_t bytes = 0;
    double most = 0;
    ImportCounts counts;
    // Import and encoders take turns, so that a disturbance from outside meets both.
    constexpr std::size_t kEntriesATurn = kPicturesATurn / kTexturesADictionary;
    for (std::size_t turn = 0; turn < kPictures / kPicturesATurn; ++turn) {
        TimeEncoders(std::span(made.drawn).subspan(turn * kPicturesATurn, kPicturesATurn), plugins, encoding,
                     bytes);
        ResetHeapPeak();
        const std::size_t before = HeapBytes();
        importing.Add([&] {
            CArchiveImporter importer({database, plugins, *settings, host, prompt, progress, failures},
                                      {.jobs = kEncoderThreads});
            counts = importer.Run(archive, std::span(entries).subspan(turn * kEntriesATurn, kEntriesATurn));
        });
        most = std::max(most, static_cast<double>(HeapPeak() - before));
    }
    const bool isCorrect = IsWhole(database, kPictures) && prompt.Shown() == 0 && counts.failed == 0 &&
                           EncodedBytes(database) == bytes && bytes != 0;
    report.Add({.workload = "img-import",
                .measured = TimeText(importing.seconds) + ", 120 textures",
                .baseline = TimeText(encoding.seconds) + " encoders alone",
                .ratio = importing.seconds / encoding.seconds,
                .limit = kMostImportRatio,
                .isCorrect = isCorrect});
    report.Add({.workload = "img-work",
                .measured = TimeText(importing.processorSeconds) + " of processors",
                .baseline = TimeText(encoding.processorSeconds) + " encoders alone",
                .ratio = importing.processorSeconds / encoding.processorSeconds,
                .limit = {},
                .isCorrect = isCorrect});
    ReportMemory(database, most, isCorrect, report);
}

bool Concerns(const std::string& workload, const std::string& only)
{
    const std::size_t common = std::min(workload.size(), only.size());
    return workload.compare(0, common, only, 0, common) == 0;
}

}  // namespace

void MeasureArchives(const std::string& only, CReport& report)
{
    const CScratchFolder folder;
    if (Concerns("img-list", only))
        MeasureListing(folder.Path(), report);
    if (Concerns("img-sync", only))
        MeasureSynchronizing(folder.Path(), report);
    if (Concerns("img-import", only) || Concerns("img-work", only) || Concerns("img-memory", only))
        MeasureImporting(folder.Path(), report);
}

}  // namespace Bench
