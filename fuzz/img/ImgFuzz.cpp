// Any bytes as an archive and, for version 1, its directory: listed, read and saved; its models are looked
// through, its dictionaries opened. Twelve bits at the start say where the directory file begins.

#include <cstdlib>

#include "database/DatabaseError.h"
#include "rw/Exception.h"
#include "tests/support/MemoryFileSystem.h"
#include "tools/ArchiveEntries.h"
#include "tools/SyncArchives.h"
#include "tools/TXDHelper.h"

namespace {

constexpr std::uint32_t kMostEntries = 64;

void LookAt(const CImgArchive& archive, std::uint32_t index, CMemoryFileSystem& files)
{
    const std::wstring name = archive.EntryName(index);
    const std::wstring fileName = EntryFileName(name);
    if (fileName.empty() || fileName.find_first_of(L"/\\:") != std::wstring::npos)
        std::abort();
    EntrySizeText(archive.EntrySize(index));
    EntryOffsetText(archive.EntryOffset(index));
    EntryFileFilter(name);
    const auto bytes = archive.ReadEntry(index);
    if (bytes.has_value() != archive.IsReachable(index) ||
        (bytes && bytes->size() > archive.EntrySize(index)))
        std::abort();
    const bool isWhole = bytes && bytes->size() == archive.EntrySize(index);
    const bool isWritten = ExportEntry(archive, index, "out", files) == EntryExport::Written;
    if (isWritten != (isWhole && archive.EntryOffset(index) + bytes->size() <= archive.File()->Size()))
        std::abort();
    if (isWritten && *files.Find("out") != *bytes)
        std::abort();
    files.Remove("out");
}

void OpenDictionary(const CImgArchive& archive, std::uint32_t index)
{
    const CPluginTable plugins;
    RW::CSilentFailures failures;
    CTXDHelper helper(plugins, failures);
    try {
        helper.AttachDictionary(*archive.File(), archive.EntryOffset(index));
    } catch (const RW::CException&) {
        // What was read by then is looked at all the same.
        if (helper.Dictionary() == nullptr)
            return;
    }
    for (const DictionaryTexture& texture : helper.DescribeAll()) {
        try {
            helper.TakePicture(texture.index);
        } catch (const CError&) {
            // A texture that cannot be read does not stop the run.
            continue;
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t kLargest = 1U << 16;
    if (size < 2 || size > kLargest)
        return 0;
    const auto bytes = std::as_bytes(std::span(data, size)).subspan(2);
    const std::size_t split = std::min<std::size_t>(bytes.size(), data[0] + 256U * (data[1] & 15U));
    const auto directory = bytes.first(split);
    const auto archiveBytes = bytes.subspan(split);
    CMemoryFileSystem files;
    files.Put("a.img", {archiveBytes.begin(), archiveBytes.end()});
    if ((data[1] & 16U) == 0)
        files.Put("a.dir", {directory.begin(), directory.end()});
    CImgArchive archive(files);
    const bool isOpen = archive.Open("a.img");
    const std::uint32_t count = archive.EntryCount();
    if (!isOpen && count != 0)
        std::abort();
    if (std::uint64_t{count} * 32 > size)
        std::abort();
    CNoProgress progress;
    for (const std::uint32_t index : ListArchive(archive, ArchiveRows::Dictionaries, progress))
        if (index < kMostEntries)
            OpenDictionary(archive, index);
    for (std::uint32_t index = 0; index < std::min(count, kMostEntries); ++index)
        LookAt(archive, index, files);
    archive.ReadEntry(count);
    archive.Close();
    UsedTextures used;
    if (count <= kMostEntries)
        CollectUsedTextures("a.img", used, progress, files);
    if (used.modelsRead + used.modelsSkipped > count)
        std::abort();
    return 0;
}
