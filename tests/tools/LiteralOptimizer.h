#pragma once

// The optimizer written down step by step, as it is described: a model of a database in memory that deletes
// one texture and appends one alias at a time. It shares no code with the real one; tests compare the files.

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/DatabaseBuilder.h"

/// A texture or an alias. Records are whole, header and framing included, as they stand in the files.
struct LiteralEntry {
    std::string name;
    std::string affiliate;                                   // empty for a texture
    std::string line;                                        // without line end
    std::map<std::string, std::vector<std::byte>> dat = {};  // by the cache's infix
    std::map<std::string, std::vector<std::byte>> tmb = {};
    std::map<std::string, std::vector<std::byte>> raster = {};  // stream mode undone; absent when unreadable
    std::map<std::string, std::array<std::uint32_t, 2>> size = {};
    std::map<std::string, std::vector<std::uint8_t>> decoded = {};  // absent when it cannot be decoded
};

class CLiteralDatabase {
public:
    std::vector<std::string> categories;
    std::vector<std::string> caches;
    std::vector<std::string> withoutThumbnails;  // caches that have no `.tmb`
    std::vector<LiteralEntry> entries;
    std::uint32_t aliased = 0;

    FileBytes Files() const;

    void AliasNames();
    void DeleteNames();
    void AliasHashes(const std::string& cache, bool isDecoded);
    void AliasDifferences(const std::string& cache, bool isDecoded, std::int64_t value);

private:
    bool IsAlias(std::uint32_t i) const { return !entries[i].affiliate.empty(); }
    std::uint32_t Count() const { return static_cast<std::uint32_t>(entries.size()); }
    std::optional<std::uint32_t> TargetOf(const LiteralEntry& alias) const;
    bool MakeAlias(std::uint32_t kept, std::uint32_t duplicate);
    void Delete(std::uint32_t i);
    bool IsClose(std::uint32_t a, std::uint32_t b, const std::string& cache, bool isDecoded,
                 std::uint64_t limit) const;
};
