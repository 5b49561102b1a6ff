#include "database/NameIndex.h"

#include <algorithm>

#include "image/Hash.h"

void CNameIndex::Build(std::span<TextureEntry> entries)
{
    m_aPlaces.clear();
    m_aPlaces.reserve(entries.size());
    for (std::uint32_t index = 0; index < entries.size(); ++index)
        if (!entries[index].IsAlias())
            m_aPlaces.push_back({.hash = EntryNameHash(entries[index]), .index = index});
    std::sort(m_aPlaces.begin(), m_aPlaces.end());
    m_bBuilt = true;
}

std::optional<std::uint32_t> CNameIndex::FindOrdinary(std::span<TextureEntry> entries, std::wstring_view name)
{
    if (!m_bBuilt)
        Build(entries);
    const std::uint32_t hash = NameHash(name);
    auto place = std::lower_bound(m_aPlaces.begin(), m_aPlaces.end(), Place{.hash = hash, .index = 0});
    for (; place != m_aPlaces.end() && place->hash == hash; ++place)
        if (entries[place->index].name == name)
            return place->index;
    return std::nullopt;
}
