// Any bytes as a RenderWare file: read as a tree, walked, saved. A file whose containers are exactly as long
// as their children comes out as it was, with a copy of its root's header behind it. The first byte chooses
// between quiet and throwing, and the rule of reading children; the rest is the file.

#include <algorithm>
#include <cstdlib>

#include "rw/Exception.h"
#include "rw/Stream.h"
#include "tests/support/MemoryFileSystem.h"

namespace {

bool IsExact(const RW::CNode& node)
{
    if (node.ChildCount() == 0)
        return true;
    std::uint64_t total = 0;
    for (std::uint32_t i = 0; i < node.ChildCount(); ++i) {
        const RW::CNode* const child = node.FindChild(i);
        if (child == nullptr || !IsExact(*child))
            return false;
        total += std::uint64_t{child->Size()} + RW::kHeaderBytes;
    }
    return total == node.Size();
}

void CheckCopy(const std::vector<std::byte>& file, const std::vector<std::byte>& copy, const RW::CNode& root)
{
    const std::size_t length = std::size_t{root.Size()} + RW::kHeaderBytes;
    const std::size_t behind = root.ChildCount() != 0 ? RW::kHeaderBytes : 0;
    if (copy.size() != length + behind ||
        !std::equal(copy.begin(), copy.end() - static_cast<std::ptrdiff_t>(behind), file.begin()))
        std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t kLargest = 1U << 16;
    if (size == 0 || size > kLargest)
        return 0;
    const auto bytes = std::as_bytes(std::span(data, size)).subspan(1);
    const std::vector<std::byte> file(bytes.begin(), bytes.end());
    CMemoryFileSystem files;
    files.Put("file", file);
    RW::CSilentFailures failures;
    RW::CStream stream(failures, files);
    stream.SetQuiet((data[0] & 1U) != 0);
    stream.SetScanning((data[0] & 2U) != 0);
    try {
        if (!stream.Open("file", 0, RW::kNoRootId, (data[0] & 4U) != 0 ? RW::kCheckLength : 0))
            return 0;
        stream.GetNode({0, 0, 0});
        const bool isExact = (data[0] & 2U) == 0 && stream.LastError().empty() && IsExact(*stream.Root());
        if (stream.Save("copy") && isExact)
            CheckCopy(file, *files.Find("copy"), *stream.Root());
    } catch (const RW::CException&) {
        // Most files are refused; that is what the checks are for.
        return 0;
    }
    return 0;
}
