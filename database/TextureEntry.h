#pragma once

// One texture: a line of the TXT list and where its pixels lie in each cache. Entries are values; the
// database owns them in file order, and their index is how everything else refers to them.

#include <array>
#include <cstdint>
#include <string>

#include "codec/RasterFormat.h"
#include "database/CacheIndex.h"
#include "database/Property.h"

/// The longest name or affiliate that the games' records hold, in characters.
inline constexpr std::size_t kLongestName = 63;

struct TextureEntry {
    std::wstring name;                  // characters 0-255
    std::wstring affiliate;             // empty, or the name of the entry whose raster this alias shares
    std::uint32_t aliasTarget = kNone;  // index of the resolved target
    std::array<std::uint32_t, kPropertyCount> values = DefaultValues();
    std::array<RasterHeader, kCacheCount> rasterHeader{};
    std::array<RasterHeader, kCacheCount> thumbHeader{};
    std::array<std::uint32_t, kCacheCount> datOffset = {kNone, kNone, kNone, kNone};
    std::array<std::uint32_t, kCacheCount> tmbOffset = {kNone, kNone, kNone, kNone};
    std::uint32_t nameHash = 0;  // 0: not computed yet
    std::string lineText;        // the line as read or last edited, line end included; empty: never written
    bool nameWasCut = false;     // its line holds a longer name or affiliate than a record can

    bool IsAlias() const { return !affiliate.empty(); }
    std::uint32_t Value(Property property) const { return values[static_cast<std::size_t>(property)]; }

private:
    static constexpr std::array<std::uint32_t, kPropertyCount> DefaultValues()
    {
        std::array<std::uint32_t, kPropertyCount> defaults{};
        defaults[static_cast<std::size_t>(Property::MipMode)] = 1;
        return defaults;
    }
};

/// Changes one property and edits the stored line as text: removes " key=value" wherever it occurs, even
/// inside a longer number, and appends the new pair. Does nothing for Name and Affiliate.
void SetProperty(TextureEntry& entry, Property property, std::uint32_t value);

/// The line of the TXT list, generated first when the entry has none.
const std::string& EntryLine(TextureEntry& entry);

/// The entry's NameHash, computed on first use.
std::uint32_t EntryNameHash(TextureEntry& entry);

/// Sets the name and recomputes its hash; replaces every occurrence of the old name in double quotes in the
/// line.
void SetEntryName(TextureEntry& entry, std::wstring name);

/// Makes an alias one of another texture: the field and, in the line, every occurrence of the pair as it
/// stands there.
void SetAffiliate(TextureEntry& alias, std::wstring target);

/// What an import knows of a new ordinary entry.
struct NewTexture {
    std::wstring name;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t category = 0;
    std::uint32_t alphaMode = 0;
    std::uint32_t camNorm = 0;
};
TextureEntry MakeEntry(const NewTexture& texture);
TextureEntry MakeAlias(std::wstring name, std::wstring target);
