#include "database/CacheSlot.h"

#include <algorithm>
#include <string>

#include "base/ByteWriter.h"
#include "database/CacheFileName.h"

namespace {

constexpr std::uint64_t kWordBytes = 4;

std::unique_ptr<IFile> OpenExisting(IFileSystem& files, const std::filesystem::path& path, bool& blocked)
{
    auto file = files.Open(path, OpenMode::ReadWrite);
    blocked = blocked || (!file && files.Exists(path));
    return file;
}

}  // namespace

CacheSlot OpenSlot(IFileSystem& files, const std::filesystem::path& list, CacheIndex cache)
{
    CacheSlot slot;
    slot.tocPath = CacheFilePath(list, cache, L".toc");
    slot.datPath = CacheFilePath(list, cache, L".dat");
    slot.tmbPath = CacheFilePath(list, cache, L".tmb");
    slot.toc = OpenExisting(files, slot.tocPath, slot.isBlocked);
    slot.dat = OpenExisting(files, slot.datPath, slot.isBlocked);
    slot.tmb = OpenExisting(files, slot.tmbPath, slot.isBlocked);
    return slot;
}

std::vector<std::byte> TableBytes(std::uint64_t datBytes, std::span<const std::uint32_t> offsets)
{
    CByteWriter table;
    table.U32(static_cast<std::uint32_t>(datBytes));
    for (const std::uint32_t offset : offsets)
        table.U32(offset);
    return table.Take();
}

bool WriteTable(IFileSystem& files, CacheSlot& slot, std::span<const std::byte> table)
{
    // The length word goes last: a table that broke off in the middle is found invalid by it.
    if (slot.toc)
        return slot.toc->WriteAt(kWordBytes, table.subspan(kWordBytes)) && slot.toc->Resize(table.size()) &&
               slot.toc->WriteAt(0, table.first(kWordBytes));
    // A table that is there but not open belongs to somebody else.
    if (files.Exists(slot.tocPath))
        return false;
    slot.toc = files.Open(slot.tocPath, OpenMode::Truncate);
    if (!slot.toc)
        return false;
    if (slot.toc->WriteAt(0, table))
        return true;
    // A part of a table is worse than none: the walk over the records finds them all.
    slot.toc.reset();
    files.Remove(slot.tocPath);
    return false;
}

bool WriteTableWord(CacheSlot& slot, std::size_t entry, std::uint32_t offset)
{
    CByteWriter word;
    word.U32(offset);
    return slot.toc->WriteAt(kWordBytes * (std::uint64_t{entry} + 1), word.View());
}

bool WriteTableWords(CacheSlot& slot, std::size_t first, std::size_t count)
{
    CByteWriter words;
    for (const std::uint32_t offset : std::span(slot.offsets).subspan(first, count))
        words.U32(offset);
    return slot.toc->WriteAt(kWordBytes * (std::uint64_t{first} + 1), words.View());
}

bool WriteLengthWord(CacheSlot& slot)
{
    if (!slot.dat || !slot.toc)
        return true;
    CByteWriter word;
    word.U32(static_cast<std::uint32_t>(slot.dat->Size()));
    return slot.dat->Flush() && slot.toc->WriteAt(0, word.View()) && slot.toc->Flush();
}

std::optional<std::uint32_t> AppendBytes(IFile& file, std::span<const std::byte> record)
{
    const std::uint64_t end = file.Size();
    if (end + record.size() >= kNone)
        return std::nullopt;
    if (file.WriteAt(end, record))
        return static_cast<std::uint32_t>(end);
    file.Resize(end);
    return std::nullopt;
}

bool ReplaceOpenFile(IFileSystem& files, const std::filesystem::path& from, const std::filesystem::path& to,
                     std::unique_ptr<IFile>& file)
{
    file.reset();
    const bool replaced = files.Replace(from, to);
    if (!replaced)
        files.Remove(from);
    file = files.Open(to, OpenMode::ReadWrite);
    return replaced && file;
}
