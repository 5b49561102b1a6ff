#include "database/FileTools.h"

#include <algorithm>
#include <string>
#include <vector>

std::filesystem::path FreeSibling(const IFileSystem& files, const std::filesystem::path& file,
                                  std::string_view suffix)
{
    std::filesystem::path sibling = file;
    sibling += suffix;
    for (unsigned number = 2; files.Exists(sibling); ++number) {
        sibling = file;
        sibling += suffix;
        sibling += std::to_string(number);
    }
    return sibling;
}

bool WriteNewFile(IFileSystem& files, const std::filesystem::path& file, std::span<const std::byte> bytes)
{
    {
        const auto target = files.Open(file, OpenMode::Truncate);
        if (target && target->WriteAt(0, bytes) && target->Sync())
            return true;
    }
    files.Remove(file);
    return false;
}

bool CopyBytes(const IFile& source, std::uint64_t position, std::uint64_t length, IFile& target,
               std::uint64_t at)
{
    constexpr std::uint64_t kBlock = std::uint64_t{1} << 20;
    std::vector<std::byte> buffer(static_cast<std::size_t>(std::min(kBlock, length)));
    while (length != 0) {
        const auto block = std::span(buffer).first(static_cast<std::size_t>(std::min(kBlock, length)));
        if (source.ReadAt(position, block) != block.size() || !target.WriteAt(at, block))
            return false;
        position += block.size();
        at += block.size();
        length -= block.size();
    }
    return true;
}

bool CopyToNewFile(IFileSystem& files, const IFile& source, const std::filesystem::path& copy)
{
    {
        const auto target = files.Open(copy, OpenMode::Truncate);
        if (target && CopyBytes(source, 0, source.Size(), *target, 0) && target->Sync())
            return true;
    }
    files.Remove(copy);
    return false;
}

bool KeepBackup(IFileSystem& files, const IFile& source, const std::filesystem::path& file)
{
    return CopyToNewFile(files, source, FreeSibling(files, file, ".bak"));
}
