#include "cli/DatabaseJson.h"

#include <algorithm>

#include "base/Text.h"
#include "cli/Session.h"
#include "tools/ImportRules.h"

namespace {

// "None" is -1 for readers that have no unsigned numbers.
std::int64_t OrMinusOne(std::uint32_t index)
{
    return index == kNone ? -1 : std::int64_t{index};
}

void WriteCategory(CJsonWriter& json, std::uint32_t index, const TextureCategory& category)
{
    json.BeginObject()
        .Field(L"index", index)
        .Field(L"cat", category.cat)
        .Field(L"name", category.name)
        .Field(L"onfoot", category.onfoot)
        .Field(L"slow", category.slow)
        .Field(L"fast", category.fast)
        .Field(L"defaultformat", category.defaultformat)
        .Field(L"defaultstream", category.defaultstream)
        .EndObject();
}

void WriteRecord(CJsonWriter& json, CTextureDatabase& database, std::uint32_t index, CacheIndex cache)
{
    const TextureEntry entry = database.ResolvedEntry(index);
    const std::size_t slot = SlotOf(cache);
    const bool hasRaster = entry.datOffset[slot] != kNone;
    const RasterHeader header = hasRaster ? entry.rasterHeader[slot] : RasterHeader();
    const RasterHeader thumbnail = entry.tmbOffset[slot] != kNone ? entry.thumbHeader[slot] : RasterHeader();
    const std::uint32_t mode = hasRaster ? static_cast<std::uint32_t>(database.GameOf(index, cache)) : 0;
    json.Key(CacheInfix(cache))
        .BeginObject()
        .Field(L"dat_offset", OrMinusOne(entry.datOffset[slot]))
        .Field(L"gl_format", header.glFormat)
        .Field(L"format", std::wstring(FormatName(FormatFromGl(header.glFormat))))
        .Field(L"width", header.width)
        .Field(L"height", header.Height())
        .Field(L"mips", header.HasMips())
        .Field(L"levels", LevelCount(header))
        .Field(L"name_hash16", header.nameHash16)
        .Field(L"raster_size", RasterSize(header))
        .Field(L"stream_mode", mode)
        .Field(L"tmb_offset", OrMinusOne(entry.tmbOffset[slot]))
        .Field(L"thumb_width", thumbnail.width)
        .Field(L"thumb_height", thumbnail.Height())
        .EndObject();
}

void WriteEntry(CJsonWriter& json, CTextureDatabase& database, std::uint32_t index)
{
    const std::uint32_t target = database.AliasTarget(index);
    TextureEntry entry = database.Entry(index);
    json.BeginObject()
        .Field(L"index", index)
        .Field(L"name", entry.name)
        .Field(L"affiliate", entry.affiliate)
        .Field(L"alias_target", OrMinusOne(target))
        .Field(L"name_hash", EntryNameHash(entry))
        .Field(L"line", ShownLine(entry));
    json.Key(L"properties").BeginObject();
    for (auto number = static_cast<std::uint32_t>(Property::CamNorm); number < kPropertyCount; ++number) {
        const auto property = static_cast<Property>(number);
        json.Field(Widen(PropertyKey(property)), entry.Value(property));
    }
    json.EndObject();
    json.Key(L"caches").BeginObject();
    for (const CacheIndex cache : kAllCaches)
        if (database.IsOpen(cache))
            WriteRecord(json, database, index, cache);
    json.EndObject().EndObject();
}

void WriteCacheFacts(CJsonWriter& json, const CTextureDatabase& database, const DatabaseCheck& check,
                     CacheIndex cache)
{
    json.Key(CacheInfix(cache))
        .BeginObject()
        .Field(L"dat_bytes", database.FileSize(cache, RecordKind::Raster))
        .Field(L"toc_bytes", database.TocSize(cache))
        .Field(L"tmb_bytes", database.FileSize(cache, RecordKind::Thumbnail))
        .Field(L"rasters", CountRecords(database, cache, RecordKind::Raster))
        .Field(L"thumbnails", CountRecords(database, cache, RecordKind::Thumbnail))
        .Field(L"toc_valid", !Contains(check.badTocs, cache))
        .Field(L"thumbnails_valid", !Contains(check.badThumbnails, cache))
        .EndObject();
}

}  // namespace

void WriteDatabase(CJsonWriter& json, CTextureDatabase& database, const std::vector<std::uint32_t>& entries)
{
    json.BeginObject()
        .Field(L"path", FromPath(database.ListPath()))
        .Field(L"game", std::wstring(GameWord(database.ForcedMode())));
    if (const auto primary = database.PrimaryCache())
        json.Field(L"primary_cache", std::wstring(CacheInfix(*primary)));
    json.Key(L"categories").BeginArray();
    const auto categories = database.Categories();
    for (std::uint32_t i = 0; i < categories.size(); ++i)
        WriteCategory(json, i, categories[i]);
    json.EndArray();
    json.Key(L"entries").BeginArray();
    for (const std::uint32_t index : entries)
        WriteEntry(json, database, index);
    json.EndArray().EndObject();
}

void WriteFacts(CJsonWriter& json, CTextureDatabase& database, const DatabaseCheck& check)
{
    json.BeginObject()
        .Field(L"entries", database.EntryCount())
        .Field(L"aliases", CountAliases(database))
        .Field(L"categories", database.Categories().size());
    json.Key(L"caches").BeginObject();
    for (const CacheIndex cache : kAllCaches)
        if (database.IsOpen(cache))
            WriteCacheFacts(json, database, check, cache);
    json.EndObject();
    json.Field(L"name_hashes_valid", !check.nameHashesWrong)
        .Field(L"game", std::wstring(GameWord(ShownGame(database))))
        .EndObject();
}

std::uint32_t CountRecords(const CTextureDatabase& database, CacheIndex cache, RecordKind kind)
{
    std::uint32_t count = 0;
    for (std::uint32_t i = 0; i < database.EntryCount(); ++i) {
        const TextureEntry& entry = database.Entry(i);
        const auto& offsets = kind == RecordKind::Raster ? entry.datOffset : entry.tmbOffset;
        if (!entry.IsAlias() && offsets[SlotOf(cache)] != kNone)
            ++count;
    }
    return count;
}

std::uint32_t CountAliases(const CTextureDatabase& database)
{
    std::uint32_t count = 0;
    for (std::uint32_t i = 0; i < database.EntryCount(); ++i)
        count += database.IsAlias(i) ? 1 : 0;
    return count;
}

bool Contains(const std::vector<CacheIndex>& caches, CacheIndex cache)
{
    return std::find(caches.begin(), caches.end(), cache) != caches.end();
}

StreamMode ShownGame(CTextureDatabase& database)
{
    return GameOfDatabase(database).value_or(StreamMode::Auto);
}

std::wstring ShownLine(TextureEntry entry)
{
    return Widen(Trim(std::string_view(EntryLine(entry))));
}
