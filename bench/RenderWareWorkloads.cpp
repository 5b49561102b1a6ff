#include "bench/RenderWareWorkloads.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <stdexcept>
#include <utility>

#include "base/ByteReader.h"
#include "bench/BigDatabase.h"
#include "bench/CountingFileSystem.h"
#include "bench/DxtDictionary.h"
#include "bench/Stopwatch.h"
#include "plugins/dxt/Dxt.h"
#include "rw/ModelTextures.h"
#include "tests/support/RenderWareFiles.h"
#include "tools/TXDHelper.h"

namespace Bench {
namespace {

constexpr std::uint32_t kTextures = 240;
constexpr std::uint32_t kModels = 1000;
constexpr std::size_t kModelBytes = 50000;
constexpr double kMostBytesRead = 0.01;
constexpr double kMostDecodingRatio = 1.25;  // 80 % of the speed
constexpr double kMostModelRatio = 4;

std::uint32_t DecodeDxt(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                        std::uint32_t /*mode*/, std::uint32_t flags)
{
    const auto variant = Dxt::VariantOf(flags);
    return variant ? Dxt::Decompress(source, destination, width, height, *variant) : 0;
}

void WriteFile(const std::filesystem::path& file, const RwFile::Bytes& bytes)
{
    if (!WriteWholeFile(DiskFileSystem(), file, bytes))
        throw std::runtime_error("cannot write " + file.string());
}

void MeasureListing(const std::filesystem::path& file, CReport& report)
{
    const auto size = static_cast<double>(std::filesystem::file_size(file));
    const CPluginTable plugins;
    RW::CSilentFailures failures;
    std::size_t listed = 0;
    std::uint64_t bytes = 0;
    const double seconds = ShortestRun(5, [&] {
        CCountingFileSystem files;
        CTXDHelper helper(plugins, failures, files);
        helper.OpenDictionary(file);
        listed = helper.DescribeAll().size();
        bytes = files.Bytes();
    });
    std::array<char, 64> measured{};
    std::snprintf(measured.data(), measured.size(), "%.0f KB read, %s", static_cast<double>(bytes) / 1e3,
                  TimeText(seconds).c_str());
    std::array<char, 64> baseline{};
    std::snprintf(baseline.data(), baseline.size(), "%.0f MB of %u textures", size / 1e6, kTextures);
    report.Add({.workload = "rw-list",
                .measured = measured.data(),
                .baseline = baseline.data(),
                .ratio = static_cast<double>(bytes) / size,
                .limit = kMostBytesRead,
                .isCorrect = listed == kTextures});
}

void MeasureDecodingDictionary(const std::filesystem::path& file, CReport& report)
{
    CPluginTable plugins;
    plugins.BindFunctions(CacheIndex::Dxt, nullptr, DecodeDxt);
    RW::CSilentFailures failures;
    CTXDHelper helper(plugins, failures);
    helper.OpenDictionary(file);
    // The same bytes as in the file, already in memory.
    std::vector<RwFile::Bytes> levels;
    for (std::uint32_t i = 0; i < kTextures; ++i)
        levels.push_back(DictionaryLevel(i));
    CBitmap bare;
    bool isCorrect = true;
    double ours = 1e30;
    double decoding = 1e30;
    // Taken in turns, so that a disturbance from outside meets both.
    for (int round = 0; round < 5; ++round) {
        ours = std::min(ours, ShortestRun(1, [&] {
                            for (std::uint32_t i = 0; i < kTextures; ++i)
                                isCorrect = helper.ToBitmap(i).Width() == kDictionarySide && isCorrect;
                        }));
        decoding = std::min(decoding, ShortestRun(1, [&] {
                                for (std::uint32_t i = 0; i < kTextures; ++i) {
                                    bare = CBitmap::Create(kDictionarySide, kDictionarySide).value();
                                    DecodeDxt(levels[i].data(), bare.Pixels().data(), kDictionarySide,
                                              kDictionarySide, 0, MavrelAlpha);
                                    KeepAlive(bare.Pixels().data());
                                }
                            }));
    }
    const CBitmap bitmap = helper.ToBitmap(kTextures - 1);
    const auto drawn = bitmap.Pixels();
    const auto decoded = std::as_const(bare).Pixels();
    for (std::size_t at = 0; at < drawn.size(); at += 4)
        isCorrect = isCorrect && drawn[at] == decoded[at + 2] && drawn[at + 1] == decoded[at + 1] &&
                    drawn[at + 2] == decoded[at] && drawn[at + 3] == decoded[at + 3];
    report.Add({.workload = "rw-decode",
                .measured = TimeText(ours) + " from the file",
                .baseline = TimeText(decoding) + " in the codec",
                .ratio = ours / decoding,
                .limit = kMostDecodingRatio,
                .isCorrect = isCorrect});
}

RwFile::Bytes BigModel()
{
    std::vector<RwFile::Bytes> materials;
    materials.reserve(12);
    for (int i = 0; i < 12; ++i)
        materials.push_back(RwFile::Material({.textures = {"texture" + std::to_string(i)}}));
    const RwFile::Bytes list = RwFile::MaterialList(materials);
    return RwFile::Clump({RwFile::Geometry(list, kModelBytes - list.size() - 200)});
}

/// One positioned 12-byte read for every section, in the same file order and with the same containers.
std::uint32_t CountHeadersPlainly(const IFile& file, std::uint64_t position, std::uint64_t end)
{
    constexpr std::array<std::uint32_t, 8> kContainers = {0x03, 0x06, 0x07, 0x08, 0x0E, 0x0F, 0x10, 0x1A};
    std::uint32_t count = 0;
    while (position < end) {
        std::array<std::byte, RW::kHeaderBytes> bytes{};
        if (file.ReadAt(position, bytes) != bytes.size())
            throw std::runtime_error("a section is missing");
        CByteReader in(bytes);
        const std::uint32_t id = in.U32();
        const std::uint64_t size = in.U32();
        ++count;
        if (std::find(kContainers.begin(), kContainers.end(), id) != kContainers.end())
            count +=
                CountHeadersPlainly(file, position + RW::kHeaderBytes, position + RW::kHeaderBytes + size);
        position += RW::kHeaderBytes + size;
    }
    return count;
}

void MeasureModels(const std::filesystem::path& folder, CReport& report)
{
    const RwFile::Bytes model = BigModel();
    std::vector<std::filesystem::path> models;
    models.reserve(kModels);
    for (std::uint32_t i = 0; i < kModels; ++i) {
        models.push_back(folder / (std::to_string(i) + ".dff"));
        WriteFile(models.back(), model);
    }
    RW::CSilentFailures failures;
    std::size_t names = 0;
    std::size_t headers = 0;
    double listing = 1e30;
    double reading = 1e30;
    for (int round = 0; round < 5; ++round) {
        names = 0;
        headers = 0;
        listing = std::min(listing, ShortestRun(1, [&] {
                               for (const auto& file : models) {
                                   RW::CSimpleDFF opened(failures);
                                   opened.Open(file, 0, RW::kNoRootId, 0);
                                   names += RW::CollectTextureNames(opened).size();
                               }
                           }));
        reading = std::min(reading, ShortestRun(1, [&] {
                               for (const auto& file : models) {
                                   const auto opened = DiskFileSystem().Open(file, OpenMode::Read);
                                   headers += CountHeadersPlainly(*opened, 0, opened->Size());
                               }
                           }));
    }
    report.Add({.workload = "rw-models",
                .measured = TimeText(listing) + ", 1000 models of 50 KB",
                .baseline = TimeText(reading) + " positioned reads",
                .ratio = listing / reading,
                .limit = kMostModelRatio,
                .isCorrect = names == std::size_t{kModels} * 12 && headers != 0});
}

bool Concerns(const std::string& workload, const std::string& only)
{
    return workload.compare(0, std::min(workload.size(), only.size()), only, 0,
                            std::min(workload.size(), only.size())) == 0;
}

}  // namespace

void MeasureRenderWare(const std::string& only, CReport& report)
{
    const CScratchFolder folder;
    if (Concerns("rw-list", only) || Concerns("rw-decode", only)) {
        const std::filesystem::path file = folder.Path() / "big.txd";
        WriteFile(file, MakeDxtDictionary(kTextures));
        if (Concerns("rw-list", only))
            MeasureListing(file, report);
        if (Concerns("rw-decode", only))
            MeasureDecodingDictionary(file, report);
    }
    if (Concerns("rw-models", only))
        MeasureModels(folder.Path(), report);
}

}  // namespace Bench
