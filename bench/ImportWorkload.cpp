#include "bench/ImportWorkload.h"

#include <filesystem>
#include <span>
#include <stdexcept>
#include <vector>

#include "base/Progress.h"
#include "bench/BigDatabase.h"
#include "bench/EncoderWork.h"
#include "bench/SilentPrompt.h"
#include "codec/PluginTable.h"
#include "image/ImageFile.h"
#include "tools/ImportPictures.h"

namespace Bench {
namespace {
constexpr std::size_t kPictures = 500;
/// Import and encoders take turns, so that a disturbance from outside meets both.
constexpr std::size_t kPicturesATurn = 100;
/// 85 % of what the encoders alone do.
constexpr double kMostImportRatio = 1 / 0.85;

std::vector<std::filesystem::path> WriteFiles(std::span<const EncoderSample> samples,
                                              const std::filesystem::path& folder)
{
    std::vector<std::filesystem::path> files;
    for (const EncoderSample& sample : samples) {
        files.push_back(folder / ("picture" + std::to_string(files.size()) + ".png"));
        if (!SaveImageFile(files.back(), sample.picture, ImageFormat::Png))
            throw std::runtime_error("cannot write the pictures");
    }
    return files;
}
}  // namespace

void MeasureImport(CReport& report)
{
    const CScratchFolder folder;
    // Every other turn is imported with alpha.
    const auto samples = MakeSamples(kPictures, kPicturesATurn);
    const auto files = WriteFiles(samples, folder.Path());
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
    CPictureImporter importer(database, plugins, *settings, prompt, progress, {.jobs = kEncoderThreads});

    Times encoding;
    Times importing;
    std::uint64_t bytes = 0;
    for (std::size_t first = 0; first < kPictures; first += kPicturesATurn) {
        const auto turn = std::span(samples).subspan(first, kPicturesATurn);
        TimeEncoders(turn, plugins, encoding, bytes);
        const std::vector<std::filesystem::path> filesOfTurn(
            files.begin() + static_cast<std::ptrdiff_t>(first),
            files.begin() + static_cast<std::ptrdiff_t>(first + kPicturesATurn));
        importing.Add([&] { importer.Run(filesOfTurn, {.hasAlpha = turn.front().hasAlpha}); });
    }
    const bool isCorrect =
        IsWhole(database, kPictures) && prompt.Shown() == 0 && EncodedBytes(database) == bytes && bytes != 0;
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
