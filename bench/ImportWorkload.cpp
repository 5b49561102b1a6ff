#include "bench/ImportWorkload.h"

#include <array>
#include <atomic>
#include <ctime>
#include <filesystem>
#include <stdexcept>
#include <thread>
#include <vector>

#include "base/Progress.h"
#include "bench/BigDatabase.h"
#include "bench/SilentPrompt.h"
#include "bench/Stopwatch.h"
#include "codec/MipChain.h"
#include "codec/PluginTable.h"
#include "demo/catalogue/Catalogue.h"
#include "image/BitmapTools.h"
#include "image/ImageFile.h"
#include "tools/ImportPictures.h"

namespace Bench {
namespace {
constexpr unsigned kThreads = 2;
constexpr std::uint32_t kSide = 256;
constexpr std::size_t kPictures = 500;
/// Import and encoders take turns, so that a disturbance from outside meets both.
constexpr std::size_t kPicturesATurn = 100;
/// 85 % of what the encoders alone do.
constexpr double kMostImportRatio = 1 / 0.85;

struct Sample {
    CBitmap picture;
    std::filesystem::path file;
    bool hasAlpha = false;
};

// A demo picture, turned about and with another tint each time that it comes up.
CBitmap Variation(const CBitmap& original, std::size_t round)
{
    auto picture = CBitmap::Create(kSide, kSide);
    if (!picture)
        throw std::runtime_error("there is not enough memory for the pictures");
    const auto source = original.Pixels();
    const std::size_t last = source.size() / 4 - 1;
    for (std::size_t pixel = 0; pixel <= last; ++pixel) {
        const std::size_t from = round % 2 == 0 ? pixel : last - pixel;
        for (std::size_t channel = 0; channel < 4; ++channel) {
            const std::size_t tint = channel == round % 3 ? 8 * round : 0;
            picture->Pixels()[pixel * 4 + channel] =
                static_cast<std::uint8_t>(std::min<std::size_t>(source[from * 4 + channel] + tint, 255));
        }
    }
    return std::move(*picture);
}

std::vector<CBitmap> DrawnPictures()
{
    std::vector<CBitmap> pictures;
    for (const Demo::Picture& picture : Demo::AllPictures())
        if (picture.category != "radar")
            if (auto scaled = ScaleBitmap(picture.draw().ToBitmap(), kSide, kSide))
                pictures.push_back(std::move(*scaled));
    if (pictures.empty())
        throw std::runtime_error("there are no demo pictures");
    return pictures;
}

// Every other turn is imported with alpha.
std::vector<Sample> WriteSamples(const std::filesystem::path& folder)
{
    const auto drawn = DrawnPictures();
    std::vector<Sample> samples;
    for (std::size_t i = 0; i < kPictures; ++i) {
        Sample& sample = samples.emplace_back();
        sample.picture = Variation(drawn[i % drawn.size()], i / drawn.size());
        sample.file = folder / ("picture" + std::to_string(i) + ".png");
        sample.hasAlpha = i / kPicturesATurn % 2 == 1;
        if (!SaveImageFile(sample.file, sample.picture, ImageFormat::Png))
            throw std::runtime_error("cannot write the pictures");
    }
    return samples;
}

/// What the encoders get for one picture: every level of its chain.
struct Level {
    PixelSize size;
    std::vector<std::byte> pixels;
};

std::vector<Level> LevelsOf(const Sample& sample)
{
    std::vector<Level> levels;
    for (const PixelSize size : LevelSizes({kSide, kSide}, true))
        levels.push_back({size, ScaledRgbaPixels(sample.picture, size, sample.hasAlpha)});
    return levels;
}

std::uint64_t EncodeAll(const std::vector<Level>& levels, bool hasAlpha, const CPluginTable& plugins,
                        std::vector<std::byte>& out)
{
    std::uint64_t bytes = 0;
    for (const CacheIndex cache : {CacheIndex::Dxt, CacheIndex::Etc1, CacheIndex::Pvrtc}) {
        // ETC1 has no alpha; its cache gets packed pixels then.
        if (cache == CacheIndex::Etc1 && hasAlpha)
            continue;
        std::uint32_t flags = 0;
        if (hasAlpha)
            flags |= MavrelAlpha;
        if (cache == CacheIndex::Dxt)
            flags |= hasAlpha ? MavrelInterpolatedAlpha : MavrelDxt1;
        for (const Level& level : levels)
            bytes += plugins.Compress(cache)(level.pixels.data(), out.data(), level.size.width,
                                             level.size.height, hasAlpha ? 4 : 2, flags);
    }
    return bytes;
}

struct Times {
    double seconds = 0;
    double processorSeconds = 0;  // of all threads together

    template <class Work>
    void Add(Work work)
    {
        const std::clock_t start = std::clock();
        seconds += ShortestRun(1, work);
        processorSeconds += static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    }
};

/// Runs the encoders alone for some samples; adds up what they wrote.
void TimeEncoders(std::span<const Sample> samples, const CPluginTable& plugins, Times& times,
                  std::uint64_t& bytes)
{
    std::vector<std::vector<Level>> chains;
    for (const Sample& sample : samples)
        chains.push_back(LevelsOf(sample));
    std::atomic<std::size_t> next = 0;
    std::atomic<std::uint64_t> written = 0;
    const auto work = [&] {
        std::vector<std::byte> out(std::size_t{kSide} * kSide * 4);
        for (std::size_t i = next++; i < samples.size(); i = next++)
            written += EncodeAll(chains[i], samples[i].hasAlpha, plugins, out);
    };
    times.Add([&] {
        std::vector<std::jthread> threads;
        for (unsigned i = 0; i < kThreads; ++i)
            threads.emplace_back(work);
    });
    bytes += written;
}

/// What of a database the encoders wrote.
std::uint64_t EncodedBytes(CTextureDatabase& database)
{
    std::uint64_t bytes = 0;
    for (const CacheIndex cache : {CacheIndex::Dxt, CacheIndex::Etc1, CacheIndex::Pvrtc})
        for (std::uint32_t i = 0; i < database.EntryCount(); ++i) {
            const RasterHeader header = database.ReadHeader(i, cache);
            if (header.glFormat != GlFormat::Rgba4444)
                bytes += RasterSize(header);
        }
    return bytes;
}

bool IsWhole(const CTextureDatabase& database)
{
    bool isWhole = database.EntryCount() == kPictures;
    for (const CacheIndex cache : kAllCaches)
        isWhole = isWhole && database.IsTocValid(cache) && database.HasThumbnails(cache);
    return isWhole;
}
}  // namespace

void MeasureImport(CReport& report)
{
    const CScratchFolder folder;
    const auto samples = WriteSamples(folder.Path());
    CSilentPrompt prompt;
    const auto settings = OpenSettings(folder.Path() / "bench.ini");
    CPluginTable plugins;
    plugins.Discover(std::filesystem::read_symlink("/proc/self/exe").parent_path() / "plugins", prompt);
    plugins.BindFromSettings(*settings);
    if (plugins.Plugins().size() < 3)
        throw std::runtime_error("the plugins are missing");
    CTextureDatabase database(StreamMode::Framed, DiskFileSystem(), prompt);
    if (!database.Create(folder.Path() / "bench.txt", kAllCaches))
        throw std::runtime_error("cannot create a database");
    CNoProgress progress;
    CPictureImporter importer(database, plugins, *settings, prompt, progress, {.jobs = kThreads});

    Times encoding;
    Times importing;
    std::uint64_t bytes = 0;
    for (std::size_t first = 0; first < kPictures; first += kPicturesATurn) {
        const auto turn = std::span(samples).subspan(first, kPicturesATurn);
        TimeEncoders(turn, plugins, encoding, bytes);
        std::vector<std::filesystem::path> files;
        for (const Sample& sample : turn)
            files.push_back(sample.file);
        importing.Add([&] { importer.Run(files, {.hasAlpha = turn.front().hasAlpha}); });
    }
    const bool isCorrect =
        IsWhole(database) && prompt.Shown() == 0 && EncodedBytes(database) == bytes && bytes != 0;
    report.Add({.workload = "import",
                .measured = TimeText(importing.seconds) + ", 500 pictures",
                .baseline = TimeText(encoding.seconds) + " encoders alone",
                .ratio = importing.seconds / encoding.seconds,
                .limit = kMostImportRatio,
                .isCorrect = isCorrect});
    report.Add({.workload = "import-work",
                .measured = TimeText(importing.processorSeconds) + " of processors",
                .baseline = TimeText(encoding.processorSeconds) + " encoders alone",
                .ratio = importing.processorSeconds / encoding.processorSeconds,
                .limit = {},
                .isCorrect = isCorrect});
}

}  // namespace Bench
