#include "tools/OptimizerList.h"

#include <algorithm>

COptimizerList::COptimizerList(CTextureDatabase& database, std::span<const std::uint32_t> keys)
    : m_rDatabase(database), m_oCheck(database), m_aItems(database.EntryCount())
{
    for (std::uint32_t i = 0; i < Count(); ++i) {
        Item& item = m_aItems[i];
        item.original = item.named = i;
        if (database.IsAlias(i) || keys[i] == kNoKey)
            continue;
        item.key = keys[i];
        if (item.key >= m_aCounts.size())
            m_aCounts.resize(std::size_t{item.key} + 1);
        ++m_aCounts[item.key];
    }
}

const std::wstring& COptimizerList::Name(std::uint32_t place) const
{
    return m_rDatabase.Entry(m_aItems[place].named).name;
}

bool COptimizerList::HasEquals(std::uint32_t place) const
{
    const std::uint32_t key = m_aItems[place].key;
    return key != kNoKey && m_aCounts[key] > 1;
}

bool COptimizerList::MakeAlias(std::uint32_t kept, std::uint32_t duplicate)
{
    const AliasPair pair = {.kept = m_aItems[kept].original, .duplicate = m_aItems[duplicate].original};
    if (!m_oCheck.Fits(pair)) {
        ++m_nLeftAlone;
        return false;
    }
    m_aPairs.push_back(pair);
    Erase(duplicate);
    m_aItems.push_back({.key = kNoKey, .original = kNone, .named = pair.duplicate});
    return true;
}

void COptimizerList::Delete(std::uint32_t place)
{
    const std::uint32_t deleted = m_aItems[place].original;
    m_aDeleted.push_back(deleted);
    Erase(place);
    for (const std::uint32_t alias : m_oCheck.AliasesOf(deleted)) {
        const auto item = std::ranges::find(m_aItems, alias, &Item::original);
        if (item != m_aItems.end())
            Erase(static_cast<std::uint32_t>(item - m_aItems.begin()));
    }
}

void COptimizerList::Erase(std::uint32_t place)
{
    const auto item = m_aItems.begin() + static_cast<std::ptrdiff_t>(place);
    if (item->key != kNoKey)
        --m_aCounts[item->key];
    m_aItems.erase(item);
}
