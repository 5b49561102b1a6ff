#include "bench/ConvertWorkload.h"

#include <atomic>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <thread>

#include "base/Progress.h"
#include "bench/BigDatabase.h"
#include "bench/EncoderWork.h"
#include "bench/SilentPrompt.h"
#include "codec/ImagePreparation.h"
#include "codec/MipChain.h"
#include "tools/Converter.h"

namespace Bench {
namespace {

constexpr std::size_t kTextures = 1000;
/// Converter and codecs take turns, so that a disturbance from outside meets both.
constexpr std::size_t kTexturesATurn = 200;
/// 85 % of what the codecs alone do.
constexpr double kMostConvertRatio = 1 / 0.85;
/// The fastest pair of codecs, beside which everything else weighs most.
constexpr ConversionRequest kRequest = {CacheIndex::Etc1, CacheIndex::Dxt};

/// What the codecs get for one texture: the stored level and the chain that is encoded.
struct Work {
    std::vector<std::byte> raster;
    std::vector<std::vector<std::byte>> levels;
};

void FillSource(CTextureDatabase& database, std::span<const EncoderSample> samples,
                const CPluginTable& plugins, const ISettings& settings)
{
    for (const EncoderSample& sample : samples)
        PrepareAndStore(database, plugins, settings, sample.picture,
                        {.name = L"texture" + std::to_wstring(database.EntryCount()),
                         .hasAlpha = false,
                         .streamMode = StreamMode::Framed});
}

std::vector<Work> WorkOf(CTextureDatabase& database, std::span<const EncoderSample> samples)
{
    std::vector<Work> work(samples.size());
    for (std::uint32_t i = 0; i < work.size(); ++i) {
        work[i].raster = database.ReadRaster(i, kRequest.source, RecordKind::Raster).value();
        for (const PixelSize size : LevelSizes({kSampleSide, kSampleSide}, true))
            work[i].levels.push_back(ScaledRgbaPixels(samples[i].picture, size, false));
    }
    return work;
}

std::uint64_t RunCodecs(const Work& work, const CPluginTable& plugins, std::vector<std::byte>& out)
{
    plugins.Decompress(kRequest.source)(work.raster.data(), out.data(), kSampleSide, kSampleSide, 0, 0);
    std::uint64_t bytes = 0;
    const auto sizes = LevelSizes({kSampleSide, kSampleSide}, true);
    for (std::size_t level = 0; level < sizes.size(); ++level)
        bytes += plugins.Compress(kRequest.target)(work.levels[level].data(), out.data(), sizes[level].width,
                                                   sizes[level].height, 2, MavrelDxt1);
    return bytes;
}

/// Runs the codecs alone; returns what the encoder wrote.
std::uint64_t TimeCodecs(const std::vector<Work>& work, const CPluginTable& plugins, Times& times)
{
    std::atomic<std::size_t> next = 0;
    std::atomic<std::uint64_t> written = 0;
    const auto run = [&] {
        std::vector<std::byte> out(std::size_t{kSampleSide} * kSampleSide * 4);
        for (std::size_t i = next++; i < work.size(); i = next++)
            written += RunCodecs(work[i], plugins, out);
    };
    times.Add([&] {
        std::vector<std::jthread> threads;
        for (unsigned i = 0; i < kEncoderThreads; ++i)
            threads.emplace_back(run);
    });
    return written;
}

std::uint64_t RasterBytes(CTextureDatabase& database, CacheIndex cache)
{
    std::uint64_t bytes = 0;
    for (std::uint32_t i = 0; i < database.EntryCount(); ++i)
        bytes += RasterSize(database.ReadHeader(i, cache));
    return bytes;
}

}  // namespace

void MeasureConverting(CReport& report)
{
    const CScratchFolder folder;
    const auto settings = OpenSettings(folder.Path() / "bench.ini");
    CSilentPrompt prompt;
    CPluginTable plugins;
    plugins.Discover(std::filesystem::read_symlink("/proc/self/exe").parent_path() / "plugins", prompt);
    plugins.BindFromSettings(*settings);
    if (plugins.Plugins().size() < 3)
        throw std::runtime_error("the plugins are missing");
    const auto samples = MakeSamples(kTextures, kTextures);
    CNoProgress progress;
    Times codecs;
    Times converting;
    bool isCorrect = true;
    for (std::size_t first = 0; first < kTextures; first += kTexturesATurn) {
        const auto turn = std::span(samples).subspan(first, kTexturesATurn);
        CTextureDatabase database(StreamMode::Framed, DiskFileSystem(), prompt);
        const auto list = folder.Path() / ("bench" + std::to_string(first) + ".txt");
        if (!database.Create(list, std::span(&kRequest.source, 1)))
            throw std::runtime_error("cannot create a database");
        FillSource(database, turn, plugins, *settings);
        const std::uint64_t bytes = TimeCodecs(WorkOf(database, turn), plugins, codecs);
        CConverter converter({database, plugins, *settings, prompt, progress}, {.jobs = kEncoderThreads});
        ConversionCounts counts;
        converting.Add([&] { counts = converter.Run(kRequest); });
        isCorrect = isCorrect && counts.converted + counts.aliases == kTexturesATurn &&
                    database.IsTocValid(kRequest.target) && RasterBytes(database, kRequest.target) == bytes;
    }
    isCorrect = isCorrect && prompt.Shown() == 0;
    report.Add({.workload = "convert",
                .measured = TimeText(converting.seconds) + ", 1000 textures",
                .baseline = TimeText(codecs.seconds) + " codecs alone",
                .ratio = converting.seconds / codecs.seconds,
                .limit = kMostConvertRatio,
                .isCorrect = isCorrect});
    report.Add({.workload = "convert-work",
                .measured = TimeText(converting.processorSeconds) + " of processors",
                .baseline = TimeText(codecs.processorSeconds) + " codecs alone",
                .ratio = converting.processorSeconds / codecs.processorSeconds,
                .limit = {},
                .isCorrect = isCorrect});
}

}  // namespace Bench
