#include "tests/support/ImgFiles.h"

#include <algorithm>
#include <stdexcept>

#include "base/ByteWriter.h"
#include "base/File.h"

namespace {

constexpr std::size_t kSector = 2048;
constexpr std::size_t kEntry = 32;
constexpr std::size_t kName = 24;

std::size_t SectorsOf(std::size_t bytes)
{
    return (bytes + kSector - 1) / kSector;
}

std::uint32_t SizeOf(const ImgEntry& entry)
{
    return entry.size.value_or(static_cast<std::uint32_t>(SectorsOf(entry.contents.size())));
}

void PadToSector(CByteWriter& out)
{
    out.Fill(SectorsOf(out.Size()) * kSector - out.Size(), 0);
}

/// Appends the contents, each from a sector of its own.
void AppendContents(CByteWriter& out, const std::vector<ImgEntry>& entries)
{
    for (const ImgEntry& entry : entries) {
        out.Bytes(entry.contents);
        PadToSector(out);
    }
}

void Write(const std::filesystem::path& file, const ImgBytes& bytes)
{
    if (!WriteWholeFile(DiskFileSystem(), file, bytes))
        throw std::runtime_error("cannot write " + file.string());
}

}  // namespace

ImgBytes Version2Archive(const std::vector<ImgEntry>& entries, const ImgFileOptions& options)
{
    CByteWriter out;
    out.Text("VER2", 4).U32(options.count.value_or(static_cast<std::uint32_t>(entries.size())));
    std::size_t sector = SectorsOf(out.Size() + entries.size() * kEntry);
    for (const ImgEntry& entry : entries) {
        out.U32(entry.offset.value_or(static_cast<std::uint32_t>(sector)));
        out.U16(SizeOf(entry)).U16(entry.sizeInArchive.value_or(std::uint16_t{0}));
        out.Text(entry.name, kName);
        sector += SectorsOf(entry.contents.size());
    }
    PadToSector(out);
    AppendContents(out, entries);
    return out.Take();
}

Version1Files Version1Archive(const std::vector<ImgEntry>& entries)
{
    CByteWriter img;
    CByteWriter dir;
    std::size_t sector = 0;
    for (const ImgEntry& entry : entries) {
        dir.U32(entry.offset.value_or(static_cast<std::uint32_t>(sector))).U32(SizeOf(entry));
        dir.Text(entry.name, kName);
        sector += SectorsOf(entry.contents.size());
    }
    AppendContents(img, entries);
    return {img.Take(), dir.Take()};
}

void WriteVersion2Archive(const std::filesystem::path& file, const std::vector<ImgEntry>& entries,
                          const ImgFileOptions& options)
{
    Write(file, Version2Archive(entries, options));
}

void WriteVersion1Archive(const std::filesystem::path& file, const std::vector<ImgEntry>& entries)
{
    const Version1Files files = Version1Archive(entries);
    Write(file, files.img);
    Write(std::filesystem::path(file).replace_extension(".dir"), files.dir);
}
