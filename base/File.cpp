#include "base/File.h"

#include <string>
#include <system_error>

std::optional<std::vector<std::byte>> ReadWholeFile(IFileSystem& files, const std::filesystem::path& file,
                                                    std::uint64_t limit)
{
    const auto source = files.Open(file, OpenMode::Read);
    if (!source || source->Size() > limit)
        return std::nullopt;
    std::vector<std::byte> bytes(static_cast<std::size_t>(source->Size()));
    if (source->ReadAt(0, bytes) != bytes.size())
        return std::nullopt;
    return bytes;
}

std::filesystem::path UnusedSibling(const IFileSystem& files, const std::filesystem::path& file)
{
    std::filesystem::path beside = file;
    beside += ".new";
    // A file of that name may be the person's own.
    for (unsigned number = 2; files.Exists(beside); ++number) {
        beside = file;
        beside += ".new" + std::to_string(number);
    }
    return beside;
}

bool WriteWholeFile(IFileSystem& files, const std::filesystem::path& file, std::span<const std::byte> bytes)
{
    const std::filesystem::path beside = UnusedSibling(files, file);
    {
        const auto target = files.Open(beside, OpenMode::Truncate);
        if (!target)
            return false;
        if (!target->WriteAt(0, bytes) || !target->Sync()) {
            files.Remove(beside);
            return false;
        }
    }
    if (files.Replace(beside, file))
        return true;
    files.Remove(beside);
    return false;
}
