// Any bytes as a model: its names are collected, one is changed everywhere, the model is saved and read
// again.

#include <cstdlib>

#include "rw/Exception.h"
#include "rw/ModelTextures.h"
#include "tests/support/MemoryFileSystem.h"

namespace {

void Rename(CMemoryFileSystem& files)
{
    RW::CSilentFailures failures;
    RW::CSimpleDFF model(failures, files);
    if (!model.Open("file", 0, RW::kNoRootId, 0))
        return;
    RW::PlainTextOf(model);
    const auto names = RW::CollectTextureNames(model);
    const std::uint32_t renamed = names.empty() ? 0 : RW::RenameTextures(model, names.front(), L"ab");
    if (!model.Save("copy"))
        return;
    RW::CSimpleDFF copy(failures, files);
    // Sizes were put right, so the copy must be readable, and hold the new name in full.
    copy.SetQuiet(true);
    if (!copy.Open("copy", 0, RW::kNoRootId, 0))
        std::abort();
    const auto after = RW::CollectTextureNames(copy);
    if (copy.LastError().empty() && renamed != 0 && after.empty())
        std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t kLargest = 1U << 16;
    if (size > kLargest)
        return 0;
    const auto bytes = std::as_bytes(std::span(data, size));
    CMemoryFileSystem files;
    files.Put("file", {bytes.begin(), bytes.end()});
    try {
        Rename(files);
    } catch (const RW::CException&) {
        // Most files are refused; that is what the checks are for.
        return 0;
    }
    return 0;
}
