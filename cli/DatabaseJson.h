#pragma once

// The JSON documents about a database. Scripts rely on the names of their fields: add to them, never change
// one.

#include <cstdint>
#include <vector>

#include "cli/Json.h"
#include "database/TextureDatabase.h"
#include "tools/OpenDatabase.h"

/// The document of "list" with the given entries; every category is listed.
void WriteDatabase(CJsonWriter& json, CTextureDatabase& database, const std::vector<std::uint32_t>& entries);

/// The document of "info".
void WriteFacts(CJsonWriter& json, CTextureDatabase& database, const DatabaseCheck& check);

/// Ordinary entries with a record of that kind in the cache.
std::uint32_t CountRecords(const CTextureDatabase& database, CacheIndex cache, RecordKind kind);
std::uint32_t CountAliases(const CTextureDatabase& database);
bool Contains(const std::vector<CacheIndex>& caches, CacheIndex cache);
/// The forced game, else the one that the records show.
StreamMode ShownGame(CTextureDatabase& database);
/// The entry's line as it is written, without outer blanks.
std::wstring ShownLine(TextureEntry entry);
