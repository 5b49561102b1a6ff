#include "bench/DictionaryMemory.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <stdexcept>

#include "base/Progress.h"
#include "bench/BigDatabase.h"
#include "bench/DxtDictionary.h"
#include "bench/HeapPeak.h"
#include "bench/SilentPrompt.h"
#include "tools/ImportDictionary.h"

namespace Bench {
namespace {

constexpr std::uint32_t kTextures = 8;
constexpr std::size_t kBitmapBytes = std::size_t{kDictionarySide} * kDictionarySide * 4;

}  // namespace

void MeasureDictionaryMemory(CReport& report)
{
    const CScratchFolder folder;
    const std::filesystem::path file = folder.Path() / "textures.txd";
    if (!WriteWholeFile(DiskFileSystem(), file, MakeDxtDictionary(kTextures)))
        throw std::runtime_error("cannot write " + file.string());
    CSilentPrompt prompt;
    const auto settings = OpenSettings(folder.Path() / "bench.ini");
    CPluginTable plugins;
    plugins.Discover(std::filesystem::read_symlink("/proc/self/exe").parent_path() / "plugins", prompt);
    plugins.BindFromSettings(*settings);
    CTextureDatabase database(StreamMode::Framed, DiskFileSystem(), prompt);
    const std::array caches = {CacheIndex::Dxt, CacheIndex::Etc1};
    if (!database.Create(folder.Path() / "bench.txt", caches))
        throw std::runtime_error("cannot create a database");
    RW::CSilentFailures failures;
    CTXDHelper helper(plugins, failures);
    helper.OpenDictionary(file);
    const std::size_t listed = helper.DescribeAll().size();
    CNoProgress progress;
    CDictionaryImporter importer(database, plugins, *settings, prompt, progress, {.whileWaiting = [] {}});
    ResetHeapPeak();
    const std::size_t before = HeapBytes();
    const ImportCounts counts = importer.RunAll(helper);
    const auto most = static_cast<double>(HeapPeak() - before);
    constexpr double kAllowed = kDictionaryLevelBytes + kBitmapBytes;
    std::array<char, 64> measured{};
    std::snprintf(measured.data(), measured.size(), "%.2f MB above the list", most / 1e6);
    std::array<char, 64> baseline{};
    std::snprintf(baseline.data(), baseline.size(), "%.2f MB texture and bitmap", kAllowed / 1e6);
    report.Add({.workload = "rw-memory",
                .measured = measured.data(),
                .baseline = baseline.data(),
                .ratio = most / kAllowed,
                .limit = 1.0,
                .isCorrect = listed == kTextures && counts.imported == kTextures && prompt.Shown() == 0});
}

}  // namespace Bench
