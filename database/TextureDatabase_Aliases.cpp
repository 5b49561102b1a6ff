// Turning textures into aliases of others, many at once.

#include <algorithm>
#include <string>
#include <utility>

#include "database/AliasCheck.h"
#include "database/TextureDatabaseImpl.h"
#include "database/TextureDeletion.h"

namespace {

/// Indices as they are after some of the textures were deleted and came back at the end.
class CMovedIndices {
public:
    std::uint32_t Now(std::uint32_t before) const
    {
        const auto gone = std::ranges::count_if(m_aGone, [before](std::uint32_t i) { return i < before; });
        return before - static_cast<std::uint32_t>(gone);
    }
    void Remove(std::uint32_t before) { m_aGone.push_back(before); }

private:
    std::vector<std::uint32_t> m_aGone;
};

// Each pair names two ordinary textures, and none is a duplicate twice or kept as well.
bool AreSeparate(const CTextureDatabase& database, std::span<const AliasPair> pairs)
{
    std::vector<bool> isDuplicate(database.EntryCount());
    for (const auto& [kept, duplicate] : pairs) {
        if (kept >= isDuplicate.size() || duplicate >= isDuplicate.size() || database.IsAlias(kept) ||
            database.IsAlias(duplicate) || isDuplicate[duplicate])
            return false;
        isDuplicate[duplicate] = true;
    }
    return std::ranges::none_of(pairs, [&](const AliasPair& pair) { return isDuplicate[pair.kept]; });
}

}  // namespace

bool CTextureDatabase::MakeAliases(std::span<const AliasPair> pairs, IProgress& progress)
{
    if (!AreSeparate(*this, pairs))
        return false;
    if (pairs.empty())
        return true;
    m_pImpl->RequireEverything();
    const CAliasCheck check(*this);
    if (!std::ranges::all_of(pairs, [&check](const AliasPair& pair) { return check.Fits(pair); }))
        throw CError(std::wstring(DatabaseText::kLineTooLong));
    if (progress.Cancelled())
        return false;
    std::vector<std::uint32_t> duplicates;
    std::ranges::transform(pairs, std::back_inserter(duplicates), &AliasPair::duplicate);
    if (pairs.size() == 1 || CanDeleteTogether(duplicates)) {
        m_pImpl->MakeAliasesTogether(pairs, check, progress);
        return true;
    }
    CMovedIndices moved;
    for (const AliasPair& pair : pairs) {
        const AliasPair now = {.kept = moved.Now(pair.kept), .duplicate = moved.Now(pair.duplicate)};
        m_pImpl->MakeAliasesTogether(std::span(&now, 1), CAliasCheck(*this), progress);
        moved.Remove(pair.duplicate);
    }
    return true;
}

void CTextureDatabase::CImpl::MakeAliasesTogether(std::span<const AliasPair> pairs, const CAliasCheck& check,
                                                  IProgress& progress)
{
    std::vector<bool> isGone(Count());
    std::vector<TextureEntry> aliases;
    std::vector<std::pair<std::uint32_t, TextureEntry>> pointed;
    for (const auto& [kept, duplicate] : pairs) {
        isGone[duplicate] = true;
        aliases.push_back(MakeAlias(m_aEntries[duplicate].name, m_aEntries[kept].name));
        for (const std::uint32_t alias : check.AliasesOf(duplicate)) {
            TextureEntry& changed = pointed.emplace_back(alias, m_aEntries[alias]).second;
            SetAffiliate(changed, m_aEntries[kept].name);
            changed.aliasTarget = kept;
        }
    }
    const auto exchangeAll = [this, &pointed] {
        for (auto& [index, entry] : pointed)
            std::swap(m_aEntries[index], entry);
    };
    CTextureDeletion deletion(*this, std::move(isGone), progress);
    deletion.Append(std::move(aliases));
    exchangeAll();
    try {
        deletion.Prepare();
        deletion.MoveRecords();
        deletion.Commit(std::nullopt);
    } catch (...) {
        exchangeAll();
        throw;
    }
    deletion.FinishMany();
}
