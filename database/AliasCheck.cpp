#include "database/AliasCheck.h"

#include <algorithm>

#include "database/EntryLine.h"
#include "database/TextList.h"
#include "database/TextureDatabaseImpl.h"

namespace {

// The line of an alias that stands for `target`; it must be read back as one that does.
bool CanStandFor(TextureEntry alias, const std::wstring& target)
{
    SetAffiliate(alias, target);
    const std::string& line = EntryLine(alias);
    return LineFits(line) && ParseEntryLine(line).affiliate == target;
}

}  // namespace

CAliasCheck::CAliasCheck(CTextureDatabase& database)
    : m_rDatabase(database), m_aFirst(std::size_t{database.EntryCount()} + 1)
{
    const std::uint32_t count = database.EntryCount();
    std::vector<std::uint32_t> targets(count, kNone);
    for (std::uint32_t i = 0; i < count; ++i) {
        targets[i] = database.AliasTarget(i);
        if (targets[i] < count)
            ++m_aFirst[targets[i] + 1];
    }
    for (std::size_t i = 1; i < m_aFirst.size(); ++i)
        m_aFirst[i] += m_aFirst[i - 1];
    m_aAliases.resize(m_aFirst.back());
    std::vector<std::uint32_t> next(m_aFirst.begin(), m_aFirst.end() - 1);
    for (std::uint32_t i = 0; i < count; ++i)
        if (targets[i] < count)
            m_aAliases[next[targets[i]]++] = i;
}

std::span<const std::uint32_t> CAliasCheck::AliasesOf(std::uint32_t index) const
{
    return std::span(m_aAliases).subspan(m_aFirst[index], m_aFirst[index + 1] - m_aFirst[index]);
}

bool CAliasCheck::Fits(const AliasPair& pair) const
{
    const TextureEntry& duplicate = m_rDatabase.Entry(pair.duplicate);
    const std::wstring& target = m_rDatabase.Entry(pair.kept).name;
    try {
        RequireTextureName(duplicate.name);
        RequireTextureName(target);
    } catch (const CError&) {
        return false;
    }
    return CanStandFor(MakeAlias(duplicate.name, target), target) &&
           std::ranges::all_of(AliasesOf(pair.duplicate), [this, &target](std::uint32_t alias) {
               return CanStandFor(m_rDatabase.Entry(alias), target);
           });
}
