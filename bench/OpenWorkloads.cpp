#include "bench/OpenWorkloads.h"

#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <unistd.h>

#include "bench/BigDatabase.h"
#include "bench/SilentPrompt.h"
#include "bench/Stopwatch.h"
#include "database/TextureDatabase.h"

namespace Bench {
namespace {
constexpr int kRounds = 6;
constexpr double kMostOpenRatio = 6;
constexpr double kMostHeaderRatio = 3;
constexpr double kMostMegabytes = 24;

// A descriptor that closes itself.
class CPlainFile {
public:
    explicit CPlainFile(const std::filesystem::path& file) : m_nDescriptor(::open(file.c_str(), O_RDONLY))
    {
        if (m_nDescriptor < 0)
            throw std::runtime_error("cannot open " + file.string());
    }
    ~CPlainFile() { ::close(m_nDescriptor); }
    CPlainFile(const CPlainFile&) = delete;
    CPlainFile& operator=(const CPlainFile&) = delete;
    int Descriptor() const { return m_nDescriptor; }

private:
    int m_nDescriptor;
};

std::filesystem::path CachePath(const std::filesystem::path& list, CacheIndex cache, const char* extension)
{
    std::filesystem::path path = list;
    path.replace_extension(CacheInfix(cache));
    path += extension;
    return path;
}

// Reads a whole file in pieces that stay in the processor's cache; returns its length.
std::uint64_t ReadPlainly(const std::filesystem::path& file, std::vector<std::byte>& buffer)
{
    const CPlainFile plain(file);
    std::uint64_t total = 0;
    for (;;) {
        const ssize_t got = ::read(plain.Descriptor(), buffer.data(), buffer.size());
        if (got <= 0)
            return total;
        KeepAlive(buffer.data());
        total += static_cast<std::uint64_t>(got);
    }
}

std::uint64_t ReadEverythingPlainly(const std::filesystem::path& list)
{
    std::vector<std::byte> buffer(std::size_t{1} << 16);
    std::uint64_t total = ReadPlainly(list, buffer);
    for (const CacheIndex cache : kAllCaches) {
        total += ReadPlainly(CachePath(list, cache, ".toc"), buffer);
        total += ReadPlainly(CachePath(list, cache, ".tmb"), buffer);
    }
    return total;
}

// True when the database is open as it was written: all entries, whole tables, all thumbnails.
bool IsWhole(const CTextureDatabase& database)
{
    bool isWhole = database.EntryCount() == kBigDatabaseEntries;
    for (const CacheIndex cache : kAllCaches)
        isWhole = isWhole && database.IsTocValid(cache) && database.HasThumbnails(cache);
    return isWhole;
}

std::uint64_t SumOf(const RasterHeader& header)
{
    return std::uint64_t{header.nameHash16} + header.glFormat + header.width + header.heightAndMips;
}

// One positioned read of 8 bytes for every record, the headers taken apart like any reader must.
std::uint64_t SumHeadersPlainly(const std::array<std::unique_ptr<CPlainFile>, kCacheCount>& files,
                                const CTextureDatabase& database)
{
    std::uint64_t sum = 0;
    for (const CacheIndex cache : kAllCaches)
        for (const std::uint32_t offset : database.OffsetList(cache)) {
            if (offset == kNone)
                continue;
            std::array<unsigned char, 8> bytes{};
            if (::pread(files[SlotOf(cache)]->Descriptor(), bytes.data(), bytes.size(), offset) != 8)
                throw std::runtime_error("a record is missing");
            for (std::size_t i = 0; i < bytes.size(); i += 2)
                sum += bytes[i] + 256U * bytes[i + 1];
        }
    return sum;
}

std::uint64_t SumHeaders(CTextureDatabase& database)
{
    std::uint64_t sum = 0;
    for (const CacheIndex cache : kAllCaches)
        for (std::uint32_t i = 0; i < database.EntryCount(); ++i)
            if (database.OffsetList(cache)[i] != kNone)
                sum += SumOf(database.ReadHeader(i, cache));
    return sum;
}
}  // namespace

void MeasureOpening(const std::filesystem::path& list, CReport& report)
{
    bool isWhole = true;
    CSilentPrompt prompt;
    std::uint64_t bytes = 0;
    double opening = 1e30;
    double reading = 1e30;
    // Taken in turns, so that a disturbance from outside meets both.
    for (int round = 0; round < kRounds; ++round) {
        opening = std::min(opening, ShortestRun(4, [&] {
                               CTextureDatabase database(StreamMode::Auto, DiskFileSystem(), prompt);
                               database.Open(list);
                               isWhole = isWhole && IsWhole(database);
                           }));
        reading = std::min(reading, ShortestRun(4, [&] { bytes = ReadEverythingPlainly(list); }));
    }
    char plain[64];
    std::snprintf(plain, sizeof plain, "%s, %.1f MB plain", TimeText(reading).c_str(),
                  static_cast<double>(bytes) / 1e6);
    report.Add({.workload = "open",
                .measured = TimeText(opening) + ", 20000 entries",
                .baseline = plain,
                .ratio = opening / reading,
                .limit = kMostOpenRatio,
                .isCorrect = isWhole && prompt.Shown() == 0});
}

void MeasureHeaders(const std::filesystem::path& list, CReport& report)
{
    CSilentPrompt prompt;
    CTextureDatabase database(StreamMode::Auto, DiskFileSystem(), prompt);
    database.Open(list);
    std::array<std::unique_ptr<CPlainFile>, kCacheCount> files;
    for (const CacheIndex cache : kAllCaches)
        files[SlotOf(cache)] = std::make_unique<CPlainFile>(CachePath(list, cache, ".dat"));
    std::uint64_t sum = 0;
    std::uint64_t plainSum = 0;
    const double listing = ShortestRun(5, [&] { sum = SumHeaders(database); });
    const double reading = ShortestRun(5, [&] { plainSum = SumHeadersPlainly(files, database); });
    report.Add({.workload = "headers",
                .measured = TimeText(listing) + ", 72000 headers",
                .baseline = TimeText(reading) + " positioned reads",
                .ratio = listing / reading,
                .limit = kMostHeaderRatio,
                .isCorrect = sum == plainSum && sum != 0});
}

void MeasureMemory(const std::filesystem::path& self, const std::filesystem::path& list, CReport& report)
{
    std::string command = "'";
    command.append(self.string()).append("' --resident '").append(list.string()).append("'");
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(command.c_str(), "r"), ::pclose);
    long kib = 0;
    const bool isTold = pipe && std::fscanf(pipe.get(), "%ld", &kib) == 1;
    const double megabytes = static_cast<double>(kib) * 1024 / 1e6;
    char measured[64];
    std::snprintf(measured, sizeof measured, "%.1f MB resident when open", megabytes);
    report.Add({.workload = "open-memory",
                .measured = measured,
                .baseline = "1 MB above an empty process",
                .ratio = megabytes,
                .limit = kMostMegabytes,
                .isCorrect = isTold && kib > 0});
}

int PrintResidentGrowth(const std::filesystem::path& list, long emptyKib)
{
    CSilentPrompt prompt;
    CTextureDatabase database(StreamMode::Auto, DiskFileSystem(), prompt);
    database.Open(list);
    const long kib = ResidentKib() - emptyKib;
    std::printf("%ld\n", IsWhole(database) ? kib : 0);
    return 0;
}

long ResidentKib()
{
    std::ifstream statm("/proc/self/statm");
    long total = 0;
    long resident = 0;
    if (!(statm >> total >> resident))
        return 0;
    return resident * (::sysconf(_SC_PAGESIZE) / 1024);
}

}  // namespace Bench
