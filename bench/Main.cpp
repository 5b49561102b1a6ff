// mavrel-bench [--pictures DIR] [--only PREFIX] [--table FILE] [--check]
//
// Measures how fast the core is, each workload against a baseline of the same run, so that the ratios can be
// compared between machines. Results are checked; a wrong one ends the run with exit code 1.
//
//   open                 opening a database of 20000 entries with four caches, tables of contents and
//                        thumbnails, with all checks, against reading the same list, tables and thumbnails
//   open-memory          resident memory with that database open, above an empty process
//   headers              every header of every cache, against one positioned 8-byte read each
//   delete               deleting 500 of its textures in one batch, against reading and writing each file
//                        once
//   import               importing 500 pictures of 256 x 256 pixels into four caches with two threads,
//                        against the calls of the encoders alone on two threads, normal quality
//   import-work          the same in processor time, which other programs disturb less
//   convert              converting 1000 textures of 256 x 256 pixels from ETC1 to DXT with two threads,
//                        against the calls of decoder and encoder alone on two threads, normal quality
//   convert-work         the same in processor time
//   export-png           exporting 200 textures of 256 x 256 pixels from DXT to PNG with two threads, against
//                        one thread that writes the decoded pictures by libpng with its default settings
//   export-png-1         the same with one thread
//   export-png-work      the first in processor time
//   optimize-md5         making 1000 of 5000 textures aliases by their digests, against reading the .dat
//                        once, hashing it once and writing the resulting files once
//   optimize-md5-steps   the same made one by one; reckoned from 20 of them
//   optimize-diff        finding 100 duplicates among 2000 textures of one size by differing bytes, against a
//                        50th of comparing every pair in full, which is reckoned from 250 textures
//   optimize-diff-decoded
//                        the same with decoded pictures
//   decode-FORMAT        one level of 512 x 512 pixels on one thread, against copying its 1 MiB of output.
//                        DXT1 DXT1-A DXT3 DXT5 ETC1 PVRTC2 PVRTC4 through their decoders; RGBA8888 RGB888
//                        RGBA4444 RGBA5551 RGB565 LUM16 LUM8 PAL8 PAL4 through RasterToBitmap
//   rw-list              bytes read to list the textures of a 60 MB dictionary, against its length
//   rw-decode            drawing all of them, against the decoder alone
//   rw-memory            memory at most while importing a dictionary into two caches, above the open one,
//                        against its largest texture and that texture's bitmap
//   rw-models            the texture names of 1000 models, against one positioned read for each section
//   img-list             opening an archive of 20000 entries and listing its dictionaries, against reading
//                        its directory
//   img-sync             bytes read for the texture names of 2000 models in an archive, against its length
//   img-import, img-work importing 120 textures of 256 x 256 from the dictionaries of an archive, as import
//   img-memory           memory at most meanwhile, in textures as bitmaps with their records
//   encode-FORMAT-ENCODER
//                        the block encoders at every level with one thread and with two, and stb_dxt and
//                        libsquish when they were there for the build; speed against stb_dxt encoding DXT1,
//                        mean PSNR of the opaque pictures or, RGBA, of those with alpha, and the PSNR of
//                        each. "visible" leaves out the colours of pixels whose alpha is 0
//
//   --pictures DIR   PNG files to encode; without it, some of the demo's pictures
//   --only PREFIX    only workloads whose names begin so, for example "decode" or "encode-ETC1"
//   --table FILE     writes what encode-... finds as comma separated values, for scripts/plot-encoders
//   --check          exit code 1 when a limit is exceeded

#include <array>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <optional>
#include <string>

#include "bench/BigDatabase.h"
#include "bench/ConvertWorkload.h"
#include "bench/DecodeWorkloads.h"
#include "bench/DeleteWorkload.h"
#include "bench/DictionaryMemory.h"
#include "bench/EncodeWorkloads.h"
#include "bench/ExportWorkload.h"
#include "bench/ImgWorkloads.h"
#include "bench/ImportWorkload.h"
#include "bench/OpenWorkloads.h"
#include "bench/OptimizeWorkload.h"
#include "bench/RenderWareWorkloads.h"

namespace {

struct Options {
    std::optional<std::filesystem::path> pictures;
    std::string only;
    std::optional<std::filesystem::path> table;
    bool check = false;
    /// Set for the process that MeasureMemory starts.
    std::optional<std::filesystem::path> resident;
};

std::optional<Options> ParseOptions(int count, char** arguments)
{
    Options options;
    for (int i = 1; i < count; ++i) {
        const std::string word = arguments[i];
        const bool hasValue = i + 1 < count;
        if (word == "--check")
            options.check = true;
        else if (word == "--pictures" && hasValue)
            options.pictures = arguments[++i];
        else if (word == "--only" && hasValue)
            options.only = arguments[++i];
        else if (word == "--table" && hasValue)
            options.table = arguments[++i];
        else if (word == "--resident" && hasValue)
            options.resident = arguments[++i];
        else
            return std::nullopt;
    }
    return options;
}

bool Concerns(const std::string& group, const std::string& only)
{
    const std::size_t common = std::min(group.size(), only.size());
    return group.compare(0, common, only, 0, common) == 0;
}

void MeasureDatabase(const std::string& only, Bench::CReport& report)
{
    const Bench::CScratchFolder folder;
    const std::filesystem::path list = Bench::WriteBigDatabase(folder.Path());
    if (Concerns("open", only)) {
        Bench::MeasureOpening(list, report);
        Bench::MeasureMemory(std::filesystem::read_symlink("/proc/self/exe"), list, report);
    }
    if (Concerns("headers", only))
        Bench::MeasureHeaders(list, report);
    if (Concerns("delete", only))
        Bench::MeasureDeleting(list, report);
}

int Run(const Options& options)
{
    Bench::CReport report;
    report.PrintHead();
    if (Concerns("open", options.only) || Concerns("headers", options.only) ||
        Concerns("delete", options.only))
        MeasureDatabase(options.only, report);
    if (Concerns("import", options.only))
        Bench::MeasureImport(report);
    if (Concerns("convert", options.only))
        Bench::MeasureConverting(report);
    if (Concerns("export-png", options.only))
        Bench::MeasureExporting(report);
    if (Concerns("optimize-", options.only))
        Bench::MeasureOptimizing(options.only, report);
    if (Concerns("decode-", options.only))
        Bench::MeasureDecoding(options.only, report);
    if (Concerns("rw-", options.only))
        Bench::MeasureRenderWare(options.only, report);
    if (Concerns("rw-memory", options.only))
        Bench::MeasureDictionaryMemory(report);
    if (Concerns("img-", options.only))
        Bench::MeasureArchives(options.only, report);
    if (Concerns("encode-", options.only))
        Bench::MeasureEncoding(
            options.pictures ? Bench::LoadPictures(*options.pictures) : Bench::DemoPictures(), options.only,
            options.table, report);
    if (!report.AllCorrect())
        return 1;
    return options.check && !report.AllWithinLimits() ? 1 : 0;
}

}  // namespace

int main(int count, char** arguments)
{
    const long emptyKib = Bench::ResidentKib();
    const std::optional<Options> options = ParseOptions(count, arguments);
    if (!options) {
        std::fputs("usage: mavrel-bench [--pictures DIR] [--only PREFIX] [--table FILE] [--check]\n", stderr);
        return 2;
    }
    try {
        return options->resident ? Bench::PrintResidentGrowth(*options->resident, emptyKib) : Run(*options);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "mavrel-bench: %s\n", error.what());
        return 1;
    }
}
