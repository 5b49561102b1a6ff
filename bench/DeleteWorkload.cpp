#include "bench/DeleteWorkload.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <vector>

#include "base/Progress.h"
#include "bench/BigDatabase.h"
#include "bench/SilentPrompt.h"
#include "bench/Stopwatch.h"
#include "database/TextureDatabase.h"

namespace Bench {
namespace {
constexpr int kRounds = 10;
constexpr std::uint32_t kDeleted = 500;
constexpr double kMostDeleteRatio = 2;

// All over the database; none of them has an alias.
std::vector<std::uint32_t> IndicesToDelete()
{
    std::vector<std::uint32_t> indices;
    for (std::uint32_t i = 0; i < kDeleted; ++i)
        indices.push_back(i * (kBigDatabaseEntries / kDeleted) + 3);
    return indices;
}

std::vector<std::filesystem::path> FilesIn(const std::filesystem::path& folder)
{
    std::vector<std::filesystem::path> files;
    for (const auto& item : std::filesystem::directory_iterator(folder))
        files.push_back(item.path());
    return files;
}

// Reads the file, writes it beside itself and puts that into its place. As in every edit, the list is waited
// for until the device holds it.
void RewritePlainly(const std::filesystem::path& file, std::vector<std::byte>& buffer)
{
    auto beside = file;
    beside += ".new";
    {
        const auto source = DiskFileSystem().Open(file, OpenMode::Read);
        const auto target = DiskFileSystem().Open(beside, OpenMode::Truncate);
        if (!source || !target)
            throw std::runtime_error("cannot rewrite " + file.string());
        std::uint64_t at = 0;
        for (std::size_t got = 0; (got = source->ReadAt(at, buffer)) != 0; at += got)
            if (!target->WriteAt(at, std::span(buffer).first(got)))
                throw std::runtime_error("cannot rewrite " + file.string());
        if (file.extension() == ".txt")
            target->Sync();
    }
    std::filesystem::rename(beside, file);
}

// True when what is left is whole, and the deleted textures are gone.
bool IsWhole(const std::filesystem::path& list, const std::vector<std::uint32_t>& deleted,
             const std::filesystem::path& original)
{
    CSilentPrompt prompt;
    CTextureDatabase before(StreamMode::Auto, DiskFileSystem(), prompt);
    before.Open(original);
    CTextureDatabase after(StreamMode::Auto, DiskFileSystem(), prompt);
    after.Open(list);
    bool isWhole = after.EntryCount() == kBigDatabaseEntries - kDeleted;
    for (const CacheIndex cache : kAllCaches)
        isWhole = isWhole && after.IsTocValid(cache) && after.HasThumbnails(cache);
    std::uint32_t place = 0;
    for (std::uint32_t i = 0; isWhole && i < kBigDatabaseEntries; ++i) {
        if (std::ranges::binary_search(deleted, i))
            continue;
        isWhole = after.Entry(place).name == before.Entry(i).name &&
                  after.ReadRaster(place, CacheIndex::Pvrtc, RecordKind::Raster) ==
                      before.ReadRaster(i, CacheIndex::Pvrtc, RecordKind::Raster);
        ++place;
    }
    return isWhole && prompt.Shown() == 0;
}
}  // namespace

void MeasureDeleting(const std::filesystem::path& list, CReport& report)
{
    const auto indices = IndicesToDelete();
    const std::filesystem::path copy = list.parent_path() / "copy";
    const auto copyList = copy / list.filename();
    bool isCorrect = true;
    double deleting = 1e30;
    double rewriting = 1e30;
    std::vector<std::byte> buffer(std::size_t{1} << 20);
    for (int round = 0; round < kRounds; ++round) {
        std::filesystem::create_directory(copy);
        for (const auto& file : FilesIn(list.parent_path()))
            if (std::filesystem::is_regular_file(file))
                std::filesystem::copy_file(file, copy / file.filename());
        rewriting = std::min(rewriting, ShortestRun(1, [&] {
                                 for (const auto& file : FilesIn(copy))
                                     RewritePlainly(file, buffer);
                             }));
        {
            CSilentPrompt prompt;
            CNoProgress progress;
            CTextureDatabase database(StreamMode::Auto, DiskFileSystem(), prompt);
            database.Open(copyList);
            deleting = std::min(deleting, ShortestRun(1, [&] {
                                    isCorrect = database.DeleteEntries(indices, progress) && isCorrect;
                                }));
            isCorrect = isCorrect && prompt.Shown() == 0;
        }
        isCorrect = isCorrect && (round != 0 || IsWhole(copyList, indices, list));
        std::filesystem::remove_all(copy);
    }
    report.Add({.workload = "delete",
                .measured = TimeText(deleting) + ", 500 of 20000",
                .baseline = TimeText(rewriting) + " rewriting files",
                .ratio = deleting / rewriting,
                .limit = kMostDeleteRatio,
                .isCorrect = isCorrect});
}

}  // namespace Bench
