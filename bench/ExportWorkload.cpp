#include "bench/ExportWorkload.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <png.h>
#include <stdexcept>
#include <string>

#include "base/Progress.h"
#include "bench/BigDatabase.h"
#include "bench/EncoderWork.h"
#include "bench/SilentPrompt.h"
#include "codec/ImagePreparation.h"
#include "tools/ExportPictures.h"

namespace Bench {
namespace {

constexpr std::size_t kTextures = 200;
/// Export and loop take turns, so that a disturbance from outside meets both.
constexpr std::size_t kTexturesATurn = 40;
constexpr double kMostExportRatio = 1.0 / 3;

/// Some way to write files.
struct Writing {
    Times times;
    std::uint64_t bytes = 0;
};

void WriteByLibpng(const std::vector<CBitmap>& pictures, const std::filesystem::path& folder)
{
    for (std::size_t i = 0; i < pictures.size(); ++i) {
        png_image image{};
        image.version = PNG_IMAGE_VERSION;
        image.width = pictures[i].Width();
        image.height = pictures[i].Height();
        image.format = PNG_FORMAT_BGRA;
        const auto file = folder / (std::to_string(i) + ".png");
        if (png_image_write_to_file(&image, file.c_str(), 0, pictures[i].Pixels().data(), 0, nullptr) == 0)
            throw std::runtime_error("libpng cannot write a picture");
    }
}

bool HoldsPicture(const std::filesystem::path& file, const CBitmap& picture)
{
    const auto again = LoadImageFile(file);
    return again && again->Width() == picture.Width() &&
           std::ranges::equal(again->Pixels(), picture.Pixels());
}

std::uint64_t BytesIn(const std::filesystem::path& folder)
{
    std::uint64_t bytes = 0;
    for (const auto& file : std::filesystem::directory_iterator(folder))
        bytes += file.file_size();
    return bytes;
}

/// The loop and both exports of some textures; false when a file does not hold its picture.
class CExportTurns {
public:
    CExportTurns(CTextureDatabase& database, const CPluginTable& plugins, const std::filesystem::path& folder)
        : m_rDatabase(database), m_rPlugins(plugins), m_sFolder(folder)
    {
        for (const auto* const name : {"loop", "one", "two"})
            std::filesystem::create_directory(m_sFolder / name);
    }

    void Run(const std::vector<std::uint32_t>& entries)
    {
        std::vector<CBitmap> pictures;
        for (const std::uint32_t index : entries)
            pictures.push_back(
                TextureToExport(m_rDatabase, m_rPlugins, index, CacheIndex::Dxt, RecordKind::Raster).value());
        m_oLoop.times.Add([&] { WriteByLibpng(pictures, m_sFolder / "loop"); });
        m_oLoop.bytes += BytesIn(m_sFolder / "loop");
        Export(entries, pictures, 1, m_sFolder / "one", m_oOne);
        Export(entries, pictures, kEncoderThreads, m_sFolder / "two", m_oTwo);
    }

    void Report(CReport& report) const
    {
        AddLine(report, "export-png", m_oTwo, kMostExportRatio);
        AddLine(report, "export-png-1", m_oOne, {});
        report.Add({.workload = "export-png-work",
                    .measured = TimeText(m_oTwo.times.processorSeconds) + " of processors",
                    .baseline = TimeText(m_oLoop.times.processorSeconds) + " libpng",
                    .ratio = m_oTwo.times.processorSeconds / m_oLoop.times.processorSeconds,
                    .limit = {},
                    .isCorrect = m_bCorrect});
    }

private:
    void Export(const std::vector<std::uint32_t>& entries, const std::vector<CBitmap>& pictures,
                unsigned jobs, const std::filesystem::path& folder, Writing& writing)
    {
        CNoProgress progress;
        ExportCounts counts;
        writing.times.Add([&] {
            counts = ExportTextures(m_rDatabase, m_rPlugins, entries, {.jobs = jobs}, folder, progress);
        });
        m_bCorrect = m_bCorrect && counts.exported == entries.size();
        for (std::size_t i = 0; i < entries.size(); ++i) {
            const auto file = folder / (m_rDatabase.Entry(entries[i]).name + L".png");
            m_bCorrect = m_bCorrect && HoldsPicture(file, pictures[i]);
            writing.bytes += std::filesystem::file_size(file);
        }
    }

    void AddLine(CReport& report, const char* workload, const Writing& writing,
                 std::optional<double> limit) const
    {
        std::array<char, 64> measured{};
        std::snprintf(measured.data(), measured.size(), "%s, %zu textures, %.1f MB",
                      TimeText(writing.times.seconds).c_str(), kTextures,
                      static_cast<double>(writing.bytes) / 1e6);
        std::array<char, 64> baseline{};
        std::snprintf(baseline.data(), baseline.size(), "%s libpng, %.1f MB",
                      TimeText(m_oLoop.times.seconds).c_str(), static_cast<double>(m_oLoop.bytes) / 1e6);
        report.Add({.workload = workload,
                    .measured = measured.data(),
                    .baseline = baseline.data(),
                    .ratio = writing.times.seconds / m_oLoop.times.seconds,
                    .limit = limit,
                    .isCorrect = m_bCorrect});
    }

    CTextureDatabase& m_rDatabase;
    const CPluginTable& m_rPlugins;
    std::filesystem::path m_sFolder;
    Writing m_oLoop;
    Writing m_oOne;
    Writing m_oTwo;
    bool m_bCorrect = true;
};

}  // namespace

void MeasureExporting(CReport& report)
{
    const CScratchFolder folder;
    const auto settings = OpenSettings(folder.Path() / "bench.ini");
    CSilentPrompt prompt;
    CPluginTable plugins;
    plugins.Discover(std::filesystem::read_symlink("/proc/self/exe").parent_path() / "plugins", prompt);
    plugins.BindFromSettings(*settings);
    if (plugins.Decompress(CacheIndex::Dxt) == nullptr)
        throw std::runtime_error("the plugins are missing");
    constexpr CacheIndex kCache = CacheIndex::Dxt;
    CTextureDatabase database(StreamMode::Framed, DiskFileSystem(), prompt);
    if (!database.Create(folder.Path() / "bench.txt", std::span(&kCache, 1)))
        throw std::runtime_error("cannot create a database");
    for (const EncoderSample& sample : MakeSamples(kTextures, kTexturesATurn / 2))
        PrepareAndStore(database, plugins, *settings, sample.picture,
                        {.name = L"texture" + std::to_wstring(database.EntryCount()),
                         .hasAlpha = sample.hasAlpha,
                         .streamMode = StreamMode::Framed});
    CExportTurns turns(database, plugins, folder.Path());
    const auto all = EntriesToExport(database, std::nullopt, true);
    for (std::size_t first = 0; first < all.size(); first += kTexturesATurn) {
        const auto last = std::min(all.size(), first + kTexturesATurn);
        turns.Run({all.begin() + static_cast<std::ptrdiff_t>(first),
                   all.begin() + static_cast<std::ptrdiff_t>(last)});
    }
    turns.Report(report);
}

}  // namespace Bench
