#include "bench/BigDatabase.h"

#include <array>
#include <stdexcept>
#include <string>
#include <unistd.h>

#include "bench/SilentPrompt.h"
#include "database/TextureDatabase.h"
#include "image/Hash.h"

namespace Bench {
namespace {
constexpr std::array kStems = {L"brick",
                               L"roadside_wall",
                               L"ws_corrugated",
                               L"sign_shop",
                               L"grass_field",
                               L"cj_floor_tile",
                               L"vehicle_body128",
                               L"leaf",
                               L"concrete_panel_dirty",
                               L"win"};
constexpr std::uint32_t kThumbnailSide = 8;
constexpr std::uint32_t kAliasEvery = 10;

std::wstring NameOf(std::uint32_t index)
{
    return kStems[index % kStems.size()] + std::wstring(L"_") + std::to_wstring(index);
}

bool IsAlias(std::uint32_t index)
{
    return index % kAliasEvery == kAliasEvery - 1;
}

struct Form {
    std::uint16_t glFormat;
    std::uint32_t side;
};

// Rasters of 4x4 to 8x8 pixels in the formats that each cache usually holds.
Form FormOf(CacheIndex cache, std::uint32_t index)
{
    const std::uint32_t side = index % 2 == 0 ? 4 : 8;
    switch (cache) {
        case CacheIndex::Dxt:
            return {index % 3 == 0 ? GlFormat::Dxt5 : GlFormat::Dxt1, side};
        case CacheIndex::Etc1:
            return {index % 3 == 0 ? GlFormat::Rgba4444 : GlFormat::Etc1, side};
        case CacheIndex::Pvrtc:
            return {index % 3 == 0 ? GlFormat::Pvrtc4 : GlFormat::Pvrtc2, side};
        case CacheIndex::Unc:
            return {index % 3 == 0 ? GlFormat::Rgba4444 : GlFormat::Rgba565, side};
    }
    return {};
}

void AppendTo(CTextureDatabase& database, CacheIndex cache, RecordKind kind, std::uint32_t index,
              const Form& form)
{
    NewRecord record;
    record.header = {static_cast<std::uint16_t>(NameHash(NameOf(index)) & 0xFFFFU), form.glFormat,
                     static_cast<std::uint16_t>(form.side), static_cast<std::uint16_t>(form.side)};
    std::vector<std::byte> bytes(RasterSize(record.header));
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<std::byte>((index * 7 + i * 31) & 0xFFU);
    record.bytes = bytes;
    record.mode = StreamMode::Framed;
    if (!database.AppendRecord(cache, kind, record))
        throw std::runtime_error("cannot write the large database");
}

void WriteList(const std::filesystem::path& list)
{
    std::string text;
    for (const auto& [name, cat] :
         {std::pair{L"Default", 0}, std::pair{L"buildings", 1}, std::pair{L"roads", 2}}) {
        TextureCategory category;
        category.cat = cat;
        category.name = name;
        text += CategoryLine(category) + "\r\n";
    }
    for (std::uint32_t i = 0; i < kBigDatabaseEntries; ++i) {
        TextureEntry entry = IsAlias(i) ? MakeAlias(NameOf(i), NameOf(i - 1))
                                        : MakeEntry({.name = NameOf(i),
                                                     .width = 128,
                                                     .height = 256,
                                                     .category = i % 3,
                                                     .alphaMode = i % 3 == 0 ? 2U : 0U});
        if (!IsAlias(i))
            SetProperty(entry, Property::Img, NameHash(NameOf(i)));
        std::string line = EntryLine(entry);
        while (!line.empty() && (line.back() == '\n' || line.back() == '\r'))
            line.pop_back();
        text += line + "\r\n";
    }
    if (!WriteWholeFile(DiskFileSystem(), list, std::as_bytes(std::span(text))))
        throw std::runtime_error("cannot write the large list");
}

// The records came without entries; their tables of contents are made once the list names them.
void MendTables(const std::filesystem::path& list)
{
    CSilentPrompt prompt;
    CTextureDatabase database(StreamMode::Auto, DiskFileSystem(), prompt);
    database.Open(list);
    for (const CacheIndex cache : kAllCaches) {
        if (!database.IsTocValid(cache))
            database.RebuildToc(cache);
        if (!database.IsTocValid(cache) || !database.HasThumbnails(cache))
            throw std::runtime_error("the large database is not whole");
    }
    if (database.EntryCount() != kBigDatabaseEntries)
        throw std::runtime_error("the large list is not whole");
}
}  // namespace

std::filesystem::path WriteBigDatabase(const std::filesystem::path& folder)
{
    const std::filesystem::path list = folder / "big.txt";
    {
        CSilentPrompt prompt;
        CTextureDatabase database(StreamMode::Auto, DiskFileSystem(), prompt);
        if (!database.Create(list, kAllCaches))
            throw std::runtime_error("cannot create the large database");
        for (std::uint32_t i = 0; i < kBigDatabaseEntries; ++i) {
            if (IsAlias(i))
                continue;
            for (const CacheIndex cache : kAllCaches) {
                AppendTo(database, cache, RecordKind::Raster, i, FormOf(cache, i));
                AppendTo(database, cache, RecordKind::Thumbnail, i, {GlFormat::Rgba8888, kThumbnailSide});
            }
        }
    }
    WriteList(list);
    MendTables(list);
    return list;
}

CScratchFolder::CScratchFolder()
    : m_sPath(std::filesystem::temp_directory_path() / ("mavrel-bench-" + std::to_string(::getpid())))
{
    std::filesystem::create_directories(m_sPath);
}

CScratchFolder::~CScratchFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_sPath, ignored);
}

}  // namespace Bench
